// Files around 2 GB, which are holes but for their first bytes: lengths and positions of a list are signed 32-bit numbers.
#include <gtest/gtest.h>

#include "attribute/attribute.h"
#include "compare/file_reader.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/many.h"
#include "tests/support/log_recorder.h"

// An element of the greatest length is really there, and more than can be read.
TEST (HostileSparse, FileThatIsTooLargeIsRefused) {
    Feed   feed;
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Header (&stream, 0x7FE0, 0x0010, "OB", MOST);
    uintmax_t there = stream.bytes.size () + MOST;
    for (uintmax_t size : {uintmax_t (MOST) + 1, uintmax_t (MOST) + 2, there, uintmax_t (5) << 30}) {
        std::string name = feed.Sparse ("large.dcm", stream, size);
        std::string said = "ERROR: file too large: " + std::to_string (size) +
                           " bytes, at most 2147483647 can be read\nfile: (" + name + ")\n";
        for (int batch : {1, 0}) {
            for (bool first : {true, false}) {
                Run_Result run = first ? feed.Run (name, feed.good, batch) : feed.Run (feed.good, name, batch);
                EXPECT_EQ (GOOD_ATTRIBUTES, run.count);
                EXPECT_EQ (said, run.warnings);
            }
            Run_Result run = feed.Run (name, name, batch);
            EXPECT_EQ (0, run.count);
            EXPECT_EQ (said + said, run.warnings);
        }
        EXPECT_EQ (said, feed.Run (name, "", 0).warnings);
    }
}

// One byte less.
TEST (HostileSparse, LargestFileIsReadToItsLastByte) {
    Feed           feed;
    Stream         stream = Filled_To (MOST);
    std::string    name   = feed.Sparse ("largest.dcm", stream, MOST);
    SequenceCursor cursor = {};
    Log_Recorder   log;
    cursor.settings = &feed.settings;
    Attribute *list = File_Read_Elements (nullptr, &cursor, name.c_str ());
    Attribute *end  = list;
    while (end && end->next) end = end->next;
    ASSERT_NE (nullptr, end);
    EXPECT_EQ (stream.bytes.size (), end->pos_data);
    EXPECT_EQ (MOST, end->pos_data + static_cast<uint32_t> (end->length));
    ASSERT_NE (nullptr, end->data);
    EXPECT_EQ (0, end->data[end->length - 1]);
    List_Delete (nullptr, &cursor, &list);
    EXPECT_EQ (3, log.Count (LOG_WARNING, "tag lenght is odd")) << log.All ();
    EXPECT_EQ (3, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_EQ ("(0002,0010) (0010,0010) (5400,0100)[(5400,1010)]", feed.Outline (name));
    EXPECT_EQ (4, feed.Run (name, "", 0).count);
}
