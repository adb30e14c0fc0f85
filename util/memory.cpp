// Lists are made of millions of small blocks, most of which come and go together. They stand side by side in slabs, one size
// a slab, which costs less time and less memory than asking the C allocator for each; larger blocks come from there. Where
// there are many slabs they are parts of chunks, for which the system has large pages: of small ones, taking and returning
// each costs more than a thousand instructions. A slab whose last block is freed goes, too, and so does a chunk. Under the
// address sanitizer every block is the C allocator's own, so that it sees each misuse. One counter lets tests fail any
// allocation, one counts the living blocks.
//
// Taking and freeing a small block is a few steps in one function each; what is rarely done stays out of it.
#include "util/memory.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "platform/system.h"
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

// Of no bytes there is a block as well: none would mean a failure.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MEMORY_IS_WATCHED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define MEMORY_IS_WATCHED 1
#endif

#ifdef MEMORY_IS_WATCHED

static void *Block_At_Hand (size_t) { return nullptr; }
static void *Block_New (size_t bytes) { return malloc (bytes ? bytes : 1); }
static void *Block_New_Zeroed (size_t bytes) { return calloc (1, bytes ? bytes : 1); }
static void *Block_Resize (void *block, size_t bytes) { return realloc (block, bytes ? bytes : 1); }
static void  Block_Free (void *block) { free (block); }

#else

static const size_t UNIT        = 8;               // Sizes of small blocks are multiples of it.
static const size_t SMALL       = 256;             // The largest of them.
static const size_t SLAB_SIZE   = 64 * 1024;       // Bytes of a slab, its head counted.
static const size_t CHUNK_SIZE  = 2 * 1024 * 1024; // Bytes of a chunk: one large page of most processors.
static const int    CHUNK_SLABS = CHUNK_SIZE / SLAB_SIZE;
static const int    SLABS_ALONE = 16;               // Slabs before the first chunk: most lists are short.
static const int    SLAB_SIZES  = SMALL / UNIT + 1; // The first one, for no bytes, is of one unit.

struct Slab;
struct Chunk;

// What stands before each block: the slab that it is of, or none. In a free one of a slab the next free one follows.
struct Head {
    Slab *slab;
};

// Of a ring of those that have room.
struct Link {
    Link *next;
    Link *previous;
    int   linked; // 1 while it is in the ring.
};

struct Slab {
    Link    link;   // With the others of its size.
    Head   *free;   // Blocks that were freed.
    char   *unused; // From here on no block was ever taken.
    char   *last;   // Where the last block can begin.
    size_t  size;   // Of a block with its head.
    Link  **room;   // Of its size.
    Chunk  *chunk;  // Of which it is a part, or none.
    int32_t live;
};

// Stands in front of its first slab.
struct Chunk {
    Link    link;
    Link   *free;  // Slabs that were freed, one behind the other.
    int32_t taken; // Slabs that were ever taken, the first ones.
    int32_t live;
};

// The slab from which the next block of that size comes, or none. It may be full; those behind it have room.
static Link *slab_rooms[SLAB_SIZES];
static Link *chunk_room; // The chunk from which the next slab comes, or none.
static int   slab_count;

static Head **Next_Free (Head *head) { return reinterpret_cast<Head **> (head + 1); }

// --- rooms -----------------------------------------------------------------

static void Room_Add (Link **room, Link *link) {
    link->linked = 1;
    if (!*room) {
        link->next = link->previous = link;
        *room                       = link;
        return;
    }
    link->next           = *room;
    link->previous       = (*room)->previous;
    link->next->previous = link;
    link->previous->next = link;
}

static void Room_Remove (Link **room, Link *link) {
    link->linked         = 0;
    link->next->previous = link->previous;
    link->previous->next = link->next;
    if (*room == link) *room = link->next == link ? nullptr : link->next;
}

// --- slabs -----------------------------------------------------------------

static Chunk *Chunk_With_Room (void) {
    if (chunk_room) return reinterpret_cast<Chunk *> (chunk_room);
    Chunk *chunk = static_cast<Chunk *> (System_Pages_Take (CHUNK_SIZE));
    if (!chunk) return nullptr;
    *chunk = {};
    Room_Add (&chunk_room, &chunk->link);
    return chunk;
}

static Slab *Slab_Of_Chunk (size_t size) {
    Chunk *chunk = Chunk_With_Room ();
    if (!chunk) return nullptr;
    char *start = reinterpret_cast<char *> (chunk->free);
    if (start) {
        chunk->free = chunk->free->next;
    } else {
        start = reinterpret_cast<char *> (chunk) + static_cast<size_t> (chunk->taken++) * SLAB_SIZE;
        if (chunk->taken == 1) start += sizeof (Chunk);
    }
    if (++chunk->live == CHUNK_SLABS) Room_Remove (&chunk_room, &chunk->link);
    Slab  *slab   = reinterpret_cast<Slab *> (start);
    size_t offset = static_cast<size_t> (start - reinterpret_cast<char *> (chunk));
    slab->chunk   = chunk;
    slab->last    = start + (SLAB_SIZE - offset % SLAB_SIZE) - size;
    return slab;
}

static Slab *Slab_Alone (size_t size) {
    Slab *slab = static_cast<Slab *> (malloc (SLAB_SIZE));
    if (!slab) return nullptr;
    slab->chunk = nullptr;
    slab->last  = reinterpret_cast<char *> (slab) + SLAB_SIZE - size;
    return slab;
}

