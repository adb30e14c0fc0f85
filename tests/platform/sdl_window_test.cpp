// Windows on Linux as far as they need no screen: off-screen ones, the events sent to them, and what is said when there can
// be no window. tests/scripts/display-test.sh has those on a screen.
#include "platform/window.h"

#include <limits.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/drawing.h"
#include "tests/support/program.h"
#include "tests/support/temporary.h"

// --- events of an off-screen window ----------------------------------------

static std::vector<std::string> events; // Kinds, with what belongs to them.
static Window                   seen;
static int                      answer;

static int Procedure (Window window, const Window_Event *event) {
    std::string text = std::to_string (event->kind);
    if (event->kind == WINDOW_CREATE || event->kind == WINDOW_SIZE)
        text += " " + std::to_string (event->width) + " " + std::to_string (event->height);
    events.push_back (text);
    seen = window;
    return answer;
}

static std::string Kind (Window_Event_Kind kind, const std::string &rest = "") { return std::to_string (kind) + rest; }

static Window_Event Event (Window_Event_Kind kind) {
    Window_Event event = {};
    event.kind         = kind;
    return event;
}

static Window_Event Mouse (Window_Event_Kind kind, int x, int y, int button = 0, int modifiers = 0) {
    Window_Event event = Event (kind);
    event.x            = x;
    event.y            = y;
    event.button       = button;
    event.modifiers    = modifiers;
    return event;
}

static Window_Description Description (Window_Procedure procedure) {
    return {"title", 0, 0, 30, 20, 0, procedure, 0, 1};
}

class SdlWindow : public testing::Test {
public:
    void SetUp () override {
        events.clear ();
        answer                         = 1;
        Window_Description description = Description (Procedure);
        window                         = Window_Create (&description);
        ASSERT_NE (window, nullptr) << Window_Error_Text ();
    }

    void TearDown () override {
        Window_Capture_End ();
        Window_Destroy (window);
    }

    void Send (const Window_Event &event) { Window_Send (window, &event); }

    Window window = nullptr;
};

TEST_F (SdlWindow, BeginsWithItsCreateEventAndEndsWithItsDestroyEvent) {
    EXPECT_EQ (events, std::vector<std::string> {Kind (WINDOW_CREATE, " 30 20")});
    EXPECT_EQ (seen, window);
    events.clear ();
    Window_Show (window);
    Window_Update (window);
    EXPECT_TRUE (events.empty ());
    Window_Destroy (window);
    window = nullptr;
    EXPECT_EQ (events, std::vector<std::string> {Kind (WINDOW_DESTROY)});
}

TEST_F (SdlWindow, ResizeTellsTheNewSize) {
    events.clear ();
    Window_Client_Resize (window, 50, 60);
    EXPECT_EQ (events, std::vector<std::string> {Kind (WINDOW_SIZE, " 50 60")});
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 50);
    EXPECT_EQ (height, 60);
}

TEST_F (SdlWindow, ImpossibleSizesChangeNothing) {
    events.clear ();
    for (int size : {0, -1, INT_MIN, INT_MAX, 100000}) Window_Client_Resize (window, size, 10);
    Window_Client_Resize (window, 10, 0);
    EXPECT_TRUE (events.empty ());
    int width, height;
    Window_Client_Size (window, &width, &height);
    EXPECT_EQ (width, 30);
    EXPECT_EQ (height, 20);
    Drawing drawing = Drawing_Begin (window);
    Drawing_Fill (drawing, 0, 0, 30, 20, Drawing_Colour (1, 2, 3));
    EXPECT_EQ (Drawing_Pixel (drawing, 29, 19), Drawing_Colour (1, 2, 3));
    Drawing_End (drawing);
}

TEST (SdlWindowCreate, ImpossibleSizesMakeNone) {
    for (int size : {0, -5, INT_MAX, INT_MIN}) {
        Window_Description description = Description (nullptr);
        description.width              = size;
        EXPECT_EQ (Window_Create (&description), nullptr);
        EXPECT_EQ (Window_Error_Text (), "A window of " + std::to_string (size) + " x 20 pixels can't be made.");
    }
}

