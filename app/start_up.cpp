// Start-up brings the services up in the order in which they need one another: identity, command line, console, window,
// log, paths, configuration, definition tables. Memory that runs out on the way ends the program with 0, after the message.
// Batch mode makes no window, so that it runs where there is no display.
#include "app/start_up.h"

#include <stdio.h>

#include <algorithm>

#include "app/command_line.h"
#include "app/configuration.h"
#include "app/main_window.h"
#include "app/tables_directory.h"
#include "compare/comparison_run.h"
#include "platform/system.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "tools/icon.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "util/utility_directory.h"
#include "util/win_registry.h"

static const char *const MODULE = "start_up";

static const char *const INSTALL_PATH_DEFAULT = "c:\\Program Files\\Kestrelbay\\";
static const size_t      PATH_TEXT_SIZE       = SYSTEM_PATH_SIZE + 64; // A path and one more directory.

static const int MEMORY_FAILED = 0; // Exit code.

Application Program;

// --- identity --------------------------------------------------------------

static void Identity_Set (void) {
    char date[32];
    System_Now ("%d%b%Y", date, sizeof date);

    Log.trace_level        = 0;
    Log.audit_mode         = 2;
    Log.program_name       = PROGRAM_NAME;
    Log.program_version    = PROGRAM_VERSION;
    Log.program_identifier = PROGRAM_IDENTIFIER;
    Log.program_date       = PROGRAM_DATE;
    Text_Copy (Log.trace_name, sizeof Log.trace_name, PROGRAM_NAME "_trace.dat");
    snprintf (Log.audit_name, sizeof Log.audit_name, PROGRAM_NAME "_%s.dat", date);

    Program.settings            = {};
    Program.settings.mode_start = MODE_EXPLICIT;
    DICOM_Module_Override_Set ("");
}

// A level beyond the range of the setting is as deep, or as silent, as the setting can say.
static int8_t Trace_Level (int level) {
    if (level > INT8_MAX) return INT8_MAX;
    if (level < INT8_MIN) return INT8_MIN;
    return static_cast<int8_t> (level);
}

// --- paths -----------------------------------------------------------------

// Replaces an owned path by a copy of another, an empty one by none. 1, or 0 after the strdup message.
static int Path_Keep (Memory_Site site, char **place, const char *path) {
    Memory_Free (*place);
    *place = nullptr;
    if (!*path) return 1;
    *place = Memory_Strdup (nullptr, site, path);
    return *place != nullptr;
}

// "path" and "name" and a separator.
static void Path_Text (char *text, size_t size, const char *path, const char *name) {
    snprintf (text, size, "%s%s%c", path, name, System_Separator ());
}

static int Install_Path_Set (void) {
    char path[SYSTEM_PATH_SIZE];
    if (!Registry_Get_Path (nullptr, PROGRAM_NAME, path, sizeof path)) {
        Log_Message (nullptr, LOG_TRACE1, "Unable to get path from registry");
        Log_Message (nullptr, LOG_TRACE1, "File:%s. Line:%d", MODULE, __LINE__);
        Text_Copy (path, sizeof path, INSTALL_PATH_DEFAULT);
    }
    return Path_Keep (HERE ("Inst_Path", 0, 0), &Program.Inst_Path, path);
}

// The user's own directory is made when it is missing.
static int Application_Path_Set (void) {
    char data[SYSTEM_PATH_SIZE];
    char path[PATH_TEXT_SIZE];
    if (!System_User_Data_Path (data, sizeof data)) return 1;

    Path_Text (path, sizeof path, data, PROGRAM_VENDOR);
    if (!Path_Keep (HERE ("Application_Path", 0, 0), &Program.Application_Path, path)) return 0;
    Directory_Make (nullptr, Program.Application_Path);
    return 1;
}

// The definition tables below a directory; the user's copy, when there is a place for one, is the one that is read.
static int Tables_Path_Set (const char *parent) {
    char path[PATH_TEXT_SIZE];
    Path_Text (path, sizeof path, parent ? parent : "", TABLES_DIRECTORY);
    return DICOM_Module_Dir_Set (path) != nullptr;
}

static int Paths_Set (void) {
    return Install_Path_Set () && Tables_Path_Set (Program.Inst_Path) && Application_Path_Set () &&
           Tables_Path_Set (Program.Application_Path ? Program.Application_Path : Program.Inst_Path);
}

static void Paths_Free (void) {
    char **const PATHS[] = {&Program.Inst_Path, &Program.Application_Path};
    for (char **path : PATHS) {
        Memory_Free (*path);
        *path = nullptr;
    }
    DICOM_Module_Dir_Set ("");
}

// --- configuration ---------------------------------------------------------

// First what comes with the program, then what the user wants. A failure leaves what was set before.
static void Configure (void) {
    Configuration_Read (Program.Inst_Path, PROGRAM_SETTINGS);
    if (Configuration_Exists (Program.Application_Path, PROGRAM_SETTINGS))
        Configuration_Read (Program.Application_Path, PROGRAM_SETTINGS);
}

// --- batch mode ------------------------------------------------------------

