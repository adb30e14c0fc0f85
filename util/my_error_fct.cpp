// Where every message of the program goes. A line is put together in memory and reaches its file with one write, behind all
// buffers of this process, so that the files are complete at any moment and two processes that share them never tear each
// other's lines. The name decides for each line anew which file that is: one that was removed is made again.
#include "util/my_error_fct.h"

#include <stdarg.h>
#include <string.h>

#include <atomic>

#include "platform/system.h"
#include "util/text.h"
#include "util/utility_directory.h"

static const char *const MODULE   = "my_error_fct";
static const char *const LIBRARY  = "Kestrelbay_Util";
static const char *const VERSION  = "21.7";
static const char *const REVISION = "1";

static const int LINE_SIZE    = LOG_TEXT_SIZE + 128; // A text with its prefix, indent and end.
static const int TIME_SIZE    = 64;
static const int LAST_ROLLING = 999;

// --- settings and state ----------------------------------------------------

// clang-format off
static const Log_Settings LIBRARY_DEFAULTS = {
    0, 2, 0,                                        // Trace level, audit mode, mute.
    "", "trace.dat", "audit.dat", "Kestrelbay.err", // Scratch directory and file names.
    0,                                              // Rolling limit.
    "No Name", "Demo", "", ""};                     // Program name, version, identifier, date.
// clang-format on

Log_Settings Log = LIBRARY_DEFAULTS;

static Log_Sink              sink;
static Log_List              list;
static std::atomic<int>      error_log_begun;
static std::atomic<int>      scratch_reported;
static std::atomic<int>      run;     // Counts the calls of Log_Settings_Reset.
static thread_local int      opening; // A report from below Log_File_Open must not open a file again.
static char                  ring[LOG_RING_SLOTS][LOG_RING_SIZE];
static std::atomic<uint16_t> ring_next; // Runs on past the last slot; the slot is the rest of its division.

void Log_Settings_Reset (void) {
    Log              = LIBRARY_DEFAULTS;
    error_log_begun  = 0;
    scratch_reported = 0;
    ring_next        = 0;
    run++;
    memset (ring, 0, sizeof ring);
}

void Log_List_Set (Log_List shown) { list = shown; }

const char *Log_Thread_Text (int slot) { return slot >= 0 && slot < LOG_RING_SLOTS ? ring[slot] : ""; }

// --- texts -----------------------------------------------------------------

static int Stays (char c) { return (c >= 0x20 && c <= 0x7E) || c == '\t' || c == '\n'; }

// 1 when each of the eight bytes is one of 0x20..0x7E: none has its highest bit, nor gets it when one is added or 0x20 is
// taken away. Bytes that borrow from a neighbour, or carry into it, have been found by then.
static int All_Printable (uint64_t bytes) {
    static const uint64_t EACH = 0x0101010101010101;
    return !((bytes | (bytes - 0x20 * EACH) | (bytes + EACH)) & 0x80 * EACH);
}

// Mostly nothing has to go, which is found out for eight bytes at once.
void Log_Clean_Text (const char *text, char *clean, size_t size) {
    if (!size) return;
    const char *end  = text + strlen (text);
    char       *last = clean + size - 1;
    uint64_t    bytes;
    while (text < end && clean < last) {
        if (end - text >= 8 && last - clean >= 8) {
            memcpy (&bytes, text, sizeof bytes);
            if (All_Printable (bytes)) {
                memcpy (clean, &bytes, sizeof bytes);
                text += sizeof bytes;
                clean += sizeof bytes;
                continue;
            }
        }
        if (Stays (*text)) *clean++ = *text;
        text++;
    }
    *clean = 0;
}

// Copies text with its zero to the end of a line. Returns the new end.
static char *Add (char *end, const char *text) {
    size_t length = strlen (text);
    memcpy (end, text, length + 1);
    return end + length;
}

// A line as a file or the console gets it. Returns its length; line has room for the longest text.
static size_t Line_Make (char *line, const char *prefix, int indent, const char *text, const char *end) {
    char *used = Add (line, prefix);
    memset (used, ' ', static_cast<size_t> (indent));
    used = Add (Add (used + indent, text), end);
    return static_cast<size_t> (used - line);
}

// --- files -----------------------------------------------------------------

