// One file against the definition of its SOP class, with small tables of the test's own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "attribute/NEMA_Tag_Attribute.h"
#include "compare/attribute_comparison.h"
#include "compare/comparison_run.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

static const char CT[] = "1.2.840.10008.5.1.4.1.1.2";
static const char MR[] = "1.2.840.10008.5.1.4.1.1.4";

struct Modality_Run {
    Temporary_Directory directory;
    Settings            settings = {};
    std::string         a;

    Modality_Run () {
        settings.mode_start = MODE_EXPLICIT;
        DICOM_Module_Dir_Set (directory.path.c_str ());
        directory.Write ("DICOM_Module_CT_Image.txt", std::string ("Patient\nCT Image\n"));
        directory.Write ("DICOM_Module_OT_Image.txt", std::string ("Patient\n"));
        directory.Write ("DICOM_Attributes_Patient.txt", std::string ("(0008,0016) type=1\n"
                                                                      "(0010,0010) type=2 desc=\"Who it is\"\n"
                                                                      "(0010,0030) type=3\n"
                                                                      "(0010,1002) type=1C VR=SQ\n"
                                                                      ">(0010,0020) type=1\n"
                                                                      ">(0010,0021) type=2C\n"));
        directory.Write ("DICOM_Attributes_CT Image.txt", std::string ("(0018,0060) type=2\n(0009,0010) type=3\n"));
    }
    ~Modality_Run () {
        Comparison_Free (nullptr);
        DICOM_Module_Free (nullptr);
        DICOM_Module_Private_Free (nullptr);
        NEMA_Value_Rings_Free ();
        DICOM_Module_Dir_Set ("");
    }

    void Write (const Stream &stream) { a = directory.Write ("a.dcm", stream.bytes); }
    int  Start () { return Comparison_Start (nullptr, &settings, a.c_str (), "", 0); }
};

// Eight attributes at all depths.
static Stream File_Of (const char *sop_class) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", sop_class);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe^John");
    Stream_Open_Sequence (&stream, 0x0010, 0x1002, true);
    Stream_Open_Item (&stream, true);
    Stream_Add_Text (&stream, 0x0010, 0x0020, "LO", "4711");
    Stream_Add_Text (&stream, 0x0010, 0x0022, "CS", "TEXT");
    Stream_Close_Item (&stream);
    Stream_Close_Sequence (&stream);
    Stream_Add_Text (&stream, 0x0018, 0x0060, "DS", "120");
    Stream_Add_Text (&stream, 0x0020, 0x4000, "LT", "none");
    return stream;
}

// "(0010,0010)=128", items in brackets.
static std::string Codes (const Attribute *list) {
    std::string text;
    for (const Attribute *record = list; record; record = record->next) {
        char code[32];
        snprintf (code, sizeof code, "(%04X,%04X)=%d", record->group, record->element, record->flags);
        text += (text.empty () ? "" : " ") + std::string (code);
        for (int32_t i = 0; i < record->nb_item; i++) text += "[" + Codes (record->item[i]) + "]";
    }
    return text;
}

static const Attribute *Find (const Attribute *list, uint16_t group, uint16_t element) {
    while (list && (list->group != group || list->element != element)) list = list->next;
    return list;
}

static std::string Type (const Attribute *attribute) {
    if (!attribute) return "(no attribute)";
    return {Code_First (attribute->type, '-'), Code_Second (attribute->type, '-')};
}

// The text that the merged list has as value.
static std::string Shown (const Attribute *attribute) {
    return attribute && attribute->data ? reinterpret_cast<const char *> (attribute->data) : "(none)";
}

static std::string Description (const Attribute *attribute) {
    return attribute && attribute->description ? attribute->description : "(none)";
}

// --- what a run finds ------------------------------------------------------

TEST (ModalityRun, EveryAttributeIsClassified) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ ("(0002,0010)=64 (0008,0016)=128 (0009,0010)=0 (0010,0010)=128 (0010,0030)=0 "
               "(0010,1002)=128[(0010,0020)=128 (0010,0021)=0 (0010,0022)=64] (0018,0060)=128 (0020,4000)=64",
               Codes (Comparison_Last.merged));
    EXPECT_EQ ("", log.Text (LOG_WARNING));
}

TEST (ModalityRun, ReportsComeInTheirOrder) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    run.Start ();
    EXPECT_EQ ("    Compare A: " + run.a +
                   "\n          /vs/     B: Modality description\n"
                   "    Reading: " +
                   run.a + "\n\n    Reading DICOM Modality tables for: " + run.a +
                   "\n    Analysing differences\n"
                   "Found 8 differences\nFound 8 differences\n",
               log.Text (LOG_REPORT));
    EXPECT_TRUE (log.Has (LOG_REPORT, "    Reading DICOM Modality tables for:\x01 " + run.a));
    EXPECT_EQ ("Found 8 differences\nFound 8 differences\n", log.Text (LOG_AUDIT));
}

