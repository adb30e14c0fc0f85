// How a private attribute finds its definition.
#include <gtest/gtest.h>

#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tests/support/definition_tables.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const Settings warning_settings = {LOG_WARNING, LOG_REPORT, MODE_EXPLICIT, 0, nullptr, nullptr};

struct Private_Tables : Definition_Tables {
    std::string warnings;

    // "VR description" of an attribute LO "old" after the look-up, or "none".
    std::string Find (const char *creator, uint16_t group, uint16_t element) {
        Log_Recorder log;
        Test_List    list;
        Attribute   *attribute = list.Add (group, element);
        attribute->vr          = VR_LO;
        int found              = DICOM_Module_Read_Private (nullptr, &warning_settings, creator, attribute);
        warnings               = log.Text (LOG_WARNING);
        EXPECT_EQ (log.lines.size (), static_cast<size_t> (log.Count (LOG_WARNING)));
        if (found <= 0) {
            EXPECT_EQ (nullptr, attribute->description);
            EXPECT_EQ (VR_LO, attribute->vr);
            return "none";
        }
        std::string text {Code_First (attribute->vr, '-'), Code_Second (attribute->vr, '-'), ' '};
        text += attribute->description ? attribute->description : "-";
        return attribute->flags & DELETED ? text + " deleted" : text;
    }
};

TEST (DefinitionPrivate, DefinitionIsApplied) {
    Private_Tables tables;
    tables.Private ("ACME_IMAGING", "(0029,0010) VR=LO desc=\"Private Creator\"\n"
                                    "(0029,1008) VR=CS desc=\"Acquisition mode\"\n"
                                    "-(0029,1011) VR=OB desc=\"Raw header\"\n"
                                    "(0029,1012) desc=named\n"
                                    "(0029,1013) VR=US\n");
    EXPECT_EQ ("CS Acquisition mode", tables.Find ("Acme/Imaging", 0x0029, 0x1008));
    EXPECT_EQ ("OB Raw header deleted", tables.Find ("Acme/Imaging", 0x0029, 0x1011));
    EXPECT_EQ ("LO named", tables.Find ("Acme/Imaging", 0x0029, 0x1012)) << "no VR replaces none";
    EXPECT_EQ ("US -", tables.Find ("Acme/Imaging", 0x0029, 0x1013));
    EXPECT_EQ ("none", tables.Find ("Acme/Imaging", 0x0029, 0x1014));
    EXPECT_EQ ("none", tables.Find ("Acme/Imaging", 0x0031, 0x1008));
}

TEST (DefinitionPrivate, DescriptionsThatAreMissingOrEmptyKeepTheOldOne) {
    Private_Tables tables;
    tables.Private ("A", "(0029,1001) VR=US desc=\"\"\n");
    Attribute attribute   = Record (0x0029, 0x1001);
    char      old[]       = "old";
    attribute.description = old;
    EXPECT_EQ (1, DICOM_Module_Read_Private (nullptr, nullptr, "A", &attribute));
    EXPECT_EQ (old, attribute.description);
    EXPECT_EQ (VR_US, attribute.vr);
}

TEST (DefinitionPrivate, TableServesAnyBlock) {
    Private_Tables tables;
    tables.Private ("A", "(0029,1008) VR=CS desc=ten\n(0029,1108) VR=CS desc=eleven\n(0029,0009) VR=CS desc=low\n"
                         "(0029,1009) VR=CS desc=high\n");
    EXPECT_EQ ("CS ten", tables.Find ("A", 0x0029, 0x1008));
    EXPECT_EQ ("CS ten", tables.Find ("A", 0x0029, 0x2308));
    EXPECT_EQ ("CS eleven", tables.Find ("A", 0x0029, 0x1108)) << "the tag itself comes first";
    EXPECT_EQ ("CS low", tables.Find ("A", 0x0029, 0x1109)) << "then its low byte";
    EXPECT_EQ ("none", tables.Find ("A", 0x0029, 0x1107));
}