TEST (SdlWindowCreate, NeitherTitleNorProcedureIsNeeded) {
    Window_Description description = Description (nullptr);
    description.title              = nullptr;
    Window window                  = Window_Create (&description);
    ASSERT_NE (window, nullptr);
    Window_Event event = Event (WINDOW_PAINT);
    EXPECT_EQ (Window_Send (window, &event), 0);
    Window_Destroy (window);
}

TEST_F (SdlWindow, SentEventsReachTheProcedure) {
    events.clear ();
    Window_Event event = Event (WINDOW_DROP);
    EXPECT_EQ (Window_Send (window, &event), 1);
    answer = 0;
    EXPECT_EQ (Window_Send (window, &event), 0);
    EXPECT_EQ (events, (std::vector<std::string> {Kind (WINDOW_DROP), Kind (WINDOW_DROP)}));
    EXPECT_EQ (Window_Send (window, nullptr), 0);
    EXPECT_EQ (Window_Send (nullptr, &event), 0);
}

TEST_F (SdlWindow, PointerFollowsTheMouse) {
    int x, y;
    Window_Pointer (window, &x, &y);
    EXPECT_EQ (x, 0);
    EXPECT_EQ (y, 0);
    for (Window_Event_Kind kind : {WINDOW_MOUSE_MOVE, WINDOW_BUTTON_DOWN, WINDOW_BUTTON_UP, WINDOW_WHEEL}) {
        Send (Mouse (kind, 3 + kind, -4, WINDOW_BUTTON_LEFT));
        Window_Pointer (window, &x, &y);
        EXPECT_EQ (x, 3 + kind);
        EXPECT_EQ (y, -4);
    }
    Send (Mouse (WINDOW_KEY_DOWN, 9, 9));
    Window_Pointer (window, &x, &y);
    EXPECT_EQ (y, -4);
}

TEST_F (SdlWindow, ButtonsAreDownUntilTheyAreReleased) {
    for (int button : {WINDOW_BUTTON_LEFT, WINDOW_BUTTON_RIGHT, WINDOW_BUTTON_MIDDLE}) {
        EXPECT_EQ (Window_Button_Down (button), 0);
        Send (Mouse (WINDOW_BUTTON_DOWN, 0, 0, button));
        EXPECT_EQ (Window_Button_Down (button), 1);
        Send (Mouse (WINDOW_MOUSE_MOVE, 1, 1));
        EXPECT_EQ (Window_Button_Down (button), 1);
    }
    for (int other : {0, 3, 5, 7, 8, -1}) EXPECT_EQ (Window_Button_Down (other), 0) << other;
    for (int button : {WINDOW_BUTTON_LEFT, WINDOW_BUTTON_RIGHT, WINDOW_BUTTON_MIDDLE}) {
        Send (Mouse (WINDOW_BUTTON_UP, 0, 0, button));
        EXPECT_EQ (Window_Button_Down (button), 0);
    }
}

TEST_F (SdlWindow, ModifiersFollowKeysAndMouse) {
    for (Window_Event_Kind kind : {WINDOW_KEY_DOWN, WINDOW_SYSTEM_KEY_DOWN, WINDOW_MOUSE_MOVE, WINDOW_WHEEL}) {
        Send (Mouse (kind, 0, 0, 0, WINDOW_SHIFT | WINDOW_ALT));
        EXPECT_EQ (Window_Modifier_Down (WINDOW_SHIFT), 1);
        EXPECT_EQ (Window_Modifier_Down (WINDOW_CONTROL), 0);
        EXPECT_EQ (Window_Modifier_Down (WINDOW_ALT), 1);
        EXPECT_EQ (Window_Modifier_Down (WINDOW_SHIFT | WINDOW_ALT), 0);
        EXPECT_EQ (Window_Modifier_Down (0), 0);
        Send (Mouse (kind, 0, 0));
        EXPECT_EQ (Window_Modifier_Down (WINDOW_SHIFT), 0);
    }
    Send (Mouse (WINDOW_KEY_DOWN, 0, 0, 0, WINDOW_CONTROL));
    EXPECT_EQ (Window_Modifier_Down (WINDOW_CONTROL), 1);
    Send (Event (WINDOW_KEY_DOWN));
}

