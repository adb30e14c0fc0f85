#include "nema/NEMA_Read_Data.h"

#include <gtest/gtest.h>

#include <string.h>

#include "attribute/value.h"
#include "tests/nema/opened_source.h"
#include "tests/support/log_recorder.h"

static const unsigned ERROR_CODE = 5;

// --- numbers ---------------------------------------------------------------

// Each at an odd address, as a stream may put it.
struct Unaligned {
    explicit Unaligned (const char *hex) : bytes (Bytes (1) + Hex (hex)) {}
    const uint8_t *At () const { return bytes.data () + 1; }
    Bytes          bytes;
};

TEST (NemaReadData, ShortIsExchangedWhenExactlyOneBitIsSet) {
    Unaligned number ("34 12");
    EXPECT_EQ (Swap_Short (0, number.At ()), 0x1234);
    EXPECT_EQ (Swap_Short (MODE_BIG_ENDIAN, number.At ()), 0x3412);
    EXPECT_EQ (Swap_Short (MODE_SWAB, number.At ()), 0x3412);
    EXPECT_EQ (Swap_Short (MODE_BIG_ENDIAN | MODE_SWAB, number.At ()), 0x1234);
    EXPECT_EQ (Swap_Short (0xFC, number.At ()), 0x1234);
}

TEST (NemaReadData, LongFollowsBothBits) {
    Unaligned number ("44 33 22 11");
    EXPECT_EQ (Swap_Long (0, number.At ()), 0x11223344u);
    EXPECT_EQ (Swap_Long (MODE_BIG_ENDIAN, number.At ()), 0x44332211u);
    EXPECT_EQ (Swap_Long (MODE_SWAB, number.At ()), 0x22114433u);
    EXPECT_EQ (Swap_Long (MODE_BIG_ENDIAN | MODE_SWAB, number.At ()), 0x33441122u);
}

TEST (NemaReadData, FloatFollowsBothBits) {
    // 1.5 is 3FC00000.
    EXPECT_EQ (Swap_Float (0, Unaligned ("00 00 C0 3F").At ()), 1.5f);
    EXPECT_EQ (Swap_Float (MODE_BIG_ENDIAN, Unaligned ("3F C0 00 00").At ()), 1.5f);
    EXPECT_EQ (Swap_Float (MODE_SWAB, Unaligned ("00 00 3F C0").At ()), 1.5f);
    EXPECT_EQ (Swap_Float (MODE_BIG_ENDIAN | MODE_SWAB, Unaligned ("C0 3F 00 00").At ()), 1.5f);
}

TEST (NemaReadData, DoubleFollowsBothBits) {
    // -1.25 and a bit at the other end is BFF4000000000100.
    double number = -1.25 - 256 * 2.220446049250313e-16;
    EXPECT_EQ (Swap_Double (0, Unaligned ("00 01 00 00 00 00 F4 BF").At ()), number);
    EXPECT_EQ (Swap_Double (MODE_BIG_ENDIAN, Unaligned ("BF F4 00 00 00 00 01 00").At ()), number);
    EXPECT_EQ (Swap_Double (MODE_SWAB, Unaligned ("01 00 00 00 00 00 BF F4").At ()), number);
    EXPECT_EQ (Swap_Double (MODE_BIG_ENDIAN | MODE_SWAB, Unaligned ("F4 BF 00 00 00 00 00 01").At ()), number);
}

// --- reading ---------------------------------------------------------------

class NemaReadDataFrom : public testing::TestWithParam<int> {
protected:
    Log_Recorder log {1};

    std::string End_Report (const Opened_Source &opened, int obtained, int wanted) const {
        return "End of File while reading: (" + std::to_string (obtained) + " /vs/ " + std::to_string (wanted) + ") (" +
               opened.Name () + ")\n";
    }

    // The location of a failure comes first.
    void Expect_Location (const char *module) const {
        ASSERT_FALSE (log.lines.empty ());
        EXPECT_EQ (log.lines[0].kind, LOG_TRACE1);
        EXPECT_EQ (log.lines[0].text.rfind (std::string ("file:") + module + " line:", 0), 0u) << log.All ();
    }
};

