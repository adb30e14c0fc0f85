#include "tests/hostile/feed.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "attribute/NEMA_Tag_Attribute.h"
#include "compare/comparison_run.h"
#include "compare/file_reader.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/data_dictionary.h"
#include "tests/hostile/expected.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const char CT[] = "1.2.840.10008.5.1.4.1.1.2";

static void Add_Items (Stream *stream, bool defined_length) {
    for (const char *code : {"T-A0100", "T-D3000"}) {
        Stream_Open_Item (stream, defined_length);
        Stream_Add_Text (stream, 0x0008, 0x0100, "SH", code);
        defined_length = !defined_length;
        Stream_Close_Item (stream);
    }
}

Stream Everything (Stream_Syntax syntax) {
    Stream stream = Stream_Begin_File (syntax);
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", CT);
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    Stream_Open_Item (&stream, true);
    Stream_Open_Sequence (&stream, 0x0040, 0xA170, true);
    Add_Items (&stream, true);
    Stream_Close_Sequence (&stream);
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    Stream_Add_Text (&stream, 0x0009, 0x0010, "LO", "TEST");
    Stream_Add_Bytes (&stream, 0x0009, 0x1001, "UN", "ab");
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
    Stream_Open_Sequence (&stream, 0x0010, 0x1002, true);
    Stream_Open_Item (&stream, false);
    Stream_Open_Sequence (&stream, 0x0040, 0xA170, false);
    Add_Items (&stream, false);
    Stream_Close_Sequence (&stream);
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    Stream_Add_Short (&stream, 0x0028, 0x0010, "US", 2);
    Stream_Open_Sequence (&stream, 0x7FE0, 0x0010, false, "OB");
    Stream_Add_Length (&stream, 0xFFFE, 0xE000, "", 0, "");
    Stream_Add_Length (&stream, 0xFFFE, 0xE000, "", 6, "pixels");
    Stream_Close_Sequence (&stream);
    Stream_Add_Bytes (&stream, 0xFFFC, 0xFFFC, "OB", std::string (6, '\0'));
    return stream;
}

// What the last run leaves for the view, and decoded values.
static void Forget () {
    Comparison_Free (nullptr);
    NEMA_Value_Rings_Free ();
}

Feed::Feed () {
    settings.kind_warning = LOG_WARNING;
    settings.kind_note    = LOG_REPORT;
    settings.mode_start   = MODE_EXPLICIT;
    tables.Module ("CT_Image", "Patient\n");
    tables.Module ("OT_Image", "Patient\n");
    tables.Attributes ("Patient", "(0008,0016) type=1\n(0010,0010) type=2\n(0010,1002) type=1C VR=SQ\n"
                                  ">(0010,0020) type=1\n>(0040,A170) type=3 VR=SQ\n>>(0008,0100) type=1\n");
    good = tables.directory.Write ("good.dcm", Everything (EXPLICIT_LITTLE).bytes);
    Dictionary_Build (nullptr);
    Run (good, "", 0); // What is kept for the next run, such as tables, is there from now on.
}

Feed::~Feed () { Forget (); }

std::string Feed::Write (const std::vector<unsigned char> &bytes) {
    return tables.directory.Write ("hostile.dcm", bytes);
}

std::string Feed::Sparse (const std::string &name, const Stream &stream, uintmax_t size) {
    std::string path = tables.directory.Write (name, stream.bytes);
    std::filesystem::resize_file (path, size);
    return path;
}

// --- alone -----------------------------------------------------------------

static std::string Text_Of (const Attribute *list) {
    std::string text;
    for (const Attribute *record = list; record; record = record->next) {
        Expected_Element element = {};
        element.group            = record->group;
        element.element          = record->element;
        element.vr               = record->vr_file;
        element.length           = record->length;
        element.pos_tag          = record->pos_tag;
        element.pos_data         = record->pos_data;
        element.has_data         = record->data != nullptr;
        text += Text_Of (element);
    }
    return text;
}

static std::string Text_Of (const Expected_Reading &reading) {
    std::string text;
    for (const Expected_Element &element : reading.elements) text += Text_Of (element);
    return text;
}

static std::string Stopped (long position, size_t size) {
    return "WARNING: reading stopped at byte " + std::to_string (position) + " of " + std::to_string (size);
}

void Feed::Elements (const std::vector<unsigned char> &bytes) {
    Expected_Reading expected = Expect (bytes);
    std::string      name     = Write (bytes);
    SequenceCursor   cursor   = {};
    Log_Recorder     log;
    cursor.settings = &settings;
    long       live = Memory_Live ();
    Attribute *list = File_Read_Elements (nullptr, &cursor, name.c_str ());
    EXPECT_EQ (Text_Of (expected), Text_Of (list)) << log.All ();
    List_Delete (nullptr, &cursor, &list);
    EXPECT_EQ (live, Memory_Live ());

    bool mark_missing = log.Contains ("End of File while reading: (" +
                                      std::to_string (bytes.size () < 128 ? 0 : bytes.size () - 128) + " /vs/ 4)");
    EXPECT_EQ (!expected.readable, mark_missing) << log.All ();
    EXPECT_EQ (expected.stopped >= 0, log.Contains (Stopped (expected.stopped, bytes.size ())))
        << expected.stopped << log.All ();
    EXPECT_EQ (expected.stopped >= 0, log.Contains ("reading stopped")) << log.All ();
    EXPECT_EQ (expected.odd, log.Count (LOG_WARNING, "tag lenght is odd in tag")) << log.All ();
    EXPECT_EQ (expected.cut, log.Count (LOG_WARNING, "Invalid tag length (size=")) << log.All ();
    EXPECT_EQ (0, log.Count (LOG_ERROR)) << log.All ();
}

