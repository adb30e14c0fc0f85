// Lists are made of millions of small blocks, most of which come and go together. They stand side by side in slabs, one size
// a slab, which costs less time and less memory than asking the C allocator for each; larger blocks come from there. A slab
// whose last block is freed goes, too. Under the address sanitizer every block is the C allocator's own, so that it sees
// each misuse. One counter lets tests fail any allocation, one counts the living blocks.
#include "util/memory.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "util/my_error_fct.h"

static long fail_countdown; // 0: no allocation fails.
static long fail_left;      // When the countdown stands at 1, so many allocations fail. 0: all.
static int  fail_done;
static long live;

static int Fails_Now (void) {
    if (!fail_countdown) return 0;
    if (fail_countdown > 1) {
        fail_countdown--;
        return 0;
    }
    fail_done++;
    if (fail_left && !--fail_left) fail_countdown = 0;
    return 1;
}

void Memory_Report (Window window, const Memory_Site *site, const char *call) {
    Log_Message (window, LOG_ERROR, "line %-4d of %s \nmemory error in %s (var=%s, dim=%dx%d)", site->line,
                 site->module, call, site->variable, site->count, site->size);
    // Whoever reports the consequence asks for it; the log's files may have changed it.
    System_Last_Error_Set (System_Memory_Error ());
}

// --- blocks ----------------------------------------------------------------

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MEMORY_IS_WATCHED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define MEMORY_IS_WATCHED 1
#endif

#ifdef MEMORY_IS_WATCHED

static void *Block_New (size_t bytes) { return malloc (bytes); }
static void *Block_New_Zeroed (size_t bytes) { return calloc (1, bytes); }
static void *Block_Resize (void *block, size_t bytes) { return realloc (block, bytes); }
static void  Block_Free (void *block) { free (block); }

#else

static const size_t UNIT       = 16;        // Sizes of small blocks are multiples of it.
static const size_t SMALL      = 256;       // The largest of them.
static const size_t SLAB_SIZE  = 64 * 1024; // Bytes of a slab, its head counted.
static const int    SLAB_SIZES = SMALL / UNIT;

struct Slab;

// What stands before each block: the slab that it is of, or none. In a free one of a slab the next free one follows.
struct Head {
    Slab *slab;
};

struct Slab {
    Slab   *next; // Of the slabs of its size that have room; a ring.
    Slab   *previous;
    Head   *free;   // Blocks that were freed.
    char   *unused; // From here on no block was ever taken.
    size_t  size;   // Of a block with its head.
    int32_t live;
    int     room; // 1 while it is in the ring.
};

static Slab *rooms[SLAB_SIZES]; // The slab from which the next block of that size comes, or none.

static Head **Next_Free (Head *head) { return reinterpret_cast<Head **> (head + 1); }

static int Has_Unused (const Slab *slab) {
    return static_cast<size_t> (slab->unused - reinterpret_cast<const char *> (slab)) + slab->size <= SLAB_SIZE;
}

static void Room_Add (Slab **room, Slab *slab) {
    slab->room = 1;
    if (!*room) {
        slab->next = slab->previous = slab;
        *room                       = slab;
        return;
    }
    slab->next           = *room;
    slab->previous       = (*room)->previous;
    slab->next->previous = slab;
    slab->previous->next = slab;
}

static void Room_Remove (Slab **room, Slab *slab) {
    slab->room           = 0;
    slab->next->previous = slab->previous;
    slab->previous->next = slab->next;
    if (*room == slab) *room = slab->next == slab ? nullptr : slab->next;
}

static Slab *Slab_New (size_t size) {
    Slab *slab = static_cast<Slab *> (malloc (SLAB_SIZE));
    if (!slab) return nullptr;
    *slab = {nullptr, nullptr, nullptr, reinterpret_cast<char *> (slab + 1), size, 0, 0};
    return slab;
}

static void *Small_New (size_t bytes) {
    int    index = static_cast<int> ((bytes + UNIT - 1) / UNIT) - 1;
    Slab **room  = &rooms[index];
    Slab  *slab  = *room;
    if (!slab) {
        slab = Slab_New (static_cast<size_t> (index + 1) * UNIT + sizeof (Head));
        if (!slab) return nullptr;
        Room_Add (room, slab);
    }
    Head *head = slab->free;
    if (head) {
        slab->free = *Next_Free (head);
    } else {
        head = reinterpret_cast<Head *> (slab->unused);
        slab->unused += slab->size;
    }
    head->slab = slab;
    slab->live++;
    if (!slab->free && !Has_Unused (slab)) Room_Remove (room, slab);
    return head + 1;
}