TEST_F (SdlWindow, CursorStaysUntilTheNextOne) {
    EXPECT_EQ (Window_Cursor_Get (window), WINDOW_CURSOR_ARROW);
    for (Window_Cursor cursor : {WINDOW_CURSOR_WEST_EAST, WINDOW_CURSOR_NORTH_SOUTH, WINDOW_CURSOR_ALL,
                                 WINDOW_CURSOR_WAIT, WINDOW_CURSOR_ARROW}) {
        Window_Cursor_Set (window, cursor);
        Send (Mouse (WINDOW_MOUSE_MOVE, 1, 1));
        EXPECT_EQ (Window_Cursor_Get (window), cursor);
    }
    EXPECT_EQ (Window_Cursor_Get (nullptr), WINDOW_CURSOR_ARROW);
}

TEST_F (SdlWindow, CaptureOfAnOffScreenWindowDoesNoHarm) {
    Window_Capture (window);
    Window_Capture_End ();
    Window_Capture_End ();
    Window_Capture (window);
    Window_Destroy (window);
    window = nullptr;
    Window_Capture_End ();
}

// --- the loop --------------------------------------------------------------

TEST_F (SdlWindow, LoopWithoutAScreenEndsAtOnce) {
    EXPECT_EQ (Window_Loop (), 0);
    Window_Quit (5);
    EXPECT_EQ (Window_Loop (), 5);
    EXPECT_EQ (Window_Loop (), 0);
}

TEST_F (SdlWindow, LoopPaintsWhatIsInvalidOnce) {
    events.clear ();
    EXPECT_EQ (Window_Loop (), 0);
    EXPECT_TRUE (events.empty ());
    Window_Invalidate (window);
    Window_Invalidate (window);
    EXPECT_TRUE (events.empty ());
    EXPECT_EQ (Window_Loop (), 0);
    EXPECT_EQ (Window_Loop (), 0);
    EXPECT_EQ (events, std::vector<std::string> {Kind (WINDOW_PAINT)});
}

static int Restless (Window window, const Window_Event *event) {
    if (event->kind == WINDOW_PAINT) Window_Invalidate (window);
    return Procedure (window, event);
}

TEST_F (SdlWindow, WindowThatInvalidatesItselfDoesNotHoldTheLoop) {
    Window_Description description = Description (Restless);
    Window             restless    = Window_Create (&description);
    Window_Invalidate (restless);
    EXPECT_EQ (Window_Loop (), 0);
    Window_Destroy (restless);
}

TEST_F (SdlWindow, EachInvalidWindowIsPainted) {
    Window_Description description = Description (Procedure);
    Window             second      = Window_Create (&description);
    events.clear ();
    Window_Invalidate (window);
    Window_Invalidate (second);
    Window_Loop ();
    EXPECT_EQ (events, (std::vector<std::string> {Kind (WINDOW_PAINT), Kind (WINDOW_PAINT)}));
    Window_Destroy (second);
}

TEST_F (SdlWindow, QuitLeavesPaintingOut) {
    events.clear ();
    Window_Invalidate (window);
    Window_Quit (1);
    EXPECT_EQ (Window_Loop (), 1);
    EXPECT_TRUE (events.empty ());
}

TEST_F (SdlWindow, ThreadMessageReachesNoProcedure) {
    events.clear ();
    Window_Post_Thread_Message (window);
    EXPECT_EQ (Window_Loop (), 0);
    EXPECT_TRUE (events.empty ());
}

// --- order of destroying ---------------------------------------------------

static int Destroys_Itself (Window window, const Window_Event *event) {
    Procedure (window, event);
    if (event->kind == WINDOW_BUTTON_DOWN || event->kind == WINDOW_PAINT || event->kind == WINDOW_DESTROY)
        Window_Destroy (window);
    return 1;
}

TEST_F (SdlWindow, WindowMayBeDestroyedByItsOwnProcedure) {
    for (Window_Event_Kind kind : {WINDOW_BUTTON_DOWN, WINDOW_PAINT}) {
        Window_Description description = Description (Destroys_Itself);
        Window             other       = Window_Create (&description);
        events.clear ();
        Window_Event event = Mouse (kind, 1, 1, WINDOW_BUTTON_RIGHT);
        EXPECT_EQ (Window_Send (other, &event), 1);
        EXPECT_EQ (std::count (events.begin (), events.end (), Kind (WINDOW_DESTROY)), 1);
    }
    Send (Mouse (WINDOW_BUTTON_UP, 0, 0, WINDOW_BUTTON_RIGHT));
    Window_Description description = Description (Destroys_Itself);
    Window_Invalidate (Window_Create (&description));
    EXPECT_EQ (Window_Loop (), 0);
}

