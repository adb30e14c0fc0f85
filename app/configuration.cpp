// The file is the user's and may be anything: it is read byte by byte into one line of fixed size, and never further than
// its size when it was opened (a trace that is written meanwhile may go to the same file under another name).
#include "app/configuration.h"

#include <limits.h>
#include <stdio.h>
#include <string.h>

#include "app/start_up.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "util/error_text.h"
#include "util/file.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "configuration";

static const size_t LINE_SIZE      = CONFIGURATION_LINE_LENGTH + 2 + 1; // With the two blanks around a separator.
static const size_t FILE_NAME_SIZE = SYSTEM_PATH_SIZE + 64;
static const int    NO_BYTE        = -1;

struct Configuration_Reading {
    File *file;   // Owned.
    int   number; // Of the current line, from 1.
    int   held;   // A byte that was read too early, or NO_BYTE.
    int   failed; // 1 after a read error.
};

// --- lines -----------------------------------------------------------------

static int Next_Byte (Configuration_Reading *reading) {
    File   *file = reading->file;
    uint8_t byte;
    if (reading->held != NO_BYTE) {
        byte          = static_cast<uint8_t> (reading->held);
        reading->held = NO_BYTE;
        return byte;
    }
    if (file->position >= file->size) return NO_BYTE;
    if (File_Take (file, &byte, 1)) return byte;
    int64_t got = File_Read (file, &byte, 1);
    if (got < 0) reading->failed = 1;
    return got == 1 ? byte : NO_BYTE;
}

// The next character; the end of a line is a line feed, also where a carriage return stands before it.
static int Next_Character (Configuration_Reading *reading) {
    int byte = Next_Byte (reading);
    if (byte != '\r') return byte;
    int behind = Next_Byte (reading);
    if (behind == '\n') return behind;
    reading->held = behind;
    return byte;
}

// 1, or 0 at the end. What a line has too much is the next line; as a text it ends at its first zero byte.
static int Read_Line (Configuration_Reading *reading, char *line) {
    int length = 0, character = 0;
    while (length < CONFIGURATION_LINE_LENGTH && character != '\n') {
        character = Next_Character (reading);
        if (character == NO_BYTE) break;
        line[length++] = static_cast<char> (character);
    }
    line[length] = 0;
    if (reading->failed || !length) return 0;
    if (reading->number < INT_MAX) reading->number++;
    return 1;
}

// Leaves what is neither comment nor blank around it.
static void Strip (char *line) {
    line[strcspn (line, "#;")] = 0;
    Text_Trim (line);
    size_t length = strlen (line);
    if (length && line[length - 1] == '\n') line[length - 1] = 0;
}

static void Insert_Blank (char *place) {
    memmove (place + 1, place, strlen (place) + 1);
    *place = ' ';
}

// Makes the first ":" or "=" an "=" with a blank on each side. Only that one: "scratch = D:\logs" has a colon in its value.
// The first character is none, since a command stands before it.
static void Normalise_Separator (char *line) {
    if (!line[0]) return;
    char *sign = line + 1 + strcspn (line + 1, ":=");
    if (!*sign) return;
    *sign = '=';
    if (sign[-1] == '\t') sign[-1] = ' ';
    if (sign[-1] != ' ') Insert_Blank (sign++);
    if (sign[1] == '\t') sign[1] = ' ';
    if (sign[1] != ' ') Insert_Blank (sign + 1);
}

// The next word at place, which moves behind it, or none.
static char *Word_Next (char **place) {
    static const char BLANKS[] = " \t\n\v\f\r";
    char             *word     = *place + strspn (*place, BLANKS);
    char             *end      = word + strcspn (word, BLANKS);
    *place                     = *end ? end + 1 : end;
    *end                       = 0;
    return *word ? word : nullptr;
}

// --- commands --------------------------------------------------------------

// Each command gets its value, which it may change, or none.
enum Outcome { COMMAND_DONE, COMMAND_BAD_LINE, COMMAND_FAILED };

// A file can raise the level, never lower it. What the reader notes is of interest with a trace only.
static Outcome Set_Trace (char *value) {
    int level = value ? Text_To_Integer (value) : 0;
    if (level > INT8_MAX) level = INT8_MAX;
    if (level > Log.trace_level) Log.trace_level = static_cast<int8_t> (level);
    if (Log.trace_level > 0) {
        Program.settings.kind_warning = LOG_WARNING;
        Program.settings.kind_note    = LOG_REPORT;
    }
    return COMMAND_DONE;
}