// The directory of a log file, with a separator at its end. 0 when it is too long.
static int Directory_Of (const Text_Path *pieces, char *directory, size_t size) {
    size_t used = 0;
    if (pieces->directory_length >= size) return 0;
    if (pieces->directory_length) {
        memcpy (directory, pieces->directory, pieces->directory_length);
        directory[pieces->directory_length] = 0;
        return 1;
    }
    if (!Log.scratch[0]) return System_Scratch_Path (directory, size);
    directory[0] = 0;
    Text_Append (directory, size, &used, "%s", Log.scratch);
    if (!System_Is_Separator (directory[used - 1])) Text_Append (directory, size, &used, "%c", System_Separator ());
    return 1;
}

// The default scratch directory may stand where everybody writes, so it must be the user's own. Directory_Make would tell of
// a path that is too long, and so with every line.
static int Directory_Ready (const char *directory) {
    if (strlen (directory) > System_Directory_Limit ()) return 0;
    char standard[SYSTEM_PATH_SIZE];
    if (System_Scratch_Path (standard, sizeof standard) && !strcmp (directory, standard))
        return System_Private_Directory_Make (directory);
    return Directory_Make (nullptr, directory);
}

static void Report_Scratch (const char *directory) {
    char text[SYSTEM_PATH_SIZE + 128];
    if (scratch_reported.exchange (1)) return;
    snprintf (text, sizeof text, "Unable to create directory: \"%s\"\nMake sure you have the necessary permisions",
              directory);
    Window_Message_Box (nullptr, text, "Error writing to Scratch dir", WINDOW_ICON_ERROR);
}

// 1 when a numbered file can take more.
static int Has_Room (const char *path) {
    int64_t size;
    if (!System_File_Exists (path)) return 1;
    return System_File_Size_Of (path, &size) && size < Log.rolling_limit;
}

// The full name of the file, numbered when files roll. 0 when it is too long.
static int File_Path (const Text_Path *pieces, const char *directory, char *path, size_t size) {
    int base      = (int)pieces->base_length;
    int extension = (int)pieces->extension_length;
    int number    = 0;
    int length;
    if (base + extension >= LOG_PATH_SIZE) return 0;
    do {
        if (Log.rolling_limit)
            length = snprintf (path, size, "%s%.*s_%03d%.*s", directory, base, pieces->base, number, extension,
                               pieces->extension);
        else length = snprintf (path, size, "%s%.*s%.*s", directory, base, pieces->base, extension, pieces->extension);
        if (length < 0 || (size_t)length >= size) return 0;
    } while (Log.rolling_limit && !Has_Room (path) && number++ < LAST_ROLLING);
    return 1;
}

// 1 when the directory is there, as it should be.
static int Directory_Provide (const char *directory) {
    if (opening) return 0;
    opening   = 1;
    int ready = Directory_Ready (directory);
    opening   = 0;
    if (!ready) Report_Scratch (directory);
    return ready;
}

FILE *Log_File_Open (const char *name) {
    char      directory[SYSTEM_PATH_SIZE];
    char      path[SYSTEM_PATH_SIZE];
    Text_Path pieces;
    Text_Split_Path (name, &pieces);
    if (!Directory_Of (&pieces, directory, sizeof directory) || !Directory_Provide (directory)) return nullptr;
    return File_Path (&pieces, directory, path, sizeof path) ? fopen (path, "a") : nullptr;
}

// Replaces each line feed by the system's line end. Returns the length of the result, which has room for twice the text.
static size_t End_Lines (const char *text, char *result) {
    const char *end    = System_Line_End ();
    size_t      size   = strlen (end);
    size_t      length = 0;
    for (; *text; text++) {
        if (*text != '\n') {
            result[length++] = *text;
            continue;
        }
        memcpy (result + length, end, size);
        length += size;
    }
    return length;
}

enum Log_File { FILE_TRACE, FILE_AUDIT, FILE_ERROR, LOG_FILES };

static const char *Log_File_Name (Log_File file) {
    return file == FILE_TRACE ? Log.trace_name : file == FILE_AUDIT ? Log.audit_name : Log.error_name;
}

// Where the last line of a file went. As long as its name and the scratch directory are what they were, so is its path.
struct Line_Path {
    int  run; // 0 for none.
    char name[LOG_PATH_SIZE];
    char scratch[LOG_PATH_SIZE];
    char path[SYSTEM_PATH_SIZE];
};

