#include "tests/hostile/many.h"

Stream Nested_Sequences (int depth, bool defined_length) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    for (int i = 0; i < depth; i++) {
        Stream_Open_Sequence (&stream, 0x0040, 0xA730, defined_length);
        Stream_Open_Item (&stream, defined_length);
    }
    Stream_Add_Text (&stream, 0x0040, 0xA730, "LO", "innermost");
    for (int i = 0; i < depth; i++) {
        Stream_Close_Item (&stream);
        Stream_Close_Sequence (&stream);
    }
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OB", "behind");
    return stream;
}

Stream Empty_Items (int count, bool defined_length) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Open_Sequence (&stream, 0x0008, 0x1140, defined_length);
    for (int i = 0; i < count; i++) {
        Stream_Open_Item (&stream, defined_length);
        Stream_Close_Item (&stream);
    }
    Stream_Close_Sequence (&stream);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OB", "behind");
    return stream;
}

// The private tags from (0009,1000) on, without the creators' elements.
Stream Elements_In (Order order, int count) {
    static const int IN_GROUP = 0xF000;

    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    for (int i = 0; i < count; i++) {
        int number = order == ASCENDING ? i : order == DESCENDING ? count - 1 - i : 0;
        Stream_Add_Header (&stream, static_cast<uint16_t> (9 + 2 * (number / IN_GROUP)),
                           static_cast<uint16_t> (0x1000 + number % IN_GROUP), "US", 0);
    }
    return stream;
}

Stream Filled_To (uint32_t size) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
    uint32_t start = static_cast<uint32_t> (stream.bytes.size ());
    Stream_Add_Header (&stream, 0x5400, 0x0100, "SQ", size - start - 12);
    Stream_Add_Header (&stream, 0xFFFE, 0xE000, "", size - start - 20);
    Stream_Add_Header (&stream, 0x5400, 0x1010, "OB", size - start - 32);
    return stream;
}
