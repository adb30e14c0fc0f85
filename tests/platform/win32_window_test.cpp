#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include "platform/drawing.h"
#include "platform/window.h"
#include "tests/platform/win32_child.h"

// --- boxes -----------------------------------------------------------------

struct Seen {
    Window      owner;
    std::string text, caption;
    Window_Icon icon;
};

static Seen seen;
static int  answer;

static int Hook (Window owner, const char *text, const char *caption, Window_Icon icon) {
    seen = Seen {owner, text, caption, icon};
    return answer;
}

TEST (Win32Window, ATestSeesBoxesInsteadOfTheUser) {
    Window owner = reinterpret_cast<Window> (0x1234);
    Window_Box_Hook_Set (Hook);
    Window_Message_Box (owner, "text", "caption", WINDOW_ICON_WARNING);
    EXPECT_EQ (seen.owner, owner);
    EXPECT_EQ (seen.text, "text");
    EXPECT_EQ (seen.caption, "caption");
    EXPECT_EQ (seen.icon, WINDOW_ICON_WARNING);
    answer = 1;
    EXPECT_EQ (Window_Question_Box (nullptr, "really?", "name"), 1);
    EXPECT_EQ (seen.text, "really?");
    EXPECT_EQ (seen.icon, WINDOW_ICON_QUESTION);
    answer = 0;
    EXPECT_EQ (Window_Question_Box (nullptr, "really?", "name"), 0);
    Window_Box_Hook_Set (nullptr);
}

// An owner that is no window lets the system refuse the box.
TEST (Win32Window, ABoxThatCannotBeShownGoesToStandardError) {
    Window owner = reinterpret_cast<Window> (0x1234);
    testing::internal::CaptureStderr ();
    Window_Message_Box (owner, "Unable to create directory", "Error writing", WINDOW_ICON_ERROR);
    EXPECT_EQ (testing::internal::GetCapturedStderr (), "Error writing\nUnable to create directory\n");
    testing::internal::CaptureStderr ();
    EXPECT_EQ (Window_Question_Box (owner, "Go on?", "Tagwright"), 0);
    EXPECT_EQ (testing::internal::GetCapturedStderr (), "Tagwright\nGo on?\n");
}

// --- messages --------------------------------------------------------------

// A window that only receives messages. A desktop that is just starting may refuse it for a while.
static HWND Message_Window () {
    for (int tries = 0; tries < 100; tries++) {
        HWND window = CreateWindowExA (0, "STATIC", "", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr, nullptr, nullptr);
        if (window) return window;
        Sleep (100);
    }
    return nullptr;
}

TEST (Win32Window, AThreadMessageReachesTheWindowsQueue) {
    HWND window = Message_Window ();
    ASSERT_NE (window, nullptr);
    Window_Post_Thread_Message (reinterpret_cast<Window> (window));
    MSG message = {};
    EXPECT_TRUE (PeekMessageA (&message, window, WM_USER + 1, WM_USER + 1, PM_REMOVE));
    EXPECT_EQ (message.message, (UINT)WM_USER + 1);
    EXPECT_FALSE (PeekMessageA (&message, window, WM_USER + 1, WM_USER + 1, PM_REMOVE)) << "once";
    DestroyWindow (window);
}

TEST (Win32Window, WithoutAWindowNothingIsPosted) {
    Window_Post_Thread_Message (nullptr);
    MSG message = {};
    EXPECT_FALSE (PeekMessageA (&message, nullptr, WM_USER + 1, WM_USER + 1, PM_REMOVE));
}

// --- windows ---------------------------------------------------------------

static std::vector<Window_Event> events;
static std::vector<std::string>  dropped;
static int                       draws_on_paint;
static Window_Procedure          inside; // Is told of the event, too.

static void Paint (Window window) {
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 10, 10, 20, 20, Drawing_Colour (255, 0, 0));
    Drawing_End (drawing);
}

static int Procedure (Window window, const Window_Event *event) {
    events.push_back (*event);
    if (inside) return inside (window, event);
    if (event->kind == WINDOW_PAINT && draws_on_paint) Paint (window);
    if (event->kind == WINDOW_DROP) dropped.assign (event->files, event->files + event->file_count);
    return event->kind == WINDOW_CHARACTER;
}

static int Count (Window_Event_Kind kind) {
    int count = 0;
    for (const Window_Event &event : events) count += event.kind == kind;
    return count;
}

static const Window_Event *Last (Window_Event_Kind kind) {
    const Window_Event *last = nullptr;
    for (const Window_Event &event : events)
        if (event.kind == kind) last = &event;
    return last;
}

static Window_Description Description (int off_screen) {
    Window_Description description = {};
    description.title              = "Window test";
    description.x                  = WINDOW_DEFAULT_POSITION;
    description.y                  = WINDOW_DEFAULT_POSITION;
    description.width              = 400;
    description.height             = 300;
    description.background         = Drawing_Colour (170, 170, 170);
    description.procedure          = Procedure;
    description.accept_drops       = 1;
    description.off_screen         = off_screen;
    return description;
}

static HWND Handle (Window window) { return reinterpret_cast<HWND> (window); }

