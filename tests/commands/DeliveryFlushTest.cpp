#include "commands/DeliveryFlush.h"

#include "support/TemporaryHome.h"

#include <QDateTime>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class DeliveryFlushTest : public TemporaryHome
{};

TEST_F(DeliveryFlushTest, AFolderThatIsMissingHasNoFileSystem)
{
    EXPECT_TRUE(DeliveryFlush::flushFileSystem(path(QString())));
    EXPECT_FALSE(DeliveryFlush::flushFileSystem(path(QStringLiteral("missing"))));
}

} // namespace

TEST_F(DeliveryFlushTest, FlushesEveryFileInFoldersInFoldersWhateverItsDate)
{
    writeFile(u"job/Korvane/data/sync.txt"_s, "text");
    writeFile(u"job/.hidden"_s, "text");
    QFile old(writeFile(u"job/a.log"_s, "text"));
    ASSERT_TRUE(old.open(QIODevice::ReadWrite));
    EXPECT_TRUE(old.setFileTime(QDateTime(QDate(1999, 1, 1), QTime(0, 0)), QFileDevice::FileModificationTime));
    EXPECT_EQ(DeliveryFlush::flush(path(u"job"_s)), 3);
}

TEST_F(DeliveryFlushTest, LeavesLinksAlone)
{
    writeFile(u"job/a.txt"_s, "text");
    EXPECT_TRUE(QFile::link(path(u"nowhere"_s), path(u"job/link"_s)));
    EXPECT_EQ(DeliveryFlush::flush(path(u"job"_s)), 1);
}

TEST_F(DeliveryFlushTest, SaysWhenAFolderCannotBeFlushed)
{
    EXPECT_EQ(DeliveryFlush::flush(path(u"missing"_s)), std::nullopt);
}