INSTANTIATE_TEST_SUITE_P (Sources, NemaReadDataFrom, testing::Values (NEMA_FILE, NEMA_MEMORY, 7),
                          [] (const auto &kind) {
                              return kind.param == NEMA_FILE ? "File" : kind.param == NEMA_MEMORY ? "Memory" : "Other";
                          });

TEST_P (NemaReadDataFrom, BytesAreRawInEveryMode) {
    for (uint8_t mode : std::initializer_list<uint8_t> {0, 1, 2, 3, 8, 9, 0x13}) {
        Opened_Source opened (GetParam (), Hex ("01 02 03 04"));
        uint8_t       bytes[3] = {};
        EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, mode, 3, bytes), 1);
        EXPECT_EQ (Bytes (bytes, bytes + 3), Hex ("01 02 03"));
        EXPECT_EQ (opened.Position (), 3);
    }
    EXPECT_EQ (log.All (), "");
}

TEST_P (NemaReadDataFrom, NumbersFollowTheModeAndAdvance) {
    Opened_Source opened (GetParam (), Hex ("34 12 12 34 44 33 22 11 11 22 33 44"));
    uint16_t      number     = 0;
    uint32_t      long_value = 0;
    EXPECT_EQ (NEMA_Read_Short (nullptr, &opened.source, 0, &number), 1);
    EXPECT_EQ (number, 0x1234);
    EXPECT_EQ (NEMA_Read_Short (nullptr, &opened.source, MODE_BIG_ENDIAN, &number), 1);
    EXPECT_EQ (number, 0x1234);
    EXPECT_EQ (NEMA_Read_Long (nullptr, &opened.source, 0, &long_value), 1);
    EXPECT_EQ (long_value, 0x11223344u);
    EXPECT_EQ (NEMA_Read_Long (nullptr, &opened.source, MODE_BIG_ENDIAN, &long_value), 1);
    EXPECT_EQ (long_value, 0x11223344u);
    EXPECT_EQ (opened.Position (), 12);
    EXPECT_EQ (log.All (), "");
}

TEST_P (NemaReadDataFrom, ShortReadReportsBothCounts) {
    {
        Opened_Source opened (GetParam (), Hex ("01 02 03"));
        uint8_t       bytes[5];
        EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 5, bytes), 0);
        EXPECT_EQ (opened.Position (), 3);
        Expect_Location ("NEMA_Read_Data");
        EXPECT_EQ (log.lines.size (), 2u);
        EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 3, 5));
    }
    log.Clear ();
    {
        Opened_Source opened (GetParam (), Hex ("01"));
        uint16_t      number = 77;
        EXPECT_EQ (NEMA_Read_Short (nullptr, &opened.source, 0, &number), 0);
        EXPECT_EQ (number, 77);
        EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 1, 2));
    }
    log.Clear ();
    {
        Opened_Source opened (GetParam (), {});
        uint32_t      number = 77;
        EXPECT_EQ (NEMA_Read_Long (nullptr, &opened.source, 0, &number), 0);
        EXPECT_EQ (number, 77u);
        EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 0, 4));
    }
}

TEST_P (NemaReadDataFrom, ReportsDoNotDependOnTheSettings) {
    Opened_Source opened (GetParam (), {});
    opened.source.settings = nullptr;
    uint8_t byte;
    EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &byte), 0);
    EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 0, 1));
}

TEST_P (NemaReadDataFrom, SomeDeliversWhatIsThereInSilence) {
    Opened_Source opened (GetParam (), Hex ("01 02 03"));
    uint8_t       bytes[4];
    EXPECT_EQ (NEMA_Read_Some (&opened.source, bytes, 2), 2);
    EXPECT_EQ (NEMA_Read_Some (&opened.source, bytes, 4), 1);
    EXPECT_EQ (bytes[0], 3);
    EXPECT_EQ (NEMA_Read_Some (&opened.source, bytes, 4), 0);
    EXPECT_EQ (opened.Position (), 3);
    EXPECT_EQ (log.All (), "");
}

