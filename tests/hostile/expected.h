// What reading a file must give, told by a second reader that was written for the tests alone: it works on the bytes of the
// whole file, without buffer, source or log, so that it shares no code with the program but the dictionary's VRs. Without
// settings or with the usual ones (explicit VR little endian at the start, no vendor). It knows no JPEG stream without items.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

struct Expected_Element {
    uint16_t group, element, vr; // vr: the stream's, 0 when it has none.
    int32_t  length;             // What the record says.
    size_t   pos_tag, pos_data;
    int      length_size; // Bytes of the length field, which ends at pos_data.
    bool     big;         // The byte order of that field.
    bool     has_data;
};

struct Expected_Reading {
    bool                          readable = false; // There is room for the mark.
    std::vector<Expected_Element> elements;
    long                          stopped = -1; // The position told as that of an early stop; -1 when there is none.
    int                           odd     = 0;  // Warnings about odd lengths,
    int                           cut     = 0;  // and about lengths that pass the end.

    int Attributes () const; // Elements that are neither items nor delimiters.
};

Expected_Reading Expect (const std::vector<unsigned char> &bytes);

// "(0008,0060) CS 2 at 200, 208, value", a line an element: what a test compares with the list that was read.
std::string Text_Of (const Expected_Element &element);
