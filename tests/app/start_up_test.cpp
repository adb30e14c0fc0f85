// Start-up in this process, with the log going to a directory of the test, and the built program as a user starts it.
#include "app/start_up.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/main_window.h"
#include "nema/NEMA_Read_Value.h"
#include "platform/system.h"
#include "platform/window.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tests/support/environment.h"
#include "tests/support/examples.h"
#include "tests/support/log_recorder.h"
#include "tests/support/program.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"
#include "tools/icon.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "view/result_view.h"

static std::string Example_Path (const std::string &name) {
    return std::string (TAGWRIGHT_SOURCE_DIR) + "/examples/" + name;
}

static std::string Line_Ends (const std::string &text) {
    std::string result;
    for (char c : text) result += c == '\n' ? System_Line_End () : std::string (1, c);
    return result;
}

static bool Contains (const std::string &text, const std::string &part) {
    return text.find (part) != std::string::npos;
}

static std::string boxes;

static int Box_Heard (Window, const char *text, const char *, Window_Icon) {
    boxes += text;
    return 0;
}

static std::string Tables_Below (const Temporary_Directory &user) {
    return user.File (std::string ("Kestrelbay") + System_Separator () + "DICOM Tables" + System_Separator ());
}

// A user with a directory of its own for the time of a test.
struct User_Data {
    Temporary_Directory directory;
    std::string         before = getenv ("APPDATA") ? getenv ("APPDATA") : "";

    User_Data () {
        Environment_Set ("APPDATA", directory.path);
        Write_User_Tables (directory);
    }
    ~User_Data () { Environment_Set ("APPDATA", before); }
};

// One run of the program's entry, with what it wrote. Everything is as before afterwards.
struct Started {
    User_Data           user;
    Temporary_Directory scratch;
    Log_Settings        settings = Log;
    int                 result   = 0;
    std::string         output, errors;

    Started () {
        std::string path = scratch.path;
        path.copy (Log.scratch, sizeof Log.scratch - 1);
        Log.scratch[path.size ()] = 0;
        boxes.clear ();
        Window_Box_Hook_Set (Box_Heard);
        Log_Sink_Set (nullptr);
    }
    ~Started () {
        NEMA_Value_Rings_Free ();
        Window_Box_Hook_Set (nullptr);
        Log = settings;
        Log_Recorder silent; // Its end leaves the sink that writes nothing.
    }

    void Run (const std::vector<const char *> &words, int in_window = 0) {
        Program_Arguments arguments = {nullptr, static_cast<int> (words.size ()), words.data (), in_window};
        testing::internal::CaptureStdout ();
        testing::internal::CaptureStderr ();
        result = Program_Run (&arguments);
        fflush (stdout);
        output = testing::internal::GetCapturedStdout ();
        errors = testing::internal::GetCapturedStderr ();
    }
    std::string Audit () const { return Read_Whole (scratch.File (Audit_Name ())); }
    std::string Trace () const { return Read_Whole (scratch.File ("Tagwright_trace.dat")); }
};

// --- in this process -------------------------------------------------------

TEST (StartUp, UnknownOption) {
    Started started;
    started.Run ({"-q", "a", "b"});
    EXPECT_EQ (COMMAND_LINE_BAD, started.result);
    EXPECT_EQ ("unknown argument (-q)\n", started.errors);
    EXPECT_TRUE (Contains (started.output, " --- usage: ---\n"));
}

TEST (StartUp, PairIsComparedAndAudited) {
    Started     started;
    std::string a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm");
    started.Run ({a.c_str (), b.c_str ()});
    EXPECT_EQ (12, started.result);
    EXPECT_EQ ("", started.output + started.errors);
    EXPECT_EQ ("", started.Trace ());
    std::string audit = started.Audit ();
    EXPECT_EQ (13, std::count (audit.begin (), audit.end (), '\n'));
    EXPECT_TRUE (Contains (audit, Line_Ends ("\nFound 12 differences\n")));
    EXPECT_EQ (0u, audit.find ("! (0002,0003)       UI (  18) 1 bytes diff")) << audit;
}