// Everything that is waiting for the program's windows now and in a while.
static void Deliver_Waiting (int milliseconds = 0) {
    MSG       message;
    ULONGLONG end = GetTickCount64 () + (ULONGLONG)milliseconds;
    do {
        while (PeekMessageA (&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage (&message);
            DispatchMessageA (&message);
        }
        if (milliseconds) Sleep (5);
    } while (GetTickCount64 () < end);
}

// A window without events so far. The display may take a while to know it.
class Win32Windows : public testing::Test {
protected:
    Window window = nullptr;

    void Open (int off_screen) {
        events.clear ();
        draws_on_paint                 = 1;
        Window_Description description = Description (off_screen);
        window                         = Window_Create (&description);
        ASSERT_NE (window, nullptr) << Window_Error_Text ();
    }
    // The one that stays on the screen from test to test: showing a window takes seconds where nothing manages windows.
    void Open_Shown () {
        if (!IsWindow (Handle (shown))) {
            Open (0);
            Window_Show (window);
            Deliver_Waiting (300);
            shown = window;
        }
        window = shown;
        stays  = 1;
        Clean ();
    }
    static void Close_Shown () {
        Window_Destroy (shown);
        Deliver_Waiting ();
    }
    void Clean () {
        draws_on_paint  = 1;
        Drawing drawing = Drawing_Begin (window);
        Drawing_Fill (drawing, 0, 0, INT_MAX, INT_MAX, Drawing_Colour (170, 170, 170));
        Drawing_End (drawing);
        events.clear ();
        Window_Invalidate (window);
        Deliver_Waiting (20);
    }
    void TearDown () override {
        inside = nullptr;
        if (!stays) Window_Destroy (window);
        Deliver_Waiting ();
    }
    static void TearDownTestSuite () { Close_Shown (); }

    static Window shown;
    int           stays = 0;
};

Window Win32Windows::shown;

TEST_F (Win32Windows, AShownWindowHasOnItsScreenWhatIsReadBack) {
    Open_Shown ();
    EXPECT_GE (Count (WINDOW_PAINT), 1);
    int width, height;
    Window_Client_Size (window, &width, &height);
    HDC     screen  = GetDC (Handle (window));
    Drawing drawing = Drawing_Begin (window);
    EXPECT_EQ (Drawing_Pixel (drawing, 10, 10), Drawing_Colour (255, 0, 0));
    for (int y = 0; y < height; y += 3)
        for (int x = 0; x < width; x += 3)
            ASSERT_EQ (GetPixel (screen, x, height - 1 - y), Drawing_Pixel (drawing, x, y)) << x << ", " << y;
    Drawing_End (drawing);
    ReleaseDC (Handle (window), screen);
}

TEST_F (Win32Windows, CreateIsTheFirstEventAndDestroyTheLast) {
    Open (0);
    ASSERT_FALSE (events.empty ());
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (events[0].kind, WINDOW_CREATE);
    EXPECT_EQ (events[0].width, width);
    EXPECT_EQ (events[0].height, height);
    EXPECT_GT (width, 300);
    EXPECT_LE (width, 400) << "with the frame";
    EXPECT_LT (height, 300) << "with the frame";
    Window_Destroy (window);
    Deliver_Waiting ();
    EXPECT_EQ (events.back ().kind, WINDOW_DESTROY);
    EXPECT_EQ (Count (WINDOW_DESTROY), 1);
}

TEST_F (Win32Windows, TheSizeOfTheClientAreaIsTold) {
    Open_Shown ();
    Window_Client_Resize (window, 333, 222);
    ASSERT_NE (Last (WINDOW_SIZE), nullptr);
    EXPECT_EQ (Last (WINDOW_SIZE)->width, 333);
    EXPECT_EQ (Last (WINDOW_SIZE)->height, 222);
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 333);
    EXPECT_EQ (height, 222);
}

TEST_F (Win32Windows, AMinimisedWindowKeepsItsSize) {
    Open_Shown ();
    int width, height, before_width, before_height;
    Window_Client_Size (window, &before_width, &before_height);
    events.clear ();
    SendMessageA (Handle (window), WM_SIZE, SIZE_MINIMIZED, 0);
    EXPECT_EQ (Count (WINDOW_SIZE), 0);
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, before_width);
    EXPECT_EQ (height, before_height);
}

TEST_F (Win32Windows, MaximisingAndRestoringTellTheSize) {
    Open_Shown ();
    int width, height;
    Window_Client_Size (window, &width, &height);
    events.clear ();
    ShowWindow (Handle (window), SW_MAXIMIZE);
    Deliver_Waiting (200);
    ASSERT_NE (Last (WINDOW_SIZE), nullptr);
    EXPECT_GT (Last (WINDOW_SIZE)->width, width);
    ShowWindow (Handle (window), SW_RESTORE);
    Deliver_Waiting (200);
    EXPECT_EQ (Last (WINDOW_SIZE)->width, width);
    EXPECT_EQ (Last (WINDOW_SIZE)->height, height);
}

TEST_F (Win32Windows, ASizeIsToldBeforeItIsPainted) {
    Open_Shown ();
    events.clear ();
    Window_Client_Resize (window, 500, 222);
    Deliver_Waiting (100);
    ASSERT_GE (events.size (), 2u);
    EXPECT_EQ (events[0].kind, WINDOW_SIZE);
    EXPECT_EQ (events.back ().kind, WINDOW_PAINT);
}

TEST_F (Win32Windows, TheSameSizeIsToldToo) {
    Open (1);
    events.clear ();
    Window_Client_Resize (window, 400, 300);
    EXPECT_EQ (Count (WINDOW_SIZE), 1);
    Window_Client_Resize (window, -5, 300);
    EXPECT_EQ (Last (WINDOW_SIZE)->width, 0);
}

TEST_F (Win32Windows, AnOffScreenWindowIsItsClientArea) {
    Open (1);
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 400);
    EXPECT_EQ (height, 300);
    EXPECT_EQ (events[0].kind, WINDOW_CREATE);
    EXPECT_EQ (events[0].width, 400);
    EXPECT_EQ (events.size (), 1u);
    Window_Show (window);
    EXPECT_FALSE (IsWindowVisible (Handle (window)));
    Window_Client_Resize (window, 2000, 3000);
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 2000) << "whatever the screen's size is";
    EXPECT_EQ (height, 3000);
}

TEST_F (Win32Windows, ThePlaceIsTheOneAskedFor) {
    Window_Description description = Description (0);
    description.x                  = 37;
    description.y                  = 21;
    Window both                    = Window_Create (&description);
    description.y                  = WINDOW_DEFAULT_POSITION;
    Window only_x                  = Window_Create (&description);
    RECT   place;
    GetWindowRect (Handle (both), &place);
    EXPECT_EQ (place.left, 37);
    EXPECT_EQ (place.top, 21);
    EXPECT_EQ (place.right - place.left, 400);
    EXPECT_EQ (place.bottom - place.top, 300);
    GetWindowRect (Handle (only_x), &place);
    EXPECT_EQ (place.left, 37);
    EXPECT_GE (place.top, 0);
    EXPECT_LT (place.top, 1000);
    Window_Destroy (both);
    Window_Destroy (only_x);
}

