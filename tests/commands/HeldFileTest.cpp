#include "commands/HeldFile.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <string>

using namespace Qt::StringLiterals;

class HeldFileTest : public TemporaryHome
{
protected:
    static constexpr qsizetype largeSize = static_cast<qsizetype>(HeldFile::large) + 12345;

    // Every byte, in pieces as a transfer asks for them; nothing when the file has changed.
    static std::optional<std::string> contents(const HeldFile& file, std::size_t piece = 100'000)
    {
        std::string all(file.size(), ' ');
        for (std::size_t at = 0; at < all.size(); at += piece) {
            if (!file.copy(at, all.data() + at, std::min(piece, all.size() - at)))
                return std::nullopt;
        }
        return all;
    }
    [[nodiscard]] static QByteArray bytes(qsizetype size)
    {
        QByteArray text;
        while (text.size() < size)
            text += QByteArray::number(text.size()) + ' ';
        return text.left(size);
    }
};

TEST_F(HeldFileTest, GivesTheBytesOfSmallAndLargeFiles)
{
    for (const qsizetype size : {qsizetype{0}, qsizetype{1}, qsizetype{5000}, largeSize - 12345, largeSize}) {
        const QByteArray written = bytes(size);
        HeldFile file;
        ASSERT_TRUE(file.read(writeFile(u"a.mp3"_s, written)));
        EXPECT_EQ(file.size(), static_cast<std::size_t>(size));
        EXPECT_TRUE(contents(file) == written.toStdString()) << size;
    }
}

TEST_F(HeldFileTest, ReadsWhatHasNoSizeToItsEnd)
{
    HeldFile file;
    ASSERT_TRUE(file.read(u"/proc/self/limits"_s));
    EXPECT_NE(contents(file)->find("Max open files"), std::string::npos);
}

TEST_F(HeldFileTest, ReadsFilesAlone)
{
    EXPECT_FALSE(HeldFile().read(path(u"missing"_s)));
    EXPECT_FALSE(HeldFile().read(path(QString())));
    EXPECT_FALSE(HeldFile().read(u"/dev/zero"_s));
}

TEST_F(HeldFileTest, ASmallFileStaysAsItWas)
{
    const QString name = writeFile(u"a.txt"_s, "as it was");
    HeldFile file;
    ASSERT_TRUE(file.read(name));
    writeFile(u"a.txt"_s, "as it is now, which is longer");
    EXPECT_EQ(contents(file), "as it was");
}

// A reader of the mapping itself would be ended by the system here.
TEST_F(HeldFileTest, ALargeFileThatIsCutIsNotGivenOut)
{
    const QString name = writeFile(u"a.mp3"_s, bytes(largeSize));
    HeldFile file;
    ASSERT_TRUE(file.read(name));
    ASSERT_TRUE(QFile::resize(name, 4096));
    EXPECT_EQ(contents(file), std::nullopt);
}

TEST_F(HeldFileTest, ALargeFileThatIsChangedInItsPlaceIsNotGivenOutWhole)
{
    const QString name = writeFile(u"a.mp3"_s, bytes(largeSize));
    HeldFile file;
    ASSERT_TRUE(file.read(name));
    QFile other(name);
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    other.write("other");
    other.close();
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    other.setFileTime(QDateTime::currentDateTime().addSecs(5),
                      QFileDevice::FileModificationTime); // clocks tick coarsely
    EXPECT_EQ(contents(file), std::nullopt);
}

TEST_F(HeldFileTest, ALargeFileThatIsRemovedOrReplacedStaysAsItWas)
{
    const QByteArray written = bytes(largeSize);
    const QString name = writeFile(u"a.mp3"_s, written);
    HeldFile file;
    ASSERT_TRUE(file.read(name));
    ASSERT_TRUE(QFile::remove(name));
    writeFile(u"a.mp3"_s, bytes(100));
    EXPECT_TRUE(contents(file) == written.toStdString());
}

TEST_F(HeldFileTest, IsMovedWithItsBytes)
{
    const QByteArray written = bytes(largeSize);
    HeldFile file;
    ASSERT_TRUE(file.read(writeFile(u"a.mp3"_s, written)));
    HeldFile other(std::move(file));
    HeldFile third;
    third = std::move(other);
    EXPECT_TRUE(contents(third) == written.toStdString());
}
