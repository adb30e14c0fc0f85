#include "compare/file_reader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/format.h"
#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tests/support/examples.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"
#include "util/file.h"
#include "util/memory.h"

static const unsigned SOME_ERROR = 5;

// --- reading in tests ------------------------------------------------------

// One file read into elements or a nested list; both kinds of silent messages are heard.
struct Reader {
    Temporary_Directory directory;
    Settings            settings = {};
    SequenceCursor      cursor   = {};
    std::string         name;
    Attribute          *list = nullptr;

    Reader () {
        settings.kind_warning = LOG_WARNING;
        settings.kind_note    = LOG_REPORT;
        settings.mode_start   = MODE_EXPLICIT;
        cursor.settings       = &settings;
    }
    ~Reader () { List_Delete (nullptr, &cursor, &list); }

    void Elements (const std::vector<unsigned char> &bytes) {
        List_Delete (nullptr, &cursor, &list);
        name = directory.Write ("file.dcm", bytes);
        list = File_Read_Elements (nullptr, &cursor, name.c_str ());
    }
    void Nested (const std::vector<unsigned char> &bytes) {
        List_Delete (nullptr, &cursor, &list);
        name = directory.Write ("file.dcm", bytes);
        list = File_Read_List (nullptr, &cursor, name.c_str ());
    }

    int Count () const {
        int count = 0;
        for (Attribute *attribute = list; attribute; attribute = attribute->next) count++;
        return count;
    }
    Attribute *At (int index) const {
        Attribute *attribute = list;
        while (attribute && index--) attribute = attribute->next;
        return attribute;
    }
    Attribute *Find (uint16_t group, uint16_t element) const {
        for (Attribute *attribute = list; attribute; attribute = attribute->next)
            if (attribute->group == group && attribute->element == element) return attribute;
        return nullptr;
    }
};

static std::string Stopped (size_t position, size_t size) {
    return "\xF1\x05WARNING:\x02 reading stopped at byte \x01" + std::to_string (position) + "\x02 of \x01" +
           std::to_string (size) + "\x02";
}

static Stream Small_File (Stream_Syntax syntax = EXPLICIT_LITTLE) {
    Stream stream = Stream_Begin_File (syntax);
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe^John");
    Stream_Add_Short (&stream, 0x0028, 0x0010, "US", 0x0102);
    return stream;
}

// --- opening ---------------------------------------------------------------

TEST (FileReader, NoNameGivesNoList) {
    Log_Recorder log;
    Reader       reader;
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &reader.cursor, ""));
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &reader.cursor, nullptr));
    EXPECT_TRUE (log.lines.empty ()) << log.All ();
}

TEST (FileReader, MissingFileIsReported) {
    Reader       reader;
    Log_Recorder log (1);
    std::string  name = reader.directory.File ("missing.dcm");
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &reader.cursor, name.c_str ()));
    ASSERT_EQ (4u, log.lines.size ()) << log.All ();
    EXPECT_EQ (LOG_TRACE1, log.lines[0].kind);
    EXPECT_EQ (0u, log.lines[0].text.find ("file:file_reader line:"));
    EXPECT_EQ (LOG_WARNING, log.lines[1].kind);
    EXPECT_EQ ("\xF1\x04"
               "ERROR:\x02 Unable to open file",
               log.lines[1].text);
    EXPECT_EQ (LOG_WARNING, log.lines[2].kind);
    EXPECT_NE (std::string::npos, log.lines[2].text.find ("[ERROR_FILE_NOT_FOUND]"));
    EXPECT_EQ (LOG_WARNING, log.lines[3].kind);
    EXPECT_EQ ("file: (" + name + ")", log.lines[3].text);
}

TEST (FileReader, DirectoryIsNotAFile) {
    Reader       reader;
    Log_Recorder log;
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &reader.cursor, reader.directory.path.c_str ()));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "ERROR: Unable to open file"));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "file: (" + reader.directory.path + ")"));
}

TEST (FileReader, RefusedFileIsReportedWithItsReason) {
    Reader       reader;
    Log_Recorder log;
    File_Fail_At (FILE_OPEN, 1, SOME_ERROR);
    reader.Elements (Small_File ().bytes);
    File_Fail_At (FILE_OPEN, 0, 0);
    EXPECT_EQ (nullptr, reader.list);
    EXPECT_EQ (1, log.Count (LOG_WARNING, "ERROR: Unable to open file"));
    EXPECT_TRUE (log.Has (LOG_WARNING, Error_Text (SOME_ERROR))) << log.All ();
}

TEST (FileReader, FileTooLargeForItsPositionsIsRefused) {
    Reader       reader;
    Log_Recorder log;
    std::string  name = reader.directory.Write ("large.dcm", std::string ());
    std::filesystem::resize_file (name, 0x80000000u);
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &reader.cursor, name.c_str ()));
    ASSERT_EQ (2u, log.lines.size ()) << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "\xF1\x04"
                                       "ERROR:\x02 file too large: \x01"
                                       "2147483648\x02 bytes, at most \x01"
                                       "2147483647\x02 can be read"));
    EXPECT_TRUE (log.Has (LOG_WARNING, "file: (" + name + ")"));

    log.Clear ();
    std::filesystem::resize_file (name, 0x7FFFFFFFu);
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &reader.cursor, name.c_str ()));
    EXPECT_FALSE (log.Contains ("too large"));
    EXPECT_TRUE (log.Has (LOG_WARNING, Stopped (0, 0x7FFFFFFFu))) << log.All ();
}

TEST (FileReader, FileWithoutRoomForTheMarkGivesNoList) {
    for (size_t size : {0u, 1u, 128u, 131u}) {
        Reader       reader;
        Log_Recorder log;
        reader.Elements (std::vector<unsigned char> (size));
        EXPECT_EQ (nullptr, reader.list);
        ASSERT_EQ (1u, log.lines.size ()) << log.All ();
        size_t there = size > 128 ? size - 128 : 0;
        EXPECT_TRUE (log.Has (LOG_WARNING, "End of File while reading: (" + std::to_string (there) + " /vs/ 4) (" +
                                               reader.name + ")"))
            << log.All ();
    }
}

TEST (FileReader, FileOfPreambleAndMarkIsEmpty) {
    Reader                     reader;
    Log_Recorder               log (3);
    std::vector<unsigned char> bytes (128);
    for (char c : {'D', 'I', 'C', 'M'}) bytes.push_back (static_cast<unsigned char> (c));
    reader.Elements (bytes);
    EXPECT_EQ (nullptr, reader.list);
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_TRUE (log.Has (LOG_TRACE3, "--> ****** end of file ******"));
}