TEST_F (Win32Windows, ExtremePlacesAndSizesMakeAWindow) {
    Window_Description description = Description (0);
    description.x                  = INT_MAX;
    description.y                  = INT_MIN + 1;
    description.width              = INT_MAX;
    description.height             = INT_MIN;
    Window far_away                = Window_Create (&description);
    EXPECT_NE (far_away, nullptr) << Window_Error_Text ();
    Window_Destroy (far_away);
}

TEST_F (Win32Windows, AWindowThatCannotBeDrawnIsNotMade) {
    events.clear ();
    Window_Description description = Description (1);
    description.width              = 32000;
    description.height             = 32000;
    EXPECT_EQ (Window_Create (&description), nullptr);
    EXPECT_GT (strlen (Window_Error_Text ()), 3u);
    EXPECT_TRUE (events.empty ());
    Open (1);
    Window_Client_Resize (window, 32000, 32000);
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 400) << "the old picture stays";
    EXPECT_EQ (Count (WINDOW_SIZE), 0);
}

// --- classes and life ------------------------------------------------------

static int Other_Procedure (Window, const Window_Event *) { return 0; }

TEST_F (Win32Windows, TwoWindowsOfOneTitleHaveTheirOwnProcedures) {
    Open (0);
    Window_Description description = Description (0);
    description.procedure          = Other_Procedure;
    description.background         = Drawing_Colour (1, 2, 3);
    Window other                   = Window_Create (&description);
    ASSERT_NE (other, nullptr) << Window_Error_Text ();
    events.clear ();
    SendMessageA (Handle (other), WM_KEYDOWN, VK_LEFT, 0);
    EXPECT_TRUE (events.empty ());
    SendMessageA (Handle (window), WM_KEYDOWN, VK_LEFT, 0);
    EXPECT_EQ (events.size (), 1u);
    Drawing drawing = Drawing_Begin (other);
    EXPECT_EQ (Drawing_Pixel (drawing, 0, 0), Drawing_Colour (1, 2, 3));
    Drawing_End (drawing);
    Window_Destroy (window);
    EXPECT_EQ (Window_Modifier_Down (0), 0);
    Window_Destroy (other);
}

TEST_F (Win32Windows, AClassGoesWithItsLastWindow) {
    Close_Shown ();
    WNDCLASSEXA facts = {};
    facts.cbSize      = sizeof facts;
    Open (0);
    ASSERT_TRUE (GetClassInfoExA (GetModuleHandleA (nullptr), "Window test", &facts));
    EXPECT_TRUE (facts.style & CS_HREDRAW);
    EXPECT_TRUE (facts.style & CS_VREDRAW);
    EXPECT_EQ (facts.hCursor, LoadCursorA (nullptr, IDC_ARROW));
    LOGBRUSH brush = {};
    GetObjectA (facts.hbrBackground, sizeof brush, &brush);
    EXPECT_EQ (brush.lbStyle, (UINT)BS_SOLID);
    EXPECT_EQ (brush.lbColor, Drawing_Colour (170, 170, 170));
    Window_Description description = Description (0);
    Window             other       = Window_Create (&description);
    Window_Destroy (window);
    EXPECT_TRUE (GetClassInfoExA (GetModuleHandleA (nullptr), "Window test", &facts));
    Window_Destroy (other);
    EXPECT_FALSE (GetClassInfoExA (GetModuleHandleA (nullptr), "Window test", &facts));
    EXPECT_EQ (GetObjectA (facts.hbrBackground, sizeof brush, &brush), 0) << "its brush with it";
}

TEST_F (Win32Windows, AClosedWindowIsGone) {
    Open_Shown ();
    PostMessageA (Handle (window), WM_CLOSE, 0, 0);
    Deliver_Waiting (50);
    EXPECT_FALSE (IsWindow (Handle (window)));
    EXPECT_EQ (events.back ().kind, WINDOW_DESTROY);
    WNDCLASSEXA facts = {};
    facts.cbSize      = sizeof facts;
    EXPECT_FALSE (GetClassInfoExA (GetModuleHandleA (nullptr), "Window test", &facts));
}

TEST_F (Win32Windows, TheTitleIsUTF8) {
    Window_Description description = Description (0);
    description.title              = "Kestrelbay's \xC3\xA9t\xC3\xA9 \xE2\x82\xAC";
    window                         = Window_Create (&description);
    wchar_t title[100] = {}, name[100] = {};
    GetWindowTextW (Handle (window), title, 100);
    GetClassNameW (Handle (window), name, 100);
    EXPECT_STREQ (title, L"Kestrelbay's \u00E9t\u00E9 \u20AC");
    EXPECT_STREQ (name, title);
}

TEST_F (Win32Windows, AnyTitleMakesAWindow) {
    for (const std::string &title : {std::string (), std::string (5000, 'x'), std::string ("\xFF\xFE\xE9")}) {
        Window_Description description = Description (1);
        description.title              = title.c_str ();
        window                         = Window_Create (&description);
        EXPECT_NE (window, nullptr) << Window_Error_Text ();
        Window_Destroy (window);
    }
    Window_Description description = Description (1);
    description.title              = nullptr;
    window                         = Window_Create (&description);
    EXPECT_NE (window, nullptr) << Window_Error_Text ();
}

TEST_F (Win32Windows, SomebodyElsesClassIsNotTaken) {
    Close_Shown ();
    WNDCLASSA other     = {};
    other.lpfnWndProc   = DefWindowProcA;
    other.hInstance     = GetModuleHandleA (nullptr);
    other.lpszClassName = "Window test";
    ASSERT_TRUE (RegisterClassA (&other));
    HWND               theirs = CreateWindowA ("Window test", "", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    Window_Description description = Description (1);
    events.clear ();
    EXPECT_EQ (Window_Create (&description), nullptr);
    EXPECT_GT (strlen (Window_Error_Text ()), 3u);
    EXPECT_TRUE (events.empty ());
    DestroyWindow (theirs);
    UnregisterClassA ("Window test", GetModuleHandleA (nullptr));
}

static int Destroys_On_Paint (Window window, const Window_Event *event) {
    if (event->kind == WINDOW_PAINT) Window_Destroy (window);
    return 1;
}

TEST_F (Win32Windows, AWindowMayBeDestroyedInItsOwnEvent) {
    Window_Description description = Description (0);
    description.procedure          = Destroys_On_Paint;
    window                         = Window_Create (&description);
    Window_Show (window);
    Deliver_Waiting (200);
    EXPECT_FALSE (IsWindow (Handle (window)));
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 0);
}

