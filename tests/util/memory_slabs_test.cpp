// Where small blocks stand, by their addresses: what is freed is taken again. The address sanitizer has blocks of its own.
#include <stdint.h>

#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "util/memory.h"

static const size_t COUNT = 100000; // Of blocks: many chunks.
static const size_t RARE  = 8000;   // One of so many keeps its chunk.
static const size_t PAGE  = 4096;

static std::vector<void *> Take (size_t count, size_t size) {
    std::vector<void *> blocks (count);
    for (void *&block : blocks) block = Memory_Try (size);
    return blocks;
}

// Frees the blocks from first on that stand width apart, and removes them.
static void Free (std::vector<void *> *blocks, size_t first, size_t width) {
    for (size_t i = first; i < blocks->size (); i += width) {
        Memory_Free ((*blocks)[i]);
        (*blocks)[i] = nullptr;
    }
}

TEST (MemorySlabs, FreedBlocksOfFullSlabsAreTakenAgain) {
    long                live   = Memory_Live ();
    std::vector<void *> blocks = Take (COUNT, 120);
    std::set<void *>    freed;
    for (size_t i = 0; i < COUNT; i += 2) freed.insert (blocks[i]);
    Free (&blocks, 0, 2);

    std::vector<void *> others = Take (COUNT / 2, 120);
    size_t              again  = 0;
    for (void *block : others) again += freed.count (block);
    EXPECT_GT (again, COUNT / 2 - 1000); // Less what the last slab still had.
    Free (&blocks, 0, 1);
    Free (&others, 0, 1);
    EXPECT_EQ (live, Memory_Live ());
}

// A slab without blocks becomes one of another size.
TEST (MemorySlabs, EmptySlabsAreTakenForOtherSizes) {
    long                live   = Memory_Live ();
    std::vector<void *> blocks = Take (COUNT, 136), kept;
    std::set<uintptr_t> pages;
    for (size_t i = 0; i < COUNT; i++) {
        pages.insert (reinterpret_cast<uintptr_t> (blocks[i]) / PAGE);
        if (i % RARE) continue;
        kept.push_back (blocks[i]);
        blocks[i] = nullptr;
    }
    Free (&blocks, 0, 1);

    std::vector<void *> others = Take (COUNT / 2, 248);
    size_t              again  = 0;
    for (void *block : others) again += pages.count (reinterpret_cast<uintptr_t> (block) / PAGE);
    EXPECT_GT (again, COUNT / 2 * 8 / 10); // The slabs of the blocks that are kept stay as they are.
    Free (&others, 0, 1);
    Free (&kept, 0, 1);
    EXPECT_EQ (live, Memory_Live ());
}