// The names that are tried, shortest last.
static std::string Tried (const char *creator) {
    Private_Tables tables;
    Log_Recorder   log (4);
    Attribute      attribute = Record (0x0029, 0x1001);
    EXPECT_EQ (creator && *creator ? -1 : 0, DICOM_Module_Read_Private (nullptr, nullptr, creator, &attribute));
    std::string text = log.Text (LOG_TRACE4), names;
    std::string head = "Private Attribute file:DICOM_Private_", tail = ".txt in dir:" + tables.directory.path + "\n";
    for (size_t at = 0; at < text.size ();) {
        size_t end = text.find (tail, at);
        EXPECT_EQ (head, text.substr (at, head.size ()));
        if (end == std::string::npos) return "?" + text;
        names += text.substr (at + head.size (), end - at - head.size ()) + "|";
        at = end + tail.size ();
    }
    EXPECT_EQ (0, log.Count (LOG_WARNING)) << "no table is nothing to warn about";
    return names;
}

TEST (DefinitionPrivate, KeyIsShortenedUntilATableIsFound) {
    EXPECT_EQ ("ACME|ACM|AC|A|", Tried ("Acme"));
    EXPECT_EQ ("A_________B|A_________|A________|A_______|A______|A_____|A____|A___|A__|A_|A|",
               Tried (" \ta/\\:*?\"<>|b  "));
    EXPECT_EQ ("A 1.0|A 1.|A 1|A |A|", Tried ("a 1.0"));
    EXPECT_EQ ("Z{|Z|", Tried ("z{"));
    EXPECT_EQ ("", Tried (""));
    EXPECT_EQ ("", Tried (nullptr));
    EXPECT_EQ ("", Tried (" \t "));

    Private_Tables tables;
    tables.Private ("ACM", "(0029,1001) desc=short\n");
    EXPECT_EQ ("LO short", tables.Find ("Acme/Imaging", 0x0029, 0x1001));
    tables.Private ("ACME", "(0029,1001) desc=long\n");
    EXPECT_EQ ("LO long", tables.Find ("Acme/Imaging 2", 0x0029, 0x1001));
}

TEST (DefinitionPrivate, CreatorThatIsTooLongIsCutWithAWarning) {
    Private_Tables tables;
    std::string    fits (DEFINITION_KEY_SIZE - 1, 'z'), longer = fits + "z";
    EXPECT_EQ ("none", tables.Find (fits.c_str (), 0x0029, 0x1001));
    EXPECT_EQ ("", tables.warnings);
    EXPECT_EQ ("none", tables.Find (longer.c_str (), 0x0029, 0x1001));
    EXPECT_EQ ("WARNING: DICOM_Module_Read_Private\n\t\t Private creator too long (>255), cut\n", tables.warnings);
    tables.Find (longer.c_str (), 0x0029, 0x1001);
    EXPECT_EQ ("", tables.warnings) << "once";
}

TEST (DefinitionPrivate, TablesAreReadOnceForEachCreator) {
    Private_Tables tables;
    EXPECT_EQ ("none", tables.Find ("A", 0x0029, 0x1001));
    tables.Private ("A", "(0029,1001) desc=one\n");
    EXPECT_EQ ("none", tables.Find ("A", 0x0029, 0x1001)) << "also that there is none is remembered";
    EXPECT_EQ ("LO one", tables.Find ("a", 0x0029, 0x1001)) << "another text is another creator";
    tables.Private ("A", "(0029,1001) desc=two\n");
    EXPECT_EQ ("LO one", tables.Find ("a", 0x0029, 0x1001));
    DICOM_Module_Private_Free (nullptr);
    EXPECT_EQ ("LO two", tables.Find ("a", 0x0029, 0x1001));
}

TEST (DefinitionPrivate, FaultsAndIncludesAreThoseOfAnyTable) {
    Private_Tables tables;
    tables.Private ("A", "wrong\ninclude I\n");
    tables.Include ("I", "(0029,1001) desc=included\n");
    EXPECT_EQ ("LO included", tables.Find ("A", 0x0029, 0x1001));
    EXPECT_EQ ("WARNING: reading Attribute file:DICOM_Private_A.txt line:1\n"
               "\t\t Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"wrong\"\n",
               tables.warnings);
    tables.Private ("B", "include I\n");
    tables.Include ("I", "(0029,1001) desc=changed\n");
    EXPECT_EQ ("LO changed", tables.Find ("B", 0x0029, 0x1001)) << "include files are not kept";
}

