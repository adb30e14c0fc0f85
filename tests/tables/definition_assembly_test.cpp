// How the tables of a modality become its definition.
#include <chrono>

#include <gtest/gtest.h>

#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tests/support/definition_tables.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

struct Assembled : Definition_Tables {
    Test_List   list {&warning_settings};
    std::string warnings;
    int         result = -1;

    // The definition as an outline, or "failed".
    std::string Assemble (const std::string &modality = "X") {
        Log_Recorder log;
        result   = DICOM_Module_Assemble (nullptr, &warning_settings, modality.c_str (), &list.first);
        warnings = log.Text (LOG_WARNING);
        EXPECT_EQ (0, log.Count (LOG_ERROR));
        return result ? Outline (list.first) : "failed";
    }
};

TEST (DefinitionAssembly, ModulesAreReadNestedSortedAndCopied) {
    Assembled tables;
    tables.Module ("X", "; modules\n  Patient  \n\nOther One ; blanks stay\n");
    tables.Attributes ("Patient", "(0010,0010) type=2\n(0010,1002) type=3\n>include ID\n(0010,0020) type=2\n");
    tables.Attributes ("Other One", "(0008,0018) type=1\n(0008,0016) type=1\n");
    tables.Include ("ID", "(0010,0022) type=1C\n(0010,0020) type=1\n");
    EXPECT_EQ ("(0008,0016) (0008,0018) (0010,0010) (0010,0020) (0010,1002)[(0010,0020) (0010,0022)]",
               tables.Assemble ());
    EXPECT_EQ ("", tables.warnings);
    const Attribute *sequence = tables.list.first->next->next->next->next;
    EXPECT_EQ (VR_SQ, sequence->vr);
    EXPECT_EQ (Code ('1', 'C'), sequence->item[0]->next->type);
    EXPECT_EQ (1, sequence->item[0]->level);
}

TEST (DefinitionAssembly, ExampleOfTheGrammar) {
    Assembled tables;
    tables.Module ("CT_Image", "; modules of the CT image\nPatient\nGeneral_Study\nCT_Image\n");
    tables.Attributes ("Patient", "; Patient module\n"
                                  "(0010,0010) type=2 desc=\"Patient's Name\"\n"
                                  "(0010,0020) type=2\n"
                                  "(0010,0030) type=2 VR=DA\n"
                                  "=(0010,0040) type=2 VR=CS \"O\"\n"
                                  "(0010,1002) type=3 VR=SQ desc=\"Other Patient IDs Sequence\"\n"
                                  ">(0010,0020) type=1\n"
                                  ">(0010,0022) type=1C\n"
                                  "include Patient_Extras\n");
    tables.Include ("Patient_Extras", "(0010,2160) type=3\n-(0010,1000) type=3\n");
    EXPECT_EQ ("(0010,0010) (0010,0020) (0010,0030) (0010,0040) (0010,1000) "
               "(0010,1002)[(0010,0020) (0010,0022)] (0010,2160)",
               tables.Assemble ("CT_Image"))
        << "the mark \"-\" removes nothing";
    EXPECT_EQ ("WARNING: reading IOD file:DICOM_Module_CT_Image.txt line:3\n"
               "\t\t Unable to open attributes file:DICOM_Attributes_General_Study.txt\n"
               "WARNING: reading IOD file:DICOM_Module_CT_Image.txt line:4\n"
               "\t\t Unable to open attributes file:DICOM_Attributes_CT_Image.txt\n",
               tables.warnings);
    const Attribute *sex = tables.list.first->next->next->next;
    EXPECT_EQ (ORIGIN_MODULE | DEFAULT, sex->flags);
    EXPECT_EQ ("O ", Value (sex));
}

TEST (DefinitionAssembly, ExplicitEmptyItemMakesASequenceWithoutContent) {
    Assembled tables;
    tables.Module ("X", "A\n");
    tables.Attributes ("A", "(0400,0550)\n>(FFFE,E000)\n>(FFFE,E00D)\n(0400,0561)\n>(FFFE,E000)\n(0400,0600)\n");
    EXPECT_EQ ("(0400,0550)[] (0400,0561)[] (0400,0600)", tables.Assemble ());
    EXPECT_EQ ("", tables.warnings);
}

