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

// --- many creators ---------------------------------------------------------

// So many creators without a table that the directory is listed.
static void Miss_Often () {
    for (int i = 0; i < 100; i++) {
        Attribute attribute = Record (0x0029, 0x1001);
        EXPECT_EQ (-1,
                   DICOM_Module_Read_Private (nullptr, nullptr, ("~missed" + std::to_string (i)).c_str (), &attribute));
    }
}

static std::string Lines (int count) {
    std::string text;
    for (int i = 0; i < count; i++) text += "(0029," + std::to_string (1000 + i) + ") VR=CS desc=name\n";
    return text;
}

TEST (DefinitionPrivate, CreatorsOfOneTableShareIt) {
    Private_Tables tables;
    tables.Private ("C", Lines (100));
    EXPECT_EQ ("CS name", tables.Find ("c", 0x0029, 0x1001));
    for (int traced : {0, 3}) {
        long live = Memory_Live ();
        for (int i = 0; i < 100; i++) {
            Log_Recorder log (traced);
            Attribute    attribute = Record (0x0029, 0x1001);
            std::string  creator   = "c" + std::to_string (traced) + " " + std::to_string (i);
            EXPECT_EQ (1, DICOM_Module_Read_Private (nullptr, nullptr, creator.c_str (), &attribute));
            Memory_Free (attribute.description);
            if (i % 10 == 0) DICOM_Module_Private_Look_Anew ();
        }
        EXPECT_GE (live + 100 + 1, Memory_Live ()) << "the creators' names, and short cuts through the table";
    }
}

TEST (DefinitionPrivate, TableThatChangesIsSeenByNewCreatorsOfTheNextPass) {
    for (int often : {0, 1}) {
        Private_Tables tables;
        tables.Private ("A", "(0029,1001) desc=one\ninclude I\n");
        tables.Include ("I", "(0029,1002) desc=included\n");
        if (often) Miss_Often ();
        EXPECT_EQ ("LO one", tables.Find ("A1", 0x0029, 0x1001));
        EXPECT_EQ ("LO included", tables.Find ("A2", 0x0029, 0x1002));
        tables.Include ("I", "(0029,1002) desc=changed\n");
        DICOM_Module_Private_Look_Anew ();
        EXPECT_EQ ("LO changed", tables.Find ("A3", 0x0029, 0x1002));
        tables.Private ("A", "(0029,1001) VR=CS desc=one\n");
        tables.Private ("A4", "(0029,1001) desc=longer\n");
        DICOM_Module_Private_Look_Anew ();
        EXPECT_EQ ("LO longer", tables.Find ("A4", 0x0029, 0x1001));
        EXPECT_EQ ("CS one", tables.Find ("A5", 0x0029, 0x1001));
        EXPECT_EQ ("none", tables.Find ("A5", 0x0029, 0x1002));
        EXPECT_EQ ("LO included", tables.Find ("A2", 0x0029, 0x1002)) << "who was asked for has what was read then";
        EXPECT_EQ ("LO changed", tables.Find ("A3", 0x0029, 0x1002));
    }
}

TEST (DefinitionPrivate, AnotherDirectoryIsLookedAtAtOnce) {
    Private_Tables      tables;
    Temporary_Directory other;
    tables.Private ("A", "(0029,1001) desc=one\n");
    Miss_Often ();
    EXPECT_EQ ("LO one", tables.Find ("A1", 0x0029, 0x1001));
    other.Write ("DICOM_Private_A.txt", std::string ("(0029,1001) desc=two\n"));
    other.Write ("DICOM_Private_B.txt", std::string ("(0029,1001) desc=three\n"));
    DICOM_Module_Dir_Set (other.path.c_str ());
    EXPECT_EQ ("LO two", tables.Find ("A2", 0x0029, 0x1001));
    EXPECT_EQ ("LO three", tables.Find ("B2", 0x0029, 0x1001));
    EXPECT_EQ ("LO one", tables.Find ("A1", 0x0029, 0x1001));
}

// What a table says when it is read is said for each creator.
TEST (DefinitionPrivate, FaultsAreToldForEachCreator) {
    Private_Tables tables;
    tables.Private ("A", "wrong\n(0029,1001) desc=one\ninclude I\n");
    tables.Include ("I", "(0029,1002) VR=OBX\n");
    long live = 0;
    for (int i = 0; i < 10; i++) {
        EXPECT_EQ ("LO one", tables.Find (("A" + std::to_string (i)).c_str (), 0x0029, 0x1001));
        EXPECT_EQ ("WARNING: reading Attribute file:DICOM_Private_A.txt line:1\n"
                   "\t\t Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"wrong\"\n"
                   "WARNING: reading Attribute file:DICOM_Include_I.txt line:1\n"
                   "\t\t Syntax error\"VR=xx\" (=VR=OBX)\n",
                   tables.warnings);
        if (i == 0) live = Memory_Live ();
        EXPECT_GE (live + i, Memory_Live ());
    }
}

// With a new directory each: all that is traced for two creators of one table and one without, in tables/ and below.
static std::string Traced (int level, bool often, bool again) {
    Private_Tables tables;
    tables.Private ("A", "(0029,1001) desc=one\ninclude I\n");
    tables.Include ("I", "(0029,1002) desc=two\n");
    if (often) Miss_Often ();
    if (again) {
        EXPECT_EQ ("LO one", tables.Find ("A3", 0x0029, 0x1001));
    }
    Log_Recorder log (level);
    for (const char *creator : {"AB", "AC", "XY"}) {
        Attribute attribute = Record (0x0029, 0x1001);
        DICOM_Module_Read_Private (nullptr, nullptr, creator, &attribute);
        Memory_Free (attribute.description);
    }
    std::string all = log.All (), without;
    for (size_t at = 0; (at = all.find (tables.directory.path)) != std::string::npos;)
        all.replace (at, tables.directory.path.size (), "DIR");
    for (size_t at = 0, end; at < all.size (); at = end) { // Numbers that stand for lists differ.
        end              = all.find ('\n', at) + 1;
        std::string line = all.substr (at, end - at);
        without += line.substr (0, line.find ("macro("));
    }
    return without;
}

