// Buttons: boxes that are pushed or dragged (the separators of the main window), with arrows if wanted. A long bar with
// nothing on it shows a grip in its middle; a margin of 1 lets the highlight fill the face of a thin one.
#pragma once

#include "tools/boxes.h"

struct Button_Widget {
    Widget   widget;        // WIDGET_ARROWS, WIDGET_ARROWS_ACROSS.
    Box_Look look;
    int16_t  arrow_size;    // Of each arrow, as far as there is room; 0 stands for the short side less the frame.
};

namespace Buttons {
void Init (Button_Widget *button, Window window);
void Exit (Button_Widget *button);
int  Select (Button_Widget *button, int mouse_state);   // As Boxs::Select.
}

namespace Button {
void Draw (Button_Widget *button);
int  Select (Button_Widget *button, int mouse_state);   // Buttons::Select.
}