TEST (StartUp, ResultsOfPairsAreAddedUp) {
    Started     started;
    std::string a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm"), n = Example_Path ("nested_a.dcm"),
                m = Example_Path ("nested_b.dcm"), missing = started.scratch.File ("missing.dcm");
    started.Run ({a.c_str (), b.c_str (), n.c_str (), m.c_str (), a.c_str (), missing.c_str ()});
    EXPECT_EQ (12 + 3 - 3, started.result);
    EXPECT_TRUE (Contains (started.Audit (), "ERROR: Unable to open file: " + missing));
}

TEST (StartUp, LastNameWithoutPartnerFails) {
    Started     started;
    std::string a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm");
    started.Run ({a.c_str (), b.c_str (), "alone.dcm"});
    EXPECT_EQ ("input names are taken in pairs: no partner for (alone.dcm)\n", started.errors);
    EXPECT_EQ (12 - 3, started.result);
    started.Run ({a.c_str ()});
    EXPECT_EQ (-3, started.result);
    EXPECT_EQ ("input names are taken in pairs: no partner for (" + a + ")\n", started.errors);
}

TEST (StartUp, EmptyNameFails) {
    Started     started;
    std::string a = Example_Path ("ct_a.dcm");
    started.Run ({a.c_str (), ""});
    EXPECT_EQ (-3, started.result);
    EXPECT_EQ ("", started.errors);
}

// A negative level keeps the console quiet and writes what was reported into the trace file.
TEST (StartUp, ReportsFrameTheRun) {
    Started     started;
    std::string a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm");
    started.Run ({"-t", "-1", a.c_str (), b.c_str ()});
    EXPECT_EQ (12, started.result);
    EXPECT_EQ ("", started.output);
    std::string trace = started.Trace ();
    EXPECT_EQ (0u, trace.find (Line_Ends ("REPORT: Comparing 2 files...\nREPORT:     Compare A: " + a + "\n")))
        << trace;
    EXPECT_TRUE (Contains (trace, Line_Ends ("REPORT: Found 12 differences\nREPORT: Done\n"))) << trace;
    started.Run ({"-t", "-1", a.c_str ()});
    EXPECT_TRUE (Contains (started.Trace (), Line_Ends ("REPORT: Comparing 1 file...\n")));
}

TEST (StartUp, TraceIsBegunAnewWithTheBanner) {
    Started     started;
    std::string a = Example_Path ("nested_a.dcm");
    started.scratch.Write ("Tagwright_trace.dat", std::string ("before\n"));
    started.Run ({"-t", "1", a.c_str (), a.c_str ()});
    std::string trace = started.Trace ();
    EXPECT_EQ (0u, trace.find ("TRACE:   ==== ==== Tagwright 2.1 rev-2 ==== (")) << trace.substr (0, 200);
    EXPECT_TRUE (Contains (trace, Line_Ends ("TRACE:   Prog_ID:      TAGWRIGHT 21000020\n"
                                             "TRACE:   Prog_Date:    15/06/2016\n")))
        << trace.substr (0, 400);
}

// Neither beside the test's program nor in the user's directory; the comparison of two files needs none.
TEST (StartUp, MissingTablesAreReportedAndTheRunGoesOn) {
    Started started;
    std::filesystem::remove_all (Tables_Below (started.user.directory));
    std::string a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm");
    started.Run ({"-t", "-1", a.c_str (), b.c_str ()});
    EXPECT_EQ (12, started.result);
    std::string trace = started.Trace (), tables = Tables_Below (started.user.directory);
    EXPECT_EQ (0u, trace.find ("REPORT: DICOM tables do not exist in " + tables)) << trace;
    EXPECT_TRUE (Contains (trace, "WARNING: WARNING: There are no DICOM tables to copy in ")) << trace;
    EXPECT_TRUE (Contains (trace, "(version 2004/vs/0)")) << trace;
    EXPECT_TRUE (Contains (trace, Line_Ends ("REPORT: Found 12 differences\nREPORT: Done\n"))) << trace;
    EXPECT_TRUE (std::filesystem::is_directory (tables));
}

