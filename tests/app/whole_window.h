// The whole program as its window shows it, off-screen: main window, comparison, shipped tables and icons, and a mouse. One
// at a time. Names of files are relative to a folder, so that pictures are the same on every machine.
#pragma once

#include <string>
#include <vector>

#include "attribute/settings.h"
#include "platform/window.h"
#include "tests/support/temporary.h"
#include "util/my_error_fct.h"

struct Whole_Window {
    // The folder becomes the working directory while it lives.
    explicit Whole_Window (int width, int height, const std::string &folder);
    ~Whole_Window ();
    Whole_Window (const Whole_Window &)            = delete;
    Whole_Window &operator= (const Whole_Window &) = delete;

    void Skip (const std::string &group, const std::string &element); // A pattern that comparisons leave out from now on.
    void Drop (const std::vector<std::string> &files);
    void Separators (int left, int right, int strip_height);    // Dragged there, by their left and lower edges.
    void Values_From (int x);                                   // The values scrolled to the right.
    void Scroll (int notches);                                  // The wheel over the tree; positive is down.

    // Clicks on the first row with this tag at a level; 0 when there is none or its line isn't seen. Separators can be
    // dragged, and rows clicked, when there was a drop.
    int Fold (uint16_t group, uint16_t element, int level = 1);     // On its box.
    int Select (uint16_t group, uint16_t element, int level = 1);   // On its texts.

    Window window;

private:
    int  Click (uint16_t group, uint16_t element, int level, int on_box);
    void Mouse (Window_Event_Kind kind, int x, int y);
    void Drag (int from_x, int from_y, int to_x, int to_y);

    std::string              folder_before;
    Temporary_Directory      scratch;
    Log_Settings             log_before = Log;
    Settings                 settings   = {};
    std::vector<std::string> skipped[2];        // Groups and elements, to which settings refer
    std::vector<char *>      skip_lists[2];     // by these.
};