TEST_F (Win32Windows, WindowsMayGoInAnyOrder) {
    Window_Description description = Description (1);
    Window             windows[4];
    for (Window &made : windows) made = Window_Create (&description);
    for (int i : {2, 0, 3, 1, 1}) {
        Window_Destroy (windows[i]);
        Window_Destroy (nullptr);
    }
    for (Window gone : windows) EXPECT_EQ (Drawing_Begin (gone), nullptr);
}

TEST_F (Win32Windows, WithoutAWindowNothingHappens) {
    Window foreign = reinterpret_cast<Window> (GetDesktopWindow ());
    for (Window none : {Window (nullptr), foreign, reinterpret_cast<Window> (0x1234)}) {
        int          x = 5, y = 5;
        Window_Event event = {};
        Window_Show (none);
        Window_Invalidate (none);
        Window_Update (none);
        Window_Destroy (none);
        Window_Capture (none);
        Window_Client_Resize (none, 5, 5);
        Window_Cursor_Set (none, WINDOW_CURSOR_WAIT);
        EXPECT_EQ (Window_Cursor_Get (none), WINDOW_CURSOR_ARROW);
        EXPECT_EQ (Window_Send (none, &event), 0);
        Window_Pointer (none, &x, &y);
        EXPECT_EQ (x, 0);
        EXPECT_EQ (y, 0);
        Window_Client_Size (none, &x, &y);
        EXPECT_EQ (x, 0);
        EXPECT_EQ (y, 0);
    }
    EXPECT_TRUE (IsWindow (GetDesktopWindow ()));
}

TEST_F (Win32Windows, TheProgramHasItsIcon) {
    EXPECT_NE (LoadIconA (GetModuleHandleA (nullptr), "ICON1"), nullptr);
    for (int size : {16, 32, 48, 256})
        EXPECT_NE (LoadImageA (GetModuleHandleA (nullptr), "ICON1", IMAGE_ICON, size, size, LR_SHARED), nullptr)
            << size;
    Open (0);
    EXPECT_NE (GetClassLongPtrA (Handle (window), GCLP_HICON), 0u);
    EXPECT_NE (GetClassLongPtrA (Handle (window), GCLP_HICONSM), 0u);
}

// --- painting --------------------------------------------------------------

TEST_F (Win32Windows, PaintingDoesNotAskForMorePainting) {
    Open_Shown ();
    events.clear ();
    Deliver_Waiting (200);
    EXPECT_EQ (Count (WINDOW_PAINT), 0);
    Window_Invalidate (window);
    Window_Invalidate (window);
    Deliver_Waiting (200);
    EXPECT_EQ (Count (WINDOW_PAINT), 1);
}

TEST_F (Win32Windows, AnUncoveredPartIsPainted) {
    Open_Shown ();
    events.clear ();
    RECT part = {5, 5, 40, 40};
    InvalidateRect (Handle (window), &part, TRUE);
    Deliver_Waiting (50);
    EXPECT_EQ (Count (WINDOW_PAINT), 1);
}

static uint32_t Shown (Window window, int x, int y) {
    int width, height;
    Window_Client_Size (window, &width, &height);
    HDC      screen = GetDC (Handle (window));
    uint32_t colour = GetPixel (screen, x, height - 1 - y);
    ReleaseDC (Handle (window), screen);
    return colour;
}

TEST_F (Win32Windows, WhatIsDrawnBetweenEventsIsSeenAtOnce) {
    Open_Shown ();
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 50, 50, 60, 60, Drawing_Colour (0, 0, 255));
    EXPECT_NE (Shown (window, 55, 55), Drawing_Colour (0, 0, 255));
    Drawing_End (drawing);
    EXPECT_EQ (Shown (window, 55, 55), Drawing_Colour (0, 0, 255));
}

static uint32_t shown_in_event, shown_after_update;

static int Draws_On_Key (Window window, const Window_Event *event) {
    if (event->kind != WINDOW_KEY_DOWN) return 0;
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 50, 50, 60, 60, Drawing_Colour (0, 0, 255));
    Drawing_End (drawing);
    shown_in_event = Shown (window, 55, 55);
    if (event->key == WINDOW_KEY_END) Window_Update (window);
    shown_after_update = Shown (window, 55, 55);
    return 1;
}

TEST_F (Win32Windows, WhatIsDrawnInAnEventIsSeenAtItsEndOrWithAnUpdate) {
    for (WPARAM key : {VK_HOME, VK_END}) {
        Open_Shown ();
        inside = Draws_On_Key;
        SendMessageA (Handle (window), WM_KEYDOWN, key, 0);
        EXPECT_NE (shown_in_event, Drawing_Colour (0, 0, 255));
        EXPECT_EQ (shown_after_update == Drawing_Colour (0, 0, 255), key == VK_END);
        EXPECT_EQ (Shown (window, 55, 55), Drawing_Colour (0, 0, 255));
        inside = nullptr;
    }
}

static int Boxes_On_Key (Window window, const Window_Event *event) {
    if (event->kind != WINDOW_KEY_DOWN) return 0;
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 50, 50, 60, 60, Drawing_Colour (0, 0, 255));
    Drawing_End (drawing);
    Window_Message_Box (reinterpret_cast<Window> (0x1234), "text", "caption", WINDOW_ICON_NONE); // Is refused.
    shown_in_event = Shown (window, 55, 55);
    return 1;
}

TEST_F (Win32Windows, WhatIsDrawnIsSeenBehindABox) {
    Open_Shown ();
    inside = Boxes_On_Key;
    testing::internal::CaptureStderr ();
    SendMessageA (Handle (window), WM_KEYDOWN, VK_HOME, 0);
    EXPECT_EQ (testing::internal::GetCapturedStderr (), "caption\ntext\n");
    EXPECT_EQ (shown_in_event, Drawing_Colour (0, 0, 255));
}