static void Expect_Seek_Failure (long n, const std::vector<unsigned char> &bytes, const char *position) {
    Reader       reader;
    Log_Recorder log (1);
    File_Fail_At (FILE_SEEK, n, SOME_ERROR);
    reader.Elements (bytes);
    File_Fail_At (FILE_SEEK, 0, 0);
    EXPECT_EQ (nullptr, reader.list);
    EXPECT_EQ (1, log.Count (LOG_TRACE1, "file:file_reader line:")) << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, std::string ("\xF1\x04"
                                                    "ERROR:\x02 while seeking pos ") +
                                           position))
        << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, Error_Text (SOME_ERROR)));
    EXPECT_TRUE (log.Has (LOG_WARNING, "file: (" + reader.name + ")"));
}

TEST (FileReader, FailingSeeksAreReported) {
    Expect_Seek_Failure (1, Small_File ().bytes, "128");
    Expect_Seek_Failure (2, Small_File ().bytes, "132");
    Expect_Seek_Failure (2, std::vector<unsigned char> (200), "0");
}

TEST (FileReader, FailingReadOfTheMarkIsReported) {
    Reader       reader;
    Log_Recorder log;
    File_Fail_At (FILE_READ, 1, SOME_ERROR);
    reader.Elements (Small_File ().bytes);
    File_Fail_At (FILE_READ, 0, 0);
    EXPECT_EQ (nullptr, reader.list);
    ASSERT_EQ (2u, log.lines.size ()) << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "Error reading file " + reader.name));
    EXPECT_TRUE (log.Has (LOG_WARNING, Error_Text (SOME_ERROR)));
}

TEST (FileReader, BareStreamIsReadFromItsStart) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    Stream_Add_Text (&stream, 0x0010, 0x4000, "LT", std::string (200, 'x'));
    reader.Elements (stream.bytes);
    ASSERT_EQ (2, reader.Count ());
    EXPECT_EQ (0u, reader.At (0)->pos_tag);
    EXPECT_EQ (2, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "\xF1\x05WARNING:\xF0\x02  file: \x02" + reader.name));
    EXPECT_TRUE (log.Has (LOG_WARNING, "\xF0\x02\t\t\tis not a valid part-10 DICOM file.  We will attempt to read "
                                       "anyway..."));
}

TEST (FileReader, StartIsAnnounced) {
    Reader       reader;
    Log_Recorder log (1);
    reader.Elements (Small_File ().bytes);
    std::string dashes (79, '-');
    ASSERT_EQ (6u, log.lines.size ()) << log.All ();
    EXPECT_EQ (LOG_THREAD, log.lines[0].kind);
    EXPECT_EQ ("\x02\t Reading DICOM tags...", log.lines[0].text);
    EXPECT_EQ ("\n\n\n", log.lines[1].text);
    EXPECT_EQ (dashes, log.lines[2].text);
    EXPECT_EQ ("-----                       Reading DICOM File                           ----- ", log.lines[3].text);
    EXPECT_EQ (dashes, log.lines[4].text);
    EXPECT_EQ ("---------- Reading DICOM tags -------------", log.lines[5].text);
    for (size_t i = 1; i < 6; i++) EXPECT_EQ (LOG_TRACE1, log.lines[i].kind);
}

// --- elements --------------------------------------------------------------

TEST (FileReader, ElementsAreKeptAsTheyStand) {
    Reader       reader;
    Log_Recorder log;
    reader.Elements (Small_File ().bytes);
    ASSERT_EQ (4, reader.Count ());

    const Attribute *name = reader.Find (0x0010, 0x0010);
    ASSERT_NE (nullptr, name);
    EXPECT_EQ (VR_PN, name->vr_file);
    EXPECT_EQ (VR_PN, name->vr);
    EXPECT_EQ (ORIGIN_DICOM, name->flags);
    EXPECT_EQ (8, name->length);
    EXPECT_EQ ("Doe^John", Value (name));
    EXPECT_EQ (Dictionary_Lookup (nullptr, 0x0010, 0x0010), name->definition);
    EXPECT_EQ (name->pos_tag + 8, name->pos_data);
    EXPECT_EQ (reader.At (1)->pos_data + 2, name->pos_tag);
    EXPECT_EQ (132u, reader.At (0)->pos_tag);
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
}

TEST (FileReader, ElementsAreTraced) {
    Reader       reader;
    Log_Recorder log (2);
    Stream       stream = Small_File (IMPLICIT_LITTLE);
    reader.Elements (stream.bytes);
    size_t size = stream.bytes.size ();
    EXPECT_TRUE (log.Has (LOG_TRACE2, "(0002,0010) VR:UI length:18 pos:132 of " + std::to_string (size))) << log.All ();
    EXPECT_TRUE (log.Has (LOG_TRACE2, "(0008,0060) VR:00 length:2 pos:158 of " + std::to_string (size))) << log.All ();
}

TEST (FileReader, ElementWithoutValueHasNoBytes) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "");
    Stream_Add_Text (&stream, 0x0010, 0x0020, "LO", "");
    reader.Elements (stream.bytes);
    ASSERT_EQ (3, reader.Count ());
    EXPECT_EQ (0, reader.At (2)->length);
    EXPECT_EQ (nullptr, reader.At (2)->data);
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
}

TEST (FileReader, LargeValueIsMapped) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OW", std::string (200000, 'p'));
    reader.Elements (stream.bytes);
    ASSERT_EQ (2, reader.Count ());
    EXPECT_EQ (1, Value_Is_Mapped (reader.At (1)));
    EXPECT_EQ (std::string (200000, 'p'), Value (reader.At (1)));
}

// --- transfer syntax -------------------------------------------------------

TEST (FileReader, TransferSyntaxSetsTheMode) {
    struct Case {
        Stream_Syntax syntax;
        uint8_t       mode;
    };
    for (const Case &test : {Case {IMPLICIT_LITTLE, 0}, Case {EXPLICIT_LITTLE, 8}, Case {EXPLICIT_BIG, 9}}) {
        Reader       reader;
        Log_Recorder log;
        Stream       stream = Small_File (test.syntax);
        reader.Elements (stream.bytes);
        ASSERT_EQ (4, reader.Count ()) << log.All ();
        EXPECT_EQ (ORIGIN_DICOM | CONVERTER, reader.At (0)->flags);
        EXPECT_EQ (MODE_EXPLICIT, reader.At (0)->mode);
        EXPECT_EQ (test.mode, reader.At (3)->mode);
        EXPECT_EQ (0x0028, reader.At (3)->group);
        EXPECT_EQ (test.syntax == EXPLICIT_BIG ? "\x01\x02" : "\x02\x01", Value (reader.At (3)));
        EXPECT_EQ (test.syntax == IMPLICIT_LITTLE ? 0 : VR_US, reader.At (3)->vr_file);
        EXPECT_EQ (VR_US, reader.At (3)->vr);
        EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
    }
}

