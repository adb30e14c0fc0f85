#include "tables/modality.h"

#include <gtest/gtest.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "nema/NEMA_Read_Value.h"
#include "platform/system.h"
#include "tables/data_dictionary.h"
#include "tests/support/definition_tables.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"
#include "util/mutex_access.h"

static const Settings    warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};
static const std::string NUL (1, '\0');

// --- names -----------------------------------------------------------------

static std::string Name_Of (const std::string &uid, const char *vr = "UI") {
    Test_List list;
    list.Add (0x0008, 0x0005, "CS", "ISO_IR 100");
    list.Add (0x0008, 0x0016, vr, uid);
    return DICOM_Modality_Name (nullptr, list.first);
}

TEST (Modality, NameBySOPClass) {
    // clang-format off
    static const struct { const char *uid; const char *name; } cases[] = {
        {"1.2.840.10008.5.1.1.1",              "SOP BASIC_FILM_SESSION"},
        {"1.2.840.10008.5.1.1.2",              "SOP BASIC_FILM_BOX"},
        {"1.2.840.10008.5.1.1.4",              "Basic_Grayscale_Image_Box"},
        {"1.2.840.10008.5.1.1.4.1",            "Basic_Color_Image_Box"},
        {"1.2.840.10008.5.1.1.15",             "Basic_Annotation_Box"},
        {"1.2.840.10008.5.1.1.22",             "VOI_LUT_Box"},
        {"1.2.840.10008.5.1.1.23",             "Presentation_LUT"},
        {"1.2.840.10008.5.1.4.1.1.1",          "CR_Image"},
        {"1.2.840.10008.5.1.4.1.1.1.1",        "XRAY_Image"},
        {"1.2.840.10008.5.1.4.1.1.1.2",        "Mammography_XRAY_Image"},
        {"1.2.840.10008.5.1.4.1.1.1.3",        "Intra_Oral_XRAY_Image"},
        {"1.2.840.10008.5.1.4.1.1.2",          "CT_Image"},
        {"1.2.840.10008.5.1.4.1.1.2.1",        "Enhanced_CT_Image"},
        {"1.2.840.10008.5.1.4.1.1.3.1",        "US_Multi-Frame_Image"},
        {"1.2.840.10008.5.1.4.1.1.4",          "MR_Image"},
        {"1.2.840.10008.5.1.4.1.1.4.1",        "Enhanced_MR_Image"},
        {"1.2.840.10008.5.1.4.1.1.4.2",        "MR_Spectroscopy_Image"},
        {"1.2.840.10008.5.1.4.1.1.6.1",        "US_Image"},
        {"1.2.840.10008.5.1.4.1.1.7",          "SC_Image"},
        {"1.2.840.10008.5.1.4.1.1.11.1",       "Grayscale_Softcopy"},
        {"1.2.840.10008.5.1.4.1.1.12.1",       "XRAY_Angiographic_Image"},
        {"1.2.840.10008.5.1.4.1.1.12.2",       "XRAY_Radiofluroscopic_Image"},
        {"1.2.840.10008.5.1.4.1.1.20",         "NM_Image"},
        {"1.2.840.10008.5.1.4.1.1.77.1.1",     "VL_Endoscopic_Image"},
        {"1.2.840.10008.5.1.4.1.1.77.1.2",     "VL_Microscopic_Image"},
        {"1.2.840.10008.5.1.4.1.1.77.1.3",     "VL_Slidecoord_Micro_Image"},
        {"1.2.840.10008.5.1.4.1.1.77.1.4",     "VL_Photographic_Image"},
        {"1.2.840.10008.5.1.4.1.1.128",        "PET_Image"},
        {"1.2.840.10008.5.1.4.1.1.481.1",      "RT_Image"},
        {"1.2.840.10008.5.1.4.1.1.7.1",        "OT_Image"},
        {"1.2.840.10008.5.1.4.1.1",            "OT_Image"},
    };
    // clang-format on
    for (const auto &one : cases) EXPECT_EQ (one.name, Name_Of (one.uid)) << one.uid;
}

