#include "tests/support/examples.h"

#include <initializer_list>

#include "tests/support/stream.h"

static const char *const ROOT_UID     = "1.2.999.7.1";
static const char *const CT_IMAGE     = "1.2.840.10008.5.1.4.1.1.2";
static const char *const SR_ENHANCED  = "1.2.840.10008.5.1.4.1.1.88.22";
static const char *const SYNTAX_UID[] = {"1.2.840.10008.1.2", "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.2"};

// --- parts of files --------------------------------------------------------

static std::string Uid (const char *suffix) { return std::string (ROOT_UID) + suffix; }

// Preamble, mark and file meta information with its group length (PS3.10 7.1).
static Stream Begin_File (Stream_Syntax syntax, const char *sop_class, const std::string &instance) {
    Stream meta = Stream_Begin (EXPLICIT_LITTLE);
    Stream_Add_Bytes (&meta, 0x0002, 0x0001, "OB", std::string ("\0\1", 2));
    Stream_Add_Text (&meta, 0x0002, 0x0002, "UI", sop_class);
    Stream_Add_Text (&meta, 0x0002, 0x0003, "UI", instance);
    Stream_Add_Text (&meta, 0x0002, 0x0010, "UI", SYNTAX_UID[syntax]);
    Stream_Add_Text (&meta, 0x0002, 0x0012, "UI", Uid (".0"));
    Stream_Add_Text (&meta, 0x0002, 0x0013, "SH", "EXAMPLES_1");

    Stream file = Stream_Begin (EXPLICIT_LITTLE);
    file.bytes.resize (128);
    Stream_Add_Raw (&file, "DICM", 4);
    Stream_Add_Long (&file, 0x0002, 0x0000, "UL", static_cast<uint32_t> (meta.bytes.size ()));
    Stream_Add_Raw (&file, meta.bytes.data (), meta.bytes.size ());
    file.syntax = syntax;
    return file;
}

static void Add_Patient (Stream *stream) {
    Stream_Add_Text (stream, 0x0010, 0x0010, "PN", "Phantom^Water");
    Stream_Add_Text (stream, 0x0010, 0x0020, "LO", "QA-0001");
    Stream_Add_Text (stream, 0x0010, 0x0030, "DA", "19700101");
    Stream_Add_Text (stream, 0x0010, 0x0040, "CS", "O");
}

static void Add_Image_Size (Stream *stream, uint16_t size) {
    Stream_Add_Short (stream, 0x0028, 0x0002, "US", 1);
    Stream_Add_Text (stream, 0x0028, 0x0004, "CS", "MONOCHROME2");
    Stream_Add_Short (stream, 0x0028, 0x0010, "US", size);
    Stream_Add_Short (stream, 0x0028, 0x0011, "US", size);
    Stream_Add_Text (stream, 0x0028, 0x0030, "DS", "0.75\\0.75");
    Stream_Add_Short (stream, 0x0028, 0x0100, "US", 16);
    Stream_Add_Short (stream, 0x0028, 0x0101, "US", 12);
    Stream_Add_Short (stream, 0x0028, 0x0102, "US", 11);
    Stream_Add_Short (stream, 0x0028, 0x0103, "US", 0);
}

// A disk of water in air, with a denser rod in it, in the stream's byte order.
static void Add_Pixels (Stream *stream, int size, bool changed) {
    Stream_Add_Header (stream, 0x7FE0, 0x0010, "OW", static_cast<uint32_t> (2 * size * size));
    for (int y = 0; y < size; y++) {
        for (int x = 0; x < size; x++) {
            int dx = 2 * x + 1 - size, dy = 2 * y + 1 - size;
            int value = 24 + (x * 7 + y * 5) % 9;
            if (dx * dx + dy * dy < size * size * 3 / 4) value = 1000 + (x * 3 + y * 11) % 17;
            if ((dx - 12) * (dx - 12) + dy * dy < 40) value = 1900;
            if (changed && x == size / 2 && y == size / 2) value += 3;
            Stream_Add_16 (stream, static_cast<uint16_t> (value));
        }
    }
}