// A UID that isn't known by its whole text leaves the mode as it is, and is marked all the same.
TEST (FileReader, OtherTransferSyntaxKeepsTheMode) {
    for (const char *uid :
         {"1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.", "1.2.840.10008.1", "", "1.2.840.10008.1.2 "}) {
        Reader       reader;
        Log_Recorder log;
        Stream       stream = Stream_Begin_File (EXPLICIT_LITTLE, uid);
        Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
        reader.Elements (stream.bytes);
        ASSERT_EQ (2, reader.Count ()) << log.All ();
        EXPECT_EQ (ORIGIN_DICOM | CONVERTER, reader.At (0)->flags);
        EXPECT_EQ (MODE_EXPLICIT, reader.At (1)->mode);
    }
}

TEST (FileReader, TransferSyntaxEndsAtItsFirstZeroByte) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin (EXPLICIT_LITTLE);
    stream.bytes.resize (128);
    Stream_Add_Raw (&stream, "DICM", 4);
    Stream_Add_Bytes (&stream, 0x0002, 0x0010, "UI", std::string ("1.2.840.10008.1.2\0junk", 22));
    stream.syntax = IMPLICIT_LITTLE;
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    reader.Elements (stream.bytes);
    ASSERT_EQ (2, reader.Count ()) << log.All ();
    EXPECT_EQ (0, reader.At (1)->mode);
}

TEST (FileReader, VendorOfTheSettingsIsKept) {
    Reader       reader;
    Log_Recorder log;
    reader.settings.mode_start = MODE_EXPLICIT | MODE_GE;
    reader.Elements (Small_File (EXPLICIT_BIG).bytes);
    ASSERT_EQ (4, reader.Count ());
    EXPECT_EQ (MODE_GE | MODE_EXPLICIT, reader.At (0)->mode);
    EXPECT_EQ (MODE_GE | MODE_EXPLICIT | MODE_BIG_ENDIAN, reader.At (3)->mode);
}

TEST (FileReader, SettingsMayBeNone) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Text (&stream, 0x0029, 0x0010, "LO", "PRIVATE");
    reader.cursor.settings = nullptr;
    reader.Elements (stream.bytes);
    EXPECT_EQ (5, reader.Count ());
    EXPECT_EQ (0, log.Count (LOG_REPORT));
}

// The mode of a record is that of its bytes: group 2 little endian, items without VR.
TEST (FileReader, RecordsHoldTheModeOfTheirValue) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin_File (EXPLICIT_BIG);
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    Stream_Open_Item (&stream, false);
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    Stream meta = Stream_Begin (EXPLICIT_LITTLE);
    Stream_Add_Long (&meta, 0x0002, 0x0000, "UL", 4);
    Stream_Add_Raw (&stream, meta.bytes.data (), meta.bytes.size ());
    meta = Stream_Begin (IMPLICIT_LITTLE);
    Stream_Add_Long (&meta, 0x0002, 0x0000, "UL", 4);
    Stream_Add_Raw (&stream, meta.bytes.data (), meta.bytes.size ());
    reader.Elements (stream.bytes);
    ASSERT_EQ (7, reader.Count ()) << log.All ();
    EXPECT_EQ (MODE_EXPLICIT | MODE_BIG_ENDIAN, reader.At (1)->mode);
    for (int i : {2, 3, 4}) EXPECT_EQ (MODE_BIG_ENDIAN, reader.At (i)->mode);
    EXPECT_EQ (MODE_EXPLICIT, reader.At (5)->mode);
    EXPECT_EQ (0, reader.At (6)->mode);
}

// --- dictionary ------------------------------------------------------------

TEST (FileReader, UnknownTagsAreNotedAndMarked) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Long (&stream, 0x0028, 0x0000, "UL", 10);
    Stream_Add_Text (&stream, 0x0028, 0xFFFC, "LO", "none");
    Stream_Add_Text (&stream, 0x0029, 0x0010, "LO", "PRIVATE");
    Stream_Add_Text (&stream, 0x7FE0, 0xFFFC, "LO", "none");
    reader.Elements (stream.bytes);
    ASSERT_EQ (8, reader.Count ());
    EXPECT_EQ (2, log.Count (LOG_REPORT)) << log.All ();
    EXPECT_TRUE (log.Has (LOG_REPORT, "\x02    (\x01"
                                      "0028\x02,\x01"
                                      "fffc\x02) Unknown tag"));
    EXPECT_TRUE (log.Has (LOG_REPORT, "\x02    (\x01"
                                      "0029\x02,\x01"
                                      "0010\x02) Unknown tag"));
    EXPECT_EQ (ORIGIN_DICOM, reader.Find (0x0028, 0x0000)->flags);
    EXPECT_EQ (ORIGIN_DICOM | DELETED, reader.Find (0x0028, 0xFFFC)->flags);
    EXPECT_EQ (ORIGIN_DICOM | DELETED, reader.Find (0x0029, 0x0010)->flags);
    EXPECT_EQ (ORIGIN_DICOM | DELETED, reader.Find (0x7FE0, 0xFFFC)->flags);
    EXPECT_EQ (nullptr, reader.Find (0x0029, 0x0010)->definition);
}

// Even when a dictionary has a line for them.
TEST (FileReader, ItemsAndDelimitersAreNotLookedUp) {
    static const char *const lines[] = {"(FFFE,E000) Item", "(FFFE,E00D) Item Delimitation UN 1"};
    Dictionary_Table         table   = {lines, 2};
    Dictionary_Reset (&table, 1);

    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin (EXPLICIT_LITTLE);
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    Stream_Open_Item (&stream, false);
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    stream.bytes.resize (160);
    reader.Elements (stream.bytes);
    Dictionary_Reset (nullptr, 0);
    ASSERT_LE (4, reader.Count ());
    EXPECT_EQ (VR_ITEM, reader.At (1)->vr);
    for (int i : {1, 2, 3}) {
        EXPECT_EQ (nullptr, reader.At (i)->definition);
        EXPECT_EQ (ORIGIN_DICOM, reader.At (i)->flags);
    }
    EXPECT_FALSE (log.Contains ("(fffe,"));
}

// --- items and fragments ---------------------------------------------------

TEST (FileReader, ItemsOfASequenceHaveNoValue) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, true);
    Stream_Open_Item (&stream, true);
    Stream_Add_Text (&stream, 0x0008, 0x1150, "UI", "1.2.3");
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    reader.Elements (stream.bytes);
    ASSERT_EQ (4, reader.Count ()) << log.All ();
    EXPECT_EQ (22, reader.At (1)->length);
    EXPECT_EQ (nullptr, reader.At (1)->data);
    EXPECT_EQ (VR_ITEM, reader.At (2)->vr);
    EXPECT_EQ (0, reader.At (2)->vr_file);
    EXPECT_EQ (14, reader.At (2)->length);
    EXPECT_EQ (nullptr, reader.At (2)->data);
    EXPECT_EQ (std::string ("1.2.3\0", 6), Value (reader.At (3)));
}

