#include "tests/support/stream.h"

#include <string.h>

static const size_t UNDEFINED = SIZE_MAX;

static void Add (Stream *stream, uint64_t number, int size, bool big) {
    for (int i = 0; i < size; i++) {
        int shift = 8 * (big ? size - 1 - i : i);
        stream->bytes.push_back (static_cast<unsigned char> (number >> shift));
    }
}

static void Add_Number (Stream *stream, uint64_t number, int size) {
    Add (stream, number, size, stream->syntax == EXPLICIT_BIG || stream->syntax == IMPLICIT_BIG);
}

static bool Has_Long_Length (const char *vr) {
    for (const char *name : {"OB", "OD", "OF", "OL", "OV", "OW", "OX", "SQ", "SV", "UC", "UN", "UR", "UT", "UV"})
        if (!strcmp (vr, name)) return true;
    return false;
}

Stream Stream_Begin (Stream_Syntax syntax) { return Stream {syntax, {}, {}}; }

Stream Stream_Begin_File (Stream_Syntax syntax, const char *transfer_syntax) {
    static const char *const names[] = {"1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.2"};

    Stream stream = Stream_Begin (EXPLICIT_LITTLE);
    stream.bytes.resize (128);
    Stream_Add_Raw (&stream, "DICM", 4);
    Stream_Add_Text (&stream, 0x0002, 0x0010, "UI", transfer_syntax ? transfer_syntax : names[syntax]);
    stream.syntax = syntax;
    return stream;
}

void Stream_Add_Raw (Stream *stream, const void *bytes, size_t count) {
    const unsigned char *first = static_cast<const unsigned char *> (bytes);
    stream->bytes.insert (stream->bytes.end (), first, first + count);
}

void Stream_Add_16 (Stream *stream, uint16_t number) { Add_Number (stream, number, 2); }
void Stream_Add_32 (Stream *stream, uint32_t number) { Add_Number (stream, number, 4); }
void Stream_Add_64 (Stream *stream, uint64_t number) { Add_Number (stream, number, 8); }

void Stream_Add_Float (Stream *stream, float number) {
    uint32_t bits;
    memcpy (&bits, &number, 4);
    Stream_Add_32 (stream, bits);
}

void Stream_Add_Double (Stream *stream, double number) {
    uint64_t bits;
    memcpy (&bits, &number, 8);
    Stream_Add_64 (stream, bits);
}

void Stream_Add_Header (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint32_t length) {
    Stream_Add_16 (stream, group);
    Stream_Add_16 (stream, element);
    bool implicit = stream->syntax == IMPLICIT_LITTLE || stream->syntax == IMPLICIT_BIG;
    if (implicit || group == 0xFFFE) {
        Stream_Add_32 (stream, length);
        return;
    }
    Stream_Add_Raw (stream, vr, 2);
    if (Has_Long_Length (vr)) {
        Stream_Add_16 (stream, 0);
        Stream_Add_32 (stream, length);
    } else {
        Stream_Add_16 (stream, static_cast<uint16_t> (length));
    }
}

void Stream_Add_Length (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint32_t length,
                        const std::string &bytes) {
    Stream_Add_Header (stream, group, element, vr, length);
    Stream_Add_Raw (stream, bytes.data (), bytes.size ());
}

void Stream_Add_Bytes (Stream *stream, uint16_t group, uint16_t element, const char *vr, const std::string &bytes) {
    Stream_Add_Length (stream, group, element, vr, static_cast<uint32_t> (bytes.size ()), bytes);
}

void Stream_Add_Text (Stream *stream, uint16_t group, uint16_t element, const char *vr, const std::string &text) {
    std::string padded = text;
    if (padded.size () % 2) padded += strcmp (vr, "UI") ? ' ' : '\0';
    Stream_Add_Bytes (stream, group, element, vr, padded);
}

void Stream_Add_Short (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint16_t number) {
    Stream_Add_Header (stream, group, element, vr, 2);
    Stream_Add_16 (stream, number);
}

void Stream_Add_Long (Stream *stream, uint16_t group, uint16_t element, const char *vr, uint32_t number) {
    Stream_Add_Header (stream, group, element, vr, 4);
    Stream_Add_32 (stream, number);
}

static void Open (Stream *stream, bool defined_length) {
    stream->open.push_back (defined_length ? stream->bytes.size () : UNDEFINED);
}

// The element that says the end of an undefined length, or the length written over the placeholder.
static void Close (Stream *stream, uint16_t delimiter) {
    size_t start = stream->open.back ();
    stream->open.pop_back ();
    if (start == UNDEFINED) {
        Stream_Add_Header (stream, 0xFFFE, delimiter, "", 0);
        return;
    }
    Stream length = Stream_Begin (stream->syntax);
    Stream_Add_32 (&length, static_cast<uint32_t> (stream->bytes.size () - start));
    memcpy (&stream->bytes[start - 4], length.bytes.data (), 4);
}

void Stream_Open_Sequence (Stream *stream, uint16_t group, uint16_t element, bool defined_length, const char *vr) {
    Stream_Add_Header (stream, group, element, vr, defined_length ? 0 : 0xFFFFFFFF);
    Open (stream, defined_length);
}

void Stream_Close_Sequence (Stream *stream) { Close (stream, 0xE0DD); }

void Stream_Open_Item (Stream *stream, bool defined_length) {
    Stream_Add_Header (stream, 0xFFFE, 0xE000, "", defined_length ? 0 : 0xFFFFFFFF);
    Open (stream, defined_length);
}

void Stream_Close_Item (Stream *stream) { Close (stream, 0xE00D); }