TEST (ModalityRun, TextsAndDescriptions) {
    Modality_Run run;
    run.Write (File_Of (CT));
    run.Start ();
    const Attribute *merged = Comparison_Last.merged;
    EXPECT_EQ ("       \"Doe^John\"", Shown (Find (merged, 0x0010, 0x0010)));
    EXPECT_EQ ("", Shown (Find (merged, 0x0010, 0x0030)));
    EXPECT_EQ ("       \"none\"", Shown (Find (merged, 0x0020, 0x4000)));
    EXPECT_EQ ("       (sequence)", Shown (Find (merged, 0x0010, 0x1002)));
    EXPECT_EQ ("Who it is", Description (Find (merged, 0x0010, 0x0010)));
    EXPECT_EQ ("Patient's Birth Date", Description (Find (merged, 0x0010, 0x0030)));
    EXPECT_EQ ("Image Comments", Description (Find (merged, 0x0020, 0x4000)));
    // The definition is completed as a file is.
    EXPECT_EQ ("Private Creator Data Element", Description (Find (merged, 0x0009, 0x0010)));
}

TEST (ModalityRun, AttributesOfTheFileGetTheirTypes) {
    Modality_Run run;
    run.Write (File_Of (CT));
    run.Start ();
    const Attribute *merged = Comparison_Last.merged, *item = Find (merged, 0x0010, 0x1002)->item[0];
    EXPECT_EQ ("1 ", Type (Find (merged, 0x0008, 0x0016)));
    EXPECT_EQ ("2 ", Type (Find (merged, 0x0010, 0x0010)));
    EXPECT_EQ ("3 ", Type (Find (merged, 0x0010, 0x0030)));
    EXPECT_EQ ("1C", Type (Find (merged, 0x0010, 0x1002)));
    EXPECT_EQ ("1 ", Type (Find (item, 0x0010, 0x0020)));
    EXPECT_EQ ("2C", Type (Find (item, 0x0010, 0x0021)));
    EXPECT_EQ ("--", Type (Find (item, 0x0010, 0x0022)));
    EXPECT_EQ ("--", Type (Find (merged, 0x0020, 0x4000)));
}

TEST (ModalityRun, DefinitionGivesTypesAndMissingVrs) {
    Modality_Run   run;
    SequenceCursor cursor = {};
    Test_List      list;
    cursor.settings = &run.settings;
    run.directory.Write ("DICOM_Attributes_CT Image.txt",
                         std::string ("(0099,0001) type=2 VR=US\n(0010,0020) VR=SH\n"));
    list.Add (0x0008, 0x0016, "UI", CT);
    Attribute *unknown    = list.Add (0x0099, 0x0001);
    Attribute *known      = list.Add (0x0010, 0x0020, "LO");
    known->vr             = VR_LO;
    Attribute *definition = Definition_Read_List (nullptr, &cursor, list.first);
    ASSERT_NE (nullptr, definition);
    EXPECT_EQ (VR_US, unknown->vr);
    EXPECT_EQ ("2 ", Type (unknown));
    EXPECT_EQ (VR_LO, known->vr);
    EXPECT_EQ ("3 ", Type (known));
    EXPECT_EQ (definition, Definition_Read_List (nullptr, &cursor, list.first)); // Read once a run.
}

TEST (ModalityRun, OtherAndMissingSopClassesAreOther) {
    for (const char *uid : {"", "1.2.3", MR}) {
        Modality_Run run;
        Log_Recorder log;
        run.Write (File_Of (uid));
        run.directory.Write ("DICOM_Module_MR_Image.txt", std::string ("Patient\n"));
        EXPECT_EQ (8, run.Start ());
        EXPECT_EQ (DIFFERENCE_FILE_ONLY, Find (Comparison_Last.merged, 0x0018, 0x0060)->flags) << uid;
        EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, Find (Comparison_Last.merged, 0x0010, 0x0010)->flags) << uid;
        EXPECT_EQ ("", log.Text (LOG_WARNING)) << uid;
    }
}

TEST (ModalityRun, EachRunReadsTheTablesAnew) {
    Modality_Run run;
    run.Write (File_Of (CT));
    run.Start ();
    EXPECT_EQ (DIFFERENCE_FILE_ONLY, Find (Comparison_Last.merged, 0x0020, 0x4000)->flags);
    run.directory.Write ("DICOM_Attributes_CT Image.txt", std::string ("(0020,4000) type=3\n"));
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, Find (Comparison_Last.merged, 0x0020, 0x4000)->flags);
    EXPECT_EQ (DIFFERENCE_FILE_ONLY, Find (Comparison_Last.merged, 0x0018, 0x0060)->flags);
}

