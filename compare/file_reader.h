// A DICOM file read into an attribute list, phase by phase: elements in stream order, nesting, checks, completion.
#pragma once

#include "attribute/sequence_cursor.h"

// The nested list of the file, owned by the caller (delete with TAG_ANY), or none.
Attribute *File_Read_List (Window window, SequenceCursor *cursor, const char *name);

// The elements as they stand in the file; perhaps empty or partial. None for an empty name or a file that can't be read.
Attribute *File_Read_Elements (Window window, SequenceCursor *cursor, const char *name);

// Releases a whole list and leaves none behind.
void List_Delete (Window window, SequenceCursor *cursor, Attribute **list);