static thread_local Line_Path line_paths[LOG_FILES];

static int Line_Path_Find (Line_Path *known, const char *name) {
    char      directory[SYSTEM_PATH_SIZE];
    Text_Path pieces;
    known->run = 0;
    Text_Split_Path (name, &pieces);
    if (!Directory_Of (&pieces, directory, sizeof directory)) return 0;
    if (!File_Path (&pieces, directory, known->path, sizeof known->path)) return 0;
    if (!Text_Copy (known->name, sizeof known->name, name)) return 0;
    if (!Text_Copy (known->scratch, sizeof known->scratch, Log.scratch)) return 0;
    known->run = run + 1;
    return 1;
}

// The path of a file without a number, or none.
static const char *Line_Path_Of (Log_File file) {
    Line_Path  *known = &line_paths[file];
    const char *name  = Log_File_Name (file);
    if (known->run == run + 1 && !strcmp (known->name, name) && !strcmp (known->scratch, Log.scratch))
        return known->path;
    return Line_Path_Find (known, name) ? known->path : nullptr;
}

// With the directory looked at, or made.
static int Write_Anew (const char *name, const char *bytes, size_t count) {
    char      directory[SYSTEM_PATH_SIZE];
    char      path[SYSTEM_PATH_SIZE];
    Text_Path pieces;
    Text_Split_Path (name, &pieces);
    if (!Directory_Of (&pieces, directory, sizeof directory) || !Directory_Provide (directory)) return 0;
    return File_Path (&pieces, directory, path, sizeof path) && System_Append (path, bytes, count);
}

// A file with a number is looked for anew for each line; any other one is mostly that of the line before, whose directory
// was looked at then.
static int Write_Bytes (Log_File file, const char *bytes, size_t count) {
    const char *path = Log.rolling_limit || opening ? nullptr : Line_Path_Of (file);
    if (path && System_Append_Again (path, bytes, count)) return 1;
    return Write_Anew (Log_File_Name (file), bytes, count);
}

// 1 when the line was handed to the file.
static int Write_Line (Log_File file, const char *line, size_t length) {
    char bytes[2 * (LINE_SIZE + LOG_PATH_SIZE)];
    if (!strcmp (System_Line_End (), "\n")) return Write_Bytes (file, line, length);
    return Write_Bytes (file, bytes, End_Lines (line, bytes));
}

void Log_Files_End (void) { System_Append_End (); }

// --- destinations ----------------------------------------------------------

static void Write_Console (const char *prefix, int indent, const char *text, const char *end) {
    char   line[LINE_SIZE];
    size_t length = Line_Make (line, prefix, indent, text, end);
    fwrite (line, 1, length, stdout);
    fflush (stdout);
}

static void Write_Trace (const char *prefix, int indent, const char *text) {
    char line[LINE_SIZE];
    Write_Line (FILE_TRACE, line, Line_Make (line, prefix, indent, text, "\n"));
}

static void Write_Audit (const char *text) {
    char line[LINE_SIZE];
    Write_Line (FILE_AUDIT, line, Line_Make (line, "", 0, text, "\n"));
}

static void Write_Audit_Timed (const char *text) {
    char   line[LINE_SIZE];
    char   now[TIME_SIZE];
    size_t used = 0;
    System_Now ("%d-%b-%Y %H:%M:%S", now, sizeof now);
    Text_Append (line, sizeof line, &used, "%s %s\n", now, text);
    Write_Line (FILE_AUDIT, line, used);
}

// The first line of a run brings the header with it, in the same write.
static void Write_Error_Log (const char *text) {
    char   line[LINE_SIZE + LOG_PATH_SIZE];
    char   now[TIME_SIZE];
    size_t used  = 0;
    int    first = !error_log_begun.load ();
    System_Now ("%d %b %Y %H:%M", now, sizeof now);
    if (first)
        Text_Append (line, LOG_PATH_SIZE, &used, "\n======== %s %s =====(%s)========\n", Log.program_name,
                     Log.program_version, now);
    Text_Append (line, sizeof line, &used, "%s\n", text);
    if (Write_Line (FILE_ERROR, line, used)) error_log_begun = 1;
}

