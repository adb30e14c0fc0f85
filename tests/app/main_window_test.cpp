// The main window off-screen: what it lays out, what its events do, and what stands in its text list.
#include "app/main_window.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "app/start_up.h"
#include "compare/comparison_run.h"
#include "nema/NEMA_Read_Value.h"
#include "platform/drawing.h"
#include "tables/data_dictionary.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stream.h"
#include "tests/support/temporary.h"
#include "tools/device.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "view/result_view.h"

static const char *const MODULE = "main_window_test";

static std::string boxes;
static Window      box_owner;

static int Box_Heard (Window owner, const char *text, const char *, Window_Icon) {
    box_owner = owner;
    boxes += std::string (text) + "\n";
    return 0;
}

static int No_Loop (Window) { return 0; }

static Window_Event Event (Window_Event_Kind kind) {
    Window_Event event = {};
    event.kind         = kind;
    return event;
}

// The main window with the program's sink behind it. Everything is as before afterwards.
struct Shown {
    Temporary_Directory directory;
    Log_Settings        before   = Log;
    Settings            settings = {};
    Window              window;

    explicit Shown (int width = 800, int height = 600) {
        settings.mode_start = MODE_EXPLICIT;
        directory.path.copy (Log.scratch, sizeof Log.scratch - 1);
        Log.scratch[directory.path.size ()] = 0;
        Log.audit_mode                      = 0;
        Log.trace_level                     = 0;
        Log.program_identifier              = PROGRAM_IDENTIFIER;
        boxes.clear ();
        Window_Box_Hook_Set (Box_Heard);
        Log_Sink_Set (Log_Program_Sink);
        Main_Window_Loop_Set (No_Loop);
        Main_Window_Place place = {0, 0, width, height};
        window                  = Main_Window_Create (&place, &settings);
    }
    ~Shown () {
        Main_Window_Exit ();
        Comparison_Free (nullptr);
        NEMA_Value_Rings_Free ();
        Main_Window_Loop_Set (nullptr);
        Window_Box_Hook_Set (nullptr);
        Log = before;
        Log_Recorder silent; // Its end leaves the sink that writes nothing.
    }

    int Send (Window_Event event) { return Window_Send (window, &event); }
    int Paint () { return Send (Event (WINDOW_PAINT)); }

    int Character (uint32_t character) {
        Window_Event event = Event (WINDOW_CHARACTER);
        event.character    = character;
        return Send (event);
    }
    int Mouse (Window_Event_Kind kind, int x, int y, int button = 0) {
        Window_Event event = Event (kind);
        event.x            = x;
        event.y            = y;
        event.button       = button;
        return Send (event);
    }
    int Wheel (int delta) {
        Window_Event event = Event (WINDOW_WHEEL);
        event.x = event.y = 50;
        event.wheel       = delta;
        return Send (event);
    }
    void Drop (const std::vector<std::string> &files) {
        std::vector<const char *> names;
        for (const std::string &file : files) names.push_back (file.c_str ());
        Window_Event event = Event (WINDOW_DROP);
        event.file_count   = static_cast<int> (names.size ());
        event.files        = names.data ();
        EXPECT_EQ (1, Send (event));
    }

    // A file with this many attributes behind the name.
    std::string File (const std::string &name, const char *value = "Doe^John", int more = 0) {
        Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
        Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", value);
        for (int i = 0; i < more; i++)
            Stream_Add_Text (&stream, 0x0011, static_cast<uint16_t> (0x1000 + i), "LO", "more");
        return directory.Write (name, stream.bytes);
    }
};

// What the text list holds, without display codes.
static std::string List () {
    std::string text;
    for (int i = 0; i < Result.text.line_count; i++) text += Clean (Texts::Line (&Result.text, i)) + "\n";
    return text;
}

static int Times (const std::string &text, const std::string &part) {
    int count = 0;
    for (size_t at = text.find (part); at != std::string::npos; at = text.find (part, at + 1)) count++;
    return count;
}

static void List_Forget () {
    for (int i = 0; i < Result.text.line_count; i++)
        Memory_Free (Result.text.lines[(Result.text.line_start + i) % TEXT_LINES].text);
    Result.text.line_count = Result.text.line_start = Result.text.line_top = 0;
}

static std::string Place (const Widget &widget) {
    return std::to_string (widget.x) + " " + std::to_string (widget.y) + " " + std::to_string (widget.w) + " " +
           std::to_string (widget.h);
}

static bool Is_Hidden (const Slider &slider) { return slider.widget.state & WIDGET_HIDDEN; }

// --- layout ----------------------------------------------------------------

TEST (MainWindow, LayoutAtTheStart) {
    Shown shown;
    ASSERT_NE (nullptr, shown.window) << Window_Error_Text ();
    EXPECT_EQ ("0 0 799 599", Place (Result.frame.widget));
    EXPECT_EQ ("0 0 300 440", Place (Result.tree.widget));
    EXPECT_EQ ("308 0 10 440", Place (Result.description.widget));
    EXPECT_EQ ("326 0 473 440", Place (Result.value.widget));
    EXPECT_EQ ("0 448 799 151", Place (Result.text.widget));
    EXPECT_EQ ("-4 440 808 8", Place (Result.strip_separator.widget));
    EXPECT_EQ ("300 -4 8 451", Place (Result.left_separator.widget));
    EXPECT_EQ ("318 -4 8 451", Place (Result.right_separator.widget));
    EXPECT_EQ ("278 28 16 406", Place (Result.vertical.widget));
    EXPECT_EQ ("6 6 266 16", Place (Result.tree_slider.widget));
    EXPECT_EQ ("332 6 461 16", Place (Result.value_slider.widget));
    EXPECT_FALSE (Is_Hidden (Result.vertical) || Is_Hidden (Result.tree_slider) || Is_Hidden (Result.value_slider));
    EXPECT_TRUE (Is_Hidden (Result.description_slider)) << "10 units wide";
    EXPECT_EQ (160, Result.strip_height);
    EXPECT_EQ (300, Result.left);
    EXPECT_EQ (318, Result.right);
}

