#include "util/file.h"

#include <string.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

static unsigned char Pattern (size_t place) { return static_cast<unsigned char> (place * 7 + place / 251); }

class FileReading : public testing::Test {
protected:
    void Open (size_t size) {
        std::vector<unsigned char> bytes (size);
        for (size_t i = 0; i < size; i++) bytes[i] = Pattern (i);
        file = File_Open (directory.Write ("file", bytes).c_str ());
        ASSERT_NE (file, nullptr);
    }

    // Reads count bytes and compares them with what stands at the place; gives what File_Read gave.
    int64_t Read (size_t place, size_t count) {
        std::vector<unsigned char> bytes (count + 1, 0xEE);
        int64_t                    got = File_Read (file, bytes.data (), count);
        for (int64_t i = 0; i < got; i++)
            if (bytes[static_cast<size_t> (i)] != Pattern (place + static_cast<size_t> (i)))
                ADD_FAILURE () << place << "+" << i;
        EXPECT_EQ (bytes[count], 0xEE);
        return got;
    }

    void TearDown () override {
        File_Close (file);
        for (int i = 0; i < FILE_OPERATIONS; i++) File_Fail_At (static_cast<File_Operation> (i), 0, 0);
    }

    Temporary_Directory directory;
    File               *file = nullptr;
};

TEST_F (FileReading, FromFrontToBackInSmallSteps) {
    Open (3 * FILE_BUFFER_SIZE + 11);
    size_t place = 0;
    for (size_t step = 1; place + step <= 3 * FILE_BUFFER_SIZE + 11; place += step, step = step % 1000 + 1) {
        ASSERT_EQ (File_Tell (file), static_cast<int64_t> (place));
        ASSERT_EQ (Read (place, step), static_cast<int64_t> (step));
    }
    EXPECT_EQ (file->size, static_cast<int64_t> (3 * FILE_BUFFER_SIZE + 11));
}

TEST_F (FileReading, AcrossTheBordersOfTheBuffer) {
    Open (5 * FILE_BUFFER_SIZE);
    const size_t border   = FILE_BUFFER_SIZE;
    const size_t counts[] = {1, 2, 3, border - 1, border, border + 1, 2 * border, 3 * border - 5};
    for (size_t start : {size_t (0), size_t (1), border - 2, border - 1, border, border + 1})
        for (size_t first : {size_t (0), size_t (1), size_t (100), border - 1})
            for (size_t count : counts) {
                ASSERT_EQ (File_Seek (file, static_cast<int64_t> (start)), 1);
                ASSERT_EQ (Read (start, first), static_cast<int64_t> (first));
                size_t  place    = start + first;
                int64_t expected = static_cast<int64_t> (std::min (count, 5 * border - place));
                ASSERT_EQ (Read (place, count), expected);
                ASSERT_EQ (File_Tell (file), static_cast<int64_t> (place) + expected);
            }
}

TEST_F (FileReading, ShortAtTheEndThenNothing) {
    Open (10);
    EXPECT_EQ (Read (0, 8), 8);
    EXPECT_EQ (Read (8, 8), 2);
    EXPECT_EQ (File_Tell (file), 10);
    EXPECT_EQ (Read (10, 8), 0);
    EXPECT_EQ (Read (10, 0), 0);
    EXPECT_EQ (File_Seek (file, 4), 1);
    EXPECT_EQ (Read (4, 0), 0);
    EXPECT_EQ (Read (4, 100000), 6);
}

TEST_F (FileReading, EmptyFile) {
    Open (0);
    EXPECT_EQ (file->size, 0);
    EXPECT_EQ (Read (0, 1), 0);
    EXPECT_EQ (Read (0, 100000), 0);
}

TEST_F (FileReading, SeekGoesAnywhereButBelowZero) {
    Open (100);
    EXPECT_EQ (File_Seek (file, -1), 0);
    EXPECT_EQ (File_Seek (file, INT64_MIN), 0);
    EXPECT_EQ (File_Tell (file), 0);
    EXPECT_EQ (File_Seek (file, 99), 1);
    EXPECT_EQ (Read (99, 1), 1);
    EXPECT_EQ (File_Seek (file, 1), 1);
    EXPECT_EQ (Read (1, 5), 5);
    EXPECT_EQ (File_Seek (file, 1000), 1);
    EXPECT_EQ (File_Tell (file), 1000);
    EXPECT_EQ (Read (1000, 5), 0);
    EXPECT_EQ (File_Seek (file, INT64_MAX), 1);
    EXPECT_EQ (Read (0, 5), 0);
    EXPECT_EQ (Read (0, 100000), 0);
    EXPECT_EQ (File_Tell (file), INT64_MAX);
}

TEST_F (FileReading, MissingFileSaysWhy) {
    EXPECT_EQ (File_Open (directory.File ("none").c_str ()), nullptr);
    EXPECT_STREQ (System_Error_Name (System_Last_Error ()), "[ERROR_FILE_NOT_FOUND]");
    EXPECT_EQ (File_Open (""), nullptr);
}

TEST_F (FileReading, DirectoryIsNoFile) {
    EXPECT_EQ (File_Open (directory.path.c_str ()), nullptr);
    EXPECT_NE (System_Last_Error (), 0u);
}