static int Refuses (Window window, const Window_Event *event) {
    if (event->kind == WINDOW_CREATE) Window_Destroy (window);
    return 1;
}

TEST_F (SdlWindow, WindowDestroyedByItsCreateEventIsNone) {
    Window_Description description = Description (Refuses);
    EXPECT_EQ (Window_Create (&description), nullptr);
    EXPECT_STREQ (Window_Error_Text (), "The window was closed while it was made.");
}

TEST_F (SdlWindow, WindowsAreDestroyedInAnyOrder) {
    Window_Description description = Description (nullptr);
    Window             others[3];
    for (int first = 0; first < 3; first++) {
        for (Window &other : others) other = Window_Create (&description);
        for (int i = 0; i < 3; i++) Window_Destroy (others[(first + 2 * i) % 3]);
    }
    Window_Invalidate (window);
    EXPECT_EQ (Window_Loop (), 0);
}

TEST (SdlWindowCreate, NoWindowIsAllowedEverywhere) {
    int x = 7, y = 7;
    Window_Destroy (nullptr);
    Window_Show (nullptr);
    Window_Client_Resize (nullptr, 3, 4);
    Window_Invalidate (nullptr);
    Window_Update (nullptr);
    Window_Capture (nullptr);
    Window_Cursor_Set (nullptr, WINDOW_CURSOR_WAIT);
    Window_Post_Thread_Message (nullptr);
    Window_Pointer (nullptr, &x, &y);
    EXPECT_EQ (x + y, 0);
    x = y = 7;
    Window_Client_Size (nullptr, &x, &y);
    EXPECT_EQ (x + y, 0);
}

// --- processes -------------------------------------------------------------

struct Child {
    int         status;
    std::string output; // With standard error.
};

static Child Child_Run (const std::string &program, const std::string &words, const std::string &environment = "") {
    Temporary_Directory directory;
    std::string         file = directory.File ("output.txt");
    std::string         command =
        "env -u DISPLAY -u WAYLAND_DISPLAY " + environment + " '" + program + "' " + words + " > '" + file + "' 2>&1";
    int status = std::system (command.c_str ());
    return {WIFEXITED (status) ? WEXITSTATUS (status) : -1, Read_Whole (file)};
}

// A copy of the child in a folder of its own.
struct Copy {
    Copy () {
        std::filesystem::create_directories (directory.File ("bin"));
        std::filesystem::copy_file (SDL_CHILD, program);
    }

    void Module (const std::string &place, const std::string &target) {
        std::filesystem::path path = directory.File (place);
        std::filesystem::create_directories (path.parent_path ());
        std::filesystem::create_symlink (target, path);
    }

    Temporary_Directory directory;
    std::string         program = directory.File ("bin/child");
};

static bool Contains (const std::string &text, const std::string &part) {
    return text.find (part) != std::string::npos;
}

TEST (SdlModule, OffScreenWindowNeedsNoDisplay) {
    Child child = Child_Run (SDL_CHILD, "create");
    EXPECT_EQ (child.status, 0);
    EXPECT_EQ (child.output, "created\n");
}

TEST (SdlModule, TheEndMayBeAskedForBeforeThereIsAWindow) {
    EXPECT_EQ (Child_Run (SDL_CHILD, "quit").output, "loop 0, 3, 0\n");
    EXPECT_EQ (Child_Run (SDL_CHILD, "quit again").output, "loop 0, 7, 0\n");
}

TEST (SdlModule, WindowOnTheScreenNeedsADisplay) {
    Child child = Child_Run (SDL_CHILD, "screen");
    EXPECT_EQ (child.status, 1);
    EXPECT_TRUE (Contains (child.output, "none: The window needs a display: is DISPLAY or WAYLAND_DISPLAY set"))
        << child.output;
}

