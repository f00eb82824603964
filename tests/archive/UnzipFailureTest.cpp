#include "UnzipFixture.h"

#include "support/RecordedLog.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

// A test's own disk neither refuses dates nor loses what was written on closing, so the program's calls come by here.
std::atomic<bool> datesFail = false;
std::atomic<bool> closingWrittenFilesFails = false;

bool isWrittenFile(int descriptor)
{
    struct stat status = {};
    return (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_WRONLY && fstat(descriptor, &status) == 0 &&
           S_ISREG(status.st_mode);
}

} // namespace

extern "C" int futimens(int descriptor, const timespec* times) noexcept
{
    static const auto original = reinterpret_cast<int (*)(int, const timespec*)>(dlsym(RTLD_NEXT, "futimens"));
    if (!datesFail)
        return original(descriptor, times);
    errno = EPERM;
    return -1;
}

extern "C" int close(int descriptor)
{
    static const auto original = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "close"));
    const bool fails = closingWrittenFilesFails && isWrittenFile(descriptor);
    const int result = original(descriptor);
    if (!fails)
        return result;
    errno = EIO;
    return -1;
}

namespace {

class WhileSet
{
public:
    explicit WhileSet(std::atomic<bool>& flag) : m_flag(flag) { m_flag = true; }
    ~WhileSet() { m_flag = false; }
    WhileSet(const WhileSet&) = delete;
    WhileSet& operator=(const WhileSet&) = delete;

private:
    std::atomic<bool>& m_flag;
};

// No file of this program may grow past the limit while this lives; unlike file modes, that holds for root too.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit lowered{bytes, m_old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &lowered);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_old);
        (void)std::signal(SIGXFSZ, m_oldHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_old{};
    void (*m_oldHandler)(int);
};

class UnzipFailure : public UnzipFixture
{
protected:
    UnzipFailure()
    {
        archive.setProgressBlock(
            [this](int percentage, std::uint64_t, std::uint64_t) { m_progress.push_back(percentage); });
    }

    // Of two entries, the first cannot be written to its end.
    void expectEndAtTheFirstEntry(bool success)
    {
        EXPECT_FALSE(success);
        EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Failed to write output file")});
        EXPECT_EQ(archive.unzippedFiles(), QStringList{out("large.bin")});
        EXPECT_FALSE(QFile::exists(out("small.txt")));
        EXPECT_EQ(m_progress, std::vector<int>{50});
    }

    const QByteArray m_zip =
        craftedZip({{.name = "large.bin", .data = QByteArray(20'000, 'x')}, {.name = "small.txt"}});
    std::vector<int> m_progress;
};

TEST_F(UnzipFailure, DiskThatTakesOnlyPartOfAFileEndsTheExtraction)
{
    ASSERT_TRUE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), m_zip)));
    bool success = true;
    {
        const FileSizeLimit limit(6'000);
        success = archive.UnzipFileTo(path(QStringLiteral("out")), true);
    }
    expectEndAtTheFirstEntry(success);
    EXPECT_EQ(unzipped("large.bin"), QByteArray(6'000, 'x'));
}

TEST_F(UnzipFailure, DiskThatLosesAFileWhenItIsClosedEndsTheExtractionLikewise)
{
    ASSERT_TRUE(archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), m_zip)));
    bool success = true;
    {
        const WhileSet fails(closingWrittenFilesFails);
        success = archive.UnzipFileTo(path(QStringLiteral("out")), true);
    }
    expectEndAtTheFirstEntry(success);
}

TEST_F(UnzipFailure, DateThatCannotBeSetIsLoggedAndIsNoFailure)
{
    const RecordedLog log;
    {
        const WhileSet fails(datesFail);
        EXPECT_TRUE(unzip(m_zip));
    }
    EXPECT_EQ(log.count(QStringLiteral("[info] [main] Failed to set attributes")), 2);
    EXPECT_TRUE(delegate->messages.isEmpty());
    EXPECT_EQ(archive.unzippedFiles().size(), 2);
}

TEST_F(UnzipFailure, EntryWithoutADateHasNoneToSet)
{
    const RecordedLog log;
    const WhileSet fails(datesFail);
    EXPECT_TRUE(unzip(craftedZip({{.name = "a.txt", .dosDate = 0, .dosTime = 0}})));
    EXPECT_FALSE(log.contains(QStringLiteral("Failed to set attributes")));
}

TEST_F(UnzipFailure, NameThatGoesOnPastTheEndOfTheArchiveEndsTheExtraction)
{
    QByteArray zip = craftedZip({{.name = "a.txt"}, {.name = "b.txt"}});
    // Both headers agree on the length, so that the entry can be opened; only the name itself is not there.
    for (const qsizetype nameLength : {zip.indexOf("PK\x03\x04") + 26, zip.indexOf("PK\x01\x02") + 28}) {
        zip[nameLength] = '\x60';
        zip[nameLength + 1] = '\xea';
    }
    EXPECT_FALSE(unzip(zip));
    EXPECT_EQ(delegate->messages, QStringList{QStringLiteral("Error occurs while getting file info")});
    EXPECT_TRUE(archive.unzippedFiles().isEmpty());
    EXPECT_TRUE(m_progress.empty());
}

} // namespace
