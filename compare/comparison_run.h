// One comparison from two file names to a count: reads both sides, merges them, walks them, reports. One run at a time;
// the state of the last one is kept for the view.
#pragma once

#include "attribute/sequence_cursor.h"

static const int COMPARISON_FAILED = -3;

struct Comparison {
    char      *Name_File_A;     // Owned; none for an empty name.
    char      *Name_File_B;
    Attribute *merged;          // Owned: every tag of both sides with its difference code. data is a C text, or none.
};

extern Comparison Comparison_Last;

// Compares file a with file b, or with its modality description when b is empty. batch is 1 from the command line: no
// definition, no merged list, no rows. The number of differences, or COMPARISON_FAILED.
int Comparison_Start (Window window, const Settings *settings, const char *name_a, const char *name_b, int batch);

// The run without the lines around it. The number of differences, 0 on a memory failure.
int Comparison_Run (Window window, const Settings *settings, const char *name_a, const char *name_b, int batch);

// The definition for a file's list, which gives the list's attributes their types and missing VRs. Owned by the cache
// of tables/modality.h. None after a warning.
Attribute *Definition_Read_List (Window window, SequenceCursor *cursor, Attribute *list);

// Reads a file and assembles the definition of its SOP class, for the messages and the trace that this leaves: the check
// of edited tables from the command line. Nothing is compared.
void Comparison_Check_Tables (Window window, const Settings *settings, const char *name);

void Comparison_Free (Window window);   // Releases what the last run left.
