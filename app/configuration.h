// The configuration file: lines of the form command = value that set trace level, scratch directory, audit file name,
// tables directory, overriding definitions and the tags that a comparison of two files leaves out.
#pragma once

static const int CONFIGURATION_LINE_LENGTH = 255; // Characters of a line, its line feed among them.

// Reads the file "path" + "name" into Program.settings, Log and the definition tables. Its skipped tags replace those of
// the file read before it; the other settings stay unless the file sets them. 1 when it was read to its end. 0 when there
// is no such file (or no path), it can't be read, or memory ran out; what was set before that stays.
int Configuration_Read (const char *path, const char *name);

// 1 when there is something by that name.
int Configuration_Exists (const char *path, const char *name);

// Releases the skipped tags.
void Configuration_Free (void);
