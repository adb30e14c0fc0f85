// The reads under the element reader and the file reader. Everything is copied byte by byte: values of a stream stand at
// any address. An error number is taken before the first line of a report, since writing the log may change it.
#include "nema/NEMA_Read_Data.h"

#include <string.h>

#include "attribute/value.h"
#include "util/bytes.h"
#include "util/error_text.h"
#include "util/my_error_fct.h"

static const char *const MODULE = "NEMA_Read_Data";

const char *NEMA_Source_Name (const NEMA_Source *source) { return source->name ? source->name : "memory"; }

// --- numbers ---------------------------------------------------------------

uint16_t Swap_Short (uint8_t mode, const uint8_t *bytes) { return Bytes_Swap_From_Short (mode, bytes); }

uint32_t Swap_Long (uint8_t mode, const uint8_t *bytes) { return Bytes_Swap_From_Long (mode, bytes); }

float Swap_Float (uint8_t mode, const uint8_t *bytes) {
    uint32_t bits = Bytes_Swap_From_Long (mode, bytes);
    float    number;
    memcpy (&number, &bits, sizeof number);
    return number;
}

double Swap_Double (uint8_t mode, const uint8_t *bytes) {
    uint8_t  ordered[8];
    uint64_t bits = 0;
    double   number;
    Bytes_Order (mode, bytes, ordered, 8);
    for (int i = 7; i >= 0; i--) bits = bits << 8 | ordered[i];
    memcpy (&number, &bits, sizeof number);
    return number;
}

// --- reports ---------------------------------------------------------------

static int Report_Error (Window window, const NEMA_Source *source, int line) {
    unsigned error = System_Last_Error ();
    Log_Message (window, LOG_TRACE1, "file:%s line:%d", MODULE, line);
    Log_Message (window, LOG_WARNING, "Error reading file %s", NEMA_Source_Name (source));
    System_Last_Error_Set (error);
    Log_Message (window, LOG_WARNING, "%s", Error_Text (0));
    return 0;
}

static int Report_End (Window window, const NEMA_Source *source, int line, int64_t obtained, int64_t wanted) {
    Log_Message (window, LOG_TRACE1, "file:%s line:%d", MODULE, line);
    Log_Message (window, LOG_WARNING, "End of File while reading: (%d /vs/ %d) (%s)", static_cast<int> (obtained),
                 static_cast<int> (wanted), NEMA_Source_Name (source));
    return 0;
}

// --- position --------------------------------------------------------------

int NEMA_Seek (NEMA_Source *source, int64_t position) {
    if (source->kind == NEMA_FILE) return source->file && File_Seek (source->file, position);
    if (position < 0 || position > UINT32_MAX) return 0;
    source->position = static_cast<uint32_t> (position);
    return 1;
}

int NEMA_Move (Window window, NEMA_Source *source, int64_t position, const char *module, int line) {
    if (NEMA_Seek (source, position)) return 1;

    unsigned error = System_Last_Error ();
    if (source->kind == NEMA_FILE) {
        File_Close (source->file);
        source->file = nullptr;
    }
    Log_Message (window, LOG_TRACE1, "file:%s line:%d", module, line);
    Log_Message (window, LOG_WARNING, EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " while seeking pos %ld",
                 static_cast<long> (position));
    System_Last_Error_Set (error);
    Log_Message (window, LOG_WARNING, "%s", Error_Text (0));
    Log_Message (window, LOG_WARNING, "file: (%s)", NEMA_Source_Name (source));
    return 0;
}

// --- reading ---------------------------------------------------------------

static int64_t Left (const NEMA_Source *source) {
    int64_t size     = source->base ? source->size : 0;
    int64_t position = source->position;
    if (source->kind == NEMA_FILE) {
        size     = source->file ? source->file->size : 0;
        position = source->file ? source->file->position : 0;
    }
    return position < size ? size - position : 0;
}

static int64_t Read_Memory (NEMA_Source *source, void *destination, size_t count) {
    size_t left = static_cast<size_t> (Left (source));
    if (count > left) count = left;
    if (count) memcpy (destination, source->base + source->position, count);
    source->position += static_cast<uint32_t> (count);
    return static_cast<int64_t> (count);
}

int64_t NEMA_Read_Some (NEMA_Source *source, void *destination, size_t count) {
    if (source->kind != NEMA_FILE) return Read_Memory (source, destination, count);
    return source->file ? File_Read (source->file, destination, count) : -1;
}

// Called for every field of every header: what the file's buffer holds is taken without a call.
static inline int Read (Window window, NEMA_Source *source, size_t count, void *destination, int line) {
    if (source->kind == NEMA_FILE && source->file && File_Take (source->file, destination, count)) return 1;
    int64_t obtained = NEMA_Read_Some (source, destination, count);
    if (obtained < 0) return Report_Error (window, source, line);
    if (static_cast<size_t> (obtained) < count)
        return Report_End (window, source, line, obtained, static_cast<int64_t> (count));
    return 1;
}

int NEMA_Read_Bytes (Window window, NEMA_Source *source, uint8_t, size_t count, void *destination) {
    return Read (window, source, count, destination, __LINE__);
}

int NEMA_Read_Short (Window window, NEMA_Source *source, uint8_t mode, uint16_t *value) {
    uint8_t bytes[2];
    if (!Read (window, source, sizeof bytes, bytes, __LINE__)) return 0;
    *value = Swap_Short (mode, bytes);
    return 1;
}

int NEMA_Read_Long (Window window, NEMA_Source *source, uint8_t mode, uint32_t *value) {
    uint8_t bytes[4];
    if (!Read (window, source, sizeof bytes, bytes, __LINE__)) return 0;
    *value = Swap_Long (mode, bytes);
    return 1;
}

int NEMA_Check_Left (Window window, NEMA_Source *source, int64_t count) {
    int64_t left = Left (source);
    if (left >= count) return 1;
    if (source->kind == NEMA_FILE && !source->file) return Report_Error (window, source, __LINE__);

    int64_t position = NEMA_Tell (source);
    if (position >= 0) NEMA_Seek (source, position + left);
    return Report_End (window, source, __LINE__, left, count);
}

static void Exchange_Pairs (uint8_t *bytes, int32_t length) {
    for (int32_t i = 0; i + 1 < length; i += 2) {
        uint8_t first = bytes[i];
        bytes[i]      = bytes[i + 1];
        bytes[i + 1]  = first;
    }
}

static int Is_Mapped_Kind (const NEMA_Source *source, uint8_t mode, int32_t length) {
    return source->kind == NEMA_FILE && length >= NEMA_MAP_LENGTH && !(mode & MODE_SWAB);
}

int NEMA_Read_Buffer (Window window, NEMA_Source *source, uint8_t mode, int32_t length, Attribute *target) {
    if (length < 1) return 0;
    if (!NEMA_Check_Left (window, source, length)) return 0;
    if (Is_Mapped_Kind (source, mode, length) && Value_Map (window, target, source->file, length)) return 1;

    if (!Value_New_In_Room (target, length) && !Value_New (window, HERE ("buf", length, 1), target, length)) return 0;
    if (!Read (window, source, static_cast<size_t> (length), target->data, __LINE__)) {
        Value_Release (target);
        return 0;
    }
    if (mode & MODE_SWAB) Exchange_Pairs (target->data, length);
    return 1;
}