TEST (MainWindow, LayoutFollowsTheSize) {
    Shown shown;
    Window_Client_Resize (shown.window, 1600, 1000);
    EXPECT_EQ ("0 0 1599 999", Place (Result.frame.widget));
    EXPECT_EQ ("0 0 300 840", Place (Result.tree.widget));
    EXPECT_EQ ("308 0 10 840", Place (Result.description.widget));
    EXPECT_EQ ("326 0 1273 840", Place (Result.value.widget));
    EXPECT_EQ ("0 848 1599 151", Place (Result.text.widget));
    EXPECT_EQ ("-4 840 1608 8", Place (Result.strip_separator.widget));
    EXPECT_EQ ("300 -4 8 851", Place (Result.left_separator.widget));
    EXPECT_EQ ("278 28 16 806", Place (Result.vertical.widget));
    EXPECT_EQ ("332 6 1261 16", Place (Result.value_slider.widget));
}

TEST (MainWindow, LayoutFollowsTheSeparators) {
    Shown shown;
    Result.strip_height = 200;
    Result.left         = 100;
    Result.right        = 400;
    Window_Layout (shown.window, 800, 600);
    EXPECT_EQ ("0 0 100 400", Place (Result.tree.widget));
    EXPECT_EQ ("108 0 292 400", Place (Result.description.widget));
    EXPECT_EQ ("408 0 391 400", Place (Result.value.widget));
    EXPECT_EQ ("0 408 799 191", Place (Result.text.widget));
    EXPECT_EQ ("114 6 280 16", Place (Result.description_slider.widget));
    EXPECT_FALSE (Is_Hidden (Result.description_slider));
    Result.strip_height = Result.left = Result.right = 0;
    Window_Layout (shown.window, 800, 600);
    EXPECT_EQ ("0 0 300 440", Place (Result.tree.widget)) << "0 is as at the start";
    EXPECT_EQ ("318 -4 8 451", Place (Result.right_separator.widget));
}

TEST (MainWindow, SlidersAreHiddenInPanesBelowThirty) {
    Shown shown;
    for (int wide : {29, 30, 31}) {
        Result.left  = wide;
        Result.right = 2 * wide + LAYOUT_SEPARATOR;
        Window_Layout (shown.window, 800, 600);
        EXPECT_EQ (wide < 30, Is_Hidden (Result.vertical)) << wide;
        EXPECT_EQ (wide < 30, Is_Hidden (Result.tree_slider)) << wide;
        EXPECT_EQ (wide < 30, Is_Hidden (Result.description_slider)) << wide;
        EXPECT_FALSE (Is_Hidden (Result.value_slider));
    }
    for (int high : {29, 30, 31}) {
        Window_Layout (shown.window, 800, high + 160);
        for (Slider *slider : {&Result.vertical, &Result.tree_slider, &Result.value_slider})
            EXPECT_EQ (high < 30, Is_Hidden (*slider)) << high;
    }
}

// Their places come back with the room.
TEST (MainWindow, SeparatorsStayInsideOfASmallerWindow) {
    Shown shown;
    Window_Client_Resize (shown.window, 200, 120);
    EXPECT_EQ ("162 -4 8 19", Place (Result.left_separator.widget));
    EXPECT_EQ ("182 -4 8 19", Place (Result.right_separator.widget));
    EXPECT_EQ ("-4 8 208 8", Place (Result.strip_separator.widget));
    EXPECT_EQ ("0 0 162 8", Place (Result.tree.widget));
    EXPECT_EQ ("190 0 9 8", Place (Result.value.widget));
    EXPECT_EQ ("0 16 199 103", Place (Result.text.widget));
    Window_Client_Resize (shown.window, 800, 600);
    EXPECT_EQ ("300 -4 8 451", Place (Result.left_separator.widget));
    EXPECT_EQ ("318 -4 8 451", Place (Result.right_separator.widget));
    EXPECT_EQ ("0 448 799 151", Place (Result.text.widget));
}

TEST (MainWindow, LayoutOfAnySizeIsSafe) {
    static const int SIZES[] = {-32768, -1, 0,   1,   2,   8,   16,  17,  29,    38,   39,
                                46,     47, 100, 160, 168, 169, 337, 338, 32767, 70000};
    Shown            shown;
    for (int width : SIZES) {
        for (int height : SIZES) {
            Window_Layout (shown.window, width, height);
            int right = std::max (0, std::min (width, 32000)), top = std::max (0, std::min (height, 32000));
            for (Widget *widget : {&Result.tree.widget, &Result.description.widget, &Result.value.widget,
                                   &Result.text.widget, &Result.frame.widget}) {
                std::string where = std::to_string (width) + " x " + std::to_string (height) + ": " + widget->name;
                EXPECT_GE (widget->x, 0) << where;
                EXPECT_GE (widget->y, 0) << where;
                EXPECT_GE (widget->w, 0) << where;
                EXPECT_GE (widget->h, 0) << where;
                EXPECT_TRUE (!widget->w || widget->x + widget->w < right) << where;
                EXPECT_TRUE (!widget->h || widget->y + widget->h < top) << where;
            }
            EXPECT_LE (Result.tree.widget.x + Result.tree.widget.w, Result.description.widget.x);
            EXPECT_LE (Result.description.widget.x + Result.description.widget.w, Result.value.widget.x);
        }
    }
    EXPECT_EQ ("", boxes);
}

