// Attribute lists by name, in the order in which they came: the include files and the private creators that were asked for.
#pragma once

#include "attribute/attribute.h"
#include "platform/window.h"

struct List_Cache_Name {
    char   *text;   // Owned.
    int32_t next;   // The next name of the same bucket + 1, 0 at the end.
    int32_t bucket; // The newest name of the bucket with this slot's number + 1, 0 for none: there are as many as slots.
};

// Zero bytes are an empty cache without room. Whoever has the cache gives it room and releases the two arrays.
struct List_Cache {
    List_Cache_Name *names;
    Attribute      **lists;     // Owned lists; an entry may be none.
    int32_t          count;
    int32_t          room;      // Slots of both arrays.
    int32_t          recent;    // The name found last + 1, which is mostly asked for again; 0 for none.
};

void    List_Cache_Room (List_Cache *cache, int32_t room);     // Both arrays have got this many slots.
int32_t List_Cache_Find (List_Cache *cache, const char *name); // The entry's index, or -1.
int32_t List_Cache_Add (List_Cache *cache, char *name);        // Takes over name; there is room. The new entry's index.
void    List_Cache_Empty (Window window, List_Cache *cache);   // Releases names and lists; the arrays stay.
