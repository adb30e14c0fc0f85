// The window after hostile files were dropped on it: the next good pair is compared and shown as ever.
#include <gtest/gtest.h>

#include <filesystem>

#include "compare/difference_list.h"
#include "platform/drawing.h"
#include "tests/app/whole_window.h"
#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/many.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"
#include "view/result_view.h"

typedef std::vector<unsigned char> Bytes;

// A window that shows a good pair, which it has to show again after everything.
struct Hostile_Window {
    Feed         feed;
    std::string  other; // Differs from feed.good in one value.
    Whole_Window shown;
    Bytes        first; // Pixels of the panes.

    Hostile_Window () : shown (800, 600, std::filesystem::current_path ().string ()) {
        Bytes changed                = Everything (EXPLICIT_LITTLE).bytes;
        changed[changed.size () - 3] = 1; // In the padding.
        other                        = feed.tables.directory.Write ("other.dcm", changed);
        Drop ({feed.good, other});
        first = Panes ();
    }

    static int Paint (Window window) {
        Window_Event event = {};
        event.kind         = WINDOW_PAINT;
        return Window_Send (window, &event);
    }

    void Drop (const std::vector<std::string> &files) {
        shown.Drop (files);
        EXPECT_EQ (1, Paint (shown.window));
    }

    Bytes Panes () const {
        const Widget &tree = Result.tree.widget;
        int           width, height;
        Bytes         pixels;
        Window_Client_Size (shown.window, &width, &height);
        Drawing drawing = Drawing_Begin (shown.window);
        for (int y = tree.y; y < tree.y + tree.h; y += 2)
            for (int x = 0; x < width; x++) {
                uint32_t pixel = Drawing_Pixel (drawing, x, y);
                for (int shift = 0; shift < 24; shift += 8)
                    pixels.push_back (static_cast<unsigned char> (pixel >> shift));
            }
        Drawing_End (drawing);
        return pixels;
    }

    static std::string Last_Lines (int count) {
        std::string text;
        int         from = Result.text.line_count - count;
        for (int i = from > 0 ? from : 0; i < Result.text.line_count; i++)
            text += Clean (Texts::Line (&Result.text, i)) + "\n";
        return text;
    }

    // Alone, with itself and with a good file; looked at from end to end.
    void Take (const std::string &name) {
        SCOPED_TRACE (name);
        Drop ({name, feed.good});
        Drop ({name, name});
        EXPECT_NE (std::string::npos, Last_Lines (4).find ("No changes\n")) << Last_Lines (20);
        shown.Scroll (100000);
        shown.Scroll (-100000);
        shown.Fold (0x0010, 0x1002);
        shown.Select (0x0010, 0x0010);
        EXPECT_EQ (1, Paint (shown.window));
    }
    void Take (const Bytes &bytes) { Take (feed.Write (bytes)); }

    void Expect_Usable () {
        Drop ({feed.good, other});
        EXPECT_NE (std::string::npos, Last_Lines (4).find ("Found 1 differences\n")) << Last_Lines (20);
        EXPECT_EQ (GOOD_ATTRIBUTES + 6 + 1, Rows.count);
        EXPECT_TRUE (first == Panes ()) << "another picture";
    }
};

TEST (HostileWindow, LiesAboutLengths) {
    Hostile_Window window;
    Bytes          whole = Everything (EXPLICIT_LITTLE).bytes;
    for (size_t size = 0; size < whole.size (); size += 41)
        window.Take (Bytes (whole.begin (), whole.begin () + static_cast<long> (size)));
    window.Expect_Usable ();
    for (const Expected_Element &element : Expect (whole).elements) {
        for (int byte : {0x01, 0x80}) {
            Bytes bytes                 = whole;
            bytes[element.pos_data - 1] = static_cast<unsigned char> (byte);
            window.Take (bytes);
        }
        window.Expect_Usable ();
    }
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
