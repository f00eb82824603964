#include "commands/DeliveryFlush.h"

#include "support/TemporaryHome.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class DeliveryFlushTest : public TemporaryHome
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
