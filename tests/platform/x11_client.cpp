// What other programs do to a window, for tests under an X server without a window manager or a file manager:
//   x11_client close WINDOW              asks it to close, as its close box does
//   x11_client drop WINDOW TYPE DATA     drags DATA over the window and drops it there, by the XDND protocol; DATA is one
//                                        text of the TYPE, such as text/uri-list with an address on each line
//   x11_client leave WINDOW              begins to drag something over the window, and is gone
//   x11_client map KEYCODE KEYSYM        makes a key of the keyboard stand for a character, until the server ends
//   x11_client count WINDOW X Y W H RGB  how many pixels of a part of the window have this colour (six hexadecimal digits);
//                                        y downwards; the window must be seen whole
// Ends with 0 when the window has taken it.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static const int TIMEOUT = 20; // Seconds; more than a drop takes on the slowest machine.

static Display *display;

static Atom Name (const char *name) { return XInternAtom (display, name, False); }

static void Send (Window window, const char *name, long first, long second, long third, long fourth, long fifth) {
    XEvent event               = {};
    event.xclient.type         = ClientMessage;
    event.xclient.window       = window;
    event.xclient.message_type = Name (name);
    event.xclient.format       = 32;
    const long values[5]       = {first, second, third, fourth, fifth};
    memcpy (event.xclient.data.l, values, sizeof values);
    XSendEvent (display, window, False, NoEventMask, &event);
    XFlush (display);
}

static int Close (Window window) {
    Send (window, "WM_PROTOCOLS", (long)Name ("WM_DELETE_WINDOW"), CurrentTime, 0, 0, 0);
    return 0;
}

// --- drop ------------------------------------------------------------------

struct Load {
    Atom        type;
    const char *data;
};

static void Answer_Request (const XSelectionRequestEvent *request, const Load *load) {
    XChangeProperty (display, request->requestor, request->property, load->type, 8, PropModeReplace,
                     reinterpret_cast<const unsigned char *> (load->data), (int)strlen (load->data));
    XEvent answer               = {};
    answer.xselection.type      = SelectionNotify;
    answer.xselection.requestor = request->requestor;
    answer.xselection.selection = request->selection;
    answer.xselection.target    = request->target;
    answer.xselection.property  = request->property;
    answer.xselection.time      = request->time;
    XSendEvent (display, request->requestor, False, NoEventMask, &answer);
}

// Waits for a message of the window, and hands out the data meanwhile. Its second number.
static long Wait_For (const char *name, const Load *load) {
    XEvent event;
    for (;;) {
        XNextEvent (display, &event);
        if (event.type == SelectionRequest) Answer_Request (&event.xselectionrequest, load);
        if (event.type == ClientMessage && event.xclient.message_type == Name (name)) return event.xclient.data.l[1];
    }
}

static int Drop (Window window, const char *type, const char *data) {
    Load   load   = {Name (type), data};
    Window source = XCreateSimpleWindow (display, DefaultRootWindow (display), 0, 0, 1, 1, 0, 0, 0);
    Window child;
    int    x, y;
    XTranslateCoordinates (display, window, DefaultRootWindow (display), 10, 10, &x, &y, &child);
    XSetSelectionOwner (display, Name ("XdndSelection"), source, CurrentTime);

    Send (window, "XdndEnter", (long)source, 5L << 24, (long)load.type, None, None);
    Send (window, "XdndPosition", (long)source, 0, (long)x << 16 | y, CurrentTime, (long)Name ("XdndActionCopy"));
    if (!(Wait_For ("XdndStatus", &load) & 1)) return 1;
    Send (window, "XdndDrop", (long)source, 0, CurrentTime, 0, 0);
    Wait_For ("XdndFinished", &load);
    return 0;
}

static int Leave (Window window) {
    Window source = XCreateSimpleWindow (display, DefaultRootWindow (display), 0, 0, 1, 1, 0, 0, 0);
    XDestroyWindow (display, source);
    XSync (display, False);
    Send (window, "XdndEnter", (long)source, 5L << 24, (long)Name ("text/uri-list"), None, None);
    Send (window, "XdndPosition", (long)source, 0, 1 << 16 | 1, CurrentTime, (long)Name ("XdndActionCopy"));
    XSync (display, False);
    return 0;
}

// --- keyboard --------------------------------------------------------------

static int Map (int code, unsigned long symbol) {
    KeySym symbols[2] = {symbol, symbol};
    XChangeKeyboardMapping (display, code, 2, symbols, 1);
    XSync (display, False);
    return 0;
}

// --- screen ----------------------------------------------------------------

struct Part {
    int      x, y;
    unsigned w, h;
};

static int Count (Window window, const Part &part, unsigned long colour) {
    XImage *image = XGetImage (display, window, part.x, part.y, part.w, part.h, AllPlanes, ZPixmap);
    if (!image) return 1;
    int count = 0;
    for (int y = 0; y < image->height; y++)
        for (int x = 0; x < image->width; x++) count += (XGetPixel (image, x, y) & 0xFFFFFF) == colour;
    XDestroyImage (image);
    printf ("%d\n", count);
    return 0;
}

static int Number (const char *word) { return static_cast<int> (strtol (word, nullptr, 10)); }

static Part Part_Of (char **words) {
    return {Number (words[0]), Number (words[1]), (unsigned)Number (words[2]), (unsigned)Number (words[3])};
}

int main (int count, char **words) {
    alarm (TIMEOUT);
    display = XOpenDisplay (nullptr);
    if (!display || count < 3) return 2;
    unsigned long window = strtoul (words[2], nullptr, 0);
    int           result = 2;
    if (!strcmp (words[1], "map") && count == 4) result = Map ((int)window, strtoul (words[3], nullptr, 0));
    if (!strcmp (words[1], "close")) result = Close (window);
    if (!strcmp (words[1], "leave")) result = Leave (window);
    if (!strcmp (words[1], "drop") && count == 5) result = Drop (window, words[3], words[4]);
    if (!strcmp (words[1], "count") && count == 8)
        result = Count (window, Part_Of (words + 3), strtoul (words[7], nullptr, 16));
    XCloseDisplay (display);
    return result;
}