TEST (StartUp, OldTablesAreTold) {
    Started started;
    started.user.directory.Write (Tables_Below (started.user.directory).substr (started.user.directory.path.size ()) +
                                      "version.txt",
                                  std::string ("2003"));
    std::string a = Example_Path ("nested_a.dcm");
    started.Run ({"-t", "-1", a.c_str (), a.c_str ()});
    EXPECT_EQ (0, started.result);
    EXPECT_TRUE (Contains (started.Trace (), "(version 2004/vs/2003)")) << started.Trace ();
}

// A number that the level can't hold is taken as the nearest one.
TEST (StartUp, TraceLevelSaturates) {
    for (const char *level : {"300", "-300"}) {
        Started     started;
        std::string a = Example_Path ("nested_a.dcm");
        started.Run ({"-t", level, a.c_str (), a.c_str ()});
        EXPECT_EQ (0, started.result);
        EXPECT_EQ (level[0] == '-' ? -128 : 127, Log.trace_level);
    }
}

TEST (StartUp, IdentityIsSetAnew) {
    Started started;
    Log.audit_mode  = 1;
    Log.trace_level = 4;
    started.Run ({"a", "b"});
    EXPECT_EQ (0, Log.trace_level);
    EXPECT_EQ (2, Log.audit_mode);
    EXPECT_STREQ ("Tagwright_trace.dat", Log.trace_name);
    EXPECT_EQ (Audit_Name (), Log.audit_name);
    EXPECT_STREQ ("Tagwright", Log.program_name);
    EXPECT_STREQ ("2.1 rev-2", Log.program_version);
    EXPECT_STREQ ("TAGWRIGHT 21000020", Log.program_identifier);
    EXPECT_STREQ ("15/06/2016", Log.program_date);
    EXPECT_EQ (MODE_EXPLICIT, Program.settings.mode_start);
    EXPECT_EQ (0, Program.settings.kind_warning);
    EXPECT_EQ (0, Program.settings.kind_note);
    EXPECT_EQ (0, Program.settings.Nb_Skip);
}

TEST (StartUp, EverythingIsReleased) {
    Dictionary_Build (nullptr);
    long live = Memory_Live ();
    {
        Started     started;
        std::string a = Example_Path ("nested_a.dcm"), b = Example_Path ("nested_b.dcm");
        Stream      stream = Stream_Begin_File (EXPLICIT_LITTLE);
        Stream_Add_Text (&stream, 0x0011, 0x0010, "LO", "SOME MAKER");
        Stream_Add_Text (&stream, 0x0011, 0x1001, "LO", "x ");
        std::string own = started.scratch.Write ("private.dcm", stream.bytes);
        started.user.directory.Write (std::string ("Kestrelbay") + System_Separator () + "Tagwright.ini",
                                      std::string ("skip = (0010,1010)\n"));
        started.Run ({a.c_str (), b.c_str (), own.c_str (), own.c_str ()});
        EXPECT_EQ (3, started.result);
    }
    EXPECT_EQ (live, Memory_Live ());
    EXPECT_EQ (nullptr, Program.Inst_Path);
    EXPECT_EQ (nullptr, Program.Application_Path);
    EXPECT_EQ (nullptr, DICOM_Module_Dir_Set (nullptr));
}

// The names of the paths come first, each once; behind them the run goes on with what it has.
TEST (StartUp, EveryMemoryFailureIsShownAndLeaksNothing) {
    Dictionary_Build (nullptr);
    std::string a = Example_Path ("nested_a.dcm"), b = Example_Path ("nested_b.dcm");
    std::string all;
    long        live = Memory_Live ();
    for (long n = 1;; n++) {
        Started started;
        Memory_Fail_At (n);
        started.Run ({a.c_str (), b.c_str ()});
        int failed = Memory_Failed ();
        Memory_Fail_At (0);
        NEMA_Value_Rings_Free ();
        EXPECT_EQ (failed, Contains (boxes, "\nmemory error in ")) << n << boxes;
        EXPECT_EQ (live, Memory_Live ()) << n;
        if (Contains (boxes, " of start_up \n") || Contains (boxes, " of command_line \n")) {
            EXPECT_EQ (0, started.result) << boxes;
            EXPECT_EQ ("", started.Audit ());
        }
        all += boxes;
        if (!failed) break;
        ASSERT_GT (10000, n);
    }
    for (const char *name : {"input_file", "Inst_Path", "DICOM_Module_Dir", "Application_Path", "Name_File_A"})
        EXPECT_TRUE (Contains (all, std::string ("(var=") + name)) << name;
}

