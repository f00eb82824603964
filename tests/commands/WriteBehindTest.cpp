#include "commands/WriteBehind.h"

#include "support/TemporaryHome.h"

#include <QFile>

using namespace Qt::StringLiterals;

class WriteBehindTest : public TemporaryHome
{};

TEST_F(WriteBehindTest, WritesWhatItIsGiven)
{
    WriteBehind behind;
    behind.add(writeFile(u"a.txt"_s, "text"));
    behind.add(writeFile(u"b.txt"_s, {}));
    EXPECT_EQ(behind.wait(), 2);
    behind.add(writeFile(u"c.txt"_s, "text"));
    EXPECT_EQ(behind.wait(), 3);
}

TEST_F(WriteBehindTest, WritesTheFilesBelowAFolder)
{
    writeFile(u"job/Korvane/data/sync.txt"_s, "text");
    writeFile(u"job/.hidden"_s, "text");
    WriteBehind behind;
    behind.add(path(u"job"_s));
    EXPECT_EQ(behind.wait(), 2);
}

TEST_F(WriteBehindTest, PassesOverWhatIsNoFile)
{
    const QString file = writeFile(u"a.txt"_s, "text");
    ASSERT_TRUE(QFile::link(file, path(u"link"_s)));
    WriteBehind behind;
    behind.add(path(u"missing"_s));
    behind.add(path(u"link"_s));
    EXPECT_EQ(behind.wait(), 0);
}

TEST_F(WriteBehindTest, NobodyWaitsForOneThatIsStopped)
{
    WriteBehind behind;
    behind.stop();
    behind.add(writeFile(u"a.txt"_s, "text"));
    EXPECT_EQ(behind.wait(), 0);
}
