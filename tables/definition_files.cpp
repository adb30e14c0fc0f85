// Reader of the definition tables. Include files may include others, thousands deep: the tables that wait for an included
// one stand in a chain on the heap instead of the call stack, and close their files meanwhile, so that neither the stack
// nor the number of open files bounds the depth.
//
// An include file is entered into the cache by name before it is read and by list when it is done. One that includes
// itself, directly or through others, therefore finds its own entry empty, which ends the recursion.
#include "tables/definition_files.h"

#include <stdio.h>
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/value.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files_private.h"
#include "tables/list_cache.h"
#include "util/error_text.h"
#include "util/memory.h"
#include "util/mutex_access.h"
#include "util/text.h"
#include "util/tokenizer.h"

static const char *const MODULE = "definition_files";

static unsigned Warnings;

unsigned Definition_Warnings (void) { return Warnings; }

void Definition_Warn (Window window, const char *what, const char *label, int line_number) {
    Warnings++;
    Log_Message (window, LOG_WARNING, DEFINITION_WARNING "%s" DEFINITION_BLUE ("%s") " line:" DEFINITION_BLUE ("%d"),
                 what, label, line_number);
}

// --- directory -------------------------------------------------------------

static char *Module_Dir;

const char *DICOM_Module_Dir_Set (const char *path) {
    Mutex_Access_Start ();
    char *copy   = path && *path ? Memory_Strdup (nullptr, HERE ("DICOM_Module_Dir", 0, 0), path) : nullptr;
    int   failed = path && *path && !copy;
    if (path && !failed) {
        Memory_Free (Module_Dir);
        Module_Dir = copy;
        Definition_Private_Look_Anew ();
    }
    const char *current = failed ? nullptr : Module_Dir;
    Mutex_Access_Stop ();
    return current;
}

const char *Definition_Directory (void) { return Module_Dir; }

File *Definition_Open (const char *name) {
    char path[SYSTEM_PATH_SIZE];
    if (!Module_Dir) return nullptr;
    int length = snprintf (path, sizeof path, "%s%s", Module_Dir, name);
    return length < 0 || static_cast<size_t> (length) >= sizeof path ? nullptr : File_Open (path);
}

int Definition_Name (char *result, const char *format, const char *name) {
    int length = snprintf (result, DEFINITION_NAME_SIZE, format, name);
    return length >= 0 && static_cast<size_t> (length) < DEFINITION_NAME_SIZE;
}

// --- one line --------------------------------------------------------------

// 1, 0 at the end of the file, -1 when it can't be read.
static int Read_Byte (File *file, uint8_t *byte) {
    if (File_Take (file, byte, 1)) return 1;
    return static_cast<int> (File_Read (file, byte, 1));
}

static int Is_Printable (uint8_t byte) { return byte >= 0x20 && byte <= 0x7E; }

static void Warn_Line (Window window, const char *label, int line_number, const char *detail) {
    Definition_Warn (window, " reading file:", label, line_number);
    Log_Message (window, LOG_WARNING, DEFINITION_DETAIL " %s", detail);
}

// What is read between two line ends, or before the end of the file.
struct Raw_Line {
    char *buffer;
    int   stored;   // Bytes in buffer.
    int   position; // Bytes read, carriage returns counted.
    char *comment;  // Behind the first ";", or none.
};

static void Store (Window window, Raw_Line *line, uint8_t byte, const char *label, int line_number) {
    if (byte == '\t') byte = ' ';
    if (byte == 0x92) byte = '\''; // The apostrophe of Windows-1252, which text processors write.
    if (byte == ';' && !line->comment) {
        byte          = 0;
        line->comment = line->buffer + line->stored + 1;
    } else if (byte && !Is_Printable (byte)) {
        Definition_Warn (window, " reading file:", label, line_number);
        Log_Message (window, LOG_WARNING,
                     DEFINITION_DETAIL " Bad charact. " DEFINITION_BLUE ("0x%x") " (pos:" DEFINITION_BLUE ("%d") ")",
                     byte, line->position);
    }
    line->buffer[line->stored++] = static_cast<char> (byte);
}

static int Line_Read (Window window, File *file, int line_number, const char *label, Raw_Line *line) {
    for (;; line->position += line->position < INT32_MAX) {
        uint8_t byte;
        int     got = Read_Byte (file, &byte);
        if (got < 0) Warn_Line (window, label, line_number, Error_Text (0));
        if (got == 0 && line->position) Warn_Line (window, label, line_number, "Last line has no line feed, ignored");
        if (got <= 0 || byte == '\f') return 0;
        if (byte == '\n') return 1;
        if (byte == '\r') continue;
        Store (window, line, byte, label, line_number);
        if (line->stored == DEFINITION_LINE_SIZE) {
            Warn_Line (window, label, line_number, "Line too long (>2048)");
            return 0;
        }
    }
}

