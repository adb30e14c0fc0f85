// The user's own definition tables: copied from the installed ones at the first start, then theirs to edit. Nothing
// is ever copied over them; that the installed ones are of a later edition is only told.
#pragma once

#define TABLES_DIRECTORY "DICOM Tables"

// Copies the tables below install_path (which may be none) when the tables directory doesn't exist, and compares the
// versions of the two. What fails is reported, and the program goes on with the tables that are there.
void Tables_Provide (const char *install_path);