TEST (DefinitionAssembly, SequenceAtTheEndOfATableIsClosedBeforeTheNextTable) {
    Assembled tables;
    tables.Module ("X", "A\nB\n");
    tables.Attributes ("A", "(0010,1002)\n>(0010,0020)\n");
    tables.Attributes ("B", "(0010,2160)\n");
    EXPECT_EQ ("(0010,1002)[(0010,0020)] (0010,2160)", tables.Assemble ());
}

TEST (DefinitionAssembly, SecondSequenceWithTheSameTagJoinsTheFirst) {
    Assembled tables;
    tables.Module ("X", "A\nB\n");
    tables.Attributes ("A", "(0008,1140) type=3\n>(0008,1150) type=1\n");
    tables.Attributes ("B", "(0008,1140) type=1C\n>(0008,1155) type=1\n");
    EXPECT_EQ ("(0008,1140)[(0008,1150) (0008,1155)]", tables.Assemble ());
    EXPECT_EQ (Code ('1', 'C'), tables.list.first->type) << "the stricter type counts";
}

TEST (DefinitionAssembly, ValuesAreCleanedAndWarnedAboutLikeAFilesValues) {
    Assembled tables;
    tables.Module ("X", "A\n");
    tables.Attributes ("A", "(0020,0013) \"12.0\"\n(0008,0020) \"soon\"\n(0008,0016) \"1.2\"\n");
    EXPECT_EQ ("(0008,0016) (0008,0020) (0020,0013)", tables.Assemble ());
    const Attribute *uid = tables.list.first, *date = uid->next, *number = date->next;
    EXPECT_EQ (std::string ("1.2\0", 4), Value (uid));
    EXPECT_EQ ("(none)", Value (date)) << "not a date";
    EXPECT_EQ ("12", Value (number)) << "not an integer, but as good as one";
    EXPECT_NE (std::string::npos, tables.warnings.find ("(0008,0020)"));
    EXPECT_EQ (std::string::npos, tables.warnings.find ("(0008,0016)"));
}

TEST (DefinitionAssembly, WithoutADirectoryThereIsAWarning) {
    Assembled tables;
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ ("failed", tables.Assemble ());
    EXPECT_EQ ("WARNING: DICOM_Module_Dir is undefined!\n", tables.warnings);
}

TEST (DefinitionAssembly, UnknownModalityFallsBackToOther) {
    Assembled tables;
    tables.Module ("OT_Image", "A\nMissing\n");
    tables.Attributes ("A", "(0010,0010)\n");
    std::string missing =
        "WARNING: Unable to open module IOD file:DICOM_Module_%.txt in dir:" + tables.directory.path + "\n";
    std::string lines = "WARNING: reading IOD file:DICOM_Module_OT_Image.txt line:2\n"
                        "\t\t Unable to open attributes file:DICOM_Attributes_Missing.txt\n";
    EXPECT_EQ ("(0010,0010)", tables.Assemble ("Nobody"));
    EXPECT_EQ (std::string (missing).replace (missing.find ('%'), 1, "Nobody") + lines, tables.warnings);

    Assembled bare;
    missing = "WARNING: Unable to open module IOD file:DICOM_Module_OT_Image.txt in dir:" + bare.directory.path + "\n";
    EXPECT_EQ ("failed", bare.Assemble ("OT_Image"));
    EXPECT_EQ (missing, bare.warnings) << "nothing more when the other one is missing, too";
    EXPECT_EQ ("failed", bare.Assemble (std::string (5000, 'n')));
}

TEST (DefinitionAssembly, WithoutAnyAttributeItFails) {
    for (const char *module : {"", "; none\n", "Missing\n", "A"}) {
        Assembled tables;
        tables.Module ("X", module);
        Log_Recorder log (1);
        EXPECT_EQ (0, DICOM_Module_Assemble (nullptr, &warning_settings, "X", &tables.list.first));
        EXPECT_EQ ("Failed in DICOM_Attribute_Format()\n", log.Text (LOG_TRACE1));
        EXPECT_EQ (nullptr, tables.list.first);
    }
}

