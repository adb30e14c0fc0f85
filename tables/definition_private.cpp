// What private attributes mean, by their creator. A creator's table is looked for once in the life of the process.
//
// A file can name a creator in every 70 bytes of it. So creators whose names begin alike share the attributes of one table,
// and when many have none, the directory is listed, so that not every beginning of each name has to be tried. In one pass
// over a file the directory counts as unchanged; then both are done with, since users edit tables while the program runs.
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "tables/definition_files_private.h"
#include "tables/list_cache.h"
#include "tables/private_names.h"
#include "util/memory.h"
#include "util/mutex_access.h"
#include "util/text.h"

static const char *const MODULE = "definition_private";

// --- tables ----------------------------------------------------------------

static List_Cache Private; // The creators that were asked for. Its arrays grow; its lists are those of the tables.

// A table that was read.
struct Private_Table {
    Private_Table *next;   // Read before this one.
    Attribute     *list;   // Owned.
    int32_t        reader; // The creator for whom it was read; it is entered behind that.
    int            silent; // 1 when it was read in this pass without a warning.
    size_t         length;
    char           key[DEFINITION_KEY_SIZE]; // Of length bytes: what its file is called by.
};

static Private_Table *Tables; // The last one that was read comes first.

static void Table_Free (Window window, Private_Table *table) {
    SequenceCursor cursor = {};
    DICOM_Attribute_Delete (window, &cursor, &table->list, TAG_ANY, TAG_ANY);
    Memory_Free (table);
}

static Private_Table *Table_Find (const char *key, size_t length) {
    Private_Table *table = Tables;
    while (table && (table->length != length || memcmp (table->key, key, length) != 0)) table = table->next;
    return table;
}

// The table by that key when nobody would learn anything from its being read again.
static Private_Table *Table_Silent (const char *key, size_t length) {
    Private_Table *table = Log_Is_Read (LOG_TRACE3) ? nullptr : Table_Find (key, length);
    return table && table->silent ? table : nullptr;
}

static int Is_Same_Text (const char *a, const char *b) { return a && b ? !strcmp (a, b) : a == b; }

// In all that is taken from a definition.
static int Is_Same_Definition (const Attribute *a, const Attribute *b) {
    return !Tag_Compare (a->group, a->element, b->group, b->element) && a->vr == b->vr && a->flags == b->flags &&
           Is_Same_Text (a->description, b->description);
}

static int Is_Same_List (const Attribute *a, const Attribute *b) {
    while (a && b && Is_Same_Definition (a, b)) a = a->next, b = b->next;
    return !a && !b;
}

// Takes over a table. It, or the one that says the same; where each release of an attribute is traced, none is released
// before the end.
static Private_Table *Table_Keep (Window window, Private_Table *table) {
    Private_Table *former = Log_Is_Read (LOG_TRACE5) ? nullptr : Table_Find (table->key, table->length);
    if (former && Is_Same_List (former->list, table->list)) {
        former->silent = table->silent;
        Table_Free (window, table);
        return former;
    }
    table->next   = Tables;
    return Tables = table;
}

// The attributes of an open table. 1, or 0 when memory ran out: then there are none.
static int Table_Read (Window window, const Settings *settings, File *file, const char *name, const char *key,
                       Attribute **list) {
    void *block = Memory_Calloc (window, HERE ("Private_Table", 1, sizeof (Private_Table)), sizeof (Private_Table));
    if (!block) return 0;
    Private_Table *table = static_cast<Private_Table *> (block);
    table->reader        = Private.count;
    table->length        = strlen (key);
    memcpy (table->key, key, table->length);

    unsigned warnings = Definition_Warnings ();
    int      done     = DICOM_Module_Read_File (window, settings, file, name, &table->list);
    Definition_Includes_Empty (window);
    table->silent = warnings == Definition_Warnings ();
    if (done) *list = Table_Keep (window, table)->list;
    else Table_Free (window, table);
    return done;
}

// Releases the tables with the creators for whom they were read.
static void Tables_Free (Window window) {
    for (int32_t i = 0; i < Private.count; i++) Private.lists[i] = nullptr;
    while (Private_Table *table = Tables) {
        Tables                       = table->next;
        Private.lists[table->reader] = table->list;
        Memory_Free (table);
    }
    List_Cache_Empty (window, &Private);
}

// --- files -----------------------------------------------------------------

// Tables that weren't there until the directory is listed: as many take longer than the listing.
static const int PRIVATE_MISSES = 256;

enum Names_State { NAMES_UNKNOWN, NAMES_LISTED, NAMES_UNLISTED };

static int           Misses; // In the life of the process, up to PRIVATE_MISSES.
static Names_State   State;  // In this pass.
static Private_Names Names;  // When they are listed.

