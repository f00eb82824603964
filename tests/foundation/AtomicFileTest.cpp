#include "foundation/AtomicFile.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class AtomicFileTest : public TemporaryHome
{};

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

mode_t modeOf(const QString& path)
{
    struct stat facts = {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0);
    return facts.st_mode & 0777U;
}

} // namespace

TEST_F(AtomicFileTest, WritesANewFileReadableByTheUserAlone)
{
    const QString file = path(u"state.json"_s);
    EXPECT_EQ(AtomicFile::write(file, "new contents"), std::nullopt);
    EXPECT_EQ(readFile(file), QByteArray("new contents"));
    EXPECT_EQ(modeOf(file), 0600U);
}

TEST_F(AtomicFileTest, ReplacesTheOldContentsWhole)
{
    const QString file = writeFile(u"state.json"_s, QByteArray(100000, 'o'));
    EXPECT_EQ(AtomicFile::write(file, "short"), std::nullopt);
    EXPECT_EQ(readFile(file), QByteArray("short"));
    EXPECT_EQ(modeOf(file), 0600U);
}

TEST_F(AtomicFileTest, AReaderOfTheOldFileKeepsItsWholeContents)
{
    const QString file = writeFile(u"state.json"_s, "the old contents");
    QFile reader(file);
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    EXPECT_EQ(AtomicFile::write(file, "new"), std::nullopt);
    EXPECT_EQ(reader.readAll(), QByteArray("the old contents"));
}

TEST_F(AtomicFileTest, AWriteThatFailsHalfwayLeavesTheOldFileAndNothingBeside)
{
    const QString file = writeFile(u"folder/state.json"_s, "the old contents");
    std::optional<Error> error;
    {
        const FileSizeLimit limit(4096);
        error = AtomicFile::write(file, QByteArray(1000000, 'n'));
    }
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->domain, ErrorDomain::Platform);
    EXPECT_TRUE(error->localizedDescription.startsWith(file + u": "_s)) << qPrintable(error->localizedDescription);
    EXPECT_EQ(readFile(file), QByteArray("the old contents"));
    EXPECT_EQ(QDir(path(u"folder"_s)).entryList(QDir::Files | QDir::Hidden), QStringList{u"state.json"_s});
}

TEST_F(AtomicFileTest, FlushesFilesAndFoldersThatAreThere)
{
    EXPECT_TRUE(AtomicFile::flush(writeFile(QStringLiteral("a/b"), "x")));
    EXPECT_TRUE(AtomicFile::flush(path(QStringLiteral("a"))));
    EXPECT_FALSE(AtomicFile::flush(path(QStringLiteral("missing"))));
}

TEST_F(AtomicFileTest, AMissingFolderIsAnErrorThatNamesTheFile)
{
    const QString file = path(u"missing/state.json"_s);
    const std::optional<Error> error = AtomicFile::write(file, "contents");
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->localizedDescription.startsWith(file));
    EXPECT_FALSE(QFileInfo::exists(file));
}

TEST_F(AtomicFileTest, AFolderInTheFilesPlaceIsAnErrorAndStays)
{
    const QString folder = path(u"state.json"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_NE(AtomicFile::write(folder, "contents"), std::nullopt);
    EXPECT_TRUE(QFileInfo(folder).isDir());
}
