#include <string>

#include <gtest/gtest.h>
#include <windows.h>

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