// --- the window ------------------------------------------------------------

static std::string listed, installed;
static int         window_width, window_height;

// What the user sees when the loop begins.
static int Look (Window window) {
    listed.clear ();
    for (int i = 0; i < Result.text.line_count; i++) listed += Clean (Texts::Line (&Result.text, i)) + "\n";
    Window_Client_Size (window, &window_width, &window_height);
    return 7;
}

static int Look_For_Icon (Window) {
    installed = Program.Inst_Path ? Program.Inst_Path : "";
    Icon_Read (nullptr, "none.tga");
    return 0;
}

struct Looked : Started {
    Looked () { Main_Window_Loop_Set (Look); }
    ~Looked () { Main_Window_Loop_Set (nullptr); }
};

TEST (StartUp, NoNamesOpenTheWindow) {
    Looked started;
    started.Run ({});
    EXPECT_EQ (7, started.result);
    EXPECT_EQ ("", started.output + started.errors + boxes);
    EXPECT_EQ (800, window_width);
    EXPECT_EQ (600, window_height);
    EXPECT_TRUE (Contains (listed, "\n----- ----- ----- Tagwright ----- ----- -----\n- Drag & Drop 1 DICOM file"))
        << listed;
    EXPECT_TRUE (Contains (listed, " black \t\t\t in both the file and the modality \t\t different\n"));
    EXPECT_EQ ("", started.Trace ());
}

TEST (StartUp, NamesAreTakenAsADropWhereTheSystemOpensFiles) {
    Looked      started;
    std::string a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm");
    started.Run ({a.c_str (), b.c_str ()}, 1);
    EXPECT_EQ (7, started.result);
    EXPECT_EQ ("", started.output + started.errors + boxes);
    size_t help = listed.find ("- Drag & Drop 1 DICOM file"), drop = listed.find ("Comparing 2 files...\n");
    EXPECT_NE (std::string::npos, drop) << listed;
    EXPECT_LT (help, drop);
    EXPECT_TRUE (Contains (listed, "Found 12 differences")) << listed;
    EXPECT_TRUE (Contains (started.Audit (), Line_Ends ("\nFound 12 differences\n")));

    started.Run ({}, 1); // A window without files is as ever.
    EXPECT_FALSE (Contains (listed, "Comparing 0 file")) << listed;
}

TEST (StartUp, OptionsSetTheWindowsSize) {
    static const struct {
        const char *x, *width, *y, *height;
        int         expected_width, expected_height;
    } PLACES[] = {{"10", "640", "20", "480", 640, 480},
                  {"-5", "0", "0", "-1", 136, 39},
                  {"-2147483648", "-2147483648", "wide", "high", 136, 39},
                  {"2147483647", "137", "99999999999", "40", 137, 40}};
    for (const auto &place : PLACES) {
        Looked started;
        started.Run ({"-x", place.x, place.width, "-Y", place.y, place.height});
        EXPECT_EQ (7, started.result);
        EXPECT_EQ (place.expected_width, window_width);
        EXPECT_EQ (place.expected_height, window_height);
    }
    Looked started;
    started.Run ({"-x", "1", "700"});
    EXPECT_EQ (700, window_width);
    EXPECT_EQ (600, window_height);
}

// What isn't said counts as 0, and there is no window that is too small to be seen, nor one without end.
TEST (StartUp, SizesThatAreNotSaidAreTheLeast) {
    for (const std::vector<const char *> &words :
         {std::vector<const char *> {"-y", "1", "500", "-x"}, {"-y", "1", "500", "-x", "5"}}) {
        Looked started;
        started.Run (words);
        EXPECT_EQ (136, window_width);
        EXPECT_EQ (500, window_height);
        EXPECT_EQ ("", boxes);
    }
}

