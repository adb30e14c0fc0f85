// Attribute lists by name, in the order in which they came: the include files and the private tables that were read.
#pragma once

#include "attribute/attribute.h"
#include "platform/window.h"

static const int LIST_CACHE_BUCKETS = 4096;

struct List_Cache_Name {
    char   *text; // Owned.
    int32_t next; // The next name of the same bucket + 1, 0 at the end.
};

// Zero bytes are an empty cache without room. Whoever has the cache gives it room and releases the two arrays.
struct List_Cache {
    List_Cache_Name *names;
    Attribute      **lists; // Owned lists; an entry may be none.
    int32_t          count;
    int32_t          recent;                      // The name found last + 1, which is mostly asked for again; 0 for none.
    int32_t          buckets[LIST_CACHE_BUCKETS]; // The newest name of each + 1, 0 for none.
};

int32_t List_Cache_Find (List_Cache *cache, const char *name); // The entry's index, or -1.
int32_t List_Cache_Add (List_Cache *cache, char *name);        // Takes over name; there is room. The new entry's index.
void    List_Cache_Empty (Window window, List_Cache *cache);   // Releases names and lists; the arrays stay.
