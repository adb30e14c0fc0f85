// Which tables of private creators a directory has. A file may name 100,000 creators that have none, and each of them asks
// for every beginning of its name: looking at this list instead of trying to open each takes a hundredth of the time.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "platform/window.h"

// Zero bytes are an empty list.
struct Private_Names {
    uint8_t *bytes; // Owned. Of each name: length, 1 when that is all of it, and so many bytes, in capitals.
    size_t   size;
    size_t   room;
};

// Lists the names in an empty list. directory ends with a separator. 1; 0 when it doesn't, when it can't be read, or when
// memory ran out: then the list is empty, and nothing is known.
int Private_Names_List (Window window, Private_Names *names, const char *directory);

// Sets may[n] (of DEFINITION_KEY_SIZE) to 1 when there may be a table by the first n bytes of key, else to 0. key is in
// capitals. A name with other characters than those of ASCII may be any that begins in the same way: what the file system
// holds to be the same isn't known.
void Private_Names_Mark (const Private_Names *names, const char *key, uint8_t *may);

void Private_Names_Free (Private_Names *names);