TEST (MainWindow, TinyWindowsAreDrawn) {
    Shown       shown;
    std::string file = shown.File ("a.dcm", "Doe", 50);
    shown.Drop ({file});
    for (int size : {1, 2, 8, 20, 47, 100, 168}) {
        Window_Client_Resize (shown.window, size, size);
        EXPECT_EQ (1, shown.Paint ());
        shown.Mouse (WINDOW_MOUSE_MOVE, size / 2, size / 2);
        shown.Mouse (WINDOW_BUTTON_DOWN, size / 2, size / 2, WINDOW_BUTTON_LEFT);
        shown.Mouse (WINDOW_BUTTON_UP, size / 2, size / 2, WINDOW_BUTTON_LEFT);
        shown.Wheel (-120);
    }
    EXPECT_EQ ("", boxes);
    EXPECT_EQ (0, Device::Is_Open ());
}

// --- paint -----------------------------------------------------------------

TEST (MainWindow, PaintDrawsEverything) {
    Shown shown;
    for (int size : {200, 47, 20, 2}) {
        Window_Client_Resize (shown.window, size, size);
        Drawing drawing = Drawing_Begin (shown.window);
        Drawing_Fill (drawing, 0, 0, size, size, Drawing_Colour (1, 2, 3));
        Drawing_End (drawing);
        shown.Paint ();
        drawing  = Drawing_Begin (shown.window);
        int left = 0;
        for (int i = 0; i < size * size; i++)
            left += Drawing_Pixel (drawing, i % size, i / size) == Drawing_Colour (1, 2, 3);
        Drawing_End (drawing);
        EXPECT_EQ (0, left) << size;
    }
    Window_Client_Resize (shown.window, 800, 600);
    Drawing drawing = Drawing_Begin (shown.window);
    Drawing_Fill (drawing, 0, 0, 800, 600, Drawing_Colour (1, 2, 3));
    Drawing_End (drawing);
    EXPECT_EQ (1, shown.Paint ());
    drawing  = Drawing_Begin (shown.window);
    int left = 0;
    for (int y = 0; y < 600; y++)
        for (int x = 0; x < 800; x++) left += Drawing_Pixel (drawing, x, y) == Drawing_Colour (1, 2, 3);
    EXPECT_EQ (Widget_Colour (VIEW_PANE_COLOUR) & 0xFFFFFF, Drawing_Pixel (drawing, 100, 200));
    EXPECT_EQ (Drawing_Colour (170, 170, 170), Drawing_Pixel (drawing, 400, 460));
    Drawing_End (drawing);
    EXPECT_EQ (0, left);
}

TEST (MainWindow, WhatIsNotItsOwnIsLeftToTheSystem) {
    Shown shown;
    EXPECT_EQ (0, shown.Character ('a'));
    EXPECT_EQ (0, shown.Character (0));
    EXPECT_EQ (0, shown.Send (Event (WINDOW_KEY_DOWN)));
    EXPECT_EQ (0, shown.Send (Event (WINDOW_SYSTEM_KEY_DOWN)));
    EXPECT_EQ (0, shown.Mouse (WINDOW_BUTTON_DOWN, 10, 10, WINDOW_BUTTON_RIGHT));
    EXPECT_EQ (0, shown.Mouse (WINDOW_BUTTON_UP, 10, 10, WINDOW_BUTTON_MIDDLE));
    EXPECT_EQ (1, shown.Send (Event (WINDOW_FOCUS_LOST)));
    EXPECT_EQ ("", List ());
}

// --- text list -------------------------------------------------------------

TEST (MainWindow, HelpIsShownWordForWord) {
    Shown shown;
    EXPECT_EQ (0, Main_Window_Run (shown.window));
    shown.window                     = nullptr;
    static const char *const LINES[] = {
        "",
        "----- ----- ----- Tagwright ----- ----- -----",
        "\xF1\x02- Drag & Drop 1 DICOM file on this window to compare it with its modality description",
        "\xF1\x02- Drag & Drop 2 DICOM files on this window  to compare them to one another",
        "",
        "\xF1 Color code:\t Comparing with Modality:\t\t\t Comparing with another file:",
        "\xF1\x06 green \x02\xF0\t\t\t not used \t\t\t\t\t\t\t skiped tags as defined in .ini",
        "\xF1\x05 yellow\x02\xF0\t\t\t in the file but not in the modality \t\t not used",
        "\xF1\x01 blue  \x02\xF0\t\t\t in the modality but not in the file \t\t no difference",
        "\xF1\x02 black \x02\xF0\t\t\t in both the file and the modality \t\t different",
    };
    ASSERT_EQ (10, Result.text.line_count);
    for (int i = 0; i < 10; i++) EXPECT_STREQ (LINES[i], Texts::Line (&Result.text, i));
    EXPECT_LE (10, Texts::Visible_Lines (&Result.text)) << "all of it is seen";
}

