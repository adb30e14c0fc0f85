#include "util/memory.h"

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"

static const char *const MODULE = "memory_test";

// The address sanitizer would end the program instead of refusing a block that is too large.
extern "C" const char *__asan_default_options (void);
const char            *__asan_default_options (void) { return "allocator_may_return_null=1"; }

class Memory : public testing::Test {
protected:
    void TearDown () override { Memory_Fail_At (0); }

    // The one line that a failure leaves.
    std::string Failure () const { return recorder.lines.size () == 1 ? recorder.lines[0].text : recorder.All (); }

    static std::string Line (int line, const std::string &rest) {
        char start[64];
        snprintf (start, sizeof start, "line %-4d of memory_test \nmemory error in ", line);
        return start + rest;
    }

    Log_Recorder recorder;
    long         live = Memory_Live ();
};

TEST_F (Memory, BlocksAreCounted) {
    void *one  = Memory_Malloc (nullptr, HERE ("one", 1, 10), 10);
    char *zero = static_cast<char *> (Memory_Calloc (nullptr, HERE ("zero", 1, 10), 10));
    char *text = Memory_Strdup (nullptr, HERE ("text", 1, 1), "a text");
    EXPECT_EQ (Memory_Live (), live + 3);
    EXPECT_EQ (zero[0] | zero[9], 0);
    EXPECT_STREQ (text, "a text");
    one = Memory_Realloc (nullptr, HERE ("one", 1, 20), one, 20);
    EXPECT_EQ (Memory_Live (), live + 3);
    void *fresh = Memory_Realloc (nullptr, HERE ("fresh", 1, 20), nullptr, 20);
    EXPECT_EQ (Memory_Live (), live + 4);
    for (void *block : {one, static_cast<void *> (zero), static_cast<void *> (text), fresh}) Memory_Free (block);
    Memory_Free (nullptr);
    EXPECT_EQ (Memory_Live (), live);
    EXPECT_EQ (recorder.All (), "");
}

TEST_F (Memory, NoBytesStillGiveABlock) {
    void *one = Memory_Malloc (nullptr, HERE ("one", 0, 0), 0);
    void *two = Memory_Calloc (nullptr, HERE ("two", 0, 0), 0);
    void *big = Memory_Realloc (nullptr, HERE ("big", 0, 0), nullptr, 0);
    EXPECT_NE (one, nullptr);
    EXPECT_NE (two, nullptr);
    EXPECT_NE (big, nullptr);
    big = Memory_Realloc (nullptr, HERE ("big", 0, 0), big, 0);
    EXPECT_NE (big, nullptr);
    for (void *block : {one, two, big}) Memory_Free (block);
    EXPECT_EQ (Memory_Live (), live);
}

// One of many living blocks, all of its bytes the same.
struct Sized {
    unsigned char *bytes;
    size_t         size;
    unsigned char  mark;

    void Fill (size_t from = 0) { memset (bytes + from, mark, size - from); }
    bool Is_Whole () const {
        for (size_t i = 0; i < size; i++)
            if (bytes[i] != mark) return false;
        return true;
    }
};

TEST_F (Memory, BlocksOfAnySizeKeepTheirBytesWhileOthersComeAndGo) {
    std::vector<Sized> blocks (3000, Sized {nullptr, 0, 0});
    uint32_t           seed = 1;
    for (int step = 0; step < 60000; step++) {
        seed         = seed * 1664525 + 1013904223;
        Sized &block = blocks[(seed >> 8) % blocks.size ()];
        size_t size  = (seed >> 20) % 400;
        if (block.bytes) {
            ASSERT_TRUE (block.Is_Whole ()) << block.size;
        }
        if (block.bytes && step % 3) {
            Memory_Free (block.bytes);
            block.bytes = nullptr;
        } else if (block.bytes) {
            size_t kept = size < block.size ? size : block.size;
            block.bytes =
                static_cast<unsigned char *> (Memory_Realloc (nullptr, HERE ("block", 1, size), block.bytes, size));
            block.size = size;
            block.Fill (kept);
        } else {
            block.mark = static_cast<unsigned char> (step);
            block.size = size;
            block.bytes =
                static_cast<unsigned char *> (step & 1 ? Memory_Calloc (nullptr, HERE ("block", 1, size), size)
                                                       : Memory_Malloc (nullptr, HERE ("block", 1, size), size));
            ASSERT_NE (block.bytes, nullptr);
            ASSERT_EQ (reinterpret_cast<uintptr_t> (block.bytes) % alignof (double), 0u);
            for (size_t i = 0; (step & 1) && i < size; i++) ASSERT_EQ (block.bytes[i], 0) << size;
            block.Fill ();
        }
    }
    for (Sized &block : blocks) Memory_Free (block.bytes);
    EXPECT_EQ (Memory_Live (), live);
}