// Fields that straddle the end of a file's buffer.
TEST_P (NemaReadDataFrom, ReadsAcrossEveryBufferEdge) {
    Bytes content (3 * FILE_BUFFER_SIZE + 11);
    for (size_t i = 0; i < content.size (); i++) content[i] = static_cast<unsigned char> (i * 7 + i / 256);
    Opened_Source opened (GetParam (), content);
    size_t        place = 0;
    for (size_t size = 1; place + size <= content.size (); size = size % 5 + 1) {
        uint8_t bytes[8] = {};
        ASSERT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, size, bytes), 1);
        ASSERT_EQ (memcmp (bytes, &content[place], size), 0) << place;
        place += size;
        ASSERT_EQ (opened.Position (), static_cast<int64_t> (place));
    }
}

TEST (NemaReadData, MemoryIsCalledByItsName) {
    Log_Recorder  log;
    Opened_Source opened (NEMA_MEMORY, {});
    opened.source.name = "a block";
    uint8_t byte;
    EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &byte), 0);
    EXPECT_EQ (log.Text (LOG_WARNING), "End of File while reading: (0 /vs/ 1) (a block)\n");
}

TEST (NemaReadData, MemoryWithoutBaseIsEmpty) {
    Log_Recorder log;
    NEMA_Source  source = {};
    source.kind         = NEMA_MEMORY;
    source.size         = 100;
    uint32_t number;
    EXPECT_EQ (NEMA_Read_Long (nullptr, &source, 0, &number), 0);
    EXPECT_EQ (log.Text (LOG_WARNING), "End of File while reading: (0 /vs/ 4) (memory)\n");
}

TEST (NemaReadData, ReadErrorIsReportedWithTheSystemsText) {
    Opened_Source opened (NEMA_FILE, Hex ("01 02 03 04 05 06 07 08"));
    uint8_t       bytes[4];
    uint16_t      number;
    uint32_t      long_value;
    for (int operation = 0; operation < 3; operation++) {
        Log_Recorder log (1);
        File_Fail_At (FILE_READ, 1, ERROR_CODE);
        int result = operation == 0   ? NEMA_Read_Bytes (nullptr, &opened.source, 0, 4, bytes)
                     : operation == 1 ? NEMA_Read_Short (nullptr, &opened.source, 0, &number)
                                      : NEMA_Read_Long (nullptr, &opened.source, 0, &long_value);
        EXPECT_EQ (result, 0);
        ASSERT_EQ (log.lines.size (), 3u);
        EXPECT_EQ (log.lines[0].kind, LOG_TRACE1);
        EXPECT_EQ (log.lines[0].text.rfind ("file:NEMA_Read_Data line:", 0), 0u);
        EXPECT_EQ (log.lines[1].kind, LOG_WARNING);
        EXPECT_EQ (log.lines[1].text, "Error reading file " + opened.Name ());
        EXPECT_EQ (log.lines[2].kind, LOG_WARNING);
        EXPECT_EQ (log.lines[2].text, Error_Text_Of (ERROR_CODE));
    }
}

// A log that writes files changes the system's last error with every line.
static std::vector<std::string> disturbed;

static int Disturbing_Sink (Window, int, const char *text) {
    disturbed.push_back (text);
    System_Last_Error_Set (2);
    return 1;
}

TEST (NemaReadData, ErrorTextSurvivesTheLinesBeforeIt) {
    Log_Recorder  restores (1);
    Opened_Source opened (NEMA_FILE, Hex ("01 02"));
    std::string   expected = Error_Text_Of (ERROR_CODE);
    uint16_t      number;
    Log_Sink_Set (Disturbing_Sink);

    disturbed.clear ();
    File_Fail_At (FILE_READ, 1, ERROR_CODE);
    EXPECT_EQ (NEMA_Read_Short (nullptr, &opened.source, 0, &number), 0);
    ASSERT_EQ (disturbed.size (), 3u);
    EXPECT_EQ (disturbed[2], expected);

    disturbed.clear ();
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    EXPECT_EQ (NEMA_Move (nullptr, &opened.source, 1, "m", 1), 0);
    ASSERT_EQ (disturbed.size (), 4u);
    EXPECT_EQ (disturbed[2], expected);
}

