// Where the program was installed.
#pragma once

#include <stddef.h>

#include "platform/system.h"
#include "platform/window.h"

// How keys are read; none stands for the system's registry. Tests bring their own.
struct Registry_Access {
    System_Registry_Key root;
    unsigned (*open)  (System_Registry_Key parent, const char *name, System_Registry_Key *key);
    unsigned (*close) (System_Registry_Key key);
    unsigned (*read)  (System_Registry_Key key, const char *value, char *result, size_t size);
};

// Writes the installation directory, ending in a separator, into result (size bytes). 1 or 0; what failed is reported.
// Where the system has no registry, the path is the one that System_Install_Path finds.
int Registry_Get_Path (Window window, const char *program, char *result, size_t size);

// The registry's part of it: "App Paths", value "Path", else the default value's directory.
int Registry_Read_Path (Window window, const Registry_Access *access, const char *program, char *result, size_t size);
