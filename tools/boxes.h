// Boxes: framed panels with a label, which may be clicked. Buttons (tools/buttons.h) are boxes with more.
#pragma once

#include "tools/mouse.h"
#include "tools/primitives.h"
#include "tools/widget.h"

enum Hover : int16_t { HOVER_UNKNOWN, HOVER_HIGHLIGHTED, HOVER_NORMAL };

struct Box_Look {
    const char            *label;           // Borrowed, or none.
    Drawing_Font           font;            // Borrowed; none is the system font.
    const Tools::Picture  *image;           // Borrowed: normal look, or none.
    const Tools::Picture  *image_highlight; // Borrowed: highlighted look, or none.
    int16_t                margin;          // 0 stands for the border width.
    Hover                  hover;
};

struct Box_Widget {
    Widget   widget;
    Box_Look look;
};

namespace Boxs {
void Init (Box_Widget *box, Window window);
void Exit (Box_Widget *box);

// 1 when the pointer is inside. Highlights the box when the pointer comes in, and draws it as before when it leaves. A
// release, and a box that ignores the mouse, change nothing.
int  Select (Box_Widget *box, int mouse_state);
}

namespace Box {
void Draw (Box_Widget *box);        // Frame, fill, label. Nothing for zero width or height.
int  Select (Box_Widget *box, int mouse_state);     // Boxs::Select.
}