TEST (DefinitionAssembly, ModuleFileIsReadByTheRulesOfLines) {
    Assembled tables;
    tables.Module ("X", "A\r\n\tB\x01\nA");
    tables.Attributes ("A", "(0010,0010)\n");
    EXPECT_EQ ("(0010,0010)", tables.Assemble ());
    EXPECT_EQ ("WARNING: reading file:DICOM_Module_X.txt line:2\n\t\t Bad charact. 0x1 (pos:2)\n"
               "WARNING: reading IOD file:DICOM_Module_X.txt line:2\n"
               "\t\t Unable to open attributes file:DICOM_Attributes_B.txt\n"
               "WARNING: reading file:DICOM_Module_X.txt line:3\n\t\t Last line has no line feed, ignored\n",
               tables.warnings);
}

TEST (DefinitionAssembly, LongModuleNameIsNamedWhole) {
    Assembled   tables;
    std::string name = "DICOM_Attributes_" + std::string (2000, 'm') + ".txt";
    tables.Module ("X", "A\n" + std::string (2000, 'm') + "\n");
    tables.Attributes ("A", "(0010,0010)\n");
    EXPECT_EQ ("(0010,0010)", tables.Assemble ());
    EXPECT_EQ ("WARNING: reading IOD file:DICOM_Module_X.txt line:2\n\t\t Unable to open attributes file:" + name +
                   "\n",
               tables.warnings);
}

TEST (DefinitionAssembly, IncludesAreForgottenAtTheEnd) {
    Assembled tables;
    tables.Module ("X", "A\nA\n");
    tables.Attributes ("A", "include I\n");
    tables.Include ("I", "(0010,0010)\n");
    EXPECT_EQ ("(0010,0010)", tables.Assemble ());
    tables.Include ("I", "(0010,0020)\n");
    EXPECT_EQ ("(0010,0010) (0010,0020)", tables.Assemble ()) << "the list grows";
}

TEST (DefinitionAssembly, RecordsThatAreThereStayFirst) {
    Assembled tables;
    tables.Module ("X", "A\n");
    tables.Attributes ("A", "(0010,0010) type=2\n(0010,0020) type=2\n");
    Attribute *record = tables.list.Add (0x0010, 0x0020);
    record->flags     = ORIGIN_MODULE;
    record->type      = Code ('1', ' ');
    record->length    = 0;
    EXPECT_EQ ("(0010,0010) (0010,0020)", tables.Assemble ());
    EXPECT_EQ (record, tables.list.first->next);
    EXPECT_EQ (Code ('2', ' '), record->type) << "a later definition overwrites what has no value";
}

// --- trace -----------------------------------------------------------------

static const std::string RULE (79, '-');

static std::string Banner (const std::string &title) { return "\n\n\n\n" + RULE + "\n" + title + "\n" + RULE + "\n"; }

static std::string Trace (int level, int kind) {
    Assembled tables;
    tables.Module ("X", "A\n");
    tables.Attributes ("A", "(0010,1002)\n>(0010,0020)\n");
    Log_Recorder log (level);
    EXPECT_EQ (1, DICOM_Module_Assemble (nullptr, &warning_settings, "X", &tables.list.first));
    return log.Text (kind);
}

static size_t Occurrences (const std::string &text, const std::string &part) {
    size_t count = 0;
    for (size_t at = text.find (part); at != std::string::npos; at = text.find (part, at + 1)) count++;
    return count;
}

TEST (DefinitionAssembly, BannersFromLevelFour) {
    std::string banners = Banner ("-----                        From Module files                           ------") +
                          Banner ("-----                        Format of sequences                         ------") +
                          Banner ("-----                         Deleting DICOM tags                        ------") +
                          Banner ("-----                         Sorting DICOM tags                         ------") +
                          Banner ("-----                         copying DICOM tags                         ------") +
                          "\n\n\n\n" + RULE + "\n" + RULE + "\n" + RULE + "\n";
    for (int level : {0, 1, 3}) EXPECT_EQ ("", Trace (level, LOG_TRACE1));
    EXPECT_EQ (banners, Trace (4, LOG_TRACE1));
    EXPECT_EQ (banners, Trace (5, LOG_TRACE1));
}

