// Writes DICOM streams byte by byte: a test shows its whole file in a few lines, in any transfer syntax, and malformed
// streams are as easy as good ones.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

// The last has no transfer syntax: only a bare stream can be written so.
enum Stream_Syntax { IMPLICIT_LITTLE, EXPLICIT_LITTLE, EXPLICIT_BIG, IMPLICIT_BIG };

struct Stream {
    Stream_Syntax              syntax;
    std::vector<unsigned char> bytes;
    std::vector<size_t>        open;    // Where the lengths of open sequences and items of defined length stand.
};

Stream Stream_Begin (Stream_Syntax syntax);

// 128 zero bytes, "DICM", and group 2 (explicit little endian) with the transfer syntax of the stream, or another UID.
Stream Stream_Begin_File (Stream_Syntax syntax, const char *transfer_syntax = nullptr);

// --- single fields ---------------------------------------------------------

void Stream_Add_Raw (Stream *stream, const void *bytes, size_t count);
void Stream_Add_16 (Stream *stream, uint16_t number);       // In the stream's byte order.
void Stream_Add_32 (Stream *stream, uint32_t number);
void Stream_Add_64 (Stream *stream, uint64_t number);
void Stream_Add_Float (Stream *stream, float number);
void Stream_Add_Double (Stream *stream, double number);

// A header without value. The length has 32 bits for the VRs for which PS3.5 7.1.2 says so.
void Stream_Add_Header (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint32_t length);

// --- elements --------------------------------------------------------------

// Text padded to even length (UI with a zero byte, else a blank).
void Stream_Add_Text (Stream *stream, uint16_t group, uint16_t element, const char *vr, const std::string &text);
// Exactly these bytes; length says how many the header claims.
void Stream_Add_Length (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint32_t length,
                        const std::string &bytes);
void Stream_Add_Bytes (Stream *stream, uint16_t group, uint16_t element, const char *vr, const std::string &bytes);
void Stream_Add_Short (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint16_t number);
void Stream_Add_Long (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint32_t number);

// --- sequences and items ---------------------------------------------------

void Stream_Open_Sequence (Stream *stream, uint16_t group, uint16_t element, bool defined_length, const char *vr = "SQ");
void Stream_Close_Sequence (Stream *stream);        // Fills the length in, or writes the delimiter.
void Stream_Open_Item (Stream *stream, bool defined_length);
void Stream_Close_Item (Stream *stream);
