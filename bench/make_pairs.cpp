// Writes the pairs of files that bench.sh measures with:
//   make_pairs FOLDER ct COUNT        a CT image of COUNT elements at the top, private ones among them, and 512 KB of pixels
//   make_pairs FOLDER frames COUNT    an enhanced image of COUNT frames with 60 elements each in nested sequences
//   make_pairs FOLDER pixel BYTES     one pixel value of that many bytes; the pair differs in its last byte
//   make_pairs FOLDER small COUNT     COUNT pairs of 30 KB: small_<COUNT>_<number>_a.dcm and _b.dcm
//   make_pairs FOLDER private COUNT   that many private elements at the top
//   make_pairs FOLDER descending COUNT    that many empty sequences at the top, in descending order
//   make_pairs FOLDER deep COUNT      that many chains of sequences that are nested nine deep
//   make_pairs FOLDER nested COUNT    that many elements in items of sequences three deep; the pair differs in every
//                                     thousandth element
// The files are FOLDER/<kind>_<number>_a.dcm and _b.dcm. Where nothing else is said they differ in a few elements.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "tests/support/stream.h"

static const char CT_IMAGE_STORAGE[] = "1.2.840.10008.5.1.4.1.1.2";

static Stream Begin_Image () {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", CT_IMAGE_STORAGE);
    Stream_Add_Text (&stream, 0x0008, 0x0018, "UI", "1.2.999.0.1.1");
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Bench^Pair");
    return stream;
}

static bool Write (FILE *file, const void *bytes, size_t count) { return fwrite (bytes, 1, count, file) == count; }

// Elements that images have, with values of usual lengths.
struct Element {
    uint16_t    group;
    uint16_t    element;
    const char *vr;
    const char *value;
};

// clang-format off
static const Element CT_ELEMENTS[] = {
    {0x0008, 0x0020, "DA", "20240131"}, {0x0008, 0x0021, "DA", "20240131"}, {0x0008, 0x0030, "TM", "101500.000"},
    {0x0008, 0x0050, "SH", "ACC-000123"}, {0x0008, 0x0060, "CS", "CT"}, {0x0008, 0x0070, "LO", "Bench Systems"},
    {0x0008, 0x0080, "LO", "General Hospital"}, {0x0008, 0x1030, "LO", "Chest routine"},
    {0x0008, 0x103E, "LO", "Axial 1.0 soft"}, {0x0008, 0x1090, "LO", "Model 7"},
    {0x0010, 0x0010, "PN", "Bench^Pair"}, {0x0010, 0x0020, "LO", "ID-0001"}, {0x0010, 0x0030, "DA", "19700101"},
    {0x0010, 0x0040, "CS", "O"}, {0x0010, 0x1010, "AS", "054Y"}, {0x0010, 0x1030, "DS", "71.5"},
    {0x0018, 0x0050, "DS", "1.00000"}, {0x0018, 0x0060, "DS", "120"}, {0x0018, 0x0090, "DS", "500.00000"},
    {0x0018, 0x1020, "LO", "Release 3.2"}, {0x0018, 0x1100, "DS", "360.00000"}, {0x0018, 0x1120, "DS", "0.0"},
    {0x0018, 0x1150, "IS", "500"}, {0x0018, 0x1151, "IS", "240"}, {0x0018, 0x1160, "SH", "BODY"},
    {0x0018, 0x1210, "SH", "STANDARD"}, {0x0018, 0x5100, "CS", "FFS"},
    {0x0020, 0x000D, "UI", "1.2.999.1.2.3.4"}, {0x0020, 0x000E, "UI", "1.2.999.1.2.3.4.5"},
    {0x0020, 0x0011, "IS", "3"}, {0x0020, 0x0012, "IS", "1"}, {0x0020, 0x0013, "IS", "117"},
    {0x0020, 0x0032, "DS", "-180.0\\-180.0\\-112.5"},
    {0x0020, 0x0037, "DS", "1.00000\\0.00000\\0.00000\\0.00000\\1.00000\\0.00000"},
    {0x0020, 0x0052, "UI", "1.2.999.1.2.3.4.6"}, {0x0020, 0x1041, "DS", "-112.5"},
    {0x0028, 0x0002, "US", ""}, {0x0028, 0x0004, "CS", "MONOCHROME2"}, {0x0028, 0x0030, "DS", "0.703125\\0.703125"},
    {0x0028, 0x1050, "DS", "40"}, {0x0028, 0x1051, "DS", "400"}, {0x0028, 0x1052, "DS", "-1024"},
    {0x0028, 0x1053, "DS", "1"},
};
// clang-format on

