// A key counts once: what makes a character comes from the character event alone, so that a digit is not also counted
// when its key goes down.
#include "tools/keyboard.h"

static const uint32_t LAST_CHARACTER = 255;

// --- keys ------------------------------------------------------------------

static int Character_Code (uint32_t character) {
    return character >= 1 && character <= LAST_CHARACTER ? KEY_CHARACTER + (int)character : 0;
}

static int Movement_Code (int key) {
    return key > WINDOW_KEY_OTHER && key <= WINDOW_KEY_PAGE_DOWN ? KEY_MOVEMENT + key : 0;
}

int Keyboard::Code (const Window_Event *event) {
    if (event->kind == WINDOW_CHARACTER) return Character_Code (event->character);
    if (event->kind == WINDOW_KEY_DOWN || event->kind == WINDOW_SYSTEM_KEY_DOWN) return Movement_Code (event->key);
    return 0;
}

// --- cursor ----------------------------------------------------------------

// The window whose cursor was changed last, and the one it had before. A window that is gone by now is never touched:
// only a call that names the window itself does anything to it.
static Window        changed;
static Window_Cursor own;

void Cursor::Set (Window window, Window_Cursor cursor) {
    if (!window) return;
    if (window != changed) own = Window_Cursor_Get (window);
    changed = window;
    Window_Cursor_Set (window, cursor);
}

void Cursor::Restore (Window window) {
    if (!window || window != changed) return;
    changed = nullptr;
    Window_Cursor_Set (window, own);
}
