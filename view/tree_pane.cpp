// The tree pane: connectors and fold boxes in a first pass, since they need to know of every level whether a row of it is
// still to come; icons and texts in a second one.
#include <stdio.h>

#include <algorithm>

#include "tools/icon.h"
#include "tools/primitives.h"
#include "view/result_view_private.h"

// --- columns ---------------------------------------------------------------

static const int TREE_LEFT    = 12; // The column of level 1 behind the content's left edge.
static const int INDENT       = 18; // Of a level.
static const int TEXT_LEFT    = 28; // Behind the icon's column.
static const int NAME_LEFT    = 118;
static const int VR_RIGHT     = 290;
static const int SIZE_LEFT    = 300;
static const int SIZE_ROOM    = 30; // At least; the difference label follows.
static const int SIZE_GAP     = 10;
static const int TEXT_BELOW   = 4;  // A text's bottom below that of its band.
static const int MIDDLE       = 7;  // Connector in its column,
static const int CONNECTOR    = 4;  // and its horizontal part above the band's bottom.
static const int CONNECTOR_TO = 19; // Where that ends.

static const uint32_t RED           = Drawing_Colour (255, 0, 0);
static const uint32_t WHITE         = Drawing_Colour (255, 255, 255);
static const uint32_t GREY          = Drawing_Colour (80, 80, 80);
static const uint32_t ROOT_RED      = Drawing_Colour (255, 64, 64);
static const uint32_t INCLUDE_OLIVE = Drawing_Colour (142, 142, 56);

void View::Tree_Heading (const Pane *pane, int y) {
    Drawing_Font bold = Font (FONT_BOLD);
    Tools::DrawText (bold, pane->x0 + 20, y, "Type   (----tag----)", VIEW_BLACK);
    Tools::DrawText (bold, pane->x0 + TREE_LEFT + 270, y, "VR", VIEW_BLACK);
    Tools::DrawText (bold, pane->x0 + TREE_LEFT + 296, y, "size", VIEW_BLACK);
    Tools::DrawText (bold, pane->x0 + TREE_LEFT + 346, y, "diff", VIEW_BLACK);
}

// --- shapes ----------------------------------------------------------------

// The pixels x to x + w - 1, y to y + h - 1.
static void Block (int x, int y, int w, int h, uint32_t colour) {
    Device::Colour_Set (colour);
    Device::FillRect (x, y - 1, x + w, y + h - 1);
}

static void Line (int x1, int y1, int x2, int y2, uint32_t colour) {
    Device::Colour_Set (colour);
    Device::MoveTo (x1, y1);
    Device::LineTo (x2, y2, 1);
}

// A block of 16 x 16 with its lower left pixel at (x, y): light from the upper left.
static void Relief (int x, int y, uint32_t colour) {
    Block (x, y, 16, 16, VIEW_BLACK);
    Block (x, y + 1, 15, 15, WHITE);
    Block (x + 1, y + 1, 14, 14, GREY);
    Block (x + 1, y + 2, 13, 13, colour);
}

// An engraved line inside of it.
static void Groove (int x, int y, int w) {
    Block (x, y, w, 1, VIEW_BLACK);
    Block (x, y - 1, w, 1, WHITE);
}

static void Root_Glyph (int x, int y) {
    Relief (x, y, ROOT_RED);
    Groove (x + 4, y + 12, 7);
    Groove (x + 4, y + 9, 7);
    Groove (x + 4, y + 6, 7);
}

static void Include_Glyph (int x, int y) {
    Relief (x, y, INCLUDE_OLIVE);
    Groove (x + 4, y + 9, 7);
}

// --- connectors and boxes --------------------------------------------------

// All take the left edge of the row's column and the bottom of its band.

static void Attribute_Connector (int x, int bottom, int is_last) {
    Line (x + MIDDLE, bottom + CONNECTOR, x + MIDDLE, bottom + VIEW_PITCH, VIEW_BLUE);
    Line (x + MIDDLE, bottom + CONNECTOR, x + CONNECTOR_TO, bottom + CONNECTOR, VIEW_BLUE);
    if (!is_last) Line (x + MIDDLE, bottom, x + MIDDLE, bottom + CONNECTOR + 1, VIEW_BLUE);
}