int DICOM_Module_Read_Line (Window window, File *file, int line_number, char *buffer, const char *label,
                            char **comment) {
    Raw_Line line = {buffer, 0, 0, nullptr};
    int      read = Line_Read (window, file, line_number, label, &line);
    int      end  = line.stored < DEFINITION_LINE_SIZE ? line.stored : DEFINITION_LINE_SIZE - 1;
    buffer[end]   = 0;
    if (comment) *comment = line.comment && line.comment <= buffer + end ? line.comment : nullptr;
    return read;
}

static int Is_Blank (char c) { return c == ' ' || c == '\t'; }

static char *Skip_Blanks (char *text) {
    while (Is_Blank (*text)) text++;
    return text;
}

char *Definition_Trim (char *text) {
    text       = Skip_Blanks (text);
    size_t end = strlen (text);
    while (end && Is_Blank (text[end - 1])) end--;
    text[end] = 0;
    return text;
}

// --- reading tables --------------------------------------------------------

static const int32_t NOT_INCLUDED = -1;

// A table being read.
struct Table {
    Table      *parent;   // Whose include directive asked for this one; none for the outermost.
    int32_t     entry;    // Of the include cache, or NOT_INCLUDED.
    File       *file;     // Owned when included. None when it can't be read any further.
    int64_t     position; // Where the file was closed while an included table is read.
    const char *label;    // In messages; of an included table its file's name.
    int         line_number;
    int         level;      // Depth of the last line,
    int         open_items; // and what is open around it.
    int         open_sequences;
    Attribute **list; // Where its records go: own when included.
    Attribute  *own;
};

struct Table_Reading {
    Window          window;
    const Settings *settings;
    SequenceCursor  cursor;  // At the top: the lists are flat.
    Table          *top;     // The table that is read now.
    int            *records; // Read for this list, one more than the limit when it is full.
    char            line[DEFINITION_LINE_SIZE];
};

static void Reading_Begin (Table_Reading *reading, Window window, const Settings *settings, int *records) {
    memset (reading, 0, sizeof *reading);
    reading->window          = window;
    reading->settings        = settings;
    reading->cursor.settings = settings;
    reading->records         = records;
}

static int Is_Full (const Table_Reading *reading) { return *reading->records > DEFINITION_RECORDS; }

static void Warn_Attribute_File (const Table_Reading *reading, const Table *table) {
    Definition_Warn (reading->window, " reading Attribute file:", table->label, table->line_number);
}

// The result is 0 only when memory ran out, here and below.
static int Append (Table_Reading *reading, Table *table, const Attribute *record) {
    return DICOM_Attribute_Insert (reading->window, &reading->cursor, table->list, record, 0) != nullptr;
}

static int Append_Counted (Table_Reading *reading, Table *table, const Attribute *record) {
    if (Is_Full (reading)) return 1;
    ++*reading->records;
    if (!Is_Full (reading)) return Append (reading, table, record);
    Warn_Attribute_File (reading, table);
    Log_Message (reading->window, LOG_WARNING,
                 DEFINITION_DETAIL " Too many attributes in DICOM tables! (max=" DEFINITION_BLUE ("%d") ")",
                 DEFINITION_RECORDS);
    return 1;
}

// --- nesting ---------------------------------------------------------------

// The items and delimiters that the ">" of the lines stand for.
static int Append_Delimiter (Table_Reading *reading, Table *table, uint16_t element) {
    static Attribute delimiters[3]; // Item, its end, the sequence's end: made once and kept.

    int at = element == ELEMENT_ITEM ? 0 : element == ELEMENT_ITEM_END ? 1 : 2;
    if (!delimiters[at].group) {
        delimiters[at].flags      = ORIGIN_MODULE;
        delimiters[at].group      = GROUP_DELIMITER;
        delimiters[at].element    = element;
        delimiters[at].vr         = VR_ITEM;
        delimiters[at].length     = LENGTH_UNDEFINED;
        delimiters[at].definition = Dictionary_Lookup (reading->window, GROUP_DELIMITER, element);
    }
    return Append (reading, table, &delimiters[at]);
}

