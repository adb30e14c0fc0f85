// The definition tables: plain text files that say which attributes a module has, which macros they include, and what
// private attributes mean. A line becomes an attribute with type, VR, description, default value and marks:
//
//     ; comment
//     (0010,0010) type=2 desc="Patient's Name"
//     =(0010,0040) type=2 VR=CS "O"                        marks: ! forced, = default, - deleted, + append, in this order
//     (0010,1002) type=3 VR=SQ
//     >(0010,0020) type=1                                  ">" for each sequence around it
//     >include Issuer_of_Patient_ID
//
// Everything here works on caches that the whole program shares. DICOM_Module_Dir_Set, DICOM_Module_Include_Get,
// DICOM_Module_Include_Free and those of private attributes enter the protected region themselves; who calls
// DICOM_Module_Read_File or DICOM_Module_Assemble is in it already.
#pragma once

#include "attribute/sequence_cursor.h"
#include "util/file.h"

static const int DEFINITION_LINE_SIZE    = 2048;    // Bytes of a line with its zero.
static const int DEFINITION_KEY_SIZE     = 256;     // A private creator as a file name, with its zero.
static const int DEFINITION_NUMBERS_SIZE = 1048;    // Bytes of numbers in one value.
static const int DEFINITION_INCLUDES     = 10240;   // Include files of one assembly.
static const int DEFINITION_RECORDS      = 250000;  // Attributes read for one list, macros counted at each use: includes
                                                    // of includes could ask for more than any memory holds.

// --- directory -------------------------------------------------------------

// Replaces the tables directory by a copy of path, which must end with a separator; an empty path clears it, none changes
// nothing. The current directory (owned here, none when cleared), or none after the memory message.
const char *DICOM_Module_Dir_Set (const char *path);

// --- reading ---------------------------------------------------------------

// One line into buffer (DEFINITION_LINE_SIZE bytes), without its line end. 1, or 0 at the end of the file or after a
// warning. comment, when given, receives where the text behind the first ";" begins in buffer, or none.
int DICOM_Module_Read_Line (Window window, File *file, int line_number, char *buffer, const char *label, char **comment);

// Appends the attributes of an open table to the flat list. label names the file in messages. 1, also when lines were
// faulty; 0 when memory ran out (what was appended stays).
int DICOM_Module_Read_File (Window window, const Settings *settings, File *file, const char *label, Attribute **list);

// The attributes of an include file, read once until the cache is emptied; owned by the cache. None when there are none.
// Blanks in name stand for "_". label and line say in messages who asks.
Attribute *DICOM_Module_Include_Get (Window window, const Settings *settings, const char *name, const char *label,
                                     int line);

// Forgets the include files. An assembly and a private look-up do so at their end.
void DICOM_Module_Include_Free (Window window);

// Gives the attribute the value that text says, by its VR, and its length. 1, also for an empty text; 0 when the VR has
// no text form, the numbers are too many, or memory ran out: then it has no value.
int DICOM_Module_Value_Set (Window window, Attribute *attribute, const char *text);

// --- assembling ------------------------------------------------------------

// Reads all tables of the modality into the list at place: flat, nested, cleaned, sorted, copied. 1; 0 without a
// directory, without a module file, without any attribute, or when memory ran out.
int DICOM_Module_Assemble (Window window, const Settings *settings, const char *modality, Attribute **place);

// --- private attributes ----------------------------------------------------

// Completes a private attribute from the table of its creator. 1 when a definition was found and applied, else 0, or -1 when
// there is no table: then it isn't found for any other attribute of this creator either.
int DICOM_Module_Read_Private (Window window, const Settings *settings, const char *creator, Attribute *attribute);

// The end of a pass over the attributes of a file: a creator that is asked for the first time is looked for in the
// directory as it is then, in tables as they are then. Up to here what the directory has may be taken from its list, and a
// table that has been read without a word isn't read again.
void DICOM_Module_Private_Look_Anew (void);

// Forgets the private tables (the program keeps them until it ends).
void DICOM_Module_Private_Free (Window window);
