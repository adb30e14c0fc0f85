// The definition tables: plain text files that say which attributes a module has, which macros they include, and what
// private attributes mean. A line becomes an attribute with type, VR, description, default value and marks.
#pragma once

#include "attribute/sequence_cursor.h"
#include "util/file.h"

static const int DEFINITION_LINE_SIZE    = 2048;    // Bytes of a line with its zero.
static const int DEFINITION_KEY_SIZE     = 256;     // A private creator as a file name.
static const int DEFINITION_NUMBERS_SIZE = 1048;    // Bytes of numbers in one value.
static const int DEFINITION_INCLUDES     = 10240;   // Include files of one assembly.

// --- directory -------------------------------------------------------------

// Replaces the tables directory by a copy of path, which must end with a separator; an empty path clears it, none changes
// nothing. The current directory (owned here, none when cleared), or none after the memory message.
const char *DICOM_Module_Dir_Set (const char *path);

// --- reading ---------------------------------------------------------------

// One line into buffer (DEFINITION_LINE_SIZE bytes). 1, or 0 at the end of the file or after a warning. comment, when
// given, receives where a ";" comment begins, or none.
int DICOM_Module_Read_Line (Window window, File *file, int line_number, char *buffer, const char *label, char **comment);

// Appends the attributes of an open table to the flat list. label names the file in messages. 1; 0 when memory ran out.
int DICOM_Module_Read_File (Window window, const Settings *settings, File *file, const char *label, Attribute **list);

// The attributes of an include file, read once for an assembly; owned by the cache. None when there are none.
Attribute *DICOM_Module_Include_Get (Window window, const Settings *settings, const char *name, const char *label,
                                     int line);

// Gives the attribute the value that text says, by its VR. 1, also for an empty text; 0 when the VR has no text form, the
// numbers are too many, or memory ran out.
int DICOM_Module_Value_Set (Window window, Attribute *attribute, const char *text);

// --- assembling ------------------------------------------------------------

// Reads all tables of the modality into the list at place: flat, nested, cleaned, sorted, copied. 1 or 0.
int DICOM_Module_Assemble (Window window, const Settings *settings, const char *modality, Attribute **place);

// --- private attributes ----------------------------------------------------

// Completes a private attribute from the table of its creator. 1 when a definition was found and applied.
int DICOM_Module_Read_Private (Window window, const Settings *settings, const char *creator, Attribute *attribute);

// Forgets the private tables (the program keeps them until it ends).
void DICOM_Module_Private_Free (Window window);