// The raw text: the window's list interprets the display codes.
static void Queue (Window window, const char *text) {
    Text_Copy (ring[ring_next++ % LOG_RING_SLOTS], LOG_RING_SIZE, text);
    Window_Post_Thread_Message (window);
}

// --- routes ----------------------------------------------------------------

enum Audit_Form { AUDIT_NONE, AUDIT_TIMED, AUDIT_TRIMMED, AUDIT_ALWAYS };

// How a kind's line looks on the console and in the trace file, and from which negative level on the trace file gets it
// (positive levels always do). The blanks differ from place to place; tools that read the files know them so.
struct Route {
    const char *console; // None: not there.
    const char *console_end;
    const char *trace;
    int         lowest;
    Audit_Form  audit;
};

// clang-format off
static const Route ROUTES[] = {
    {},
    {"ERROR: ",   "\n",  "ERROR:   ",  -3, AUDIT_TRIMMED},
    {"WARNING: ", "\n",  "WARNING: ",  -2, AUDIT_TRIMMED},
    {},
    {"REPORT:  ", "\n",  "REPORT: ",   -1, AUDIT_TIMED},
    {"AUDIT:   ", " \n", nullptr,       0, AUDIT_ALWAYS},
    {"THREAD:  ", "\n",  "THREAD:  ",  -1, AUDIT_TIMED},
    {"ERRLOG: ",  "\n",  nullptr,       0, AUDIT_NONE},
    {"OVER:   ",  "\n",  "OVER: ",     -1, AUDIT_NONE},
};
static const Route TRACE_ROUTE = {"TRACE:   ", " \n", "TRACE:   ", INT8_MIN, AUDIT_NONE};

// Before the program's sink is there.
static const Route DEFAULT_ROUTES[] = {
    {},
    {nullptr,         nullptr, "ERROR:   ",     INT8_MIN, AUDIT_NONE},
    {"WARNING: ",     " \n",   "WARNING: ",     INT8_MIN, AUDIT_NONE},
    {},
    {"REPORT:  ",     "\n",    "REPORT: ",            -1, AUDIT_TIMED},
    {"AUDIT:   ",     " \n",   "AUDIT:   ",     INT8_MIN, AUDIT_ALWAYS},
    {"THREAD:  ",     "\n",    "THREAD:  ",           -1, AUDIT_TIMED},
    {"ERROR LOG:   ", " \n",   "ERROR LOG:   ", INT8_MIN, AUDIT_NONE},
    {"OVER:   ",      "\n",    "OVER: ",              -1, AUDIT_NONE},
};
// clang-format on

static int Is_Trace (int kind) { return kind >= LOG_TRACE1 && kind <= LOG_TRACE9; }

static int Is_Line (int kind) { return kind >= LOG_ERROR && kind <= LOG_OVER; }

static int Trace_File_Wants (const Route *route) {
    int level = Log.trace_level;
    return route->trace && (level > 0 || (level < 0 && level >= route->lowest));
}

static const unsigned LIST_KINDS = 1u << LOG_WARNING | 1u << LOG_REPORT | 1u << LOG_OVER; // A bit for each.

// 1 when a line of this kind, which is no trace, reaches anybody through the program's sink. Boxes, questions and the queue
// for the window always do.
static int Program_Reads (int kind) {
    static const unsigned ALWAYS = 1u << LOG_ERROR | 1u << LOG_QUESTION | 1u << LOG_THREAD | 1u << LOG_ERRLOG;
    if (Log.trace_level || (list && (LIST_KINDS >> kind & 1)) || (ALWAYS >> kind & 1)) return 1;
    return Log.audit_mode == 1 || (Log.audit_mode == 2 && ROUTES[kind].audit == AUDIT_ALWAYS);
}

static void Audit (const Route *route, char *clean) {
    if (Log.audit_mode == 2 && route->audit == AUDIT_ALWAYS) Write_Audit (clean);
    if (Log.audit_mode != 1 || route->audit == AUDIT_NONE) return;
    Write_Audit_Timed (route->audit == AUDIT_TRIMMED ? Text_Trim (clean) : clean);
}

static void Write_Log (const Route *route, int indent, const char *clean) {
    if (route->console && Log.trace_level > 0) Write_Console (route->console, indent, clean, route->console_end);
    if (Trace_File_Wants (route)) Write_Trace (route->trace, indent, clean);
}

