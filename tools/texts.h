// Text fields: a list of lines with display codes, as the log writes them, that scrolls; and, when it echoes keys, one
// line more that is typed.
#pragma once

#include "tools/sliders.h"
#include "tools/widget.h"

static const int TEXT_SIZE  = 256;      // Of the typed line, with its zero.
static const int TEXT_LINES = 10000;    // Kept; the oldest is dropped.
static const int TEXT_FACE  = 128;      // Of a font's name that is remembered, with its zero.

struct Text_Line {
    char *text;         // Owned; raw, with display codes.
    int   width;        // Pixels, when it was last drawn; what a field cuts off is not measured.
};

struct Text_Widget {
    Widget        widget;       // Colour (170,170,170) when red, green and blue are 0 at Init.
    char          text[TEXT_SIZE];      // What is being typed. Whoever changes it calls Rescale_Cursor.
    const char   *face;         // Borrowed; none is "Arial".
    int           size;         // Points; below 1 is 12.
    Drawing_Font  normal, bold, oblique;        // Owned, made by Init. None is the system font.
    int           character_width;      // Of an "H" in the normal font.
    int           pitch;        // Of a line: the normal font's height.
    int           tabs;         // Pixels from one tab stop to the third after it.
    int           cursor;       // Byte of text that the cursor stands before.
    int           echo;         // 1: typed keys are taken and shown.

    Text_Line    *lines;        // Owned ring of TEXT_LINES, or none.
    int           line_start;   // Slot of the oldest line.
    int           line_count;
    int           line_top;     // The first line shown, 0 the oldest.
    int           scrolled;     // 1 while the user has scrolled up: then new lines are not followed.
    int           active;       // 1 while the pointer is over it: then it takes the wheel.
    Slider        slider;       // Along its right inner edge.

    int           fonts_made;   // 1: for made_face and made_size.
    char          made_face[TEXT_FACE];
    int           made_size;
    int           storing;      // 1 while a line is stored: what is written meanwhile is dropped.
    int           stale;        // 1: there are changes that have not been drawn.
    uint32_t      written;      // Times of writing since it was drawn whole; see Text::Write.
};

namespace Texts {

void Init (Text_Widget *text, Window window);   // Once, and again after every change of its rectangle; lines stay.
void Exit (Text_Widget *text);                  // Releases lines, fonts and slider.

// 1 when the field takes the mouse: a press in it, or a drag of its slider. Follows the pointer into active.
int Select (Text_Widget *text, int mouse_state);

void Re_Write (Text_Widget *text);              // Draws the stored lines anew.
void Scroll (Text_Widget *text, int lines);     // Down for positive lines, within its ends; draws.

// --- typed line ---

// Takes a key code of tools/keyboard.h into the typed line while echo is on and draws it. 1 when Enter has completed it:
// the line stays until the caller empties it. Escape empties it.
int  Read_Echo (Text_Widget *text, int key);
void Rescale_Cursor (Text_Widget *text);        // Puts the cursor into the line's bounds after its text was changed.

// --- for drawing and tests ---

int         Visible_Lines (const Text_Widget *text);        // That fit into the field; at least 1.
const char *Line (const Text_Widget *text, int index);      // 0 is the oldest; "" outside.

}

namespace Text {
void Draw (Text_Widget *text);                              // Frame, fill, lines, slider.
int  Select (Text_Widget *text, int mouse_state);           // Texts::Select.

// A new last line, or several at line feeds, drawn at once. "" is an empty line; a line feed at the end adds none. Of more
// than a hundred lines in a row only some draw, together with those before them; a paint event follows the rest, so whoever
// owns the window answers that event with Draw or Re_Write. Inside a drawing session, and before Init, a line is stored and
// drawn with that event or the next line.
void Write (Text_Widget *text, const char *line);
void OverWrite (Text_Widget *text, const char *line);       // The same, in place of the last line.
}
