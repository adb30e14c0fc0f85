// Both formats are read without looking back: the header byte by byte through the file's buffer, so that one without an
// end costs time only, and the pixels straight into their place. What would surprise: an IGB file is opened twice, since
// its header can be asked for alone.
#include "util/utility_IGB.h"

#include <string.h>

#include "util/error_text.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "utility_IGB";

// --- reports ---------------------------------------------------------------

enum Reason { WITHOUT_REASON, WITH_REASON };

static const int NO_LINE = 0;

// Writing a line to a log file may change the system's last error; the reason and the caller want the one from before.
static void Report (const char *function, int line, const char *message, const char *path, Reason reason) {
    unsigned error = System_Last_Error ();
    Log_Message (nullptr, LOG_ERRLOG, "WARNING: in %s()", function);
    if (line != NO_LINE) Log_Message (nullptr, LOG_ERRLOG, "File:%s Line:%d", MODULE, line);
    Log_Message (nullptr, LOG_ERRLOG, message, path);
    System_Last_Error_Set (error);
    if (reason == WITH_REASON) Log_Message (nullptr, LOG_ERRLOG, "%s", Error_Text (0));
    System_Last_Error_Set (error);
}

// A file that is open has no error yet: one that is merely too short has none when it is reported.
static File *Open (const char *path) {
    File *file = File_Open (path);
    if (file) System_Last_Error_Set (0);
    return file;
}

// 1, or 0: then the last error says why. Some systems count the end of a file as an error, even when only the buffer
// reached it; here it is none.
static int Read (File *file, void *bytes, size_t count) {
    int64_t got = File_Read (file, bytes, count);
    if (got >= 0) System_Last_Error_Set (0);
    return got == static_cast<int64_t> (count);
}

// --- lines of an IGB header ------------------------------------------------

static const int LINE_SIZE   = 80; // Bytes of a line with the one that ends it; here, with a terminating zero.
static const int LINES_FIXED = 8;  // Lines of a header besides those that "sup" counts.

struct Header_Reading {
    File   *file;
    Image  *image;
    char    line[LINE_SIZE];
    int     length;
    int64_t line_count; // Lines read.
    int64_t line_limit; // Lines of the header, when "sup" has told.
};

enum Line_End { LINE_FEED, LINE_FORM_FEED, LINE_FILE_END, LINE_TOO_LONG, LINE_UNREADABLE };

// The next byte, or one of these.
static const int BYTE_END    = -1;
static const int BYTE_FAILED = -2;

static int Read_Byte (File *file) {
    uint8_t byte;
    if (File_Take (file, &byte, 1)) return byte;
    if (Read (file, &byte, 1)) return byte;
    return System_Last_Error () ? BYTE_FAILED : BYTE_END;
}

static Line_End Read_Line (Header_Reading *reading) {
    reading->length = 0;
    for (;;) {
        int byte = Read_Byte (reading->file);
        switch (byte) {
        case '\r': continue;
        case '\n': return LINE_FEED;
        case '\f': return LINE_FORM_FEED;
        case BYTE_END: return LINE_FILE_END;
        case BYTE_FAILED: return LINE_UNREADABLE;
        }
        if (reading->length == LINE_SIZE - 1) return LINE_TOO_LONG;
        reading->line[reading->length++] = static_cast<char> (byte);
    }
}

// --- tokens of a line ------------------------------------------------------

struct Pixel_Type {
    const char *start; // Of its name; what follows is not looked at.
    uint16_t    bytes;
};

// clang-format off
static const Pixel_Type PIXEL_TYPES[] = {
    {"byt", 1},     // byte
    {"cha", 1},     // char
    {"sho", 2},     // short
    {"lon", 4},     // long
    {"flo", 4},     // float
    {"dou", 8},     // double
    {"com", 8},     // complex
    {"d_c", 16},    // d_complex
    {"rgb", 4},     // rgba
};
// clang-format on

static void Take_Type (Image *image, const char *value) {
    for (const Pixel_Type &type : PIXEL_TYPES)
        if (!strncmp (value, type.start, 3)) image->pixel_bytes = type.bytes;
}

// A number of pixels that an image can have; 0, which is the same as none, for all else.
static uint16_t Pixel_Count (const char *value) {
    int32_t count = Text_To_Integer (value);
    return count > 0 && count <= UINT16_MAX ? static_cast<uint16_t> (count) : 0;
}

static int Is_Key (const char *token, const char *colon, const char *key) {
    size_t length = static_cast<size_t> (colon - token);
    return length == strlen (key) && !memcmp (token, key, length);
}

