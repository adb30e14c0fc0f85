#include "app/tables_directory.h"

#include <gtest/gtest.h>
#include <string.h>

#include <filesystem>
#include <set>
#include <string>

#include "platform/system.h"
#include "tables/definition_files.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"

static const char SEPARATOR = System_Separator ();

static std::string Directory (const std::string &name) { return name + SEPARATOR; }

// A program's folder and a user's one.
struct Provided {
    Temporary_Directory install, user;
    Log_Recorder        log;

    Provided () { DICOM_Module_Dir_Set (Copies ().c_str ()); }
    ~Provided () { DICOM_Module_Dir_Set (""); }

    std::string Tables () const { return Directory (install.File ("DICOM Tables")); }
    std::string Copies () const { return Directory (user.File ("DICOM Tables")); }
    void        Install (const std::string &name, const std::string &text) {
               std::filesystem::create_directories (Tables ());
               install.Write (Directory ("DICOM Tables") + name, text);
    }
    void Keep (const std::string &name, const std::string &text) {
        std::filesystem::create_directories (Copies ());
        user.Write (Directory ("DICOM Tables") + name, text);
    }
    std::string Run () {
        log.Clear ();
        Tables_Provide (install.path.c_str ());
        return log.All ();
    }
    std::set<std::string> Copied () const {
        std::set<std::string> names;
        for (auto &entry : std::filesystem::directory_iterator (Copies ()))
            names.insert (entry.path ().filename ().string ());
        return names;
    }

    std::string Report (const std::string &text) const { return std::to_string (LOG_REPORT) + ": " + text + "\n"; }
    std::string Warning (const std::string &text) const { return std::to_string (LOG_WARNING) + ": " + text + "\n"; }
    std::string Copying () const {
        return Report ("DICOM tables do not exist in " + Copies ()) + Report ("copying all files from: " + Tables ()) +
               Report ("to: " + Copies ()) + Report ("");
    }
    std::string Outdated (int installed, int own) const {
        return Warning ("WARNING: The DICOM tables in " + Tables ()) +
               Warning ("\t\t are more recent than the ones in " + Copies ()) +
               Warning ("\t\t you may want to delete the older directory to force an update! (version " +
                        std::to_string (installed) + "/vs/" + std::to_string (own) + ")") +
               Warning ("");
    }
};

// --- copying ---------------------------------------------------------------

TEST (TablesDirectory, MissingTablesAreCopied) {
    Provided provided;
    provided.Install ("DICOM_Module_CT_Image.txt", "Patient\n");
    provided.Install ("DICOM_Attributes_Patient.TXT", std::string (100000, ';'));
    provided.Install ("version.txt", "2024\n");
    provided.Install ("readme.md", "no table");
    provided.Install ("txt", "no table");
    std::filesystem::create_directory (provided.Tables () + "folder.txt");
    EXPECT_EQ (provided.Copying (), provided.Run ());
    EXPECT_EQ ((std::set<std::string> {"DICOM_Module_CT_Image.txt", "DICOM_Attributes_Patient.TXT", "version.txt"}),
               provided.Copied ());
    EXPECT_EQ ("Patient\n", Read_Whole (provided.Copies () + "DICOM_Module_CT_Image.txt"));
    EXPECT_EQ (std::string (100000, ';'), Read_Whole (provided.Copies () + "DICOM_Attributes_Patient.TXT"));
    EXPECT_EQ ("", provided.Run ()); // Once.
}

TEST (TablesDirectory, PathsAreShownInBlue) {
    Provided provided;
    provided.Install ("version.txt", "2024");
    provided.Run ();
    EXPECT_TRUE (provided.log.Has (LOG_REPORT, "DICOM tables do not exist in \x01" + provided.Copies ()));
    EXPECT_TRUE (provided.log.Has (LOG_REPORT, "copying all files from: \x01" + provided.Tables ()));
    EXPECT_TRUE (provided.log.Has (LOG_REPORT, "to: \x01" + provided.Copies ()));
}

TEST (TablesDirectory, MissingLevelsAreMade) {
    Provided    provided;
    std::string deep = Directory (Directory (Directory (provided.user.File ("a")) + "b") + "c");
    DICOM_Module_Dir_Set (deep.c_str ());
    provided.Install ("version.txt", "2024");
    provided.Run ();
    EXPECT_EQ ("2024", Read_Whole (deep + "version.txt"));
}

// What the user has stays as it is, even when it isn't complete.
TEST (TablesDirectory, ExistingTablesAreLeftAlone) {
    Provided provided;
    provided.Install ("version.txt", "2024");
    provided.Install ("DICOM_Module_CT_Image.txt", "Patient\n");
    provided.Keep ("version.txt", "2024 mine");
    EXPECT_EQ ("", provided.Run ());
    EXPECT_EQ (std::set<std::string> {"version.txt"}, provided.Copied ());
    EXPECT_EQ ("2024 mine", Read_Whole (provided.Copies () + "version.txt"));
}

// The directory is made all the same, and from then on every start says how to get the tables.
TEST (TablesDirectory, NothingToCopyIsSaidOnceAndTheVersionAtEveryStart) {
    Provided    provided;
    std::string none = "WARNING: There are no DICOM tables to copy in " + provided.Tables ();
    std::string said = provided.Run ();
    EXPECT_EQ (
        0u, said.find (provided.Copying () + provided.Warning (none) + std::to_string (LOG_WARNING) + ": \t\t[ERROR_"))
        << said;
    EXPECT_EQ (said.size () - provided.Outdated (2004, 0).size (), said.find (provided.Outdated (2004, 0))) << said;
    EXPECT_EQ (10u, provided.log.lines.size ());
    EXPECT_EQ (std::set<std::string> {}, provided.Copied ());
    EXPECT_EQ (provided.Outdated (2004, 0), provided.Run ());

    // Deleting it, as the warning says, brings what is there by then.
    std::filesystem::remove (provided.Copies ());
    provided.Install ("readme.md", "no table");
    EXPECT_EQ (provided.Copying () + provided.Warning (none) + provided.Outdated (2004, 0), provided.Run ());
    std::filesystem::remove (provided.Copies ());
    provided.Install ("version.txt", "2024");
    EXPECT_EQ (provided.Copying (), provided.Run ());
    EXPECT_EQ (std::set<std::string> {"version.txt"}, provided.Copied ());
}

