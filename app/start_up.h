// Start-up: identity, log, paths, then batch mode or the window. Program_Run (platform/system.h) is its entry.
#pragma once

#include "attribute/settings.h"

#define PROGRAM_NAME        "Tagwright"
#define PROGRAM_COMMAND     "tagwright"
#define PROGRAM_VERSION     "2.1 rev-2"
#define PROGRAM_IDENTIFIER  "TAGWRIGHT 21000020"
#define PROGRAM_DATE        "15/06/2016"
#define PROGRAM_TITLE       "Kestrelbay's Tagwright 2.1 rev-2"
#define PROGRAM_VENDOR      "Kestrelbay"
#define PROGRAM_SETTINGS    "Tagwright.ini"

// Owned texts, each ending in a separator, or none. The tables directory belongs to tables/definition_files.h.
struct Application {
    char    *Inst_Path;             // Install directory.
    char    *Application_Path;      // The user's own directory.
    Settings settings;              // The skipped tags are owned; Configuration_Free releases them.
};

extern Application Program;