// A trace's depth shows as an indent between prefix and text.
static void Write_Indented (int kind, const char *clean) { Write_Log (&TRACE_ROUTE, 4 * (kind - LOG_TRACE1), clean); }

static void Write_Route (const Route *route, char *clean) {
    Write_Log (route, 0, clean);
    Audit (route, clean);
}

static void Show (Window window, int kind, const char *text) {
    if (kind == LOG_THREAD) Queue (window, text);
    if (list && (LIST_KINDS >> kind & 1)) list (window, text, kind == LOG_OVER);
}

int Log_Program_Sink (Window window, int kind, const char *text) {
    char clean[LOG_TEXT_SIZE];
    if (!Is_Line (kind) && !Is_Trace (kind)) return 1;
    Log_Clean_Text (text, clean, sizeof clean);
    if (kind == LOG_QUESTION) return Window_Question_Box (window, clean, Log.program_name);
    if (kind == LOG_ERROR) Window_Message_Box (window, clean, "", WINDOW_ICON_ERROR);
    Show (window, kind, text);
    if (Is_Trace (kind)) Write_Indented (kind, clean);
    else Write_Route (&ROUTES[kind], clean);
    if (kind == LOG_ERRLOG) Write_Error_Log (clean);
    return 1;
}

// With any audit mode but 0 the audit file gets the bare text, as the program's mode 2 would write it.
static void Audit_By_Default (const Route *route, char *clean) {
    if (route->audit != AUDIT_ALWAYS) Audit (route, clean);
    else if (Log.audit_mode) Write_Audit (clean);
}

static int Default_Sink (Window window, int kind, const char *text) {
    char clean[LOG_TEXT_SIZE];
    Log_Clean_Text (text, clean, sizeof clean);
    if (kind == LOG_QUESTION) return Window_Question_Box (window, clean, LIBRARY);
    if (Is_Trace (kind)) {
        Write_Indented (kind, clean);
        return 1;
    }
    const Route *route = &DEFAULT_ROUTES[kind];
    if (kind == LOG_ERROR) Window_Message_Box (window, clean, "", WINDOW_ICON_ERROR);
    Write_Log (route, 0, clean);
    Audit_By_Default (route, clean);
    return 1;
}

// --- the call --------------------------------------------------------------

static void Format (char *text, const char *format, va_list arguments) {
    if (vsnprintf (text, LOG_TEXT_SIZE, format, arguments) < 0) text[0] = 0;
}

// For plain boxes the caption stands where other kinds have their format.
static void Show_Box (Window window, int kind, const char *caption, va_list arguments) {
    static const Window_Icon ICONS[] = {WINDOW_ICON_INFORMATION, WINDOW_ICON_WARNING, WINDOW_ICON_ERROR};

    char        text[LOG_TEXT_SIZE];
    const char *format = va_arg (arguments, const char *);
    Format (text, format, arguments);
    Window_Message_Box (window, text, caption, ICONS[kind - LOG_BOX_INFO]);
}

static int Send (Window window, int kind, const char *format, va_list arguments) {
    char text[LOG_TEXT_SIZE];
    Format (text, format, arguments);
    return sink ? sink (window, kind, text) : Default_Sink (window, kind, text);
}

// By the macro of this name callers have looked already whether anybody reads it; the function looks for all others.
int (Log_Message) (Window window, int kind, const char *format, ...) {
    if (Log.mute) return 0;
    if (!Log_Is_Read (kind)) return 1;
    int is_box = kind >= LOG_BOX_INFO && kind <= LOG_BOX_ERROR;
    if (!is_box && !Is_Line (kind) && !Is_Trace (kind)) return 1;
    if (sink == Log_Program_Sink && Is_Line (kind) && !Program_Reads (kind)) return 1;

    va_list arguments;
    int     result = 1;
    va_start (arguments, format);
    if (is_box) Show_Box (window, kind, format, arguments);
    else result = Send (window, kind, format, arguments);
    va_end (arguments);
    return result;
}

void Log_Sink_Set (Log_Sink chosen) { sink = chosen; }

