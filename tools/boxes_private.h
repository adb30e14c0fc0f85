// What boxes and buttons share: when their look changes, and the parts that they are drawn from.
#pragma once

#include "tools/boxes.h"

static const int BOX_INSET_WIDE = 5;    // Of the highlight with WIDGET_INSET_WIDE.

void Look_Init (Box_Look *look);            // The defaults of an Init.
int  Look_Inset (const Box_Look *look);     // Of the highlight from the widget's outer lines.
int  Look_Bevel (const Widget *widget, const Box_Look *look);   // Rings of the frame inside its outline.

// Follows the pointer: 1 when it is inside. changed: whether the look is another one now and has to be drawn.
int Look_Select (const Widget *widget, Box_Look *look, int mouse_state, int *changed);

// Face and frame of a widget that is drawn for the first time or anew; direction is a Tools::Cadre_Direction.
void Look_Draw (Widget *widget, Box_Look *look, int direction);

// The inside, less inset, in the image or the colour that hover asks for.
void Look_Fill (Widget *widget, const Box_Look *look, int inset);

// The label in a part of the widget, at its top unless the state asks for another place.
void Look_Label (Widget *widget, const Box_Look *look, int margin, int x, int y, int w, int h);
