// The off-screen window that hostile files are dropped on.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "compare/difference_list.h"
#include "platform/drawing.h"
#include "tests/app/whole_window.h"
#include "tests/hostile/feed.h"
#include "tests/support/log_recorder.h"
#include "view/result_view.h"

// A window that shows a good pair, which it has to show again after everything.
struct Hostile_Window {
    Feed         feed;
    std::string  other; // Differs from feed.good in one value.
    Whole_Window shown;
    std::vector<unsigned char>        first; // Pixels of the panes.

    Hostile_Window () : shown (800, 600, std::filesystem::current_path ().string ()) {
        std::vector<unsigned char> changed                = Everything (EXPLICIT_LITTLE).bytes;
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

    std::vector<unsigned char> Panes () const {
        const Widget &tree = Result.tree.widget;
        int           width, height;
        std::vector<unsigned char>         pixels;
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
    void Take (const std::vector<unsigned char> &bytes) { Take (feed.Write (bytes)); }

    void Expect_Usable () {
        Drop ({feed.good, other});
        EXPECT_NE (std::string::npos, Last_Lines (4).find ("Found 1 differences\n")) << Last_Lines (20);
        EXPECT_EQ (GOOD_ATTRIBUTES + 6 + 1, Rows.count);
        EXPECT_TRUE (first == Panes ()) << "another picture";
    }
};
