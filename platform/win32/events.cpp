// What the system tells a window, turned into the events of platform/window.h. The windows are Unicode ones: a character
// comes whole, or in the two halves that UTF-16 has for it, whatever the code page of the process is.
#include "platform/win32/window_private.h"

#include <stdlib.h>

#include <shellapi.h>
#include <windowsx.h>

static int depth; // Of events that are being dealt with.

// --- delivery --------------------------------------------------------------

int Window_Deliver (Window_State *state, const Window_Event *event) {
    depth++;
    int answer = state->procedure ? state->procedure (Window_Of (state), event) : 0;
    depth--;
    if (!depth) Window_Flush_All ();
    return answer;
}

void Window_Changed (Window_State *state, const RECT *part) {
    UnionRect (&state->changed, &state->changed, part);
    if (!depth) Window_Flush_All ();
}

static Window_Event Event_Of (Window_Event_Kind kind) {
    Window_Event event = {};
    event.kind         = kind;
    return event;
}

static int Deliver_Size (Window_State *state, Window_Event_Kind kind) {
    Window_Event event = Event_Of (kind);
    event.width        = state->surface.width;
    event.height       = state->surface.height;
    return Window_Deliver (state, &event);
}

// --- life ------------------------------------------------------------------

static int Surface_Follow (Window_State *state, int width, int height) {
    return Surface_Resize (&state->surface, width, height, state->background);
}

// Without memory to draw in there is no window.
static LRESULT On_Create (Window_State *state) {
    RECT client = {};
    GetClientRect (state->handle, &client);
    if (!Surface_Follow (state, client.right, client.bottom)) return -1;
    state->created = 1;
    Deliver_Size (state, WINDOW_CREATE);
    return 0;
}

// A window that is minimised keeps its size. When there is no memory for the new size, the old one stays for the program.
static void On_Size (Window_State *state, WPARAM how, int width, int height) {
    if (how == SIZE_MINIMIZED || !state->created) return;
    if (width == state->surface.width && height == state->surface.height) return;
    if (!Surface_Follow (state, width, height)) return;
    Window_Invalidate (Window_Of (state));
    Deliver_Size (state, WINDOW_SIZE);
}

static void On_Destroy (Window_State *state) {
    if (!state->created) return;
    Window_Event event = Event_Of (WINDOW_DESTROY);
    Window_Deliver (state, &event);
}

// --- painting --------------------------------------------------------------

// The screen is filled at the end of the event. In the middle of another one (a box is open) the program may not be ready
// to draw: the screen gets what was drawn last, and the event follows later.
static void On_Paint (Window_State *state) {
    PAINTSTRUCT paint;
    if (!BeginPaint (state->handle, &paint)) return;
    EndPaint (state->handle, &paint);

    UnionRect (&state->changed, &state->changed, &paint.rcPaint);
    if (depth) {
        Window_Flush_All ();
        state->paint_missed = 1;
        return;
    }
    Window_Event event = Event_Of (WINDOW_PAINT);
    Window_Deliver (state, &event);
}

static void On_Paint_Posted (Window_State *state) {
    state->paint_posted = 0;
    Window_Event event  = Event_Of (WINDOW_PAINT);
    Window_Deliver (state, &event);
}

// --- keys ------------------------------------------------------------------

struct Key_Name {
    WPARAM system;
    int    key;
};

static const Key_Name keys[] = {
    {VK_LEFT, WINDOW_KEY_LEFT},     {VK_RIGHT, WINDOW_KEY_RIGHT},   {VK_UP, WINDOW_KEY_UP},
    {VK_HOME, WINDOW_KEY_HOME},     {VK_END, WINDOW_KEY_END},       {VK_DOWN, WINDOW_KEY_DOWN_ARROW},
    {VK_DELETE, WINDOW_KEY_DELETE}, {VK_PRIOR, WINDOW_KEY_PAGE_UP}, {VK_NEXT, WINDOW_KEY_PAGE_DOWN},
};