static void Small_Free (Slab *slab, Head *head) {
    Slab **room       = &rooms[(slab->size - sizeof (Head)) / UNIT - 1];
    *Next_Free (head) = slab->free;
    slab->free        = head;
    slab->live--;
    if (!slab->room) Room_Add (room, slab);
    if (slab->live || slab == *room) return; // The one in use stays: its next block is asked for soon.
    Room_Remove (room, slab);
    free (slab);
}

static void *Block_New (size_t bytes) {
    if (bytes <= SMALL) return Small_New (bytes);
    if (bytes > SIZE_MAX - sizeof (Head)) return nullptr;
    Head *head = static_cast<Head *> (malloc (bytes + sizeof (Head)));
    if (!head) return nullptr;
    head->slab = nullptr;
    return head + 1;
}

static void *Block_New_Zeroed (size_t bytes) {
    if (bytes <= SMALL) {
        void *block = Small_New (bytes);
        return block ? memset (block, 0, bytes) : nullptr;
    }
    if (bytes > SIZE_MAX - sizeof (Head)) return nullptr;
    Head *head = static_cast<Head *> (calloc (1, bytes + sizeof (Head)));
    return head ? head + 1 : nullptr;
}

static void Block_Free (void *block) {
    Head *head = static_cast<Head *> (block) - 1;
    if (head->slab) Small_Free (head->slab, head);
    else free (head);
}

static void *Block_Resize (void *block, size_t bytes) {
    if (!block) return Block_New (bytes);
    Head *head = static_cast<Head *> (block) - 1;
    if (!head->slab) {
        if (bytes > SIZE_MAX - sizeof (Head)) return nullptr;
        head = static_cast<Head *> (realloc (head, bytes + sizeof (Head)));
        return head ? head + 1 : nullptr;
    }
    size_t size = head->slab->size - sizeof (Head);
    if (bytes <= size) return block;
    void *larger = Block_New (bytes);
    if (!larger) return nullptr;
    memcpy (larger, block, size);
    Block_Free (block);
    return larger;
}

#endif

// --- the calls -------------------------------------------------------------

void *Memory_Try (size_t bytes) {
    void *block = Fails_Now () ? nullptr : Block_New (bytes ? bytes : 1);
    if (block) live++;
    else System_Last_Error_Set (System_Memory_Error ());
    return block;
}

void *Memory_Malloc (Window window, Memory_Site site, size_t bytes) {
    void *block = Memory_Try (bytes);
    if (!block) Memory_Report (window, &site, "malloc");
    return block;
}

void *Memory_Calloc (Window window, Memory_Site site, size_t bytes) {
    void *block = Fails_Now () ? nullptr : Block_New_Zeroed (bytes ? bytes : 1);
    if (block) live++;
    else Memory_Report (window, &site, "calloc");
    return block;
}

void *Memory_Realloc (Window window, Memory_Site site, void *block, size_t bytes) {
    void *larger = Fails_Now () ? nullptr : Block_Resize (block, bytes ? bytes : 1);
    if (!larger) Memory_Report (window, &site, "realloc");
    else if (!block) live++;
    return larger;
}

void *Memory_Text (Window window, Memory_Site site, size_t bytes) {
    void *block = Memory_Try (bytes);
    if (block) return block;
    Log_Message (window, LOG_ERROR, "line %-4d of %s \nmemory error in strdup (var=%s)", site.line, site.module,
                 site.variable);
    System_Last_Error_Set (System_Memory_Error ());
    return nullptr;
}

char *Memory_Strdup (Window window, Memory_Site site, const char *text) {
    size_t size = strlen (text) + 1;
    void  *copy = Memory_Text (window, site, size);
    return copy ? static_cast<char *> (memcpy (copy, text, size)) : nullptr;
}

void Memory_Free (void *block) {
    if (!block) return;
    live--;
    Block_Free (block);
}

void Memory_Fail_From (long n, long count) {
    fail_countdown = n > 0 ? n : 0;
    fail_left      = count;
    fail_done      = 0;
}

void Memory_Fail_At (long n) { Memory_Fail_From (n, 1); }

int Memory_Failed (void) { return fail_done; }

long Memory_Live (void) { return live; }
