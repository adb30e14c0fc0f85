// Reader of the definition tables. Include files may include others, thousands deep: the tables that wait for an included
// one stand in a chain on the heap instead of the call stack, and close their files meanwhile, so that neither the stack
// nor the number of open files bounds the depth.
//
// An include file is entered into the cache by name before it is read and by list when it is done. One that includes
// itself, directly or through others, therefore finds its own entry empty, which ends the recursion.
#include "tables/definition_files.h"

#include <float.h>
#include <stdio.h>
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/NEMA_Tag_Copy.h"
#include "attribute/format.h"
#include "attribute/listing.h"
#include "attribute/sort.h"
#include "attribute/value.h"
#include "syntax/cleanup.h"
#include "tables/data_dictionary.h"
#include "util/error_text.h"
#include "util/mutex_access.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "util/tokenizer.h"

static const char *const MODULE = "definition_files";

static const size_t TABLE_NAME_SIZE = DEFINITION_LINE_SIZE + 32; // "DICOM_Attributes_" and what a line can name.

// --- messages --------------------------------------------------------------

#define WARNING_WORD EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK

// A detail line stands below its header; a parameter is blue.
#define DETAIL "\t\t" COLOUR_BLACK
#define BLUE(format) COLOUR_BLUE format COLOUR_BLACK

static void Warn_Header (Window window, const char *what, const char *label, int line_number) {
    Log_Message (window, LOG_WARNING, WARNING_WORD "%s" BLUE ("%s") " line:" BLUE ("%d"), what, label, line_number);
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
    }
    const char *current = failed ? nullptr : Module_Dir;
    Mutex_Access_Stop ();
    return current;
}

// A table by its file name, or none.
static File *Table_Open (const char *name) {
    char path[SYSTEM_PATH_SIZE];
    if (!Module_Dir) return nullptr;
    int length = snprintf (path, sizeof path, "%s%s", Module_Dir, name);
    return length < 0 || static_cast<size_t> (length) >= sizeof path ? nullptr : File_Open (path);
}

// Fills a format such as "DICOM_Include_%s.txt". 1, or 0 when the name is longer than any file's.
static int Table_Name (char *result, const char *format, const char *name) {
    int length = snprintf (result, TABLE_NAME_SIZE, format, name);
    return length >= 0 && static_cast<size_t> (length) < TABLE_NAME_SIZE;
}

// --- one line --------------------------------------------------------------

// 1, 0 at the end of the file, -1 when it can't be read.
static int Read_Byte (File *file, uint8_t *byte) {
    if (File_Take (file, byte, 1)) return 1;
    return static_cast<int> (File_Read (file, byte, 1));
}

static int Is_Printable (uint8_t byte) { return byte >= 0x20 && byte <= 0x7E; }

