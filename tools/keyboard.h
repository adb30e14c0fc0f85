// Keys as one number, and the cursor's shape.
#pragma once

#include "platform/window.h"

enum : int {
    KEY_CHARACTER = 0x200,      // Plus the character, 1..255. The digits are 0x230 to 0x239.
    KEY_MOVEMENT  = 0x100       // Plus the Window_Key.
};

namespace Keyboard {
int Code (const Window_Event *event);   // 0 for events and keys that have none.
}

namespace Cursor {
void Set (Window window, Window_Cursor cursor);
void Restore (Window window);           // The window's own, when Set has changed it.
}
