// Whole comparisons while memory runs out, at every place where they ask for some: two files as from the command line, two
// files for the window, and one file with its definition.
#include <gtest/gtest.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "compare/comparison_run.h"
#include "compare/difference_list.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/data_dictionary.h"
#include "tests/support/definition_tables.h"
#include "tests/support/log_recorder.h"
#include "tests/support/memory_failures.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

// --- files -----------------------------------------------------------------

static void Add_Nested (Stream *stream, int items, const char *code) {
    Stream_Open_Sequence (stream, 0x0008, 0x1140, false);
    for (int i = 0; i < items; i++) {
        Stream_Open_Item (stream, i & 1);
        Stream_Add_Text (stream, 0x0008, 0x1150, "UI", "1.2.3");
        Stream_Open_Sequence (stream, 0x0040, 0xA170, true);
        Stream_Open_Item (stream, true);
        Stream_Add_Text (stream, 0x0008, 0x0100, "SH", code);
        Stream_Close_Item (stream);
        Stream_Close_Sequence (stream);
        Stream_Close_Item (stream);
    }
    Stream_Close_Sequence (stream);
}

// Every kind of place that asks for memory: values that are corrected, long ones, one large enough to be mapped, private
// ones, ones of many numbers, and a tag that comes late.
static Stream File_Of (const char *name, int items, char filling) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", "1.2.840.10008.5.1.4.1.1.2");
    Stream_Add_Text (&stream, 0x0008, 0x0030, "TM", "10:20:30");
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "ct");
    Add_Nested (&stream, items, name);
    Stream_Add_Text (&stream, 0x0009, 0x0010, "LO", "SOME MAKER");
    Stream_Add_Text (&stream, 0x0009, 0x1001, "LO", name);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", name);
    Stream_Add_Text (&stream, 0x0018, 0x0060, "DS", "120,5");
    Stream_Add_Text (&stream, 0x0020, 0x0013, "IS", "1.5");
    Stream_Add_Text (&stream, 0x0020, 0x4000, "LT", std::string (2000, filling));
    Stream_Add_Short (&stream, 0x0028, 0x0010, "US", static_cast<uint16_t> (items));
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OB", std::string (70000, filling));
    Stream_Add_Text (&stream, 0x0010, 0x0020, "LO", "late");
    return stream;
}

// --- trials ----------------------------------------------------------------

static std::string Tree (const Attribute *list) {
    std::string text;
    for (const Attribute *record = list; record; record = record->next) {
        char line[64];
        snprintf (line, sizeof line, "(%04X,%04X)=%d ", record->group, record->element, record->flags);
        text += line + std::string (record->data ? reinterpret_cast<const char *> (record->data) : "-") + " " +
                (record->description ? record->description : "-") + "\n";
        for (int32_t i = 0; i < record->nb_item; i++) text += "[" + Tree (record->item[i]) + "]\n";
    }
    return text;
}

// What the window would show of the last run.
static std::string Shown () {
    std::string text = Tree (Comparison_Last.merged);
    for (int i = 0; i < Rows.count; i++) {
        const Row *row = &Rows.rows[i];
        text += std::to_string (row->line) + " " + std::to_string (row->level) + " " + std::to_string (row->kind) +
                " " + (row->name ? row->name : "-") + "\n";
    }
    return text;
}

// What a run shows whose only failure is this one, beside the message. Where nothing stands, it goes on without the value,
// the description or the correction that there was no memory for.
static const struct {
    const char *variable; // Or its beginning.
    const char *begin;    // Of the result: its count.
    const char *part;
} CONSEQUENCES[] = {
    {"comparison_run: ", "0\n", ""},
    {"difference_list: List->name", "0\n", ""},
    {"NEMA_Read_Data: buf", "", "2: WARNING: reading stopped at byte "},
    {"NEMA_Tag_Attribute: pt->item", "", "2:     Failed to insert tag("},
    {"definition_value: ", "", "2: unable to read Module def. for CT_Image\n"},
    {"definition_files: tag.description", "", "2: unable to read Module def. for CT_Image\n"},
    {"sort: ", "", "2: unable to read Module def. for CT_Image\n"},
    {"modality: ", "", "2: unable to read Module def. for CT_Image\n"},
};

