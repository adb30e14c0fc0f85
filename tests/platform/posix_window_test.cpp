// Boxes without a display.
#include "platform/window.h"

#include <string>

#include <gtest/gtest.h>

static std::string last;

static int Hook (Window, const char *text, const char *caption, Window_Icon icon) {
    last = std::string (caption) + "|" + text + "|" + std::to_string (icon);
    return 1;
}

static std::string Written (void (*what) ()) {
    testing::internal::CaptureStderr ();
    what ();
    return testing::internal::GetCapturedStderr ();
}

TEST (PosixWindow, BoxesGoToStandardError) {
    EXPECT_EQ (Written ([] { Window_Message_Box (nullptr, "100% text\nmore", "Caption", WINDOW_ICON_ERROR); }),
               "Caption\n100% text\nmore\n");
    EXPECT_EQ (Written ([] { Window_Message_Box (nullptr, "text", "", WINDOW_ICON_NONE); }), "text\n");
    EXPECT_EQ (Written ([] { Window_Message_Box (nullptr, "text", nullptr, WINDOW_ICON_NONE); }), "text\n");
}

TEST (PosixWindow, QuestionsAreAnsweredNo) {
    EXPECT_EQ (Written ([] { EXPECT_EQ (Window_Question_Box (nullptr, "go on?", "Program"), 0); }),
               "Program\ngo on?\n");
}

TEST (PosixWindow, HookShowsBoxesInsteadAndAnswers) {
    Window_Box_Hook_Set (Hook);
    EXPECT_EQ (Written ([] { Window_Message_Box (nullptr, "text", "caption", WINDOW_ICON_WARNING); }), "");
    EXPECT_EQ (last, "caption|text|" + std::to_string (WINDOW_ICON_WARNING));
    EXPECT_EQ (Window_Question_Box (nullptr, "go on?", "Program"), 1);
    EXPECT_EQ (last, "Program|go on?|" + std::to_string (WINDOW_ICON_QUESTION));
    Window_Box_Hook_Set (nullptr);
    EXPECT_EQ (Written ([] { Window_Message_Box (nullptr, "text", "", WINDOW_ICON_NONE); }), "text\n");
}

TEST (PosixWindow, PostingWithoutAWindowDoesNothing) {
    EXPECT_EQ (Written ([] { Window_Post_Thread_Message (nullptr); }), "");
}