static int Sum (int total, int result) {
    int64_t sum = static_cast<int64_t> (total) + result;
    if (sum > INT32_MAX) return INT32_MAX;
    if (sum < INT32_MIN) return INT32_MIN;
    return static_cast<int> (sum);
}

// A name without partner can't be compared, but from this trace level on it shows what the tables make of its SOP class.
static const int TABLES_CHECK_LEVEL = 4;

static void Check_Tables (const char *name) {
    if (Log.trace_level >= TABLES_CHECK_LEVEL && System_File_Exists (name))
        Comparison_Check_Tables (nullptr, &Program.settings, name);
}

// Compares the names pair by pair. The sum of the results.
static int Batch_Run (const Command_Line *line) {
    int total = 0;
    if (line->count % 2)
        fprintf (stderr, "input names are taken in pairs: no partner for (%s)\n", line->input_file[line->count - 1]);

    Log_Message (nullptr, LOG_REPORT, EMPHASIS COLOUR_BLACK "Comparing %d file%s...", line->count,
                 line->count >= 2 ? "s" : "");
    for (int i = 0; i < line->count; i += 2) {
        const char *second = i + 1 < line->count ? line->input_file[i + 1] : "";
        total              = Sum (total, Comparison_Start (nullptr, &Program.settings, line->input_file[i], second, 1));
        if (!*second) Check_Tables (line->input_file[i]);
    }
    Log_Message (nullptr, LOG_REPORT, EMPHASIS COLOUR_BLACK "Done");
    return total;
}

// --- interactive mode ------------------------------------------------------

static const int WINDOW_WIDTH      = 800;
static const int WINDOW_HEIGHT     = 600;
static const int WINDOW_LIMIT      = 32000; // Farther than any screen.
static const int WINDOW_LEAST_WIDE = 136;   // So that a window of the size 0, as of an option without it, can be seen
static const int WINDOW_LEAST_HIGH = 39;    // and taken hold of. It is what Windows does with a frame.

static Main_Window_Place Window_Place (const Command_Line *line) {
    Main_Window_Place place = {WINDOW_DEFAULT_POSITION, WINDOW_DEFAULT_POSITION, WINDOW_WIDTH, WINDOW_HEIGHT};
    if (line->has_x) {
        place.x     = std::clamp (line->x, -WINDOW_LIMIT, WINDOW_LIMIT);
        place.width = std::clamp (line->width, WINDOW_LEAST_WIDE, WINDOW_LIMIT);
    }
    if (line->has_y) {
        place.y      = std::clamp (line->y, -WINDOW_LIMIT, WINDOW_LIMIT);
        place.height = std::clamp (line->height, WINDOW_LEAST_HIGH, WINDOW_LIMIT);
    }
    return place;
}

// None after a message that also says what can be done without a window.
static Window Window_Open (const Command_Line *line) {
    Main_Window_Place place  = Window_Place (line);
    Window            window = Main_Window_Create (&place, &Program.settings);
    char              text[1024];
    if (window) {
        Window_Show (window);
        return window;
    }
    snprintf (text, sizeof text,
              "Unable to open the window.\n%s\n\nFiles can be compared without it, in pairs: %s file_a file_b",
              Window_Error_Text (), PROGRAM_COMMAND);
    Window_Message_Box (nullptr, text, PROGRAM_NAME, WINDOW_ICON_ERROR);
    return nullptr;
}

// --- entry -----------------------------------------------------------------

static const int WINDOW_FAILED = 0; // Exit code.

static void Console_Start (int trace_level) {
    Log.trace_level = Trace_Level (trace_level);
    if (Log.trace_level) System_Console_Open ();
}

static void Log_Start (void) {
    Log_Sink_Set (Log_Program_Sink);
    if (Log.trace_level) Log_Banner ();
}

// Everything is there: files are compared, or waited for.
static int Work (const Command_Line *line, Window window) {
    Icon_Install_Path_Set (Program.Inst_Path ? Program.Inst_Path : "");
    Configure ();
    Tables_Provide (Program.Inst_Path);
    return window ? Main_Window_Run (window) : Batch_Run (line);
}

// The window goes before what its comparisons hold.
static void Release (void) {
    Main_Window_Exit ();
    Comparison_Free (nullptr);
    Configuration_Free ();
    DICOM_Module_Private_Free (nullptr);
    Icon_Free_All ();
    Paths_Free ();
}

static int Run (const Command_Line *line, int in_window) {
    Window window = nullptr;
    Console_Start (line->trace_level);
    if (!line->count || in_window) {
        window = Window_Open (line);
        if (!window) return WINDOW_FAILED;
        Main_Window_Files_Set (line->input_file, line->count);
    }
    Log_Start ();
    int result = Paths_Set () ? Work (line, window) : MEMORY_FAILED;
    Release ();
    return result;
}

int Program_Run (const Program_Arguments *arguments) {
    Command_Line line;
    int          result = COMMAND_LINE_BAD;

    Identity_Set ();
    switch (Command_Line_Read (arguments, &line)) {
    case 1: result = Run (&line, arguments->in_window); break;
    case 0: result = MEMORY_FAILED; break;
    default: break;
    }
    Command_Line_Free (&line);
    return result;
}
