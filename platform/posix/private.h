// What the sources of this folder share.
#pragma once

#include <stddef.h>

// The folder of the running program, with its separator. 1, or 0 when it can't be told or doesn't fit.
int System_Program_Folder (char *result, size_t size);
