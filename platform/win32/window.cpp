// Windows on Windows: their life, the message loop, pointer and cursors, and the message boxes. A window's opaque handle is
// the system's own. What the system tells a window is in events.cpp.
#include "platform/win32/window_private.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <shellapi.h>

#include "platform/system.h"

static const int SIZE_LIMIT  = 32767; // The system counts the places of windows in 16 bits.
static const int TITLE_LIMIT = 1024;
static const int CLASS_LIMIT = 255; // Characters of a class name.

Window_Input  Input;
Window_State *Window_State_New;

static Window_State *states; // Of all windows. There are few, and a handle that is no window of ours finds none.
static DWORD         create_error;

static Window_Box_Hook box_hook;

static HWND Handle (Window window) { return reinterpret_cast<HWND> (window); }

// --- records ---------------------------------------------------------------

Window_State *Window_State_Of (Window window) {
    Window_State *state = window ? states : nullptr;
    while (state && state->handle != Handle (window)) state = state->next;
    return state;
}

void Window_State_Link (Window_State *state, HWND handle) {
    state->handle = handle;
    state->next   = states;
    states        = state;
}

void Window_State_Drop (Window_State *state) {
    Window_State **place = &states;
    while (*place && *place != state) place = &(*place)->next;
    if (*place) *place = state->next;
    Drawing_Forget (state);
    Surface_Free (&state->surface);
    free (state);
    Input.sent = 0; // What was sent was meant for the windows of that time.
}

static int On_Screen_Count (void) {
    int count = 0;
    for (const Window_State *state = states; state; state = state->next) count += !state->off_screen;
    return count;
}

// --- creation --------------------------------------------------------------

static HICON Icon_Load (int width, int height) {
    return static_cast<HICON> (
        LoadImageA (GetModuleHandleA (nullptr), "ICON1", IMAGE_ICON, width, height, LR_DEFAULTCOLOR | LR_SHARED));
}

// A class without windows goes together with its brush: one that was left is replaced. A class with windows serves the next
// one, too, since what differs from window to window is in their records.
static int Class_Register (const wchar_t *name, uint32_t background) {
    WNDCLASSEXW kind   = {};
    kind.cbSize        = sizeof kind;
    kind.style         = CS_HREDRAW | CS_VREDRAW;
    kind.lpfnWndProc   = Window_Message;
    kind.hInstance     = GetModuleHandleA (nullptr);
    kind.hIcon         = Icon_Load (GetSystemMetrics (SM_CXICON), GetSystemMetrics (SM_CYICON));
    kind.hIconSm       = Icon_Load (GetSystemMetrics (SM_CXSMICON), GetSystemMetrics (SM_CYSMICON));
    kind.hCursor       = LoadCursor (nullptr, IDC_ARROW);
    kind.lpszClassName = name;

    UnregisterClassW (name, kind.hInstance);
    kind.hbrBackground = CreateSolidBrush (background & 0xFFFFFF);
    if (RegisterClassExW (&kind)) return 1;
    DWORD error = GetLastError ();
    DeleteObject (kind.hbrBackground);
    SetLastError (error);
    return error == ERROR_CLASS_ALREADY_EXISTS;
}

static int Limited (int value, int lowest) { return value < lowest ? lowest : value > SIZE_LIMIT ? SIZE_LIMIT : value; }

