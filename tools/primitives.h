// What widgets are drawn with: fills, frames, arrows, texts. Each operation checks the widget, then opens and closes a
// session of its own on the widget's window, with the widget's clip. Rectangles are given as x1, x2, y1, y2 and filled by
// the rule of tools/device.h.
#pragma once

#include <stdint.h>

#include "tools/widget.h"

namespace Tools {

// --- fills -----------------------------------------------------------------

void Clear (Widget *widget);    // The rectangle and its frame in the widget's colour. Nothing when w or h is below 1.
void Fill (Widget *widget, uint32_t flags, int x1, int x2, int y1, int y2);     // Nothing when inactive or FILL_NONE.
void Fill_Blue   (Widget *widget, int x1, int x2, int y1, int y2);              // These: nothing when inactive.
void Fill_Grey   (Widget *widget, int x1, int x2, int y1, int y2);
void Fill_Red    (Widget *widget, int x1, int x2, int y1, int y2);
void Fill_Yellow (Widget *widget, int x1, int x2, int y1, int y2);
void Fill_Green  (Widget *widget, int x1, int x2, int y1, int y2);

// An image with its own size, blue, green, red, alpha. Borrowed by whoever names it.
struct Picture {
    const uint8_t *pixels;
    int            width, height;
};

// The rectangle less inset on each side: with the image (what doesn't fit is cut), else in the highlight colour when
// selected, else in the widget's colour. Nothing with FILL_NONE.
void Fill_Select (Widget *widget, int selected, const Picture *image, uint32_t flags, int inset, int x1, int x2, int y1,
                  int y2);

// --- frames ----------------------------------------------------------------

void Cadre_Outline (Widget *widget, int x1, int x2, int y1, int y2);

enum Cadre_Direction { CADRE_RAISED = 0, CADRE_SUNKEN = 1 };

// A black outline, unless state has WIDGET_NO_OUTLINE, and inside it depth rings of light and shade: lines at x1, x2, y1
// and y2, and so on inwards.
void Cadre (Widget *widget, uint32_t state, int direction, int depth, int x1, int x2, int y1, int y2);

enum Arrow_Direction { ARROW_LEFT, ARROW_RIGHT, ARROW_UP, ARROW_DOWN };

// An arrow head in the middle of the rectangle and its frame, about a third of its short side. An inactive widget's is
// drawn in light grey, a pressed one sunken.
void Arrow (Widget *widget, int direction, int pressed, int x1, int x2, int y1, int y2);

// --- texts -----------------------------------------------------------------

// A text in the rectangle: one line with its tabs, or with WIDGET_VERTICAL one character a line; alignment and colour by
// flags. Cut at the left and right inset and where the rectangle ends; too long to be centred, it shows its beginning.
// Texts up to 128 characters lose every "&".
void Text (Widget *widget, Drawing_Font font, const char *text, uint32_t flags, int x, int y, int w, int h, int margin);

static const int DRAW_TEXT_LIMIT = 255;     // Bytes that DrawText draws at most.

// Inside a session: at most 255 bytes of a text with tab stops every 4 average character widths, counted from x, its
// bottom at y. A character is never cut in its middle. Gives the x behind the text.
int DrawText (Drawing_Font font, int x, int y, const char *text, uint32_t colour);

// Inside a session: the text's extent plus 3 average character widths for each tab.
int TextWidth (Drawing_Font font, const char *text);

// Bytes of the character that a terminated text starts with, at least 1: a byte that starts none in UTF-8 is one by itself.
int Character_Length (const char *text);

// --- library ---------------------------------------------------------------

// Who this library is; static text. None when check is another version than this one.
const char *Banner (const char *check);

}
