#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/drawing.h"
#include "platform/window.h"

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

static void Paint (Window window) {
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 10, 10, 20, 20, Drawing_Colour (255, 0, 0));
    Drawing_End (drawing);
}

static int Procedure (Window window, const Window_Event *event) {
    events.push_back (*event);
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
    void Open_Shown () {
        Open (0);
        Window_Show (window);
        Deliver_Waiting (300);
    }
    void TearDown () override {
        Window_Destroy (window);
        Deliver_Waiting ();
    }
};

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
