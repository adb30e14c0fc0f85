// What the sources of the definition tables share. Nobody else includes it.
#pragma once

#include "tables/definition_files.h"
#include "util/my_error_fct.h"

// Holds "DICOM_Attributes_", what a line can name, and ".txt".
static const size_t DEFINITION_NAME_SIZE = DEFINITION_LINE_SIZE + 32;

// --- messages --------------------------------------------------------------

// A detail line stands below its header; a parameter is blue.
#define DEFINITION_WARNING EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK
#define DEFINITION_DETAIL "\t\t" COLOUR_BLACK
#define DEFINITION_BLUE(format) COLOUR_BLUE format COLOUR_BLACK

// The header "WARNING:", what, label, " line:", line number.
void Definition_Warn (Window window, const char *what, const char *label, int line_number);

unsigned Definition_Warnings (void);    // How many warnings tables have given so far.

// --- files -----------------------------------------------------------------

const char *Definition_Directory (void);            // None when it isn't set.
File       *Definition_Open (const char *name);     // A table by its file name, or none.

// Fills a format such as "DICOM_Include_%s.txt" into result (DEFINITION_NAME_SIZE bytes). 1, or 0 when the name is longer
// than any file's; then it is cut.
int Definition_Name (char *result, const char *format, const char *name);

// As DICOM_Module_Read_File. records counts what is read for one list, over all its files; it starts at 0.
int Definition_Read (Window window, const Settings *settings, File *file, const char *label, Attribute **list,
                     int *records);

void Definition_Includes_Empty (Window window);     // As DICOM_Module_Include_Free, inside of the region.
void Definition_Private_Look_Anew (void);           // As DICOM_Module_Private_Look_Anew, inside of the region.

// --- lines and values ------------------------------------------------------

// As Text_Trim, but a line stays where it is: it is trimmed again and again. The first character that isn't blank.
char *Definition_Trim (char *text);

enum Value_Result { VALUE_REFUSED, VALUE_SET, VALUE_NO_MEMORY };

Value_Result Definition_Value_Set (Window window, Attribute *attribute, const char *text);  // DICOM_Module_Value_Set
