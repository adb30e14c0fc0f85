// A hash table whose chains run through the array of names, so that thousands of names cost no search.
#include "tables/list_cache.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "util/memory.h"

static int32_t *Bucket (List_Cache *cache, const char *name) {
    uint32_t hash = 2166136261u;
    for (; *name; name++) hash = (hash ^ static_cast<uint8_t> (*name)) * 16777619u;
    return &cache->buckets[hash % LIST_CACHE_BUCKETS];
}

int32_t List_Cache_Find (List_Cache *cache, const char *name) {
    int32_t recent = cache->recent;
    if (recent && !strcmp (cache->names[recent - 1].text, name)) return recent - 1;
    int32_t at = *Bucket (cache, name);
    while (at && strcmp (cache->names[at - 1].text, name) != 0) at = cache->names[at - 1].next;
    cache->recent = at;
    return at - 1;
}

int32_t List_Cache_Add (List_Cache *cache, char *name) {
    int32_t *bucket              = Bucket (cache, name);
    cache->recent                = 0;
    cache->names[cache->count]   = {name, *bucket};
    cache->lists[cache->count++] = nullptr;
    return (*bucket = cache->count) - 1;
}

void List_Cache_Empty (Window window, List_Cache *cache) {
    for (int32_t i = 0; i < cache->count; i++) {
        Memory_Free (cache->names[i].text);
        SequenceCursor cursor = {};
        DICOM_Attribute_Delete (window, &cursor, &cache->lists[i], TAG_ANY, TAG_ANY);
    }
    cache->count  = 0;
    cache->recent = 0;
    memset (cache->buckets, 0, sizeof cache->buckets);
}