TEST (SdlModule, BoxesOfAnOffScreenWindowGoToStandardError) {
    EXPECT_EQ (Child_Run (SDL_CHILD, "boxes").output, "caption\nmessage\ncaption\nquestion\nanswer 0\n");
}

TEST (SdlModule, MissingModuleIsExplained) {
    Copy  copy;
    Child child = Child_Run (copy.program, "create");
    if (std::filesystem::exists ("/usr/lib/tagwright/tagwright_display.so")) return;
    std::string bin = copy.directory.File ("bin/");
    EXPECT_EQ (child.status, 1);
    EXPECT_EQ (child.output,
               "none: The window needs tagwright_display.so, which belongs to the program. It was looked for in " +
                   bin + ", in " + bin +
                   "../lib/tagwright/ and in /usr/lib/tagwright/. Install the program anew, or build it with "
                   "the packages libsdl2-dev and libpango1.0-dev.\n");
}

TEST (SdlModule, ModuleIsFoundBelowLib) {
    Copy copy;
    copy.Module ("lib/tagwright/tagwright_display.so", SDL_MODULE);
    EXPECT_EQ (Child_Run (copy.program, "create").output, "created\n");
}

TEST (SdlModule, ModuleThatCannotBeLoadedNamesThePackages) {
    Copy copy;
    copy.directory.Write ("bin/tagwright_display.so", std::string ("not a module"));
    copy.Module ("lib/tagwright/tagwright_display.so", SDL_MODULE); // Comes second.
    Child child = Child_Run (copy.program, "create");
    EXPECT_EQ (child.status, 1);
    EXPECT_TRUE (Contains (child.output,
                           "none: The window needs the packages libsdl2-2.0-0 and libpangocairo-1.0-0; install "
                           "them. ("))
        << child.output;
}

TEST (SdlModule, ForeignModuleIsRefused) {
    Copy copy;
    copy.Module ("bin/tagwright_display.so", "/lib/x86_64-linux-gnu/libm.so.6");
    Child child = Child_Run (copy.program, "create");
    EXPECT_EQ (child.status, 1);
    EXPECT_TRUE (Contains (child.output, "belongs to another version of the program")) << child.output;
}

TEST (SdlModule, ModuleInTheWorkingDirectoryOrTheSearchPathIsNotRun) {
    Copy copy;
    copy.Module ("elsewhere/tagwright_display.so", SDL_MODULE);
    if (std::filesystem::exists ("/usr/lib/tagwright/tagwright_display.so")) return;
    std::string elsewhere = copy.directory.File ("elsewhere");
    EXPECT_EQ (Child_Run (copy.program, "create", "-C '" + elsewhere + "' LD_LIBRARY_PATH='" + elsewhere + "'").status,
               1);
}

TEST (SdlModule, WithoutAnyFontNothingIsDrawnAndNothingEnds) {
    Temporary_Directory directory;
    std::string         fonts = directory.Write ("fonts.conf", std::string ("<fontconfig/>"));
    Child               child = Child_Run (SDL_CHILD, "fonts", "FONTCONFIG_FILE='" + fonts + "'");
    EXPECT_EQ (child.status, 0);
    EXPECT_TRUE (Contains (child.output, "font 0, width 0, height 0\n")) << child.output;
}

// A comparison without a window must not pay for the libraries of windows. The loader lists what it loads, at the start
// and later.
TEST (SdlModule, BatchModeLoadsNoDisplay) {
    Temporary_Directory directory;
    Write_User_Tables (directory);
    std::string file  = directory.Write ("file.dcm", std::string ("\x10\x00\x10\x00PN\x04\x00"
                                                                   "Test",
                                                                  12));
    std::string trace = "LD_DEBUG=files APPDATA='" + directory.path + "'";
    Child       child = Child_Run (TAGWRIGHT_PROGRAM, "'" + file + "' '" + file + "'", trace);
    EXPECT_EQ (child.status, 0) << child.output;
    EXPECT_TRUE (Contains (child.output, "libc.so")) << child.output;
    for (const char *library : {"SDL", "pango", "cairo", "X11", "tagwright_display"})
        EXPECT_FALSE (Contains (child.output, library)) << child.output;
    EXPECT_TRUE (Contains (Child_Run (SDL_CHILD, "create", trace).output, "libcairo"));
}