TEST (Modality, TrailingNulIsNoPaddingButABlankIs) {
    EXPECT_EQ ("CT_Image", Name_Of ("1.2.840.10008.5.1.4.1.1.2" + NUL));
    EXPECT_EQ ("OT_Image", Name_Of ("1.2.840.10008.5.1.4.1.1.2 "));
    EXPECT_EQ ("OT_Image", Name_Of (" 1.2.840.10008.5.1.4.1.1.2"));
    EXPECT_EQ ("CT_Image", Name_Of ("1.2.840.10008.5.1.4.1.1.2\\1.2.840.10008.5.1.4.1.1.4")) << "the first text counts";
    EXPECT_EQ ("CT_Image", Name_Of ("1.2.840.10008.5.1.4.1.1.2" + NUL, "UN"));
}

TEST (Modality, WithoutASOPClassItIsTheOther) {
    Log_Recorder log;
    Test_List    list;
    EXPECT_STREQ ("OT_Image", DICOM_Modality_Name (nullptr, nullptr));
    list.Add (0x0008, 0x0018, "UI", "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_STREQ ("OT_Image", DICOM_Modality_Name (nullptr, list.first));
    EXPECT_EQ ("OT_Image", Name_Of (""));
    EXPECT_EQ ("OT_Image", Name_Of ("12", "US")) << "not a text";
}

// --- definitions -----------------------------------------------------------

// A modality X with one attribute.
struct Modality_Tables : Definition_Tables {
    std::string warnings, errors;

    Modality_Tables () {
        Module ("X", "A\n");
        Attributes ("A", "(0010,0010) type=2\n");
    }
    Attribute *Read (const char *name) {
        Log_Recorder log;
        Attribute   *list = DICOM_Module_Read (nullptr, &warning_settings, name);
        warnings          = log.Text (LOG_WARNING);
        errors            = log.Text (LOG_ERROR);
        return list;
    }
};

TEST (Modality, DefinitionIsReadOnce) {
    Modality_Tables tables;
    Attribute      *list = tables.Read ("X");
    EXPECT_EQ ("(0010,0010)", Outline (list));
    tables.Attributes ("A", "(0010,0020)\n");
    EXPECT_EQ (list, tables.Read ("X"));
    DICOM_Module_Free (nullptr);
    EXPECT_EQ ("(0010,0020)", Outline (tables.Read ("X")));
    EXPECT_EQ ("", tables.warnings);
}

TEST (Modality, CallIsTraced) {
    Modality_Tables tables;
    Log_Recorder    log (4);
    DICOM_Module_Read (nullptr, &warning_settings, "X");
    EXPECT_EQ (0u, log.Text (LOG_TRACE4).find ("in Quillmark_Module_Read()\n"));
    log.Clear ();
    DICOM_Module_Read (nullptr, &warning_settings, "X");
    EXPECT_EQ ("14: in Quillmark_Module_Read()\n", log.All ()) << "nothing else for what is there";
}

TEST (Modality, WithoutANameThereIsNone) {
    Modality_Tables tables;
    EXPECT_EQ (nullptr, tables.Read (nullptr));
    EXPECT_EQ ("WARNING: DICOM_Module_Read no modality name!\n", tables.warnings);
}

TEST (Modality, EmptyNameIsANameLikeOthers) {
    Modality_Tables tables;
    tables.Module ("", "A\n");
    Attribute *list = tables.Read ("");
    EXPECT_EQ ("(0010,0010)", Outline (list));
    EXPECT_EQ (list, tables.Read (""));
}

TEST (Modality, NamesAreCaseSensitiveInTheCache) {
    Modality_Tables tables;
    tables.Module ("OT_Image", "A\n");
    Attribute *list = tables.Read ("X");
    EXPECT_NE (list, tables.Read ("x"));
    EXPECT_EQ (list, tables.Read ("X"));
}

TEST (Modality, FailedDefinitionIsNotTriedAgain) {
    Modality_Tables tables;
    EXPECT_EQ (nullptr, tables.Read ("Y"));
    EXPECT_EQ ("WARNING: Unable to open module IOD file:DICOM_Module_Y.txt in dir:" + tables.directory.path + "\n",
               tables.warnings);
    tables.Module ("Y", "A\n");
    EXPECT_EQ (nullptr, tables.Read ("Y"));
    EXPECT_EQ ("", tables.warnings);
}

TEST (Modality, WithoutADirectoryThereIsAWarningOnce) {
    Modality_Tables tables;
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ (nullptr, tables.Read ("X"));
    EXPECT_EQ ("WARNING: DICOM_Module_Dir is undefined!\n", tables.warnings);
    EXPECT_EQ (nullptr, tables.Read ("X"));
    EXPECT_EQ ("", tables.warnings);
}

TEST (Modality, NinetyNineAreKeptAndNoMore) {
    static const char ERROR_TEXT[] = "ERROR: DICOM_Module_Read Exceeding 100 modalities!\n";
    Modality_Tables   tables;
    tables.Module ("OT_Image", "A\n");
    Attribute *first = tables.Read ("0");
    for (int i = 1; i < 99; i++) EXPECT_NE (nullptr, tables.Read (std::to_string (i).c_str ())) << i;
    EXPECT_EQ ("", tables.errors);
    for (int i = 99; i < 103; i++) {
        EXPECT_EQ (nullptr, tables.Read (std::to_string (i).c_str ()));
        EXPECT_EQ (ERROR_TEXT, tables.errors) << i;
        EXPECT_EQ ("", tables.warnings) << "no file is opened";
    }
    EXPECT_EQ (nullptr, tables.Read ("99"));
    EXPECT_EQ ("", tables.errors) << "entered, without a definition";
    EXPECT_EQ (nullptr, tables.Read ("101"));
    EXPECT_EQ (ERROR_TEXT, tables.errors) << "not entered";
    EXPECT_EQ (first, tables.Read ("0"));
    DICOM_Module_Free (nullptr);
    EXPECT_NE (nullptr, tables.Read ("101"));
}

TEST (Modality, FreeTwiceIsNothing) {
    Modality_Tables tables;
    long            live;
    {
        Log_Recorder log;
        Dictionary_Build (nullptr);
        live = Memory_Live ();
    }
    tables.Read ("X");
    EXPECT_LT (live, Memory_Live ());
    DICOM_Module_Free (nullptr);
    EXPECT_EQ (live, Memory_Live ());
    DICOM_Module_Free (nullptr);
    EXPECT_EQ (live, Memory_Live ());
}

// --- override --------------------------------------------------------------

TEST (Modality, OverrideComesFirstFlatAndUnsorted) {
    Modality_Tables tables;
    std::string     path = tables.directory.Write ("mine.txt", "(0020,000D)\n(0010,1002)\n>(0010,0022) desc=x\n"
                                                                   "(0008,0060) type=1 \"CT\"\nwrong\ninclude I\n");
    tables.Include ("I", "(0008,0016)\n");
    EXPECT_EQ (1, DICOM_Module_Override_Set (path.c_str ()));
    EXPECT_EQ ("(0010,0010) (0020,000D) (0010,1002) (FFFE,E000) (0010,0022) (FFFE,E00D) (FFFE,E0DD) (0008,0060) "
               "(0008,0016)",
               Outline (tables.Read ("X")))
        << "the definition is merged in tag order";
    EXPECT_EQ ("WARNING: reading Attribute file:Command line override line:5\n"
               "\t\t Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"wrong\"\n",
               tables.warnings);
}

TEST (Modality, OverrideKeepsItsValues) {
    Modality_Tables tables;
    tables.Attributes ("A", "(0008,0060) type=2 \"MR\"\n(0010,0010)\n");
    DICOM_Module_Override_Set (tables.directory.Write ("mine.txt", "(0008,0060) type=1 \"CT\"\n").c_str ());
    Attribute *list = tables.Read ("X");
    EXPECT_EQ ("(0008,0060) (0010,0010)", Outline (list));
    EXPECT_EQ ("CT", Value (list));
    EXPECT_EQ (Code ('1', ' '), list->type);
}

TEST (Modality, MissingOverrideIsReportedAndTheTablesAreRead) {
    Modality_Tables tables;
    std::string     path = tables.directory.File ("none.txt");
    DICOM_Module_Override_Set (path.c_str ());
    EXPECT_EQ ("(0010,0010)", Outline (tables.Read ("X")));
    EXPECT_EQ ("WARNING: reading command line override\n\t\t Unable to open attributes file:" + path + "\n",
               tables.warnings);
}

TEST (Modality, OverrideStaysCachedWhenThereIsNoDefinition) {
    Modality_Tables tables;
    DICOM_Module_Override_Set (tables.directory.Write ("mine.txt", "(0010,0020)\n").c_str ());
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ (nullptr, tables.Read ("X"));
    EXPECT_EQ ("(0010,0020)", Outline (tables.Read ("X")));
}

TEST (Modality, OverridePathIsBounded) {
    Modality_Tables tables;
    std::string     path = tables.directory.Write ("mine.txt", "(0010,0020)\n");
    EXPECT_EQ (1, DICOM_Module_Override_Set (path.c_str ()));
    EXPECT_EQ (0, DICOM_Module_Override_Set (std::string (SYSTEM_PATH_SIZE, 'x').c_str ()));
    EXPECT_EQ ("(0010,0010) (0010,0020)", Outline (tables.Read ("X"))) << "the old path stays";
    EXPECT_EQ (1, DICOM_Module_Override_Set (std::string (SYSTEM_PATH_SIZE - 1, 'x').c_str ()));
    EXPECT_EQ (1, DICOM_Module_Override_Set (""));
    DICOM_Module_Free (nullptr);
    EXPECT_EQ ("(0010,0010)", Outline (tables.Read ("X")));
    EXPECT_EQ ("", tables.warnings);
}

// --- the protected region --------------------------------------------------

static int entered;

static System_Wait Wait (System_Mutex *mutex, int) {
    entered++;
    return System_Mutex_Wait (mutex, 0);
}

// A mutex that its owner can't enter twice must not stop the program.
TEST (Modality, EveryCallEntersTheRegionOnce) {
    Modality_Tables tables;
    tables.Attributes ("A", "(0010,0010)\ninclude I\n(0010,0040) \"a b\"\n(0020,0013) \"1.0\"\n");
    tables.Include ("I", "include I\n(0010,0020)\n");
    tables.Private ("P", "include I\n");
    DICOM_Module_Override_Set (tables.directory.Write ("mine.txt", "include I\n").c_str ());

    System_Mutex *mutex     = System_Mutex_Create ();
    Attribute     attribute = Record (0x0029, 0x1001);
    Log_Recorder  log (5);
    for (int call = 0; call < 7; call++) {
        entered = 0;
        Mutex_Access_Install (mutex, 0, Wait);
        if (call == 0) DICOM_Module_Read (nullptr, &warning_settings, "X");
        if (call == 1) DICOM_Module_Read_Private (nullptr, &warning_settings, "P", &attribute);
        if (call == 2) DICOM_Module_Include_Get (nullptr, &warning_settings, "I", "T", 1);
        if (call == 3) DICOM_Module_Free (nullptr);
        if (call == 4) DICOM_Module_Include_Free (nullptr);
        if (call == 5) DICOM_Module_Private_Free (nullptr);
        if (call == 6) DICOM_Module_Dir_Set ("");
        Mutex_Access_Install (nullptr, 0);
        EXPECT_EQ (1, entered) << call;
    }
    System_Mutex_Destroy (mutex);
}

// --- memory ----------------------------------------------------------------

TEST (Modality, EveryFailureOfMemoryIsReportedAndLeavesNothingBehind) {
    Modality_Tables tables;
    tables.Attributes ("A", "(0010,0010) desc=n \"v\"\n(0010,1002)\n>include I\n");
    tables.Include ("I", "(0010,0020)\n");
    DICOM_Module_Override_Set (tables.directory.Write ("mine.txt", "include I\n(0008,0060) \"CT\"\n").c_str ());
    Dictionary_Build (nullptr);
    long live  = Memory_Live ();
    int  names = 0, failures = 0;
    for (long n = 1; n < 1000; n++) {
        Log_Recorder log;
        Memory_Fail_At (n);
        Attribute *list   = DICOM_Module_Read (nullptr, &warning_settings, "X");
        int        failed = Memory_Failed ();
        Memory_Fail_At (0);
        if (!failed) {
            EXPECT_EQ ("(0010,0020) (0008,0060) (0010,0010) (0010,1002)[(0010,0020)]", Outline (list));
            break;
        }
        // A file whose reader gets no memory can't be opened; a value that can't be corrected stays as it is.
        int goes_on = log.Count (LOG_ERROR, " of file \n") + log.Count (LOG_ERROR, " of cleanup \n");
        EXPECT_TRUE (goes_on || !list) << n << log.Text (LOG_ERROR);
        EXPECT_EQ (1, log.Count (LOG_ERROR, "memory error in")) << n;
        names += log.Count (LOG_ERROR, "of modality \nmemory error in strdup (var=Modality_Name[Modality_Nb])");
        failures += !list;
        DICOM_Module_Free (nullptr);
        EXPECT_EQ (live, Memory_Live ()) << n;
    }
    EXPECT_EQ (1, names);
    EXPECT_LT (20, failures);
}
