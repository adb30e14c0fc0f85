// A file read from front to back, with few system calls: reads go through one buffer, the position is arithmetic. Knows
// nothing of what is in it.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "platform/system.h"

// Bytes read at once; from as many on values are mapped, and compared piece by piece. The fuzzer's inputs are small, and so
// is this where they run, so that they have all its borders in them.
#ifdef TAGWRIGHT_SMALL_PIECES
static const size_t FILE_BUFFER_SIZE = 256;
#else
static const size_t FILE_BUFFER_SIZE = 65536;
#endif

struct File {
    System_File *system;        // Owned.
    int64_t      size;          // Bytes, when it was opened.
    int64_t      position;      // Of the next byte read.
    int64_t      buffer_start;  // Position of the first byte in buffer.
    size_t       buffer_count;  // Bytes in buffer.
    uint8_t      buffer[FILE_BUFFER_SIZE];
};

File   *File_Open (const char *name);                           // None on failure; the system's last error says why.
void    File_Close (File *file);                                // Accepts none.
int     File_Seek (File *file, int64_t position);               // 1, or 0 for a position below 0.
int64_t File_Read (File *file, void *destination, size_t count);// Bytes read (fewer than count only at the end), or -1.
int     File_Map (File *file, size_t length, System_Mapping *mapping);  // The next length bytes, and moves behind them. 1 or 0.

// For readers of many small fields: File_Read of bytes that the buffer holds whole, without a call. 1, or 0 when they
// have to come through File_Read; then nothing has happened.
extern int File_Watched;    // 1 while a failure made by a test is awaited: then everything goes through the functions.

int64_t File_Tell_Watched (const File *file);
inline int64_t File_Tell (const File *file) {    // The position, or -1 on failure.
    return File_Watched ? File_Tell_Watched (file) : file->position;
}

// The next count bytes when the buffer holds them whole, else none; the position stays.
inline const uint8_t *File_View (const File *file, size_t count) {
    uint64_t offset = static_cast<uint64_t> (file->position - file->buffer_start); // Large when it stands before it.
    if (File_Watched || offset > file->buffer_count || file->buffer_count - offset < count) return nullptr;
    return file->buffer + offset;
}

inline int File_Take (File *file, void *destination, size_t count) {
    const uint8_t *bytes = File_View (file, count);
    if (!bytes) return 0;
    memcpy (destination, bytes, count);
    file->position += static_cast<int64_t> (count);
    return 1;
}

// --- for tests -------------------------------------------------------------

enum File_Operation { FILE_OPEN, FILE_SEEK, FILE_TELL, FILE_READ, FILE_MAP, FILE_OPERATIONS };

// The n-th such operation from now (1 is the next) fails with this error code. n 0: none does. A failing FILE_READ of
// error 0 is not an error but the end of the file after half of the bytes asked for.
void File_Fail_At (File_Operation operation, long n, unsigned error);
