#include "tests/hostile/creators.h"

#include <algorithm>

static std::string Six_Digits (int number) {
    std::string digits = std::to_string (number);
    return std::string (6 - digits.size (), '0') + digits;
}

std::string Unknown_Creator (int number) { return Six_Digits (number) + std::string (58, 'Q'); }

std::string Known_Creator (int number) { return "Long" + Six_Digits (number); }

std::string Long_Table (void) {
    std::string text;
    for (int i = 0; i < LONG_TABLE; i++)
        text += "(0011," + std::to_string (1001 + i) + ") VR=LO desc=\"A description of some length\"\n";
    return text;
}

Stream Creators (int count, const std::function<std::string (int)> &creator) {
    static const int IN_GROUP = 240; // There is room for them in (gggg,0010) to (gggg,00FF).

    Stream   stream = Stream_Begin_File (EXPLICIT_LITTLE);
    uint16_t group  = 0x0011;
    for (int done = 0; done < count; done += IN_GROUP, group = static_cast<uint16_t> (group + 2)) {
        int number = std::min (count - done, IN_GROUP);
        for (int i = 0; i < number; i++)
            Stream_Add_Text (&stream, group, static_cast<uint16_t> (0x10 + i), "LO", creator (done + i));
        for (int i = 0; i < number; i++)
            Stream_Add_Text (&stream, group, static_cast<uint16_t> ((0x10 + i) << 8 | 1), "LO", "AB");
    }
    return stream;
}