// --- values ----------------------------------------------------------------

TEST_P (NemaReadDataFrom, BufferBelongsToTheTarget) {
    Opened_Source opened (GetParam (), Hex ("01 02 03 04 05"));
    long          live   = Memory_Live ();
    Attribute     target = {};
    EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, MODE_EXPLICIT | MODE_BIG_ENDIAN, 4, &target), 1);
    ASSERT_NE (target.data, nullptr);
    EXPECT_EQ (Bytes (target.data, target.data + 4), Hex ("01 02 03 04"));
    EXPECT_EQ (opened.Position (), 4);
    EXPECT_EQ (target.length, 0);
    EXPECT_EQ (Memory_Live (), live + 1);
    EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, 1, &target), 1);
    EXPECT_EQ (target.data[0], 5);
    EXPECT_EQ (Memory_Live (), live + 1);
    Value_Release (&target);
    EXPECT_EQ (Memory_Live (), live);
    EXPECT_EQ (log.All (), "");
}

TEST_P (NemaReadDataFrom, BufferWithSwabExchangesEveryPair) {
    for (uint8_t mode : std::initializer_list<uint8_t> {2, 3, 0xA, 0xB}) {
        Opened_Source opened (GetParam (), Hex ("01 02 03 04 05"));
        Attribute     target = {};
        ASSERT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, mode, 5, &target), 1);
        EXPECT_EQ (Bytes (target.data, target.data + 5), Hex ("02 01 04 03 05"));
        Value_Release (&target);
    }
}

TEST_P (NemaReadDataFrom, BufferBeyondTheEndAsksForNoMemory) {
    for (int32_t length : {6, 65536, 0x7FFFFFFF}) {
        Opened_Source opened (GetParam (), Hex ("01 02 03 04 05"));
        uint8_t       first;
        ASSERT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &first), 1);
        Attribute target = {};
        log.Clear ();
        Memory_Fail_At (1);
        EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, length, &target), 0);
        EXPECT_EQ (Memory_Failed (), 0);
        Memory_Fail_At (0);
        EXPECT_EQ (target.data, nullptr);
        EXPECT_EQ (opened.Position (), 5);
        Expect_Location ("NEMA_Read_Data");
        EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 4, length));
    }
}

TEST_P (NemaReadDataFrom, BufferOfNoLengthIsRefused) {
    Opened_Source opened (GetParam (), Hex ("01 02"));
    Attribute     target = {};
    for (int32_t length : {0, -1, INT32_MIN}) {
        EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, length, &target), 0);
        EXPECT_EQ (target.data, nullptr);
        EXPECT_EQ (opened.Position (), 0);
    }
}

TEST_P (NemaReadDataFrom, BufferReportsFailedMemory) {
    Opened_Source opened (GetParam (), Hex ("01 02 03 04 05 06"));
    Attribute     target = {};
    long          live   = Memory_Live ();
    Memory_Fail_At (1);
    EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, 6, &target), 0);
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_EQ (target.data, nullptr);
    EXPECT_EQ (Memory_Live (), live);
    EXPECT_EQ (log.Count (LOG_ERROR, "of NEMA_Read_Data \nmemory error in malloc (var=buf, dim=6x1)"), 1) << log.All ();

    EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, 6, &target), 1);
    Value_Release (&target);
}

TEST_P (NemaReadDataFrom, BufferIsMappedFromItsLengthOn) {
    Bytes content (2 * NEMA_MAP_LENGTH + 5);
    for (size_t i = 0; i < content.size (); i++) content[i] = static_cast<unsigned char> (i % 251);
    for (int32_t length : {NEMA_MAP_LENGTH - 1, static_cast<int32_t> (NEMA_MAP_LENGTH), NEMA_MAP_LENGTH + 1}) {
        Opened_Source opened (GetParam (), content);
        uint8_t       skipped[3];
        ASSERT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 3, skipped), 1);
        Attribute target = {};
        ASSERT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 9, length, &target), 1);
        EXPECT_EQ (Value_Is_Mapped (&target), GetParam () == NEMA_FILE && length >= NEMA_MAP_LENGTH);
        EXPECT_EQ (memcmp (target.data, &content[3], static_cast<size_t> (length)), 0);
        EXPECT_EQ (opened.Position (), 3 + length);
        uint8_t next;
        ASSERT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &next), 1);
        EXPECT_EQ (next, content[static_cast<size_t> (3 + length)]);
        Value_Release (&target);
    }
    EXPECT_EQ (log.All (), "");
}

