// The view in an off-screen window, with a merged list made by the test: laid out, clicked and watched.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "view/result_view.h"

// Places all widgets as the main window does.
void Shown_Layout (Window window, int width, int height);

struct Shown {
    explicit Shown (int width = 1400, int height = 600);
    ~Shown ();
    Shown (const Shown &)            = delete;
    Shown &operator= (const Shown &) = delete;

    Window window;

    // --- merged records, owned here ---
    std::deque<Attribute>                records;
    std::deque<std::string>              texts;
    std::deque<std::vector<Attribute *>> items;

    char      *Text (const std::string &text);      // A copy that stays.
    Attribute *Record (uint16_t group, uint16_t element, uint16_t code = 0, const char *vr = "LO", int length = 4);
    Attribute *List (const std::vector<Attribute *> &list);
    Attribute *Sequence (uint16_t group, uint16_t element, std::vector<Attribute *> lists, uint16_t code = 0);
    void       Build (Attribute *list, const char *title = "a.dcm /vs/ b.dcm");     // Rows, lines, whole window.
    void       Many (int count);                    // A flat list.
    void       Unfold_All ();

    // --- files ---
    static void Names (const char *a, const char *b);

    // --- mouse and picture ---
    void     Place (int left, int right, int strip_height = 160);   // The separators; draws everything.
    void     Scroll (float value);                  // Vertically; repaints.
    void     Move (int x, int y, int held = 0);
    void     Press (int x, int y);
    void     Release (int x, int y);
    void     Click (int x, int y);
    uint32_t Pixel (int x, int y) const;
    std::vector<uint32_t> Picture () const;         // The whole window.
    int      Band (int line) const;                 // Bottom of a line's band in the tree pane, as it is written down.
    int      Width (Drawing_Font font, const std::string &text) const;
};

// --- what was drawn --------------------------------------------------------

struct Drawn {
    Device::Call_Kind kind;
    int               x, y, w, h;
    uint32_t          colour;
    Drawing_Font      font;
    std::string       text;
};

// Collects what reaches the seam while it lives.
struct Watched {
    Watched ();
    ~Watched ();
    std::vector<Drawn> calls;

    const Drawn *Text (const std::string &text) const;      // The first one that is exactly this, or none.
    int          Count (const std::string &text) const;
    int          Count (Device::Call_Kind kind) const;
    int          Lines (int x1, int y1, int x2, int y2, uint32_t colour) const;
    std::vector<std::string> Texts () const;                // All that are not blank, in their order.
};

// --- an example ------------------------------------------------------------

// Records of every difference, of all types, nested sequences, an include entry. Some names for its rows.
void Example_Build (Shown *shown);
