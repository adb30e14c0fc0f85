// The one reporting call of the program. Every module writes errors, warnings, reports and traces through Log_Message;
// the sink that is installed decides by the kind and the trace level which of box, console, window list, trace file,
// audit file and error-log file a line reaches.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "platform/system.h"
#include "platform/window.h"

// --- kinds -----------------------------------------------------------------

// A kind that is not listed (0 among them) writes nothing, so a setting of 0 silences a group of messages.
enum Log_Kind {
    LOG_ERROR = 1,      // Box.
    LOG_WARNING,        // Window list.
    LOG_QUESTION,       // Yes/No box; the call returns 1 for Yes.
    LOG_REPORT,         // Window list.
    LOG_AUDIT,          // Audit file.
    LOG_THREAD,         // From any thread, queued for the window.
    LOG_ERRLOG,         // Permanent error-log file.
    LOG_OVER,           // Replaces the last line of the window list.
    LOG_TRACE1 = 11,    // A trace of depth n is written when the trace level is n or more.
    LOG_TRACE2,
    LOG_TRACE3,
    LOG_TRACE4,
    LOG_TRACE5,
    LOG_TRACE6,
    LOG_TRACE7,
    LOG_TRACE8,
    LOG_TRACE9,
    LOG_BOX_INFO = 129, // Plain boxes: here the third argument is the caption and the format is the next one.
    LOG_BOX_WARNING,
    LOG_BOX_ERROR
};

// --- display codes ---------------------------------------------------------

// Single bytes inside texts for the window list; console and files get the text without them.
#define COLOUR_BLUE     "\x01"
#define COLOUR_BLACK    "\x02"
#define COLOUR_RED      "\x04"
#define COLOUR_YELLOW   "\x05"
#define COLOUR_GREEN    "\x06"
#define EMPHASIS        "\xF1"      // A colour follows.
#define EMPHASIS_END    "\xF0"

// --- settings --------------------------------------------------------------

static const int LOG_TEXT_SIZE    = 10240;  // A formatted text with its zero; what is longer is cut.
static const int LOG_PATH_SIZE    = 256;    // Scratch directory and file names.
static const int LOG_RING_SLOTS   = 128;
static const int LOG_RING_SIZE    = 1024;

struct Log_Settings {
    int8_t       trace_level;                   // 0 none, 1..5 depth with console, negative: file only.
    uint8_t      audit_mode;                    // 0 none, 1 every line with its time, 2 audit texts only.
    uint8_t      mute;                          // Not 0: Log_Message writes nothing and returns 0.
    char         scratch[LOG_PATH_SIZE];        // Ends with a separator. Empty: the system's default.
    char         trace_name[LOG_PATH_SIZE];
    char         audit_name[LOG_PATH_SIZE];
    char         error_name[LOG_PATH_SIZE];
    int32_t      rolling_limit;                 // Bytes of a numbered log file; 0: files are not numbered.
    const char  *program_name;                  // The four texts are borrowed for the life of the process.
    const char  *program_version;
    const char  *program_identifier;
    const char  *program_date;
};

extern Log_Settings Log;

void Log_Settings_Reset (void);     // The library's defaults, and a new run: first error-log line, scratch box, thread ring.

// --- writing ---------------------------------------------------------------

// Formats like printf and hands the text to the sink. 0 when muted, the answer of a question, else 1. What is passed for a
// trace must do nothing but tell its value: a trace that is not written doesn't ask for it.
int Log_Message (Window window, int kind, const char *format, ...);

// 0 for a message that nobody reads: of kind 0, or a trace deeper than the trace level.
inline int Log_Is_Read (int kind) {
    if (kind < LOG_TRACE1 || kind > LOG_TRACE9) return kind != 0;
    return __builtin_expect (Log.trace_level > kind - LOG_TRACE1, 0) != 0;
}

inline int Log_Unread (void) { return !Log.mute; }      // What Log_Message returns then.

// Most messages are traces and mostly nobody reads them, so the caller finds that out before it passes anything.
#define Log_Message(window, kind, ...) (Log_Is_Read (kind) ? Log_Message (window, kind, __VA_ARGS__) : Log_Unread ())

typedef int (*Log_Sink) (Window window, int kind, const char *text);

void Log_Sink_Set (Log_Sink sink);      // None: the library's default sink.
int  Log_Program_Sink (Window window, int kind, const char *text);  // The program's sink, for Log_Sink_Set.

// Who shows lines in the window's text list. text is raw, valid during the call; over replaces the last line.
typedef void (*Log_List) (Window window, const char *text, int over);
void Log_List_Set (Log_List list);

// The text of thread slot i (0..127), "" when empty. Valid until 128 further thread messages.
const char *Log_Thread_Text (int slot);

// --- files and banner ------------------------------------------------------

FILE       *Log_File_Open (const char *name);   // For appending; in the scratch directory unless name has a directory.
void        Log_Files_End (void);               // Keeps no log file open: after the last line for a while.
void        Log_Banner (void);                  // Starts a new trace file and writes who, when and where into it.

// The same with facts that a test makes up.
struct Log_Facts {
    int  (*computer_name) (char *result, size_t size);
    int  (*version)       (System_Version *version);
    void (*processor)     (System_Processor *processor);
};
void        Log_Banner_From (const Log_Facts *facts);
const char *Log_System_Name (int platform, int major, int minor);   // "Windows XP"; none outside of Windows.

// Who this library is; static text.
const char *Library_Banner (const char *check); // None when check is another version.

// --- memory of texts -------------------------------------------------------

// Copies text without display codes: only 0x20..0x7E, tab and line feed stay. clean holds size bytes.
void Log_Clean_Text (const char *text, char *clean, size_t size);

// --- section banners -------------------------------------------------------

// Opens a section of the trace: three empty lines, 79 dashes, title, 79 dashes.
void Log_Section (Window window, int kind, const char *title);