TEST (MainWindow, LinesOfAnyWindowAreListed) {
    Shown shown;
    Log_Message (nullptr, LOG_REPORT, "report");
    Log_Message (shown.window, LOG_WARNING, "warning");
    Log_Message (nullptr, LOG_TRACE1, "trace");
    Log_Message (shown.window, LOG_THREAD, "thread"); // Queued, and nobody takes it out.
    EXPECT_EQ (0, Window_Loop ());
    EXPECT_EQ ("report\nwarning\n", List ());
    Log_Message (nullptr, LOG_OVER, "over");
    EXPECT_EQ ("report\nover\n", List ());
    Device::Begin (shown.window, nullptr, "test");
    Log_Message (nullptr, LOG_REPORT, "drawing");
    Device::End ();
    EXPECT_EQ ("report\nover\ndrawing\n", List ());
    EXPECT_EQ (0, Device::Is_Open ());
}

TEST (MainWindow, NothingIsListedAfterItsEnd) {
    Shown shown;
    Window_Quit (7);
    Window_Destroy (shown.window);
    Log_Message (nullptr, LOG_REPORT, "late");
    EXPECT_EQ ("", List ());
    EXPECT_EQ (0, Window_Loop ()) << "closing ends the loop, with a code of its own";
}

// --- drops -----------------------------------------------------------------

static std::string Compared (const std::string &a, const std::string &b) {
    return "    Compare A: " + a + "\n          /vs/     B: " + (b.empty () ? "Modality description" : b) + "\n";
}

static bool Has (const std::string &part) { return List ().find (part) != std::string::npos; }

TEST (MainWindow, SingleDropsTakeTurns) {
    Shown       shown;
    std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm", "Doe^Jane"), c = shown.File ("c.dcm", "Roe");
    shown.Drop ({a});
    EXPECT_EQ (0u, List ().find ("Comparing 1 file...\n" + Compared (a, ""))) << List ();
    EXPECT_TRUE (Has ("\nDone\n"));
    EXPECT_EQ (List ().size (), List ().find ("\nDone\n") + 6) << "the last line";
    EXPECT_EQ (1, Drops.count);
    EXPECT_STREQ ("a", Rows.rows[0].name);
    List_Forget ();
    shown.Drop ({b});
    EXPECT_EQ (0u, List ().find ("Comparing 1 file...\n" + Compared (a, b))) << List ();
    EXPECT_EQ (2, Times (List (), "Found 1 differences\n"));
    EXPECT_STREQ ("a /vs/ b", Rows.rows[0].name);
    List_Forget ();
    shown.Drop ({c});
    EXPECT_EQ (0u, List ().find ("Comparing 1 file...\n" + Compared (c, b))) << List ();
    EXPECT_EQ (3, Drops.count);
}

TEST (MainWindow, TwoFilesFillBothSlots) {
    Shown       shown;
    std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm"), c = shown.File ("c.dcm");
    shown.Drop ({a, b});
    EXPECT_EQ (0u, List ().find ("Comparing 2 files...\n" + Compared (a, b))) << List ();
    EXPECT_EQ (2, Times (List (), "No changes\n"));
    shown.Drop ({c});
    List_Forget ();
    shown.Drop ({a, b});
    EXPECT_EQ (0u, List ().find ("Comparing 2 files...\n" + Compared (b, a))) << List ();
    EXPECT_EQ (5, Drops.count);
}

TEST (MainWindow, ThreeFilesLeaveTheLastTwo) {
    Shown       shown;
    std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm"), c = shown.File ("c.dcm");
    shown.Drop ({a, b, c});
    EXPECT_EQ (0u, List ().find ("Comparing 3 files...\n" + Compared (c, b))) << List ();
    EXPECT_EQ (1, Times (List (), "Compare A:"));
}

TEST (MainWindow, NoFilesRepeatTheComparison) {
    Shown shown;
    shown.Drop ({});
    EXPECT_EQ (0u, List ().find ("Comparing 0 file...\n" + Compared ("", ""))) << List ();
    EXPECT_TRUE (Has ("Done\n"));
    std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm");
    shown.Drop ({a, b});
    List_Forget ();
    shown.Drop ({});
    EXPECT_EQ (0u, List ().find ("Comparing 0 file...\n" + Compared (a, b))) << List ();
    EXPECT_EQ (2, Drops.count);
}

TEST (MainWindow, ThousandFilesAreOneComparison) {
    Shown                    shown;
    std::string              a = shown.File ("a.dcm"), b = shown.File ("b.dcm", "Doe^Jane");
    std::vector<std::string> files;
    for (int i = 0; i < 1000; i++) files.push_back (i % 2 ? b : a);
    auto start = std::chrono::steady_clock::now ();
    shown.Drop (files);
    EXPECT_GT (std::chrono::seconds (2), std::chrono::steady_clock::now () - start);
    EXPECT_EQ (0u, List ().find ("Comparing 1000 files...\n" + Compared (a, b))) << List ();
    EXPECT_EQ (1, Times (List (), "Compare A:"));
    EXPECT_EQ (1000, Drops.count);
}