TEST (ModalityRun, PrivateAttributesAreDescribedByTheirCreator) {
    Modality_Run run;
    Stream       stream = File_Of (CT);
    Stream_Add_Text (&stream, 0x0029, 0x0011, "LO", "Acme/Imaging");
    Stream_Add_Text (&stream, 0x0029, 0x1108, "UN", "AXIAL");
    Stream_Add_Text (&stream, 0x0029, 0x1109, "UN", "AXIAL");
    run.Write (stream);
    run.directory.Write ("DICOM_Private_ACME_IMAGING.txt",
                         std::string ("(0029,1008) VR=CS desc=\"Acquisition mode\"\n"));
    EXPECT_EQ (11, run.Start ());
    EXPECT_EQ ("Acquisition mode", Description (Find (Comparison_Last.merged, 0x0029, 0x1108)));
    EXPECT_EQ ("Acme/Imaging", Description (Find (Comparison_Last.merged, 0x0029, 0x1109)));
}

// Of one attribute the modules' word counts, unless the overriding line is forced.
TEST (ModalityRun, OverrideIsReadBeforeTheModules) {
    Modality_Run run;
    run.Write (File_Of (CT));
    std::string path = run.directory.Write (
        "ours.txt", std::string ("(0010,0010) type=1 desc=\"Ours\"\n!(0018,0060) type=1 desc=\"Ours\"\n(0020,4000)\n"));
    DICOM_Module_Override_Set (path.c_str ());
    EXPECT_EQ (8, run.Start ());
    DICOM_Module_Override_Set ("");
    const Attribute *merged = Comparison_Last.merged;
    EXPECT_EQ ("2 ", Type (Find (merged, 0x0010, 0x0010)));
    EXPECT_EQ ("1 ", Type (Find (merged, 0x0018, 0x0060)));
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, Find (merged, 0x0020, 0x4000)->flags);
}

// --- two files -------------------------------------------------------------

TEST (ModalityRun, TwoFilesAreGivenTypesToo) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    std::string b = run.directory.Write ("b.dcm", File_Of (MR).bytes);
    EXPECT_EQ (1, Comparison_Start (nullptr, &run.settings, run.a.c_str (), b.c_str (), 0)); // Of the class alone.
    EXPECT_TRUE (log.Has (LOG_REPORT, "    Reading DICOM Modality tables for:\x01 " + run.a));
    EXPECT_TRUE (log.Has (LOG_REPORT, "    Reading DICOM Modality tables for:\x01 " + b));
    EXPECT_EQ ("(0002,0010)=0 (0008,0016)=2 (0010,0010)=0 (0010,1002)=0[(0010,0020)=0 (0010,0022)=0] (0018,0060)=0 "
               "(0020,4000)=0",
               Codes (Comparison_Last.merged));
    EXPECT_EQ ("2 ", Type (Find (Comparison_Last.merged, 0x0018, 0x0060))); // A's definition has it, B's has not.
}

TEST (ModalityRun, BatchReadsNoModalityTables) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    std::filesystem::remove (run.directory.File ("DICOM_Module_CT_Image.txt"));
    EXPECT_EQ (0, Comparison_Start (nullptr, &run.settings, run.a.c_str (), run.a.c_str (), 1));
    EXPECT_FALSE (log.Contains ("Modality tables"));
    EXPECT_EQ ("", log.Text (LOG_WARNING));
    EXPECT_EQ (nullptr, Comparison_Last.merged);
}

// --- traces ----------------------------------------------------------------

TEST (ModalityRun, DefinitionHasASectionInTheTrace) {
    Modality_Run run;
    run.Write (File_Of (CT));
    Log_Recorder log (1);
    run.Start ();
    std::string trace = log.Text (LOG_TRACE1);
    size_t      place = trace.find ("-----                         Read IOD definition                       ----- ");
    ASSERT_NE (std::string::npos, place);
    EXPECT_LT (place, trace.find ("Stool DICOM File A"));
    EXPECT_LT (trace.find ("Stool DICOM File B"), trace.find ("Stool DICOM Merge"));
    size_t listed = trace.find ("(0018,0060)", place); // The file's attributes, with their types.
    EXPECT_LT (listed, trace.find ("Stool DICOM File A"));
    EXPECT_NE (std::string::npos, trace.substr (listed, 120).find ("(DS,2 ,")) << trace.substr (listed, 120);

    Log_Recorder silent;
    run.Start ();
    EXPECT_EQ ("", silent.Text (LOG_TRACE1));
}

// --- what is missing -------------------------------------------------------

