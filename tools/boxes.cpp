// A box is a frame with a face and a label. Boxes that can be clicked are raised; those that are never highlighted hold
// what somebody else draws in them, and are sunken.
#include "tools/boxes.h"

#include <algorithm>

#include "tools/boxes_private.h"
#include "tools/device.h"

// --- shared with buttons ---------------------------------------------------

static const int BEVEL_SHARE = 6; // The frame's rings on one side take at most this part of the short side.

static int Is_Empty (const Widget *widget) { return widget->w < 1 || widget->h < 1; }

static int Margin (const Box_Look *look) { return look->margin > 0 ? look->margin : WIDGET_BORDER; }

void Look_Init (Box_Look *look) {
    if (look->margin == 0) look->margin = WIDGET_BORDER;
    if (look->hover != HOVER_HIGHLIGHTED) look->hover = HOVER_UNKNOWN;
}

int Look_Inset (const Box_Look *look) { return Margin (look) + 1; }

int Look_Bevel (const Widget *widget, const Box_Look *look) {
    if (widget->state & WIDGET_INACTIVE) return 1;
    return std::clamp ((std::min (widget->w, widget->h) - 2) / BEVEL_SHARE, 0, Margin (look));
}

int Look_Select (const Widget *widget, Box_Look *look, int mouse_state, int *changed) {
    *changed = 0;
    if (Is_Empty (widget) || (mouse_state & 15) == MOUSE_RELEASED || widget->state & WIDGET_MOUSE_IGNORED) return 0;
    int x, y;
    Device::Pointer_Get (&x, &y);
    int   inside = Widget_Contains (widget, x, y);
    Hover hover  = inside ? HOVER_HIGHLIGHTED : HOVER_NORMAL;
    *changed     = !(widget->state & (WIDGET_INACTIVE | WIDGET_FIXED)) && look->hover != hover;
    if (*changed) look->hover = hover;
    return inside;
}

// The corners leave out the right column and the lowest row, which belong to the widget.
void Look_Fill (Widget *widget, const Box_Look *look, int inset) {
    int                   highlighted = look->hover == HOVER_HIGHLIGHTED;
    const Tools::Picture *image       = highlighted ? look->image_highlight : look->image;
    Tools::Fill_Select (widget, highlighted, image, widget->state & ~FILL_NONE, inset, widget->x,
                        widget->x + widget->w + 1, widget->y - 1, widget->y + widget->h);
}

static void Fill_Face (Widget *widget) {
    Tools::Fill_Select (widget, 0, nullptr, widget->state & ~FILL_NONE, 0, widget->x, widget->x + widget->w + 1,
                        widget->y - 1, widget->y + widget->h);
}

void Look_Draw (Widget *widget, Box_Look *look, int direction) {
    if (look->hover == HOVER_UNKNOWN) look->hover = HOVER_NORMAL;
    Fill_Face (widget);
    Tools::Cadre (widget, widget->state, direction, Look_Bevel (widget, look), widget->x, widget->x + widget->w,
                  widget->y, widget->y + widget->h);
}

// White is the palest colour of texts that is not the face's own.
void Look_Label (Widget *widget, const Box_Look *look, int margin, int x, int y, int w, int h) {
    uint32_t flags = widget->state;
    if (!(flags & (WIDGET_ALIGN_BOTTOM | WIDGET_LABEL_FREE))) flags |= WIDGET_ALIGN_TOP;
    if (flags & WIDGET_INACTIVE) flags = (flags & ~WIDGET_TEXT_BLUE) | WIDGET_TEXT_WHITE;
    Tools::Text (widget, look->font, look->label, flags, x, y, w, h, margin);
}

// --- boxes -----------------------------------------------------------------

static int Inset (const Box_Widget *box) {
    return box->widget.state & WIDGET_INSET_WIDE ? BOX_INSET_WIDE : Look_Inset (&box->look);
}

static void Draw_Inside (Box_Widget *box) {
    Widget *widget = &box->widget;
    Look_Fill (widget, &box->look, Inset (box));
    Look_Label (widget, &box->look, Inset (box), widget->x, widget->y, widget->w, widget->h);
}

void Boxs::Init (Box_Widget *box, Window window) {
    if (Widget_Init (&box->widget, window, "Boxs::Init")) Look_Init (&box->look);
}

void Boxs::Exit (Box_Widget *box) {
    Widget_Exit (&box->widget);
    box->look.hover = HOVER_UNKNOWN;
}

int Boxs::Select (Box_Widget *box, int mouse_state) {
    Widget_Check (&box->widget, "Boxs::Select");
    int changed;
    int inside = Look_Select (&box->widget, &box->look, mouse_state, &changed);
    if (changed) Draw_Inside (box);
    return inside;
}

void Box::Draw (Box_Widget *box) {
    Widget *widget = &box->widget;
    Widget_Check (widget, "Box::Draw");
    if (Is_Empty (widget)) return;
    Look_Draw (widget, &box->look, widget->state & WIDGET_FIXED ? Tools::CADRE_SUNKEN : Tools::CADRE_RAISED);
    Draw_Inside (box);
}

int Box::Select (Box_Widget *box, int mouse_state) { return Boxs::Select (box, mouse_state); }
