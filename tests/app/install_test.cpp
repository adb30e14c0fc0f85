// A program with data beside it, as it is installed: a copy of the built one. Where the data of an installed program
// stand is the registry's matter on Windows, so this is a test for Linux.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/environment.h"
#include "tests/support/program.h"
#include "tests/support/temporary.h"

static std::string Example_Path (const std::string &name) {
    return Quoted (std::string (TAGWRIGHT_SOURCE_DIR) + "/examples/" + name);
}

struct Installed {
    Temporary_Directory program, user, scratch;

    Installed () { std::filesystem::copy_file (Program_Built (), program.File ("tagwright")); }
    void Configure (const std::string &text) {
        program.Write ("Tagwright.ini", "scratch = " + scratch.path + "\n" + text);
    }
    void Configure_User (const std::string &text) {
        std::filesystem::create_directories (user.File ("Kestrelbay"));
        user.Write ("Kestrelbay/Tagwright.ini", text);
    }
    void Install_Table (const std::string &name, const std::string &text) {
        std::filesystem::create_directories (program.File ("DICOM Tables"));
        program.Write ("DICOM Tables/" + name, text);
    }
    std::string Own_Table (const std::string &name) const {
        return Read_Whole (user.File ("Kestrelbay/DICOM Tables/" + name));
    }
    int Compare (const std::string &options = "") {
        return Program_Run_Copy (program.File ("tagwright"), user,
                                 options + Example_Path ("ct_a.dcm") + " " + Example_Path ("ct_b.dcm"))
            .status;
    }
    std::string Trace () const { return Read_Whole (scratch.File ("Tagwright_trace.dat")); }
    bool        Wrote (const std::string &name) const { return !Read_Whole (scratch.File (name)).empty (); }
};

TEST (Install, ConfigurationBesideTheProgramIsRead) {
    Installed installed;
    installed.Configure ("skip = (0010,*)\naudit = all.txt\n");
    EXPECT_EQ (10, installed.Compare ());
    EXPECT_TRUE (installed.Wrote ("all.txt"));
}

TEST (Install, UserWins) {
    Installed installed;
    installed.Configure ("skip = (0010,*)\naudit = all.txt\n");
    installed.Configure_User ("skip = (0028,0106)\naudit = mine.txt\n");
    EXPECT_EQ (11, installed.Compare ()); // One list replaces the other,
    EXPECT_TRUE (installed.Wrote ("mine.txt"));
    EXPECT_FALSE (installed.Wrote ("all.txt"));
    installed.Configure_User ("# nothing\n");
    EXPECT_EQ (12, installed.Compare ());      // also an empty one;
    EXPECT_TRUE (installed.Wrote ("all.txt")); // the rest stays.
}

static bool Contains (const std::string &text, const std::string &part) {
    return text.find (part) != std::string::npos;
}

TEST (Install, TablesAreCopiedAtTheFirstStart) {
    Installed installed;
    installed.Configure ("");
    installed.Install_Table ("DICOM_Module_CT_Image.txt", "Patient\n");
    installed.Install_Table ("version.txt", "2024\n");
    EXPECT_EQ (12, installed.Compare ("-t -1 "));
    EXPECT_EQ ("Patient\n", installed.Own_Table ("DICOM_Module_CT_Image.txt"));
    EXPECT_EQ ("2024\n", installed.Own_Table ("version.txt"));
    EXPECT_TRUE (Contains (installed.Trace (), "REPORT: to: " + installed.user.File ("Kestrelbay/DICOM Tables/\n")))
        << installed.Trace ();
    EXPECT_FALSE (Contains (installed.Trace (), "WARNING:")) << installed.Trace ();

    // A newer program finds them, and leaves them alone.
    installed.Install_Table ("version.txt", "2025\n");
    installed.Install_Table ("DICOM_Module_CT_Image.txt", "Patient\nCT_Image\n");
    std::filesystem::remove (installed.scratch.File ("Tagwright_trace.dat"));
    EXPECT_EQ (12, installed.Compare ("-t -1 "));
    EXPECT_EQ ("Patient\n", installed.Own_Table ("DICOM_Module_CT_Image.txt"));
    EXPECT_FALSE (Contains (installed.Trace (), "copying all files")) << installed.Trace ();
    EXPECT_TRUE (Contains (installed.Trace (), "(version 2025/vs/2024)\n")) << installed.Trace ();
}

