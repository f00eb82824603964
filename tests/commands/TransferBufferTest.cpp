#include "commands/TransferBuffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace {

std::string numbered(int pieces)
{
    std::string text;
    for (int piece = 0; piece < pieces; ++piece)
        text += std::to_string(piece) + ' ';
    return text;
}

} // namespace

TEST(TransferBufferTest, IsEmptyAtFirst)
{
    const TransferBuffer buffer;
    EXPECT_EQ(buffer.size(), 0U);
    EXPECT_EQ(buffer.view(), "");
}

TEST(TransferBufferTest, KeepsItsBytesWhileItGrows)
{
    TransferBuffer buffer;
    const std::string all = numbered(1'000'000); // over the size of a large page
    constexpr std::size_t piece = 16384;
    for (std::size_t at = 0; at < all.size(); at += piece)
        ASSERT_TRUE(buffer.append(all.data() + at, std::min(piece, all.size() - at)));
    EXPECT_TRUE(buffer.view() == all);
}

TEST(TransferBufferTest, BytesWrittenIntoItsRoomCountWhenTheyAreAdded)
{
    TransferBuffer buffer;
    ASSERT_TRUE(buffer.append("one", 3));
    char* const place = buffer.room(100);
    ASSERT_NE(place, nullptr);
    std::memcpy(place, " two", 4);
    EXPECT_EQ(buffer.view(), "one");
    buffer.added(4);
    EXPECT_EQ(buffer.view(), "one two");
}

TEST(TransferBufferTest, KeepsItsMemoryWhenItIsCleared)
{
    TransferBuffer buffer;
    const std::string all = numbered(100'000);
    ASSERT_TRUE(buffer.append(all.data(), all.size()));
    const char* const place = buffer.data();
    buffer.clear();
    EXPECT_EQ(buffer.size(), 0U);
    ASSERT_TRUE(buffer.append(all.data(), all.size()));
    EXPECT_EQ(buffer.data(), place);
}

TEST(TransferBufferTest, WithoutMemoryItStaysAsItWas)
{
    TransferBuffer buffer;
    ASSERT_TRUE(buffer.append("kept", 4));
    EXPECT_EQ(buffer.room(std::numeric_limits<std::size_t>::max()), nullptr);
    EXPECT_EQ(buffer.room(std::size_t{1} << 60), nullptr);
    EXPECT_EQ(buffer.view(), "kept");
    EXPECT_TRUE(buffer.append("!", 1));
    EXPECT_EQ(buffer.view(), "kept!");
}

TEST(TransferBufferTest, IsMovedWithItsBytes)
{
    TransferBuffer buffer;
    ASSERT_TRUE(buffer.append("moved", 5));
    TransferBuffer other(std::move(buffer));
    EXPECT_EQ(other.view(), "moved");
    TransferBuffer third;
    third = std::move(other);
    EXPECT_EQ(third.view(), "moved");
}