// --- the CT pair -----------------------------------------------------------

static void Add_Referenced_Image (Stream *stream, const char *suffix) {
    Stream_Open_Item (stream, false);
    Stream_Add_Text (stream, 0x0008, 0x1150, "UI", CT_IMAGE);
    Stream_Add_Text (stream, 0x0008, 0x1155, "UI", Uid (suffix));
    Stream_Close_Item (stream);
}

static Stream Ct (bool b) {
    std::string instance = Uid (b ? ".3.102" : ".3.101"); // Twice, here and in the meta information: bytes differ.
    Stream      stream   = Begin_File (EXPLICIT_LITTLE, CT_IMAGE, instance);

    Stream_Add_Text (&stream, 0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY\\AXIAL");
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", CT_IMAGE);
    Stream_Add_Text (&stream, 0x0008, 0x0018, "UI", instance);
    Stream_Add_Text (&stream, 0x0008, 0x0020, "DA", "20160615");
    Stream_Add_Text (&stream, 0x0008, 0x0033, "TM", b ? "101530.250000" : "101530"); // Length differs.
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    Stream_Add_Text (&stream, 0x0008, 0x0070, "LO", "EXAMPLE SCANNERS");
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    Add_Referenced_Image (&stream, b ? ".3.92" : ".3.91"); // Bytes differ inside an item.
    if (b) Add_Referenced_Image (&stream, ".3.93");        // An item more: its two attributes only in B.
    Stream_Close_Sequence (&stream);
    Add_Patient (&stream);
    if (!b) Stream_Add_Text (&stream, 0x0010, 0x1010, "AS", "046Y");            // Only in A.
    Stream_Add_Text (&stream, 0x0010, 0x4000, b ? "LT" : "UT", "water, 20 cm"); // A's VR is dropped.
    Stream_Add_Text (&stream, 0x0018, 0x0050, "DS", "5.0");
    Stream_Add_Text (&stream, 0x0018, 0x0060, "DS", "120");
    if (b) Stream_Add_Text (&stream, 0x0018, 0x1030, "LO", "DAILY CHECK"); // Only in B.
    Stream_Add_Text (&stream, 0x0020, 0x000D, "UI", Uid (".1"));
    Stream_Add_Text (&stream, 0x0020, 0x000E, "UI", Uid (".2"));
    Stream_Add_Text (&stream, 0x0020, 0x0013, "IS", "17");
    Stream_Add_Text (&stream, 0x0020, 0x0032, "DS", "-24.0\\-24.0\\85.0");
    Stream_Add_Text (&stream, 0x0020, 0x4000, b ? "UT" : "LT", "rod at 3 o'clock"); // B's VR is dropped.
    Add_Image_Size (&stream, 64);
    Stream_Add_Short (&stream, 0x0028, 0x0106, b ? "US" : "SS", 24); // VR differs.
    Stream_Add_Text (&stream, 0x0028, 0x1052, "DS", "-1024");
    Stream_Add_Text (&stream, 0x0028, 0x1053, "DS", "1");
    Add_Pixels (&stream, 64, b); // One pixel differs.
    return stream;
}

// --- the nested pair -------------------------------------------------------

// Four sequences inside one another. Every second one says its length; so does every item whose number is odd.
static void Add_Content (Stream *stream, int depth, bool b) {
    Stream_Open_Sequence (stream, 0x0040, 0xA730, depth % 2 == 0);
    for (int item = 0; item < 2; item++) {
        Stream_Open_Item (stream, item % 2 == 1);
        Stream_Add_Text (stream, 0x0040, 0xA010, "CS", "CONTAINS");
        if (depth < 4) {
            Stream_Add_Text (stream, 0x0040, 0xA040, "CS", "CONTAINER");
            if (item == 0) Add_Content (stream, depth + 1, b);
        } else {
            Stream_Add_Text (stream, 0x0040, 0xA040, "CS", "TEXT");
            Stream_Add_Text (stream, 0x0040, 0xA160, "UT", b && item == 1 ? "thick wall" : "clear wall");
        }
        Stream_Close_Item (stream);
    }
    if (b && depth == 3) {
        Stream_Open_Item (stream, false);
        Stream_Add_Text (stream, 0x0040, 0xA010, "CS", "HAS PROPERTIES");
        Stream_Close_Item (stream);
    }
    Stream_Close_Sequence (stream);
}

static Stream Nested (bool b) {
    Stream stream = Begin_File (EXPLICIT_LITTLE, SR_ENHANCED, Uid (".3.201"));
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", SR_ENHANCED);
    Stream_Add_Text (&stream, 0x0008, 0x0018, "UI", Uid (".3.201"));
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "SR");
    Add_Patient (&stream);
    Stream_Add_Text (&stream, 0x0040, 0xA040, "CS", "CONTAINER");
    Add_Content (&stream, 1, b);
    return stream;
}

