#include "demo-service/UploadName.h"

#include <gtest/gtest.h>

using DemoService::readUploadName;

TEST(UploadName, readsATranscript)
{
    const auto name = readUploadName("5120_883.txt[Smith 2 Mar.txt,-1]");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->orderNumber, 5120);
    EXPECT_EQ(name->depoNumber, 883);
    EXPECT_EQ(name->segment, std::nullopt);
    EXPECT_EQ(name->storedName, "5120_883.txt");
    EXPECT_EQ(name->sourceName, "Smith 2 Mar.txt");
}

TEST(UploadName, readsASegment)
{
    const auto name = readUploadName("5120_883_2.mp3[a [1], b.mov,247000]");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->segment, 2);
    EXPECT_EQ(name->storedName, "5120_883_2.mp3");
    EXPECT_EQ(name->sourceName, "a [1], b.mov");
    EXPECT_EQ(name->durationMs, 247000);
}

TEST(UploadName, refusesEverythingElse)
{
    for (const char* text :
         {"", "debug.txt", "5120.txt[a.txt,-1]", "5120_883.txt", "5120_883.txt[a.txt]", "5120_883.txt[a.txt,-1",
          "5120_883.txt[a.txt,0]", "5120_883.txt[a.doc,-1]", "5120_883.txt[a,-1]", "5120_883_2.wav[a.wav,1000]",
          "5120_883_2.mp3[a.mov,-1]", "5120_883_2.mp3[a.mov,1234]", "5120_883_2.mp3[a.mov,1000x]",
          "-5120_883.txt[a.txt,-1]", "5120_-883.txt[a.txt,-1]", "5120_883_x.mp3[a.mov,1000]", "5120_883[a.txt,-1]",
          "99999999999_883.txt[a.txt,-1]", "5120_883.t/t[a.t/t,-1]"})
        EXPECT_FALSE(readUploadName(text)) << text;
}