// Closes what is open below depth, one item and one sequence a turn. A line that itself ends a sequence closes none; at
// its sequence's own depth a turn then changes nothing, which ends the loop.
static int Close_Below (Table_Reading *reading, Table *table, int depth, int ends_sequence) {
    for (;;) {
        int changed = table->level > depth;
        if (changed) table->level--;
        else if (table->open_items <= depth && table->open_sequences <= depth) return 1;

        if (table->open_items > table->level) {
            if (!Append_Delimiter (reading, table, ELEMENT_ITEM_END)) return 0;
            table->open_items--;
            changed = 1;
        }
        if (table->open_sequences > table->level && !ends_sequence) {
            if (!Append_Delimiter (reading, table, ELEMENT_SEQUENCE_END)) return 0;
            table->open_sequences--;
            changed = 1;
        }
        if (!changed) return 1;
    }
}

// Opens and closes before a line of this depth. A deeper line opens one level, however much deeper it is; tag is none for
// an include directive.
static int Nest (Table_Reading *reading, Table *table, int depth, const Attribute *tag) {
    int      delimiter = tag && tag->group == GROUP_DELIMITER;
    uint16_t element   = tag ? tag->element : 0;
    if (depth > table->level) {
        table->level++;
        if (!delimiter || element != ELEMENT_ITEM) {
            if (!Append_Delimiter (reading, table, ELEMENT_ITEM)) return 0;
            table->open_items++;
        }
    }
    return Close_Below (reading, table, depth, delimiter && element == ELEMENT_SEQUENCE_END);
}

// Counts what a line itself opens or closes.
static void Count_Open (Table *table, const Attribute *tag) {
    if (tag->vr == VR_SQ) table->open_sequences++;
    if (tag->group != GROUP_DELIMITER) return;
    if (tag->element == ELEMENT_ITEM) table->open_items++;
    if (tag->element == ELEMENT_ITEM_END && table->open_items) table->open_items--;
    if (tag->element == ELEMENT_SEQUENCE_END && table->open_sequences) table->open_sequences--;
}

// --- include files ---------------------------------------------------------

static List_Cache_Name Include_Name[DEFINITION_INCLUDES];
static Attribute      *Include_List[DEFINITION_INCLUDES];
static List_Cache      Include = {Include_Name, Include_List, 0, DEFINITION_INCLUDES, 0};

// A table that waits for another one keeps no file open, unless it is its caller's.
static void Table_Pause (Table *table) {
    if (!table || table->entry == NOT_INCLUDED) return;
    table->position = File_Tell (table->file);
    File_Close (table->file);
    table->file = nullptr;
}

static void Table_Resume (Table_Reading *reading, Table *table) {
    if (table->entry == NOT_INCLUDED) return;
    table->file = Definition_Open (table->label);
    if (table->file && File_Seek (table->file, table->position)) return;
    Warn_Line (reading->window, table->label, table->line_number, Error_Text (0));
    File_Close (table->file);
    table->file = nullptr;
}

// Makes the table the one that is read next. Takes over file.
static int Table_Push (Table_Reading *reading, File *file, const char *label, int32_t entry) {
    size_t size  = strlen (label) + 1;
    void  *block = Memory_Calloc (reading->window, HERE ("table", 1, sizeof (Table) + size), sizeof (Table) + size);
    if (!block) {
        File_Close (file);
        return 0;
    }
    Table *table  = static_cast<Table *> (block);
    char  *name   = static_cast<char *> (block) + sizeof (Table);
    table->parent = reading->top;
    table->entry  = entry;
    table->file   = file;
    table->label  = static_cast<const char *> (memcpy (name, label, size));
    table->list   = &table->own;
    Table_Pause (table->parent);
    reading->top = table;
    return 1;
}

static void Table_Release (Table *table) {
    File_Close (table->file);
    Memory_Free (table);
}

static void Warn_Includes (Window window) {
    Warnings++;
    Log_Message (window, LOG_WARNING,
                 DEFINITION_WARNING " To many include in DICOM tables! (max=" DEFINITION_BLUE ("%d") ")",
                 DEFINITION_INCLUDES);
}

// Enters an open include file into the cache and begins to read it.
static int Include_Enter (Table_Reading *reading, File *file, const char *name, const char *file_name) {
    char *copy = nullptr;
    if (Include.count < DEFINITION_INCLUDES) {
        copy = Memory_Strdup (reading->window, HERE ("Include_Name[Include_Nb]", 0, 0), name);
        if (!copy) {
            File_Close (file);
            return 0;
        }
        int32_t entry = List_Cache_Add (&Include, copy);
        if (Include.count < DEFINITION_INCLUDES) return Table_Push (reading, file, file_name, entry);
    }
    Warn_Includes (reading->window);
    File_Close (file);
    return 1;
}

