#include "archive/ContainedFolder.h"

#include "support/TemporaryHome.h"

#include <QFileInfo>

#include <unistd.h>
#include <utility>

namespace {

class ContainedFolderTest : public TemporaryHome
{};

TEST_F(ContainedFolderTest, FolderIsMadeWithThoseAboveIt)
{
    const ContainedFolder folder(path(QStringLiteral("one/two")));
    EXPECT_TRUE(folder.makeFolder({}));
    EXPECT_TRUE(folder.makeFolder({QStringLiteral("three"), QStringLiteral("four")}));
    EXPECT_TRUE(QFileInfo(path(QStringLiteral("one/two/three/four"))).isDir());
}

TEST_F(ContainedFolderTest, AskingWhetherSomethingExistsMakesNoFolder)
{
    const ContainedFolder folder(path(QStringLiteral("one")));
    const QStringList file{QStringLiteral("sub"), QStringLiteral("a.txt")};
    EXPECT_FALSE(folder.exists(file));
    EXPECT_FALSE(folder.openForWriting(file).isOpen());
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("one/sub"))));
    EXPECT_TRUE(folder.exists({}));
    writeFile(QStringLiteral("one/sub/a.txt"), "x");
    EXPECT_TRUE(folder.exists(file));
    EXPECT_FALSE(ContainedFolder(path(QStringLiteral("one/sub/a.txt"))).exists({}));
}

TEST_F(ContainedFolderTest, OpenedFileIsEmptied)
{
    const QString file = writeFile(QStringLiteral("one/a.txt"), "old");
    FileDescriptor descriptor = ContainedFolder(path(QStringLiteral("one"))).openForWriting({QStringLiteral("a.txt")});
    ASSERT_TRUE(descriptor.isOpen());
    EXPECT_EQ(write(descriptor.get(), "n", 1), 1);
    EXPECT_TRUE(descriptor.close());
    EXPECT_FALSE(descriptor.isOpen());
    EXPECT_EQ(readFile(file), "n");
}

TEST_F(ContainedFolderTest, DescriptorHasOneOwner)
{
    const ContainedFolder folder(path(QStringLiteral("one")));
    FileDescriptor first = folder.openForWriting({QStringLiteral("a")});
    const int number = first.get();
    FileDescriptor second(std::move(first));
    EXPECT_EQ(second.get(), number);
    second = folder.openForWriting({QStringLiteral("b")});
    ASSERT_TRUE(second.isOpen());
    EXPECT_NE(second.get(), number);
    EXPECT_NE(write(number, "x", 1), 1);
}

} // namespace
