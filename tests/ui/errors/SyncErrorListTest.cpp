#include "ui/errors/SyncErrorList.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

Error error(const QString& text, int code = 0)
{
    return {ErrorDomain::SyncBase, code, text};
}

class SyncErrorListTest : public testing::Test
{
protected:
    SyncErrorListTest()
    {
        QObject::connect(&list, &SyncErrorList::errorInserted, &list, [this](qsizetype index) {
            notices << u"+%1 of %2"_s.arg(index).arg(list.errorList().size());
        });
        QObject::connect(&list, &SyncErrorList::errorRemoved, &list, [this](qsizetype index) {
            notices << u"-%1 of %2"_s.arg(index).arg(list.errorList().size());
        });
    }

    SyncErrorList list;
    QStringList notices;
};

} // namespace

TEST_F(SyncErrorListTest, ErrorsAppearInTheOrderOfTheirArrivalEachWithItsNotice)
{
    EXPECT_TRUE(list.errorList().isEmpty());
    list.addError(error(u"first"_s));
    list.addError(error(u"second"_s, 2));
    EXPECT_EQ(list.errorList(), (QList<Error>{error(u"first"_s), error(u"second"_s, 2)}));
    EXPECT_EQ(notices, (QStringList{u"+0 of 1"_s, u"+1 of 2"_s}));
}

TEST_F(SyncErrorListTest, ClearingGivesOneNoticeForEachErrorTheLastErrorFirst)
{
    for (const QString& text : {u"first"_s, u"second"_s, u"third"_s})
        list.addError(error(text));
    notices.clear();
    list.clear();
    EXPECT_TRUE(list.errorList().isEmpty());
    EXPECT_EQ(notices, (QStringList{u"-2 of 2"_s, u"-1 of 1"_s, u"-0 of 0"_s}));
    list.clear();
    EXPECT_EQ(notices.size(), 3);
}

TEST_F(SyncErrorListTest, ErrorsAreInsertedAndRemovedAnywhere)
{
    list.addError(error(u"last"_s));
    list.insertObject(error(u"first"_s), 0);
    EXPECT_EQ(list.errorList().constFirst(), error(u"first"_s));
    list.removeObjectFromErrorListAtIndex(0);
    EXPECT_EQ(list.errorList(), QList<Error>{error(u"last"_s)});
    EXPECT_EQ(notices.constLast(), u"-0 of 1"_s);
}
