// Reads image files: TARGA, uncompressed with 24 or 32 bits a pixel, and IGB, a text header followed by raw pixels. Files
// are hostile until read: sizes are believed only as far as the file can fill them. Failures are reported (LOG_ERRLOG);
// behind the messages System_Last_Error says why, 0 for a file that was read and is bad.
#pragma once

#include <stdint.h>

#include "util/file.h"

struct Image {
    uint8_t  *pixels;           // Owned, or none: rows from top to bottom.
    uint16_t  width, height;
    uint16_t  pixel_bytes;      // From the IGB type; 4 for TARGA.
};

// Fills width, height and pixel_bytes. The header's size in bytes, where the pixels start; 0 after the messages when the
// file can't be read, and without any when the header is invalid.
int64_t IGB_Read_Header (const char *path, Image *image);

// A path that ends in ".tga" is read by TGA_Read_Image, any other as IGB: with 4 bytes a pixel the first becomes the last.
// 1, or 0 after the messages, and then there are no pixels. The caller owns them: Image_Free.
int IGB_Read_Image (const char *path, Image *image);

// Blue, green, red and a fourth byte: of 24-bit files 255, and 0 for pure black, which is transparent. Result as above.
int TGA_Read_Image (const char *path, Image *image);

void Image_Free (Image *image);     // Releases the pixels.

// --- shared with the icon reader -------------------------------------------

// What a TARGA file says of itself; all 0 when it is too short to say anything.
struct TGA_Header {
    uint16_t width, height;
    uint8_t  depth;             // Bits a pixel.
};

static const int TGA_PIXEL_BYTES = 4;   // Of a pixel that was read.

// Opens a TARGA file and reads its header. None (System_Last_Error says why) when it can't be opened. The caller closes it.
File *TGA_Open (const char *path, TGA_Header *header);

// Of a file just opened, with 24 or 32 bits a pixel: 1 when it can hold what its header promises.
int TGA_Is_Complete (const File *file, const TGA_Header *header);

// Reads all pixels into width * height * 4 bytes: rows from top to bottom, a fourth byte of 255 added to 24 bits. 1, or 0
// when fewer could be read.
int TGA_Read_Pixels (File *file, const TGA_Header *header, uint8_t *pixels);