// A cross of short lines, 10 x 9 pixels around the connectors' corner.
static void Mark (int x, int bottom) {
    static const int SIZE = 9, CROSS_WIDTH = 2;
    const int        left = x + MIDDLE - SIZE / 2, low = bottom + CONNECTOR - SIZE / 2;
    for (int i = 0; i < SIZE; i++) {
        Line (left + i, low + i, left + i + CROSS_WIDTH, low + i, RED);
        Line (left + SIZE - 1 - i, low + i, left + SIZE - 1 - i + CROSS_WIDTH, low + i, RED);
    }
}

// The stem above joins the box to the row before, as an attribute's connector does.
static void Fold_Box (int x, int bottom, int is_folded) {
    static const int SIZE = 8, ABOVE = 1, ARM = 2;
    const int        left = x + 3, right = left + SIZE, low = bottom + ABOVE, high = low + SIZE;
    const int        middle_x = left + SIZE / 2, middle_y = low + SIZE / 2;
    Block (left, low, SIZE + 1, SIZE + 1, WHITE);
    Device::Colour_Set (VIEW_BLACK);
    Device::Rectangle (left, low, right, high);
    Line (middle_x - ARM, middle_y, middle_x + ARM + 1, middle_y, VIEW_BLACK);
    if (is_folded) Line (middle_x, middle_y - ARM, middle_x, middle_y + ARM + 1, VIEW_BLACK);
    Line (middle_x, bottom, middle_x, low, VIEW_BLUE);
    Line (middle_x, high + 1, middle_x, bottom + VIEW_PITCH, VIEW_BLUE);
    Line (right + 1, middle_y, x + CONNECTOR_TO, middle_y, VIEW_BLUE);
}

// Of the line above the first one seen a strip may show below the heading: there the upright lines lead on to it, and half a
// box would be none to click on.
static void Draw_Connectors (const View::Pane *pane, const Row *row, const uint8_t *ended) {
    const int left = pane->x0 + TREE_LEFT, bottom = View::Band_Bottom (pane, row->line);
    const int is_above = row->line < pane->first, uprights = is_above ? row->level : row->level - 1;
    for (int level = 0; level < uprights; level++) {
        const int x = left + MIDDLE + INDENT * level;
        if (!ended[level]) Line (x, bottom, x, bottom + VIEW_PITCH + 1, VIEW_BLUE);
    }
    if (is_above) return;

    const int x = left + INDENT * (row->level - 1);
    if (row->kind & (ROW_ATTRIBUTE | ROW_MARK)) Attribute_Connector (x, bottom, row->kind & ROW_LAST);
    if (row->kind & ROW_MARK) Mark (x, bottom);
    if (row->kind & (ROW_FOLDED | ROW_UNFOLDED)) Fold_Box (x, bottom, row->kind & ROW_FOLDED);
}

// Every row from the first one on is asked for its level, since those above the first line seen have set the flags. That
// is a compare and a store a row: far below a millisecond for 200,000 rows. Rows are taken in their order, so no line is
// searched.
static int Connectors (const View::Pane *pane) {
    uint8_t ended[VIEW_LEVELS] = {};
    for (int i = 0; i < Rows.count && Rows.rows[i].line < pane->end; i++) {
        const Row *row = &Rows.rows[i];
        if (row->line < 0 || row->level < 1) continue;
        if (row->level > VIEW_LEVELS) return View::Limit_Passed ("nesting level", row->level, VIEW_LEVELS, row);
        ended[row->level - 1] = (row->kind & ROW_LAST) != 0;
        if (row->line >= pane->first - 1) Draw_Connectors (pane, row, ended);
    }
    return 1;
}

// --- icons and texts -------------------------------------------------------

struct Type_Icon {
    uint16_t    type;
    const char *file;
};

// clang-format off
static const Type_Icon type_icons[] = {
    {Code ('1', ' '), "icon_type_1.tga"},
    {Code ('1', 'C'), "icon_type_1C.tga"},
    {Code ('2', ' '), "icon_type_2.tga"},
    {Code ('2', 'C'), "icon_type_2C.tga"},
    {Code ('3', ' '), "icon_type_3.tga"},
};
// clang-format on

