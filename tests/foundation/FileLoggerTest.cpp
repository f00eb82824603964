#include "foundation/FileLogger.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

class FileLoggerTest : public TemporaryHome
{
protected:
    [[nodiscard]] QString folder() const { return path(u"state/logs"_s); }
    [[nodiscard]] static QByteArray contentsOf(const FileLogger& logger)
    {
        return readFile(logger.sortedLogFilePaths().value(0));
    }
};

} // namespace

TEST_F(FileLoggerTest, MakesItsFolderAndAFreshFileReadableByTheUserAlone)
{
    const FileLogger logger(folder());
    EXPECT_TRUE(logger.isOpen());
    ASSERT_EQ(logger.sortedLogFilePaths().size(), 1);
    const QFileInfo file(logger.sortedLogFilePaths().constFirst());
    EXPECT_EQ(file.absolutePath(), folder());
    EXPECT_TRUE(file.fileName().startsWith(u"Quillpost "_s) && file.fileName().endsWith(u".log"_s));
    EXPECT_EQ(file.permissions() & ~(QFile::ReadUser | QFile::WriteUser), QFile::ReadOwner | QFile::WriteOwner);
}

TEST_F(FileLoggerTest, LinesReachTheFileOnFlushAndNotBefore)
{
    FileLogger logger(folder());
    logger.append("first\n");
    logger.append("second\n");
    EXPECT_EQ(contentsOf(logger), QByteArray());
    logger.flush();
    EXPECT_EQ(contentsOf(logger), QByteArray("first\nsecond\n"));
    logger.append("third\n");
    logger.flush();
    EXPECT_EQ(contentsOf(logger), QByteArray("first\nsecond\nthird\n"));
}

TEST_F(FileLoggerTest, AFullBufferIsWrittenWithoutAFlush)
{
    FileLogger logger(folder());
    for (int i = 0; i < 70; ++i)
        logger.append(std::string(1023, 'x') + '\n');
    EXPECT_GE(contentsOf(logger).size(), 64 * 1024);
}

TEST_F(FileLoggerTest, TheEndOfTheLoggerWritesWhatIsBuffered)
{
    auto logger = std::make_unique<FileLogger>(folder());
    const QString file = logger->sortedLogFilePaths().value(0);
    logger->append("last words\n");
    logger.reset();
    EXPECT_EQ(readFile(file), QByteArray("last words\n"));
}

TEST_F(FileLoggerTest, AtItsGreatestSizeTheFileStartsOver)
{
    FileLogger logger(folder());
    const std::string half(127999, 'a');
    logger.append(half + '\n');
    logger.append(half + '\n');
    logger.flush();
    EXPECT_EQ(contentsOf(logger).size(), 256000);
    logger.append("b\n");
    logger.flush();
    EXPECT_EQ(contentsOf(logger), QByteArray("b\n"));
}

TEST_F(FileLoggerTest, LinesStillBufferedCountTowardsTheSize)
{
    FileLogger logger(folder(), 10);
    logger.append("12345\n");
    logger.append("6789\n");
    logger.flush();
    EXPECT_EQ(contentsOf(logger), QByteArray("6789\n"));
}

TEST_F(FileLoggerTest, ALineLongerThanTheGreatestSizeIsCut)
{
    FileLogger logger(folder(), 10);
    logger.append("123456789012345\n");
    logger.flush();
    EXPECT_EQ(contentsOf(logger), QByteArray("1234567890"));
}

TEST_F(FileLoggerTest, TheFilesOfEndedRunsAreDeletedWhenARunStarts)
{
    const QString endedRun = writeFile(u"state/logs/Quillpost 2001-01-01 00-00-00.000 1.log"_s, "old lines\n");
    const FileLogger logger(folder());
    EXPECT_FALSE(QFileInfo::exists(endedRun));
    EXPECT_EQ(logger.sortedLogFilePaths().size(), 1);
}

TEST_F(FileLoggerTest, ALoggerThatEndedLetsGoOfItsFile)
{
    std::make_unique<FileLogger>(folder()).reset();
    const FileLogger logger(folder());
    EXPECT_EQ(logger.sortedLogFilePaths().size(), 1);
}

TEST_F(FileLoggerTest, TheFileOfARunningProgramIsLeftToIt)
{
    FileLogger running(folder());
    const FileLogger started(folder());
    running.append("still here\n");
    running.flush();
    EXPECT_EQ(contentsOf(running), QByteArray("still here\n"));
    EXPECT_EQ(started.sortedLogFilePaths().size(), 2);
}

TEST_F(FileLoggerTest, ProgramsThatStartInTheSameMomentHaveEachTheirOwnFile)
{
    std::vector<std::unique_ptr<FileLogger>> loggers;
    QStringList files;
    for (int i = 0; i < 20; ++i) {
        loggers.push_back(std::make_unique<FileLogger>(folder()));
        files << loggers.back()->sortedLogFilePaths().value(0);
    }
    EXPECT_EQ(files.removeDuplicates(), 0);
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files).size(), 20);
}

TEST_F(FileLoggerTest, OtherFilesInTheFolderAreNotTouchedOrListed)
{
    const QString foreign = writeFile(u"state/logs/notes.txt"_s, "mine");
    const FileLogger logger(folder());
    EXPECT_EQ(readFile(foreign), QByteArray("mine"));
    EXPECT_FALSE(logger.sortedLogFilePaths().contains(foreign));
}

TEST_F(FileLoggerTest, TheRunsOwnFileIsFirstThenTheNewest)
{
    const FileLogger logger(folder());
    const QString own = logger.sortedLogFilePaths().value(0);
    const QString older = writeFile(u"state/logs/Quillpost 2001-01-01 00-00-00.000 1.log"_s, "older");
    const QString later = writeFile(u"state/logs/Quillpost 2999-01-01 00-00-00.000 1.log"_s, "later");
    EXPECT_EQ(logger.sortedLogFilePaths(), (QStringList{own, later, older}));
}

TEST_F(FileLoggerTest, WithoutAFolderLinesAreDropped)
{
    const QString file = writeFile(u"not-a-folder"_s, "contents");
    FileLogger logger(file + u"/logs"_s);
    EXPECT_FALSE(logger.isOpen());
    logger.append("line\n");
    logger.flush();
    EXPECT_EQ(logger.sortedLogFilePaths(), QStringList());
    EXPECT_EQ(readFile(file), QByteArray("contents"));
}