// Windows has a key for it. Elsewhere the directory of the program is known.
TEST (StartUp, WithoutARegistryKeyTheUsualDirectoryIsTaken) {
    bool                registry = System_Separator () == '\\';
    Looked              started;
    Temporary_Directory user;
    Environment_Set ("APPDATA", user.path);
    started.Run ({"-t", "1"});
    EXPECT_EQ (registry, Contains (started.Trace (), "TRACE:   Unable to get path from registry"));
    EXPECT_EQ (registry, Contains (started.Trace (), "TRACE:   File:start_up. Line:"));
    EXPECT_EQ (registry, Contains (listed, "copying all files from: c:\\Program Files\\Kestrelbay\\DICOM Tables\\\n"))
        << listed;
}

TEST (StartUp, WindowIsTracedFromItsStart) {
    Looked started;
    started.Run ({"-t", "1"});
    EXPECT_EQ (0u, started.Trace ().find ("TRACE:   ==== ==== Tagwright 2.1 rev-2 ====")) << started.Trace ();
    EXPECT_FALSE (Contains (started.Trace (), "Kestrelbay Libraries"));
}

// What is told before the help (here that the tables were copied) stands in the list, too.
TEST (StartUp, EarlierReportsStandBeforeTheHelp) {
    Looked              started;
    Temporary_Directory user;
    Environment_Set ("APPDATA", user.path);
    started.Run ({});
    EXPECT_EQ (0u, listed.find ("DICOM tables do not exist in ")) << listed;
    EXPECT_LT (listed.find ("to: "), listed.find ("Drag & Drop 1"));
}

TEST (StartUp, IconsStandBesideTheProgram) {
    Dictionary_Build (nullptr);
    long   live = Memory_Live ();
    Looked started;
    Main_Window_Loop_Set (Look_For_Icon);
    started.Run ({});
    EXPECT_EQ (live, Memory_Live ());
    EXPECT_FALSE (installed.empty ());
    EXPECT_TRUE (Contains (Read_Whole (started.scratch.File (Log.error_name)),
                           "fopen(" + installed + "Icons" + System_Separator () + "none.tga) failed"))
        << Read_Whole (started.scratch.File (Log.error_name));
}

TEST (StartUp, WindowReleasesEverything) {
    Dictionary_Build (nullptr);
    long live = Memory_Live ();
    {
        Looked started;
        started.Run ({});
    }
    EXPECT_EQ (live, Memory_Live ());
    EXPECT_EQ (0, Drops.count);
}

TEST (StartUp, EveryMemoryFailureWithAWindowIsShownAndLeaksNothing) {
    Dictionary_Build (nullptr);
    long live = Memory_Live ();
    for (long n = 1, failed = 1; failed; n++) {
        Looked started;
        listed.clear ();
        Memory_Fail_At (n);
        started.Run ({});
        failed = Memory_Failed ();
        Memory_Fail_At (0);
        NEMA_Value_Rings_Free ();
        EXPECT_EQ (failed, Contains (boxes, "\nmemory error in ")) << n << boxes;
        EXPECT_EQ (live, Memory_Live ()) << n;
        EXPECT_TRUE (started.result == 7 || started.result == 0) << n;
        ASSERT_GT (10000, n);
    }
}

// --- the built program -----------------------------------------------------

static int Status (int result) { return System_Exit_Status (result); }

TEST (Program, PairsEndWithTheirCount) {
    for (const Example_Pair &pair : Example_Pairs ()) {
        Temporary_Directory directory;
        Program_Result      result =
            Program_Run_Built (directory, Quoted (Example_Path (pair.a)) + " " + Quoted (Example_Path (pair.b)));
        EXPECT_EQ (pair.differences, result.status) << pair.a << " " << pair.b << result.errors;
        EXPECT_EQ ("", result.output + result.errors);
        EXPECT_TRUE (
            Contains (result.audit, Line_Ends ("Found " + std::to_string (pair.differences) + " differences\n")))
            << result.audit;
    }
}