// A box has a loop of its own, which paints the windows below it.
static int Paints_Inside (Window window, const Window_Event *event) {
    if (event->kind == WINDOW_KEY_DOWN) {
        InvalidateRect (Handle (window), nullptr, FALSE);
        UpdateWindow (Handle (window));
        events.push_back (Window_Event {WINDOW_KEY_DOWN, 0, 0, 0, 0, 0, 0, 77, 0, 0, 0, nullptr});
    }
    return 1;
}

TEST_F (Win32Windows, NoPaintEventComesInTheMiddleOfAnotherEvent) {
    Open_Shown ();
    inside = Paints_Inside;
    events.clear ();
    SendMessageA (Handle (window), WM_KEYDOWN, VK_HOME, 0);
    Deliver_Waiting (50);
    ASSERT_EQ (events.size (), 3u);
    EXPECT_EQ (events[1].key, 77);
    EXPECT_EQ (events[2].kind, WINDOW_PAINT) << "but it comes";
}

TEST_F (Win32Windows, TheBackgroundIsNotErased) {
    Open_Shown ();
    HDC screen = GetDC (Handle (window));
    EXPECT_EQ (SendMessageA (Handle (window), WM_ERASEBKGND, (WPARAM)screen, 0), 1);
    ReleaseDC (Handle (window), screen);
    EXPECT_EQ (Shown (window, 15, 15), Drawing_Colour (255, 0, 0));
}

TEST_F (Win32Windows, AHiddenWindowIsDrawnAndShowsItLater) {
    Open (0);
    draws_on_paint  = 0;
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 50, 50, 60, 60, Drawing_Colour (0, 0, 255));
    EXPECT_EQ (Drawing_Pixel (drawing, 55, 55), Drawing_Colour (0, 0, 255));
    Drawing_End (drawing);
    Window_Show (window);
    Deliver_Waiting (200);
    EXPECT_EQ (Shown (window, 55, 55), Drawing_Colour (0, 0, 255));
}

// --- keys ------------------------------------------------------------------

struct Key_Pair {
    WPARAM system;
    int    key;
};

TEST_F (Win32Windows, KeysHaveTheirNames) {
    Open (1);
    const Key_Pair pairs[] = {
        {VK_LEFT, WINDOW_KEY_LEFT},       {VK_RIGHT, WINDOW_KEY_RIGHT},   {VK_UP, WINDOW_KEY_UP},
        {VK_DOWN, WINDOW_KEY_DOWN_ARROW}, {VK_HOME, WINDOW_KEY_HOME},     {VK_END, WINDOW_KEY_END},
        {VK_DELETE, WINDOW_KEY_DELETE},   {VK_PRIOR, WINDOW_KEY_PAGE_UP}, {VK_NEXT, WINDOW_KEY_PAGE_DOWN},
        {'7', WINDOW_KEY_OTHER},          {VK_RETURN, WINDOW_KEY_OTHER},  {VK_F5, WINDOW_KEY_OTHER}};
    for (const Key_Pair &pair : pairs) {
        SendMessageA (Handle (window), WM_KEYDOWN, pair.system, 0);
        ASSERT_NE (Last (WINDOW_KEY_DOWN), nullptr);
        EXPECT_EQ (Last (WINDOW_KEY_DOWN)->key, pair.key) << pair.system;
    }
    EXPECT_EQ (Count (WINDOW_KEY_DOWN), 12);
}

TEST_F (Win32Windows, CharactersAreUnicode) {
    Open (1);
    SendMessageW (Handle (window), WM_CHAR, '7', 0);
    EXPECT_EQ (Last (WINDOW_CHARACTER)->character, (uint32_t)'7');
    SendMessageW (Handle (window), WM_CHAR, 0x20AC, 0);
    EXPECT_EQ (Last (WINDOW_CHARACTER)->character, 0x20ACu);
    for (WPARAM control : {8, 9, 13, 27}) {
        SendMessageW (Handle (window), WM_CHAR, control, 0);
        EXPECT_EQ (Last (WINDOW_CHARACTER)->character, control);
    }
    EXPECT_TRUE (IsWindowUnicode (Handle (window)));
}

TEST_F (Win32Windows, ACharacterInTwoHalvesComesOnce) {
    Open (1);
    SendMessageW (Handle (window), WM_CHAR, 0xD83D, 0);
    EXPECT_EQ (Count (WINDOW_CHARACTER), 0);
    SendMessageW (Handle (window), WM_CHAR, 0xDE00, 0);
    EXPECT_EQ (Count (WINDOW_CHARACTER), 1);
    EXPECT_EQ (Last (WINDOW_CHARACTER)->character, 0x1F600u);
    SendMessageW (Handle (window), WM_CHAR, 0xDE00, 0);
    EXPECT_EQ (Last (WINDOW_CHARACTER)->character, 0xFFFDu) << "a second half alone";
    SendMessageW (Handle (window), WM_CHAR, 0xD83D, 0);
    SendMessageW (Handle (window), WM_CHAR, 'x', 0);
    EXPECT_EQ (Last (WINDOW_CHARACTER)->character, (uint32_t)'x') << "a first half alone is dropped";
}

TEST_F (Win32Windows, AKeyPressedBecomesACharacter) {
    Open_Shown ();
    PostMessageA (Handle (window), WM_KEYDOWN, '3', 1 | MapVirtualKeyA ('3', 0) << 16);
    Deliver_Waiting (50);
    ASSERT_NE (Last (WINDOW_CHARACTER), nullptr);
    EXPECT_EQ (Last (WINDOW_CHARACTER)->character, (uint32_t)'3');
}

TEST_F (Win32Windows, AltAndF4CloseTheWindow) {
    Open_Shown ();
    SendMessageA (Handle (window), WM_SYSKEYDOWN, VK_F4, 1 << 29);
    Deliver_Waiting (50);
    EXPECT_EQ (Count (WINDOW_SYSTEM_KEY_DOWN), 1);
    EXPECT_FALSE (IsWindow (Handle (window)));
}

