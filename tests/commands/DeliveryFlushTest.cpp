#include "commands/DeliveryFlush.h"

#include "DownloadJobTest.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class DeliveryFlushTest : public DownloadJobTest
{
protected:
    const std::chrono::system_clock::time_point begin = std::chrono::system_clock::now();
};

} // namespace

TEST_F(DeliveryFlushTest, FlushesFilesInFoldersInFolders)
{
    writeFile(u"job/Korvane/data/sync.txt"_s, "text");
    writeFile(u"job/a.log"_s, "text");
    EXPECT_TRUE(DeliveryFlush::flush(path(u"job"_s), begin));
}

TEST_F(DeliveryFlushTest, LeavesLinksAlone)
{
    writeFile(u"job/a.txt"_s, "text");
    EXPECT_TRUE(QFile::link(path(u"nowhere"_s), path(u"job/link"_s)));
    EXPECT_TRUE(DeliveryFlush::flush(path(u"job"_s), begin));
}

TEST_F(DeliveryFlushTest, SaysWhenAFolderCannotBeFlushed)
{
    EXPECT_FALSE(DeliveryFlush::flush(path(u"missing"_s), begin));
}

TEST_F(DeliveryFlushTest, ADeliveryIsToldHereBeforeTheServiceHearsOfIt)
{
    ASSERT_TRUE(service.setDeliverables(depo, {{"a.txt", "text"}, {"b.cms", "table"}}));
    answerNoJobFolder();
    QStringList filesThen;
    bool isMarkedThen = true;
    int times = 0;
    const auto command = makeCommand();
    command->setBeforeTelling([&] {
        ++times;
        filesThen = deliveredFiles();
        isMarkedThen = isMarked();
    });
    run(command);
    EXPECT_EQ(times, 1);
    EXPECT_EQ(filesThen, (QStringList{u"TrialDirector/b.cms"_s, u"Universal_ASCII/a.txt"_s}));
    EXPECT_FALSE(isMarkedThen);
    EXPECT_TRUE(isMarked());
}

TEST_F(DeliveryFlushTest, ADeliveryThatStoppedIsNotTold)
{
    service.addOverride(factsEndpoint, {.status = 500});
    ASSERT_TRUE(service.setDeliverables(depo, {{"a.txt", "text"}}));
    bool isTold = false;
    const auto command = makeCommand();
    command->setBeforeTelling([&] { isTold = true; });
    run(command);
    EXPECT_FALSE(isTold);
}