void Log_Section (Window window, int kind, const char *title) {
    static const char DASHES[] = "-------------------------------------------------------------------------------";
    static_assert (sizeof DASHES == 79 + 1, "a section line has 79 dashes");

    Log_Message (window, kind, "\n\n\n");
    Log_Message (window, kind, "%s", DASHES);
    Log_Message (window, kind, "%s", title);
    Log_Message (window, kind, "%s", DASHES);
}

// --- banner ----------------------------------------------------------------

// Nothing is made here, and nothing is deleted in a default directory that is not the user's own.
static void Trace_File_Delete (void) {
    char      directory[SYSTEM_PATH_SIZE];
    char      path[SYSTEM_PATH_SIZE];
    Text_Path pieces;
    Text_Split_Path (Log.trace_name, &pieces);
    if (!Directory_Of (&pieces, directory, sizeof directory)) return;
    if (!System_Is_Directory (directory) || !Directory_Ready (directory)) return;
    if (File_Path (&pieces, directory, path, sizeof path)) System_File_Delete (path);
}

const char *Log_System_Name (int platform, int major, int minor) {
    if (platform == 0) return "Win32s";
    if (platform == 1) return major > 4 || (major == 4 && minor > 0) ? "Windows 98" : "Windows 95";
    if (platform != 2) return nullptr;
    if (major == 5 && minor == 0) return "Windows 2000";
    return major == 5 && minor == 1 ? "Windows XP" : "Windows NT";
}

static void Banner_Program (void) {
    char now[TIME_SIZE];
    System_Now ("%d %b %Y %H:%M", now, sizeof now);
    Log_Message (nullptr, LOG_TRACE1, "==== ==== %s %s ==== (%s) ==== ====", Log.program_name, Log.program_version,
                 now);
    Log_Message (nullptr, LOG_TRACE1, "");
    Log_Message (nullptr, LOG_TRACE1, "Prog_ID:      %s", Log.program_identifier);
    Log_Message (nullptr, LOG_TRACE1, "Prog_Date:    %s", Log.program_date);
    Log_Message (nullptr, LOG_TRACE1, "Compile:      %s", __DATE__);
    Log_Message (nullptr, LOG_TRACE1, "");
}

static void Banner_Name (const Log_Facts *facts) {
    char name[LOG_PATH_SIZE];
    if (facts->computer_name (name, sizeof name)) {
        Log_Message (nullptr, LOG_TRACE1, "Computer Name:  %s", name);
        return;
    }
    Log_Message (nullptr, LOG_TRACE1, "File:%s Line:%d", MODULE, __LINE__);
    Log_Message (nullptr, LOG_TRACE1, "in GetComputerName()");
}

static void Banner_System (const System_Version *version) {
    const char *name = Log_System_Name (version->platform, version->major, version->minor);
    if (name) Log_Message (nullptr, LOG_TRACE1, "System:         %s", name);
    Log_Message (nullptr, LOG_TRACE1, "                version %d.%d (Build %d)", version->major, version->minor,
                 version->build);
    if (version->has_service_pack)
        Log_Message (nullptr, LOG_TRACE1, "                Service Pack %d.%d", version->pack_major,
                     version->pack_minor);
}

void Log_Banner_From (const Log_Facts *facts) {
    System_Version   version;
    System_Processor processor;
    Trace_File_Delete ();
    Banner_Program ();
    Log_Message (nullptr, LOG_TRACE1, "---- Computer Info: ----");
    Banner_Name (facts);
    if (!facts->version (&version)) return;
    Banner_System (&version);
    facts->processor (&processor);
    Log_Message (nullptr, LOG_TRACE1, "Processor:      %u x %u (OEM ID: %u)", processor.count, processor.type,
                 processor.oem);
    Log_Message (nullptr, LOG_TRACE1, "");
    Log_Message (nullptr, LOG_TRACE1, "-----------------------");
}

void Log_Banner (void) {
    static const Log_Facts SYSTEM = {System_Computer_Name, System_Version_Get, System_Processor_Get};
    Log_Banner_From (&SYSTEM);
}

// Five characters: those of the version and the zero behind them, so that 21.70 is another one. What ends before is never
// read beyond its end.
const char *Library_Banner (const char *check) {
    static char text[LOG_PATH_SIZE];
    if (check && strncmp (check, VERSION, 5)) return nullptr;
    snprintf (text, sizeof text, "%s (Static) %s (rev-%s)", LIBRARY, VERSION, REVISION);
    return text;
}
