// Which definition belongs to a file, and the definitions assembled so far.
#pragma once

#include "attribute/sequence_cursor.h"

static const int MODALITY_LIMIT = 100;      // Names that are kept; one definition less is ever built.

// The modality name for a list by its SOP Class UID; "OT_Image" for any other or none. Never none; static text.
const char *DICOM_Modality_Name (Window window, Attribute *list);

// The definition of that name, assembled at the first request and owned by the cache, or none. Enters the protected region.
Attribute *DICOM_Module_Read (Window window, const Settings *settings, const char *name);

void DICOM_Module_Free (Window window);     // Empties the cache.

// A single attributes file that is read first for every modality; "" or none for no such file. Copied.
// 1, or 0 when the path is too long; then nothing changes.
int DICOM_Module_Override_Set (const char *path);