static void Warn_Line (Window window, const char *label, int line_number, const char *detail) {
    Warn_Header (window, " reading file:", label, line_number);
    Log_Message (window, LOG_WARNING, DETAIL " %s", detail);
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
        Warn_Header (window, " reading file:", label, line_number);
        Log_Message (window, LOG_WARNING, DETAIL " Bad charact. " BLUE ("0x%x") " (pos:" BLUE ("%d") ")", byte,
                     line->position);
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

// As Text_Trim, but a line stays where it is: it is trimmed again and again.
static char *Trim (char *text) {
    text       = Skip_Blanks (text);
    size_t end = strlen (text);
    while (end && Is_Blank (text[end - 1])) end--;
    text[end] = 0;
    return text;
}

// --- values ----------------------------------------------------------------

enum Value_Result { VALUE_REFUSED, VALUE_SET, VALUE_NO_MEMORY };

struct Value_Form {
    uint16_t vr;
    char     padding; // Of a text.
    uint8_t  size;    // Of a number in bytes; 0: a text.
    uint8_t  real;
};

// clang-format off
static const Value_Form value_forms[] = {
    {VR_AE, ' ', 0, 0}, {VR_AS, ' ', 0, 0}, {VR_CS, ' ', 0, 0}, {VR_DA, ' ', 0, 0}, {VR_DS, ' ', 0, 0},
    {VR_DT, ' ', 0, 0}, {VR_IS, ' ', 0, 0}, {VR_LO, ' ', 0, 0}, {VR_LT, ' ', 0, 0}, {VR_PN, ' ', 0, 0},
    {VR_SH, ' ', 0, 0}, {VR_ST, ' ', 0, 0}, {VR_TM, ' ', 0, 0}, {VR_UT, ' ', 0, 0}, {VR_UI, 0,   0, 0},
    {VR_US, 0,   2, 0}, {VR_AT, 0,   2, 0}, {VR_SS, 0,   2, 0}, {VR_UL, 0,   4, 0}, {VR_SL, 0,   4, 0},
    {VR_FL, 0,   4, 1}, {VR_FD, 0,   8, 1},
};
// clang-format on

static const Value_Form *Value_Form_Of (uint16_t vr) {
    for (const Value_Form &form : value_forms)
        if (form.vr == vr) return &form;
    return nullptr;
}

static Value_Result Value_Take (Window window, Attribute *attribute, const void *bytes, size_t length, size_t padded) {
    int32_t size = static_cast<int32_t> (padded);
    if (!Value_New (window, HERE ("tag->data", size, 1), attribute, size)) return VALUE_NO_MEMORY;
    memcpy (attribute->data, bytes, length);
    attribute->length = size;
    return VALUE_SET;
}

static Value_Result Value_Text (Window window, Attribute *attribute, const char *text, char padding) {
    size_t length = strlen (text), padded = length + length % 2;
    if (padded > INT32_MAX) return VALUE_REFUSED;
    Value_Result result = Value_Take (window, attribute, text, length, padded);
    if (result == VALUE_SET && padded > length) attribute->data[length] = static_cast<uint8_t> (padding);
    return result;
}

static float To_Float (double number) {
    double limit = FLT_MAX;
    return static_cast<float> (number > limit ? limit : number < -limit ? -limit : number);
}

// The bits of a number, to be cut to its form's size.
static uint64_t Number_Bits (const Value_Form *form, const char *text) {
    uint64_t bits = 0;
    if (!form->real) return static_cast<uint64_t> (Text_To_Long (text));
    double number = Text_To_Double (text);
    if (form->size == sizeof number) {
        memcpy (&bits, &number, sizeof number);
    } else {
        float    single = To_Float (number);
        uint32_t half;
        memcpy (&half, &single, sizeof half);
        bits = half;
    }
    return bits;
}

static const char *Skip_While (const char *text, const char *set) { return text + strspn (text, set); }

// The first number ends at the first backslash, the others at blanks: "1\2 3" is three numbers, "1\2\3" is two, since a
// number ends at what can't belong to it. Tables in use rely on it.
static Value_Result Value_Numbers (Window window, Attribute *attribute, const char *text, const Value_Form *form) {
    static const char BETWEEN[] = " \t\n";

    uint8_t numbers[DEFINITION_NUMBERS_SIZE];
    size_t  used = 0;
    while (text) {
        if (used + form->size > sizeof numbers) return VALUE_REFUSED;
        uint64_t bits = Number_Bits (form, text);
        for (int i = 0; i < form->size; i++) numbers[used++] = static_cast<uint8_t> (bits >> 8 * i);

        const char *backslash = used == form->size ? strchr (text, '\\') : nullptr;
        if (used == form->size) text = backslash ? backslash + 1 : "";
        else text += strcspn (text, BETWEEN);
        text = Skip_While (text, BETWEEN);
        if (!*text) text = nullptr;
    }
    return Value_Take (window, attribute, numbers, used, used);
}

static Value_Result Value_From_Text (Window window, Attribute *attribute, const char *text) {
    Value_Release (attribute);
    attribute->length = 0;
    if (!*text) return VALUE_SET;
    const Value_Form *form = Value_Form_Of (attribute->vr);
    if (!form) return VALUE_REFUSED;
    return form->size ? Value_Numbers (window, attribute, text, form)
                      : Value_Text (window, attribute, text, form->padding);
}

int DICOM_Module_Value_Set (Window window, Attribute *attribute, const char *text) {
    return Value_From_Text (window, attribute, text) == VALUE_SET;
}

// --- lists by name ---------------------------------------------------------

static const int CACHE_BUCKETS = 4096;

struct Cache_Name {
    char   *text; // Owned.
    int32_t next; // The next name of the same bucket + 1, 0 at the end.
};

// Lists in the order in which their names came, found by name.
struct Cache {
    Cache_Name *names;
    Attribute **lists; // Owned lists; none where there was no file.
    int32_t     count;
    int32_t     buckets[CACHE_BUCKETS]; // The newest name of each + 1, 0 for none.
};

static int32_t *Cache_Bucket (Cache *cache, const char *name) {
    uint32_t hash = 2166136261u;
    for (; *name; name++) hash = (hash ^ static_cast<uint8_t> (*name)) * 16777619u;
    return &cache->buckets[hash % CACHE_BUCKETS];
}

// The entry's index, or -1.
static int32_t Cache_Find (Cache *cache, const char *name) {
    int32_t at = *Cache_Bucket (cache, name);
    while (at && strcmp (cache->names[at - 1].text, name) != 0) at = cache->names[at - 1].next;
    return at - 1;
}

// Takes over name. There is room. The entry's index.
static int32_t Cache_Add (Cache *cache, char *name) {
    int32_t *bucket              = Cache_Bucket (cache, name);
    cache->names[cache->count]   = {name, *bucket};
    cache->lists[cache->count++] = nullptr;
    return (*bucket = cache->count) - 1;
}

static void List_Free (Window window, Attribute **list) {
    SequenceCursor cursor = {};
    DICOM_Attribute_Delete (window, &cursor, list, TAG_ANY, TAG_ANY);
}

static void Cache_Empty (Window window, Cache *cache) {
    for (int32_t i = 0; i < cache->count; i++) {
        Memory_Free (cache->names[i].text);
        List_Free (window, &cache->lists[i]);
    }
    cache->count = 0;
    memset (cache->buckets, 0, sizeof cache->buckets);
}

static Cache_Name Include_Name[DEFINITION_INCLUDES];
static Attribute *Include_List[DEFINITION_INCLUDES];
static Cache      Include = {Include_Name, Include_List, 0, {}};

static Cache Private; // Its arrays grow.

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

struct Reading {
    Window          window;
    const Settings *settings;
    SequenceCursor  cursor; // At the top: the lists are flat.
    Table          *top;    // The table that is read now.
    int             records;
    int             full; // 1 after the warning about too many records.
    char            line[DEFINITION_LINE_SIZE];
};

static void Reading_Begin (Reading *reading, Window window, const Settings *settings) {
    memset (reading, 0, sizeof *reading);
    reading->window          = window;
    reading->settings        = settings;
    reading->cursor.settings = settings;
}

static void Warn_Attribute_File (const Reading *reading, const Table *table) {
    Warn_Header (reading->window, " reading Attribute file:", table->label, table->line_number);
}

// The result is 0 only when memory ran out, here and below.
static int Append (Reading *reading, Table *table, const Attribute *record) {
    return DICOM_Attribute_Insert (reading->window, &reading->cursor, table->list, record, 0) != nullptr;
}

static int Append_Counted (Reading *reading, Table *table, const Attribute *record) {
    if (reading->full) return 1;
    if (reading->records++ < DEFINITION_RECORDS) return Append (reading, table, record);
    reading->full = 1;
    Warn_Attribute_File (reading, table);
    Log_Message (reading->window, LOG_WARNING, DETAIL " Too many attributes in DICOM tables! (max=" BLUE ("%d") ")",
                 DEFINITION_RECORDS);
    return 1;
}

// --- nesting ---------------------------------------------------------------

// The items and delimiters that the ">" of the lines stand for.
static int Append_Delimiter (Reading *reading, Table *table, uint16_t element) {
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
static int Close_Below (Reading *reading, Table *table, int depth, int ends_sequence) {
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
static int Nest (Reading *reading, Table *table, int depth, const Attribute *tag) {
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

// A table that waits for another one keeps no file open, unless it is its caller's.
static void Table_Pause (Table *table) {
    if (!table || table->entry == NOT_INCLUDED) return;
    table->position = File_Tell (table->file);
    File_Close (table->file);
    table->file = nullptr;
}

static void Table_Resume (Reading *reading, Table *table) {
    if (table->entry == NOT_INCLUDED) return;
    table->file = Table_Open (table->label);
    if (table->file && File_Seek (table->file, table->position)) return;
    Warn_Line (reading->window, table->label, table->line_number, Error_Text (0));
    File_Close (table->file);
    table->file = nullptr;
}

// Makes the table the one that is read next. Takes over file.
static int Table_Push (Reading *reading, File *file, const char *label, int32_t entry) {
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
    Log_Message (window, LOG_WARNING, WARNING_WORD " To many include in DICOM tables! (max=" BLUE ("%d") ")",
                 DEFINITION_INCLUDES);
}

// Enters an open include file into the cache and begins to read it.
static int Include_Enter (Reading *reading, File *file, const char *name, const char *file_name) {
    char *copy = nullptr;
    if (Include.count < DEFINITION_INCLUDES) {
        copy = Memory_Strdup (reading->window, HERE ("Include_Name[Include_Nb]", 0, 0), name);
        if (!copy) {
            File_Close (file);
            return 0;
        }
        int32_t entry = Cache_Add (&Include, copy);
        if (Include.count < DEFINITION_INCLUDES) return Table_Push (reading, file, file_name, entry);
    }
    Warn_Includes (reading->window);
    File_Close (file);
    return 1;
}

// The macro when the cache has it, else none and, when there is such a file, its table as the one that is read next.
static int Include_Begin (Reading *reading, const char *name, const char *label, int line_number, Attribute **macro) {
    char key[DEFINITION_LINE_SIZE], file_name[TABLE_NAME_SIZE];
    *macro = nullptr;
    Log_Message (reading->window, LOG_TRACE3, "DICOM_Module_Include_Get(%s)", name);
    int fits = Text_Copy (key, sizeof key, name);
    for (char *c = key; *c; c++)
        if (*c == ' ') *c = '_';

    int32_t entry = Cache_Find (&Include, key);
    if (fits && entry >= 0) {
        Log_Message (reading->window, LOG_TRACE3, "-> macro already in memory");
        *macro = Include.lists[entry];
        return 1;
    }
    Table_Name (file_name, "DICOM_Include_%s.txt", key);
    File *file = fits ? Table_Open (file_name) : nullptr;
    if (file) return Include_Enter (reading, file, key, file_name);
    Warn_Header (reading->window, " reading Attribute file:", label, line_number);
    Log_Message (reading->window, LOG_WARNING, DETAIL " Unable to open included file:\"" BLUE ("%s") "\"", file_name);
    return 1;
}

// The number that stands for a list in a trace.
static unsigned List_Number (const void *list) { return static_cast<unsigned> (reinterpret_cast<uintptr_t> (list)); }

static int Insert_Macro (Reading *reading, Table *table, const Attribute *macro) {
    if (!macro) return 1;
    Log_Message (reading->window, LOG_TRACE3, "-> insert new macro(%08x) in list %08x", List_Number (macro),
                 List_Number (*table->list));
    for (const Attribute *record = macro; record && !reading->full; record = record->next)
        if (!Append_Counted (reading, table, record)) return 0;
    return 1;
}

// "include Name", 'Include "Name"': text is what follows the word. A macro that has yet to be read is inserted at its end.
static int Include_Directive (Reading *reading, Table *table, int depth, char *text) {
    if (!Nest (reading, table, depth, nullptr)) return 0;
    for (char *c = text; *c; c++)
        if (*c == '\x91' || *c == '\x92') *c = '"';
    Attribute  *macro;
    const char *name = Text_Unquote (Trim (text));
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
static void Apply_Tokens (const Reading *reading, const Table *table, char *rest, Attribute *tag, Line_Texts *texts) {
    while (char *token = Take_Token (&rest)) {
        const char *fault = Apply_Token (token, tag, texts);
        if (!fault) continue;
        Warn_Attribute_File (reading, table);
        Log_Message (reading->window, LOG_WARNING, DETAIL " Syntax error%s (=" BLUE ("%s") ")", fault, token);
        return;
    }
}

// The dictionary's VR where the line gives none. Items and delimiters have no VR.
static void Complete_VR (Window window, Attribute *tag) {
    tag->definition = Dictionary_Lookup (window, tag->group, tag->element);
    if (!tag->vr && tag->definition) tag->vr = tag->definition->vr[0];
    if (tag->group == GROUP_DELIMITER) tag->vr = 0;
}

static int Set_Texts (const Reading *reading, const Table *table, Attribute *tag, const Line_Texts *texts) {
    Value_Result result = texts->value ? Value_From_Text (reading->window, tag, texts->value) : VALUE_SET;
    if (result == VALUE_NO_MEMORY) return 0;
    if (result == VALUE_REFUSED) {
        Warn_Attribute_File (reading, table);
        Log_Message (reading->window, LOG_WARNING, DETAIL " Problem with value (=" BLUE ("%s") ")", texts->value);
    }
    if (!texts->description) return 1;
    tag->description = Memory_Strdup (reading->window, HERE ("tag.description", 0, 0), texts->description);
    return tag->description != nullptr;
}

static int Append_Line (Reading *reading, Table *table, int depth, Attribute *tag) {
    if (!Nest (reading, table, depth, tag)) return 0;
    int is_item = tag->group == GROUP_DELIMITER && tag->element == ELEMENT_ITEM;
    if (tag->vr == VR_SQ || is_item) tag->length = LENGTH_UNDEFINED;
    if (!Append_Counted (reading, table, tag)) return 0;
    Count_Open (table, tag);
    return 1;
}

// mode is little endian: so numbers are stored.
static int Attribute_Line (Reading *reading, Table *table, int depth, uint16_t flags, int64_t start, char *text) {
    Attribute tag = {};
    tag.mode      = MODE_EXPLICIT;
    tag.flags     = static_cast<uint16_t> (ORIGIN_MODULE | flags);
    tag.type      = Code ('3', ' ');
    tag.pos_tag   = static_cast<uint32_t> (start);

    char *rest = Take_Tag (text, &tag);
    if (!rest) {
        Warn_Attribute_File (reading, table);
        Log_Message (reading->window, LOG_WARNING,
                     DETAIL " Syntax error: expecting \"(xxxx,yyyy) ...\" instead of \"" BLUE ("%s") "\"", text);
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

static int Handle_Line (Reading *reading, Table *table, int64_t start) {
    static const size_t DIRECTIVE_SIZE = 7;

    Log_Message (reading->window, LOG_TRACE5, "%s[%d] -> %s", table->label, table->line_number, reading->line);
    char *text = Trim (reading->line);
    if (!*text) return 1;
    uint16_t flags = Take_Marks (&text);
    int      depth = Take_Depth (&text);
    if (Is_Include (text)) return Include_Directive (reading, table, depth, text + DIRECTIVE_SIZE);
    return Attribute_Line (reading, table, depth, flags, start, text);
}

// Closes what is open and goes back to the table that asked for this one, if any.
static int Table_End (Reading *reading, Table *table) {
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

static int Next_Line (Reading *reading, Table *table) {
    if (table->line_number < INT32_MAX) table->line_number++;
    return table->file && !reading->full &&
           DICOM_Module_Read_Line (reading->window, table->file, table->line_number, reading->line, table->label,
                                   nullptr);
}

// Reads the top table and all that it includes. 0 when memory ran out; then nothing is left on the chain either.
static int Read_Tables (Reading *reading) {
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
        List_Free (reading->window, &table->own);
        Table_Release (table);
    }
    return done;
}

static int Read_Outermost (Reading *reading, File *file, const char *label, Attribute **list) {
    Table table  = {};
    table.entry  = NOT_INCLUDED;
    table.file   = file;
    table.label  = label;
    table.list   = list;
    reading->top = &table;
    return Read_Tables (reading);
}

int DICOM_Module_Read_File (Window window, const Settings *settings, File *file, const char *label, Attribute **list) {
    Reading reading;
    Reading_Begin (&reading, window, settings);
    return Read_Outermost (&reading, file, label, list);
}

Attribute *DICOM_Module_Include_Get (Window window, const Settings *settings, const char *name, const char *label,
                                     int line) {
    Mutex_Access_Start ();
    Reading reading;
    Reading_Begin (&reading, window, settings);
    Attribute *macro;
    int32_t    entry = Include.count; // Of the file, should it be read now.
    if (!Include_Begin (&reading, name, label, line, &macro)) macro = nullptr;
    else if (reading.top) macro = Read_Tables (&reading) ? Include.lists[entry] : nullptr;
    Mutex_Access_Stop ();
    return macro;
}

void DICOM_Module_Include_Free (Window window) {
    Mutex_Access_Start ();
    Cache_Empty (window, &Include);
    Mutex_Access_Stop ();
}

// --- assembling ------------------------------------------------------------

static File *Module_File_Open (Window window, const char *modality, char *name) {
    int fits = Table_Name (name, "DICOM_Module_%s.txt", modality);
    Log_Message (window, LOG_TRACE4, "module IOD file:%s in dir:%s", name, Module_Dir);
    File *file = fits ? Table_Open (name) : nullptr;
    if (file) return file;
    Log_Message (window, LOG_WARNING,
                 WARNING_WORD " Unable to open module IOD file:" BLUE ("%s") " in dir:" BLUE ("%s"), name, Module_Dir);
    Table_Name (name, "DICOM_Module_%s.txt", "OT_Image");
    return Table_Open (name);
}

static int Read_Module (Reading *reading, const char *module, const char *label, int line_number, Attribute **list) {
    char  name[TABLE_NAME_SIZE];
    int   fits = Table_Name (name, "DICOM_Attributes_%s.txt", module);
    File *file = fits ? Table_Open (name) : nullptr;
    if (!file) {
        Warn_Header (reading->window, " reading IOD file:", label, line_number);
        Log_Message (reading->window, LOG_WARNING, DETAIL " Unable to open attributes file:" BLUE ("%s"), name);
        return 1;
    }
    int done = Read_Outermost (reading, file, name, list);
    File_Close (file);
    return done;
}

// Every line of the module file names an attributes file.
static int Read_Module_Lines (Reading *reading, File *file, const char *label, Attribute **list) {
    char line[DEFINITION_LINE_SIZE];
    for (int number = 1; DICOM_Module_Read_Line (reading->window, file, number, line, label, nullptr);
         number += number < INT32_MAX) {
        Log_Message (reading->window, LOG_TRACE4, "%s[%d] -> %s", label, number, line);
        const char *module = Trim (line);
        if (*module && !Read_Module (reading, module, label, number, list)) return 0;
    }
    return 1;
}

// The flat list of all tables. 1; 0 without a directory or a module file, or when memory ran out.
static int Read_Modality (Window window, const Settings *settings, const char *modality, Attribute **list) {
    if (!Module_Dir) {
        Log_Message (window, LOG_WARNING, WARNING_WORD " DICOM_Module_Dir is undefined!");
        return 0;
    }
    char  label[TABLE_NAME_SIZE];
    File *file = Module_File_Open (window, modality, label);
    if (!file) return 0;
    Reading reading;
    Reading_Begin (&reading, window, settings);
    int done = Read_Module_Lines (&reading, file, label, list);
    File_Close (file);
    return done;
}

// --- phases ----------------------------------------------------------------

static void Phase (Window window, const char *title) {
    if (Log.trace_level >= 4) Log_Section (window, LOG_TRACE1, title);
}

static void Trace_List (Window window, SequenceCursor *cursor, Attribute *list, int kind) {
    if (Log.trace_level < kind - LOG_TRACE1 + 1) return;
    DICOM_Attribute_Sequence_Reset (window, cursor);
    DICOM_Attribute_List (window, cursor, list, kind);
    DICOM_Attribute_Sequence_Reset (window, cursor);
}

static void Trace_End (Window window) {
    static const char RULE[] = "-------------------------------------------------------------------------------";
    if (Log.trace_level < 4) return;
    Log_Message (window, LOG_TRACE1, "\n\n\n");
    for (int i = 0; i < 3; i++) Log_Message (window, LOG_TRACE1, "%s", RULE);
}

// Takes over the flat list. The nested, corrected and sorted tree without item tags; 0 when there is none or memory ran
// out.
static int Make_Tree (Window window, SequenceCursor *cursor, Attribute **flat, Attribute **tree) {
    Phase (window, "-----                        Format of sequences                         ------");
    *tree = DICOM_Attribute_Format (window, cursor->settings, *flat);
    List_Free (window, flat);
    if (!*tree) {
        Log_Message (window, LOG_TRACE1, "Failed in DICOM_Attribute_Format()");
        return 0;
    }
    DICOM_Attribute_Cleanup_Walk (window, cursor, *tree);
    Trace_List (window, cursor, *tree, LOG_TRACE5);

    Phase (window, "-----                         Deleting DICOM tags                        ------");
    DICOM_Attribute_Delete (window, cursor, tree, GROUP_DELIMITER, TAG_ANY);
    Trace_List (window, cursor, *tree, LOG_TRACE4);

    Phase (window, "-----                         Sorting DICOM tags                         ------");
    int sorted = !*tree || DICOM_Attribute_Sort (window, cursor, tree);
    Trace_List (window, cursor, *tree, LOG_TRACE4);
    if (!sorted) List_Free (window, tree);
    return sorted;
}

// Takes over the tree.
static int Copy_Tree (Window window, SequenceCursor *cursor, Attribute **tree, Attribute **place) {
    Phase (window, "-----                         copying DICOM tags                         ------");
    DICOM_Attribute_Sequence_Reset (window, cursor);
    int copied = DICOM_Attribute_Copy (window, cursor, place, *tree);
    if (!copied) Log_Message (window, LOG_TRACE1, "Failed in DICOM_Attribute_Copy()");
    List_Free (window, tree);
    if (!copied) return 0;
    Trace_List (window, cursor, *place, LOG_TRACE5);
    Trace_End (window);
    return 1;
}

static int Assemble (Window window, const Settings *settings, Attribute **flat, Attribute **place) {
    SequenceCursor cursor = {};
    Attribute     *tree   = nullptr;
    cursor.settings       = settings;
    Phase (window, "-----                        From Module files                           ------");
    Trace_List (window, &cursor, *flat, LOG_TRACE5);
    return Make_Tree (window, &cursor, flat, &tree) && Copy_Tree (window, &cursor, &tree, place);
}

int DICOM_Module_Assemble (Window window, const Settings *settings, const char *modality, Attribute **place) {
    Attribute *flat = nullptr;
    int        read = Read_Modality (window, settings, modality, &flat);
    Cache_Empty (window, &Include);
    int done = read && Assemble (window, settings, &flat, place);
    List_Free (window, &flat);
    return done;
}

// --- private attributes ----------------------------------------------------

// A creator as part of a file name, in capitals and without what a file name can't hold.
static void Private_Key (Window window, const char *creator, char *key) {
    if (!Text_Copy (key, DEFINITION_KEY_SIZE, creator)) {
        Log_Message (window, LOG_WARNING, WARNING_WORD " DICOM_Module_Read_Private");
        Log_Message (window, LOG_WARNING, DETAIL " Private creator too long (>%d), cut", DEFINITION_KEY_SIZE - 1);
    }
    Text_Trim (key);
    for (char *c = key; *c; c++) {
        if (strchr ("/\\:*?\"<>|", *c)) *c = '_';
        if (*c >= 'a' && *c <= 'z') *c = static_cast<char> (*c - 'a' + 'A');
    }
}

// The table of the whole key, or of the longest beginning that has one. key is cut to it, name is its file's.
static File *Private_Open (Window window, char *key, char *name) {
    for (size_t length = strlen (key); length; key[--length] = 0) {
        Table_Name (name, "DICOM_Private_%s.txt", key);
        Log_Message (window, LOG_TRACE4, "Private Attribute file:%s in dir:%s", name, Module_Dir);
        File *file = Table_Open (name);
        if (file) return file;
    }
    return nullptr;
}

static int Is_Power_Of_Two (int32_t number) { return (number & (number - 1)) == 0; }

// Room for one more creator: the arrays double when they are full.
static int Private_Grow (Window window) {
    int32_t count = Private.count;
    if (count == INT32_MAX / 2) return 0;
    if (!Is_Power_Of_Two (count)) return 1;
    size_t capacity = count ? static_cast<size_t> (count) * 2 : 1;
    void  *lists =
        Memory_Realloc (window, HERE ("Private_List", count + 1, 8), Private.lists, capacity * sizeof *Private.lists);
    if (!lists) return 0;
    Private.lists = static_cast<Attribute **> (lists);
    void *names =
        Memory_Realloc (window, HERE ("Private_Name", count + 1, 8), Private.names, capacity * sizeof *Private.names);
    if (!names) return 0;
    Private.names = static_cast<Cache_Name *> (names);
    return 1;
}

// Enters the creator and reads its table. The entry's index, or -1 when memory ran out.
static int32_t Private_Read (Window window, const Settings *settings, const char *creator) {
    char key[DEFINITION_KEY_SIZE], name[TABLE_NAME_SIZE];
    if (!Private_Grow (window)) return -1;
    char *copy = Memory_Strdup (window, HERE ("Private_Name[Private_Nb]", 0, 0), creator);
    if (!copy) return -1;
    int32_t entry = Cache_Add (&Private, copy);
    Private_Key (window, creator, key);
    File *file = Private_Open (window, key, name);
    if (!file) return entry;
    int done = DICOM_Module_Read_File (window, settings, file, name, &Private.lists[entry]);
    File_Close (file);
    Cache_Empty (window, &Include);
    return done ? entry : -1;
}

// Tables are written for block 10, that is with elements 1000 to 10FF, or with the low byte alone.
static Attribute *Private_Find (Window window, Attribute *list, const Attribute *attribute) {
    SequenceCursor cursor  = {};
    uint16_t       low     = attribute->element & 0xFF;
    const uint16_t tries[] = {attribute->element, low, static_cast<uint16_t> (0x1000 + low)};
    for (uint16_t element : tries) {
        Attribute *found = DICOM_Attribute_Get (window, &cursor, list, attribute->group, element, 0);
        if (found) return found;
    }
    return nullptr;
}

static int Private_Apply (Window window, const Attribute *found, Attribute *attribute) {
    if (found->description && *found->description) {
        char *description = Memory_Strdup (window, HERE ("tag->description", 0, 0), found->description);
        if (!description) return 0;
        Memory_Free (attribute->description);
        attribute->description = description;
    }
    if (found->vr) attribute->vr = found->vr;
    if (found->flags & TABLE_DELETE) attribute->flags |= DELETED;
    return 1;
}

static int Read_Private (Window window, const Settings *settings, const char *creator, Attribute *attribute) {
    Log_Message (window, LOG_TRACE5, "in DICOM_Module_Read_Private(%s)", creator ? creator : "");
    if (!creator || !*creator || !Module_Dir) return 0;
    int32_t entry = Cache_Find (&Private, creator);
    if (entry < 0) entry = Private_Read (window, settings, creator);
    if (entry < 0 || !Private.lists[entry]) return 0;
    const Attribute *found = Private_Find (window, Private.lists[entry], attribute);
    return found ? Private_Apply (window, found, attribute) : 0;
}

int DICOM_Module_Read_Private (Window window, const Settings *settings, const char *creator, Attribute *attribute) {
    Mutex_Access_Start ();
    int applied = Read_Private (window, settings, creator, attribute);
    Mutex_Access_Stop ();
    return applied;
}

void DICOM_Module_Private_Free (Window window) {
    Mutex_Access_Start ();
    Cache_Empty (window, &Private);
    Memory_Free (Private.names);
    Memory_Free (Private.lists);
    Private = {};
    Mutex_Access_Stop ();
}
