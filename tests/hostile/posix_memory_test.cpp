// How much memory hostile files take: the peak of a process of its own that compares them.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <fstream>

#include "compare/comparison_run.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/many.h"
#include "tests/platform/posix_process.h"

static const long long MEGA = 1 << 20;
static const long long BASE = 8 * MEGA; // Buffers, texts and what the system rounds up.

// Bytes that a comparison takes at most; without anybody who keeps what it says.
static long long Peak (Feed *feed, const std::string &a, const std::string &b, int batch, int count) {
    long long peak = Peak_In_Child ([=] {
        if (Comparison_Start (nullptr, &feed->settings, a.c_str (), b.c_str (), batch) != count) abort ();
    });
    EXPECT_LE (0, peak) << "another count";
    return peak;
}

// Alone, as a pair in batch mode and in the window: less than three times the bytes of the files.
static void Expect_Thrice (const char *what, const Stream &stream, int attributes) {
    Feed        feed;
    std::string a = feed.Write (stream.bytes), b = feed.tables.directory.Write ("b.dcm", stream.bytes);
    long long   size = static_cast<long long> (stream.bytes.size ());
    EXPECT_LE (MEGA, size);
    EXPECT_GT (3 * size + BASE, Peak (&feed, a, "", 0, attributes)) << what;
    EXPECT_GT (3 * size + BASE, Peak (&feed, a, feed.good, 1, feed.Run (a, feed.good, 1).count)) << what;
    EXPECT_GT (3 * 2 * size + BASE, Peak (&feed, a, b, 1, 0)) << what;
    EXPECT_GT (3 * 2 * size + BASE, Peak (&feed, a, b, 0, 0)) << what;
}

static std::string Repeated (const char *text, size_t size) {
    std::string all;
    while (all.size () < size) all += text;
    return all;
}

static Stream One_Value (uint16_t group, uint16_t element, const char *vr, const std::string &value) {
    Stream stream = Stream_Begin_File (IMPLICIT_LITTLE);
    Stream_Add_Bytes (&stream, group, element, vr, value);
    return stream;
}

TEST (HostileMemory, LargeValuesTakeLessThanThreeTimesTheirFile) {
    static const size_t SIZE = 12 << 20;

    Expect_Thrice ("text", One_Value (0x0010, 0x4000, "LT", std::string (SIZE, 'x')), 2);
    Expect_Thrice ("texts", One_Value (0x0008, 0x0070, "LO", Repeated ("ab\\", SIZE)), 2);
    Expect_Thrice ("numbers as texts", One_Value (0x0018, 0x0050, "DS", Repeated ("1\\", SIZE)), 2);
    Expect_Thrice ("numbers", One_Value (0x0028, 0x0010, "US", std::string (SIZE, 'x')), 2);
    Expect_Thrice ("words", One_Value (0x7FE0, 0x0010, "OW", std::string (SIZE, 'x')), 2);
    Expect_Thrice ("unknown", One_Value (0x0009, 0x1001, "UN", std::string (SIZE, 'x')), 2);
}

TEST (HostileMemory, ManyValuesTakeLessThanThreeTimesTheirFile) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    for (int i = 0; i < 4000; i++)
        Stream_Add_Bytes (&stream, 0x0011, static_cast<uint16_t> (0x1000 + i), "LO", std::string (1000, 'x'));
    Expect_Thrice ("values of 1,000 bytes", stream, 4001);
}

// An element without value has 8 bytes in its file and is a record in memory, in the window one of the merged list and a
// row, too: that is more than three times the file, and must not grow.
TEST (HostileMemory, SmallestElementsTakeTheirRecords) {
    for (Order order : {ASCENDING, DESCENDING, ALL_EQUAL}) {
        SCOPED_TRACE (order);
        Feed        feed;
        std::string a = feed.Write (Elements_In (order, MANY).bytes);
        EXPECT_GT (200LL * MANY + BASE, Peak (&feed, a, feed.good, 1, feed.Run (a, feed.good, 1).count));
        EXPECT_GT (500LL * MANY + BASE, Peak (&feed, a, "", 0, MANY + 1));
        EXPECT_GT (400LL * MANY + BASE, Peak (&feed, a, a, 1, 0));
        EXPECT_GT (800LL * MANY + BASE, Peak (&feed, a, a, 0, 0));
    }
    Feed        feed;
    std::string items = feed.Write (Empty_Items (MANY, true).bytes);
    EXPECT_GT (250LL * MANY + BASE, Peak (&feed, items, items, 0, 0));
}

// So is a sequence that has nothing but another one, with 20 bytes in the file.
TEST (HostileMemory, NestedSequencesTakeTheirRecords) {
    static const int COUNT = 6 * DEEP;

    Feed        feed;
    std::string a = feed.Write (Nested_Sequences (COUNT, true).bytes);
    EXPECT_GT (200LL * COUNT + BASE, Peak (&feed, a, "", 0, COUNT + 3));
    EXPECT_GT (200LL * COUNT + BASE, Peak (&feed, a, feed.good, 1, feed.Run (a, feed.good, 1).count));
    EXPECT_GT (400LL * COUNT + BASE, Peak (&feed, a, a, 1, 0));
    EXPECT_GT (400LL * COUNT + BASE, Peak (&feed, a, a, 0, 0));
}

// The last byte of 2 GB counts, and what has been looked at is given back.
TEST (HostileMemory, LargestFilesAreComparedInLittle) {
    Feed         feed;
    std::string  a = feed.Sparse ("a.dcm", Filled_To (MOST), MOST), b = feed.Sparse ("b.dcm", Filled_To (MOST), MOST);
    std::fstream file (b, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp (MOST - 1);
    file.put ('x');
    file.close ();
    EXPECT_GT (64 * MEGA, Peak (&feed, a, b, 1, 1));
}