// --- one content in several transfer syntaxes ------------------------------

static void Add_Small_Image (Stream *stream) {
    Stream_Add_Text (stream, 0x0008, 0x0016, "UI", CT_IMAGE);
    Stream_Add_Text (stream, 0x0008, 0x0018, "UI", Uid (".3.301"));
    Stream_Add_Text (stream, 0x0008, 0x0060, "CS", "CT");
    Stream_Open_Sequence (stream, 0x0008, 0x1140, false);
    Add_Referenced_Image (stream, ".3.91");
    Stream_Close_Sequence (stream);
    Add_Patient (stream);
    Stream_Add_Header (stream, 0x0018, 0x9313, "FD", 24); // Data Collection Center (Patient)
    for (double place : {0.5, -12.25, 85.0}) Stream_Add_Double (stream, place);
    Add_Image_Size (stream, 16);
    Add_Pixels (stream, 16, false);
}

static Stream Small_Image (Stream_Syntax syntax) {
    Stream stream = Begin_File (syntax, CT_IMAGE, Uid (".3.301"));
    Add_Small_Image (&stream);
    return stream;
}

static Stream Bare_Stream () {
    Stream stream = Stream_Begin (EXPLICIT_LITTLE);
    Add_Small_Image (&stream);
    return stream;
}

// --- damaged files ---------------------------------------------------------

// The pixel data say 512 bytes, of which 100 are there.
static Stream Damaged () {
    Stream stream = Small_Image (EXPLICIT_LITTLE);
    stream.bytes.resize (stream.bytes.size () - 412);
    return stream;
}

// The file ends inside the header of the pixel data.
static Stream Damaged_Header () {
    Stream stream = Small_Image (EXPLICIT_LITTLE);
    stream.bytes.resize (stream.bytes.size () - 512 - 5);
    return stream;
}

// --- private attributes ----------------------------------------------------

// Of the creators that examples/tables/ has tables for. B gives one of them another block and changes two values.
static Stream Private (bool b) {
    Stream   stream = Begin_File (EXPLICIT_LITTLE, CT_IMAGE, Uid (".3.401"));
    uint16_t block  = b ? 0x1100 : 0x1000;
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", CT_IMAGE);
    Stream_Add_Text (&stream, 0x0008, 0x0018, "UI", Uid (".3.401"));
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "CT");
    Add_Patient (&stream);
    Stream_Add_Text (&stream, 0x0019, 0x0010, "LO", "EXAMPLE SCANNER 2.1");
    Stream_Add_Text (&stream, 0x0019, 0x1001, "DS", b ? "2.5" : "1.5");
    Stream_Add_Short (&stream, 0x0019, 0x1002, "US", 64);
    Stream_Add_Text (&stream, 0x0029, static_cast<uint16_t> (block >> 8), "LO", "Acme/Imaging");
    Stream_Add_Text (&stream, 0x0029, block | 0x08, "CS", b ? "HELICAL" : "AXIAL");
    return stream;
}