TEST (NemaReadData, SwabKeepsALargeValueFromBeingMapped) {
    Opened_Source opened (NEMA_FILE, Bytes (NEMA_MAP_LENGTH - 1, 1) + Hex ("02 03"));
    Attribute     target = {};
    ASSERT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, MODE_SWAB, NEMA_MAP_LENGTH, &target), 1);
    EXPECT_EQ (Value_Is_Mapped (&target), 0);
    EXPECT_EQ (target.data[NEMA_MAP_LENGTH - 2], 2);
    EXPECT_EQ (target.data[NEMA_MAP_LENGTH - 1], 1);
    Value_Release (&target);
}

TEST (NemaReadData, ValueThatCannotBeMappedIsRead) {
    Log_Recorder  log;
    Opened_Source opened (NEMA_FILE, Bytes (NEMA_MAP_LENGTH, 7));
    Attribute     target = {};
    File_Fail_At (FILE_MAP, 1, ERROR_CODE);
    ASSERT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, NEMA_MAP_LENGTH, &target), 1);
    EXPECT_EQ (Value_Is_Mapped (&target), 0);
    EXPECT_EQ (target.data[NEMA_MAP_LENGTH - 1], 7);
    EXPECT_EQ (opened.Position (), NEMA_MAP_LENGTH);
    EXPECT_EQ (log.All (), "");
    Value_Release (&target);
}

TEST (NemaReadData, ValueWhoseMappingFindsNoMemoryIsRead) {
    Log_Recorder  log;
    Opened_Source opened (NEMA_FILE, Bytes (NEMA_MAP_LENGTH, 7));
    Attribute     target = {};
    Memory_Fail_At (1);
    ASSERT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, NEMA_MAP_LENGTH, &target), 1);
    EXPECT_EQ (Memory_Failed (), 1);
    Memory_Fail_At (0);
    EXPECT_EQ (Value_Is_Mapped (&target), 0);
    EXPECT_EQ (log.Count (LOG_ERROR), 1);
    Value_Release (&target);
}

TEST (NemaReadData, FailedReadReleasesTheBuffer) {
    for (unsigned error : {0u, ERROR_CODE}) {
        Log_Recorder  log;
        Opened_Source opened (NEMA_FILE, Bytes (100, 7));
        Attribute     target = {};
        long          live   = Memory_Live ();
        File_Fail_At (FILE_READ, 1, error);
        EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, 100, &target), 0);
        EXPECT_EQ (target.data, nullptr);
        EXPECT_EQ (target.block, nullptr);
        EXPECT_EQ (Memory_Live (), live);
        EXPECT_TRUE (log.Contains (error ? "Error reading file " : "End of File while reading: (50 /vs/ 100) ("));
    }
}

TEST_P (NemaReadDataFrom, LeftIsCheckedExactly) {
    Opened_Source opened (GetParam (), Hex ("01 02 03"));
    EXPECT_EQ (NEMA_Check_Left (nullptr, &opened.source, 0), 1);
    EXPECT_EQ (NEMA_Check_Left (nullptr, &opened.source, 3), 1);
    EXPECT_EQ (opened.Position (), 0);
    EXPECT_EQ (log.All (), "");
    EXPECT_EQ (NEMA_Check_Left (nullptr, &opened.source, 4), 0);
    EXPECT_EQ (opened.Position (), 3);
    EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 3, 4));
}

TEST (NemaReadData, WhatIsMissingIsReportedAlsoWhenThePositionIsUnknown) {
    Log_Recorder  log;
    Opened_Source opened (NEMA_FILE, Hex ("01 02 03"));
    File_Fail_At (FILE_TELL, 1, ERROR_CODE);
    EXPECT_EQ (NEMA_Check_Left (nullptr, &opened.source, 4), 0);
    EXPECT_EQ (log.Text (LOG_WARNING), "End of File while reading: (3 /vs/ 4) (" + opened.Name () + ")\n");
    EXPECT_EQ (opened.Position (), 0) << "nobody knows where the end would be";
}