static int On_Key (Window_State *state, Window_Event_Kind kind, WPARAM system) {
    Window_Event event = Event_Of (kind);
    Input.sent         = 0;
    event.modifiers    = Window_Modifiers ();
    for (const Key_Name &name : keys)
        if (name.system == system) event.key = name.key;
    return Window_Deliver (state, &event);
}

// The character that a unit of UTF-16 completes, or 0 while the other half is missing.
static uint32_t Character_Complete (Window_State *state, wchar_t unit) {
    static const uint32_t REPLACEMENT = 0xFFFD;

    wchar_t lead = state->lead;
    state->lead  = IS_HIGH_SURROGATE (unit) ? unit : 0;
    if (state->lead) return 0;
    if (!IS_LOW_SURROGATE (unit)) return unit;
    return lead ? 0x10000 + ((uint32_t)(lead - 0xD800) << 10) + (uint32_t)(unit - 0xDC00) : REPLACEMENT;
}

static int On_Character (Window_State *state, WPARAM unit) {
    Window_Event event = Event_Of (WINDOW_CHARACTER);
    Input.sent         = 0;
    event.modifiers    = Window_Modifiers ();
    event.character    = Character_Complete (state, (wchar_t)unit);
    return event.character ? Window_Deliver (state, &event) : 1;
}

// --- mouse -----------------------------------------------------------------

// What comes from the real mouse ends what Window_Send said of it.
static Window_Event Mouse_Event (Window_State *state, Window_Event_Kind kind, POINT place) {
    Window_Event event  = Event_Of (kind);
    Input.sent          = 0;
    state->pointer_sent = 0;
    event.x             = place.x;
    event.y             = state->surface.height - 1 - place.y;
    event.modifiers     = Window_Modifiers ();
    return event;
}

static int On_Mouse (Window_State *state, Window_Event_Kind kind, int button, LPARAM parameter) {
    POINT        place = {GET_X_LPARAM (parameter), GET_Y_LPARAM (parameter)};
    Window_Event event = Mouse_Event (state, kind, place);
    event.button       = button;
    return Window_Deliver (state, &event);
}

// The one mouse message that has its place on the screen.
static int On_Wheel (Window_State *state, WPARAM word, LPARAM parameter) {
    POINT place = {GET_X_LPARAM (parameter), GET_Y_LPARAM (parameter)};
    ScreenToClient (state->handle, &place);
    Window_Event event = Mouse_Event (state, WINDOW_WHEEL, place);
    event.wheel        = GET_WHEEL_DELTA_WPARAM (word);
    return Window_Deliver (state, &event);
}

// --- dropped files ---------------------------------------------------------