// token is terminated behind its length; it may have zeros inside. 0 when it is no key with a value.
static int Take_Token (Header_Reading *reading, const char *token, int length) {
    const char *colon = static_cast<const char *> (memchr (token, ':', static_cast<size_t> (length)));
    if (!colon) return 0;
    const char *value = colon + 1;
    if (Is_Key (token, colon, "x")) reading->image->width = Pixel_Count (value);
    if (Is_Key (token, colon, "y")) reading->image->height = Pixel_Count (value);
    if (Is_Key (token, colon, "type")) Take_Type (reading->image, value);
    if (Is_Key (token, colon, "sup")) reading->line_limit = int64_t (LINES_FIXED) + Text_To_Integer (value);
    return 1;
}

static int Is_Separator (char c) { return c == ' ' || c == ',' || c == ';' || c == '\t'; }

// Cuts the comment off and makes the rest small letters.
static void Clean_Line (Header_Reading *reading) {
    for (int i = 0; i < reading->length; i++) {
        char *c = &reading->line[i];
        if (*c == '*' || *c == '#') reading->length = i;
        else if (*c >= 'A' && *c <= 'Z') *c = static_cast<char> (*c - 'A' + 'a');
    }
}

// 0 when a token makes the header invalid.
static int Take_Line (Header_Reading *reading) {
    Clean_Line (reading);
    char *line = reading->line;
    for (int i = 0; i < reading->length; i++) {
        if (Is_Separator (line[i])) continue;
        int start = i;
        while (i < reading->length && !Is_Separator (line[i])) i++;
        line[i] = 0;
        if (!Take_Token (reading, line + start, i - start)) return 0;
    }
    return 1;
}

// --- IGB header ------------------------------------------------------------

// 1 when the header was read to its end and says all that is needed.
static int Read_Header (Header_Reading *reading, const char *path) {
    Line_End end;
    do {
        end = Read_Line (reading);
        if (end == LINE_UNREADABLE) Report ("IGB_Read_Header", NO_LINE, "while reading (%s)", path, WITH_REASON);
        if (end >= LINE_TOO_LONG || !Take_Line (reading)) return 0;
        reading->line_count++;
    } while (end == LINE_FEED && reading->line_count < reading->line_limit);
    return reading->image->width && reading->image->height && reading->image->pixel_bytes;
}

int64_t IGB_Read_Header (const char *path, Image *image) {
    image->width = image->height = image->pixel_bytes = 0;

    Header_Reading reading = {};
    reading.image          = image;
    reading.line_limit     = INT64_MAX;
    reading.file           = Open (path);
    if (!reading.file) {
        Report ("IGB_Read_Header", NO_LINE, "Unable to open (%s)", path, WITH_REASON);
        return 0;
    }
    int64_t size = Read_Header (&reading, path) ? reading.file->position : 0;
    File_Close (reading.file);
    return size;
}

// --- IGB image -------------------------------------------------------------

static size_t Image_Bytes (const Image *image) {
    return static_cast<size_t> (image->width) * image->height * image->pixel_bytes;
}

static int Report_Short (const char *function, int line, const char *path) {
    Report (function, line, "while reading (%s)", path, WITH_REASON);
    return 0;
}

static int Pixels_New (Image *image) {
    int row_bytes = image->width * image->pixel_bytes;
    image->pixels = static_cast<uint8_t *> (
        Memory_Malloc (nullptr, HERE ("image->pixels", image->height, row_bytes), Image_Bytes (image)));
    return image->pixels != nullptr;
}

static int Read_Raw (File *file, int64_t start, const Image *image) {
    return File_Seek (file, start) && Read (file, image->pixels, Image_Bytes (image));
}

static int Load_Raw (File *file, const char *path, int64_t start, Image *image) {
    if (start > file->size || Image_Bytes (image) > static_cast<uint64_t> (file->size - start))
        return Report_Short ("IGB_Read_Image", __LINE__, path);
    if (!Pixels_New (image)) return 0;
    return Read_Raw (file, start, image) || Report_Short ("IGB_Read_Image", __LINE__, path);
}

static void Rotate_Pixels (const Image *image) {
    uint8_t *end = image->pixels + Image_Bytes (image);
    for (uint8_t *pixel = image->pixels; pixel < end; pixel += 4) {
        uint8_t first = pixel[0];
        memmove (pixel, pixel + 1, 3);
        pixel[3] = first;
    }
}

static int Ends_In (const char *text, const char *ending) {
    size_t length = strlen (text);
    size_t part   = strlen (ending);
    return length >= part && !strcmp (text + length - part, ending);
}