static const uint32_t CT_COUNT = sizeof CT_ELEMENTS / sizeof *CT_ELEMENTS;

static void Add_Element (Stream *stream, const Element *element) {
    if (element->vr[0] == 'U' && element->vr[1] == 'S')
        Stream_Add_Short (stream, element->group, element->element, "US", 1);
    else Stream_Add_Text (stream, element->group, element->element, element->vr, element->value);
}

// Private elements in blocks of 256 with a creator each; groups follow one another. Every thousandth differs.
static void Add_Private (Stream *stream, uint16_t group, uint32_t count, bool second) {
    static const uint32_t IN_GROUP = 0xEF * 256;

    char text[32];
    for (uint32_t done = 0; done < count; group = static_cast<uint16_t> (group + 2)) {
        uint32_t now = count - done < IN_GROUP ? count - done : IN_GROUP;
        for (uint32_t block = 0; block * 256 < now; block++)
            Stream_Add_Text (stream, group, static_cast<uint16_t> (0x0010 + block), "LO", "BENCH PRIVATE");
        for (uint32_t i = 0; i < now; i++, done++) {
            snprintf (text, sizeof text, "%u%s", done, second && done % 1000 == 100 ? "1" : "");
            Stream_Add_Text (stream, group, static_cast<uint16_t> (0x1000 + i), "IS", text);
        }
    }
}

static Stream Ct_Image (uint32_t count, bool second) {
    Stream   stream = Stream_Begin_File (EXPLICIT_LITTLE);
    uint32_t left   = count > CT_COUNT + 4 ? count - CT_COUNT - 4 : 0;
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", CT_IMAGE_STORAGE);
    Stream_Add_Text (&stream, 0x0008, 0x0018, "UI", second ? "1.2.999.0.1.2" : "1.2.999.0.1.1");
    for (uint32_t i = 0; i < CT_COUNT; i++) {
        if (i && left && CT_ELEMENTS[i].group == 0x0010 && CT_ELEMENTS[i - 1].group == 0x0008) {
            Add_Private (&stream, 0x0009, left, second);
        }
        Add_Element (&stream, &CT_ELEMENTS[i]);
    }
    return stream;
}

static bool Write_Ct (FILE *file, uint32_t count, uint32_t pixel_bytes, bool second) {
    Stream stream = Ct_Image (count, second);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OW", std::string (pixel_bytes, second ? '\x11' : '\x10'));
    return Write (file, stream.bytes.data (), stream.bytes.size ());
}

// --- an enhanced image -----------------------------------------------------

// One of the ten groups of a frame: six elements.
static void Add_Frame_Group (Stream *stream, uint16_t element, uint32_t frame, bool second) {
    char text[32];
    Stream_Open_Sequence (stream, 0x0018, element, element % 2 == 0);
    Stream_Open_Item (stream, element % 2 == 1);
    snprintf (text, sizeof text, "%u", frame);
    Stream_Add_Text (stream, 0x0018, 0x0050, "DS", "1.25");
    Stream_Add_Text (stream, 0x0018, 0x9073, "DS", text);
    Stream_Add_Text (stream, 0x0020, 0x0032, "DS", "-180.0\\-180.0\\-112.5");
    Stream_Add_Text (stream, 0x0020, 0x9056, "SH", second && frame % 200 == 7 ? "2" : "1");
    Stream_Add_Text (stream, 0x0020, 0x9057, "LO", text);
    Stream_Add_Text (stream, 0x0028, 0x1050, "DS", "40");
    Stream_Close_Item (stream);
    Stream_Close_Sequence (stream);
}