// The path of a dropped file as the program's own file operations take it, in the code page of the process. The system's
// ANSI call may count in characters where bytes are meant, so the path is taken in UTF-16. None without memory.
static char *Dropped_Path (HDROP drop, UINT index) {
    UINT     length = DragQueryFileW (drop, index, nullptr, 0);
    wchar_t *wide   = static_cast<wchar_t *> (calloc (length + 1, sizeof *wide));
    if (!wide) return nullptr;
    DragQueryFileW (drop, index, wide, length + 1);

    int   size = WideCharToMultiByte (CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    char *path = static_cast<char *> (calloc ((size_t)size + 1, 1));
    if (path) WideCharToMultiByte (CP_ACP, 0, wide, -1, path, size, nullptr, nullptr);
    free (wide);
    return path;
}

// Without memory there is no event: a drop that lost a name would be compared with the wrong file. A list without files may
// be told as one file without a name.
static void On_Drop (Window_State *state, HDROP drop) {
    UINT         count = DragQueryFileW (drop, 0xFFFFFFFF, nullptr, 0);
    char       **files = static_cast<char **> (calloc (count + 1, sizeof *files));
    Window_Event event = Event_Of (WINDOW_DROP);

    int complete = files != nullptr;
    for (UINT i = 0; complete && i < count; i++) {
        if (!DragQueryFileW (drop, i, nullptr, 0)) continue;
        files[event.file_count] = Dropped_Path (drop, i);
        if (files[event.file_count]) event.file_count++;
        else complete = 0;
    }
    event.files = files;
    if (complete) Window_Deliver (state, &event);
    for (int i = 0; i < event.file_count; i++) free (files[i]);
    free (files);
    DragFinish (drop);
}

// --- messages --------------------------------------------------------------

static int On_Focus_Lost (Window_State *state) {
    Window_Event event = Event_Of (WINDOW_FOCUS_LOST);
    return Window_Deliver (state, &event);
}

// 1 when the program has dealt with the message, so that the system should not.
static int Dispatch (Window_State *state, UINT message, WPARAM word, LPARAM parameter) {
    switch (message) {
    case WM_SIZE: On_Size (state, word, LOWORD (parameter), HIWORD (parameter)); return 1;
    case WM_PAINT: On_Paint (state); return 1;
    case MESSAGE_PAINT: On_Paint_Posted (state); return 1;
    case WM_CLOSE: Window_Destroy (Window_Of (state)); return 1;
    case WM_DESTROY: On_Destroy (state); return 1;
    case WM_KILLFOCUS: return On_Focus_Lost (state);
    case WM_KEYDOWN: return On_Key (state, WINDOW_KEY_DOWN, word);
    case WM_SYSKEYDOWN: On_Key (state, WINDOW_SYSTEM_KEY_DOWN, word); return 0; // Alt+F4, Alt+blank.
    case WM_CHAR: return On_Character (state, word);
    case WM_MOUSEMOVE: return On_Mouse (state, WINDOW_MOUSE_MOVE, 0, parameter);
    case WM_LBUTTONDOWN: return On_Mouse (state, WINDOW_BUTTON_DOWN, WINDOW_BUTTON_LEFT, parameter);
    case WM_LBUTTONUP: return On_Mouse (state, WINDOW_BUTTON_UP, WINDOW_BUTTON_LEFT, parameter);
    case WM_RBUTTONDOWN: return On_Mouse (state, WINDOW_BUTTON_DOWN, WINDOW_BUTTON_RIGHT, parameter);
    case WM_RBUTTONUP: return On_Mouse (state, WINDOW_BUTTON_UP, WINDOW_BUTTON_RIGHT, parameter);
    case WM_MBUTTONDOWN: return On_Mouse (state, WINDOW_BUTTON_DOWN, WINDOW_BUTTON_MIDDLE, parameter);
    case WM_MBUTTONUP: return On_Mouse (state, WINDOW_BUTTON_UP, WINDOW_BUTTON_MIDDLE, parameter);
    case WM_MOUSEWHEEL: return On_Wheel (state, word, parameter);
    case WM_DROPFILES: On_Drop (state, reinterpret_cast<HDROP> (word)); return 1;
    default: return 0;
    }
}

// Messages whose answer says something.
LRESULT CALLBACK Window_Message (HWND handle, UINT message, WPARAM word, LPARAM parameter) {
    if (message == WM_NCCREATE && Window_State_New) {
        Window_State_Link (Window_State_New, handle);
        Window_State_New = nullptr;
    }
    Window_State *state = Window_State_Of (reinterpret_cast<Window> (handle));
    if (!state) return DefWindowProcW (handle, message, word, parameter);

    if (message == WM_CREATE) return On_Create (state);
    if (message == WM_ERASEBKGND) return 1; // All of it is painted.
    if (message == WM_SETCURSOR && LOWORD (parameter) == HTCLIENT) {
        Window_Cursor_Show (state);
        return TRUE;
    }
    if (message == WM_NCDESTROY) Window_State_Drop (state);
    else if (Dispatch (state, message, word, parameter)) return 0;
    return DefWindowProcW (handle, message, word, parameter);
}