TEST (Program, FileEqualsItself) {
    Temporary_Directory directory;
    std::string         arguments;
    for (const Example &example : Examples_Make ())
        arguments += Quoted (Example_Path (example.name)) + " " + Quoted (Example_Path (example.name)) + " ";
    EXPECT_EQ (0, Program_Run_Built (directory, arguments).status);
}

TEST (Program, UnknownOption) {
    Temporary_Directory directory;
    Program_Result      result = Program_Run_Built (directory, "a -q b");
    EXPECT_EQ (2, result.status);
    EXPECT_EQ ("unknown argument (-q)\n", result.errors);
    EXPECT_TRUE (Contains (result.output, "\n --- usage: ---\n"));
}

TEST (Program, NameWithoutPartner) {
    Temporary_Directory directory;
    Program_Result      result = Program_Run_Built (directory, "alone.dcm");
    EXPECT_EQ (Status (-3), result.status);
    EXPECT_EQ ("input names are taken in pairs: no partner for (alone.dcm)\n", result.errors);
}

TEST (Program, MissingFile) {
    Temporary_Directory directory;
    std::string         missing = directory.File ("missing.dcm");
    Program_Result      result  = Program_Run_Built (directory, Quoted (missing) + " " + Quoted (missing));
    EXPECT_EQ (Status (-3), result.status);
    EXPECT_TRUE (
        Contains (result.audit, Line_Ends ("ERROR: Unable to open file: " + missing + "\n    [ERROR_FILE_NOT_FOUND] ")))
        << result.audit;
}

TEST (Program, NamesMayHoldBlanks) {
    Temporary_Directory directory;
    std::string         name = directory.Write ("a name with blanks.dcm", Read_Whole (Example_Path ("ct_a.dcm")));
    Program_Result result    = Program_Run_Built (directory, Quoted (name) + " " + Quoted (Example_Path ("ct_b.dcm")));
    EXPECT_EQ (12, result.status);
}

TEST (Program, TraceIsWritten) {
    Temporary_Directory directory;
    std::string         a = Example_Path ("ct_a.dcm"), b = Example_Path ("ct_b.dcm");
    Program_Result      result = Program_Run_Built (directory, "-t 3 " + Quoted (a) + " " + Quoted (b));
    EXPECT_EQ (12, result.status);
    EXPECT_TRUE (Contains (result.audit, "Found 12 differences"));
    std::string trace = Read_Whole (Program_Scratch (directory) + "Tagwright_trace.dat");
    EXPECT_EQ (0u, result.output.find ("TRACE:   ==== ==== Tagwright 2.1 rev-2 ==== ("))
        << result.output.substr (0, 200);
    EXPECT_TRUE (Contains (trace, Line_Ends ("REPORT: Comparing 2 files...\n")));
    EXPECT_TRUE (Contains (trace, "Stool DICOM File A"));
    EXPECT_TRUE (Contains (trace, "Stool original DICOM File"));
    EXPECT_TRUE (Contains (trace, Line_Ends ("TRACE:           --> ****** end of file ******\n")));
    EXPECT_TRUE (Contains (trace, Line_Ends ("TRACE:   ==> 12 dif\n")));
}

// A table of the user's with a wrong line, and the trace that a name without partner leaves of it from level 4 on.
TEST (Program, ANameWithoutPartnerChecksTheTables) {
    for (int level : {3, 4}) {
        Temporary_Directory directory;
        std::string tables = std::string ("Kestrelbay") + System_Separator () + "DICOM Tables" + System_Separator ();
        Write_User_Tables (directory);
        directory.Write (tables + "DICOM_Module_CT_Image.txt", std::string ("Patient\n"));
        directory.Write (tables + "DICOM_Attributes_Patient.txt", std::string ("(0010,0010) type=required\n"));
        Program_Result result =
            Program_Run_Built (directory, "-t " + std::to_string (level) + " " + Quoted (Example_Path ("ct_a.dcm")));
        EXPECT_EQ (System_Exit_Status (-3), result.status);
        std::string trace  = Read_Whole (Program_Scratch (directory) + "Tagwright_trace.dat");
        bool        checks = level == 4;
        EXPECT_EQ (checks,
                   Contains (trace, "WARNING: WARNING: reading Attribute file:DICOM_Attributes_Patient.txt line:1"));
        EXPECT_EQ (checks, Contains (trace, "Syntax error\"type=xx\" (=type=required)"));
        EXPECT_EQ (checks,
                   Contains (trace, "-----                         Sorting DICOM tags                         ------"));
        EXPECT_EQ (checks, Contains (trace, "Reading DICOM Modality tables for: "));
    }
}

