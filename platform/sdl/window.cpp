// Windows and their events. A window is a picture that the program draws in (drawing.cpp); one on the screen has an SDL
// window as well, to which what has been drawn is copied when nothing else is left to do. The program's y grows upwards
// and SDL's downwards, so each event is turned over here.
#include "platform/window.h"

#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/sdl/private.h"
#include "platform/utf8.h"

static Window windows;   // All that have not been destroyed.
static Window captured;  // Gets all mouse events. Borrowed.
static Window alone;     // Gets all events there are: a box. Borrowed.
static int    buttons;   // Window_Button bits that are down.
static int    modifiers; // Window_Modifier bits.
static int    quitting;  // Window_Quit was called, with this code.
static int    quit_code;
static char   error_text[512];

// --- list of windows -------------------------------------------------------

Window Window_On_Screen (void) {
    for (Window window = windows; window; window = window->next)
        if (window->shown) return window;
    return nullptr;
}

static Window Window_Of (Uint32 id) {
    for (Window window = windows; window; window = window->next)
        if (window->shown && SDL_GetWindowID (window->shown) == id) return window;
    return nullptr;
}

// The window that input with this number belongs to; none when another one is alone.
static Window Input_Window (Uint32 id) {
    Window window = Window_Of (id);
    return alone && window != alone ? nullptr : window;
}

static void List_Remove (Window window) {
    for (Window *link = &windows; *link; link = &(*link)->next)
        if (*link == window) {
            *link = window->next;
            return;
        }
}

// --- delivering events -----------------------------------------------------

// The procedure may destroy its window meanwhile; whoever uses the window afterwards calls Window_Hold around both.
static void Window_Hold (Window window) { window->busy++; }

static void Window_Let_Go (Window window) {
    window->busy--;
    Window_Release (window);
}

static int Deliver (Window window, const Window_Event *event) {
    if (!window->procedure || window->destroyed) return 0;
    Window_Hold (window);
    if (event->kind == WINDOW_PAINT) window->invalid = 0;
    int answer = window->procedure (window, event);
    Window_Let_Go (window);
    return answer;
}

static Window_Event Event_Of (Window_Event_Kind kind) {
    Window_Event event = {};
    event.kind         = kind;
    event.modifiers    = modifiers;
    return event;
}

static void Deliver_Size (Window window, Window_Event_Kind kind) {
    Window_Event event = Event_Of (kind);
    event.width        = window->width;
    event.height       = window->height;
    Deliver (window, &event);
}

static void Paint (Window window) {
    window->invalid    = 0;
    Window_Event event = Event_Of (WINDOW_PAINT);
    Deliver (window, &event);
}

static int Is_Mouse_Event (Window_Event_Kind kind) {
    return kind == WINDOW_MOUSE_MOVE || kind == WINDOW_BUTTON_DOWN || kind == WINDOW_BUTTON_UP || kind == WINDOW_WHEEL;
}

int Window_Send (Window window, const Window_Event *event) {
    if (window->destroyed) return 0;
    int is_mouse = Is_Mouse_Event (event->kind);
    if (is_mouse) {
        window->x             = event->x;
        window->y             = event->y;
        window->pointer_known = 1;
    }
    if (is_mouse || event->kind == WINDOW_KEY_DOWN || event->kind == WINDOW_SYSTEM_KEY_DOWN)
        modifiers = event->modifiers;
    if (event->kind == WINDOW_BUTTON_DOWN) buttons |= event->button;
    if (event->kind == WINDOW_BUTTON_UP) buttons &= ~event->button;
    return Deliver (window, event);
}

// --- the screen ------------------------------------------------------------

static const char *Error_Set (const char *format, ...) __attribute__ ((format (printf, 1, 2)));

static const char *Error_Set (const char *format, ...) {
    va_list values;
    va_start (values, format);
    vsnprintf (error_text, sizeof error_text, format, values);
    va_end (values);
    return error_text;
}