static bool Write_Frames (FILE *file, uint32_t frames, bool second) {
    static const uint32_t GROUPS = 10;

    Stream stream = Ct_Image (0, second);
    Stream_Open_Sequence (&stream, 0x5200, 0x9230, false);
    for (uint32_t frame = 0; frame < frames; frame++) {
        Stream_Open_Item (&stream, frame % 2 == 0);
        for (uint32_t i = 0; i < GROUPS; i++)
            Add_Frame_Group (&stream, static_cast<uint16_t> (0x9300 + i), frame, second);
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    return Write (file, stream.bytes.data (), stream.bytes.size ());
}

// --- one kind of content ---------------------------------------------------

static bool Write_Private (FILE *file, uint32_t count, bool second) {
    Stream stream = Begin_Image ();
    Add_Private (&stream, 0x0011, count, second);
    return Write (file, stream.bytes.data (), stream.bytes.size ());
}

static bool Write_Descending (FILE *file, uint32_t count, bool) {
    Stream stream = Begin_Image ();
    for (uint32_t i = 0; i < count; i++) {
        uint32_t tag = 0x60000000u - 2 * i;
        Stream_Open_Sequence (&stream, static_cast<uint16_t> (tag >> 16), static_cast<uint16_t> (tag), true);
        Stream_Close_Sequence (&stream);
    }
    return Write (file, stream.bytes.data (), stream.bytes.size ());
}

// Ten elements a level.
static void Add_Chain (Stream *stream, uint32_t depth, bool second) {
    static const uint32_t DEPTHS = 9;

    char text[32];
    for (uint16_t i = 0; i < 10; i++) {
        snprintf (text, sizeof text, "V%u%u%s", depth, i, second && depth == DEPTHS && i == 5 ? "x" : "");
        Stream_Add_Text (stream, 0x0008, static_cast<uint16_t> (0x0100 + i), "SH", text);
    }
    if (depth == DEPTHS) return;
    Stream_Open_Sequence (stream, 0x0040, 0xA730, depth % 2 == 0);
    Stream_Open_Item (stream, depth % 2 == 1);
    Add_Chain (stream, depth + 1, second);
    Stream_Close_Item (stream);
    Stream_Close_Sequence (stream);
}

static bool Write_Deep (FILE *file, uint32_t chains, bool second) {
    Stream stream = Begin_Image ();
    Stream_Open_Sequence (&stream, 0x0040, 0xA730, false);
    for (uint32_t i = 0; i < chains; i++) {
        Stream_Open_Item (&stream, false);
        Add_Chain (&stream, 1, second);
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    return Write (file, stream.bytes.data (), stream.bytes.size ());
}

// The pixel value goes to the disk in pieces: it need not fit into memory.
static bool Write_Pixel (FILE *file, uint32_t count, bool second) {
    Stream stream = Begin_Image ();
    Stream_Add_Header (&stream, 0x7FE0, 0x0010, "OW", count);
    if (!Write (file, stream.bytes.data (), stream.bytes.size ())) return false;

    std::string piece (1 << 20, '\0');
    for (size_t i = 0; i < piece.size (); i++) piece[i] = static_cast<char> (i * 2654435761u >> 13);
    for (uint32_t left = count; left;) {
        uint32_t now = left < piece.size () ? left : static_cast<uint32_t> (piece.size ());
        if (second && now == left) piece[now - 1] = static_cast<char> (piece[now - 1] ^ 1);
        if (!Write (file, piece.data (), now)) return false;
        left -= now;
    }
    return true;
}

// Items of ten elements, every second one of defined length.
static void Add_Items (Stream *stream, uint32_t count, bool second) {
    char text[32];
    for (uint32_t i = 0; i < count; i++) {
        if (i % 10 == 0) Stream_Open_Item (stream, i % 20 == 0);
        snprintf (text, sizeof text, "V%u%s", i, second && i % 1000 == 999 ? "x" : "");
        Stream_Add_Text (stream, 0x0008, static_cast<uint16_t> (0x0100 + i % 10), "SH", text);
        if (i % 10 == 9 || i + 1 == count) Stream_Close_Item (stream);
    }
}

// A thousand elements in each item of an item of the outermost sequence.
static bool Write_Nested (FILE *file, uint32_t count, bool second) {
    Stream stream = Begin_Image ();
    Stream_Open_Sequence (&stream, 0x0040, 0xA730, false);
    for (uint32_t done = 0; done < count; done += 1000) {
        Stream_Open_Item (&stream, false);
        Stream_Open_Sequence (&stream, 0x0040, 0xA043, true);
        Stream_Open_Item (&stream, true);
        Stream_Open_Sequence (&stream, 0x0040, 0xA168, false);
        Add_Items (&stream, count - done < 1000 ? count - done : 1000, second);
        Stream_Close_Sequence (&stream);
        Stream_Close_Item (&stream);
        Stream_Close_Sequence (&stream);
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    return Write (file, stream.bytes.data (), stream.bytes.size ());
}

// --- kinds -----------------------------------------------------------------

static bool Write_Ct_Image (FILE *file, uint32_t count, bool second) { return Write_Ct (file, count, 1 << 19, second); }

static bool Write_Small (FILE *file, uint32_t, bool second) { return Write_Ct (file, 60, 28000, second); }

struct Kind {
    const char *name;
    bool (*write) (FILE *file, uint32_t number, bool second);
    bool many; // The number is that of pairs.
};

static const Kind KINDS[] = {
    {"ct", Write_Ct_Image, false},   {"frames", Write_Frames, false},         {"pixel", Write_Pixel, false},
    {"small", Write_Small, true},    {"private", Write_Private, false},       {"deep", Write_Deep, false},
    {"nested", Write_Nested, false}, {"descending", Write_Descending, false},
};

static bool Make (const std::string &name, const Kind *kind, uint32_t number, bool second) {
    FILE *file = fopen (name.c_str (), "wb");
    if (!file) return false;
    bool written = kind->write (file, number, second);
    return !fclose (file) && written;
}

// stem is the name without "_a.dcm".
static bool Make_Pair (const std::string &stem, const Kind *kind, uint32_t number) {
    for (int second = 0; second < 2; second++) {
        std::string name = stem + (second ? "_b.dcm" : "_a.dcm");
        if (Make (name, kind, number, second)) continue;
        fprintf (stderr, "make_pairs: can't write %s\n", name.c_str ());
        return false;
    }
    return true;
}

static const Kind *Kind_Named (const char *name) {
    for (const Kind &kind : KINDS)
        if (!strcmp (kind.name, name)) return &kind;
    return nullptr;
}

int main (int count, char **words) {
    const Kind *kind = count == 4 ? Kind_Named (words[2]) : nullptr;
    if (!kind) {
        fputs ("usage: make_pairs FOLDER ct|frames|pixel|small|private|descending|deep|nested NUMBER\n", stderr);
        return 2;
    }
    uint32_t    number = static_cast<uint32_t> (strtoul (words[3], nullptr, 10));
    std::string stem   = std::string (words[1]) + "/" + words[2] + "_" + words[3];
    if (!kind->many) return Make_Pair (stem, kind, number) ? 0 : 1;
    for (uint32_t i = 0; i < number; i++)
        if (!Make_Pair (stem + "_" + std::to_string (10000 + i), kind, number)) return 1;
    return 0;
}
