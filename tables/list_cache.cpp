// A hash table whose buckets and chains stand in the array of names. So it has more buckets as it gets more room, and
// hundreds of thousands of names cost no search.
#include "tables/list_cache.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "util/memory.h"

static int32_t *Bucket (List_Cache *cache, const char *name) {
    uint32_t hash = 2166136261u;
    for (; *name; name++) hash = (hash ^ static_cast<uint8_t> (*name)) * 16777619u;
    return &cache->names[hash % static_cast<uint32_t> (cache->room)].bucket;
}

static void Chain (List_Cache *cache, int32_t entry) {
    int32_t *bucket          = Bucket (cache, cache->names[entry].text);
    cache->names[entry].next = *bucket;
    *bucket                  = entry + 1;
}

void List_Cache_Room (List_Cache *cache, int32_t room) {
    cache->room = room;
    for (int32_t i = 0; i < room; i++) cache->names[i].bucket = 0;
    for (int32_t i = 0; i < cache->count; i++) Chain (cache, i);
}

int32_t List_Cache_Find (List_Cache *cache, const char *name) {
    int32_t recent = cache->recent;
    if (recent && !strcmp (cache->names[recent - 1].text, name)) return recent - 1;
    int32_t at = cache->count ? *Bucket (cache, name) : 0;
    while (at && strcmp (cache->names[at - 1].text, name) != 0) at = cache->names[at - 1].next;
    cache->recent = at;
    return at - 1;
}

int32_t List_Cache_Add (List_Cache *cache, char *name) {
    int32_t entry            = cache->count++;
    cache->recent            = 0;
    cache->names[entry].text = name;
    cache->lists[entry]      = nullptr;
    Chain (cache, entry);
    return entry;
}

void List_Cache_Empty (Window window, List_Cache *cache) {
    for (int32_t i = 0; i < cache->count; i++) {
        *Bucket (cache, cache->names[i].text) = 0;
        Memory_Free (cache->names[i].text);
        SequenceCursor cursor = {};
        DICOM_Attribute_Delete (window, &cursor, &cache->lists[i], TAG_ANY, TAG_ANY);
    }
    cache->count  = 0;
    cache->recent = 0;
}
