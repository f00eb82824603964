#include "ui/log/LogFileTail.h"

#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;

namespace {

class LogFileTailTest : public TemporaryHome
{
protected:
    void append(const QByteArray& bytes)
    {
        QFile file(path(u"x.log"_s));
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(bytes);
    }
    // The file starts over in place, as a full log does.
    void startOver(const QByteArray& bytes)
    {
        QFile file(path(u"x.log"_s));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.resize(0));
        file.write(bytes);
    }

    LogFileTail tail;
};

} // namespace

TEST_F(LogFileTailTest, ReadsWhatIsThereAndThenWhatIsAppended)
{
    ASSERT_TRUE(tail.open(writeFile(u"x.log"_s, "one\n")));
    EXPECT_EQ(tail.read().data, QByteArray("one\n"));
    EXPECT_EQ(tail.read().data, QByteArray());
    append("two\n");
    EXPECT_EQ(tail.read().data, QByteArray("two\n"));
    EXPECT_EQ(tail.read().data, QByteArray());
}

TEST_F(LogFileTailTest, ReadsNoMoreThanAPieceAtOnce)
{
    ASSERT_TRUE(tail.open(writeFile(u"x.log"_s, QByteArray(LogFileTail::pieceSize + 7, 'x'))));
    EXPECT_EQ(tail.read().data.size(), LogFileTail::pieceSize);
    EXPECT_EQ(tail.read().data.size(), 7);
}

TEST_F(LogFileTailTest, AFileThatStartedOverIsReadFromItsNewBeginning)
{
    ASSERT_TRUE(tail.open(writeFile(u"x.log"_s, "the first line\nanother\n")));
    EXPECT_FALSE(tail.read().isStartedOver);
    startOver("new\n");
    const LogFileTail::Piece piece = tail.read();
    EXPECT_TRUE(piece.isStartedOver);
    EXPECT_EQ(piece.data, QByteArray("new\n"));
    EXPECT_FALSE(tail.read().isStartedOver);
}

TEST_F(LogFileTailTest, AFileThatGrewPastThePlaceReadSinceItStartedOverIsNoticedToo)
{
    ASSERT_TRUE(tail.open(writeFile(u"x.log"_s, "10:00 one\n")));
    ASSERT_FALSE(tail.read().data.isEmpty());
    startOver("11:00 a line that is longer than the whole of the old file\n");
    const LogFileTail::Piece piece = tail.read();
    EXPECT_TRUE(piece.isStartedOver);
    EXPECT_EQ(piece.data, QByteArray("11:00 a line that is longer than the whole of the old file\n"));
}

TEST_F(LogFileTailTest, AnEmptiedFileIsToldOfOnce)
{
    ASSERT_TRUE(tail.open(writeFile(u"x.log"_s, "one\n")));
    ASSERT_FALSE(tail.read().data.isEmpty());
    startOver("");
    EXPECT_TRUE(tail.read().isStartedOver);
    EXPECT_FALSE(tail.read().isStartedOver);
    append("two\n");
    EXPECT_EQ(tail.read().data, QByteArray("two\n"));
}

TEST_F(LogFileTailTest, ItKeepsToTheFileThatItOpened)
{
    ASSERT_TRUE(tail.open(writeFile(u"x.log"_s, "one\n")));
    ASSERT_FALSE(tail.read().data.isEmpty());
    ASSERT_TRUE(QFile::rename(path(u"x.log"_s), path(u"old.log"_s)));
    [[maybe_unused]] const QString other = writeFile(u"x.log"_s, "of another run\n");
    EXPECT_EQ(tail.read().data, QByteArray());
}

TEST_F(LogFileTailTest, AFileThatCannotBeReadIsToldOf)
{
    EXPECT_FALSE(tail.open(path(u"missing.log"_s)));
    EXPECT_EQ(tail.read().data, QByteArray());
}