// A value is shorter than its line, for a command stands before it: with a separator at its end it fits too.
static_assert (LOG_PATH_SIZE > CONFIGURATION_LINE_LENGTH, "no name of a line is cut");

static void Directory_Text (char (&text)[LOG_PATH_SIZE], const char *value) {
    size_t used = 0;
    Text_Append (text, sizeof text, &used, "%s", value);
    if (!System_Is_Separator (text[used - 1])) Text_Append (text, sizeof text, &used, "%c", System_Separator ());
}

static Outcome Set_Scratch (char *value) {
    if (!value) return COMMAND_BAD_LINE;
    Directory_Text (Log.scratch, value);
    return COMMAND_DONE;
}

static Outcome Set_Audit (char *value) {
    if (!value) return COMMAND_BAD_LINE;
    Text_Copy (Log.audit_name, sizeof Log.audit_name, value);
    return COMMAND_DONE;
}

static Outcome Set_Tables (char *value) {
    char directory[LOG_PATH_SIZE];
    if (!value) return COMMAND_DONE;
    Directory_Text (directory, value);
    return DICOM_Module_Dir_Set (directory) ? COMMAND_DONE : COMMAND_FAILED;
}

// Without a value it takes back what an earlier file has set.
static Outcome Set_Override (char *value) {
    return DICOM_Module_Override_Set (value) ? COMMAND_DONE : COMMAND_BAD_LINE;
}

// Makes room for one entry more. The room grows in powers of two, so that a long list costs linear time.
static int Skip_Grow (Memory_Site site, char ***array, int32_t count) {
    size_t capacity = 1;
    if (count & (count - 1)) return 1;
    if (count) capacity = 2 * static_cast<size_t> (count);
    void *larger = Memory_Realloc (nullptr, site, *array, capacity * sizeof (char *));
    if (!larger) return 0;
    *array = static_cast<char **> (larger);
    return 1;
}

// An owned copy, or none of none. 0 after the strdup message.
static int Skip_Copy (Memory_Site site, char **copy, const char *text) {
    *copy = text ? Memory_Strdup (nullptr, site, text) : nullptr;
    return *copy || !text;
}

static int Skip_Append (const char *group, const char *element) {
    Settings *settings = &Program.settings;
    int32_t   count    = settings->Nb_Skip;
    char     *copies[2];
    if (!Skip_Grow (HERE ("Skip_Group", count + 1, 8), &settings->Skip_Group, count)) return 0;
    if (!Skip_Grow (HERE ("Skip_Element", count + 1, 8), &settings->Skip_Element, count)) return 0;
    if (!Skip_Copy (HERE ("Skip_Group[Nb_Skip]", 0, 0), &copies[0], group)) return 0;
    if (!Skip_Copy (HERE ("Skip_Element[Nb_Skip]", 0, 0), &copies[1], element)) {
        Memory_Free (copies[0]);
        return 0;
    }
    settings->Skip_Group[count]   = copies[0];
    settings->Skip_Element[count] = copies[1];
    settings->Nb_Skip++;
    return 1;
}

// An entry whose second half is missing matches nothing, and yet it is one: the report shows what the user forgot.
static Outcome Add_Skip (char *value) {
    char  nothing[] = "";
    char *place     = value ? value : nothing;
    for (char *c = place; *c; c++)
        if (strchr ("(),", *c)) *c = ' ';
    const char *group   = Word_Next (&place);
    const char *element = Word_Next (&place);
    Log_Message (nullptr, LOG_REPORT,
                 "    Adding: (" COLOUR_BLUE "%s" COLOUR_BLACK "," COLOUR_BLUE "%s" COLOUR_BLACK
                 ") to skipped tags list",
                 group ? group : "", element ? element : "");
    return Skip_Append (group, element) ? COMMAND_DONE : COMMAND_FAILED;
}

struct Command {
    const char *name;
    Outcome (*apply) (char *value);
};