// What the user's directory is for; it is made with the levels above it.
TEST (Program, UserDirectoryIsMade) {
    Temporary_Directory directory;
    std::string         a = Quoted (Example_Path ("nested_a.dcm"));
    EXPECT_EQ (0, Program_Run_Copy (Program_Built (), directory, a + " " + a).status);
    EXPECT_EQ (1, System_Is_Directory (directory.File ("Kestrelbay").c_str ()));
}

// --- the built program and its configuration -------------------------------

// The user's own file, and the directory that it names as scratch.
struct User {
    Temporary_Directory directory, scratch;

    void Configure (const std::string &text) {
        std::filesystem::create_directories (directory.File ("Kestrelbay"));
        directory.Write (std::string ("Kestrelbay") + System_Separator () + "Tagwright.ini",
                         Line_Ends ("scratch = " + scratch.path + "\n" + text));
    }
    Program_Result Compare (const std::string &a, const std::string &b, const std::string &options = "") {
        return Program_Run_Built (directory, options + Quoted (Example_Path (a)) + " " + Quoted (Example_Path (b)));
    }
    std::string Log (const std::string &name) const { return Read_Whole (scratch.File (name)); }
};

// The audit file has a name of its own, since any run of the same user may write into that directory.
TEST (Program, WithoutAScratchLineTheDefaultDirectoryIsUsed) {
    Temporary_Directory directory;
    std::string name = std::filesystem::path (directory.File ("")).parent_path ().filename ().string () + ".txt";
    std::filesystem::create_directories (directory.File ("Kestrelbay"));
    directory.Write (std::string ("Kestrelbay") + System_Separator () + "Tagwright.ini", "audit = " + name + "\n");
    EXPECT_EQ (
        12, Program_Run_Built (directory, Quoted (Example_Path ("ct_a.dcm")) + " " + Quoted (Example_Path ("ct_b.dcm")))
                .status);
    char scratch[SYSTEM_PATH_SIZE];
    ASSERT_EQ (1, System_Scratch_Path (scratch, sizeof scratch));
    EXPECT_TRUE (Contains (Read_Whole (scratch + name), Line_Ends ("\nFound 12 differences\n"))) << scratch << name;
    std::filesystem::remove (scratch + name);
}

// (0008,1155) and (0008,1150) differ in items of (0008,1140), (0010,1010) and (0010,4000) at the top.
TEST (Program, SkippedTagsAreLeftOutAlsoInSequences) {
    static const struct {
        const char *lines;
        int         differences;
    } skips[] = {
        {"", 12},
        {"skip = (0010,1010)\n", 11},
        {"skip = (0010,*)\n", 10},
        {"skip : (0008,115?)\n", 9},
        {"skip = (0008,1140)\n", 9},
        {"skip=(0008,115?)\nskip = (0010,*)\n# skip = (*,*)\n", 7},
        {"skip = (7fe0,0010)\n", 12},
        {"skip = (7FE0,0010) the pixels\n", 11},
        {"skip = (0008)\n", 12},
        {"skip = (0008,0018)\nskip = (0002,0003)\nskip = (0010,*)\nskip = (0008,115?)\n", 5},
        {"skip    = (0008,0018)  # new\nskip    = (0010,*)\nskip    = (0008,115?)\n", 6},
        {"skip = (*,*)\n", 0},
    };
    for (auto &skip : skips) {
        User user;
        user.Configure (skip.lines);
        Program_Result result = user.Compare ("ct_a.dcm", "ct_b.dcm");
        EXPECT_EQ (skip.differences, result.status) << skip.lines << result.errors;
        EXPECT_EQ ("", result.output + result.errors);
        EXPECT_EQ ("", result.audit); // It went to the scratch directory that the file names.
        std::string audit = user.Log (Audit_Name ());
        EXPECT_EQ (skip.differences + (skip.differences > 0), std::count (audit.begin (), audit.end (), '\n')) << audit;
    }
}