void Definition_Private_Look_Anew (void) {
    for (Private_Table *table = Tables; table; table = table->next) table->silent = 0;
    Private_Names_Free (&Names);
    State = NAMES_UNKNOWN;
}

void DICOM_Module_Private_Look_Anew (void) {
    Mutex_Access_Start ();
    Definition_Private_Look_Anew ();
    Mutex_Access_Stop ();
}

// Sets may[n] to 1 when a table by the first n bytes of key is worth a try.
static void Files_Mark (Window window, const char *key, uint8_t *may) {
    if (Misses == PRIVATE_MISSES && State == NAMES_UNKNOWN)
        State = Private_Names_List (window, &Names, Definition_Directory ()) ? NAMES_LISTED : NAMES_UNLISTED;
    if (State == NAMES_LISTED) Private_Names_Mark (&Names, key, may);
    else memset (may, 1, DEFINITION_KEY_SIZE);
}

// The table of the whole key, or of the longest beginning that has one; key is cut to it. Each that is looked for is traced.
// list stays none when there is no table. 0 when memory ran out.
static int Private_Look (Window window, const Settings *settings, char *key, Attribute **list) {
    char    name[DEFINITION_NAME_SIZE];
    uint8_t may[DEFINITION_KEY_SIZE];
    Files_Mark (window, key, may);
    for (size_t length = strlen (key); length; key[--length] = 0) {
        if (!may[length] && !Log_Is_Read (LOG_TRACE4)) continue;
        Definition_Name (name, "DICOM_Private_%s.txt", key);
        Log_Message (window, LOG_TRACE4, "Private Attribute file:%s in dir:%s", name, Definition_Directory ());
        if (!may[length]) continue;
        if (Private_Table *table = Table_Silent (key, length)) {
            *list = table->list;
            return 1;
        }
        System_Last_Error_Set (0);
        if (File *file = Definition_Open (name)) {
            int done = Table_Read (window, settings, file, name, key, list);
            File_Close (file);
            return done;
        }
        if (System_Last_Error () == System_Memory_Error ()) return 0; // There may be such a file.
        if (Misses < PRIVATE_MISSES) Misses++;
    }
    return 1;
}

// --- creators --------------------------------------------------------------

// A creator as part of a file name, in capitals and without what a file name can't hold.
static void Private_Key (Window window, const char *creator, char *key) {
    if (!Text_Copy (key, DEFINITION_KEY_SIZE, creator)) {
        Log_Message (window, LOG_WARNING, DEFINITION_WARNING " DICOM_Module_Read_Private");
        Log_Message (window, LOG_WARNING, DEFINITION_DETAIL " Private creator too long (>%d), cut",
                     DEFINITION_KEY_SIZE - 1);
    }
    Text_Trim (key);
    for (char *c = key; *c; c++) {
        if (strchr ("/\\:*?\"<>|", *c)) *c = '_';
        if (*c >= 'a' && *c <= 'z') *c = static_cast<char> (*c - 'a' + 'A');
    }
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
    Private.names = static_cast<List_Cache_Name *> (names);
    List_Cache_Room (&Private, static_cast<int32_t> (capacity));
    return 1;
}

// Reads the creator's table and enters it. The entry's index, or -1 when memory ran out: then it is asked for again.
static int32_t Private_Read (Window window, const Settings *settings, const char *creator) {
    char       key[DEFINITION_KEY_SIZE];
    Attribute *list = nullptr;
    if (!Private_Grow (window)) return -1;
    char *copy = Memory_Strdup (window, HERE ("Private_Name[Private_Nb]", 0, 0), creator);
    if (!copy) return -1;
    Private_Key (window, creator, key);
    if (!Private_Look (window, settings, key, &list)) {
        Memory_Free (copy);
        return -1;
    }
    int32_t entry        = List_Cache_Add (&Private, copy);
    Private.lists[entry] = list;
    return entry;
}

// Tables are written for block 10, that is with elements 1000 to 10FF, or with the low byte alone.
static Attribute *Private_Find (Window window, Attribute *list, const Attribute *attribute) {
    SequenceCursor cursor  = {};
    uint16_t       low     = attribute->element & 0xFF;
    const uint16_t tries[] = {attribute->element, low, static_cast<uint16_t> (0x1000 + low)};
    for (uint16_t element : tries) {
        Attribute *found = DICOM_Attribute_Get_Exact (window, &cursor, list, attribute->group, element);
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
    if (!creator || !*creator || !Definition_Directory ()) return 0;
    int32_t entry = List_Cache_Find (&Private, creator);
    if (entry < 0) entry = Private_Read (window, settings, creator);
    if (entry < 0) return 0;
    if (!Private.lists[entry]) return -1;
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
    Tables_Free (window);
    Memory_Free (Private.names);
    Memory_Free (Private.lists);
    Private = {};
    Definition_Private_Look_Anew ();
    Misses = 0;
    Mutex_Access_Stop ();
}
