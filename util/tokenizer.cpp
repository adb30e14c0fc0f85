// Splitting texts into words. Each thread has a place in a table; a thread that comes when all are taken gets the place
// that was given away longest ago, which ends the other thread's scan.
#include "util/tokenizer.h"

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "platform/system.h"
#include "util/mutex_access.h"

struct Tokenizer_Slot {
    int      taken;
    uint64_t thread;
    char    *text;     // Borrowed from the caller who started the scan.
    size_t   position; // Where the next token is looked for.
};

static Tokenizer_Slot slots[TOKENIZER_SLOTS];
static unsigned       next_slot;

static Tokenizer_Slot *Slot_Of_Thread (void) {
    uint64_t thread = System_Thread_Identifier ();
    for (Tokenizer_Slot &slot : slots)
        if (slot.taken && slot.thread == thread) return &slot;
    Tokenizer_Slot *slot = &slots[next_slot];
    next_slot            = (next_slot + 1) % TOKENIZER_SLOTS;
    *slot                = {1, thread, nullptr, 0};
    return slot;
}

static int Is_Delimiter (char c, const char *delimiters) { return c && strchr (delimiters, c); }

// From the position to the next delimiter outside double quotes; the zero put there ends the token.
static char *Scan (Tokenizer_Slot *slot, const char *delimiters) {
    int   quoted = 0;
    char *start  = slot->text + slot->position;
    while (Is_Delimiter (*start, delimiters)) start++;
    char *end = start;
    for (; *end && (quoted || !Is_Delimiter (*end, delimiters)); end++)
        if (*end == '"') quoted = !quoted;
    slot->position = (size_t)(end - slot->text) + (*end ? 1 : 0);
    *end           = 0;
    return end > start ? start : nullptr;
}

char *Tokenizer_Next (char *text, const char *delimiters) {
    Mutex_Access_Start ();
    Tokenizer_Slot *slot = Slot_Of_Thread ();
    if (text) {
        slot->text     = text;
        slot->position = 0;
    }
    char *token = slot->text ? Scan (slot, delimiters) : nullptr;
    Mutex_Access_Stop ();
    return token;
}

char *Text_Unquote (char *text) {
    size_t length = strlen (text);
    if (length > 1024 || text[0] != '"') return text;
    memmove (text, text + 1, length--);
    if (length && text[length - 1] == '"') text[length - 1] = 0;
    return text;
}