TEST (FileReader, FragmentsHaveValues) {
    for (Stream_Syntax syntax : {EXPLICIT_LITTLE, IMPLICIT_LITTLE}) {
        Reader       reader;
        Log_Recorder log;
        Stream       stream = Stream_Begin_File (syntax);
        Stream_Add_Header (&stream, 0x7FE0, 0x0010, "OB", 0xFFFFFFFF);
        Stream_Add_Length (&stream, 0xFFFE, 0xE000, "", 0, "");
        Stream_Add_Length (&stream, 0xFFFE, 0xE000, "", 4, "abcd");
        Stream_Add_Length (&stream, 0xFFFE, 0xE0DD, "", 0, "");
        Stream_Open_Sequence (&stream, 0xFFFA, 0xFFFA, false);
        Stream_Open_Item (&stream, true);
        Stream_Add_Short (&stream, 0x0400, 0x0005, "US", 1);
        Stream_Close_Item (&stream);
        Stream_Close_Sequence (&stream);
        reader.Elements (stream.bytes);
        ASSERT_EQ (9, reader.Count ()) << log.All ();
        EXPECT_EQ (LENGTH_UNDEFINED, reader.At (1)->length);
        EXPECT_EQ (nullptr, reader.At (1)->data);
        EXPECT_EQ (VR_FRAGMENT, reader.At (2)->vr);
        EXPECT_EQ (nullptr, reader.At (2)->data);
        EXPECT_EQ (VR_FRAGMENT, reader.At (3)->vr);
        EXPECT_EQ ("abcd", Value (reader.At (3)));
        EXPECT_EQ (0, reader.At (4)->vr);
        EXPECT_EQ (VR_ITEM, reader.At (6)->vr);
        EXPECT_EQ (nullptr, reader.At (6)->data);
        EXPECT_EQ (std::string ("\1\0", 2), Value (reader.At (7)));
    }
}

// Pixel data of defined length don't make fragments of the items behind them.
TEST (FileReader, OnlyUndefinedLengthMakesFragments) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OB", "pixels");
    Stream_Add_Length (&stream, 0xFFFE, 0xE000, "", 10, "");
    Stream_Add_Short (&stream, 0x0028, 0x0010, "US", 1);
    reader.Elements (stream.bytes);
    ASSERT_EQ (4, reader.Count ()) << log.All ();
    EXPECT_EQ (VR_ITEM, reader.At (2)->vr);
    EXPECT_EQ (nullptr, reader.At (2)->data);
}

TEST (FileReader, DelimiterWithALengthHasAValue) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Length (&stream, 0xFFFE, 0xE00D, "", 2, "ab");
    reader.Elements (stream.bytes);
    ASSERT_EQ (5, reader.Count ());
    EXPECT_EQ ("ab", Value (reader.At (4)));
}

// --- the end of the file ---------------------------------------------------

TEST (FileReader, FewerBytesThanATagAreTheEnd) {
    for (size_t extra : {0u, 1u, 2u, 3u}) {
        Reader       reader;
        Log_Recorder log (3);
        Stream       stream = Small_File ();
        stream.bytes.insert (stream.bytes.end (), extra, 0xAA);
        reader.Elements (stream.bytes);
        EXPECT_EQ (4, reader.Count ());
        EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
        EXPECT_EQ (1, log.Count (LOG_TRACE3, "--> ****** end of file ******"));
    }
}

TEST (FileReader, ElementOfZerosIsTheEnd) {
    Reader       reader;
    Log_Recorder log (3);
    Stream       stream = Small_File (IMPLICIT_LITTLE);
    stream.bytes.insert (stream.bytes.end (), 64, 0);
    reader.Elements (stream.bytes);
    EXPECT_EQ (4, reader.Count ());
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_EQ (1, log.Count (LOG_TRACE3, "--> ****** NULL element ******"));
}

// Only when nothing of it is set.
TEST (FileReader, ElementZeroWithLengthIsRead) {
    Reader       reader;
    Log_Recorder log (3);
    Stream       stream = Small_File (IMPLICIT_LITTLE);
    Stream_Add_Long (&stream, 0x0000, 0x0000, "UL", 7);
    reader.Elements (stream.bytes);
    EXPECT_EQ (5, reader.Count ());
    EXPECT_EQ (0, log.Count (LOG_TRACE3, "NULL element"));
}

TEST (FileReader, ElementZeroWithAVrIsRead) {
    Reader       reader;
    Log_Recorder log (3);
    Stream       stream = Small_File ();
    Stream_Add_Text (&stream, 0x0000, 0x0000, "UL", "");
    Stream_Add_Text (&stream, 0x0010, 0x0030, "DA", "20010203");
    reader.Elements (stream.bytes);
    EXPECT_EQ (6, reader.Count ());
    EXPECT_EQ (0, log.Count (LOG_TRACE3, "NULL element"));
}

TEST (FileReader, ExplicitPaddingOfZerosStopsWithAWarning) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    size_t       end    = stream.bytes.size ();
    stream.bytes.insert (stream.bytes.end (), 64, 0);
    reader.Elements (stream.bytes);
    EXPECT_EQ (4, reader.Count ());
    EXPECT_EQ (2, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, Stopped (end, end + 64)));
    EXPECT_TRUE (log.Has (LOG_WARNING, "file: (" + reader.name + ")"));
}

// Shown whatever the settings say about the reader's other warnings.
TEST (FileReader, EarlyStopIsAlwaysTold) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    size_t       end    = stream.bytes.size ();
    Stream_Add_Header (&stream, 0x0032, 0x1032, "pn", 0);
    reader.settings.kind_warning = 0;
    reader.settings.kind_note    = 0;
    reader.Elements (stream.bytes);
    EXPECT_EQ (4, reader.Count ());
    EXPECT_TRUE (log.Has (LOG_WARNING, Stopped (end, end + 8))) << log.All ();
}

TEST (FileReader, LengthBeyondTheEndIsCut) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Length (&stream, 0x0032, 0x4000, "LT", 100, "only this");
    reader.Elements (stream.bytes);
    ASSERT_EQ (5, reader.Count ());
    EXPECT_EQ (9, reader.At (4)->length);
    EXPECT_EQ ("only this", Value (reader.At (4)));
    EXPECT_EQ (ORIGIN_DICOM | SYNTAX_ERROR, reader.At (4)->flags & ~RETIRED);
    EXPECT_EQ (1, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_TRUE (log.Has (LOG_WARNING, "\xF1\x05    WARNING:\xF0\x02 (\x01"
                                       "0032\x02,\x01"
                                       "4000\x02) Invalid tag length (size=\x01"
                                       "100\x02)!"));
}

TEST (FileReader, WithoutKindsNothingIsSaidAboutElements) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream          = Small_File ();
    reader.settings.kind_warning = 0;
    reader.settings.kind_note    = 0;
    Stream_Add_Text (&stream, 0x0029, 0x0010, "LO", "PRIVATE");
    Stream_Add_Length (&stream, 0x0032, 0x4000, "LT", 100, "only this");
    reader.Elements (stream.bytes);
    ASSERT_EQ (6, reader.Count ());
    EXPECT_TRUE (reader.At (5)->flags & SYNTAX_ERROR);
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_EQ (0, log.Count (LOG_REPORT)) << log.All ();
}

