// Readable names of well-known UIDs.
#pragma once

// The name, valid for the life of the process, or none. The first row with that UID counts.
const char *UID_Name (const char *uid);