// So many that whole chunks are taken from the system and given back, in three orders.
TEST_F (Memory, ManyBlocksKeepTheirBytesInWhateverOrderTheyGo) {
    static const size_t COUNT = 70001; // Prime, so that steps of any width come by every block.

    for (size_t width : {size_t (1), COUNT - 1, size_t (4099)}) {
        std::vector<Sized> blocks (COUNT, Sized {nullptr, 0, 0});
        for (size_t i = 0; i < COUNT; i++) {
            blocks[i].mark  = static_cast<unsigned char> (i);
            blocks[i].size  = i * 7 % 300;
            blocks[i].bytes = static_cast<unsigned char *> (Memory_Try (blocks[i].size));
            ASSERT_NE (blocks[i].bytes, nullptr);
            blocks[i].Fill ();
        }
        size_t wrong = 0;
        for (size_t i = 0, at = 0; i < COUNT; i++, at = (at + width) % COUNT) {
            wrong += !blocks[at].Is_Whole ();
            Memory_Free (blocks[at].bytes);
        }
        EXPECT_EQ (wrong, 0u) << width;
        EXPECT_EQ (Memory_Live (), live) << width;
    }
}

TEST_F (Memory, MoreBytesThanThereCanBeAreRefused) {
    for (volatile size_t less : {0, 1, 7, 15}) {
        char *old = Memory_Strdup (nullptr, HERE ("old", 1, 1), "kept");
        void *big = Memory_Malloc (nullptr, HERE ("big", 1, 1), 1000);
        EXPECT_EQ (Memory_Malloc (nullptr, HERE ("most", 1, 1), SIZE_MAX - less), nullptr);
        EXPECT_EQ (Memory_Calloc (nullptr, HERE ("most", 1, 1), SIZE_MAX - less), nullptr);
        EXPECT_EQ (Memory_Realloc (nullptr, HERE ("most", 1, 1), old, SIZE_MAX - less), nullptr);
        EXPECT_EQ (Memory_Realloc (nullptr, HERE ("most", 1, 1), big, SIZE_MAX - less), nullptr);
        EXPECT_STREQ (old, "kept");
        Memory_Free (old);
        Memory_Free (big);
    }
    EXPECT_EQ (Memory_Live (), live);
}

TEST_F (Memory, FailuresAreReportedWithTheFixedTexts) {
    Memory_Fail_At (1);
    EXPECT_EQ (Memory_Malloc (nullptr, HERE ("(*list)[line].name", 3, 8), 24), nullptr);
    EXPECT_EQ (Failure (), Line (__LINE__ - 1, "malloc (var=(*list)[line].name, dim=3x8)"));
    EXPECT_EQ (recorder.lines[0].kind, LOG_ERROR);

    recorder.Clear ();
    Memory_Fail_At (1);
    EXPECT_EQ (Memory_Calloc (nullptr, HERE ("cells", 3, 8), 24), nullptr);
    EXPECT_EQ (Failure (), Line (__LINE__ - 1, "calloc (var=cells, dim=3x8)"));

    recorder.Clear ();
    Memory_Fail_At (1);
    EXPECT_EQ (Memory_Strdup (nullptr, HERE ("text", 3, 8), "text"), nullptr);
    EXPECT_EQ (Failure (), Line (__LINE__ - 1, "strdup (var=text)"));
    EXPECT_EQ (Memory_Live (), live);
}

TEST_F (Memory, FailedEnlargingKeepsTheOldBlock) {
    char *old = Memory_Strdup (nullptr, HERE ("old", 1, 1), "kept");
    Memory_Fail_At (1);
    EXPECT_EQ (Memory_Realloc (nullptr, HERE ("old", 2, 8), old, 16), nullptr);
    EXPECT_EQ (Failure (), Line (__LINE__ - 1, "realloc (var=old, dim=2x8)"));
    EXPECT_STREQ (old, "kept");
    Memory_Free (old);
    EXPECT_EQ (Memory_Live (), live);
}

