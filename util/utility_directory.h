// Directories by path.
#pragma once

#include "platform/window.h"

// 1 when path is a bare drive (a letter and a colon, perhaps a separator) or an existing directory, with or without
// separator at its end.
int Directory_Check (const char *path);

// Makes the directory with all its missing levels. 1 when it is there afterwards. A path longer than the system's limit
// is reported and gives 0.
int Directory_Make (Window window, const char *path);