static void Expect_Consequence (const std::string &result, const std::vector<std::string> &reports) {
    std::string variable = Memory_Variable (reports.at (0));
    for (const auto &line : CONSEQUENCES) {
        if (variable.find (line.variable) != 0) continue;
        EXPECT_EQ (0u, result.find (line.begin)) << variable << "\n" << result;
        EXPECT_NE (std::string::npos, result.find (line.part)) << variable << "\n" << result;
    }
}

struct Failing_Comparison {
    Definition_Tables   tables;
    Temporary_Directory directory;
    Settings            settings = {};
    std::string         a, b;
    int                 batch       = 0;
    int                 trace_level = 0;

    std::vector<std::string> reports; // Since they were asked for.

    explicit Failing_Comparison (bool two_files) {
        settings.mode_start   = MODE_EXPLICIT;
        settings.kind_warning = LOG_WARNING;
        settings.kind_note    = LOG_REPORT;
        a                     = directory.Write ("a.dcm", File_Of ("Doe^John", 2, 'x').bytes);
        if (two_files) b = directory.Write ("b.dcm", File_Of ("Doe^Jane", 3, 'y').bytes);
        tables.Module ("CT_Image", "Patient\nCT Image\n");
        tables.Attributes ("Patient", "(0008,0016) type=1\n(0010,0010) type=2 desc=\"Who it is\"\n"
                                      "(0010,0020) type=2 \"4711\"\ninclude Codes\n");
        tables.Attributes ("CT Image", "(0018,0060) type=2\n(0008,1140) type=3 VR=SQ\n>(0008,1150) type=1\n"
                                       ">include Codes\n(0028,0010) type=1 VR=US \"512\"\n");
        tables.Include ("Codes", "(0040,A170) type=3 VR=SQ\n>(0008,0100) type=1C\n");
        tables.Private ("SOME MAKER", "(0009,1001) VR=SH\n");
    }
    ~Failing_Comparison () { End (); }

    // Count, all that was told, and what would be shown. A trace also tells what was cached.
    std::string Run () {
        Log_Recorder log (trace_level);
        int          count = Comparison_Start (nullptr, &settings, a.c_str (), b.c_str (), batch);
        std::string  text  = std::to_string (count) + "\n";
        for (const Log_Line &line : log.lines)
            if (line.kind == LOG_ERROR) reports.push_back (line.text);
            else if (line.kind < LOG_TRACE1) text += std::to_string (line.kind) + ": " + Clean (line.text) + "\n";
        return text + Shown ();
    }

    void End () {
        Comparison_Free (nullptr);
        DICOM_Module_Free (nullptr);
        DICOM_Module_Include_Free (nullptr);
        DICOM_Module_Private_Free (nullptr);
        NEMA_Value_Rings_Free ();
        Dictionary_Reset (nullptr, 0);
    }

    Memory_Trial Trial () {
        Memory_Trial trial;
        trial.run     = [this] { return Run (); };
        trial.end     = [this] { End (); };
        trial.reports = [this] {
            std::vector<std::string> taken;
            taken.swap (reports);
            return taken;
        };
        return trial;
    }

    void Fail (const std::vector<std::string> &expected) {
        for (Memory_Loss loss : {LOSS_OF_ONE, LOSS_OF_TWO, LOSS_OF_ALL}) {
            Memory_Trial trial = Trial ();
            if (loss == LOSS_OF_ONE) trial.check = Expect_Consequence;
            std::set<std::string> told = Every_Memory_Failure (trial, loss);
            for (const std::string &variable : expected)
                EXPECT_TRUE (loss == LOSS_OF_ALL || told.count (variable)) << variable;
        }
    }
};