TEST (FileReader, LengthUpToTheEndIsNotCut) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Length (&stream, 0x0010, 0x4000, "LT", 10, "0123456789");
    reader.Elements (stream.bytes);
    ASSERT_EQ (5, reader.Count ());
    EXPECT_EQ (ORIGIN_DICOM, reader.At (4)->flags);
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
}

TEST (FileReader, ValueWithNothingLeftIsEmpty) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Header (&stream, 0x0010, 0x4000, "LT", 100);
    reader.Elements (stream.bytes);
    ASSERT_EQ (5, reader.Count ());
    EXPECT_EQ (0, reader.At (4)->length);
    EXPECT_EQ (nullptr, reader.At (4)->data);
    EXPECT_EQ (1, log.Count (LOG_WARNING, "Invalid tag length (size=100)!"));
}

TEST (FileReader, ImpossibleLengthsStopTheReading) {
    for (uint32_t length : {0x7FFFFFFFu, 0x80000000u, 0x80000001u, 0xFFFFFFFEu, 1000000u}) {
        Reader       reader;
        Log_Recorder log;
        Stream       stream = Small_File (IMPLICIT_LITTLE);
        size_t       end    = stream.bytes.size ();
        Stream_Add_Length (&stream, 0x0032, 0x4000, "LT", length, "01234567");
        reader.Elements (stream.bytes);
        EXPECT_EQ (4, reader.Count ()) << length;
        EXPECT_TRUE (log.Has (LOG_WARNING, Stopped (end, end + 16))) << log.All ();
    }
}

TEST (FileReader, UndefinedLengthOfOthersIsStored) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File (IMPLICIT_LITTLE);
    Stream_Add_Length (&stream, 0x0010, 0x4000, "LT", 0xFFFFFFFF, "");
    Stream_Add_Text (&stream, 0x0018, 0x0050, "DS", "5.0");
    reader.Elements (stream.bytes);
    ASSERT_EQ (6, reader.Count ());
    EXPECT_EQ (LENGTH_UNDEFINED, reader.At (4)->length);
    EXPECT_EQ (nullptr, reader.At (4)->data);
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
}

TEST (FileReader, OddLengthIsRead) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Bytes (&stream, 0x0032, 0x1032, "PN", "odd");
    Stream_Add_Text (&stream, 0x0040, 0x1001, "SH", "X1");
    reader.Elements (stream.bytes);
    ASSERT_EQ (6, reader.Count ());
    EXPECT_EQ ("odd", Value (reader.At (4)));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "tag lenght is odd in tag (0032,1032)"));
}

// A file that grows while it is read may give a header behind the size that was taken first.
static std::string growing_file;

static int Grow (Window, int kind, const char *) {
    if (kind == LOG_THREAD) {
        std::ofstream stream (growing_file, std::ios::binary | std::ios::app);
        stream.write ("CS\0\0\x10\0\x10\0PN\0\0", 12);
    }
    return 1;
}

TEST (FileReader, HeaderBehindTheSizeIsTheEnd) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Add_Raw (&stream, "\x08\0\x70\0", 4);
    growing_file = reader.directory.Write ("growing.dcm", stream.bytes);
    Log_Sink_Set (Grow);
    reader.list = File_Read_Elements (nullptr, &reader.cursor, growing_file.c_str ());
    EXPECT_EQ (4, reader.Count ());
    EXPECT_EQ ((uintmax_t)stream.bytes.size () + 12, std::filesystem::file_size (growing_file));
}

// --- any bytes -------------------------------------------------------------

// Whatever is cut off: what stands before is there, and the reading ends with a word about it unless less than a tag is
// left.
TEST (FileReader, FileCutAtEveryByte) {
    for (Stream_Syntax syntax : {EXPLICIT_LITTLE, IMPLICIT_LITTLE, EXPLICIT_BIG}) {
        Stream whole = Small_File (syntax);
        Stream_Open_Sequence (&whole, 0x0032, 0x1064, false);
        Stream_Open_Item (&whole, true);
        Stream_Add_Text (&whole, 0x0008, 0x0100, "SH", "CODE");
        Stream_Close_Item (&whole);
        Stream_Close_Sequence (&whole);
        Stream_Add_Bytes (&whole, 0x7FE0, 0x0010, "OW", "pixels");
        int before = 0;
        for (size_t size = 0; size <= whole.bytes.size (); size++) {
            Reader       reader;
            Log_Recorder log;
            reader.Elements (std::vector<unsigned char> (whole.bytes.begin (), whole.bytes.begin () + (long)size));
            int count = reader.Count ();
            EXPECT_LE (before, count) << size;
            before = count;
            if (size < 132) continue;
            size_t end = 132;
            for (Attribute *attribute = reader.list; attribute; attribute = attribute->next) {
                end = attribute->pos_data;
                if (attribute->data) end += static_cast<size_t> (attribute->length);
            }
            bool told = log.Contains ("reading stopped at byte");
            EXPECT_EQ (size > end && size - end >= 4, told) << size << "\n" << log.All ();
            EXPECT_EQ (0, log.Count (LOG_ERROR));
        }
        EXPECT_EQ (syntax == IMPLICIT_LITTLE ? 9 : 9, before);
    }
}

TEST (FileReader, EveryByteChanged) {
    Stream whole = Small_File ();
    Stream_Open_Sequence (&whole, 0x0032, 0x1064, false);
    Stream_Open_Item (&whole, true);
    Stream_Add_Text (&whole, 0x0008, 0x0100, "SH", "CODE");
    Stream_Close_Item (&whole);
    Stream_Close_Sequence (&whole);
    for (size_t place = 128; place < whole.bytes.size (); place++) {
        for (int byte : {0x00, 0x01, 0x7F, 0x80, 0xFE, 0xFF}) {
            Reader                     reader;
            Log_Recorder               log;
            std::vector<unsigned char> bytes = whole.bytes;
            bytes[place]                     = static_cast<unsigned char> (byte);
            long live                        = Memory_Live ();
            reader.Nested (bytes);
            List_Delete (nullptr, &reader.cursor, &reader.list);
            EXPECT_EQ (live, Memory_Live ());
        }
    }
}

// --- failures on the way ---------------------------------------------------

