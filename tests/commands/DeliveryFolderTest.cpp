#include "commands/DeliveryFolder.h"

#include "DownloadJobTest.h"

#include <QDir>

using namespace Qt::StringLiterals;

class DeliveryFolderTest : public DownloadJobTest
{
protected:
    // Lists three files and holds back the contents of the second.
    std::shared_ptr<DownloadJobFilesCommand> deliverUpToTheSecondFile()
    {
        answerNoJobFolder();
        service.addOverride(downloadEndpoint, {.times = 5});
        service.addOverride(downloadEndpoint, {.hang = true, .times = 1});
        EXPECT_TRUE(service.setDeliverables(depo, {{"a.txt", "first"}, {"b.cms", "second"}, {"c.clt", "third"}}));
        observer.whenEnded = [this](CUrlCommand& ended) {
            problems = dynamic_cast<DownloadJobFilesCommand&>(ended).problems();
        };
        auto command = makeCommand();
        command->setObserver(&observer);
        processor.postCommand(command);
        EXPECT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
        return command;
    }
    void finish()
    {
        service.releaseHangs();
        ASSERT_TRUE(Waiting::until([&] { return observer.ends().size() == 1; }));
    }

    QStringList problems;
};

TEST_F(DeliveryFolderTest, AFolderThatLaterFilesMadeAnewIsTold)
{
    const auto command = deliverUpToTheSecondFile();
    ASSERT_TRUE(QDir().rename(path(u"around/delivery"_s), path(u"around/elsewhere"_s)));
    finish();
    EXPECT_EQ(deliveredFiles(), QStringList{u"Clarity_Legal/c.clt"_s});
    ASSERT_FALSE(problems.isEmpty());
    EXPECT_TRUE(
        problems.constLast().endsWith(u"delivery was moved or taken away meanwhile, with the files that were in it"_s))
        << qPrintable(problems.constLast());
}

TEST_F(DeliveryFolderTest, AFolderThatStayedIsNotTold)
{
    const auto command = deliverUpToTheSecondFile();
    finish();
    EXPECT_EQ(problems, QStringList());
}

TEST_F(DeliveryFolderTest, ANewFolderOfTheSameNameIsAnother)
{
    const QString here = path(u"here"_s);
    ASSERT_TRUE(QDir().mkpath(here));
    DeliveryFolder folder(here);
    EXPECT_TRUE(folder.isInPlace()) << "nothing was delivered yet";
    folder.keepInSight();
    EXPECT_TRUE(folder.isInPlace());
    ASSERT_TRUE(QDir(here).removeRecursively());
    EXPECT_FALSE(folder.isInPlace());
    ASSERT_TRUE(QDir().mkpath(here));
    EXPECT_FALSE(folder.isInPlace());
    folder.keepInSight();
    EXPECT_FALSE(folder.isInPlace()) << "the files before are still not there";
}