// The macro when the cache has it, else none and, when there is such a file, its table as the one that is read next.
static int Include_Begin (Table_Reading *reading, const char *name, const char *label, int line_number,
                          Attribute **macro) {
    char key[DEFINITION_LINE_SIZE], file_name[DEFINITION_NAME_SIZE];
    *macro = nullptr;
    Log_Message (reading->window, LOG_TRACE3, "DICOM_Module_Include_Get(%s)", name);
    int fits = Text_Copy (key, sizeof key, name);
    for (char *c = key; *c; c++)
        if (*c == ' ') *c = '_';

    int32_t entry = List_Cache_Find (&Include, key);
    if (fits && entry >= 0) {
        Log_Message (reading->window, LOG_TRACE3, "-> macro already in memory");
        *macro = Include.lists[entry];
        return 1;
    }
    Definition_Name (file_name, "DICOM_Include_%s.txt", key);
    File *file = fits ? Definition_Open (file_name) : nullptr;
    if (file) return Include_Enter (reading, file, key, file_name);
    Definition_Warn (reading->window, " reading Attribute file:", label, line_number);
    Log_Message (reading->window, LOG_WARNING,
                 DEFINITION_DETAIL " Unable to open included file:\"" DEFINITION_BLUE ("%s") "\"", file_name);
    return 1;
}

// The number that stands for a list in a trace.
static unsigned List_Number (const void *list) { return static_cast<unsigned> (reinterpret_cast<uintptr_t> (list)); }

static int Insert_Macro (Table_Reading *reading, Table *table, const Attribute *macro) {
    if (!macro) return 1;
    Log_Message (reading->window, LOG_TRACE3, "-> insert new macro(%08x) in list %08x", List_Number (macro),
                 List_Number (*table->list));
    for (const Attribute *record = macro; record && !Is_Full (reading); record = record->next)
        if (!Append_Counted (reading, table, record)) return 0;
    return 1;
}

// "include Name", 'Include "Name"': text is what follows the word. A macro that has yet to be read is inserted at its end.
static int Include_Directive (Table_Reading *reading, Table *table, int depth, char *text) {
    if (!Nest (reading, table, depth, nullptr)) return 0;
    for (char *c = text; *c; c++)
        if (*c == '\x91' || *c == '\x92') *c = '"';
    Attribute  *macro;
    const char *name = Text_Unquote (Definition_Trim (text));
    if (!Include_Begin (reading, name, table->label, table->line_number, &macro)) return 0;
    return Insert_Macro (reading, table, macro);
}

// --- lines of attributes ---------------------------------------------------

struct Definition_Mark {
    char     character;
    uint16_t flag;
};

static const Definition_Mark marks[] = {{'!', FORCED}, {'=', DEFAULT}, {'-', TABLE_DELETE}, {'+', APPEND}};

static uint16_t Take_Marks (char **text) {
    uint16_t flags = 0;
    for (const Definition_Mark &mark : marks) {
        if (**text != mark.character) continue;
        flags |= mark.flag;
        *text = Skip_Blanks (*text + 1);
    }
    return flags;
}

static int Take_Depth (char **text) {
    int depth = 0;
    for (; **text == '>'; depth++) *text = Skip_Blanks (*text + 1);
    return depth;
}