TEST_F (Win32Windows, LosingTheFocusIsTold) {
    Open (1);
    SendMessageA (Handle (window), WM_KILLFOCUS, 0, 0);
    EXPECT_EQ (Count (WINDOW_FOCUS_LOST), 1);
}

// --- mouse -----------------------------------------------------------------

TEST_F (Win32Windows, MousePlacesCountFromTheBottomLeft) {
    Open (1);
    SendMessageA (Handle (window), WM_MOUSEMOVE, 0, MAKELPARAM (7, 0));
    EXPECT_EQ (Last (WINDOW_MOUSE_MOVE)->x, 7);
    EXPECT_EQ (Last (WINDOW_MOUSE_MOVE)->y, 299);
    SendMessageA (Handle (window), WM_MOUSEMOVE, 0, MAKELPARAM (-3, -4));
    EXPECT_EQ (Last (WINDOW_MOUSE_MOVE)->x, -3) << "captured, outside";
    EXPECT_EQ (Last (WINDOW_MOUSE_MOVE)->y, 303);
}

struct Button_Pair {
    UINT down, up;
    int  button;
};

TEST_F (Win32Windows, EachButtonHasItsName) {
    Open (1);
    for (const Button_Pair &pair : {Button_Pair {WM_LBUTTONDOWN, WM_LBUTTONUP, WINDOW_BUTTON_LEFT},
                                    Button_Pair {WM_RBUTTONDOWN, WM_RBUTTONUP, WINDOW_BUTTON_RIGHT},
                                    Button_Pair {WM_MBUTTONDOWN, WM_MBUTTONUP, WINDOW_BUTTON_MIDDLE}}) {
        SendMessageA (Handle (window), pair.down, 0, MAKELPARAM (1, 2));
        EXPECT_EQ (Last (WINDOW_BUTTON_DOWN)->button, pair.button);
        EXPECT_EQ (Last (WINDOW_BUTTON_DOWN)->y, 297);
        SendMessageA (Handle (window), pair.up, 0, MAKELPARAM (1, 2));
        EXPECT_EQ (Last (WINDOW_BUTTON_UP)->button, pair.button);
    }
}

TEST_F (Win32Windows, TheWheelCountsOnTheScreen) {
    Open (0);
    SetWindowPos (Handle (window), nullptr, -200, -100, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    POINT place = {11, 22};
    ClientToScreen (Handle (window), &place);
    ASSERT_LT (place.x, 0);
    ASSERT_LT (place.y, 0);
    int width, height;
    Window_Client_Size (window, &width, &height);
    SendMessageA (Handle (window), WM_MOUSEWHEEL, MAKEWPARAM (0, (WORD)-60), MAKELPARAM (place.x, place.y));
    ASSERT_NE (Last (WINDOW_WHEEL), nullptr);
    EXPECT_EQ (Last (WINDOW_WHEEL)->wheel, -60);
    EXPECT_EQ (Last (WINDOW_WHEEL)->x, 11);
    EXPECT_EQ (Last (WINDOW_WHEEL)->y, height - 1 - 22);
    SendMessageA (Handle (window), WM_MOUSEWHEEL, MAKEWPARAM (0, 240), MAKELPARAM (place.x, place.y));
    EXPECT_EQ (Last (WINDOW_WHEEL)->wheel, 240);
}

TEST_F (Win32Windows, TheMouseIsHeldUntilItIsLeft) {
    Open_Shown ();
    Window_Capture (window);
    EXPECT_EQ (GetCapture (), Handle (window));
    Window_Capture_End ();
    EXPECT_EQ (GetCapture (), nullptr);
}

TEST_F (Win32Windows, ThePointerIsAskedOfTheSystem) {
    Open_Shown ();
    POINT place = {25, 35};
    ClientToScreen (Handle (window), &place);
    SetCursorPos (place.x, place.y);
    int width, height, x, y;
    Window_Client_Size (window, &width, &height);
    Window_Pointer (window, &x, &y);
    EXPECT_EQ (x, 25);
    EXPECT_EQ (y, height - 1 - 35);
}

TEST_F (Win32Windows, ACursorStaysInsideOfTheWindow) {
    Open_Shown ();
    const std::vector<std::pair<Window_Cursor, LPSTR>> cursors = {{WINDOW_CURSOR_WEST_EAST, IDC_SIZEWE},
                                                                  {WINDOW_CURSOR_NORTH_SOUTH, IDC_SIZENS},
                                                                  {WINDOW_CURSOR_ALL, IDC_SIZEALL},
                                                                  {WINDOW_CURSOR_WAIT, IDC_WAIT},
                                                                  {WINDOW_CURSOR_ARROW, IDC_ARROW}};
    Window_Capture (window);
    for (const auto &cursor : cursors) {
        Window_Cursor_Set (window, cursor.first);
        EXPECT_EQ (Window_Cursor_Get (window), cursor.first);
        EXPECT_EQ (GetCursor (), LoadCursorA (nullptr, cursor.second)) << "at once";
        SetCursor (nullptr);
        EXPECT_EQ (SendMessageA (Handle (window), WM_SETCURSOR, (WPARAM)Handle (window), HTCLIENT), TRUE);
        EXPECT_EQ (GetCursor (), LoadCursorA (nullptr, cursor.second));
    }
    Window_Capture_End ();
    Window_Cursor_Set (window, WINDOW_CURSOR_WAIT);
    SendMessageA (Handle (window), WM_SETCURSOR, (WPARAM)Handle (window), MAKELPARAM (HTLEFT, WM_MOUSEMOVE));
    EXPECT_EQ (GetCursor (), LoadCursorA (nullptr, IDC_SIZEWE)) << "the frame's own";
}

// --- events that are sent --------------------------------------------------

static Window_Event Mouse (Window_Event_Kind kind, int x, int y, int button, int modifiers) {
    Window_Event event = {};
    event.kind         = kind;
    event.x            = x;
    event.y            = y;
    event.button       = button;
    event.modifiers    = modifiers;
    return event;
}

TEST_F (Win32Windows, ButtonsModifiersAndPointerFollowWhatIsSent) {
    Open (1);
    int          x, y;
    Window_Event down = Mouse (WINDOW_BUTTON_DOWN, 12, 34, WINDOW_BUTTON_LEFT, WINDOW_SHIFT);
    Window_Event also = Mouse (WINDOW_BUTTON_DOWN, 13, 35, WINDOW_BUTTON_RIGHT, WINDOW_SHIFT | WINDOW_ALT);
    Window_Event up   = Mouse (WINDOW_BUTTON_UP, -5, 999, WINDOW_BUTTON_LEFT, 0);
    EXPECT_EQ (Window_Send (window, &down), 0);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_LEFT), 1);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_RIGHT), 0);
    EXPECT_EQ (Window_Modifier_Down (WINDOW_SHIFT), 1);
    EXPECT_EQ (Window_Modifier_Down (WINDOW_CONTROL), 0);
    Window_Pointer (window, &x, &y);
    EXPECT_EQ (x, 12);
    EXPECT_EQ (y, 34);
    Window_Send (window, &also);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_LEFT), 1);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_RIGHT), 1);
    EXPECT_EQ (Window_Modifier_Down (WINDOW_ALT), 1);
    Window_Send (window, &up);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_LEFT), 0);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_RIGHT), 1);
    EXPECT_EQ (Window_Modifier_Down (WINDOW_SHIFT), 0);
    Window_Pointer (window, &x, &y);
    EXPECT_EQ (x, -5);
    EXPECT_EQ (y, 999);
}

