// How much memory many private creators take: the peak of a process of its own.
#include <gtest/gtest.h>

#include <stdlib.h>

#include "compare/comparison_run.h"
#include "tests/hostile/creators.h"
#include "tests/hostile/feed.h"
#include "tests/platform/posix_process.h"

// A list of its own for each creator would take 100 MB.
TEST (HostileCreators, MemoryDoesntGrowByATableForEach) {
    Feed feed;
    feed.tables.Private ("LONG", Long_Table ());
    std::string name = feed.Write (Creators (4000, Known_Creator).bytes);
    long long   peak = Peak_In_Child ([&] {
        if (Comparison_Start (nullptr, &feed.settings, name.c_str (), name.c_str (), 1) != 0) abort ();
    });
    EXPECT_LE (0, peak) << "another count";
    EXPECT_GT (10 << 20, peak);
}
