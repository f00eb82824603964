#include "engine/RatesReply.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QVariantList ratesOf(const Job& job)
{
    return {job.man24Rate(),    job.man24ProdID(),    job.man48Rate(),         job.man48ProdID(),
            job.man72Rate(),    job.man72ProdID(),    job.unattendedRate(),    job.unattendedProdID(),
            job.autoSyncRate(), job.autoSyncProdID(), job.rushRateMultiplier()};
}

const QString wholeReply = uR"({"Man24":{"Rate":95.5,"ProdCode":24},"Man48":{"Rate":75,"ProdCode":48},
    "Man72":{"Rate":60,"ProdCode":72},"Unattended":{"Rate":45,"ProdCode":10},"AutoSync":{"Rate":30,"ProdCode":11},
    "RUSH":{"Multiplier":1.5}})"_s;

TEST(RatesReplyTest, SetsEachRateAndProductFromItsOwnKey)
{
    const auto job = Job::job();
    EXPECT_TRUE(RatesReply::apply(wholeReply, *job));
    EXPECT_EQ(ratesOf(*job), QVariantList({95.5, 24, 75, 48, 60, 72, 45, 10, 30, 11, 1.5}));
}

TEST(RatesReplyTest, KeepsTextsAsTheyCame)
{
    const auto job = Job::job();
    EXPECT_TRUE(RatesReply::apply(uR"({"Man24":{"Rate":"95.00","ProdCode":"24a"}})"_s, *job));
    EXPECT_EQ(job->man24Rate(), QVariant(u"95.00"_s));
    EXPECT_EQ(job->man24ProdID(), QVariant(u"24a"_s));
}

TEST(RatesReplyTest, UnsetsWhatTheObjectLacks)
{
    const auto job = Job::job();
    ASSERT_TRUE(RatesReply::apply(wholeReply, *job));
    EXPECT_TRUE(RatesReply::apply(uR"({"Man24":{"Rate":1},"Man48":null,"Man72":5,"AutoSync":[1],"RUSH":{}})"_s, *job));
    QVariantList expected(11);
    expected[0] = 1;
    EXPECT_EQ(ratesOf(*job), expected);
}

TEST(RatesReplyTest, AReplyThatIsNoObjectSetsNothing)
{
    for (const QString& reply : {u""_s, u"null"_s, u"7"_s, u"[1,2]"_s, u"\"text\""_s, u"{\"Man24\":{\"Rate\":1"_s,
                                 u"Error <b>&"_s, QString(u"{}"_s + QChar(0) + u"x"_s), QString(100'000, u'[')}) {
        const auto job = Job::job();
        ASSERT_TRUE(RatesReply::apply(wholeReply, *job));
        const QVariantList before = ratesOf(*job);
        EXPECT_FALSE(RatesReply::apply(reply, *job)) << reply.left(40).toStdString();
        EXPECT_EQ(ratesOf(*job), before);
    }
}

TEST(RatesReplyTest, TheLogFormatIsThereWhenTheReplyHoldsYesAsWritten)
{
    for (const QString& reply : {u"yes"_s, u"oh yes, it is\n"_s, u"yesterday"_s})
        EXPECT_TRUE(RatesReply::isLogFormatAvailable(reply)) << reply.toStdString();
    for (const QString& reply : {u"no"_s, u""_s, u"YES"_s, u"y e s"_s})
        EXPECT_FALSE(RatesReply::isLogFormatAvailable(reply)) << reply.toStdString();
}

TEST(RatesReplyTest, UnattendedIsOfferedWhereItHasAPrice)
{
    const auto job = Job::job();
    EXPECT_FALSE(RatesReply::isUnattendedOffered(*job));
    for (const QVariant& rate : {QVariant(45), QVariant(0.01), QVariant(u"45.00"_s)}) {
        job->setUnattendedRate(rate);
        EXPECT_TRUE(RatesReply::isUnattendedOffered(*job));
    }
    for (const QVariant& rate : {QVariant(0), QVariant(-1), QVariant(u"none"_s)}) {
        job->setUnattendedRate(rate);
        EXPECT_FALSE(RatesReply::isUnattendedOffered(*job));
    }
}

} // namespace
