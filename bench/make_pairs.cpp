// Writes the pairs of files that bench.sh measures with:
//   make_pairs FOLDER pixel BYTES     one pixel value of that many bytes; the pair differs in its last byte
//   make_pairs FOLDER nested COUNT    that many elements in items of sequences three deep; the pair differs in every
//                                     thousandth element
// The files are FOLDER/<kind>_<number>_a.dcm and _b.dcm.
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

static bool Make (const std::string &name, const char *kind, uint32_t number, bool second) {
    FILE *file = fopen (name.c_str (), "wb");
    if (!file) return false;
    bool written = strcmp (kind, "pixel") ? Write_Nested (file, number, second) : Write_Pixel (file, number, second);
    return !fclose (file) && written;
}

int main (int count, char **words) {
    if (count != 4 || (strcmp (words[2], "pixel") && strcmp (words[2], "nested"))) {
        fputs ("usage: make_pairs FOLDER pixel|nested NUMBER\n", stderr);
        return 2;
    }
    uint32_t number = static_cast<uint32_t> (strtoul (words[3], nullptr, 10));
    for (int second = 0; second < 2; second++) {
        std::string name = std::string (words[1]) + "/" + words[2] + "_" + words[3] + (second ? "_b.dcm" : "_a.dcm");
        if (Make (name, words[2], number, second)) continue;
        fprintf (stderr, "make_pairs: can't write %s\n", name.c_str ());
        return 1;
    }
    return 0;
}