TEST_F (FileReading, FullMemoryIsReportedAndNothingStaysOpen) {
    Log_Recorder recorder;
    std::string  name = directory.Write ("file", std::string ("text"));
    long         live = Memory_Live ();
    Memory_Fail_At (1);
    EXPECT_EQ (File_Open (name.c_str ()), nullptr);
    EXPECT_STREQ (System_Error_Name (System_Last_Error ()), "[ERROR_NOT_ENOUGH_MEMORY]");
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_EQ (Memory_Live (), live);
    ASSERT_EQ (recorder.Count (LOG_ERROR, "memory error in malloc (var=file, dim=1x"), 1);
    EXPECT_TRUE (std::filesystem::remove (name)); // Windows removes no open file.
    File_Close (nullptr);
}

// --- mapping ---------------------------------------------------------------

TEST_F (FileReading, MapGivesTheNextBytesAndMovesOn) {
    Open (300000);
    System_Mapping first = {}, second = {};
    ASSERT_EQ (File_Seek (file, 12345), 1);
    ASSERT_EQ (File_Map (file, 100000, &first), 1);
    EXPECT_EQ (File_Tell (file), 112345);
    EXPECT_EQ (Read (112345, 10), 10);
    ASSERT_EQ (File_Map (file, 300000 - 112355, &second), 1);
    EXPECT_EQ (Read (300000, 1), 0);
    File_Close (file);
    file = nullptr;
    for (size_t i = 0; i < 100000; i++) ASSERT_EQ (first.bytes[i], Pattern (12345 + i));
    for (size_t i = 0; i < 300000 - 112355; i++) ASSERT_EQ (second.bytes[i], Pattern (112355 + i));
    System_File_Unmap (&first);
    EXPECT_EQ (second.bytes[0], Pattern (112355));
    System_File_Unmap (&second);
    EXPECT_EQ (System_Map_Faults (), 0);
}

TEST_F (FileReading, MapBeyondTheEndIsRefused) {
    Open (100);
    System_Mapping mapping = {};
    EXPECT_EQ (File_Map (file, 101, &mapping), 0);
    EXPECT_EQ (File_Map (file, SIZE_MAX, &mapping), 0);
    EXPECT_EQ (File_Map (file, 0, &mapping), 0);
    File_Seek (file, 101);
    EXPECT_EQ (File_Map (file, 1, &mapping), 0);
    EXPECT_EQ (File_Tell (file), 101);
    File_Seek (file, 99);
    EXPECT_EQ (File_Map (file, 2, &mapping), 0);
    EXPECT_EQ (File_Map (file, 1, &mapping), 1);
    EXPECT_EQ (mapping.bytes[0], Pattern (99));
    System_File_Unmap (&mapping);
}

TEST_F (FileReading, ManyMappingsLiveAtOnce) {
    Open (5000);
    std::vector<System_Mapping> mappings (5000);
    for (System_Mapping &mapping : mappings) ASSERT_EQ (File_Map (file, 1, &mapping), 1);
    File_Close (file);
    file = nullptr;
    for (size_t i = 0; i < mappings.size (); i++) ASSERT_EQ (mappings[i].bytes[0], Pattern (i));
    for (System_Mapping &mapping : mappings) System_File_Unmap (&mapping);
}

// --- the fault instrument --------------------------------------------------

TEST_F (FileReading, FaultsHitTheChosenOperationOnce) {
    Open (100);
    System_Mapping mapping = {};
    File_Fail_At (FILE_READ, 2, 5);
    EXPECT_EQ (Read (0, 4), 4);
    System_Last_Error_Set (0);
    EXPECT_EQ (Read (4, 4), -1);
    EXPECT_EQ (System_Last_Error (), 5u);
    EXPECT_EQ (File_Tell (file), 4);
    EXPECT_EQ (Read (4, 4), 4);

    File_Fail_At (FILE_SEEK, 1, 5);
    EXPECT_EQ (File_Seek (file, 1), 0);
    EXPECT_EQ (File_Tell (file), 8);
    EXPECT_EQ (File_Seek (file, 1), 1);

    File_Fail_At (FILE_TELL, 1, 5);
    EXPECT_EQ (File_Tell (file), -1);
    EXPECT_EQ (File_Tell (file), 1);

    File_Fail_At (FILE_MAP, 1, 5);
    EXPECT_EQ (File_Map (file, 4, &mapping), 0);
    EXPECT_EQ (File_Tell (file), 1);
    EXPECT_EQ (File_Map (file, 4, &mapping), 1);
    System_File_Unmap (&mapping);

    File_Fail_At (FILE_OPEN, 1, 5);
    EXPECT_EQ (File_Open (directory.File ("file").c_str ()), nullptr);
    EXPECT_EQ (System_Last_Error (), 5u);
    File *again = File_Open (directory.File ("file").c_str ());
    EXPECT_NE (again, nullptr);
    File_Close (again);
}

TEST_F (FileReading, FaultOfErrorZeroIsAnEarlyEnd) {
    Open (100);
    File_Fail_At (FILE_READ, 1, 0);
    EXPECT_EQ (Read (0, 9), 4);
    EXPECT_EQ (File_Tell (file), 4);
    File_Fail_At (FILE_READ, 1, 0);
    EXPECT_EQ (Read (4, 1), 0);
    EXPECT_EQ (Read (4, 1), 1);
}

TEST_F (FileReading, FaultsCanBeTakenBack) {
    Open (100);
    File_Fail_At (FILE_READ, 1, 5);
    File_Fail_At (FILE_READ, 0, 0);
    EXPECT_EQ (Read (0, 9), 9);
}
