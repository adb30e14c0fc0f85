// What the targets share: a directory for the files that they feed, settings out of a byte, and a silent log.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>

#include "attribute/settings.h"

// The bytes that a target hasn't taken yet.
struct Fuzz_Bytes {
    const uint8_t *next;
    size_t         left;
};

uint8_t Fuzz_Byte (Fuzz_Bytes *bytes);                          // 0 when none is left.
Fuzz_Bytes Fuzz_Take (Fuzz_Bytes *bytes, size_t count);         // The next ones, fewer at the end.

// A folder of the process's own in the directory for temporary files (TMPDIR), removed when the process ends. Ends in a
// separator. It has tables for a comparison in "tables" and nothing else.
const std::string &Fuzz_Directory ();
const std::string &Fuzz_Tables ();

void Fuzz_Write (const std::string &path, Fuzz_Bytes bytes);    // Replaces a file; ends the process when that fails.
void Fuzz_Fail (const char *format, const char *what);          // Tells and ends the process.

// Sets trace level and log by a byte (fuzz.h) and returns the settings that it asks for.
Settings Fuzz_Settings (uint8_t choice);
static const uint8_t FUZZ_BATCH = 0x08;
