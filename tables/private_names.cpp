// Some file systems tell capitals from small letters, others don't: both are taken as the same here. That opens a file in
// vain now and then, and leaves none out. A name of ASCII letters is that of a creator of the same letters, also where a
// file system would take a ligature or a sign that looks like a letter for them.
#include "tables/private_names.h"

#include <string.h>

#include "platform/system.h"
#include "tables/definition_files.h"
#include "util/memory.h"

static const char *const MODULE = "private_names";

static const char   HEAD[]    = "DICOM_PRIVATE_";
static const char   TAIL[]    = ".TXT";
static const size_t HEAD_SIZE = sizeof HEAD - 1;
static const size_t TAIL_SIZE = sizeof TAIL - 1;

static char Capital (char c) { return c >= 'a' && c <= 'z' ? static_cast<char> (c - 'a' + 'A') : c; }

static int Is_Same (const char *text, const char *capitals, size_t length) {
    for (size_t i = 0; i < length; i++)
        if (Capital (text[i]) != capitals[i]) return 0;
    return 1;
}

// Windows lists "?" for what its code page doesn't have.
static int Is_Plain (char c) { return static_cast<uint8_t> (c) < 0x80 && c != '?'; }

struct Listing {
    Window         window;
    Private_Names *names;
    int            failed;
};

static uint8_t *Names_Extend (Window window, Private_Names *names, size_t size) {
    static const size_t FIRST_ROOM = 8192;

    if (names->room - names->size < size) {
        size_t room  = names->room ? 2 * names->room : FIRST_ROOM;
        void  *bytes = Memory_Realloc (window, HERE ("names->bytes", room, 1), names->bytes, room);
        if (!bytes) return nullptr;
        names->bytes = static_cast<uint8_t *> (bytes);
        names->room  = room;
    }
    uint8_t *end = names->bytes + names->size;
    names->size += size;
    return end;
}

// A letter and an accent behind it can be one character elsewhere, so the letter goes with the accent.
static int Add (Listing *listing, const char *creator, size_t length) {
    size_t plain = 0;
    while (plain < length && Is_Plain (creator[plain])) plain++;
    int is_whole = plain == length;
    if (!is_whole && plain) plain--;
    if (plain >= DEFINITION_KEY_SIZE) return 1; // No key is as long.

    uint8_t *name   = Names_Extend (listing->window, listing->names, plain + 2);
    listing->failed = !name;
    if (!name) return 0;
    *name++ = static_cast<uint8_t> (plain);
    *name++ = static_cast<uint8_t> (is_whole);
    for (size_t i = 0; i < plain; i++) name[i] = static_cast<uint8_t> (Capital (creator[i]));
    return 1;
}

static int Add_Listed (void *context, const char *name) {
    size_t length = strlen (name);
    if (length < HEAD_SIZE + TAIL_SIZE) return 1;
    if (!Is_Same (name, HEAD, HEAD_SIZE) || !Is_Same (name + length - TAIL_SIZE, TAIL, TAIL_SIZE)) return 1;
    return Add (static_cast<Listing *> (context), name + HEAD_SIZE, length - HEAD_SIZE - TAIL_SIZE);
}

int Private_Names_List (Window window, Private_Names *names, const char *directory) {
    Listing listing = {window, names, 0};
    size_t  length  = strlen (directory);
    int     ends    = length && System_Is_Separator (directory[length - 1]);
    if (ends && System_Directory_List (directory, Add_Listed, &listing) && !listing.failed) return 1;
    Private_Names_Free (names);
    return 0;
}

void Private_Names_Mark (const Private_Names *names, const char *key, uint8_t *may) {
    size_t length = strlen (key), from = length + 1; // From where on there may be a table by any beginning.
    memset (may, 0, DEFINITION_KEY_SIZE);
    for (size_t at = 0; at < names->size;) {
        const uint8_t *name     = names->bytes + at;
        size_t         plain    = name[0];
        int            is_whole = name[1];
        at += plain + 2;
        if (plain > length || memcmp (name + 2, key, plain) != 0) continue;
        if (is_whole) may[plain] = 1;
        else if (plain + 1 < from) from = plain + 1;
    }
    if (from <= length) memset (may + from, 1, length + 1 - from);
}

void Private_Names_Free (Private_Names *names) {
    Memory_Free (names->bytes);
    *names = {};
}