TEST_P (NemaReadDataFrom, ViewIsOfBytesAtHandOnly) {
    Opened_Source opened (GetParam (), Hex ("01 02 03"));
    uint8_t       byte;
    ASSERT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &byte), 1); // Into the buffer, if there is one.
    ASSERT_NE (NEMA_View (&opened.source, 2), nullptr);
    EXPECT_EQ (NEMA_View (&opened.source, 2)[1], 3);
    EXPECT_EQ (NEMA_View (&opened.source, 3), nullptr);
    EXPECT_EQ (opened.Position (), 1);
    NEMA_Advance (&opened.source, 2);
    EXPECT_EQ (opened.Position (), 3);
    EXPECT_EQ (NEMA_View (&opened.source, 1), nullptr);
    EXPECT_EQ (NEMA_Seek (&opened.source, 1000), 1);
    EXPECT_EQ (NEMA_View (&opened.source, 1), nullptr) << "behind the end";
    EXPECT_EQ (log.All (), "");
}

TEST (NemaReadData, NothingOfAClosedFileOrNoMemoryIsAtHand) {
    Opened_Source closed (NEMA_FILE, Hex ("01 02 03"));
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    ASSERT_EQ (NEMA_Move (nullptr, &closed.source, 1, "m", 1), 0);
    EXPECT_EQ (NEMA_View (&closed.source, 1), nullptr);
    NEMA_Source none = {};
    none.kind        = NEMA_MEMORY;
    none.size        = 3;
    EXPECT_EQ (NEMA_View (&none, 1), nullptr);
}

// --- position --------------------------------------------------------------

TEST_P (NemaReadDataFrom, MovesAndTells) {
    Opened_Source opened (GetParam (), Hex ("01 02 03"));
    EXPECT_EQ (NEMA_Tell (&opened.source), 0);
    EXPECT_EQ (NEMA_Seek (&opened.source, 2), 1);
    EXPECT_EQ (NEMA_Tell (&opened.source), 2);
    uint8_t byte;
    EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &byte), 1);
    EXPECT_EQ (byte, 3);
    EXPECT_EQ (NEMA_Seek (&opened.source, -1), 0);
    EXPECT_EQ (NEMA_Tell (&opened.source), 3);
    EXPECT_EQ (NEMA_Move (nullptr, &opened.source, 1, "m", 1), 1);
    EXPECT_EQ (NEMA_Tell (&opened.source), 1);
    EXPECT_EQ (log.All (), "");
}

TEST_P (NemaReadDataFrom, BehindTheEndNothingIsLeft) {
    Opened_Source opened (GetParam (), Hex ("01 02 03"));
    uint8_t       byte;
    EXPECT_EQ (NEMA_Seek (&opened.source, 1000), 1);
    EXPECT_EQ (NEMA_Tell (&opened.source), 1000);
    EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 1, &byte), 0);
    EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 0, 1));
    log.Clear ();
    Attribute target = {};
    EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, 2, &target), 0);
    EXPECT_EQ (log.Text (LOG_WARNING), End_Report (opened, 0, 2));
}

TEST (NemaReadData, MemoryEndsAtItsLastPossiblePosition) {
    Opened_Source opened (NEMA_MEMORY, Hex ("01 02 03"));
    EXPECT_EQ (NEMA_Seek (&opened.source, UINT32_MAX), 1);
    EXPECT_EQ (NEMA_Tell (&opened.source), static_cast<int64_t> (UINT32_MAX));
    EXPECT_EQ (NEMA_Seek (&opened.source, static_cast<int64_t> (UINT32_MAX) + 1), 0);
    EXPECT_EQ (NEMA_Tell (&opened.source), static_cast<int64_t> (UINT32_MAX));
}