TEST (FileReader, FailingPositionIsTracedAndReadingGoesOn) {
    Stream stream = Stream_Begin (EXPLICIT_LITTLE); // Group 2 would need the position for a look ahead.
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    Stream_Add_Text (&stream, 0x0010, 0x4000, "LT", std::string (200, 'x'));
    int traced = 0;
    for (long n = 1; n <= 8; n++) {
        Reader       reader;
        Log_Recorder log (1);
        File_Fail_At (FILE_TELL, n, SOME_ERROR);
        reader.Elements (stream.bytes);
        File_Fail_At (FILE_TELL, 0, 0);
        EXPECT_EQ (2, reader.Count ()) << n;
        if (!log.Count (LOG_TRACE1, "file:file_reader line:")) continue;
        traced++;
        EXPECT_TRUE (log.Has (LOG_TRACE1, "using lseek()"));
        EXPECT_TRUE (log.Has (LOG_TRACE1, Error_Text (SOME_ERROR)));
        EXPECT_TRUE (log.Has (LOG_TRACE1, "file: (" + reader.name + ")"));
    }
    EXPECT_LE (4, traced);
}

TEST (FileReader, FailingReadKeepsWhatWasRead) {
    for (unsigned error : {0u, SOME_ERROR}) {
        int before = 0;
        for (long n = 2;; n++) {
            Reader       reader;
            Log_Recorder log;
            Stream       stream = Small_File ();
            Stream_Add_Bytes (&stream, 0x0032, 0x4000, "LT", std::string (2000, 'x'));
            File_Fail_At (FILE_READ, n, error);
            reader.Elements (stream.bytes);
            File_Fail_At (FILE_READ, 0, 0);
            EXPECT_LE (before, reader.Count ());
            before = reader.Count ();
            if (before == 5) break;
            EXPECT_EQ (1, log.Count (LOG_WARNING, "reading stopped at byte")) << log.All ();
            EXPECT_EQ (1, log.Count (LOG_WARNING, error ? "Error reading file" : "End of File while reading"));
            ASSERT_GT (1000, n);
        }
        EXPECT_EQ (5, before);
    }
}

TEST (FileReader, SeekFailureInsideClosesTheFile) {
    long live = Memory_Live ();
    for (long n = 3; n <= 4; n++) {
        Reader       reader;
        Log_Recorder log;
        Stream       stream = Small_File ();
        File_Fail_At (FILE_SEEK, n, SOME_ERROR);
        reader.Elements (stream.bytes);
        File_Fail_At (FILE_SEEK, 0, 0);
        EXPECT_EQ (nullptr, reader.list);
        EXPECT_EQ (1, log.Count (LOG_WARNING, "while seeking pos 13"));
        EXPECT_TRUE (log.Has (LOG_WARNING, Stopped (132, stream.bytes.size ()))) << log.All ();
    }
    EXPECT_EQ (live, Memory_Live ());
}

TEST (FileReader, FailingMapIsReadInstead) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OW", std::string (200000, 'p'));
    File_Fail_At (FILE_MAP, 1, SOME_ERROR);
    reader.Elements (stream.bytes);
    File_Fail_At (FILE_MAP, 0, 0);
    ASSERT_EQ (2, reader.Count ());
    EXPECT_EQ (0, Value_Is_Mapped (reader.At (1)));
    EXPECT_EQ (std::string (200000, 'p'), Value (reader.At (1)));
}