TEST_F (Memory, ATryThatFailsIsNotReported) {
    Memory_Fail_At (1);
    EXPECT_EQ (Memory_Try (10), nullptr);
    EXPECT_EQ (Memory_Failed (), 1);
    EXPECT_EQ (recorder.All (), "");
    EXPECT_EQ (Memory_Live (), live);
    void *block = Memory_Try (0);
    EXPECT_NE (block, nullptr);
    EXPECT_EQ (Memory_Live (), live + 1);
    Memory_Free (block);
}

TEST_F (Memory, TheChosenAllocationFailsAndNoOther) {
    Memory_Fail_At (3);
    void *blocks[4];
    for (void *&block : blocks) {
        EXPECT_EQ (Memory_Failed (), &block > &blocks[2]);
        block = Memory_Malloc (nullptr, HERE ("block", 1, 1), 1);
    }
    EXPECT_EQ (blocks[2], nullptr);
    EXPECT_EQ (Memory_Live (), live + 3);
    EXPECT_EQ (Memory_Failed (), 1);
    for (void *block : blocks) Memory_Free (block);
    Memory_Fail_At (0);
    EXPECT_EQ (Memory_Failed (), 0);
}

// Which of ten allocations failed, as digits.
static std::string Failing (Window window) {
    std::string failed;
    for (int i = 0; i < 10; i++) {
        void *block = Memory_Malloc (window, HERE ("block", 1, 1), 1);
        if (!block) failed += static_cast<char> ('0' + i);
        Memory_Free (block);
    }
    return failed;
}

TEST_F (Memory, SeveralAllocationsInARowFailOrAllFromOneOn) {
    Memory_Fail_From (3, 2);
    EXPECT_EQ (Failing (nullptr), "23");
    EXPECT_EQ (Memory_Failed (), 2);
    EXPECT_EQ (Failing (nullptr), "");
    Memory_Fail_From (7, 0);
    EXPECT_EQ (Failing (nullptr), "6789");
    EXPECT_EQ (Failing (nullptr), "0123456789");
    EXPECT_EQ (Memory_Failed (), 14);
    Memory_Fail_From (10, 3);
    EXPECT_EQ (Failing (nullptr), "9");
    EXPECT_EQ (Failing (nullptr), "01");
    Memory_Fail_From (5, 0);
    Memory_Fail_At (0);
    EXPECT_EQ (Failing (nullptr), "");
    EXPECT_EQ (Memory_Failed (), 0);
    EXPECT_EQ (Memory_Live (), live);
}

static int Disturb (Window, int, const char *) {
    System_Last_Error_Set (1);
    return 1;
}

// Writing the message may have changed it.
TEST_F (Memory, AFailureIsTheSystemsLastError) {
    Log_Sink_Set (Disturb);
    Memory_Fail_From (1, 0);
    Memory_Malloc (nullptr, HERE ("block", 1, 1), 1);
    EXPECT_EQ (System_Last_Error (), System_Memory_Error ());
    Memory_Calloc (nullptr, HERE ("block", 1, 1), 1);
    EXPECT_EQ (System_Last_Error (), System_Memory_Error ());
    Memory_Realloc (nullptr, HERE ("block", 1, 1), nullptr, 1);
    EXPECT_EQ (System_Last_Error (), System_Memory_Error ());
    Memory_Strdup (nullptr, HERE ("text", 0, 0), "text");
    EXPECT_EQ (System_Last_Error (), System_Memory_Error ());
    System_Last_Error_Set (1);
    Memory_Try (1);
    EXPECT_EQ (System_Last_Error (), System_Memory_Error ());
    EXPECT_STREQ (System_Error_Name (System_Memory_Error ()), "[ERROR_NOT_ENOUGH_MEMORY]");
}

TEST_F (Memory, WhatTheSystemRefusesIsReported) {
    volatile size_t too_much = SIZE_MAX / 2;
    EXPECT_EQ (Memory_Malloc (nullptr, HERE ("huge", 1, 1), too_much), nullptr);
    EXPECT_EQ (recorder.Count (LOG_ERROR, "malloc (var=huge, dim=1x1)"), 1);
}
