// A program with data beside it, as it is installed: a copy of the built one. Where the data of an installed program stand is
// the registry's matter on Windows, so this is a test for Linux.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

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
    int Compare () {
        return Program_Run_Copy (program.File ("tagwright"), user,
                                 Example_Path ("ct_a.dcm") + " " + Example_Path ("ct_b.dcm"))
            .status;
    }
    bool Wrote (const std::string &name) const { return !Read_Whole (scratch.File (name)).empty (); }
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

// As scripts/ and packages copy it: the built tree has the file beside the program, too.
TEST (Install, BuiltProgramHasItsDataBesideIt) {
    std::string built = std::filesystem::path (Program_Built ()).parent_path ().string () + "/Tagwright.ini";
    EXPECT_EQ (Read_Whole (std::string (TAGWRIGHT_SOURCE_DIR) + "/install/Tagwright.ini"), Read_Whole (built));
    EXPECT_FALSE (Read_Whole (built).empty ());
}