static const std::vector<std::string> BOTH = {"comparison_run: Name_File_A",
                                              "file: file",
                                              "NEMA_Read_Data: buf",
                                              "value: block",
                                              "NEMA_Read_Value: V_Int[cc]",
                                              "NEMA_Tag_Attribute: insert",
                                              "NEMA_Tag_Attribute: pt->item",
                                              "NEMA_Tag_Complement: creators->slots",
                                              "NEMA_Tag_Complement: tag->description",
                                              "cleanup: float_str",
                                              "cleanup: int_str",
                                              "cleanup: new_time",
                                              "cleanup: tag->data",
                                              "data_dictionary: entries",
                                              "data_dictionary: names",
                                              "data_dictionary: nodes",
                                              "definition_private: Private_List",
                                              "definition_private: Private_Name",
                                              "definition_private: Private_Name[Private_Nb]",
                                              "definition_private: Private_Table",
                                              "syntax_check: mom_tag.data",
                                              "syntax_check: new_time"};

static const std::vector<std::string> WINDOW = {"NEMA_Read_Value: V_Str[cc]",
                                                "NEMA_Tag_Copy: target->description",
                                                "NEMA_Tag_Copy: target->item",
                                                "attribute_comparison: tag->data",
                                                "attribute_comparison: tag->description",
                                                "comparison_run: List->name",
                                                "definition_files: Include_Name[Include_Nb]",
                                                "definition_files: table",
                                                "definition_files: tag.description",
                                                "definition_value: tag->data",
                                                "difference_list: (*list)",
                                                "difference_list: (*list)[line].name",
                                                "difference_list: (*list)[start].name",
                                                "difference_list: List->name",
                                                "difference_list: line_rows",
                                                "modality: Modality_Name[Modality_Nb]",
                                                "sort: loud",
                                                "sort: nodes"};

static std::vector<std::string> operator+ (std::vector<std::string> a, const std::vector<std::string> &b) {
    a.insert (a.end (), b.begin (), b.end ());
    return a;
}

TEST (MemoryFailures, BatchRunOfTwoFiles) {
    Failing_Comparison run (true);
    run.batch = 1;
    run.Fail (BOTH + std::vector<std::string> {"comparison_run: Name_File_B"});
}

// Not the reason that the system had for something else before.
TEST (MemoryFailures, AFileThatThereIsNoMemoryForIsAnEmptySide) {
    Failing_Comparison run (true);
    run.batch = 1;
    Memory_Fail_At (3);
    std::string result = run.Run ();
    Memory_Fail_At (0);
    ASSERT_EQ (1u, run.reports.size ());
    EXPECT_EQ ("file: file", Memory_Variable (run.reports[0]));
    EXPECT_NE (std::string::npos, result.find ("2: ERROR: Unable to open file\n2: [ERROR_NOT_ENOUGH_MEMORY] "));
    EXPECT_NE (std::string::npos, result.find ("\n2: file: (" + run.a + ")\n"));
    EXPECT_EQ (0u, result.find ("23\n")) << result;
}

// Listings decode every value.
TEST (MemoryFailures, TracedBatchRunOfTwoFiles) {
    Failing_Comparison run (true);
    run.batch                  = 1;
    run.trace_level            = 5;
    std::set<std::string> told = Every_Memory_Failure (run.Trial (), LOSS_OF_ONE);
    for (const std::string &variable : BOTH) EXPECT_TRUE (told.count (variable)) << variable;
}

TEST (MemoryFailures, RunOfTwoFilesForTheWindow) {
    Failing_Comparison run (true);
    run.Fail (BOTH + WINDOW + std::vector<std::string> {"comparison_run: Name_File_B"});
}

TEST (MemoryFailures, RunOfAFileWithItsDefinition) {
    Failing_Comparison run (false);
    run.Fail (BOTH + WINDOW);
}