TEST_F (Win32Windows, TheProceduresAnswerComesBack) {
    Open (1);
    Window_Event event = {};
    event.kind         = WINDOW_CHARACTER;
    EXPECT_EQ (Window_Send (window, &event), 1);
    event.kind = WINDOW_FOCUS_LOST;
    EXPECT_EQ (Window_Send (window, &event), 0);
}

TEST_F (Win32Windows, TheRealMouseEndsWhatWasSentOfIt) {
    Open_Shown ();
    Window_Event down = Mouse (WINDOW_BUTTON_DOWN, 12, 34, WINDOW_BUTTON_LEFT, WINDOW_SHIFT);
    Window_Send (window, &down);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_LEFT), 1);
    SendMessageA (Handle (window), WM_MOUSEMOVE, 0, MAKELPARAM (7, 7));
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_LEFT), 0);
    EXPECT_EQ (Window_Modifier_Down (WINDOW_SHIFT), 0);
}

// Presses the left button, as it is built, above the window and lets it go. The buttons that were down meanwhile.
static int Press_Left (Window window) {
    POINT place = {25, 35};
    ClientToScreen (Handle (window), &place);
    SetCursorPos (place.x, place.y);
    Deliver_Waiting (50);
    mouse_event (MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
    Deliver_Waiting (50);
    int down = 0;
    for (int button : {WINDOW_BUTTON_LEFT, WINDOW_BUTTON_RIGHT, WINDOW_BUTTON_MIDDLE})
        if (Window_Button_Down (button)) down |= button;
    mouse_event (MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
    Deliver_Waiting (50);
    EXPECT_EQ (Window_Button_Down (WINDOW_BUTTON_LEFT) + Window_Button_Down (WINDOW_BUTTON_RIGHT), 0) << "let go";
    return down;
}

TEST_F (Win32Windows, AButtonIsDownWhileItIsPressed) {
    Open_Shown ();
    events.clear ();
    EXPECT_EQ (Press_Left (window), WINDOW_BUTTON_LEFT);
    ASSERT_EQ (Count (WINDOW_BUTTON_DOWN), 1);
    EXPECT_EQ (Last (WINDOW_BUTTON_DOWN)->button, WINDOW_BUTTON_LEFT);
    EXPECT_EQ (Last (WINDOW_BUTTON_DOWN)->x, 25);
    EXPECT_EQ (Count (WINDOW_BUTTON_UP), 1);
}

TEST_F (Win32Windows, ButtonsThatTheUserHasSwappedAreSwapped) {
    Open_Shown ();
    BOOL before = SwapMouseButton (TRUE);
    EXPECT_EQ (Press_Left (window), WINDOW_BUTTON_RIGHT);
    SwapMouseButton (before);
}

TEST_F (Win32Windows, WhatIsNoButtonOrModifierIsNotDown) {
    Open (1);
    Window_Event down = Mouse (WINDOW_BUTTON_DOWN, 1, 1, WINDOW_BUTTON_LEFT | WINDOW_BUTTON_RIGHT, 7);
    Window_Send (window, &down);
    for (int value : {-1, 0, 3, 5, 7, 8, INT_MAX, INT_MIN}) {
        EXPECT_EQ (Window_Button_Down (value), 0) << value;
        EXPECT_EQ (Window_Modifier_Down (value), 0) << value;
    }
}

// Caps Lock and the like are not down while they are on.
TEST_F (Win32Windows, ALockedKeyIsNotDown) {
    Open (1);
    BYTE before[256], locked[256] = {};
    GetKeyboardState (before);
    locked[VK_SHIFT] = locked[VK_CONTROL] = locked[VK_MENU] = 1;
    SetKeyboardState (locked);
    for (int modifier : {WINDOW_SHIFT, WINDOW_CONTROL, WINDOW_ALT}) EXPECT_EQ (Window_Modifier_Down (modifier), 0);
    locked[VK_CONTROL] = 0x81;
    SetKeyboardState (locked);
    EXPECT_EQ (Window_Modifier_Down (WINDOW_CONTROL), 1);
    SendMessageA (Handle (window), WM_KEYDOWN, VK_LEFT, 0);
    EXPECT_EQ (Last (WINDOW_KEY_DOWN)->modifiers, WINDOW_CONTROL);
    SetKeyboardState (before);
}

// --- dropped files ---------------------------------------------------------

// What a program that drags files hands over.
static HDROP Drop_Of (const std::vector<std::wstring> &names) {
    std::wstring list;
    for (const std::wstring &name : names) list += name + L'\0';
    list.append (2, L'\0'); // One would end the list, but an empty one must have one for its name.
    size_t     bytes  = list.size () * sizeof (wchar_t);
    HGLOBAL    memory = GlobalAlloc (GHND, sizeof (DROPFILES) + bytes);
    DROPFILES *drop   = static_cast<DROPFILES *> (GlobalLock (memory));
    drop->pFiles      = sizeof *drop;
    drop->fWide       = TRUE;
    memcpy (reinterpret_cast<char *> (drop) + sizeof *drop, list.data (), bytes);
    GlobalUnlock (memory);
    return reinterpret_cast<HDROP> (memory);
}

TEST_F (Win32Windows, DroppedFilesComeWholeAndInOrder) {
    Open (0);
    std::wstring long_name = L"C:\\" + std::wstring (297, L'x');
    struct {
        std::vector<std::wstring> names;
        std::vector<std::string>  expected;
    } drops[] = {
        {{L"C:\\one file.dcm"}, {"C:\\one file.dcm"}},
        {{L"C:\\\u00E9t\u00E9 \u20AC\\a b.dcm", L"D:\\2"}, {"C:\\\xC3\xA9t\xC3\xA9 \xE2\x82\xAC\\a b.dcm", "D:\\2"}},
        {{long_name, L"x"}, {"C:\\" + std::string (297, 'x'), "x"}}};
    for (const auto &drop : drops) {
        SendMessageA (Handle (window), WM_DROPFILES, (WPARAM)Drop_Of (drop.names), 0);
        EXPECT_EQ (dropped, drop.expected);
    }
}

TEST_F (Win32Windows, ADropWithoutFilesIsToldToo) {
    Open (0);
    SendMessageA (Handle (window), WM_DROPFILES, (WPARAM)Drop_Of ({}), 0);
    ASSERT_EQ (Count (WINDOW_DROP), 1);
    EXPECT_EQ (Last (WINDOW_DROP)->file_count, 0);
}

TEST_F (Win32Windows, AThousandFilesAreDroppedWithoutAStall) {
    Open (0);
    std::vector<std::wstring> names;
    for (int i = 0; i < 1000; i++) names.push_back (L"C:\\folder\\some file " + std::to_wstring (i) + L".dcm");
    PostMessageA (Handle (window), WM_DROPFILES, (WPARAM)Drop_Of (names), 0);
    ULONGLONG start = GetTickCount64 ();
    Deliver_Waiting ();
    EXPECT_LT (GetTickCount64 () - start, 2000u);
    ASSERT_EQ (dropped.size (), 1000u);
    EXPECT_EQ (dropped[999], "C:\\folder\\some file 999.dcm");
    EXPECT_EQ (Count (WINDOW_DROP), 1);
}

TEST_F (Win32Windows, AnotherProgramDropsFiles) {
    Window_Description description = Description (0);
    description.title              = "Window for drops";
    window                         = Window_Create (&description);
    dropped.clear ();
    EXPECT_EQ (Child_Run ("drop", description.title, CHILD_PIPE).status, 0u);
    for (int tries = 0; tries < 50 && dropped.empty (); tries++) Deliver_Waiting (20);
    EXPECT_EQ (dropped, (std::vector<std::string> {"C:\\from another.dcm", "D:\\\xC3\xA9t\xC3\xA9.dcm"}));
}

TEST_F (Win32Windows, ADropIsReleasedAfterwards) {
    Open (0);
    HDROP drop = Drop_Of ({L"a"});
    SendMessageA (Handle (window), WM_DROPFILES, (WPARAM)drop, 0);
    EXPECT_TRUE (GlobalFlags (reinterpret_cast<HGLOBAL> (drop)) == GMEM_INVALID_HANDLE);
}

TEST_F (Win32Windows, FilesAreAcceptedWhenAskedFor) {
    Open (0);
    EXPECT_TRUE (GetWindowLongPtrA (Handle (window), GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
    Window_Description description = Description (0);
    description.accept_drops       = 0;
    Window other                   = Window_Create (&description);
    EXPECT_FALSE (GetWindowLongPtrA (Handle (other), GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
    Window_Destroy (other);
}

// --- loop ------------------------------------------------------------------

TEST_F (Win32Windows, WithoutAWindowOnTheScreenTheLoopEnds) {
    Close_Shown ();
    EXPECT_EQ (Window_Loop (), 0);
    Open (1);
    EXPECT_EQ (Window_Loop (), 0);
}

TEST_F (Win32Windows, AQuitEndsTheLoopAtOnce) {
    Close_Shown ();
    Open (0);
    events.clear ();
    PostMessageA (Handle (window), WM_KEYDOWN, VK_LEFT, 0);
    Window_Quit (42);
    EXPECT_EQ (Window_Loop (), 42);
    EXPECT_TRUE (events.empty ());
    Deliver_Waiting ();
    EXPECT_EQ (Count (WINDOW_KEY_DOWN), 1) << "nothing is lost";
}

static int Quits_When_Destroyed (Window, const Window_Event *event) {
    if (event->kind == WINDOW_DESTROY) Window_Quit (7);
    return 0;
}

TEST_F (Win32Windows, ClosingTheWindowEndsTheLoopWithItsCode) {
    Close_Shown ();
    Window_Description description = Description (0);
    description.procedure          = Quits_When_Destroyed;
    window                         = Window_Create (&description);
    PostMessageA (Handle (window), WM_CLOSE, 0, 0);
    EXPECT_EQ (Window_Loop (), 7);
}

TEST_F (Win32Windows, TheLoopPaintsAnInvalidOffScreenWindowOnce) {
    Close_Shown ();
    Open (1);
    Window_Invalidate (window);
    Window_Invalidate (window);
    EXPECT_EQ (Count (WINDOW_PAINT), 0);
    EXPECT_EQ (Window_Loop (), 0);
    EXPECT_EQ (Count (WINDOW_PAINT), 1);
    Window_Invalidate (window);
    Window_Loop ();
    EXPECT_EQ (Count (WINDOW_PAINT), 2);
}

TEST_F (Win32Windows, TheThreadMessageIsLeftToTheSystem) {
    Close_Shown ();
    Open (1);
    events.clear ();
    Window_Post_Thread_Message (window);
    EXPECT_EQ (Window_Loop (), 0);
    EXPECT_TRUE (events.empty ());
}