TEST (TablesDirectory, DirectoryThatCannotBeMadeIsReported) {
    Provided provided;
    provided.Install ("version.txt", "2024");
    provided.user.Write ("DICOM Tables", std::string ("a file in its place"));
    std::string said = provided.Run ();
    EXPECT_EQ (0u, said.find (provided.Copying () +
                              provided.Warning ("WARNING: Unable to create directory: " + provided.Copies ()) +
                              std::to_string (LOG_WARNING) + ": \t\t[ERROR_"))
        << said;
    EXPECT_TRUE (provided.log.Contains ("(version 2024/vs/0)")); // There is none to compare with.
    EXPECT_EQ ("a file in its place", Read_Whole (provided.user.File ("DICOM Tables")));
}

static const Provided *raced;
static std::string     race_heard;

// Another program comes in between: it makes the directory and the first table.
static int Race (Window, int kind, const char *text) {
    if (kind == LOG_WARNING) race_heard += text;
    if (strncmp (text, "to: ", 4)) return 1;
    std::filesystem::create_directories (raced->Copies ());
    raced->user.Write (Directory ("DICOM Tables") + "DICOM_Module_CT_Image.txt", std::string ("theirs"));
    return 1;
}

TEST (TablesDirectory, CopiesOfAnotherProgramAreKept) {
    Provided provided;
    provided.Install ("DICOM_Module_CT_Image.txt", "ours");
    provided.Install ("DICOM_Module_MR_Image.txt", "ours");
    raced = &provided;
    race_heard.clear ();
    Log_Sink_Set (Race);
    Tables_Provide (provided.install.path.c_str ());
    EXPECT_EQ ("theirs", Read_Whole (provided.Copies () + "DICOM_Module_CT_Image.txt"));
    EXPECT_EQ ("ours", Read_Whole (provided.Copies () + "DICOM_Module_MR_Image.txt"));
    EXPECT_EQ (std::string::npos, race_heard.find ("Unable")) << race_heard;
}

TEST (TablesDirectory, NoInstallPathAndNoDirectory) {
    Provided provided;
    DICOM_Module_Dir_Set ("");
    EXPECT_EQ ("", provided.Run ());
    DICOM_Module_Dir_Set (provided.Copies ().c_str ());
    Tables_Provide (nullptr); // The program's folder isn't known: the current one.
    EXPECT_TRUE (provided.log.Has (LOG_REPORT, "copying all files from: \x01" + Directory ("DICOM Tables")));
}

// --- versions --------------------------------------------------------------

TEST (TablesDirectory, OlderTablesAreTold) {
    Provided provided;
    provided.Install ("version.txt", "2024\n");
    provided.Keep ("version.txt", "2023\n");
    EXPECT_EQ (provided.Outdated (2024, 2023), provided.Run ());
    EXPECT_EQ ("\xF1\x05WARNING:\xF0\x02 The DICOM tables in \xF0\x01" + provided.Tables (),
               provided.log.lines[0].text);
    EXPECT_EQ ("\t\t\x02 are more recent than the ones in \x01" + provided.Copies (), provided.log.lines[1].text);
    EXPECT_EQ ("\t\t\x02 you may want to delete the older directory to force an update! (version \x01"
               "2024\x02/vs/\x01"
               "2023\x02)",
               provided.log.lines[2].text);
}

TEST (TablesDirectory, SameAndNewerTablesAreNot) {
    for (const char *own : {"2024", "2025", "99999999999"}) {
        Provided provided;
        provided.Install ("version.txt", "2024");
        provided.Keep ("version.txt", own);
        EXPECT_EQ ("", provided.Run ()) << own;
    }
}

TEST (TablesDirectory, VersionIsTheNumberAtTheStart) {
    static const struct {
        const char *text;
        int         version;
    } texts[] = {
        {"2024", 2024}, {" \r\n\t+7 and more", 7}, {"-3", -3}, {"12.5", 12},
        {"", 0},        {"edition 2024", 0},       {"- 3", 0}, {"99999999999", INT32_MAX},
    };
    for (auto &text : texts) {
        Provided provided;
        provided.Keep ("version.txt", text.text);
        provided.Install ("version.txt", "2147483647");
        std::string expected = text.version == INT32_MAX ? "" : provided.Outdated (INT32_MAX, text.version);
        EXPECT_EQ (expected, provided.Run ()) << text.text;
    }
}

// Tables without a version are of the first edition that had none; the user's without one are older than any.
TEST (TablesDirectory, MissingVersions) {
    Provided provided;
    provided.Keep ("DICOM_Module_CT_Image.txt", "Patient\n");
    EXPECT_EQ (provided.Outdated (2004, 0), provided.Run ());
    EXPECT_EQ (provided.Outdated (2004, 0), provided.Run ()); // At every start.
    provided.Keep ("version.txt", "2004");
    EXPECT_EQ ("", provided.Run ());
    provided.Keep ("version.txt", "2003");
    EXPECT_EQ (provided.Outdated (2004, 2003), provided.Run ());
}
