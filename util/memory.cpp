// Thin layer over the C allocator. One counter lets tests fail any allocation, one counts the living blocks.
#include "util/memory.h"

#include <stdlib.h>
#include <string.h>

#include "util/my_error_fct.h"

static long fail_countdown;
static int  fail_done;
static long live;

static int Fails_Now (void) {
    if (fail_countdown <= 0 || --fail_countdown > 0) return 0;
    fail_done = 1;
    return 1;
}

static void Report (Window window, const Memory_Site *site, const char *call) {
    Log_Message (window, LOG_ERROR, "line %-4d of %s \nmemory error in %s (var=%s, dim=%dx%d)", site->line,
                 site->module, call, site->variable, site->count, site->size);
}

void *Memory_Try (size_t bytes) {
    void *block = Fails_Now () ? nullptr : malloc (bytes ? bytes : 1);
    if (block) live++;
    return block;
}

void *Memory_Malloc (Window window, Memory_Site site, size_t bytes) {
    void *block = Memory_Try (bytes);
    if (!block) Report (window, &site, "malloc");
    return block;
}

void *Memory_Calloc (Window window, Memory_Site site, size_t bytes) {
    void *block = Fails_Now () ? nullptr : calloc (1, bytes ? bytes : 1);
    if (block) live++;
    else Report (window, &site, "calloc");
    return block;
}

void *Memory_Realloc (Window window, Memory_Site site, void *block, size_t bytes) {
    void *larger = Fails_Now () ? nullptr : realloc (block, bytes ? bytes : 1);
    if (!larger) Report (window, &site, "realloc");
    else if (!block) live++;
    return larger;
}

void *Memory_Text (Window window, Memory_Site site, size_t bytes) {
    void *block = Memory_Try (bytes);
    if (!block)
        Log_Message (window, LOG_ERROR, "line %-4d of %s \nmemory error in strdup (var=%s)", site.line, site.module,
                     site.variable);
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
    free (block);
}

void Memory_Fail_At (long n) {
    fail_countdown = n;
    fail_done      = 0;
}

int Memory_Failed (void) { return fail_done; }

long Memory_Live (void) { return live; }