// The count stays a number that is 0 or more, and even behind the greatest odd one.
TEST (MainWindow, CounterStartsAnewBehindTheGreatestNumber) {
    Shown       shown;
    std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm");
    Drops.count = INT_MAX;
    shown.Drop ({b});
    EXPECT_EQ (0, Drops.count);
    EXPECT_EQ (b, Drops.name[1]);
    shown.Drop ({a});
    EXPECT_EQ (a, Drops.name[0]);
}

TEST (MainWindow, NamesMayHoldAnyCharacters) {
    Shown shown;
    for (const char *name : {"with blanks .dcm", "\xC3\xA9t\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC.dcm", "100%s%n.dcm"}) {
        std::string file = shown.directory.path + name;
        Stream      made = Stream_Begin_File (EXPLICIT_LITTLE);
        Stream_Add_Text (&made, 0x0010, 0x0010, "PN", "Doe^John");
        std::filesystem::path path  = std::filesystem::u8path (file);
        std::string           plain = shown.directory.Write ("plain.dcm", made.bytes);
        std::filesystem::copy_file (plain, path);
        List_Forget ();
        shown.Drop ({file, file});
        EXPECT_EQ (2, Times (List (), "No changes\n")) << List ();
        EXPECT_EQ (0, Times (List (), "ERROR:")) << List ();
        EXPECT_EQ (file, Comparison_Last.Name_File_A);
    }
}

// --- drops: long names -----------------------------------------------------

static std::string Path_Of_Length (const Shown &shown, size_t length, const char *character = "n") {
    std::string path  = shown.directory.path;
    size_t      count = length - path.size ();
    for (size_t i = 0; i < count; i++) path += i % 100 == 50 ? "/" : character;
    return path;
}

TEST (MainWindow, PathsUpToTheLimitAreTakenWhole) {
    for (size_t length : {259u, 260u}) {
        Shown       shown;
        std::string path = Path_Of_Length (shown, length);
        shown.Drop ({path});
        EXPECT_EQ (path, Drops.name[0]);
        EXPECT_TRUE (Has ("file: (" + path + ")")) << List ();
    }
}

TEST (MainWindow, LongerPathsAreRefusedAndTheRestGoesOn) {
    Shown       shown;
    std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm"), longer = Path_Of_Length (shown, 261);
    shown.Drop ({longer, a, std::string (9000, 'x'), b});
    EXPECT_TRUE (Has ("ERROR: Path is longer than 260 characters, not compared: " + longer + "\n")) << List ();
    EXPECT_TRUE (Has (" not compared: xxxxxxx"));
    EXPECT_TRUE (Has (Compared (a, b)));
    EXPECT_EQ (2, Drops.count);
    EXPECT_STREQ (a.c_str (), Drops.name[0]);
}

TEST (MainWindow, DropOfRefusedPathsComparesNothing) {
    Shown shown;
    shown.Drop ({Path_Of_Length (shown, 261)});
    EXPECT_EQ (0, Times (List (), "Compare A:")) << List ();
    EXPECT_EQ (1, Times (List (), "Done\n"));
    EXPECT_EQ (0, Drops.count);
    EXPECT_STREQ ("", Drops.name[0]);
}

TEST (MainWindow, CharactersCountNotBytes) {
    Shown       shown;
    std::string path = Path_Of_Length (shown, 260, "\xE6\x97\xA5");
    EXPECT_LT (400u, path.size ());
    shown.Drop ({path});
    EXPECT_EQ (path, Drops.name[0]);
}

TEST (MainWindow, BytesThatMakeNoCharacterCountOneEach) {
    Shown       shown;
    std::string fitting (260, '\xBF');
    shown.Drop ({fitting, fitting + '\xBF', std::string (2100, '\xBF')});
    EXPECT_EQ (fitting, Drops.name[0]);
    EXPECT_EQ (2, Times (List (), "ERROR: Path is longer"));
    EXPECT_EQ (1, Drops.count);
}

// --- drops: files that are none --------------------------------------------

TEST (MainWindow, FoldersAndMissingAndEmptyFilesAreToldOf) {
    Shown       shown;
    std::string a = shown.File ("a.dcm"), missing = shown.directory.File ("missing.dcm"),
                empty = shown.directory.Write ("empty.dcm", std::string ());
    std::filesystem::create_directory (shown.directory.File ("folder"));
    for (const std::string &file : {shown.directory.File ("folder"), missing, empty}) {
        List_Forget ();
        shown.Drop ({a, file});
        EXPECT_TRUE (Has (Compared (a, file)));
        EXPECT_TRUE (Has (file == empty ? "End of File while reading: (0 /vs/ 4) (" + file + ")"
                                        : "ERROR: Unable to open file\n"))
            << List ();
        EXPECT_EQ (2, Times (List (), "Found 2 differences\n")) << List ();
        EXPECT_TRUE (Has ("Done\n"));
        EXPECT_EQ (1, shown.Paint ());
    }
    EXPECT_EQ ("", boxes);
}

// --- drops: during the run -------------------------------------------------

static Window_Cursor cursor_meanwhile;
static Window        watched;
static int           runs;

static int Watch_Run (Window window, int kind, const char *text) {
    if (kind == LOG_REPORT && Clean (text) == "    Analysing differences") {
        runs++;
        cursor_meanwhile   = Window_Cursor_Get (watched);
        Window_Event event = Event (WINDOW_DROP);
        Window_Send (watched, &event);
        event = Event (WINDOW_PAINT);
        Window_Send (watched, &event);
        event.kind = WINDOW_BUTTON_DOWN, event.button = WINDOW_BUTTON_LEFT, event.x = 20, event.y = 400;
        Window_Send (watched, &event);
        event.kind = WINDOW_BUTTON_UP;
        Window_Send (watched, &event);
    }
    return Log_Program_Sink (window, kind, text);
}

