#include "foundation/HeapArenas.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <latch>
#include <malloc.h>
#include <string>
#include <thread>
#include <vector>

namespace {

int countArenas()
{
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = ::open_memstream(&text, &size);
    ::malloc_info(0, stream);
    std::fclose(stream);
    const std::string report(text, size);
    std::free(text);
    int arenas = 0;
    for (std::size_t at = report.find("<heap nr="); at != std::string::npos; at = report.find("<heap nr=", at + 1))
        ++arenas;
    return arenas;
}

// At work all at the same time.
void allocateOnThreads(int number)
{
    std::latch all(number);
    std::vector<std::thread> threads;
    for (int i = 0; i < number; ++i) {
        threads.emplace_back([&all] {
            const std::vector<std::string> texts(100, std::string(1000, 'x'));
            all.arrive_and_wait();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

TEST(HeapArenasTest, AreFewHoweverManyThreadsThereAre)
{
    // In a process of its own, where no other test has made arenas before.
    EXPECT_EXIT(
        {
            HeapArenas::keepFew();
            allocateOnThreads(8);
            const int arenas = countArenas();
            std::fprintf(stderr, "%d arenas\n", arenas);
            std::_Exit(arenas >= 1 && arenas <= 2 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