// What the library would decide otherwise, being made for games.
static void Hints_Set (void) {
    SDL_SetHint (SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint (SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint (SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint (SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint (SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint (SDL_HINT_APP_NAME, "Tagwright");
    // Others show nothing, and a window that nobody sees is worse than a message. SDL_VIDEODRIVER overrides it.
    SDL_SetHint (SDL_HINT_VIDEODRIVER, getenv ("WAYLAND_DISPLAY") ? "x11,wayland" : "x11");
    SDL_setenv ("SDL_VIDEO_X11_WMCLASS", "tagwright", 0);
    SDL_setenv ("SDL_VIDEO_WAYLAND_WMCLASS", "tagwright", 0);
}

// An X client ends at the first error unless it handles errors. Ours come from windows that are gone when a message reaches
// them: that of a file manager which ended in the midst of a drag, or a box of ours that the library still wants to wake.
// When the connection itself breaks, the X library says so and ends the program with 1; that stays.
static int X_Error (void *, void *) { return 0; }

// The library loads X by itself when there is one, so the module isn't linked with it.
static void X_Errors_Ignore (void) {
    typedef int (*Handler) (void *, void *);
    typedef Handler (*Handler_Set) (Handler);
    void       *x11 = SDL_LoadObject ("libX11.so.6");
    Handler_Set set = x11 ? reinterpret_cast<Handler_Set> (SDL_LoadFunction (x11, "XSetErrorHandler")) : nullptr;
    if (set) set (X_Error);
}

static int Screen_Open (void) {
    if (SDL_WasInit (SDL_INIT_VIDEO)) return 1;
    SDL_SetMainReady ();
    Hints_Set ();
    if (SDL_InitSubSystem (SDL_INIT_VIDEO)) {
        Error_Set ("The window needs a display: is DISPLAY or WAYLAND_DISPLAY set, and may this user draw there? (%s)",
                   SDL_GetError ());
        return 0;
    }
    const char *driver = SDL_GetCurrentVideoDriver ();
    if (driver && !strcmp (driver, "x11")) {
        X_Errors_Ignore ();
        // Pixels go to an X server faster than through OpenGL, which a remote display has not.
        SDL_SetHint (SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    }
    SDL_StartTextInput ();
    return 1;
}

static int Screen_Place (int place) { return place == WINDOW_DEFAULT_POSITION ? (int)SDL_WINDOWPOS_UNDEFINED : place; }

// No window is made larger than all screens together: its pictures would take memory for what nobody sees.
static void Screen_Limit (int *width, int *height) {
    SDL_Rect all = {}, one;
    for (int i = SDL_GetNumVideoDisplays (); i-- > 0;)
        if (!SDL_GetDisplayBounds (i, &one)) SDL_UnionRect (&all, &one, &all);
    if (all.w > 0 && *width > all.w) *width = all.w;
    if (all.h > 0 && *height > all.h) *height = all.h;
}

static int Screen_Window_Create (Window window, const Window_Description *description) {
    window->shown = SDL_CreateWindow (description->title ? description->title : "", Screen_Place (description->x),
                                      Screen_Place (description->y), window->width, window->height,
                                      SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE);
    if (!window->shown) return Error_Set ("The window can't be made. (%s)", SDL_GetError ()), 0;
    Screen_Icon_Set (window->shown);
    return 1;
}

// What has been drawn since the last time. The window may have another size already; its event comes.
static void Present (Window window) {
    Area dirty = window->dirty;
    if (!window->shown || Area_Is_Empty (&dirty)) return;
    SDL_Surface *screen = SDL_GetWindowSurface (window->shown);
    SDL_Surface *drawn  = SDL_CreateRGBSurfaceWithFormatFrom (window->pixels, window->width, window->height, 32,
                                                              window->width * 4, SDL_PIXELFORMAT_RGB888);
    SDL_Rect rectangle  = {dirty.left, window->height - dirty.top, dirty.right - dirty.left, dirty.top - dirty.bottom};
    SDL_Rect place      = rectangle;
    if (screen && drawn && !SDL_BlitSurface (drawn, &rectangle, screen, &place)) {
        SDL_UpdateWindowSurfaceRects (window->shown, &place, 1);
        window->dirty = {};
    }
    SDL_FreeSurface (drawn);
}

static void Touch_All (Window window) {
    Area all = {0, 0, window->width, window->height};
    Picture_Touch (window, &all);
}

// --- windows ---------------------------------------------------------------

Window Window_Create (const Window_Description *description) {
    int width = description->width, height = description->height;
    if (!description->off_screen) {
        if (!Screen_Open ()) return nullptr;
        Screen_Limit (&width, &height);
    }
    Window window = static_cast<Window> (calloc (1, sizeof *window));
    if (!window) return Error_Set ("There is not enough memory for a window."), nullptr;
    window->background   = description->background;
    window->accept_drops = description->accept_drops;
    if (!Picture_Create (window, width, height)) {
        Error_Set ("A window of %d x %d pixels can't be made.", width, height);
        free (window);
        return nullptr;
    }
    if (!description->off_screen && !Screen_Window_Create (window, description)) {
        Picture_Free (window);
        free (window);
        return nullptr;
    }
    window->procedure = description->procedure;
    window->next      = windows;
    windows           = window;
    Window_Hold (window);
    Deliver_Size (window, WINDOW_CREATE);
    int refused = window->destroying;
    Window_Let_Go (window);
    return refused ? Error_Set ("The window was closed while it was made."), nullptr : window;
}

const char *Window_Error_Text (void) { return error_text; }

static void Drop_Clear (Drop *drop) {
    for (int i = 0; i < drop->count; i++) SDL_free (drop->files[i]);
    free (drop->files);
    *drop = {};
}

void Window_Release (Window window) {
    if (!window->destroyed || window->busy || window->drawing.window) return;
    Picture_Free (window);
    Drop_Clear (&window->drop);
    free (window);
}

void Window_Destroy (Window window) {
    if (window->destroying) return; // Its procedure, or whoever that has called, is at it.
    window->destroying = 1;
    Window_Hold (window);
    Window_Event event = Event_Of (WINDOW_DESTROY);
    Deliver (window, &event);
    if (captured == window) Window_Capture_End ();
    List_Remove (window);
    if (window->shown) SDL_DestroyWindow (window->shown);
    window->shown     = nullptr;
    window->destroyed = 1;
    Window_Let_Go (window);
}

void Window_Show (Window window) {
    if (!window->shown) return;
    SDL_ShowWindow (window->shown);
    Touch_All (window);
    Window_Hold (window);
    Paint (window);
    Present (window);
    Window_Let_Go (window);
}

void Window_Client_Size (Window window, int *width, int *height) {
    *width  = window->width;
    *height = window->height;
}

// Without memory for a picture of the new size the old one stays, and the program draws as if nothing had happened.
static void Resized (Window window, int width, int height) {
    if (window->destroyed || (width == window->width && height == window->height)) return;
    if (!Picture_Create (window, width, height)) return;
    window->invalid = 1;
    Deliver_Size (window, WINDOW_SIZE);
}

void Window_Client_Resize (Window window, int width, int height) {
    if (window->shown && width > 0 && height > 0) {
        SDL_SetWindowSize (window->shown, width, height);
        SDL_GetWindowSize (window->shown, &width, &height);
    }
    Resized (window, width, height);
}

void Window_Invalidate (Window window) { window->invalid = 1; }

void Window_Update (Window window) { Present (window); }

// --- pointer ---------------------------------------------------------------

void Window_Capture (Window window) {
    captured = window;
    if (window->shown) SDL_CaptureMouse (SDL_TRUE);
}

void Window_Capture_End (void) {
    if (captured && captured->shown) SDL_CaptureMouse (SDL_FALSE);
    captured = nullptr;
}

// While the pointer is over the window, its events tell where it is; a later place would not fit to the event at hand.
void Window_Pointer (Window window, int *x, int *y) {
    if (window->shown && !window->pointer_known) {
        int left, top, screen_x, screen_y;
        SDL_GetGlobalMouseState (&screen_x, &screen_y);
        SDL_GetWindowPosition (window->shown, &left, &top);
        window->x = screen_x - left;
        window->y = window->height - 1 - (screen_y - top);
    }
    *x = window->x;
    *y = window->y;
}

int Window_Button_Down (int button) {
    int known = button == WINDOW_BUTTON_LEFT || button == WINDOW_BUTTON_RIGHT || button == WINDOW_BUTTON_MIDDLE;
    return known && buttons & button;
}

int Window_Modifier_Down (int modifier) {
    int known = modifier == WINDOW_SHIFT || modifier == WINDOW_CONTROL || modifier == WINDOW_ALT;
    return known && modifiers & modifier;
}

static SDL_Cursor *Cursor_Of (Window_Cursor cursor) {
    static const SDL_SystemCursor SHAPES[] = {SDL_SYSTEM_CURSOR_ARROW, SDL_SYSTEM_CURSOR_SIZEWE,
                                              SDL_SYSTEM_CURSOR_SIZENS, SDL_SYSTEM_CURSOR_SIZEALL,
                                              SDL_SYSTEM_CURSOR_WAIT};
    static SDL_Cursor            *cursors[WINDOW_CURSOR_WAIT + 1]; // Kept until the program ends.
    if (!cursors[cursor]) cursors[cursor] = SDL_CreateSystemCursor (SHAPES[cursor]);
    return cursors[cursor];
}

void Window_Cursor_Set (Window window, Window_Cursor cursor) {
    if (cursor < WINDOW_CURSOR_ARROW || cursor > WINDOW_CURSOR_WAIT) return;
    window->cursor = cursor;
    if (window->shown) SDL_SetCursor (Cursor_Of (cursor));
}

Window_Cursor Window_Cursor_Get (Window window) { return window->cursor; }

// --- mouse -----------------------------------------------------------------

static int Buttons_Of (Uint32 state) {
    return (state & SDL_BUTTON_LMASK ? WINDOW_BUTTON_LEFT : 0) | (state & SDL_BUTTON_RMASK ? WINDOW_BUTTON_RIGHT : 0) |
           (state & SDL_BUTTON_MMASK ? WINDOW_BUTTON_MIDDLE : 0);
}

static int Button_Of (Uint8 button) {
    switch (button) {
    case SDL_BUTTON_LEFT: return WINDOW_BUTTON_LEFT;
    case SDL_BUTTON_RIGHT: return WINDOW_BUTTON_RIGHT;
    case SDL_BUTTON_MIDDLE: return WINDOW_BUTTON_MIDDLE;
    default: return 0;
    }
}

static Window Mouse_Window (Uint32 id) { return captured && captured->shown ? captured : Input_Window (id); }

static Window_Event Mouse_Event (Window window, Window_Event_Kind kind, int x, int y) {
    Window_Event event = Event_Of (kind);
    event.x            = x;
    event.y            = window->height - 1 - y;
    return event;
}

// Of a run of movements only the last one counts: drawing for each would lag behind the hand.
static void Last_Of_Motions (SDL_Event *motion) {
    SDL_Event next;
    while (SDL_PeepEvents (&next, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) == 1 &&
           next.type == SDL_MOUSEMOTION && next.motion.windowID == motion->motion.windowID &&
           next.motion.state == motion->motion.state)
        SDL_PeepEvents (motion, 1, SDL_GETEVENT, SDL_MOUSEMOTION, SDL_MOUSEMOTION);
}

static void On_Motion (SDL_Event *from) {
    Last_Of_Motions (from);
    Window window = Mouse_Window (from->motion.windowID);
    if (!window) return;
    buttons            = Buttons_Of (from->motion.state);
    Window_Event event = Mouse_Event (window, WINDOW_MOUSE_MOVE, from->motion.x, from->motion.y);
    Window_Send (window, &event);
}

static void On_Button (const SDL_MouseButtonEvent *from) {
    Window window = Mouse_Window (from->windowID);
    if (!window || !Button_Of (from->button)) return;
    Window_Event_Kind kind  = from->state == SDL_PRESSED ? WINDOW_BUTTON_DOWN : WINDOW_BUTTON_UP;
    Window_Event      event = Mouse_Event (window, kind, from->x, from->y);
    event.button            = Button_Of (from->button);
    Window_Send (window, &event);
}

static void On_Wheel (const SDL_MouseWheelEvent *from) {
    Window window = Mouse_Window (from->windowID);
    if (!window) return;
    double turn = (double)from->preciseY * WINDOW_NOTCH + window->wheel_rest;
    if (from->direction == SDL_MOUSEWHEEL_FLIPPED) turn = -(double)from->preciseY * WINDOW_NOTCH + window->wheel_rest;
    Window_Event event = Mouse_Event (window, WINDOW_WHEEL, from->mouseX, from->mouseY);
    event.wheel        = (int)lround (turn);
    window->wheel_rest = turn - event.wheel;
    if (event.wheel) Window_Send (window, &event);
}

// --- keys ------------------------------------------------------------------

struct Key {
    SDL_Keycode code;
    int         key;
    uint32_t    character; // 0: it makes none.
};

// clang-format off
static const Key KEYS[] = {
    {SDLK_LEFT,      WINDOW_KEY_LEFT,       0},
    {SDLK_RIGHT,     WINDOW_KEY_RIGHT,      0},
    {SDLK_UP,        WINDOW_KEY_UP,         0},
    {SDLK_DOWN,      WINDOW_KEY_DOWN_ARROW, 0},
    {SDLK_HOME,      WINDOW_KEY_HOME,       0},
    {SDLK_END,       WINDOW_KEY_END,        0},
    {SDLK_DELETE,    WINDOW_KEY_DELETE,     0},
    {SDLK_PAGEUP,    WINDOW_KEY_PAGE_UP,    0},
    {SDLK_PAGEDOWN,  WINDOW_KEY_PAGE_DOWN,  0},
    {SDLK_BACKSPACE, WINDOW_KEY_OTHER,      8},
    {SDLK_TAB,       WINDOW_KEY_OTHER,      9},
    {SDLK_RETURN,    WINDOW_KEY_OTHER,      13},
    {SDLK_KP_ENTER,  WINDOW_KEY_OTHER,      13},
    {SDLK_ESCAPE,    WINDOW_KEY_OTHER,      27}
};

// The same on the number pad, while it doesn't make digits.
static const Key PAD_KEYS[] = {
    {SDLK_KP_4,      WINDOW_KEY_LEFT,       0},
    {SDLK_KP_6,      WINDOW_KEY_RIGHT,      0},
    {SDLK_KP_8,      WINDOW_KEY_UP,         0},
    {SDLK_KP_2,      WINDOW_KEY_DOWN_ARROW, 0},
    {SDLK_KP_7,      WINDOW_KEY_HOME,       0},
    {SDLK_KP_1,      WINDOW_KEY_END,        0},
    {SDLK_KP_PERIOD, WINDOW_KEY_DELETE,     0},
    {SDLK_KP_9,      WINDOW_KEY_PAGE_UP,    0},
    {SDLK_KP_3,      WINDOW_KEY_PAGE_DOWN,  0}
};
// clang-format on

static Key Key_Of (const SDL_Keysym *symbol) {
    for (const Key &key : KEYS)
        if (key.code == symbol->sym) return key;
    for (const Key &key : PAD_KEYS)
        if (key.code == symbol->sym && !(symbol->mod & KMOD_NUM)) return key;
    return {symbol->sym, WINDOW_KEY_OTHER, 0};
}

// A locked key is none that is held.
static int Modifiers_Now (void) {
    int state = SDL_GetModState ();
    return (state & KMOD_SHIFT ? WINDOW_SHIFT : 0) | (state & KMOD_CTRL ? WINDOW_CONTROL : 0) |
           (state & KMOD_ALT ? WINDOW_ALT : 0);
}

static void Deliver_Character (Window window, uint32_t character) {
    Window_Event event = Event_Of (WINDOW_CHARACTER);
    event.character    = character;
    Deliver (window, &event);
}

static void On_Key (const SDL_KeyboardEvent *from) {
    Window window = Input_Window (from->windowID);
    if (!window) return;
    Key          key   = Key_Of (&from->keysym);
    Window_Event event = Event_Of (modifiers & WINDOW_ALT ? WINDOW_SYSTEM_KEY_DOWN : WINDOW_KEY_DOWN);
    event.key          = key.key;
    Window_Hold (window);
    Deliver (window, &event);
    if (key.character && !(modifiers & WINDOW_ALT)) Deliver_Character (window, key.character);
    Window_Let_Go (window);
}

// With Control or the left Alt key a letter is a command; the right one helps to make characters.
static void On_Text (const SDL_TextInputEvent *from) {
    Window window = Input_Window (from->windowID);
    if (!window || SDL_GetModState () & (KMOD_LALT | KMOD_LCTRL)) return;
    const char *end = from->text + strnlen (from->text, sizeof from->text);
    uint32_t    character;
    Window_Hold (window);
    for (const char *at = from->text; at < end;) {
        int length = UTF8_Character (at, end, &character);
        if (length) Deliver_Character (window, character);
        at += length ? length : 1;
    }
    Window_Let_Go (window);
}

// --- dropped files ---------------------------------------------------------

static void Drop_Add (Drop *drop, char *file) {
    if (drop->count == drop->room) {
        int    room  = drop->room ? 2 * drop->room : 16;
        char **files = static_cast<char **> (realloc (drop->files, (size_t)room * sizeof *files));
        if (!files) {
            drop->failed = 1;
            SDL_free (file);
            return;
        }
        drop->files = files;
        drop->room  = room;
    }
    drop->files[drop->count++] = file;
}

// A drop that lost a name would be compared with the wrong file, so nothing is better.
static void Drop_Complete (Window window) {
    Drop drop    = window->drop;
    window->drop = {};
    if (window->accept_drops && !alone && !drop.failed && (drop.count || !drop.foreign)) {
        Window_Event event = Event_Of (WINDOW_DROP);
        event.file_count   = drop.count;
        event.files        = drop.files;
        Deliver (window, &event);
    }
    Drop_Clear (&drop);
}

static void On_Drop (const SDL_DropEvent *from) {
    Window window = Window_Of (from->windowID);
    if (!window) window = Window_On_Screen (); // Some systems name none.
    if (!window || from->type == SDL_DROPTEXT) {
        if (window) window->drop.foreign = 1;
        SDL_free (from->file);
        return;
    }
    if (from->type == SDL_DROPBEGIN) Drop_Clear (&window->drop);
    if (from->type == SDL_DROPFILE && from->file) Drop_Add (&window->drop, from->file);
    if (from->type == SDL_DROPCOMPLETE) Drop_Complete (window);
}

// --- the window itself -----------------------------------------------------

static void On_Size (Window window) {
    int width, height;
    window->outdated = 0;
    SDL_GetWindowSize (window->shown, &width, &height);
    Resized (window, width, height);
}

static void On_Focus_Lost (Window window) {
    modifiers          = 0;
    Window_Event event = Event_Of (WINDOW_FOCUS_LOST);
    Deliver (window, &event);
}

static void On_Window (const SDL_WindowEvent *from) {
    Window window = Window_Of (from->windowID);
    if (!window) return;
    int aside = alone && window != alone; // It stays as it is on the screen until it may go on.
    switch (from->event) {
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_EXPOSED:
        Touch_All (window);
        window->invalid = 1;
        break;
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        window->outdated = 1;
        if (!aside) On_Size (window);
        break;
    case SDL_WINDOWEVENT_ENTER: SDL_SetCursor (Cursor_Of (window->cursor)); break;
    case SDL_WINDOWEVENT_LEAVE: window->pointer_known = 0; break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        if (!aside) On_Focus_Lost (window);
        break;
    case SDL_WINDOWEVENT_CLOSE:
        if (!aside) Window_Destroy (window);
        break;
    default: break;
    }
}

// The session ends: as if each window had been closed, a box first.
static void On_Session_End (void) {
    if (alone) {
        SDL_Event again = {};
        again.type      = SDL_QUIT;
        Window_Destroy (alone);
        SDL_PushEvent (&again);
        return;
    }
    while (Window_On_Screen ()) Window_Destroy (Window_On_Screen ());
}

// --- the loop --------------------------------------------------------------

static void Route (SDL_Event *event) {
    modifiers = Modifiers_Now ();
    switch (event->type) {
    case SDL_WINDOWEVENT: On_Window (&event->window); break;
    case SDL_MOUSEMOTION: On_Motion (event); break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: On_Button (&event->button); break;
    case SDL_MOUSEWHEEL: On_Wheel (&event->wheel); break;
    case SDL_KEYDOWN: On_Key (&event->key); break;
    case SDL_TEXTINPUT: On_Text (&event->text); break;
    case SDL_DROPBEGIN:
    case SDL_DROPFILE:
    case SDL_DROPTEXT:
    case SDL_DROPCOMPLETE: On_Drop (&event->drop); break;
    case SDL_QUIT: On_Session_End (); break;
    default: break; // Among them the message of another thread.
    }
}

static Window Invalid_First (void) {
    for (Window window = windows; window; window = window->next)
        if (window->invalid && window->shown && (!alone || window == alone)) return window;
    return nullptr;
}

// A window that got another size while a box was there.
static Window Outdated_First (void) {
    for (Window window = windows; window; window = window->next)
        if (window->outdated && window->shown && !alone) return window;
    return nullptr;
}

static Window Due_First (void) {
    for (Window window = windows; window; window = window->next)
        if (window->due) return window;
    return nullptr;
}

static void Present_All (void) {
    for (Window window = windows; window; window = window->next) Present (window);
}

// One turn: what is waiting, else what is to be painted, else nothing but waiting.
static void Turn (void) {
    SDL_Event event;
    if (SDL_PollEvent (&event)) return Route (&event);
    if (Window window = Outdated_First ()) return On_Size (window);
    if (Window window = Invalid_First ()) return Paint (window);
    Present_All ();
    if (!SDL_WaitEvent (&event)) return On_Session_End (); // No event can come any more.
    Route (&event);
}

// The procedure that asks for a box is in the midst of something, so no other window's procedure is called meanwhile.
void Window_Alone (Window window, const int *done) {
    Window_Capture_End ();
    Window_Hold (window);
    alone = window;
    Window_Show (window);
    while (!*done && !window->destroyed) Turn ();
    alone   = nullptr;
    buttons = 0;
    Window_Destroy (window);
    Window_Let_Go (window);
}

// Nothing else happens to windows that are never seen, so each of them is painted once at most.
static void Paint_Off_Screen (void) {
    for (Window window = windows; window; window = window->next) window->due = !window->shown && window->invalid;
    while (Window window = quitting ? nullptr : Due_First ()) {
        window->due = 0;
        Paint (window);
    }
}

int Window_Loop (void) {
    Paint_Off_Screen ();
    while (!quitting && Window_On_Screen ()) Turn ();
    int code = quitting ? quit_code : 0;
    quitting = 0;
    return code;
}

void Window_Quit (int code) {
    quitting  = 1;
    quit_code = code;
}

void Window_Post_Thread_Message (Window window) {
    if (!window->shown) return;
    SDL_Event event = {};
    event.type      = SDL_USEREVENT;
    SDL_PushEvent (&event);
}