static const char *Type_Icon_Name (uint16_t type) {
    for (const Type_Icon &entry : type_icons)
        if (entry.type == type) return entry.file;
    return "icon_type_0.tga";
}

// Reading an icon for the first time begins the session anew, clipped to the whole pane. One that can't be read isn't
// drawn: that would read it once more when only the memory for it was missing.
static void Draw_Icon (const View::Pane *pane, int x, int y, const char *name) {
    const Widget *box  = &pane->box->widget;
    const Icon   *icon = Icon_Read (box, name);
    View::Clip_Lines (pane);
    if (icon) Icon_Draw_Image (box, x, y, box->name ? box->name : "", name);
}

// One line of texts: where it stands and how it looks.
struct Text_Line_Look {
    const View::Pane *pane;
    const Row        *row;
    Drawing_Font      font;
    uint32_t          colour;
    int               x; // The icon's column.
    int               y; // Bottom of the band.
};

static void Draw_Text (const Text_Line_Look *look, int x, const char *text) {
    Tools::DrawText (look->font, x, look->y - TEXT_BELOW, text, look->colour);
}

static void Draw_Container (const Text_Line_Look *look) {
    if (look->row->line == 0) Root_Glyph (look->x, look->y - 1);
    else Draw_Icon (look->pane, look->x, look->y - 1, "icon_dot.tga");
    if (look->row->name) Draw_Text (look, look->x + TEXT_LEFT, look->row->name);
}

static int Is_Include (const Attribute *attribute) {
    return attribute->group == TAG_ANY && attribute->element == TAG_ANY;
}

static void Draw_Include (const Text_Line_Look *look) {
    char        text[Tools::DRAW_TEXT_LIMIT + 1];
    const char *name = look->row->attribute->description;
    snprintf (text, sizeof text, "include %s", name ? name : "");
    Include_Glyph (look->x, look->y - 1);
    Draw_Text (look, look->x + TEXT_LEFT, text);
}

struct Labels {
    const char *diff, *size, *vr;
};

static void Draw_Attribute (const Text_Line_Look *look, const Labels *labels) {
    const Attribute *attribute = look->row->attribute;
    char             tag[sizeof "(FFFF,FFFF)"];
    snprintf (tag, sizeof tag, "(%04X,%04X)", attribute->group, attribute->element);
    Draw_Icon (look->pane, look->x - 1, look->y - 3, Type_Icon_Name (attribute->type));
    Draw_Text (look, look->x + TEXT_LEFT, tag);
    if (look->row->name) Draw_Text (look, look->x + NAME_LEFT, look->row->name);

    const int columns = look->pane->x0 + TREE_LEFT;
    const int room    = std::max (SIZE_ROOM, Tools::TextWidth (look->font, labels->size) + SIZE_GAP);
    Draw_Text (look, columns + VR_RIGHT - Tools::TextWidth (look->font, labels->vr), labels->vr);
    Draw_Text (look, columns + SIZE_LEFT, labels->size);
    Draw_Text (look, columns + SIZE_LEFT + room, labels->diff);
}

// Labels are made of each row in turn, seen or not: a row without one of its own shows the last one made.
static void Draw_Line (const View::Pane *pane, int line) {
    const Row     *row    = &Rows.rows[Rows_At (line)];
    Text_Line_Look look   = {pane,
                             row,
                             View::Font (View::Row_Is_Selected (row) ? View::FONT_BOLD : View::FONT_REGULAR),
                             View::Row_Colour (row),
                             pane->x0 + TREE_LEFT + INDENT * row->level,
                             View::Band_Bottom (pane, line)};
    Labels         labels = {View::DiffLabel (row), View::SizeLabel (row), View::VrLabel (row)};
    if (!row->attribute) Draw_Container (&look);
    else if (Is_Include (row->attribute)) Draw_Include (&look);
    else Draw_Attribute (&look, &labels);
}

int View::Tree_Lines (const Pane *pane) {
    if (!Connectors (pane)) return 0;
    for (int line = pane->first; line < pane->end; line++) Draw_Line (pane, line);
    return 1;
}