TEST (DefinitionAssembly, ListingsSayWhatEachPhaseMade) {
    static const char LISTING[] = "Stool syntax: VR color:";
    EXPECT_EQ (2u, Occurrences (Trace (4, LOG_TRACE4), LISTING)) << "without item tags; sorted";
    EXPECT_EQ (2u, Occurrences (Trace (5, LOG_TRACE4), LISTING));
    EXPECT_EQ (3u, Occurrences (Trace (5, LOG_TRACE5), LISTING)) << "flat; nested; the definition";
    EXPECT_EQ ("", Trace (3, LOG_TRACE4));
}

TEST (DefinitionAssembly, FilesAreTraced) {
    Assembled tables;
    tables.Module ("X", " A\n");
    tables.Attributes ("A", "(0010,0010)\n");
    Log_Recorder log (4);
    DICOM_Module_Assemble (nullptr, &warning_settings, "X", &tables.list.first);
    EXPECT_EQ (0u, log.Text (LOG_TRACE4)
                       .find ("module IOD file:DICOM_Module_X.txt in dir:" + tables.directory.path +
                              "\nDICOM_Module_X.txt[1] ->  A\n"));
}

// --- damaged tables ---------------------------------------------------------

TEST (DefinitionAssembly, DeeperThanTheCursorIsWarnedAboutAndEnds) {
    Assembled tables;
    tables.Module ("X", "A\n");
    std::string text, depth;
    for (int i = 0; i < 40; i++, depth += ">") text += depth + "(0008,1140)\n";
    tables.Attributes ("A", text + depth + "(0010,0010)\n(0010,0020)\n");
    EXPECT_NE ("failed", tables.Assemble ());
    EXPECT_NE (std::string::npos, tables.warnings.find ("To many \"sequences\" in DICOM stream"));
}

// Pieces of the grammar in any order, the same in every build.
TEST (DefinitionAssembly, AnyTablesEndInAListOrNone) {
    static const std::string pieces[] = {"(0010,1002)", "(0010,0020)", "(0011,1010)",
                                         "(FFFE,E000)", "(FFFE,E00D)", "(FFFE,E0DD)",
                                         "(7FE0,0010)", "(FFFF,FFFF)", "(",
                                         ")",           ">",           ">>>",
                                         "!",           "=",           "-",
                                         "+",           "include A",   "include B",
                                         "include C",   "type=1C",     "type=",
                                         "VR=SQ",       "VR=UN",       "VR=OB\\OW",
                                         "VR=US",       "VR=DA",       "desc=\"a b\"",
                                         "desc=[",      "\"1\\2 3\"",  "\"\"",
                                         "\"",          " ",           "\t",
                                         "\r",          "\n",          "\n",
                                         "\n",          "\n",          ";",
                                         "\f",          "\x91",        "\x92",
                                         "\xFF",        "\x01",        std::string (1, '\0')};
    static const size_t      COUNT    = sizeof pieces / sizeof *pieces;
    uint32_t                 random   = 1;
    auto                     next     = [&random] (size_t bound) {
        random = random * 1664525u + 1013904223u;
        return (random >> 8) % bound;
    };
    Dictionary_Build (nullptr);
    long live = Memory_Live ();
    for (int round = 0; round < 150; round++) {
        Definition_Tables tables;
        Log_Recorder      log;
        for (const char *name : {"A", "B", "C", "D"}) {
            std::string text;
            for (size_t i = next (120); i; i--) {
                text += pieces[next (COUNT)];
                if (next (3) == 0) text += "\n(0008,1140) type=1\n";
            }
            if (*name == 'D') tables.Attributes (name, text);
            else tables.Include (name, text);
        }
        tables.Module ("X", "D\nD\n");
        Test_List list (round % 2 ? &warning_settings : nullptr);
        DICOM_Module_Assemble (nullptr, list.cursor.settings, "X", &list.first);
        EXPECT_EQ (0, log.Count (LOG_ERROR));
    }
    EXPECT_EQ (live, Memory_Live ());
}

// --- cost and memory -------------------------------------------------------

