// The value pane and the description pane: one text a row.
#include <stdio.h>
#include <string.h>

#include "compare/comparison_run.h"
#include "tools/primitives.h"
#include "view/result_view_private.h"

static const int TEXT_LEFT      = 6;  // Behind the content's left edge.
static const int TEXT_BELOW     = 4;  // Its bottom below that of the band.
static const int SELECTED_SHIFT = 62; // A selected value stands further left: the bold text is wider.
static const int NAME_A_RIGHT   = 484;
static const int VERSUS_LEFT    = 495;
static const int NAME_B_LEFT    = 535;

typedef int (*Line_Drawer) (const View::Pane *pane, const Row *row, int y);

// Every line seen whose row has an attribute.
static int Draw_Lines (const View::Pane *pane, Line_Drawer draw) {
    for (int line = pane->first; line < pane->end; line++) {
        const Row *row = &Rows.rows[Rows_At (line)];
        if (row->attribute && !draw (pane, row, View::Band_Bottom (pane, line) - TEXT_BELOW)) return 0;
    }
    return 1;
}

// --- values ----------------------------------------------------------------

static int Is_Continuation (char byte) { return (byte & 0xC0) == 0x80; }

// A text that was cut at length loses its last character if that has more bytes than one, since some may be missing.
static void Cut_Whole (char *text, int length) {
    while (length > 0 && Is_Continuation (text[length - 1])) length--;
    if (length > 0 && text[length - 1] & 0x80) length--;
    text[length] = 0;
}

// "(A) NAME" or "(B) NAME", as much of it as is drawn: its width is that of what is seen.
static void File_Text (char (*text)[Tools::DRAW_TEXT_LIMIT + 1], char side, const char *name) {
    int length = snprintf (*text, sizeof *text, "(%c) %s", side, name && *name ? name : "no file");
    if (length > Tools::DRAW_TEXT_LIMIT) Cut_Whole (*text, Tools::DRAW_TEXT_LIMIT);
}

void View::Value_Heading (const Pane *pane, int y) {
    Drawing_Font bold = Font (FONT_BOLD);
    char         text[Tools::DRAW_TEXT_LIMIT + 1];
    File_Text (&text, 'A', Comparison_Last.Name_File_A);
    Tools::DrawText (bold, pane->x0 + NAME_A_RIGHT - Tools::TextWidth (bold, text), y, text, VIEW_BLACK);
    Tools::DrawText (bold, pane->x0 + VERSUS_LEFT, y, " /vs/ ", VIEW_BLACK);
    File_Text (&text, 'B', Comparison_Last.Name_File_B);
    Tools::DrawText (bold, pane->x0 + NAME_B_LEFT, y, text, VIEW_BLACK);
}

static int Draw_Value (const View::Pane *pane, const Row *row, int y) {
    const char *text = reinterpret_cast<const char *> (row->attribute->data);
    const int   x    = pane->x0 + TEXT_LEFT;
    if (!text) return 1;
    if (View::Row_Is_Selected (row))
        Tools::DrawText (View::Font (View::FONT_FIXED_BOLD), x - SELECTED_SHIFT, y, text, View::Row_Colour (row));
    else Tools::DrawText (View::Font (View::FONT_FIXED), x, y, text, View::Row_Colour (row));
    return 1;
}

int View::Value_Lines (const Pane *pane) { return Draw_Lines (pane, Draw_Value); }

// --- descriptions ----------------------------------------------------------

void View::Description_Heading (const Pane *pane, int y) {
    Tools::DrawText (Font (FONT_BOLD), pane->x0 + 20, y, "Description", VIEW_BLACK);
}

// Accented characters come in many encodings, and no description says in which.
static void Copy_Plain (char *plain, const char *text) {
    for (; *text; text++)
        if (static_cast<unsigned char> (*text) >= 17 && static_cast<unsigned char> (*text) <= 127) *plain++ = *text;
    *plain = 0;
}

static int Draw_Description (const View::Pane *pane, const Row *row, int y) {
    char        plain[VIEW_DESCRIPTION];
    const char *text = row->attribute->description;
    if (!text) {
        snprintf (plain, sizeof plain, "%-40.40s", "Unknown tag");
    } else {
        size_t length = strlen (text);
        if (length >= VIEW_DESCRIPTION)
            return View::Limit_Passed ("length of the description", static_cast<int> (length), VIEW_DESCRIPTION - 1,
                                       row);
        Copy_Plain (plain, text);
    }
    Tools::DrawText (View::Font (View::Row_Is_Selected (row) ? View::FONT_BOLD : View::FONT_REGULAR),
                     pane->x0 + TEXT_LEFT, y, plain, View::Row_Colour (row));
    return 1;
}

int View::Description_Lines (const Pane *pane) { return Draw_Lines (pane, Draw_Description); }
