// A program that the tests start, to see what only a whole process shows:
//   create             makes an off-screen window and says how that went
//   fonts              the same, and the width of a text
//   boxes              shows a message and a question while there is an off-screen window
//   quit [again]       asks for the end before there is a window (and again behind), runs the loop before, after and again
//   screen             makes a window on the screen, and says so
//   window [KIND]      shows a window, and writes each of its events as a line until it is destroyed; KIND is one of
//                      capture (while the left button is down), ask (a question when "?" is typed), thread
#include <stdio.h>

#include <chrono>
#include <string>
#include <thread>

#include "platform/drawing.h"
#include "platform/window.h"

static const int      WIDTH = 300, HEIGHT = 200;
static const uint32_t BACKGROUND = Drawing_Colour (10, 20, 30);
static const uint32_t BAR        = Drawing_Colour (200, 100, 50);

static std::string kind;
static int         cursor; // Changes with each press of "c".

static Window_Description Description (int off_screen, Window_Procedure procedure) {
    return {"Tagwright test", 40, 30, WIDTH, HEIGHT, BACKGROUND, procedure, 1, off_screen};
}

static Window Off_Screen () {
    Window_Description description = Description (1, nullptr);
    Window             window      = Window_Create (&description);
    if (!window) printf ("none: %s\n", Window_Error_Text ());
    return window;
}

static int Create () {
    Window window = Off_Screen ();
    if (!window) return 1;
    Window_Destroy (window);
    printf ("created\n");
    return 0;
}

static int Fonts () {
    Window               window  = Off_Screen ();
    Drawing              drawing = Drawing_Begin (window);
    Drawing_Font         font    = Drawing_Font_Create ("Arial", 13, 0, 0);
    Drawing_Font_Metrics metrics;
    Drawing_Font_Measure (drawing, nullptr, &metrics);
    Drawing_Text (drawing, nullptr, 0, 0, "text \xE2\x82\xAC", 8, 0);
    printf ("font %d, width %d, height %d\n", font != nullptr, Drawing_Text_Width (drawing, nullptr, "text", 4),
            metrics.height);
    return 0;
}

static int Boxes () {
    Window window = Off_Screen ();
    Window_Message_Box (window, "message", "caption", WINDOW_ICON_ERROR);
    printf ("answer %d\n", Window_Question_Box (window, "question", "caption"));
    return 0;
}

static int Quit () {
    int before = Window_Loop ();
    Window_Quit (3);
    Window window = Off_Screen ();
    if (kind == "again") Window_Quit (7);
    int code = Window_Loop ();
    printf ("loop %d, %d, %d\n", before, code, Window_Loop ());
    Window_Destroy (window);
    return 0;
}

static int Screen () {
    Window_Description description = Description (0, nullptr);
    Window             window      = Window_Create (&description);
    if (!window) printf ("none: %s\n", Window_Error_Text ());
    else printf ("created\n");
    Window_Destroy (window);
    return window ? 0 : 1;
}

// --- a real window ---------------------------------------------------------

// A bar along the left edge of the bottom half, so that a picture of the screen shows which side is up.
static void Paint (Window window) {
    int width, height;
    Window_Client_Size (window, &width, &height);
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 0, 0, 20, height / 2, BAR);
    Drawing_End (drawing);
    printf ("paint %d %d\n", width, height);
}

static void Character (Window window, uint32_t character) {
    printf ("character %u\n", character);
    if (character == '?' && kind == "ask")
        printf ("answer %d\n", Window_Question_Box (window, "Go on?\nOr not?", "Box of the test"));
    if (character == '!' && kind == "ask") {
        std::string text = "A line\n\nand one that is too long: ";
        for (int i = 0; i < 40; i++) text += "word " + std::to_string (i) + ", ";
        Window_Message_Box (window, text.c_str (), "Box of the test", WINDOW_ICON_ERROR);
        printf ("shown\n");
    }
    if (character == 'c') Window_Cursor_Set (window, static_cast<Window_Cursor> (++cursor % 5));
    if (character == 'r') Window_Client_Resize (window, WIDTH - 50, HEIGHT - 50);
    if (character == 'p') {
        int x, y;
        Window_Pointer (window, &x, &y);
        printf ("pointer %d %d\n", x, y);
    }
    if (character == 'u') { // Seen at once, though the event goes on.
        Drawing drawing = Drawing_Begin (window);
        Drawing_Fill (drawing, 100, 0, 120, 20, BAR);
        Drawing_End (drawing);
        Window_Update (window);
        printf ("updated\n");
        std::this_thread::sleep_for (std::chrono::seconds (2));
    }
    if (character == 'q') Window_Quit (7);
}

static void Buttons (Window window, const Window_Event *event) {
    if (event->kind == WINDOW_BUTTON_DOWN && kind == "capture") Window_Capture (window);
    if (event->kind == WINDOW_BUTTON_UP) Window_Capture_End ();
    printf ("%s %d at %d %d, down %d\n", event->kind == WINDOW_BUTTON_DOWN ? "press" : "release", event->button,
            event->x, event->y, Window_Button_Down (event->button) != 0);
}

static void Dropped (const Window_Event *event) {
    printf ("drop %d\n", event->file_count);
    for (int i = 0; i < event->file_count; i++) printf ("file %s\n", event->files[i]);
}

static int Procedure (Window window, const Window_Event *event) {
    switch (event->kind) {
    case WINDOW_CREATE: printf ("create %d %d\n", event->width, event->height); break;
    case WINDOW_SIZE: printf ("size %d %d\n", event->width, event->height); break;
    case WINDOW_PAINT: Paint (window); break;
    case WINDOW_DESTROY:
        printf ("destroy\n");
        Window_Quit (0);
        break;
    case WINDOW_FOCUS_LOST: printf ("focus lost\n"); break;
    case WINDOW_KEY_DOWN: printf ("key %d, modifiers %d\n", event->key, event->modifiers); break;
    case WINDOW_SYSTEM_KEY_DOWN: printf ("system key %d, modifiers %d\n", event->key, event->modifiers); break;
    case WINDOW_CHARACTER: Character (window, event->character); break;
    case WINDOW_MOUSE_MOVE: printf ("move %d %d\n", event->x, event->y); break;
    case WINDOW_BUTTON_DOWN:
    case WINDOW_BUTTON_UP: Buttons (window, event); break;
    case WINDOW_WHEEL: printf ("wheel %d at %d %d\n", event->wheel, event->x, event->y); break;
    case WINDOW_DROP: Dropped (event); break;
    }
    fflush (stdout);
    return 1;
}

static int Shown () {
    Window_Description description = Description (0, Procedure);
    Window             window      = Window_Create (&description);
    if (!window) {
        printf ("none: %s\n", Window_Error_Text ());
        return 1;
    }
    Window_Show (window);
    printf ("open\n");
    std::thread poster;
    if (kind == "thread")
        poster = std::thread ([window] {
            for (int i = 0; i < 1000; i++) Window_Post_Thread_Message (window);
            printf ("posted\n");
            fflush (stdout);
        });
    int code = Window_Loop ();
    if (poster.joinable ()) poster.join ();
    printf ("loop %d\n", code);
    return 0;
}

int main (int count, char **words) {
    std::string what = count > 1 ? words[1] : "";
    if (count > 2) kind = words[2];
    if (what == "create") return Create ();
    if (what == "fonts") return Fonts ();
    if (what == "boxes") return Boxes ();
    if (what == "quit") return Quit ();
    if (what == "screen") return Screen ();
    if (what == "window") return Shown ();
    return 2;
}
