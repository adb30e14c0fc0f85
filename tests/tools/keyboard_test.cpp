#include "tools/keyboard.h"

#include <gtest/gtest.h>

static Window_Event Key_Event (Window_Event_Kind kind, int key, uint32_t character) {
    Window_Event event = {};
    event.kind         = kind;
    event.key          = key;
    event.character    = character;
    return event;
}

static int Code_Of (Window_Event_Kind kind, int key, uint32_t character) {
    Window_Event event = Key_Event (kind, key, character);
    return Keyboard::Code (&event);
}

static Window New_Window () {
    Window_Description description = {};
    description.title              = "keyboard";
    description.width              = 40;
    description.height             = 30;
    description.off_screen         = 1;
    return Window_Create (&description);
}

TEST (Keyboard, CharactersFollowTheirBit) {
    for (int character = 1; character <= 255; character++)
        EXPECT_EQ (Code_Of (WINDOW_CHARACTER, 0, character), 0x200 + character);
    EXPECT_EQ (Code_Of (WINDOW_CHARACTER, 0, '0'), 0x230);
    EXPECT_EQ (Code_Of (WINDOW_CHARACTER, 0, '9'), 0x239);
}

TEST (Keyboard, CharactersBeyondOneByteHaveNoCode) {
    for (uint32_t character : {0u, 256u, 0x230u, 0x20ACu, 0x10FFFFu, 0x80000031u, 0xFFFFFFFFu})
        EXPECT_EQ (Code_Of (WINDOW_CHARACTER, 0, character), 0) << character;
}

// The key of a digit goes down before its character comes: only one of the two events may count.
TEST (Keyboard, ADigitCountsOnce) {
    for (Window_Event_Kind kind : {WINDOW_KEY_DOWN, WINDOW_SYSTEM_KEY_DOWN})
        EXPECT_EQ (Code_Of (kind, WINDOW_KEY_OTHER, '3'), 0);
    EXPECT_EQ (Code_Of (WINDOW_CHARACTER, WINDOW_KEY_OTHER, '3'), 0x233);
}

TEST (Keyboard, MovementKeysHaveCodesOfTheirOwn) {
    for (int key = WINDOW_KEY_LEFT; key <= WINDOW_KEY_PAGE_DOWN; key++) {
        EXPECT_EQ (Code_Of (WINDOW_KEY_DOWN, key, 0), 0x100 + key);
        EXPECT_EQ (Code_Of (WINDOW_SYSTEM_KEY_DOWN, key, 0), 0x100 + key);
        EXPECT_EQ (Code_Of (WINDOW_CHARACTER, key, 0), 0);
    }
    EXPECT_EQ (Code_Of (WINDOW_KEY_DOWN, WINDOW_KEY_OTHER, 0), 0);
    EXPECT_EQ (Code_Of (WINDOW_KEY_DOWN, WINDOW_KEY_PAGE_DOWN + 1, 0), 0);
    EXPECT_EQ (Code_Of (WINDOW_KEY_DOWN, -1, 0), 0);
    EXPECT_EQ (Code_Of (WINDOW_KEY_DOWN, 0x130, 0), 0); // 0x230, were it added unseen.
}

TEST (Keyboard, OtherEventsHaveNoCode) {
    for (int kind = WINDOW_CREATE; kind <= WINDOW_DROP; kind++) {
        if (kind == WINDOW_KEY_DOWN || kind == WINDOW_SYSTEM_KEY_DOWN || kind == WINDOW_CHARACTER) continue;
        EXPECT_EQ (Code_Of ((Window_Event_Kind)kind, WINDOW_KEY_LEFT, '3'), 0) << kind;
    }
}

TEST (KeyboardCursor, IsSetAndRestored) {
    Window window = New_Window ();
    ASSERT_TRUE (window);
    Window_Cursor own = Window_Cursor_Get (window);
    Cursor::Set (window, WINDOW_CURSOR_WEST_EAST);
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_WEST_EAST);
    Cursor::Set (window, WINDOW_CURSOR_NORTH_SOUTH);
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_NORTH_SOUTH);
    Cursor::Restore (window);
    EXPECT_EQ (Window_Cursor_Get (window), own);
    Window_Destroy (window);
}

TEST (KeyboardCursor, RestoresTheOneThatTheWindowHad) {
    Window window = New_Window ();
    ASSERT_TRUE (window);
    Window_Cursor_Set (window, WINDOW_CURSOR_WAIT);
    Cursor::Set (window, WINDOW_CURSOR_ALL);
    Cursor::Restore (window);
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_WAIT);
    Window_Destroy (window);
}

TEST (KeyboardCursor, RestoreLeavesAWindowAloneThatWasNotChanged) {
    Window window = New_Window ();
    Window other  = New_Window ();
    ASSERT_TRUE (window && other);
    Window_Cursor_Set (window, WINDOW_CURSOR_WAIT);
    Cursor::Restore (window);
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_WAIT);
    Cursor::Set (other, WINDOW_CURSOR_ALL);
    Cursor::Restore (window);
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_WAIT);
    EXPECT_EQ (Window_Cursor_Get (other), WINDOW_CURSOR_ALL);
    Cursor::Restore (other);
    Cursor::Restore (other);
    EXPECT_EQ (Window_Cursor_Get (other), WINDOW_CURSOR_ARROW);
    Window_Destroy (other);
    Window_Destroy (window);
}

TEST (KeyboardCursor, NoWindowIsNoHarm) {
    Cursor::Set (nullptr, WINDOW_CURSOR_ALL);
    Cursor::Restore (nullptr);
    Window window = New_Window ();
    ASSERT_TRUE (window);
    Window_Cursor_Set (window, WINDOW_CURSOR_WAIT);
    Cursor::Restore (window);
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_WAIT);
    Window_Destroy (window);
}