TEST (DefinitionAssembly, TwentyThousandAttributesTakeLinearTime) {
    Assembled tables;
    tables.Module ("X", "A\nB\n");
    std::string a = "(5200,9229)\n", b = "(5200,9230)\n";
    for (int group = 0x0008; group < 0x0030; group += 2)
        for (int element = 0; element < 500; element++) {
            char tag[16];
            snprintf (tag, sizeof tag, ">(%04X,%04X)\n", group, 0x9000 + element);
            a += tag;
            b += tag;
        }
    tables.Attributes ("A", a);
    tables.Attributes ("B", b);
    auto start = std::chrono::steady_clock::now ();
    EXPECT_EQ (1, (tables.Assemble (), tables.result));
    EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (5)) << "quadratic time is minutes";
    EXPECT_EQ (20000 / 2, [&] {
        int count = 0;
        for (Attribute *one = tables.list.first->item[0]; one; one = one->next) count++;
        return count;
    }());
}

TEST (DefinitionAssembly, AttributesOfAllTablesCountTogether) {
    Assembled   tables;
    std::string text;
    for (int i = 0; i < DEFINITION_RECORDS / 5; i++) text += "(0010,0020)\n";
    tables.Module ("X", "A\nA\nA\nA\nA\nB\nB\n");
    tables.Attributes ("A", text);
    tables.Attributes ("B", "(0010,1002)\n(0010,2160)\n");
    EXPECT_EQ ("(0010,0020)", tables.Assemble ());
    EXPECT_EQ ("WARNING: reading Attribute file:DICOM_Attributes_B.txt line:1\n"
               "\t\t Too many attributes in DICOM tables! (max=250000)\n",
               tables.warnings)
        << "once";
}

TEST (DefinitionAssembly, EveryFailureOfMemoryIsReportedAndLeavesNothingBehind) {
    Definition_Tables tables;
    tables.Module ("X", "A\nB\n");
    tables.Attributes ("A", "(0010,0010) desc=\"Name\" \"Doe\"\n(0010,1002)\n>include ID\n>(0010,0022)\n");
    tables.Attributes ("B", "include ID\n(0010,2160) VR=US \"1\\2\"\n");
    tables.Include ("ID", "(0010,0020) \"x\"\ninclude Inner\n");
    tables.Include ("Inner", "(0010,0021) desc=y\n");
    Dictionary_Build (nullptr);

    std::string whole;
    long        live     = Memory_Live ();
    int         failures = 0, without_failure = 0;
    for (long n = 0; n < 1000; n++) {
        Log_Recorder log;
        {
            Test_List list (&warning_settings);
            Memory_Fail_At (n);
            int result = DICOM_Module_Assemble (nullptr, &warning_settings, "X", &list.first);
            int failed = Memory_Failed ();
            Memory_Fail_At (0);
            if (!n) whole = Outline (list.first);
            if (n && !failed) break;
            // A file whose reader gets no memory can't be opened; a value that can't be corrected stays as it is.
            int goes_on = log.Count (LOG_ERROR, " of file \n") + log.Count (LOG_ERROR, " of cleanup \n");
            EXPECT_TRUE (!n || goes_on || !result) << n << " " << log.Text (LOG_ERROR);
            EXPECT_EQ (n ? 1 : 0, log.Count (LOG_ERROR, "memory error in"));
            failures += n && !result;
            without_failure += n && result;
        }
        EXPECT_EQ (live, Memory_Live ()) << n;
    }
    EXPECT_LT (20, failures);
    EXPECT_LT (3, without_failure);
    Test_List list (&warning_settings);
    EXPECT_EQ (1, DICOM_Module_Assemble (nullptr, &warning_settings, "X", &list.first));
    EXPECT_EQ (whole, Outline (list.first));
}

TEST (DefinitionAssembly, FailedCopyIsTraced) {
    Definition_Tables tables;
    tables.Module ("X", "A\n");
    tables.Attributes ("A", "(0010,0010)\n");
    Dictionary_Build (nullptr);
    int traced = 0;
    for (long n = 1; n < 100; n++) {
        Log_Recorder log (1);
        Test_List    list (&warning_settings);
        Memory_Fail_At (n);
        DICOM_Module_Assemble (nullptr, &warning_settings, "X", &list.first);
        int failed = Memory_Failed ();
        Memory_Fail_At (0);
        if (!failed) break;
        traced += log.Text (LOG_TRACE1) == "Failed in DICOM_Attribute_Copy()\n";
    }
    EXPECT_EQ (1, traced) << "the copied record";
}