static int Hex_Digit (char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// One to four digits. What follows them, or none.
static char *Take_Hex (char *text, uint16_t *number) {
    text       = Skip_Blanks (text);
    int digits = 0, value = 0;
    for (; digits < 4 && Hex_Digit (*text) >= 0; digits++) value = value * 16 + Hex_Digit (*text++);
    *number = static_cast<uint16_t> (value);
    return digits ? text : nullptr;
}

// "(gggg,eeee)". What follows the first ")", the line's end when there is none; none for anything else.
static char *Take_Tag (char *text, Attribute *tag) {
    if (*text != '(') return nullptr;
    text = Take_Hex (text + 1, &tag->group);
    if (!text || *text != ',') return nullptr;
    text = Take_Hex (text + 1, &tag->element);
    if (!text) return nullptr;
    char *end = strchr (text, ')');
    return end ? end + 1 : text + strlen (text);
}

// The next token, terminated, or none. A token ends at a blank outside double quotes and square brackets.
static char *Take_Token (char **rest) {
    char *start = *rest + strspn (*rest, " \t\n"), *end = start;
    int   quoted = 0, brackets = 0;
    for (; *end && (quoted || brackets || !strchr (" \t\n", *end)); end++) {
        if (*end == '"') quoted = !quoted;
        if (quoted) continue;
        if (*end == '[') brackets++;
        if (*end == ']' && brackets) brackets--;
    }
    *rest = *end ? end + 1 : end;
    *end  = 0;
    return end > start ? start : nullptr;
}

// What a line says beside its record's fields; parts of the line.
struct Line_Texts {
    char *value;
    char *description;
};

// What follows key at the start of the token, or none.
static char *After (char *token, const char *key) {
    size_t length = strlen (key);
    return strncmp (token, key, length) ? nullptr : token + length;
}

static int Set_Type (Attribute *tag, const char *text) {
    size_t length = strlen (text);
    if (length != 1 && length != 2) return 0;
    tag->type = Code (text[0], length == 2 ? text[1] : ' ');
    return 1;
}

static int Set_VR (Attribute *tag, const char *text) {
    size_t length = strlen (text);
    if (length < 2 || (length > 2 && text[2] != '\\')) return 0;
    tag->vr = Code (text[0], text[1]);
    return 1;
}

// What is wrong with the token: a piece of the message, or none.
static const char *Apply_Token (char *token, Attribute *tag, Line_Texts *texts) {
    char *text;
    if (*token == '"') texts->value = Text_Unquote (token);
    else if ((text = After (token, "type="))) return Set_Type (tag, text) ? nullptr : "\"type=xx\"";
    else if ((text = After (token, "desc="))) texts->description = Text_Unquote (text);
    else if ((text = After (token, "VR="))) return Set_VR (tag, text) ? nullptr : "\"VR=xx\"";
    else if (!After (token, "VN=")) return "";
    return nullptr;
}

// The first token that is wrong ends the line.
static void Apply_Tokens (const Table_Reading *reading, const Table *table, char *rest, Attribute *tag,
                          Line_Texts *texts) {
    while (char *token = Take_Token (&rest)) {
        const char *fault = Apply_Token (token, tag, texts);
        if (!fault) continue;
        Warn_Attribute_File (reading, table);
        Log_Message (reading->window, LOG_WARNING, DEFINITION_DETAIL " Syntax error%s (=" DEFINITION_BLUE ("%s") ")",
                     fault, token);
        return;
    }
}

// The dictionary's VR where the line gives none. Items and delimiters have no VR.
static void Complete_VR (Window window, Attribute *tag) {
    tag->definition = Dictionary_Lookup (window, tag->group, tag->element);
    if (!tag->vr && tag->definition) tag->vr = tag->definition->vr[0];
    if (tag->group == GROUP_DELIMITER) tag->vr = 0;
}

static int Set_Texts (const Table_Reading *reading, const Table *table, Attribute *tag, const Line_Texts *texts) {
    Value_Result result = texts->value ? Definition_Value_Set (reading->window, tag, texts->value) : VALUE_SET;
    if (result == VALUE_NO_MEMORY) return 0;
    if (result == VALUE_REFUSED) {
        Warn_Attribute_File (reading, table);
        Log_Message (reading->window, LOG_WARNING,
                     DEFINITION_DETAIL " Problem with value (=" DEFINITION_BLUE ("%s") ")", texts->value);
    }
    if (!texts->description) return 1;
    tag->description = Memory_Strdup (reading->window, HERE ("tag.description", 0, 0), texts->description);
    return tag->description != nullptr;
}

static int Append_Line (Table_Reading *reading, Table *table, int depth, Attribute *tag) {
    if (!Nest (reading, table, depth, tag)) return 0;
    int is_item = tag->group == GROUP_DELIMITER && tag->element == ELEMENT_ITEM;
    if (tag->vr == VR_SQ || is_item) tag->length = LENGTH_UNDEFINED;
    if (!Append_Counted (reading, table, tag)) return 0;
    if (!Is_Full (reading)) Count_Open (table, tag);
    return 1;
}

// mode is little endian: so numbers are stored.
static int Attribute_Line (Table_Reading *reading, Table *table, int depth, uint16_t flags, int64_t start, char *text) {
    Attribute tag = {};
    tag.mode      = MODE_EXPLICIT;
    tag.flags     = static_cast<uint16_t> (ORIGIN_MODULE | flags);
    tag.type      = Code ('3', ' ');
    tag.pos_tag   = static_cast<uint32_t> (start);

    char *rest = Take_Tag (text, &tag);
    if (!rest) {
        Warn_Attribute_File (reading, table);
        Log_Message (reading->window, LOG_WARNING,
                     DEFINITION_DETAIL
                     " Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"" DEFINITION_BLUE ("%s") "\"",
                     text);
        return 1;
    }
    Line_Texts texts = {};
    Apply_Tokens (reading, table, rest, &tag, &texts);
    Complete_VR (reading->window, &tag);
    int done = Set_Texts (reading, table, &tag, &texts) && Append_Line (reading, table, depth, &tag);
    Value_Release (&tag);
    Memory_Free (tag.description);
    return done;
}

// --- tables ----------------------------------------------------------------

// The second to seventh character decide, so that "Include" is as good.
static int Is_Include (const char *text) { return *text && !strncmp (text + 1, "nclude", 6); }

static int Handle_Line (Table_Reading *reading, Table *table, int64_t start) {
    static const size_t DIRECTIVE_SIZE = 7;

    Log_Message (reading->window, LOG_TRACE5, "%s[%d] -> %s", table->label, table->line_number, reading->line);
    char *text = Definition_Trim (reading->line);
    if (!*text) return 1;
    uint16_t flags = Take_Marks (&text);
    int      depth = Take_Depth (&text);
    if (Is_Include (text)) return Include_Directive (reading, table, depth, text + DIRECTIVE_SIZE);
    return Attribute_Line (reading, table, depth, flags, start, text);
}

// Closes what is open and goes back to the table that asked for this one, if any.
static int Table_End (Table_Reading *reading, Table *table) {
    if (!Close_Below (reading, table, 0, 0)) return 0;
    Table *parent = table->parent;
    reading->top  = parent;
    if (table->entry == NOT_INCLUDED) return 1;

    Attribute *macro            = table->own;
    Include.lists[table->entry] = macro;
    Table_Release (table);
    if (!parent) return 1;
    Table_Resume (reading, parent);
    return Insert_Macro (reading, parent, macro);
}

static int Next_Line (Table_Reading *reading, Table *table) {
    if (table->line_number < INT32_MAX) table->line_number++;
    return table->file && !Is_Full (reading) &&
           DICOM_Module_Read_Line (reading->window, table->file, table->line_number, reading->line, table->label,
                                   nullptr);
}

// Reads the top table and all that it includes. 0 when memory ran out; then nothing is left on the chain either.
static int Read_Tables (Table_Reading *reading) {
    int done = 1;
    while (done && reading->top) {
        Table  *table = reading->top;
        int64_t start = table->file ? File_Tell (table->file) : 0;
        done          = Next_Line (reading, table) ? Handle_Line (reading, table, start) : Table_End (reading, table);
    }
    while (reading->top) {
        Table *table = reading->top;
        reading->top = table->parent;
        if (table->entry == NOT_INCLUDED) continue;
        DICOM_Attribute_Delete (reading->window, &reading->cursor, &table->own, TAG_ANY, TAG_ANY);
        Table_Release (table);
    }
    return done;
}

int Definition_Read (Window window, const Settings *settings, File *file, const char *label, Attribute **list,
                     int *records) {
    Table_Reading reading;
    Reading_Begin (&reading, window, settings, records);
    Table table = {};
    table.entry = NOT_INCLUDED;
    table.file  = file;
    table.label = label;
    table.list  = list;
    reading.top = &table;
    return Read_Tables (&reading);
}

int DICOM_Module_Read_File (Window window, const Settings *settings, File *file, const char *label, Attribute **list) {
    int records = 0;
    return Definition_Read (window, settings, file, label, list, &records);
}

Attribute *DICOM_Module_Include_Get (Window window, const Settings *settings, const char *name, const char *label,
                                     int line) {
    Mutex_Access_Start ();
    Table_Reading reading;
    Attribute    *macro;
    int           records = 0;
    int32_t       entry   = Include.count; // Of the file, should it be read now.
    Reading_Begin (&reading, window, settings, &records);
    if (!Include_Begin (&reading, name, label, line, &macro)) macro = nullptr;
    else if (reading.top) macro = Read_Tables (&reading) ? Include.lists[entry] : nullptr;
    Mutex_Access_Stop ();
    return macro;
}

void Definition_Includes_Empty (Window window) { List_Cache_Empty (window, &Include); }

void DICOM_Module_Include_Free (Window window) {
    Mutex_Access_Start ();
    Definition_Includes_Empty (window);
    Mutex_Access_Stop ();
}
