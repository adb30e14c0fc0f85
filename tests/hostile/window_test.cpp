// The window after hostile files were dropped on it: the next good pair is compared and shown as ever.
#include <gtest/gtest.h>
#include <string.h>

#include <filesystem>

#include "tests/hostile/hostile_window.h"
#include "tests/hostile/kinds.h"
#include "tests/hostile/many.h"

typedef std::vector<unsigned char> Bytes;

TEST (HostileWindow, CutOnes) {
    Hostile_Window window;
    Bytes          whole = Everything (EXPLICIT_LITTLE).bytes;
    for (size_t size = 0; size < whole.size (); size += 41)
        window.Take (Bytes (whole.begin (), whole.begin () + static_cast<long> (size)));
    window.Expect_Usable ();
}

// A few of each kind in every syntax, each time other ones.
TEST (HostileWindow, EveryKind) {
    static const size_t FEW = 9;

    Hostile_Window window;
    for (const Hostile_Kind &kind : HOSTILE_KINDS)
        for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
            SCOPED_TRACE (kind.name + std::to_string (syntax));
            std::vector<Hostile_File> files = kind.make (syntax);
            ASSERT_FALSE (files.empty ());
            // A step of one more than a multiple of nine, which is how many a place has: each comes in turn.
            size_t step = files.size () / FEW / 9 * 9 + 1;
            for (size_t i = step * syntax / 3; i < files.size (); i += step) {
                SCOPED_TRACE (files[i].name);
                window.Take (files[i].bytes);
            }
            window.Expect_Usable ();
        }
}

static std::string shrinking; // Cut when the other file of its pair is read.

static int Shrink_Then (Window window, int kind, const char *text) {
    if (!shrinking.empty () && strstr (text, "Reading: ") && strstr (text, "good.dcm")) {
        std::error_code ignored; // Where a file that is viewed can't be cut.
        std::filesystem::resize_file (shrinking, 100000, ignored);
        shrinking.clear ();
    }
    return Log_Program_Sink (window, kind, text);
}

TEST (HostileWindow, FileThatShrinksWhileItIsRead) {
    Hostile_Window window;
    Stream         stream = Stream_Begin_File (EXPLICIT_LITTLE);
    Stream_Add_Bytes (&stream, 0x7FE0, 0x0010, "OB", std::string (500000, 'p'));
    shrinking = window.feed.Write (stream.bytes);
    Log_Sink_Set (Shrink_Then);
    window.Drop ({shrinking, window.feed.good});
    EXPECT_EQ ("", shrinking) << "it never changed";
    Log_Sink_Set (Log_Program_Sink);
    window.shown.Select (0x7FE0, 0x0010);
    EXPECT_EQ (1, Hostile_Window::Paint (window.shown.window));
    window.Expect_Usable ();
}

TEST (HostileWindow, ManyAndDeepOnes) {
    Hostile_Window window;
    for (bool defined_length : {true, false}) {
        window.Take (Nested_Sequences (DEEP, defined_length).bytes);
        window.Expect_Usable ();
        window.Take (Empty_Items (MANY, defined_length).bytes);
        window.Expect_Usable ();
    }
    for (Order order : {ASCENDING, DESCENDING, ALL_EQUAL}) {
        window.Take (Elements_In (order, MANY).bytes);
        window.Expect_Usable ();
    }
}

// What a file says of itself is shown as far as there is room for it: names of creators become descriptions.
TEST (HostileWindow, LongTexts) {
    Hostile_Window window;
    for (size_t length : {64, 180, 1000, 60000}) {
        Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
        Stream_Add_Text (&stream, 0x0008, 0x0016, "UI", std::string (length, '1'));
        Stream_Add_Bytes (&stream, 0x0009, 0x0010, "LO", std::string (length, 'C'));
        Stream_Add_Bytes (&stream, 0x0009, 0x1001, "UN", std::string (length, '\xFF'));
        Stream_Add_Bytes (&stream, 0x0010, 0x0010, "PN", std::string (length, '%'));
        Stream_Add_Bytes (&stream, 0x0010, 0x4000, "LT", std::string (length, '\x05'));
        window.Take (stream.bytes);
        window.Expect_Usable ();
    }
}

TEST (HostileWindow, WhatIsNoFile) {
    Hostile_Window window;
    for (const std::string &name : {window.feed.tables.directory.path, std::string ("NUL"), std::string ("/dev/zero"),
                                    window.feed.tables.directory.File ("missing.dcm"), std::string ("\xFF\xFE"),
                                    window.feed.Sparse ("large.dcm", Filled_To (MOST), uintmax_t (MOST) + 1)}) {
        window.Take (name);
        window.Expect_Usable ();
    }
}