TEST (DefinitionPrivate, WithoutADirectoryNothingIsRemembered) {
    Private_Tables tables;
    tables.Private ("A", "(0029,1001) desc=one\n");
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ ("none", tables.Find ("A", 0x0029, 0x1001));
    DICOM_Module_Dir_Set (tables.directory.path.c_str ());
    EXPECT_EQ ("LO one", tables.Find ("A", 0x0029, 0x1001));
}

TEST (DefinitionPrivate, ThousandsOfCreators) {
    Private_Tables tables;
    tables.Private ("C7", "(0029,1001) desc=seven\n");
    for (int i = 0; i < 3000; i++)
        EXPECT_EQ (std::to_string (i)[0] == '7' ? "LO seven" : "none",
                   tables.Find (("c" + std::to_string (i)).c_str (), 0x0029, 0x1001));
    EXPECT_EQ ("LO seven", tables.Find ("c7", 0x0029, 0x1001));
}

TEST (DefinitionPrivate, CallIsTraced) {
    Private_Tables tables;
    Log_Recorder   log (5);
    Attribute      attribute = Record (0x0029, 0x1001);
    DICOM_Module_Read_Private (nullptr, nullptr, "A", &attribute);
    DICOM_Module_Read_Private (nullptr, nullptr, nullptr, &attribute);
    EXPECT_EQ ("in DICOM_Module_Read_Private(A)\nin DICOM_Module_Read_Private()\n", log.Text (LOG_TRACE5));
}

TEST (DefinitionPrivate, EveryFailureOfMemoryIsReportedAndLeavesNothingBehind) {
    static const char *const messages[] = {
        "of definition_private \nmemory error in realloc (var=Private_List, dim=1x8)",
        "of definition_private \nmemory error in realloc (var=Private_Name, dim=1x8)",
        "of definition_private \nmemory error in strdup (var=Private_Name[Private_Nb])",
        "of definition_private \nmemory error in strdup (var=tag->description)",
        "of definition_files \nmemory error in strdup (var=tag.description)",
        "of definition_files \nmemory error in strdup (var=Include_Name[Include_Nb])"};
    Definition_Tables tables;
    tables.Private ("A", "include I\n(0029,1002) VR=US \"1\"\n");
    tables.Include ("I", "(0029,1001) desc=one\n");
    std::string errors;
    long        live = Memory_Live ();
    for (long n = 1;; n++) {
        Log_Recorder log;
        Attribute    attribute = Record (0x0029, 0x1001);
        Memory_Fail_At (n);
        int found  = DICOM_Module_Read_Private (nullptr, nullptr, "A", &attribute);
        int failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (!failed, found > 0) << n;
        EXPECT_EQ (failed, log.Count (LOG_ERROR));
        errors += log.Text (LOG_ERROR);
        Memory_Free (attribute.description);
        DICOM_Module_Private_Free (nullptr);
        EXPECT_EQ (live, Memory_Live ()) << n;
        ASSERT_LT (n, 100);
        if (!failed) break;
    }
    for (const char *message : messages) EXPECT_NE (std::string::npos, errors.find (message)) << message;
}

TEST (DefinitionPrivate, CreatorThatFoundNoMemoryIsAskedForAgain) {
    Definition_Tables tables;
    tables.Private ("A", "(0029,1001) VR=US\n");
    Log_Recorder log;
    Attribute    attribute = Record (0x0029, 0x1001);
    Memory_Fail_At (1);
    EXPECT_EQ (0, DICOM_Module_Read_Private (nullptr, nullptr, "A", &attribute));
    Memory_Fail_At (0);
    EXPECT_EQ (1, DICOM_Module_Read_Private (nullptr, nullptr, "A", &attribute));
}