// The system chooses a place only as a whole. Where one coordinate is given, the window is moved there afterwards.
static void Place_Rest (HWND handle, const Window_Description *description) {
    RECT place = {};
    GetWindowRect (handle, &place);
    if (description->x != WINDOW_DEFAULT_POSITION) place.left = Limited (description->x, -SIZE_LIMIT);
    if (description->y != WINDOW_DEFAULT_POSITION) place.top = Limited (description->y, -SIZE_LIMIT);
    SetWindowPos (handle, nullptr, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Off-screen windows are those that only receive messages: the system makes them without a display.
static HWND Handle_Create (const wchar_t *name, const wchar_t *title, const Window_Description *description) {
    HINSTANCE program = GetModuleHandleA (nullptr);
    int       width = Limited (description->width, 0), height = Limited (description->height, 0);
    if (description->off_screen)
        return CreateWindowExW (0, name, title, WS_POPUP, 0, 0, width, height, HWND_MESSAGE, nullptr, program, nullptr);

    int  given = description->x != WINDOW_DEFAULT_POSITION && description->y != WINDOW_DEFAULT_POSITION;
    int  x     = given ? Limited (description->x, -SIZE_LIMIT) : CW_USEDEFAULT;
    int  y     = given ? Limited (description->y, -SIZE_LIMIT) : CW_USEDEFAULT;
    HWND handle =
        CreateWindowExW (0, name, title, WS_OVERLAPPEDWINDOW, x, y, width, height, nullptr, nullptr, program, nullptr);
    if (handle && !given) Place_Rest (handle, description);
    return handle;
}

static Window_State *State_Make (const Window_Description *description) {
    Window_State *state = static_cast<Window_State *> (calloc (1, sizeof *state));
    if (!state) return nullptr;
    state->procedure  = description->procedure;
    state->off_screen = description->off_screen;
    state->background = description->background;
    return state;
}

// Titles are UTF-8 whatever the code page of the process is. The class has the first characters of it.
static HWND Titled_Create (const Window_Description *description) {
    wchar_t title[TITLE_LIMIT + 1], name[CLASS_LIMIT + 1];

    const char *bytes  = description->title && description->title[0] ? description->title : "Window";
    size_t      length = strnlen (bytes, TITLE_LIMIT);
    title[Text_To_UTF16 (bytes, (int)length, title)] = 0;
    wcsncpy (name, title, CLASS_LIMIT);
    name[CLASS_LIMIT] = 0;
    return Class_Register (name, description->background) ? Handle_Create (name, title, description) : nullptr;
}

static Window Create_Failed (DWORD error) {
    free (Window_State_New); // When no window has taken it.
    Window_State_New = nullptr;
    create_error     = error ? error : ERROR_GEN_FAILURE;
    return nullptr;
}

Window Window_Create (const Window_Description *description) {
    Window_State_New = State_Make (description);
    if (!Window_State_New) return Create_Failed (ERROR_NOT_ENOUGH_MEMORY);

    HWND handle = Titled_Create (description);
    if (!handle) return Create_Failed (GetLastError ());
    if (Window_State_New) { // Somebody else's class has this name.
        DestroyWindow (handle);
        return Create_Failed (ERROR_CLASS_ALREADY_EXISTS);
    }
    if (description->accept_drops && !description->off_screen) DragAcceptFiles (handle, TRUE);
    return reinterpret_cast<Window> (handle);
}

const char *Window_Error_Text (void) {
    static char text[512];
    if (!System_Error_Message (create_error, text, sizeof text))
        snprintf (text, sizeof text, "error %lu", create_error);
    return text;
}

void Window_Destroy (Window window) {
    if (!Window_State_Of (window)) return;
    HINSTANCE program = GetModuleHandleA (nullptr);
    ATOM      name    = (ATOM)GetClassLongPtrA (Handle (window), GCW_ATOM);
    DestroyWindow (Handle (window));
    UnregisterClassA (MAKEINTATOM (name), program); // With the brush, unless there are other windows of the class.
}

// --- showing ---------------------------------------------------------------

void Window_Show (Window window) {
    const Window_State *state = Window_State_Of (window);
    if (!state || state->off_screen) return;
    ShowWindow (state->handle, SW_SHOWDEFAULT); // As whoever started the program wants it.
    UpdateWindow (Handle (window));
}

void Window_Client_Size (Window window, int *width, int *height) {
    const Window_State *state = Window_State_Of (window);
    *width                    = state ? state->surface.width : 0;
    *height                   = state ? state->surface.height : 0;
}

// The system tells of a size only when it changes, and of a frame only the whole.
void Window_Client_Resize (Window window, int width, int height) {
    const Window_State *state = Window_State_Of (window);
    if (!state) return;

    width  = Limited (width, 0);
    height = Limited (height, 0);
    if (width == state->surface.width && height == state->surface.height) {
        Window_Event event = {};
        event.kind         = WINDOW_SIZE;
        event.width        = width;
        event.height       = height;
        Window_Deliver (Window_State_Of (window), &event);
        return;
    }
    RECT frame = {}, client = {};
    GetWindowRect (state->handle, &frame);
    GetClientRect (state->handle, &client);
    SetWindowPos (state->handle, nullptr, 0, 0, width + (frame.right - frame.left) - client.right,
                  height + (frame.bottom - frame.top) - client.bottom, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window_Invalidate (Window window) {
    Window_State *state = Window_State_Of (window);
    if (!state) return;
    if (!state->off_screen) InvalidateRect (state->handle, nullptr, FALSE);
    else if (!state->paint_posted) state->paint_posted = PostMessageA (state->handle, MESSAGE_PAINT, 0, 0) != 0;
}

static void Flush (Window_State *state) {
    RECT part      = state->changed;
    state->changed = RECT {};
    if (state->off_screen || IsRectEmpty (&part)) return;
    HDC screen = GetDC (state->handle);
    if (!screen) return;
    BitBlt (screen, part.left, part.top, part.right - part.left, part.bottom - part.top, state->surface.context,
            part.left, part.top, SRCCOPY);
    ReleaseDC (state->handle, screen);
}

void Window_Flush_All (void) {
    for (Window_State *state = states; state; state = state->next) {
        Flush (state);
        if (state->paint_missed) InvalidateRect (state->handle, nullptr, FALSE);
        state->paint_missed = 0;
    }
}

void Window_Update (Window window) {
    Window_State *state = Window_State_Of (window);
    if (!state) return;
    Flush (state);
    GdiFlush ();
}

// --- loop ------------------------------------------------------------------

// With nothing on the screen nobody could end the loop: it then only delivers what is waiting.
static int Is_Waiting (MSG *message) {
    return PeekMessageW (message, nullptr, 0, 0, PM_NOREMOVE) || On_Screen_Count ();
}

int Window_Loop (void) {
    MSG message;

    if (PeekMessageW (&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) return (int)message.wParam;
    while (Is_Waiting (&message)) {
        BOOL got = GetMessageW (&message, nullptr, 0, 0);
        if (got == 0) return (int)message.wParam;
        if (got < 0) break;
        TranslateMessage (&message);
        DispatchMessageW (&message);
    }
    return 0;
}

void Window_Quit (int code) { PostQuitMessage (code); }

// What buttons, modifiers and pointer are according to an event that was sent.
static void Input_Follow (Window_State *state, const Window_Event *event) {
    if (event->kind < WINDOW_KEY_DOWN || event->kind > WINDOW_WHEEL || event->kind == WINDOW_CHARACTER) return;
    if (!Input.sent) Input = Window_Input {1, 0, 0};
    Input.modifiers = event->modifiers;
    if (event->kind < WINDOW_MOUSE_MOVE) return;

    if (event->kind == WINDOW_BUTTON_DOWN) Input.buttons |= event->button;
    if (event->kind == WINDOW_BUTTON_UP) Input.buttons &= ~event->button;
    state->pointer_sent = 1;
    state->pointer_x    = event->x;
    state->pointer_y    = event->y;
}

int Window_Send (Window window, const Window_Event *event) {
    Window_State *state = Window_State_Of (window);
    if (!state) return 0;
    Input_Follow (state, event);
    return Window_Deliver (state, event);
}

// --- pointer ---------------------------------------------------------------

// What is sent to an off-screen window names it anyway.
void Window_Capture (Window window) {
    const Window_State *state = Window_State_Of (window);
    if (state && !state->off_screen) SetCapture (state->handle);
}

void Window_Capture_End (void) { ReleaseCapture (); }

void Window_Pointer (Window window, int *x, int *y) {
    const Window_State *state = Window_State_Of (window);
    *x = *y = 0;
    if (!state) return;
    if (state->off_screen || state->pointer_sent) {
        *x = state->pointer_x;
        *y = state->pointer_y;
        return;
    }
    POINT place;
    if (!GetCursorPos (&place) || !ScreenToClient (state->handle, &place)) return;
    *x = place.x;
    *y = state->surface.height - 1 - place.y;
}

static int Is_Down_Now (int key) { return (GetAsyncKeyState (key) & 0x8000) != 0; }

// The system tells the state of the buttons as they are built, not as the user has swapped them.
int Window_Button_Down (int button) {
    int swapped = GetSystemMetrics (SM_SWAPBUTTON);

    if (button != WINDOW_BUTTON_LEFT && button != WINDOW_BUTTON_RIGHT && button != WINDOW_BUTTON_MIDDLE) return 0;
    if (Input.sent) return (Input.buttons & button) != 0;
    if (button == WINDOW_BUTTON_LEFT) return Is_Down_Now (swapped ? VK_RBUTTON : VK_LBUTTON);
    if (button == WINDOW_BUTTON_RIGHT) return Is_Down_Now (swapped ? VK_LBUTTON : VK_RBUTTON);
    return Is_Down_Now (VK_MBUTTON);
}

// The high bit is whether a key is down, the low one whether it is locked.
static int Is_Down (int key) { return (GetKeyState (key) & 0x8000) != 0; }

int Window_Modifiers (void) {
    if (Input.sent) return Input.modifiers;
    return (Is_Down (VK_SHIFT) ? WINDOW_SHIFT : 0) | (Is_Down (VK_CONTROL) ? WINDOW_CONTROL : 0) |
           (Is_Down (VK_MENU) ? WINDOW_ALT : 0);
}

int Window_Modifier_Down (int modifier) {
    if (modifier != WINDOW_SHIFT && modifier != WINDOW_CONTROL && modifier != WINDOW_ALT) return 0;
    return (Window_Modifiers () & modifier) != 0;
}

// Elsewhere the pointer belongs to others: the frame, or another window.
static int Has_Pointer (const Window_State *state) {
    POINT place;
    RECT  client;

    if (state->off_screen || !GetCursorPos (&place)) return 0;
    if (GetCapture () == state->handle) return 1;
    if (WindowFromPoint (place) != state->handle || !ScreenToClient (state->handle, &place)) return 0;
    return GetClientRect (state->handle, &client) && PtInRect (&client, place);
}

// A program that is busy hears nothing of the pointer, so the cursor is changed at once.
void Window_Cursor_Set (Window window, Window_Cursor cursor) {
    Window_State *state = Window_State_Of (window);
    if (!state) return;
    state->cursor = cursor;
    if (Has_Pointer (state)) Window_Cursor_Show (state);
}

Window_Cursor Window_Cursor_Get (Window window) {
    const Window_State *state = Window_State_Of (window);
    return state ? state->cursor : WINDOW_CURSOR_ARROW;
}

void Window_Cursor_Show (const Window_State *state) {
    LPSTR name = IDC_ARROW;
    switch (state->cursor) {
    case WINDOW_CURSOR_ARROW: break;
    case WINDOW_CURSOR_WEST_EAST: name = IDC_SIZEWE; break;
    case WINDOW_CURSOR_NORTH_SOUTH: name = IDC_SIZENS; break;
    case WINDOW_CURSOR_ALL: name = IDC_SIZEALL; break;
    case WINDOW_CURSOR_WAIT: name = IDC_WAIT; break;
    }
    SetCursor (LoadCursorA (nullptr, name));
}

// --- message boxes ---------------------------------------------------------

static UINT Icon_Flag (Window_Icon icon) {
    switch (icon) {
    case WINDOW_ICON_INFORMATION: return MB_ICONINFORMATION;
    case WINDOW_ICON_WARNING: return MB_ICONEXCLAMATION;
    case WINDOW_ICON_ERROR: return MB_ICONSTOP;
    case WINDOW_ICON_QUESTION: return MB_ICONQUESTION;
    default: return 0;
    }
}

// A box that belongs to a window stays above it. One without an owner would open behind the windows of other programs, so
// it is made topmost. Where no box can be shown (no desktop), its texts go to standard error.
static int Box_Show (Window owner, const char *text, const char *caption, UINT flags) {
    const Window_State *state = Window_State_Of (owner);
    if (state && state->off_screen) owner = nullptr;
    Window_Flush_All (); // Events wait for the box, and what was drawn in them should not.

    UINT above  = owner ? MB_APPLMODAL : MB_TASKMODAL | MB_TOPMOST | MB_SETFOREGROUND;
    int  button = MessageBoxA (Handle (owner), text, caption, flags | above);

    if (button <= 0) {
        fprintf (stderr, "%s\n%s\n", caption, text);
        fflush (stderr);
    }
    return button;
}

void Window_Message_Box (Window owner, const char *text, const char *caption, Window_Icon icon) {
    if (box_hook) box_hook (owner, text, caption, icon);
    else Box_Show (owner, text, caption, MB_OK | Icon_Flag (icon));
}

int Window_Question_Box (Window owner, const char *text, const char *caption) {
    if (box_hook) return box_hook (owner, text, caption, WINDOW_ICON_QUESTION);
    return Box_Show (owner, text, caption, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void Window_Box_Hook_Set (Window_Box_Hook hook) { box_hook = hook; }

// --- messages --------------------------------------------------------------

void Window_Post_Thread_Message (Window window) {
    if (window) PostMessageA (Handle (window), MESSAGE_THREAD, 0, 0);
}