// A message box of the run delivers them.
TEST (MainWindow, EventsDuringARunAreHarmless) {
    Shown       shown;
    std::string a = shown.File ("a.dcm", "Doe", 20), b = shown.File ("b.dcm", "Roe", 20);
    watched = shown.window;
    shown.Drop ({a, b});
    runs = 0;
    Log_Sink_Set (Watch_Run);
    shown.Drop ({a, b});
    EXPECT_EQ (1, runs) << "no run inside of a run";
    EXPECT_EQ (WINDOW_CURSOR_WAIT, cursor_meanwhile);
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
    EXPECT_EQ (4, Times (List (), "Found 1 differences\n"));
    EXPECT_LT (20, Rows.count);
}

// Pixels of texts in the text list.
static int Text_Pixels (Window window) {
    const Widget &list    = Result.text.widget;
    Drawing       drawing = Drawing_Begin (window);
    int           count   = 0;
    for (int y = list.y + 4; y < list.y + list.h - 4; y++)
        for (int x = list.x + 4; x < list.x + 400; x++) count += Drawing_Pixel (drawing, x, y) == 0;
    Drawing_End (drawing);
    return count;
}

static int pixels_meanwhile, level_meanwhile;

static int Look_At_Run (Window window, int kind, const char *text) {
    int result = Log_Program_Sink (window, kind, text);
    if (kind != LOG_REPORT || Clean (text) != "    Analysing differences") return result;
    pixels_meanwhile   = Text_Pixels (watched);
    Window_Event event = Event (WINDOW_CHARACTER);
    event.character    = '0';
    Window_Send (watched, &event);
    event.character = '9';
    Window_Send (watched, &event);
    level_meanwhile = Log.trace_level;
    return result;
}

// A long run does not look dead, and keys that a box of it lets in work as ever.
TEST (MainWindow, LinesAreSeenDuringTheRun) {
    Shown       shown;
    std::string a = shown.File ("a.dcm");
    shown.Paint ();
    EXPECT_EQ (0, Text_Pixels (shown.window));
    watched         = shown.window;
    level_meanwhile = -1;
    Log_Sink_Set (Look_At_Run);
    shown.Drop ({a, a});
    EXPECT_LT (100, pixels_meanwhile);
    EXPECT_EQ (0, level_meanwhile);
    EXPECT_TRUE (Has ("    Analysing differences\nTrace level: 0\nTAGWRIGHT 21000020\nNo changes\n")) << List ();
}

static int Fail_Run (Window window, int kind, const char *text) {
    int result = Log_Program_Sink (window, kind, text);
    if (kind == LOG_REPORT && Clean (text) == "    Analysing differences") Memory_Fail_At (1);
    return result;
}

static int Close_Run (Window window, int kind, const char *text) {
    if (kind == LOG_REPORT && Clean (text) == "    Analysing differences") Window_Destroy (watched);
    return Log_Program_Sink (window, kind, text);
}

// The session may end while a message box of the run is open.
TEST (MainWindow, ClosedDuringARunItEnds) {
    Shown       shown;
    std::string a = shown.File ("a.dcm", "Doe", 20), b = shown.File ("b.dcm", "Roe", 20);
    watched = shown.window;
    Log_Sink_Set (Close_Run);
    shown.Drop ({a, b});
    EXPECT_EQ (0, Window_Loop ());
    EXPECT_LT (20, Rows.count);
    EXPECT_EQ (0, Device::Is_Open ());
    EXPECT_EQ ("", boxes);
}

TEST (MainWindow, BoxesOfARunBelongToTheWindow) {
    Shown       shown;
    std::string a = shown.File ("a.dcm");
    Log_Sink_Set (Fail_Run);
    box_owner = nullptr;
    shown.Drop ({a});
    Memory_Fail_At (0);
    EXPECT_EQ (1, Times (boxes, "memory error in ")) << boxes;
    EXPECT_EQ (shown.window, box_owner);
}

TEST (MainWindow, EveryMemoryFailureInADropLeaksNothing) {
    Dictionary_Build (nullptr);
    {
        Shown shown; // What a first drop leaves to all others.
        shown.Drop ({shown.File ("a.dcm"), shown.File ("b.dcm", "Doe^Jane")});
    }
    for (long n = 1, failed = 1; failed; n++) {
        long live = Memory_Live ();
        {
            Shown       shown;
            std::string a = shown.File ("a.dcm"), b = shown.File ("b.dcm", "Doe^Jane");
            Memory_Fail_At (n);
            shown.Drop ({a, b});
            failed = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (failed, Times (boxes, "memory error in ")) << n << "\n" << boxes;
            EXPECT_EQ (1, shown.Paint ());
            List_Forget ();
            shown.Drop ({});
            EXPECT_EQ (2, Times (List (), "Found 1 differences\n")) << n << "\n" << List ();
        }
        EXPECT_EQ (live, Memory_Live ()) << n;
        ASSERT_GT (10000, n);
    }
}

// --- wheel -----------------------------------------------------------------

static const int STEP = 3 * VIEW_PITCH;

