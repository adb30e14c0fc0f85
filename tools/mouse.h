// What a window procedure tells a widget about the mouse.
#pragma once

enum Mouse_State {
    MOUSE_MOVED    = 0,     // No button is held.
    MOUSE_HELD     = 1,     // Moved while the left button is down.
    MOUSE_PRESSED  = 2,
    MOUSE_RELEASED = 4      // Compared with the low four bits of a state.
};
