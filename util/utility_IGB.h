// Reads image files: TARGA, uncompressed with 24 or 32 bits a pixel, and IGB, a text header followed by raw pixels. Files
// are hostile until read: sizes are believed only as far as the file can fill them.
#pragma once

#include <stdint.h>

#include "platform/window.h"

struct Image {
    uint8_t  *pixels;           // Owned, or none: rows from top to bottom.
    uint16_t  width, height;
    uint16_t  pixel_bytes;      // From the IGB type; 4 for TARGA.
};

// Fills width, height and pixel_bytes. The header's size in bytes, where the pixels start; 0 after the messages.
int64_t IGB_Read_Header (const char *path, Image *image);

// A path that ends in ".tga" is read by TGA_Read_Image, any other as IGB: with 4 bytes a pixel the first becomes the last.
// 1, or 0 after the messages, and then there are no pixels. The caller owns them: Image_Free.
int IGB_Read_Image (const char *path, Image *image);

// Blue, green, red and a fourth byte: of 24-bit files 255, and 0 for pure black, which is transparent.
int TGA_Read_Image (const char *path, Image *image);

void Image_Free (Image *image);     // Releases the pixels.

// --- shared with the icon reader -------------------------------------------

struct TGA_Header {
    uint16_t width, height;
    uint8_t  depth;             // Bits a pixel.
};

// Opens a TARGA file and reads its header; pixels follow it directly. The file's rows then come by TGA_Read_Row, bottom
// row first. None (System_Last_Error says why) when it can't be opened; header is all 0 when the file has none.
struct File *TGA_Open (const char *path, TGA_Header *header);