TEST (MainWindow, WheelAddsUpToNotches) {
    Shown shown;
    shown.Drop ({shown.File ("a.dcm", "Doe", 100)});
    EXPECT_EQ (1, shown.Wheel (-60));
    EXPECT_EQ (0, Result.vertical.value);
    shown.Wheel (-60);
    EXPECT_EQ (STEP, Result.vertical.value);
    shown.Wheel (-180);
    EXPECT_EQ (2 * STEP, Result.vertical.value);
    shown.Wheel (-60);
    EXPECT_EQ (3 * STEP, Result.vertical.value);
    shown.Wheel (60);
    shown.Wheel (59);
    EXPECT_EQ (3 * STEP, Result.vertical.value);
    shown.Wheel (1);
    EXPECT_EQ (2 * STEP, Result.vertical.value);
    shown.Wheel (240);
    EXPECT_EQ (0, Result.vertical.value);
    for (int delta : {INT_MAX, INT_MIN, INT_MIN, INT_MAX, 120}) shown.Wheel (delta);
    EXPECT_EQ (0, Result.vertical.value);
    shown.Wheel (INT_MIN);
    EXPECT_EQ (Result.vertical.maximum, Result.vertical.value);
}

TEST (MainWindow, WheelRepaintsTheRows) {
    Shown shown;
    shown.Drop ({shown.File ("a.dcm", "Doe", 100)});
    Drawing drawing = Drawing_Begin (shown.window);
    Drawing_Fill (drawing, 40, 100, 100, 200, Drawing_Colour (1, 2, 3));
    Drawing_End (drawing);
    shown.Wheel (-120);
    drawing = Drawing_Begin (shown.window);
    EXPECT_NE (Drawing_Colour (1, 2, 3), Drawing_Pixel (drawing, 60, 150));
    Drawing_End (drawing);
}

TEST (MainWindow, WheelPrefersTheTextListThenTheSlidersInOrder) {
    Shown shown;
    Result.left  = 200;
    Result.right = 500;
    Window_Layout (shown.window, 800, 600);
    shown.Drop ({shown.File ("a.dcm", "Doe", 100)});
    for (int i = 0; i < 100; i++) Log_Message (nullptr, LOG_REPORT, "line %d", i);
    Slider *const order[] = {&Result.vertical, &Result.tree_slider, &Result.value_slider, &Result.description_slider};
    int           top     = Result.text.line_top;

    Result.text.active = 1;
    shown.Wheel (120);
    EXPECT_EQ (top - 3, Result.text.line_top);
    shown.Wheel (-120);
    EXPECT_EQ (top, Result.text.line_top);
    Result.text.active = 0;
    for (Slider *slider : order) EXPECT_EQ (0, slider->value);
    for (Slider *slider : order) {
        ASSERT_FALSE (slider->widget.state & (WIDGET_INACTIVE | WIDGET_HIDDEN)) << slider->widget.name;
        shown.Wheel (-120);
        EXPECT_LT (0, slider->value) << slider->widget.name;
        for (Slider *other : order) EXPECT_EQ (other == slider, other->value > 0) << other->widget.name;
        slider->value = 0;
        slider->widget.state |= slider == order[1] ? WIDGET_HIDDEN : WIDGET_INACTIVE | WIDGET_MOUSE_IGNORED;
    }
    shown.Wheel (-120);
    for (Slider *slider : order) EXPECT_EQ (0, slider->value);
    EXPECT_EQ (top, Result.text.line_top);
}

TEST (MainWindow, WheelOverTheTextListScrollsIt) {
    Shown shown;
    shown.Drop ({shown.File ("a.dcm", "Doe", 100)});
    for (int i = 0; i < 100; i++) Log_Message (nullptr, LOG_REPORT, "line %d", i);
    int top = Result.text.line_top;
    shown.Mouse (WINDOW_MOUSE_MOVE, 100, 500);
    shown.Wheel (240);
    EXPECT_EQ (top - 6, Result.text.line_top);
    shown.Mouse (WINDOW_MOUSE_MOVE, 100, 100);
    shown.Wheel (-120);
    EXPECT_EQ (top - 6, Result.text.line_top);
    EXPECT_EQ (STEP, Result.vertical.value);
}

// --- mouse -----------------------------------------------------------------

TEST (MainWindow, PointerIsStored) {
    Shown shown;
    int   x, y;
    shown.Mouse (WINDOW_MOUSE_MOVE, 123, 45);
    Device::Pointer_Get (&x, &y);
    EXPECT_EQ (123, x);
    EXPECT_EQ (45, y);
    Pointer_Store (shown.window, -7, 3);
    Device::Pointer_Get (&x, &y);
    EXPECT_EQ (-7, x);
    EXPECT_EQ (3, y);
    Pointer_Store (shown.window, 0, 0);
    Device::Pointer_Get (&x, &y);
    EXPECT_EQ (123, x) << "where the system says";
    EXPECT_EQ (45, y);
    shown.Wheel (1);
    Device::Pointer_Get (&x, &y);
    EXPECT_EQ (50, x);
    EXPECT_EQ (50, y);
}

TEST (MainWindow, ClicksReachTheRows) {
    Shown shown;
    shown.Drop ({shown.File ("a.dcm", "Doe", 5)});
    shown.Mouse (WINDOW_BUTTON_DOWN, 100, 440 - 18 - 18 - 18 - 6, WINDOW_BUTTON_LEFT);
    int selected = Rows.selected;
    EXPECT_LT (0, selected);
    shown.Mouse (WINDOW_BUTTON_UP, 100, 440 - 5 * 18, WINDOW_BUTTON_LEFT);
    EXPECT_EQ (selected, Rows.selected) << "the press counts";
}

