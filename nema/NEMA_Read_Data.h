// Low-level reads of a DICOM stream, from a file or from memory, and numbers in the byte order of a reading mode.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "attribute/attribute.h"
#include "attribute/settings.h"
#include "platform/window.h"
#include "util/file.h"

// --- source ----------------------------------------------------------------

enum { NEMA_FILE = 1, NEMA_MEMORY = 2 };    // Any other kind but 1 is memory, too.

struct NEMA_Source {
    int             kind;
    const char     *name;       // For messages; borrowed. None is "memory" there.
    File           *file;       // NEMA_FILE: borrowed. None after a failed move has closed it, and in memory.
    const uint8_t  *base;       // NEMA_MEMORY: borrowed bytes; none in a file,
    uint32_t        size;       // how many there are,
    uint32_t        position;   // and where the next read starts.
    const Settings *settings;   // Borrowed; none means silent.
};

// --- numbers ---------------------------------------------------------------

// The number stored at bytes, which need not be aligned, in the byte order of mode.
uint16_t Swap_Short  (uint8_t mode, const uint8_t *bytes);
uint32_t Swap_Long   (uint8_t mode, const uint8_t *bytes);
float    Swap_Float  (uint8_t mode, const uint8_t *bytes);
double   Swap_Double (uint8_t mode, const uint8_t *bytes);

// --- reading ---------------------------------------------------------------

// Each advances the source by what it read and returns 1, or 0 after a report. Memory is never read past its size: that
// is the end of the data, reported like a file's.
int NEMA_Read_Bytes (Window window, NEMA_Source *source, uint8_t mode, size_t count, void *destination);    // Raw.
int NEMA_Read_Short (Window window, NEMA_Source *source, uint8_t mode, uint16_t *value);
int NEMA_Read_Long  (Window window, NEMA_Source *source, uint8_t mode, uint32_t *value);

// Reads a value of length bytes (1 or more) into target->data, in a block of target's own; a large one of a file is
// mapped instead. With MODE_SWAB the bytes of every 16-bit unit are exchanged. 1, or 0 after a report.
int NEMA_Read_Buffer (Window window, NEMA_Source *source, uint8_t mode, int32_t length, Attribute *target);

static const int32_t NEMA_MAP_LENGTH = FILE_BUFFER_SIZE;    // From this length on a value is mapped.

// 1 when the source has count more bytes. Else 0, with the report and the position of a read that came to the end, so
// that a length is checked before memory is asked for it.
int NEMA_Check_Left (Window window, NEMA_Source *source, int64_t count);

// Up to count bytes without any report: how many there were (fewer only at the end), or -1.
int64_t NEMA_Read_Some (NEMA_Source *source, void *destination, size_t count);

// For readers of many headers: the next count bytes when the source has them at hand, else none. The position stays;
// NEMA_Advance moves behind those that were used.
inline const uint8_t *NEMA_View (const NEMA_Source *source, size_t count) {
    if (source->file) return File_View (source->file, count);
    if (!source->base || source->position > source->size || source->size - source->position < count) return nullptr;
    return source->base + source->position;
}
inline void NEMA_Advance (NEMA_Source *source, int count) {
    if (source->file) source->file->position += count;
    else source->position += static_cast<uint32_t> (count);
}

// --- position --------------------------------------------------------------

inline int64_t NEMA_Tell (const NEMA_Source *source) {              // -1 on failure.
    if (source->file) return File_Tell (source->file);
    return source->kind == NEMA_FILE ? -1 : static_cast<int64_t> (source->position);
}
int     NEMA_Seek (NEMA_Source *source, int64_t position);          // 1 or 0. Reports nothing and closes nothing.

// A move without which the reading can't go on. 1, or 0 after a report that names the caller's module and line; then the
// file is closed and every later read of the source fails.
int NEMA_Move (Window window, NEMA_Source *source, int64_t position, const char *module, int line);

// What messages call the source.
const char *NEMA_Source_Name (const NEMA_Source *source);
