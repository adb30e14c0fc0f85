// What private attributes mean, by their creator. A creator's table is looked for once in the life of the process.
#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "tables/definition_files_private.h"
#include "tables/list_cache.h"
#include "util/memory.h"
#include "util/mutex_access.h"
#include "util/text.h"

static const char *const MODULE = "definition_private";

// --- tables ----------------------------------------------------------------

static List_Cache Private; // Its arrays grow.

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

// The table of the whole key, or of the longest beginning that has one. key is cut to it, name is its file's.
static File *Private_Open (Window window, char *key, char *name) {
    for (size_t length = strlen (key); length; key[--length] = 0) {
        Definition_Name (name, "DICOM_Private_%s.txt", key);
        Log_Message (window, LOG_TRACE4, "Private Attribute file:%s in dir:%s", name, Definition_Directory ());
        File *file = Definition_Open (name);
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
    Private.names = static_cast<List_Cache_Name *> (names);
    return 1;
}

// Enters the creator and reads its table. The entry's index, or -1 when memory ran out.
static int32_t Private_Read (Window window, const Settings *settings, const char *creator) {
    char key[DEFINITION_KEY_SIZE], name[DEFINITION_NAME_SIZE];
    if (!Private_Grow (window)) return -1;
    char *copy = Memory_Strdup (window, HERE ("Private_Name[Private_Nb]", 0, 0), creator);
    if (!copy) return -1;
    int32_t entry = List_Cache_Add (&Private, copy);
    Private_Key (window, creator, key);
    File *file = Private_Open (window, key, name);
    if (!file) return entry;
    int done = DICOM_Module_Read_File (window, settings, file, name, &Private.lists[entry]);
    File_Close (file);
    Definition_Includes_Empty (window);
    return done ? entry : -1;
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
    List_Cache_Empty (window, &Private);
    Memory_Free (Private.names);
    Memory_Free (Private.lists);
    Private = {};
    Mutex_Access_Stop ();
}