// --- faults of encoders ----------------------------------------------------

// What real encoders get wrong, one of each kind: structure first, values then.
static Stream Faults () {
    Stream stream = Begin_File (EXPLICIT_LITTLE, CT_IMAGE, Uid (".3.501"));
    Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", CT_IMAGE);
    Stream_Add_Text (&stream, 0x0008, 0x0018, "UI", Uid (".3.501"));
    Stream_Add_Text (&stream, 0x0008, 0x0020, "DA", "2016.06.15");
    Stream_Add_Text (&stream, 0x0008, 0x0030, "TM", "10:15:30");
    Stream_Add_Text (&stream, 0x0008, 0x0060, "CS", "Ct");
    Stream_Add_Bytes (&stream, 0x0008, 0x0070, "LO", std::string ("EXAMPLE SCANNER\0", 16));
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
    Stream_Add_Raw (&stream, "\x3F\x3F\x3F\0\xFF\xFF\xFF\xFF", 8); // Means an item of undefined length.
    Stream_Add_Text (&stream, 0x0008, 0x1150, "UI", CT_IMAGE);
    Stream_Add_Header (&stream, 0xFFFE, 0xE00D, "", 0);
    Stream_Close_Sequence (&stream);
    Stream_Add_Text (&stream, 0x0009, 0x0010, "LO", "NOBODY KNOWS");
    Stream_Add_Length (&stream, 0x0009, 0x1010, "UL", 6, "    ");
    Add_Patient (&stream);
    Stream_Add_Bytes (&stream, 0x0018, 0x1030, "LO", "DAILY");
    Stream_Add_Text (&stream, 0x0020, 0x0013, "IS", "17.0");
    Add_Image_Size (&stream, 16);
    Stream_Add_Text (&stream, 0x0028, 0x0030, "DS", "0.75\\0.75\\0.75"); // A second time, with a value too many.
    Stream_Add_Bytes (&stream, 0x0028, 0x0106, "US", std::string ("\1\0\2", 3));
    Add_Pixels (&stream, 16, false);
    return stream;
}

// --- all -------------------------------------------------------------------

std::vector<Example> Examples_Make () {
    return {
        {"ct_a.dcm", Ct (false).bytes},
        {"ct_b.dcm", Ct (true).bytes},
        {"nested_a.dcm", Nested (false).bytes},
        {"nested_b.dcm", Nested (true).bytes},
        {"implicit_a.dcm", Small_Image (IMPLICIT_LITTLE).bytes},
        {"explicit_b.dcm", Small_Image (EXPLICIT_LITTLE).bytes},
        {"big_endian.dcm", Small_Image (EXPLICIT_BIG).bytes},
        {"bare_stream.dcm", Bare_Stream ().bytes},
        {"damaged.dcm", Damaged ().bytes},
        {"damaged_header.dcm", Damaged_Header ().bytes},
        {"private_a.dcm", Private (false).bytes},
        {"private_b.dcm", Private (true).bytes},
        {"faults.dcm", Faults ().bytes},
    };
}

std::vector<Example_Pair> Example_Pairs () {
    return {
        {"ct_a.dcm", "ct_b.dcm", 12},
        {"nested_a.dcm", "nested_b.dcm", 3},
        {"implicit_a.dcm", "explicit_b.dcm", 23},
        {"explicit_b.dcm", "big_endian.dcm", 1},
        {"explicit_b.dcm", "bare_stream.dcm", 7},
        {"explicit_b.dcm", "damaged.dcm", 1},
        {"explicit_b.dcm", "damaged_header.dcm", 1},
        {"private_a.dcm", "private_b.dcm", 5},
        {"explicit_b.dcm", "faults.dcm", 14},
    };
}
