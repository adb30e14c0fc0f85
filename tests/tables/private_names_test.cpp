// Which beginnings of a creator's name may have a table in a directory.
#include "tables/private_names.h"

#include <gtest/gtest.h>

#include "tables/definition_files.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

struct Listed {
    Temporary_Directory directory;
    Private_Names       names = {};

    ~Listed () { Private_Names_Free (&names); }
    void Write (const std::string &name) { directory.Write (name, std::string ("x")); }
    int  List () {
         Private_Names_Free (&names);
         return Private_Names_List (nullptr, &names, directory.path.c_str ());
    }

    // The lengths of key that may have a table: "1 3 ".
    std::string Lengths (const std::string &key) {
        uint8_t     may[DEFINITION_KEY_SIZE];
        std::string lengths;
        memset (may, 0xFF, sizeof may);
        Private_Names_Mark (&names, key.c_str (), may);
        for (size_t i = 1; i < sizeof may; i++) { // Nobody asks for a name of no bytes.
            EXPECT_GE (1, may[i]);
            if (may[i]) lengths += std::to_string (i) + " ";
        }
        return lengths;
    }
};

TEST (PrivateNames, BeginningsThatHaveATableAreMarked) {
    Listed listed;
    for (const char *name : {"DICOM_Private_A.txt", "DICOM_Private_ACME.txt", "DICOM_Private_ACME 1.0.txt",
                             "DICOM_Private_B.TXT.txt", "DICOM_Private_.txt"})
        listed.Write (name);
    EXPECT_EQ (1, listed.List ());
    EXPECT_EQ ("1 4 8 ", listed.Lengths ("ACME 1.0"));
    EXPECT_EQ ("1 4 8 ", listed.Lengths ("ACME 1.05"));
    EXPECT_EQ ("1 4 ", listed.Lengths ("ACME 1."));
    EXPECT_EQ ("1 ", listed.Lengths ("ACM"));
    EXPECT_EQ ("5 ", listed.Lengths ("B.TXT"));
    EXPECT_EQ ("", listed.Lengths ("XACME"));
    EXPECT_EQ ("", listed.Lengths ("\xC3\x84"
                                   "CME"));
    EXPECT_EQ ("1 ", listed.Lengths ("A" + std::string (DEFINITION_KEY_SIZE - 2, 'Z')));
}

TEST (PrivateNames, CapitalsAndSmallLettersAreTheSame) {
    Listed listed;
    listed.Write ("dicom_PRIVATE_Acme.tXt");
    EXPECT_EQ (1, listed.List ());
    EXPECT_EQ ("4 ", listed.Lengths ("ACME"));
}

TEST (PrivateNames, OtherFilesAreNone) {
    Listed listed;
    for (const char *name : {"DICOM_Module_A.txt", "DICOM_Private_A.txt~", "DICOM_Private_A", "A.txt", "DICOM_Private",
                             "xDICOM_Private_A.txt"})
        listed.Write (name);
    EXPECT_EQ (1, listed.List ());
    EXPECT_EQ ("", listed.Lengths ("ABC"));
    EXPECT_EQ (0u, listed.names.size);
}

// A small letter with an accent may be the same as its capital, and as the letter with the accent behind it.
TEST (PrivateNames, NameBeyondAsciiMayBeAnyThatBeginsAlike) {
    Listed listed;
    listed.Write ("DICOM_Private_CAFE\xCC\x81 X.txt");
    EXPECT_EQ (1, listed.List ());
    EXPECT_EQ ("4 5 6 7 ", listed.Lengths ("CAF\xC3\x89 X"));
    EXPECT_EQ ("4 ", listed.Lengths ("CAFE"));
    EXPECT_EQ ("", listed.Lengths ("CAF"));
    EXPECT_EQ ("", listed.Lengths ("CAR 1.0"));
    listed.Write ("DICOM_Private_\xC3\x84.txt");
    EXPECT_EQ (1, listed.List ());
    EXPECT_EQ ("1 2 3 ", listed.Lengths ("XYZ"));
}

TEST (PrivateNames, ManyNames) {
    static const int COUNT = 200;

    Listed      listed;
    std::string tail (50, 'Z');
    for (int i = 0; i < COUNT; i++) listed.Write ("DICOM_Private_" + std::to_string (1000 + i) + tail + ".txt");
    EXPECT_EQ (1, listed.List ());
    for (int i = 0; i < COUNT; i++) EXPECT_EQ ("54 ", listed.Lengths (std::to_string (1000 + i) + tail + "9"));
    EXPECT_EQ ("", listed.Lengths (std::to_string (1000 + COUNT) + tail));
}

TEST (PrivateNames, DirectoryThatCantBeListed) {
    Listed        listed;
    Private_Names names = {};
    listed.Write ("DICOM_Private_A.txt");
    std::string beginning = listed.directory.path + "tables_";
    std::string missing   = listed.directory.path + "none" + System_Separator ();
    for (const std::string &directory : {beginning, missing, std::string ()}) {
        EXPECT_EQ (0, Private_Names_List (nullptr, &names, directory.c_str ())) << directory;
        EXPECT_EQ (nullptr, names.bytes);
    }
}

TEST (PrivateNames, WithoutMemoryNothingIsKnown) {
    Listed listed;
    for (int i = 0; i < 200; i++)
        listed.Write ("DICOM_Private_" + std::to_string (1000 + i) + std::string (50, 'Z') + ".txt");
    long live = Memory_Live ();
    for (long n = 1; n <= 2; n++) {
        Log_Recorder log;
        Memory_Fail_At (n);
        EXPECT_EQ (0, listed.List ());
        EXPECT_EQ (1, Memory_Failed ());
        Memory_Fail_At (0);
        EXPECT_EQ (1, log.Count (LOG_ERROR, "memory error in realloc (var=names->bytes, dim="));
        EXPECT_EQ (live, Memory_Live ());
        EXPECT_EQ (0u, listed.names.size);
    }
    EXPECT_EQ (1, listed.List ());
}