TEST (NemaReadData, FailedTellIsBelowZero) {
    Opened_Source opened (NEMA_FILE, Hex ("01"));
    File_Fail_At (FILE_TELL, 1, ERROR_CODE);
    EXPECT_EQ (NEMA_Tell (&opened.source), -1);
    EXPECT_EQ (NEMA_Tell (&opened.source), 0);
}

TEST (NemaReadData, FailedSeekReportsNothingAndClosesNothing) {
    Log_Recorder  log (5);
    Opened_Source opened (NEMA_FILE, Hex ("01"));
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    EXPECT_EQ (NEMA_Seek (&opened.source, 1), 0);
    EXPECT_NE (opened.source.file, nullptr);
    EXPECT_EQ (log.All (), "");
}

TEST (NemaReadData, FailedMoveReportsAndClosesTheFile) {
    Log_Recorder log (1);
    long         live = Memory_Live ();
    {
        Opened_Source opened (NEMA_FILE, Hex ("01 02 03 04"));
        File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
        EXPECT_EQ (NEMA_Move (nullptr, &opened.source, 132, "some_module", 17), 0);
        EXPECT_EQ (opened.source.file, nullptr);
        EXPECT_EQ (Memory_Live (), live);
        ASSERT_EQ (log.lines.size (), 4u);
        EXPECT_EQ (log.lines[0].kind, LOG_TRACE1);
        EXPECT_EQ (log.lines[0].text, "file:some_module line:17");
        EXPECT_EQ (log.lines[1].kind, LOG_WARNING);
        EXPECT_EQ (log.lines[1].text, "\xF1\x04"
                                      "ERROR:\x02 while seeking pos 132");
        EXPECT_EQ (log.lines[2].kind, LOG_WARNING);
        EXPECT_EQ (log.lines[2].text, Error_Text_Of (ERROR_CODE));
        EXPECT_EQ (log.lines[3].kind, LOG_WARNING);
        EXPECT_EQ (log.lines[3].text, "file: (" + opened.Name () + ")");
    }
}

TEST (NemaReadData, ClosedFileFailsEveryOperation) {
    Log_Recorder  log (1);
    Opened_Source opened (NEMA_FILE, Bytes (10, 1));
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    ASSERT_EQ (NEMA_Move (nullptr, &opened.source, 1, "m", 1), 0);

    uint8_t   bytes[4];
    uint16_t  number;
    uint32_t  long_value;
    Attribute target = {};
    log.Clear ();
    EXPECT_EQ (NEMA_Tell (&opened.source), -1);
    EXPECT_EQ (NEMA_Seek (&opened.source, 0), 0);
    EXPECT_EQ (NEMA_Read_Some (&opened.source, bytes, 1), -1);
    EXPECT_EQ (log.All (), "");
    EXPECT_EQ (NEMA_Read_Bytes (nullptr, &opened.source, 0, 4, bytes), 0);
    EXPECT_EQ (NEMA_Read_Short (nullptr, &opened.source, 0, &number), 0);
    EXPECT_EQ (NEMA_Read_Long (nullptr, &opened.source, 0, &long_value), 0);
    EXPECT_EQ (NEMA_Check_Left (nullptr, &opened.source, 1), 0);
    EXPECT_EQ (NEMA_Read_Buffer (nullptr, &opened.source, 0, 4, &target), 0);
    EXPECT_EQ (log.Count (LOG_WARNING, "Error reading file " + opened.Name ()), 5);
    EXPECT_EQ (NEMA_Move (nullptr, &opened.source, 0, "m", 1), 0);
    EXPECT_EQ (log.Count (LOG_WARNING, "while seeking pos 0"), 1);
    EXPECT_EQ (target.data, nullptr);
}

TEST (NemaReadData, FailedMoveInMemoryIsReportedToo) {
    Log_Recorder  log (1);
    Opened_Source opened (NEMA_MEMORY, Hex ("01"));
    EXPECT_EQ (NEMA_Move (nullptr, &opened.source, -1, "m", 1), 0);
    EXPECT_EQ (log.Count (LOG_WARNING, "ERROR: while seeking pos -1"), 1);
    EXPECT_EQ (log.Count (LOG_WARNING, "file: (memory)"), 1);
}