TEST (FileReader, MemoryFailuresAreToldAndLeakNothing) {
    Stream stream = Small_File ();
    Stream_Open_Sequence (&stream, 0x0032, 0x1064, false);
    for (int item = 0; item < 2; item++) {
        Stream_Open_Item (&stream, true);
        Stream_Add_Text (&stream, 0x0008, 0x0100, "SH", "CODE");
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    Dictionary_Build (nullptr);

    long live = Memory_Live ();
    for (long n = 1;; n++) {
        Reader       reader;
        Log_Recorder log;
        std::string  name = reader.directory.Write ("file.dcm", stream.bytes);
        Memory_Fail_At (n);
        reader.list = File_Read_List (nullptr, &reader.cursor, name.c_str ());
        int failed  = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (failed, log.Count (LOG_ERROR, "memory error in ")) << n << "\n" << log.All ();
        List_Delete (nullptr, &reader.cursor, &reader.list);
        EXPECT_EQ (live, Memory_Live ()) << n;
        if (!failed) break;
        ASSERT_GT (10000, n);
    }
}

// --- nested list -----------------------------------------------------------

TEST (FileReader, ListIsNestedWithoutItemTags) {
    Reader       reader;
    Log_Recorder log;
    Stream       stream = Small_File ();
    Stream_Open_Sequence (&stream, 0x0032, 0x1064, false);
    for (const char *code : {"ONE ", "TWO "}) {
        Stream_Open_Item (&stream, false);
        Stream_Add_Text (&stream, 0x0008, 0x0100, "SH", code);
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    Stream_Add_Text (&stream, 0x0040, 0x1001, "SH", "X1");
    reader.Nested (stream.bytes);
    ASSERT_EQ (6, reader.Count ());
    const Attribute *sequence = reader.Find (0x0032, 0x1064);
    ASSERT_NE (nullptr, sequence);
    ASSERT_EQ (2, sequence->nb_item);
    EXPECT_EQ ("ONE ", Value (sequence->item[0]));
    EXPECT_EQ ("TWO ", Value (sequence->item[1]));
    EXPECT_EQ (nullptr, sequence->item[1]->next);
    EXPECT_EQ (nullptr, reader.Find (0xFFFE, 0xE000));
    EXPECT_EQ (nullptr, reader.Find (0xFFFE, 0xE0DD));
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << log.All ();
}

TEST (FileReader, NoElementsGiveNoList) {
    Reader       reader;
    Log_Recorder log (1);
    reader.Nested (std::vector<unsigned char> (131));
    EXPECT_EQ (nullptr, reader.list);
    EXPECT_TRUE (log.Has (LOG_TRACE1, "Failed in DICOM_Attribute_Format()"));
}

static int Place (const Log_Recorder &log, int kind, const std::string &text) {
    for (size_t i = 0; i < log.lines.size (); i++)
        if (log.lines[i].kind == kind && log.lines[i].text == text) return static_cast<int> (i);
    return -1;
}

TEST (FileReader, PhasesAreTracedInTheirOrder) {
    static const char *const titles[] = {
        "-----                       Stool original DICOM File                     -----",
        "-----                        Cleanup DICOM Tags                           -----",
        "-----                       Stool After Cleanup                          ----- ",
        "-----           Complementing the info                                    -----",
        "-----                       Stool After Complement                        -----"};
    Reader       reader;
    Log_Recorder log (2);
    Stream       stream = Small_File ();
    Stream_Open_Sequence (&stream, 0x0032, 0x1064, false);
    Stream_Open_Item (&stream, false);
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    reader.Nested (stream.bytes);
    int before = 0;
    for (const char *title : titles) {
        int place = Place (log, LOG_TRACE2, title);
        ASSERT_LT (before, place) << title;
        EXPECT_EQ ("\n\n\n", log.lines[static_cast<size_t> (place) - 2].text);
        EXPECT_EQ (std::string (79, '-'), log.lines[static_cast<size_t> (place) - 1].text);
        EXPECT_EQ (std::string (79, '-'), log.lines[static_cast<size_t> (place) + 1].text);
        before = place;
    }
    EXPECT_EQ (3, log.Count (LOG_TRACE2, "Stool syntax: group & element color:"));
}

TEST (FileReader, PhasesAreSilentAtLevelOne) {
    Reader       reader;
    Log_Recorder log (1);
    reader.Nested (Small_File ().bytes);
    EXPECT_EQ (0, log.Count (LOG_TRACE2));
    EXPECT_FALSE (log.Contains ("Stool"));
}

// --- at once ---------------------------------------------------------------

// What a reading of the reader's file gives, with those kinds of messages silent that tell of the phases, or with the phases
// one by one. said gets what it says in either case.
static std::string Read_As (Reader *reader, bool silent, std::string *said) {
    Log_Recorder log;
    reader->settings.kind_warning = silent ? 0 : LOG_REPORT; // Which nothing else is reported as.
    reader->settings.kind_note    = silent ? 0 : LOG_REPORT;
    reader->list                  = File_Read_List (nullptr, &reader->cursor, reader->name.c_str ());
    std::string fields            = Fields (reader->list);
    List_Delete (nullptr, &reader->cursor, &reader->list);
    for (const Log_Line &line : log.lines)
        if (line.kind != LOG_REPORT) *said += std::to_string (line.kind) + ": " + line.text + "\n";
    return fields;
}

// 1 when a file's records are nested before its end is reached: of a file that is cut off, memory that runs out for an item
// is told before the cut. -1 when nothing of that is told.
static int Nests_While_Reading (Reader *reader, bool silent) {
    for (long n = 1;; n++) {
        std::string said;
        Memory_Fail_At (n);
        Read_As (reader, silent, &said);
        bool failed = Memory_Failed ();
        Memory_Fail_At (0);
        size_t nesting = said.find ("var=pt->item"), cut = said.find ("reading stopped");
        if (nesting != std::string::npos && cut != std::string::npos) return nesting < cut;
        if (!failed) return -1;
    }
}

// Else the tests below would compare the phases with themselves.
TEST (FileReader, AtOnceIsTakenWhenThePhasesAreSilent) {
    Reader reader;
    Stream stream = Small_File ();
    Dictionary_Build (nullptr);
    Stream_Open_Sequence (&stream, 0x0032, 0x1064, false);
    for (const char *code : {"ONE", "TWO"}) {
        Stream_Open_Item (&stream, false);
        Stream_Add_Text (&stream, 0x0008, 0x0100, "SH", code);
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    Stream_Add_Header (&stream, 0x7FE0, 0x0010, "OW", 0x7FFFFFFE);
    reader.name = reader.directory.Write ("file.dcm", stream.bytes);
    EXPECT_EQ (1, Nests_While_Reading (&reader, true));
    EXPECT_EQ (0, Nests_While_Reading (&reader, false));
}

static void Expect_The_Same (Reader *reader, const std::vector<unsigned char> &bytes, const std::string &which) {
    Dictionary_Build (nullptr);
    long        live = Memory_Live ();
    std::string in_phases, at_once;
    reader->name = reader->directory.Write ("file.dcm", bytes);
    ASSERT_EQ (Read_As (reader, false, &in_phases), Read_As (reader, true, &at_once)) << which;
    EXPECT_EQ (in_phases, at_once) << which;
    EXPECT_EQ (live, Memory_Live ()) << which;
}

// Everything that tells where something ends, and values of all shapes.
static Stream Manifold_File (Stream_Syntax syntax) {
    Stream stream = Small_File (syntax);
    for (bool defined : {false, true}) {
        Stream_Open_Sequence (&stream, 0x0032, 0x1064, defined);
        Stream_Open_Item (&stream, !defined);
        Stream_Add_Text (&stream, 0x0008, 0x0100, "SH", "CODE");
        Stream_Open_Sequence (&stream, 0x0040, 0xA730, !defined);
        Stream_Open_Item (&stream, defined);
        Stream_Close_Item (&stream);
        Stream_Close_Sequence (&stream);
        Stream_Close_Item (&stream);
        Stream_Open_Item (&stream, defined);
        Stream_Add_Text (&stream, 0x0009, 0x0010, "LO", "MAKER");
        Stream_Add_Text (&stream, 0x0009, 0x1001, "UN", "made");
        Stream_Close_Item (&stream);
        Stream_Close_Sequence (&stream);
    }
    Stream_Add_Text (&stream, 0x0040, 0x1001, "SH", " X1\\");
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OW", "pixels");
    return stream;
}

TEST (FileReader, AtOnceIsWhatThePhasesComeToForAFileCutAtEveryByte) {
    Reader reader;
    for (Stream_Syntax syntax : {EXPLICIT_LITTLE, IMPLICIT_LITTLE}) {
        Stream whole = Manifold_File (syntax);
        for (size_t size = 132; size <= whole.bytes.size (); size++)
            Expect_The_Same (&reader, {whole.bytes.begin (), whole.bytes.begin () + static_cast<long> (size)},
                             std::to_string (syntax) + " cut at " + std::to_string (size));
    }
}

TEST (FileReader, AtOnceIsWhatThePhasesComeToForEveryChangedByte) {
    Reader reader;
    Stream whole = Manifold_File (EXPLICIT_LITTLE);
    for (size_t place = 132; place < whole.bytes.size (); place++) {
        for (int byte : {0x00, 0xE0, 0xFF}) {
            std::vector<unsigned char> bytes = whole.bytes;
            bytes[place]                     = static_cast<unsigned char> (byte);
            Expect_The_Same (&reader, bytes, std::to_string (place) + ": " + std::to_string (byte));
        }
    }
}

// Headers of elements, sequences, items and ends in any order, with lengths that fit and that don't.
static Stream Random_File (std::mt19937 *random) {
    auto   below  = [random] (uint32_t count) { return static_cast<uint32_t> ((*random) ()) % count; };
    Stream stream = Stream_Begin_File (below (4) ? EXPLICIT_LITTLE : below (2) ? IMPLICIT_LITTLE : EXPLICIT_BIG);
    for (uint32_t i = below (40); i > 0; i--) {
        static const char *const vrs[]  = {"SH", "DS", "UI", "US", "UN", "OB", "UT", "OX", "SQ", "ZZ"};
        uint16_t                 tag    = static_cast<uint16_t> (0x1140 + below (4));
        uint16_t                 group  = static_cast<uint16_t> (0x0008 + below (3));
        uint32_t                 length = below (2) ? 0xFFFFFFFF : 8 * below (12);
        switch (below (8)) {
        case 0:
        case 1: Stream_Add_Header (&stream, group, tag, "SQ", length); break;
        case 2:
        case 3: Stream_Add_Header (&stream, 0xFFFE, 0xE000, "", length); break;
        case 4: Stream_Add_Header (&stream, 0xFFFE, 0xE00D, "", 0); break;
        case 5: Stream_Add_Header (&stream, 0xFFFE, 0xE0DD, "", 0); break;
        default:
            Stream_Add_Bytes (&stream, group, below (9) ? tag : static_cast<uint16_t> (0), vrs[below (10)],
                              std::string (2 * below (6), below (2) ? '1' : 'x'));
        }
    }
    return stream;
}

TEST (FileReader, AtOnceIsWhatThePhasesComeToForRandomFiles) {
    Reader reader;
    for (uint32_t seed = 0; seed < 1000; seed++) {
        std::mt19937 random (seed);
        Expect_The_Same (&reader, Random_File (&random).bytes, "seed " + std::to_string (seed));
    }
}

// Such values can't be taken from the buffer as they are.
TEST (FileReader, AtOnceIsWhatThePhasesComeToForExchangedBytes) {
    Reader reader;
    Stream stream = Stream_Begin (IMPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe^John");
    std::vector<unsigned char> bytes = stream.bytes;
    for (size_t i = 0; i + 1 < bytes.size (); i += 2) std::swap (bytes[i], bytes[i + 1]);
    bytes.resize (200, 0);
    reader.settings.mode_start = MODE_SWAB;
    Expect_The_Same (&reader, bytes, "exchanged");
    reader.Nested (bytes);
    ASSERT_NE (nullptr, reader.Find (0x0010, 0x0010));
    EXPECT_EQ ("Doe^John", Value (reader.Find (0x0010, 0x0010)));
}

TEST (FileReader, NotesAloneAreWrittenPhaseByPhase) {
    Reader       reader;
    Log_Recorder log;
    reader.settings.kind_warning = 0;
    Stream stream                = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0001, "SH", "X"); // Retired,
    Stream_Add_Text (&stream, 0x0008, 0x0FFE, "SH", "X"); // and behind it one that nobody knows.
    reader.Nested (stream.bytes);
    EXPECT_TRUE (log.Contains ("Retired from DICOM")) << log.All ();
    size_t unknown = log.All ().find ("Unknown tag"), retired = log.All ().find ("Retired from");
    EXPECT_LT (unknown, retired);
}

TEST (FileReader, MemoryFailuresAtOnceAreToldAndLeakNothing) {
    Reader reader;
    Dictionary_Build (nullptr);
    reader.settings.kind_warning = reader.settings.kind_note = 0;
    reader.name      = reader.directory.Write ("file.dcm", Manifold_File (EXPLICIT_LITTLE).bytes);
    long        live = Memory_Live ();
    std::string said;
    std::string whole = Read_As (&reader, true, &said);
    for (long n = 1;; n++) {
        Log_Recorder log;
        Memory_Fail_At (n);
        reader.list = File_Read_List (nullptr, &reader.cursor, reader.name.c_str ());
        bool failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_TRUE (failed || whole == Fields (reader.list));
        EXPECT_EQ (failed, log.Contains ("memory error in") || log.Contains ("Unable to open file")) << n;
        List_Delete (nullptr, &reader.cursor, &reader.list);
        EXPECT_EQ (live, Memory_Live ()) << n;
        if (!failed) break;
        ASSERT_GT (10000, n);
    }
}

static std::string Description (const Attribute *attribute) {
    if (!attribute) return "(no attribute)";
    return attribute->description ? attribute->description : "(none)";
}

// What the file doesn't say is added, in items too; and of the structure, which gets names as well, nothing is left.
TEST (FileReader, ListIsCompleted) {
    Reader reader;
    Stream stream = Stream_Begin_File (IMPLICIT_LITTLE);
    Stream_Add_Long (&stream, 0x0008, 0x0000, "UL", 0);
    Stream_Add_Text (&stream, 0x0009, 0x0010, "LO", "ACME 1.0");
    Stream_Add_Short (&stream, 0x0009, 0x1001, "US", 7);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe^John");
    Stream_Open_Sequence (&stream, 0x0032, 0x1064, false);
    Stream_Open_Item (&stream, false);
    Stream_Add_Text (&stream, 0x0009, 0x1002, "LO", "inside");
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OW", "pixels");
    reader.Nested (stream.bytes);

    EXPECT_EQ ("\xF1\x02===== Group 0008 (Identifying) =======", Description (reader.Find (0x0008, 0x0000)));
    EXPECT_EQ ("Private Creator Data Element", Description (reader.Find (0x0009, 0x0010)));
    EXPECT_EQ ("ACME 1.0", Description (reader.Find (0x0009, 0x1001)));
    EXPECT_EQ ("(none)", Description (reader.Find (0x0010, 0x0010)));
    EXPECT_EQ (VR_PN, reader.Find (0x0010, 0x0010)->vr);
    EXPECT_EQ ("Pixel Data", Description (reader.Find (0x7FE0, 0x0010)));
    EXPECT_EQ (VR_OB, reader.Find (0x7FE0, 0x0010)->vr);

    const Attribute *sequence = reader.Find (0x0032, 0x1064);
    ASSERT_EQ (1, sequence->nb_item);
    EXPECT_EQ ("ACME 1.0", Description (sequence->item[0]));
    EXPECT_EQ ("(0032,1064)[(0009,1002)]", Outline (sequence).substr (0, 24));
    EXPECT_EQ (std::string::npos, Outline (reader.list).find ("FFFE"));
}

// The cleaned values are completed, the item tags among them, before those go.
TEST (FileReader, CompletionHasItsPlace) {
    Reader       reader;
    Log_Recorder log (5);
    Stream       stream = Small_File ();
    Stream_Open_Sequence (&stream, 0x0032, 0x1064, false);
    Stream_Open_Item (&stream, false);
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    reader.Nested (stream.bytes);
    int banner =
        Place (log, LOG_TRACE2, "-----           Complementing the info                                    -----");
    int start = Place (log, LOG_TRACE4, "in DICOM_Attribute_Complement()");
    int item  = Place (log, LOG_TRACE5, "DICOM_Attribute_Complement (fffe,e000)");
    int drop  = Place (log, LOG_TRACE5, "in DICOM_Attribute_Delete(fffe,ffff)");
    ASSERT_LT (0, banner);
    EXPECT_LT (banner, start);
    EXPECT_LT (start, item);
    EXPECT_LT (item, drop);
    EXPECT_EQ ("in DICOM_Attribute_Sequence_Reset()", log.lines[static_cast<size_t> (start) - 2].text);
}

TEST (FileReader, ExamplesGiveLists) {
    for (const Example &example : Examples_Make ()) {
        Reader       reader;
        Log_Recorder log;
        reader.Nested (example.bytes);
        EXPECT_LT (5, reader.Count ()) << example.name;
        EXPECT_EQ (example.name == "damaged_header.dcm", log.Contains ("reading stopped")) << log.All ();
        EXPECT_EQ (example.name == "bare_stream.dcm", log.Contains ("is not a valid part-10")) << log.All ();
        EXPECT_EQ (example.name == "damaged.dcm", log.Contains ("Invalid tag length")) << log.All ();
    }
}
