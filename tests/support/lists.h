// Attribute lists for tests: built in a line, shown as a text.
#pragma once

#include <string>

#include "attribute/sequence_cursor.h"

// A list that is released at the end of the test, with the cursor that walks it.
struct Test_List {
    Attribute     *first  = nullptr;
    SequenceCursor cursor = {};

    Test_List () = default;
    explicit Test_List (const Settings *settings) { cursor.settings = settings; }
    Test_List (const Test_List &)            = delete;
    Test_List &operator= (const Test_List &) = delete;
    ~Test_List ();

    void Reset ();      // The cursor to the top.
    // Appends at the cursor's place. The length is that of the value.
    Attribute *Add (uint16_t group, uint16_t element, const char *vr = "", const std::string &value = "");
    void       Open (uint16_t group, uint16_t element);     // Sequence.
    void       Item ();                                     // The next item.
    void       Close ();                                    // Sequence.
};

// A record for a template. Its value is released by Value_Release.
Attribute Record (uint16_t group, uint16_t element, const char *vr = "", const std::string &value = "",
                  uint16_t flags = ORIGIN_DICOM);

// "(0008,0016) (0040,A730)[(0008,0100)][]": tags, items in brackets.
std::string Outline (const Attribute *list);

// A line for each record with all that a reading decides, items in brackets.
std::string Fields (const Attribute *list);

std::string Value (const Attribute *attribute);     // The bytes, or "(none)".
