// All memory of the program comes from here. A failure is reported once, with the program's fixed texts, and gives none.
// The system's last error is its code for that. Tests make the n-th allocation fail and ask how many blocks are alive.
#pragma once

#include <stddef.h>

#include "platform/window.h"

// Where memory is asked for, as the message names it: source line, module, variable, and the dimensions it states.
struct Memory_Site {
    int          line;
    const char  *module;
    const char  *variable;
    int          count;
    int          size;
};

// A source that allocates has its own MODULE (static const char *const).
#define HERE(variable, count, size) (Memory_Site { __LINE__, MODULE, (variable), (int) (count), (int) (size) })

// Bytes may differ from the dimensions stated (an array that grows by one slot is enlarged ahead). 0 bytes give a block
// of one byte, so none always means a failure. The caller owns the block.
void *Memory_Malloc  (Window window, Memory_Site site, size_t bytes);
void *Memory_Calloc  (Window window, Memory_Site site, size_t bytes);               // Zeroed.
void *Memory_Realloc (Window window, Memory_Site site, void *block, size_t bytes);  // On failure the old block stays.
char *Memory_Strdup  (Window window, Memory_Site site, const char *text);           // "dim" is not part of its message.
void *Memory_Text    (Window window, Memory_Site site, size_t bytes);               // Room for a text, reported as strdup.
void *Memory_Try     (size_t bytes);                // Reports nothing: for a caller that has words of its own.
void  Memory_Report  (Window window, const Memory_Site *site, const char *call);    // What a failed call by this name says.
void  Memory_Free    (void *block);                                                 // Accepts none.

// --- for tests -------------------------------------------------------------

void Memory_Fail_At (long n);       // The n-th allocation from now fails (1 is the next). 0: none does.
void Memory_Fail_From (long n, long count);     // The n-th and those that follow, count of them; 0: all.
int  Memory_Failed (void);          // How many of the failures asked for have happened.
long Memory_Live (void);            // Blocks allocated and not freed.