static int Count (const Attribute *list) {
    int count = 0;
    for (const Attribute *record = list; record; record = record->next) {
        count++;
        for (int32_t i = 0; i < record->nb_item; i++) count += Count (record->item[i]);
    }
    return count;
}

int Attributes_Read (const Settings *settings, const std::string &name) {
    SequenceCursor cursor = {};
    cursor.settings       = settings;
    Attribute *list       = File_Read_List (nullptr, &cursor, name.c_str ());
    int        count      = Count (list);
    List_Delete (nullptr, &cursor, &list);
    return count;
}

std::string Feed::Outline (const std::string &name) {
    SequenceCursor cursor = {};
    cursor.settings       = &settings;
    Attribute  *list      = File_Read_List (nullptr, &cursor, name.c_str ());
    std::string outline   = ::Outline (list);
    List_Delete (nullptr, &cursor, &list);
    return outline;
}

std::string Feed::Structural (const std::string &name) {
    static const char *const ABOUT[] = {"sequence", "sorted", "Syntax Error!"};

    Log_Recorder log;
    Attributes_Read (&settings, name);
    std::string text;
    for (const Log_Line &line : log.lines)
        for (const char *about : ABOUT) {
            std::string clean = Clean (line.text);
            if (line.kind != LOG_WARNING || clean.find (about) == std::string::npos) continue;
            text += (text.empty () ? "" : "\n") + clean.substr (clean.find_first_not_of (' '));
            break;
        }
    return text;
}

// --- compared --------------------------------------------------------------

Run_Result Feed::Run (const std::string &a, const std::string &b, int batch) {
    Log_Recorder log;
    int          count = Comparison_Start (nullptr, &settings, a.c_str (), b.c_str (), batch);
    int          times = batch ? 1 : 2;
    std::string  found = "Found " + std::to_string (count) + " differences";
    EXPECT_EQ (count >= 1 ? times : 0, log.Count (LOG_AUDIT, found)) << log.All ();
    EXPECT_EQ (times, log.Count (LOG_REPORT, count >= 1 ? found : "No changes")) << log.All ();
    EXPECT_EQ (0, log.Count (LOG_ERROR)) << log.All ();
    return {count, log.Text (LOG_WARNING)};
}

int Feed::Comparisons (const std::string &name, int attributes) {
    Forget ();
    long live  = Memory_Live ();
    int  there = Attributes_Read (&settings, name);
    EXPECT_LE (attributes, there);
    EXPECT_EQ (there, Run (name, "", 0).count) << "alone every attribute counts";

    int count = Run (name, good, 1).count;
    for (int batch = 0; batch < 2; batch++) {
        EXPECT_EQ (0, Run (name, name, batch).count) << "it equals itself, batch " << batch;
        EXPECT_EQ (count, Run (name, good, batch).count) << "batch " << batch;
        EXPECT_EQ (count, Run (good, name, batch).count) << "batch " << batch;
    }
    Forget ();
    EXPECT_EQ (live, Memory_Live ());
    return count;
}

void Feed::All (const std::vector<unsigned char> &bytes) {
    Elements (bytes);
    Comparisons (Write (bytes), Expect (bytes).Attributes ());
}

// --- refused ---------------------------------------------------------------

// As much of a name as every message has room for.
static std::string Shown (const std::string &name) { return name.substr (0, 10000); }

static void Expect_Not_Opened (const Settings *settings, const std::string &name, const std::string &reason) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    cursor.settings       = settings;
    EXPECT_EQ (nullptr, File_Read_Elements (nullptr, &cursor, name.c_str ()));
    EXPECT_EQ (3, log.Count (LOG_WARNING)) << log.All ();
    EXPECT_TRUE (log.Contains ("ERROR: Unable to open file")) << log.All ();
    EXPECT_TRUE (log.Contains (reason)) << log.All ();
    EXPECT_TRUE (log.Contains (Clean ("file: (" + Shown (name)))) << log.All ();
}

void Feed::Refused (const std::string &name, const std::string &reason) {
    SCOPED_TRACE (name.substr (0, 100));
    Expect_Not_Opened (&settings, name, reason);
    for (int batch = 0; batch < 2; batch++) {
        EXPECT_EQ (GOOD_ATTRIBUTES, Run (name, good, batch).count);
        EXPECT_EQ (GOOD_ATTRIBUTES, Run (good, name, batch).count);
        EXPECT_EQ (0, Run (name, name, batch).count);
    }
    EXPECT_EQ (0, Run (name, "", 0).count);
}

void Feed::Missing (const std::string &name) {
    SCOPED_TRACE (name.substr (0, 100));
    Expect_Not_Opened (&settings, name, "");
    EXPECT_EQ (GOOD_ATTRIBUTES, Run (name, good, 0).count);
    EXPECT_EQ (GOOD_ATTRIBUTES, Run (good, name, 0).count);
    EXPECT_EQ (0, Run (name, "", 0).count);
    for (const std::string &other : {good, name}) {
        Log_Recorder log;
        EXPECT_EQ (COMPARISON_FAILED, Comparison_Start (nullptr, &settings, name.c_str (), other.c_str (), 1));
        EXPECT_EQ (1, log.Count (LOG_AUDIT, Clean ("ERROR: Unable to open file: " + Shown (name)))) << log.All ();
        EXPECT_EQ (0, log.Count (LOG_REPORT, "Reading: ")) << log.All ();
    }
}