// A drag lays the window out again and again, and paint events may come in between.
TEST (MainWindow, SeparatorsAreDragged) {
    Shown shown;
    shown.Drop ({shown.File ("a.dcm", "Doe", 5)});
    shown.Mouse (WINDOW_MOUSE_MOVE, 304, 100);
    EXPECT_EQ (WINDOW_CURSOR_WEST_EAST, Window_Cursor_Get (shown.window));
    shown.Mouse (WINDOW_BUTTON_DOWN, 304, 100, WINDOW_BUTTON_LEFT);
    shown.Mouse (WINDOW_MOUSE_MOVE, 204, 100);
    shown.Paint ();
    shown.Mouse (WINDOW_MOUSE_MOVE, 154, 100);
    EXPECT_EQ ("0 0 150 440", Place (Result.tree.widget));
    EXPECT_EQ ("158 0 160 440", Place (Result.description.widget));
    EXPECT_FALSE (Is_Hidden (Result.description_slider));
    shown.Mouse (WINDOW_BUTTON_UP, 154, 100, WINDOW_BUTTON_LEFT);
    shown.Mouse (WINDOW_MOUSE_MOVE, 50, 100);
    EXPECT_EQ (150, Result.left);
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
}

TEST (MainWindow, EndPutsTheCursorBack) {
    Shown shown;
    shown.Mouse (WINDOW_MOUSE_MOVE, 304, 100);
    EXPECT_EQ (WINDOW_CURSOR_WEST_EAST, Window_Cursor_Get (shown.window));
    shown.Send (Event (WINDOW_DESTROY));
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
    EXPECT_EQ (0, Window_Loop ());
    Window_Destroy (shown.window);
}

// --- keys ------------------------------------------------------------------

TEST (MainWindow, DigitsSetTheTraceLevel) {
    Shown shown;
    testing::internal::CaptureStdout ();
    EXPECT_EQ (1, shown.Character ('7'));
    EXPECT_EQ (5, Log.trace_level);
    EXPECT_EQ (1, shown.Character ('0'));
    EXPECT_EQ (0, Log.trace_level);
    EXPECT_EQ (1, shown.Character ('9'));
    EXPECT_EQ (0, Log.trace_level);
    EXPECT_EQ ("Trace level: 5\nTrace level: 0\nTAGWRIGHT 21000020\n", List ());
    EXPECT_EQ (1, shown.Character ('3'));
    EXPECT_EQ (3, Log.trace_level);
    Log.trace_level     = 0;
    std::string console = testing::internal::GetCapturedStdout ();
    EXPECT_EQ (2, Times (console, "TRACE:   ---- Kestrelbay Libraries: ---- ")) << console;
    EXPECT_EQ (1, Times (Read_Whole (shown.directory.File (Log.trace_name)), "---- Kestrelbay Libraries: ----"));
}

// --- end -------------------------------------------------------------------

static int Fatal_Loop (Window) { return View::FATAL_EXIT; }

TEST (MainWindow, LoopsCodeIsTheExitCode) {
    Shown shown;
    Main_Window_Loop_Set (Fatal_Loop);
    EXPECT_EQ (3, Main_Window_Run (shown.window));
    Log_Message (nullptr, LOG_REPORT, "late");
    EXPECT_FALSE (Has ("late")) << "the window is closed";
    EXPECT_EQ (0, Window_Loop ()) << "the window that it closed asks no later loop to end";
}

// Wherever it comes to light, the user reads why, and the cursor waits no longer.
TEST (MainWindow, LimitOfTheViewEndsTheProgramWithThree) {
    Shown       shown;
    std::string a = shown.File ("a.dcm");
    Result.left   = 200;
    Result.right  = 500;
    Window_Layout (shown.window, 800, 600);
    shown.Drop ({a, a});
    Attribute *first = Comparison_Last.merged;
    ASSERT_NE (nullptr, first);
    Memory_Free (first->description);
    first->description = Memory_Strdup (nullptr, HERE ("description", 0, 0), std::string (180, 'd').c_str ());
    shown.Paint ();
    EXPECT_EQ (1, Times (boxes, "The program ends.")) << boxes;
    EXPECT_EQ (2, Times (boxes, a)) << "of both sides";
    shown.Paint ();
    shown.Wheel (-120);
    EXPECT_EQ (1, Times (boxes, "The program ends."));
    EXPECT_EQ (WINDOW_CURSOR_ARROW, Window_Cursor_Get (shown.window));
    EXPECT_EQ (3, Window_Loop ());
}

TEST (MainWindow, ExitForgetsAndReleasesAll) {
    long live = Memory_Live ();
    {
        Shown shown;
        shown.Drop ({shown.File ("a.dcm"), shown.File ("b.dcm")});
        Main_Window_Exit ();
        EXPECT_EQ (0, Drops.count);
        EXPECT_STREQ ("", Drops.name[1]);
        EXPECT_EQ (0, Result.left);
        EXPECT_EQ (0, Result.text.line_count);
        Main_Window_Exit ();
        shown.window = nullptr;
    }
    EXPECT_EQ (live, Memory_Live ());
}