TEST (Install, ConfiguredTablesDirectoryIsTheOneThatIsFilled) {
    Installed installed;
    installed.Configure ("tables = " + installed.user.File ("other/tables") + "\n");
    installed.Install_Table ("version.txt", "2024\n");
    EXPECT_EQ (12, installed.Compare ());
    EXPECT_EQ ("2024\n", Read_Whole (installed.user.File ("other/tables/version.txt")));
    EXPECT_FALSE (std::filesystem::exists (installed.user.File ("Kestrelbay/DICOM Tables")));
}

// A limit for the size of files stands for a full disk. The large table is named and leaves no half of itself.
TEST (Install, TableThatCannotBeCopiedIsNamed) {
    Installed installed;
    installed.Configure ("");
    installed.Install_Table ("DICOM_Module_CT_Image.txt", "Patient\n");
    installed.Install_Table ("DICOM_Module_MR_Image.txt", std::string (5000000, ';'));
    installed.Install_Table ("version.txt", "2024\n");
    installed.program.Write ("limited", "#!/bin/sh\ntrap '' XFSZ\nulimit -f 1000\nexec '" +
                                            installed.program.File ("tagwright") + "' \"$@\"\n");
    std::filesystem::permissions (installed.program.File ("limited"), std::filesystem::perms::owner_all);
    EXPECT_EQ (12, Program_Run_Copy (installed.program.File ("limited"), installed.user,
                                     "-t -1 " + Example_Path ("ct_a.dcm") + " " + Example_Path ("ct_b.dcm"))
                       .status);
    EXPECT_EQ ("Patient\n", installed.Own_Table ("DICOM_Module_CT_Image.txt"));
    EXPECT_FALSE (std::filesystem::exists (installed.user.File ("Kestrelbay/DICOM Tables/DICOM_Module_MR_Image.txt")));
    EXPECT_TRUE (Contains (installed.Trace (), "WARNING: Unable to copy file: " +
                                                   installed.program.File ("DICOM Tables/DICOM_Module_MR_Image.txt") +
                                                   "\nWARNING: \t\t["))
        << installed.Trace ();
    EXPECT_TRUE (Contains (installed.Trace (), "File too large"));
}

// As scripts/ and packages copy it: the built tree has the file beside the program, too.
TEST (Install, BuiltProgramHasItsDataBesideIt) {
    std::string built = std::filesystem::path (Program_Built ()).parent_path ().string () + "/Tagwright.ini";
    EXPECT_EQ (Read_Whole (std::string (TAGWRIGHT_SOURCE_DIR) + "/install/Tagwright.ini"), Read_Whole (built));
    EXPECT_FALSE (Read_Whole (built).empty ());
}

// --- without a display -----------------------------------------------------

TEST (Install, WithoutDisplayTheUserIsToldWhatToDo) {
    Temporary_Directory user;
    std::string         before[2];
    const char *const   names[] = {"DISPLAY", "WAYLAND_DISPLAY"};
    for (int i = 0; i < 2; i++) {
        before[i] = getenv (names[i]) ? getenv (names[i]) : "";
        Environment_Set (names[i], "");
    }
    Program_Result result = Program_Run_Built (user, "");
    for (int i = 0; i < 2; i++) Environment_Set (names[i], before[i]);
    EXPECT_EQ (0, result.status);
    EXPECT_EQ (0u, result.errors.find ("Tagwright\nUnable to open the window.\n")) << result.errors;
    EXPECT_NE (std::string::npos, result.errors.find ("is DISPLAY or WAYLAND_DISPLAY set")) << result.errors;
    EXPECT_NE (std::string::npos, result.errors.find ("in pairs: tagwright file_a file_b\n")) << result.errors;
}