TEST (DefinitionPrivate, TracesDontTellWhatIsKept) {
    EXPECT_EQ ("", Traced (2, false, false));
    for (int level : {2, 3, 4, 5}) {
        std::string plain = Traced (level, false, false);
        EXPECT_EQ (plain, Traced (level, true, false)) << level;
        EXPECT_EQ (plain, Traced (level, false, true)) << level;
        EXPECT_EQ (plain, Traced (level, true, true)) << level;
    }
    std::string included = "13: DICOM_Module_Include_Get(I)\n13: -> insert new ";
    EXPECT_EQ (included + included, Traced (3, true, true));
    std::string reading = "14: in DICOM_Attribute_Copy_Tag(0029,1001)\n"
                          "13: DICOM_Module_Include_Get(I)\n"
                          "14: in DICOM_Attribute_Copy_Tag(0029,1002)\n"
                          "13: -> insert new 14: in DICOM_Attribute_Copy_Tag(0029,1002)\n";
    auto        tried   = [] (const std::string &key) {
        return "14: Private Attribute file:DICOM_Private_" + key + ".txt in dir:DIR\n";
    };
    EXPECT_EQ (tried ("AB") + tried ("A") + reading + tried ("AC") + tried ("A") + reading + tried ("XY") + tried ("X"),
               Traced (4, true, true));
}

// A creator's table is the longest one, however many creators had none.
TEST (DefinitionPrivate, KeyIsShortenedAlsoBehindManyCreatorsWithoutTable) {
    Private_Tables tables;
    tables.Private ("ACM", "(0029,1001) desc=short\n");
    tables.Private ("ACME", "(0029,1001) desc=long\n");
    tables.Private ("\xC3\x84"
                    "CM",
                    "(0029,1001) desc=beyond\n");
    Miss_Often ();
    EXPECT_EQ ("LO long", tables.Find ("Acme/Imaging", 0x0029, 0x1001));
    EXPECT_EQ ("LO short", tables.Find ("Acm", 0x0029, 0x1001));
    EXPECT_EQ ("LO short", tables.Find (" acmi ", 0x0029, 0x1001));
    EXPECT_EQ ("LO beyond", tables.Find ("\xC3\x84"
                                         "cme",
                                         0x0029, 0x1001));
    EXPECT_EQ ("none", tables.Find ("Ac", 0x0029, 0x1001));
}

// The directory is a mere beginning of the names: what doesn't end with a separator can't be listed.
TEST (DefinitionPrivate, DirectoryThatCantBeListedIsTriedAsBefore) {
    Private_Tables tables;
    tables.directory.Write ("my_DICOM_Private_A.txt", std::string ("(0029,1001) desc=mine\n"));
    DICOM_Module_Dir_Set (tables.directory.File ("my_").c_str ());
    Miss_Often ();
    EXPECT_EQ ("LO mine", tables.Find ("Abc", 0x0029, 0x1001));
}

// --- reports ---------------------------------------------------------------

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
        "of definition_private \nmemory error in calloc (var=Private_Table, dim=1x",
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

// Without memory for the list of the directory each table is tried.
TEST (DefinitionPrivate, TablesAreFoundWithoutMemoryForTheirNames) {
    Definition_Tables tables;
    tables.Private ("A", "(0029,1001) VR=US\n");
    Miss_Often ();
    DICOM_Module_Private_Look_Anew ();
    long live = Memory_Live ();
    int  told = 0;
    for (long n = 1;; n++) {
        Log_Recorder log;
        Attribute    attribute = Record (0x0029, 0x1001);
        Memory_Fail_At (n);
        int found  = DICOM_Module_Read_Private (nullptr, nullptr, ("A" + std::to_string (n)).c_str (), &attribute);
        int failed = Memory_Failed ();
        Memory_Fail_At (0);
        int names = log.Count (LOG_ERROR, "of private_names \nmemory error in realloc (var=names->bytes, dim=");
        EXPECT_EQ (!failed || names, found > 0) << n << log.All ();
        EXPECT_EQ (failed, log.Count (LOG_ERROR));
        told += names;
        DICOM_Module_Private_Look_Anew ();
        ASSERT_LT (n, 100);
        if (!failed) break;
    }
    EXPECT_EQ (1, told);
    DICOM_Module_Private_Free (nullptr);
    EXPECT_GT (live, Memory_Live ());
}

// Whatever the memory was for.
TEST (DefinitionPrivate, CreatorThatFoundNoMemoryIsAskedForAgain) {
    Definition_Tables tables;
    tables.Private ("A", "(0029,1001) VR=US\n(0029,1002) desc=two\n");
    Log_Recorder log;
    for (long n = 1, failed = 1; failed; n++) {
        Attribute attribute = Record (0x0029, 0x1001);
        Memory_Fail_At (n);
        int found = DICOM_Module_Read_Private (nullptr, nullptr, "A", &attribute);
        failed    = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (!failed, found > 0) << n;
        for (uint16_t element : std::initializer_list<uint16_t> {0x1001, 0x1002}) {
            Attribute again = Record (0x0029, element);
            EXPECT_EQ (1, DICOM_Module_Read_Private (nullptr, nullptr, "A", &again)) << n;
            Memory_Free (again.description);
        }
        DICOM_Module_Private_Free (nullptr);
        ASSERT_LT (n, 100);
    }
}