// For blocks of the size that has this room.
static Slab *Slab_New (Link **room) {
    size_t units = static_cast<size_t> (room - slab_rooms);
    size_t size  = (units ? units : 1) * UNIT + sizeof (Head);
    Slab  *slab  = slab_count < SLABS_ALONE ? nullptr : Slab_Of_Chunk (size);
    if (!slab) slab = Slab_Alone (size);
    if (!slab) return nullptr;
    slab_count++;
    slab->free   = nullptr;
    slab->unused = reinterpret_cast<char *> (slab + 1);
    slab->size   = size;
    slab->room   = room;
    slab->live   = 0;
    return slab;
}

static void Slab_Free (Slab *slab) {
    Chunk *chunk = slab->chunk;
    slab_count--;
    if (!chunk) {
        free (slab);
        return;
    }
    slab->link.next = chunk->free;
    chunk->free     = &slab->link;
    if (!chunk->link.linked) Room_Add (&chunk_room, &chunk->link);
    if (--chunk->live || &chunk->link == chunk_room) return; // The one in use stays, as among slabs.
    Room_Remove (&chunk_room, &chunk->link);
    System_Pages_Return (chunk, CHUNK_SIZE);
}

// --- blocks of slabs -------------------------------------------------------

// A block of a slab, or none when the slab is full.
static inline void *Slab_Take (Slab *slab) {
    Head *head = slab->free;
    if (head) { // Which still names its slab.
        slab->free = *Next_Free (head);
    } else {
        if (slab->unused > slab->last) return nullptr;
        head = reinterpret_cast<Head *> (slab->unused);
        slab->unused += slab->size;
        head->slab = slab;
    }
    slab->live++;
    return head + 1;
}

// Where the slab in use is full, or there is none. A full slab is in no ring until a block of it is freed.
static void *Small_New_Elsewhere (Link **room) {
    if (*room) Room_Remove (room, *room);
    if (!*room) {
        Slab *fresh = Slab_New (room);
        if (!fresh) return nullptr;
        Room_Add (room, &fresh->link);
    }
    return Slab_Take (reinterpret_cast<Slab *> (*room));
}

static Link **Room_Of (size_t bytes) { return &slab_rooms[(bytes + UNIT - 1) / UNIT]; }

// A small block where the slab in use has room, or none.
static inline void *Block_At_Hand (size_t bytes) {
    Link *slab = bytes <= SMALL ? *Room_Of (bytes) : nullptr;
    return slab ? Slab_Take (reinterpret_cast<Slab *> (slab)) : nullptr;
}

static void *Small_New (size_t bytes) {
    void *block = Block_At_Hand (bytes);
    return block ? block : Small_New_Elsewhere (Room_Of (bytes));
}

__attribute__ ((noinline)) static void Slab_Has_Room (Slab *slab) {
    if (!slab->link.linked) Room_Add (slab->room, &slab->link);
    if (slab->live || &slab->link == *slab->room) return; // The one in use stays: its next block is asked for soon.
    Room_Remove (slab->room, &slab->link);
    Slab_Free (slab);
}

static inline void Small_Free (Slab *slab, Head *head) {
    *Next_Free (head) = slab->free;
    slab->free        = head;
    if (!--slab->live || !slab->link.linked) Slab_Has_Room (slab);
}

static void *Large_New (size_t bytes) {
    if (bytes > SIZE_MAX - sizeof (Head)) return nullptr;
    Head *head = static_cast<Head *> (malloc (bytes + sizeof (Head)));
    if (!head) return nullptr;
    head->slab = nullptr;
    return head + 1;
}

static void *Block_New (size_t bytes) { return bytes <= SMALL ? Small_New (bytes) : Large_New (bytes); }

static void *Block_New_Zeroed (size_t bytes) {
    if (bytes <= SMALL) {
        void *block = Small_New (bytes);
        return block ? memset (block, 0, bytes) : nullptr;
    }
    if (bytes > SIZE_MAX - sizeof (Head)) return nullptr;
    Head *head = static_cast<Head *> (calloc (1, bytes + sizeof (Head)));
    return head ? head + 1 : nullptr;
}

static inline void Block_Free (void *block) {
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

__attribute__ ((noinline)) static void *Try_Elsewhere (size_t bytes) {
    void *block = Fails_Now () ? nullptr : Block_New (bytes);
    if (block) live++;
    else System_Last_Error_Set (System_Memory_Error ());
    return block;
}

// Nearly every block is one that is at hand.
void *Memory_Try (size_t bytes) {
    void *block = fail_countdown ? nullptr : Block_At_Hand (bytes);
    if (!block) return Try_Elsewhere (bytes);
    live++;
    return block;
}

void *Memory_Malloc (Window window, Memory_Site site, size_t bytes) {
    void *block = Memory_Try (bytes);
    if (!block) Memory_Report (window, &site, "malloc");
    return block;
}

void *Memory_Calloc (Window window, Memory_Site site, size_t bytes) {
    void *block = Fails_Now () ? nullptr : Block_New_Zeroed (bytes);
    if (block) live++;
    else Memory_Report (window, &site, "calloc");
    return block;
}

void *Memory_Realloc (Window window, Memory_Site site, void *block, size_t bytes) {
    void *larger = Fails_Now () ? nullptr : Block_Resize (block, bytes);
    if (!larger) Memory_Report (window, &site, "realloc");
    else if (!block) live++;
    return larger;
}

__attribute__ ((noinline)) static void Report_Text (Window window, const Memory_Site *site) {
    Log_Message (window, LOG_ERROR, "line %-4d of %s \nmemory error in strdup (var=%s)", site->line, site->module,
                 site->variable);
    System_Last_Error_Set (System_Memory_Error ());
}

void *Memory_Text (Window window, Memory_Site site, size_t bytes) {
    void *block = Memory_Try (bytes);
    if (!block) Report_Text (window, &site);
    return block;
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