static int Load_IGB (const char *path, Image *image) {
    int64_t start = IGB_Read_Header (path, image);
    if (!start) {
        Report ("IGB_Read_Image", __LINE__, "IGB_Read_Image(%s) failed", path, WITHOUT_REASON);
        return 0;
    }
    File *file = Open (path);
    if (!file) {
        Report ("IGB_Read_Image", __LINE__, "Unable to open (%s)", path, WITH_REASON);
        return 0;
    }
    int loaded = Load_Raw (file, path, start, image);
    File_Close (file);
    return loaded;
}

int IGB_Read_Image (const char *path, Image *image) {
    *image = Image {};
    if (Ends_In (path, ".tga")) return TGA_Read_Image (path, image);
    if (!Load_IGB (path, image)) {
        Image_Free (image);
        return 0;
    }
    if (image->pixel_bytes == 4) Rotate_Pixels (image);
    return 1;
}

// --- TARGA -----------------------------------------------------------------

static const int TGA_HEADER_SIZE = 18;

static uint16_t Little_Endian (const uint8_t *bytes) { return static_cast<uint16_t> (bytes[0] | bytes[1] << 8); }

File *TGA_Open (const char *path, TGA_Header *header) {
    uint8_t bytes[TGA_HEADER_SIZE];
    *header    = TGA_Header {};
    File *file = Open (path);
    if (file && Read (file, bytes, sizeof bytes))
        *header = {Little_Endian (bytes + 12), Little_Endian (bytes + 14), bytes[16]};
    return file;
}

int TGA_Is_Complete (const File *file, const TGA_Header *header) {
    int64_t bytes = static_cast<int64_t> (header->width) * header->height * (header->depth / 8);
    return bytes <= file->size - TGA_HEADER_SIZE;
}

// The three bytes of a pixel are read into the end of the row and spread towards its start: a pixel is never written over
// before it was taken.
static int Read_Row (File *file, const TGA_Header *header, uint8_t *row) {
    size_t   bytes = static_cast<size_t> (header->width) * (header->depth / 8);
    uint8_t *from  = row + static_cast<size_t> (header->width) * TGA_PIXEL_BYTES - bytes;
    if (!Read (file, from, bytes)) return 0;
    if (header->depth == 32) return 1;
    for (int i = 0; i < header->width; i++, from += 3, row += TGA_PIXEL_BYTES) {
        memmove (row, from, 3);
        row[3] = 255;
    }
    return 1;
}

int TGA_Read_Pixels (File *file, const TGA_Header *header, uint8_t *pixels) {
    size_t row_bytes = static_cast<size_t> (header->width) * TGA_PIXEL_BYTES;
    for (int row = header->height - 1; row >= 0; row--)
        if (!Read_Row (file, header, pixels + static_cast<size_t> (row) * row_bytes)) return 0;
    return 1;
}

static int Load_TGA (File *file, const TGA_Header *header, const char *path, Image *image) {
    if (header->depth != 24 && header->depth != 32) {
        Log_Message (nullptr, LOG_ERRLOG, "TGA_Read_Image() File:%s Line:%d", MODULE, __LINE__);
        Log_Message (nullptr, LOG_ERRLOG, "%s should be TARGA", path);
        return 0;
    }
    if (!TGA_Is_Complete (file, header)) return Report_Short ("TGA_Read_Image", __LINE__, path);
    *image = {nullptr, header->width, header->height, TGA_PIXEL_BYTES};
    if (!Pixels_New (image)) return 0;
    return TGA_Read_Pixels (file, header, image->pixels) || Report_Short ("TGA_Read_Image", __LINE__, path);
}

static void Clear_Black (const Image *image) {
    uint8_t *end = image->pixels + Image_Bytes (image);
    for (uint8_t *pixel = image->pixels; pixel < end; pixel += TGA_PIXEL_BYTES)
        if (!pixel[0] && !pixel[1] && !pixel[2]) pixel[3] = 0;
}

int TGA_Read_Image (const char *path, Image *image) {
    TGA_Header header;
    *image     = Image {};
    File *file = TGA_Open (path, &header);
    if (!file) {
        Report ("TGA_Read_Image", __LINE__, "fopen(%s) failed", path, WITHOUT_REASON);
        return 0;
    }
    int loaded = Load_TGA (file, &header, path, image);
    File_Close (file);
    if (!loaded) Image_Free (image);
    else if (header.depth == 24) Clear_Black (image);
    return loaded;
}

void Image_Free (Image *image) {
    Memory_Free (image->pixels);
    image->pixels = nullptr;
}