TEST (ModalityRun, MissingModuleFileIsReplacedByOther) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    std::filesystem::remove (run.directory.File ("DICOM_Module_CT_Image.txt"));
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ ("WARNING: Unable to open module IOD file:DICOM_Module_CT_Image.txt in dir:" + run.directory.path + "\n",
               log.Text (LOG_WARNING));
    EXPECT_EQ (DIFFERENCE_FILE_ONLY, Find (Comparison_Last.merged, 0x0018, 0x0060)->flags);
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, Find (Comparison_Last.merged, 0x0010, 0x0010)->flags);
}

static const char *const UNDEFINED = "(0002,0010)=64 (0008,0016)=64 (0010,0010)=64 "
                                     "(0010,1002)=64[(0010,0020)=64 (0010,0022)=64] (0018,0060)=64 (0020,4000)=64";

TEST (ModalityRun, WithoutADefinitionAllIsInTheFileOnly) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    std::filesystem::remove (run.directory.File ("DICOM_Module_CT_Image.txt"));
    std::filesystem::remove (run.directory.File ("DICOM_Module_OT_Image.txt"));
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ ("WARNING: Unable to open module IOD file:DICOM_Module_CT_Image.txt in dir:" + run.directory.path +
                   "\nunable to read Module def. for CT_Image\n",
               log.Text (LOG_WARNING));
    EXPECT_EQ (UNDEFINED, Codes (Comparison_Last.merged));
}

TEST (ModalityRun, MissingTablesDirectory) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ ("WARNING: DICOM_Module_Dir is undefined!\nunable to read Module def. for CT_Image\n",
               log.Text (LOG_WARNING));
    EXPECT_EQ (UNDEFINED, Codes (Comparison_Last.merged));

    log.Clear ();
    DICOM_Module_Dir_Set (run.directory.File ("none/").c_str ());
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ (1, log.Count (LOG_WARNING, "unable to read Module def. for CT_Image"));
    EXPECT_EQ (UNDEFINED, Codes (Comparison_Last.merged));
}

TEST (ModalityRun, DamagedTableIsReportedAndTheRestIsUsed) {
    Modality_Run run;
    Log_Recorder log;
    run.Write (File_Of (CT));
    run.directory.Write ("DICOM_Attributes_CT Image.txt", std::string ("damage\n(0018,0060) type=2\n"));
    EXPECT_EQ (8, run.Start ());
    EXPECT_EQ (2, log.Count (LOG_WARNING)) << log.All (); // Header and detail.
    EXPECT_TRUE (log.Contains ("instead of \"damage\""));
    EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, Find (Comparison_Last.merged, 0x0018, 0x0060)->flags);
}

TEST (ModalityRun, UnreadableFileHasNoDefinition) {
    Modality_Run run;
    Log_Recorder log;
    run.a = run.directory.File ("none.dcm");
    EXPECT_EQ (0, run.Start ());
    EXPECT_FALSE (log.Contains ("Modality tables"));
    EXPECT_TRUE (log.Contains ("No changes"));
    EXPECT_EQ (nullptr, Comparison_Last.merged);
}

// A second file that was named and can't be read doesn't call for the definition.
TEST (ModalityRun, UnreadableSecondFileIsNoDefinition) {
    Modality_Run run;
    run.Write (File_Of (CT));
    EXPECT_EQ (8, Comparison_Start (nullptr, &run.settings, run.a.c_str (), run.directory.File ("none").c_str (), 0));
    EXPECT_EQ (nullptr, Find (Comparison_Last.merged, 0x0010, 0x0030));
    EXPECT_EQ (DIFFERENCE_ONLY_A, Find (Comparison_Last.merged, 0x0010, 0x0010)->flags);
}

// --- memory ----------------------------------------------------------------

TEST (ModalityRun, EveryMemoryFailureIsToldAndLeaksNothing) {
    Dictionary_Build (nullptr);
    {
        Modality_Run first; // Makes what the tables keep for the life of the process.
        first.Write (File_Of (CT));
        first.Start ();
    }
    long live = Memory_Live ();
    for (long n = 1;; n++) {
        int failed = 0;
        {
            Modality_Run run;
            Log_Recorder log;
            run.Write (File_Of (CT));
            Memory_Fail_At (n);
            run.Start ();
            failed = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, log.Count (LOG_ERROR, "memory error in ")) << n << "\n" << log.All ();
            EXPECT_EQ (8, run.Start ()) << n;
            EXPECT_EQ (DIFFERENCE_FILE_AND_DEFINITION, Find (Comparison_Last.merged, 0x0018, 0x0060)->flags) << n;
        }
        EXPECT_EQ (live, Memory_Live ()) << n;
        if (!failed) break;
        ASSERT_GT (10000, n);
    }
}