static const Command COMMANDS[] = {
    {"trace", Set_Trace}, {"scratch", Set_Scratch}, {"audit", Set_Audit},
    {"skip", Add_Skip},   {"tables", Set_Tables},   {"override", Set_Override},
};

static Outcome Apply (const char *command, char *value) {
    for (const Command &known : COMMANDS)
        if (!strcmp (known.name, command)) return known.apply (value);
    return COMMAND_BAD_LINE;
}

// --- the file --------------------------------------------------------------

// 1, or 0 when memory ran out.
static int Apply_Line (const Configuration_Reading *reading, const char *file_name, const char *line) {
    char words[LINE_SIZE];
    memcpy (words, line, strlen (line) + 1);
    char       *place   = words;
    const char *command = Word_Next (&place);
    if (!command) {
        Log_Message (nullptr, LOG_WARNING, "line[%d]: Unable to get a command from \"%s\"", reading->number, line);
        return 1;
    }
    Log_Message (nullptr, LOG_TRACE1, "==> line[%d]  command: \"%s\"", reading->number, command);

    Word_Next (&place); // The "=".
    Outcome outcome = Apply (command, Word_Next (&place));
    if (outcome == COMMAND_BAD_LINE) {
        Log_Message (nullptr, LOG_WARNING, EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " bad line in %s", file_name);
        Log_Message (nullptr, LOG_WARNING, "\t\t" COLOUR_BLUE "[%d] " COLOUR_BLACK "%s", reading->number, line);
    }
    return outcome != COMMAND_FAILED;
}

// 1 at the end of the file, or 0.
static int Read_Lines (Configuration_Reading *reading, const char *file_name) {
    char line[LINE_SIZE];
    while (Read_Line (reading, line)) {
        Log_Message (nullptr, LOG_TRACE5, "--> line[%d]   \"%s\"", reading->number, line);
        Strip (line);
        if (!line[0]) continue;
        Log_Message (nullptr, LOG_TRACE1, "--> line[%d]   \"%s\"", reading->number, line);
        Normalise_Separator (line);
        Log_Message (nullptr, LOG_TRACE1, "==> line[%d]   \"%s\"", reading->number, line);
        if (!Apply_Line (reading, file_name, line)) return 0;
    }
    if (!reading->failed) return 1;
    unsigned error = System_Last_Error ();
    Log_Message (nullptr, LOG_TRACE1, "File:%s Line:%d", MODULE, __LINE__);
    Log_Message (nullptr, LOG_WARNING, "Error reading file %s", file_name);
    Log_Message (nullptr, LOG_WARNING, "%s", Error_Text (error));
    return 0;
}

// The full name. 0 when there is no path or it is too long.
static int File_Name (char *file_name, size_t size, const char *path, const char *name) {
    int length = path ? snprintf (file_name, size, "%s%s", path, name) : -1;
    return length >= 0 && static_cast<size_t> (length) < size;
}

int Configuration_Exists (const char *path, const char *name) {
    char file_name[FILE_NAME_SIZE];
    return File_Name (file_name, sizeof file_name, path, name) && System_File_Exists (file_name);
}

int Configuration_Read (const char *path, const char *name) {
    char file_name[FILE_NAME_SIZE];
    Log_Message (nullptr, LOG_TRACE1, "in Configuration_Read(path=%s,name=%s)", path ? path : "", name);
    Configuration_Free ();
    if (!File_Name (file_name, sizeof file_name, path, name)) return 0;

    Configuration_Reading reading = {File_Open (file_name), 0, NO_BYTE, 0};
    if (!reading.file) return 0;
    Log_Message (nullptr, LOG_REPORT, "Reading: " COLOUR_BLUE "%s", file_name);
    int done = Read_Lines (&reading, file_name);
    File_Close (reading.file);
    if (done) Log_Message (nullptr, LOG_REPORT, "Done");
    return done;
}

void Configuration_Free (void) {
    Settings *settings = &Program.settings;
    for (int32_t i = 0; i < settings->Nb_Skip; i++) {
        Memory_Free (settings->Skip_Group[i]);
        Memory_Free (settings->Skip_Element[i]);
    }
    Memory_Free (settings->Skip_Group);
    Memory_Free (settings->Skip_Element);
    settings->Nb_Skip      = 0;
    settings->Skip_Group   = nullptr;
    settings->Skip_Element = nullptr;
}