TEST (Program, DeepAttributeIsSkipped) {
    User user;
    user.Configure ("");
    EXPECT_EQ (3, user.Compare ("nested_a.dcm", "nested_b.dcm").status);
    user.Configure ("skip = (0040,A160)\n"); // Text Value, four sequences deep.
    EXPECT_EQ (2, user.Compare ("nested_a.dcm", "nested_b.dcm").status);
}

// Nothing opens a console or starts the trace file anew: a level from the file only adds to it.
TEST (Program, ConfigurationSetsTraceAndAuditFile) {
    User user;
    user.scratch.Write ("Tagwright_trace.dat", std::string ("before\n"));
    user.Configure ("audit = found.txt\ntrace = 1\nwrong = 1\n");
    Program_Result result = user.Compare ("ct_a.dcm", "ct_b.dcm");
    EXPECT_EQ (12, result.status);
    EXPECT_EQ ("", user.Log (Audit_Name ()));
    EXPECT_TRUE (Contains (user.Log ("found.txt"), Line_Ends ("\nFound 12 differences\n")));
    std::string trace = user.Log ("Tagwright_trace.dat");
    EXPECT_EQ (0u, trace.find ("before\n"));
    EXPECT_TRUE (Contains (trace, Line_Ends ("TRACE:   ==> line[4]   \"wrong = 1\"\n"))) << trace;
    EXPECT_TRUE (Contains (trace, Line_Ends ("[4] wrong = 1\nREPORT: Done\nREPORT: Comparing 2 files...\n"))) << trace;
    EXPECT_TRUE (Contains (trace, Line_Ends ("TRACE:   ==> 12 dif\n")));
    EXPECT_FALSE (Contains (trace, "Prog_ID:"));
    EXPECT_TRUE (Contains (result.output, "TRACE:   ==> 12 dif \n"));
}

// What comes before the line that names another directory is in the default one, and there alone a trace is begun anew.
TEST (Program, TraceGoesOnInTheConfiguredDirectory) {
    User user;
    user.scratch.Write ("Tagwright_trace.dat", std::string ("before\n"));
    user.Configure ("");
    EXPECT_EQ (12, user.Compare ("ct_a.dcm", "ct_b.dcm", "-t 1 ").status);
    std::string trace = user.Log ("Tagwright_trace.dat");
    EXPECT_EQ (0u, trace.find ("before\n"));
    EXPECT_FALSE (Contains (trace, "Prog_ID:"));
    EXPECT_TRUE (Contains (trace, Line_Ends ("TRACE:   ==> 12 dif\n"))) << trace;
}

TEST (Program, CommandLineLevelIsNotLowered) {
    User user;
    user.Configure ("trace = 1\n");
    EXPECT_EQ (12, user.Compare ("ct_a.dcm", "ct_b.dcm", "-t 3 ").status);
    EXPECT_TRUE (
        Contains (user.Log ("Tagwright_trace.dat"), Line_Ends ("TRACE:           --> ****** end of file ******\n")));
}

// What the reader finds wrong is told with a trace line only.
TEST (Program, TraceLineBringsTheNotes) {
    for (bool asked : {false, true}) {
        User user;
        user.Configure (asked ? "trace = 1\n" : "");
        EXPECT_EQ (0, user.Compare ("damaged.dcm", "damaged.dcm", "-t 1 ").status);
        EXPECT_EQ (asked, Contains (user.Log ("Tagwright_trace.dat"), "Invalid tag length (size=512)!"));
    }
}
