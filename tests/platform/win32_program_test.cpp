// The program as its users meet it, on the screen. Mouse and wheel are the system's own (SendInput), since a drag asks for
// the real state of the button. Keys are posted: the focus may be somebody else's.

// First, since the system's headers have macros that its names don't bear.
#include "view/result_view.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>

#include <gtest/gtest.h>

#include "app/main_window.h"
#include "app/start_up.h"
#include "tests/platform/win32_program.h"
#include "tests/support/program.h"

static const uint32_t PANE  = Drawing_Colour (VIEW_PANE_COLOUR[0], VIEW_PANE_COLOUR[1], VIEW_PANE_COLOUR[2]);
static const uint32_t WHITE = Drawing_Colour (255, 255, 255);

static const char PLACE[] = "-x 10 800 -y 10 600";

static std::string Full (const std::string &name) {
    return std::filesystem::absolute (name).make_preferred ().string ();
}

static std::string Example (const char *name) {
    return Full (std::string (TAGWRIGHT_SOURCE_DIR) + "/examples/" + name);
}

static int Times (const std::string &text, const std::string &part) {
    int times = 0;
    for (size_t place = 0; (place = text.find (part, place)) != std::string::npos; place += part.size ()) times++;
    return times;
}

static bool Has (const std::string &text, const std::string &part) { return Times (text, part) > 0; }

// --- places ----------------------------------------------------------------

// Of a window that nobody has scrolled and whose separators are where they were at the start.
static int Panes_Top (const Shot &shot) { return shot.height - LAYOUT_STRIP; }
static int Band (const Shot &shot, int line) { return Panes_Top (shot) - 42 - VIEW_PITCH * line; }
static int Lines_Seen (const Shot &shot) { return (Band (shot, 0) - VIEW_STRIP) / VIEW_PITCH; }

static const int BOX_SIZE = 8;
static int       Box_Left (int level) { return 12 + 18 * (level - 1) + 3; }

// Is there a fold box of this level in the line, and has it a plus sign?
static bool Is_Box (const Shot &shot, int level, int line) {
    int left = Box_Left (level), low = Band (shot, line) + 1;
    return shot.Count (VIEW_BLACK, left, low, 1, BOX_SIZE + 1) == BOX_SIZE + 1 &&
           shot.Count (VIEW_BLACK, left, low, BOX_SIZE + 1, 1) == BOX_SIZE + 1 &&
           shot.Count (VIEW_BLACK, left + 2, low + BOX_SIZE / 2, 5, 1) == 5;
}

static bool Is_Folded (const Shot &shot, int level, int line) {
    return shot.Count (VIEW_BLACK, Box_Left (level) + BOX_SIZE / 2, Band (shot, line) + 3, 1, 5) == 5;
}

static bool Is_Unfolded (const Shot &shot, int level, int line) {
    return Is_Box (shot, level, line) && shot.At (Box_Left (level) + BOX_SIZE / 2, Band (shot, line) + 3) == WHITE;
}

// What a line's text in a pane has of ink, from x on.
static int Ink (const Shot &shot, int line, int x, int w) {
    return shot.Count_Others (PANE, x, Band (shot, line) - 3, w, 14);
}

static const int TREE_TEXT = 70, VALUE_TEXT = LAYOUT_RIGHT + LAYOUT_SEPARATOR + 8; // Where no connectors are.

// The same of one colour, in all lines.
static int Rows_Ink (const Shot &shot, uint32_t colour) {
    return shot.Count (colour, TREE_TEXT, VIEW_STRIP, 180, Band (shot, 0) - VIEW_STRIP);
}

// The text of the list stands on one colour, that of the window.
static int List_Ink (const Shot &shot, uint32_t colour) {
    return shot.Count (colour, 6, Panes_Top (shot) + LAYOUT_SEPARATOR + 4, shot.width - 40, 140);
}

// The highest pixel of this colour in the text list, or -1.
static int List_Highest (const Shot &shot, uint32_t colour) {
    for (int y = shot.height - 5; y > Panes_Top (shot) + LAYOUT_SEPARATOR + 4; y--)
        if (shot.Count (colour, 6, y, shot.width - 40, 1)) return y;
    return -1;
}

// The four colours of the legend, from top to bottom.
static bool Shows_Legend (const Shot &shot) {
    int green = List_Highest (shot, VIEW_GREEN), yellow = List_Highest (shot, VIEW_YELLOW),
        blue = List_Highest (shot, VIEW_BLUE);
    return blue > 0 && yellow > blue + 8 && green > yellow + 8 && List_Ink (shot, VIEW_BLACK) > 1000;
}

// --- the install directory in the registry ---------------------------------

// The program's key, set or taken away as long as a test needs it; what was there comes back.
class Install_Key {
public:
    explicit Install_Key (const std::string &directory) {
        DWORD size = sizeof before;
        had = RegGetValueA (HKEY_LOCAL_MACHINE, KEY, "Path", RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, before,
                            &size) == ERROR_SUCCESS;
        RegOpenKeyExA (HKEY_LOCAL_MACHINE, KEY, 0, KEY_READ | KEY_WOW64_64KEY, &key);
        existed = key != nullptr;
        if (key) RegCloseKey (key);
        Set (directory.empty () ? nullptr : directory.c_str ());
    }
    ~Install_Key () { Set (had ? before : nullptr); }
    Install_Key (const Install_Key &)            = delete;
    Install_Key &operator= (const Install_Key &) = delete;

private:
    static constexpr const char *KEY = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\Tagwright.exe";

    void Set (const char *path) {
        RegCreateKeyExA (HKEY_LOCAL_MACHINE, KEY, 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr, &key,
                         nullptr);
        if (path)
            RegSetValueExA (key, "Path", 0, REG_SZ, reinterpret_cast<const BYTE *> (path), (DWORD)strlen (path) + 1);
        else RegDeleteValueA (key, "Path");
        RegCloseKey (key);
        if (!path && !existed) RegDeleteKeyExA (HKEY_LOCAL_MACHINE, KEY, KEY_WOW64_64KEY, 0);
    }

    HKEY key     = nullptr;
    bool existed = false, had = false;
    char before[1024] = "";
};

static std::string Built_Directory () { return std::filesystem::path (Program_Built ()).parent_path ().string (); }

static std::set<std::string> Text_Files (const std::string &directory) {
    std::set<std::string> names;
    std::error_code       ignored;
    for (const auto &entry : std::filesystem::directory_iterator (directory, ignored))
        if (entry.path ().extension () == ".txt") names.insert (entry.path ().filename ().string ());
    return names;
}

// A copy of the program that stands somewhere without being registered, as the portable one and one user's own do.
TEST (Win32Program, AMarkBesideTheProgramMakesItsFolderTheInstallDirectory) {
    Temporary_Directory folder, user;
    std::string         program = folder.File ("Tagwright.exe");
    std::string         files   = Quoted (Example ("ct_a.dcm")) + " " + Quoted (Example ("ct_b.dcm"));
    std::filesystem::copy_file (Program_Built (), program);
    folder.Write ("Tagwright.ini", "skip = (0010,*)\nscratch = " + folder.File ("scratch") + "\n");
    std::filesystem::create_directory (folder.File ("DICOM Tables"));
    folder.Write ("DICOM Tables/version.txt", "2024\n");

    Install_Key none ("");
    EXPECT_EQ (12, Program_Run_Copy (program, user, files).status);
    EXPECT_EQ ("", Read_Whole (user.File ("Kestrelbay/DICOM Tables/version.txt")));

    std::filesystem::remove_all (user.File ("Kestrelbay/DICOM Tables"));
    folder.Write ("in-place.txt", "");
    EXPECT_EQ (10, Program_Run_Copy (program, user, files).status);
    EXPECT_EQ ("2024\n", Read_Whole (user.File ("Kestrelbay/DICOM Tables/version.txt")));
}

// --- icons -----------------------------------------------------------------

static int Blended (int channel) { return channel * 255 >> 8; }

// Does a picture of 16 x 16 with three bytes a pixel, as the program's icons are, stand on the screen with its lower left
// pixel at (x, y)? A pixel without red and green is more or less transparent, and the others are blended: no colour is
// quite as bright on the screen.
static bool Is_Icon (const Shot &shot, int x, int y, const std::string &tga) {
    static const size_t SIDE = 16, HEADER = 18;
    if (tga.size () < HEADER + SIDE * SIDE * 3) return false;
    const unsigned char *bytes = reinterpret_cast<const unsigned char *> (tga.data ());
    const bool           down  = bytes[17] & 0x20;
    for (size_t row = 0; row < SIDE; row++)
        for (size_t column = 0; column < SIDE; column++) {
            const unsigned char *pixel  = bytes + HEADER + (row * SIDE + column) * 3;
            uint32_t             colour = Drawing_Colour (Blended (pixel[2]), Blended (pixel[1]), Blended (pixel[0]));
            int                  up     = (int)(down ? SIDE - 1 - row : row);
            if ((pixel[2] || pixel[1]) && shot.At (x + (int)column, y + up) != colour) return false;
        }
    return true;
}

// The icons in front of the rows that are seen.
static std::set<std::string> Icons_Shown (const Shot &shot) {
    std::set<std::string> shown;
    for (const char *name : {"0", "1", "1C", "2", "2C", "3"}) {
        std::string tga = Read_Whole (Built_Directory () + "\\Icons\\icon_type_" + name + ".tga");
        for (int line = 1; line < Lines_Seen (shot); line++)
            for (int off = -4; off <= 4; off++)
                if (Is_Icon (shot, 12 + 18 - 1, Band (shot, line) + off, tga)) shown.insert (name);
    }
    return shown;
}

// --- start and end ---------------------------------------------------------

TEST (Win32Program, InstalledProgramComparesWhatIsDroppedFirst) {
    Install_Key         key (Built_Directory ());
    Temporary_Directory directory;
    Shown_Program       program (directory, PLACE);
    ASSERT_NE (program.window, nullptr);

    EXPECT_TRUE (Comes_True ([&] { return Shows_Legend (program.Look ()); }));
    Shot shot = program.Look ();
    EXPECT_EQ (shot.Count_Others (PANE, 6, VIEW_STRIP, 250, Panes_Top (shot) - VIEW_STRIP - 30), 0) << "nothing yet";
    std::set<std::string> tables = Text_Files (directory.File ("Kestrelbay\\DICOM Tables"));
    EXPECT_GT (tables.size (), 100u);
    EXPECT_EQ (tables, Text_Files (Built_Directory () + "\\DICOM Tables"));

    program.Post ({Example ("ct_a.dcm")});
    EXPECT_TRUE (Comes_True ([&] { return Times (program.Audit (), "Found ") == 2; })) << program.Audit ();
    EXPECT_TRUE (Comes_True ([&] { return Icons_Shown (program.Look ()).size () >= 2; })) << "of the install directory";
    shot = program.Look ();
    for (uint32_t colour : {VIEW_BLACK, VIEW_BLUE}) EXPECT_GT (Rows_Ink (shot, colour), 30) << colour;

    program.Post ({Example ("ct_b.dcm")});
    EXPECT_TRUE (Comes_True ([&] { return Times (program.Audit (), "Found 12 differences") == 2; }))
        << program.Audit ();
    EXPECT_TRUE (Comes_True ([&] { return Ink (shot = program.Look (), 0, 90, 40) > 0; })) << "the second name";
    for (uint32_t colour : {VIEW_BLACK, VIEW_BLUE}) EXPECT_GT (Rows_Ink (shot, colour), 30) << colour;
    EXPECT_EQ (program.Close (), 0);
    EXPECT_EQ (program.Console (), "") << "nobody asked for it";
}

TEST (Win32Program, WithoutItsKeyTheProgramOpensAllTheSame) {
    Install_Key         key ("");
    Temporary_Directory directory;
    Shown_Program       program (directory, std::string ("-t 1 ") + PLACE);
    ASSERT_NE (program.window, nullptr);
    EXPECT_TRUE (Comes_True ([&] { return Shows_Legend (program.Look ()); }));
    std::string console = program.Console (), tables = "c:\\Program Files\\Kestrelbay\\DICOM Tables\\";
    EXPECT_TRUE (Has (console, "TRACE:   Unable to get path from registry \nTRACE:   File:start_up. Line:")) << console;
    EXPECT_TRUE (Has (console, "REPORT:  copying all files from: " + tables + "\n")) << console;
    EXPECT_TRUE (Has (console, "There are no DICOM tables to copy in " + tables + "\n")) << console;

    console = program.Drop ({Example ("ct_a.dcm")});
    EXPECT_TRUE (Has (console, "REPORT:            /vs/     B: Modality description\n")) << console;
    EXPECT_TRUE (Has (console, "WARNING: unable to read Module def. for CT_Image\n")) << console;
    EXPECT_TRUE (Comes_True ([&] { return Rows_Ink (program.Look (), VIEW_YELLOW) > 300; })) << "all are unknown";
    Shot shot = program.Look ();
    EXPECT_EQ (Rows_Ink (shot, VIEW_BLACK) + Rows_Ink (shot, VIEW_BLUE), 0);
    EXPECT_EQ (Icons_Shown (shot).size (), 0u) << "there are none";
    EXPECT_EQ (program.Close (), 0);
}

// --- one program for all that follows --------------------------------------

// Starting takes seconds, so the program stays from test to test, unless one has failed.
class Win32ShownProgram : public testing::Test {
protected:
    void SetUp () override {
        if (!program) {
            directory = std::make_unique<Temporary_Directory> ();
            Write_User_Tables (*directory);
            program = std::make_unique<Shown_Program> (*directory, PLACE);
            if (program->window) program->Key ('1');
            Comes_True ([] { return Has (program->Console (), "Kestrelbay_Tools"); });
        }
        ASSERT_NE (program->window, nullptr);
        ASSERT_TRUE (program->Answers ());
    }
    void TearDown () override {
        if (HasFailure ()) TearDownTestSuite ();
    }
    static void TearDownTestSuite () {
        program.reset ();
        directory.reset ();
    }
    // Compares, and waits for a picture that stays.
    static Shot Show (const char *a, const char *b) {
        Shot shot, before;
        EXPECT_TRUE (Has (program->Compare (Example (a), Example (b)), "REPORT:  Done"));
        EXPECT_TRUE (Comes_True ([&] {
            std::swap (shot, before);
            Sleep (50);
            shot = program->Look ();
            return Ink (shot, 1, TREE_TEXT, 150) > 30 && shot == before;
        }));
        return shot;
    }

    static std::unique_ptr<Temporary_Directory> directory;
    static std::unique_ptr<Shown_Program>       program;
};

std::unique_ptr<Temporary_Directory> Win32ShownProgram::directory;
std::unique_ptr<Shown_Program>       Win32ShownProgram::program;

// --- drops -----------------------------------------------------------------

static std::string Compared (const std::string &a, const std::string &b) {
    return "REPORT:      Compare A: " + a + "\nREPORT:            /vs/     B: " + b + "\n";
}

TEST_F (Win32ShownProgram, DropsTakeTurns) {
    std::string a = Example ("nested_a.dcm"), b = Example ("nested_b.dcm");
    std::string got = program->Compare (a, b);
    EXPECT_TRUE (Has (got, "Comparing 2 files...\n" + Compared (a, b))) << got;
    EXPECT_EQ (Times (got, "REPORT:  Found 3 differences\n"), 2);
    int odd = program->dropped % 2;
    got     = program->Drop ({b});
    EXPECT_TRUE (Has (got, "Comparing 1 file...\n" + (odd ? Compared (a, b) : Compared (b, b)))) << got;
    got = program->Drop ({a, b});
    EXPECT_TRUE (Has (got, "Comparing 2 files...\n" + (odd ? Compared (a, b) : Compared (b, a)))) << got;
}

TEST_F (Win32ShownProgram, WhatIsNoFileIsToldOf) {
    std::string empty  = directory->Write ("empty.dcm", std::string ());
    std::string folder = directory->File ("folder"), missing = directory->File ("missing.dcm");
    std::filesystem::create_directory (folder);

    std::string got = program->Compare (Example ("ct_a.dcm"), folder);
    EXPECT_TRUE (Has (got, "WARNING: ERROR: Unable to open file\n")) << got;
    EXPECT_TRUE (Has (got, "WARNING: file: (" + folder + ")\n")) << got;
    got = program->Compare (Example ("ct_a.dcm"), missing);
    EXPECT_TRUE (Has (got, "WARNING: ERROR: Unable to open file\n")) << got;
    EXPECT_TRUE (Has (got, "WARNING: file: (" + missing + ")\n")) << got;
    got = program->Compare (Example ("ct_a.dcm"), empty);
    EXPECT_TRUE (Has (got, "WARNING: End of File while reading: (0 /vs/ 4) (" + empty + ")\n")) << got;
    EXPECT_TRUE (Has (got, "REPORT:  Done\n"));
    got = program->Compare (Example ("ct_a.dcm"), Example ("ct_b.dcm"));
    EXPECT_EQ (Times (got, "REPORT:  Found 12 differences\n"), 2) << "goes on";
}

// The log's files hold ASCII only.
static std::string Logged (const std::string &text) {
    std::string logged;
    for (char c : text)
        if (c > 0) logged += c;
    return logged;
}

// The system itself opens no longer one than this.
static const size_t LONGEST_OPENED = 259;

TEST_F (Win32ShownProgram, NamesMayHoldAnyCharacters) {
    std::string deep = directory->File (std::string (60, 'd') + "\\" + std::string (60, 'e'));
    std::filesystem::create_directories (deep);
    deep += "\\" + std::string (LONGEST_OPENED - deep.size () - 5, 'n') + ".dcm";
    for (const std::string &name : {directory->File ("with two  blanks .dcm"),
                                    directory->File ("\xC3\xA9t\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC \xE2\x82\xAC.dcm"),
                                    directory->File ("100%s%n (1), #2;=.dcm"), deep}) {
        std::filesystem::copy_file (Example ("ct_b.dcm"), std::filesystem::u8path (name));
        std::string got = program->Compare (Example ("ct_a.dcm"), name);
        EXPECT_TRUE (Has (got, Compared (Example ("ct_a.dcm"), Logged (name)))) << name;
        EXPECT_EQ (Times (got, "REPORT:  Found 12 differences\n"), 2) << name;
    }
}

TEST_F (Win32ShownProgram, PathsTooLongForASlotAreRefused) {
    std::string longer = directory->path + std::string (300, 'n') + ".dcm";
    int         before = program->dropped;
    std::string got    = program->Drop ({longer});
    EXPECT_TRUE (Has (got, "ERROR: Path is longer than 260 characters, not compared: " + longer + "\n")) << got;
    EXPECT_FALSE (Has (got, "Compare A:")) << "a part of it would be another file";
    EXPECT_EQ (program->dropped, before);
}

TEST_F (Win32ShownProgram, AThousandFilesAreOneComparison) {
    std::vector<std::string> names;
    for (int i = 0; i < 1000; i++) names.push_back (Example (i % 2 ? "ct_b.dcm" : "ct_a.dcm"));
    ULONGLONG   start = GetTickCount64 ();
    std::string got   = program->Drop (names);
    EXPECT_LT (GetTickCount64 () - start, 5000u);
    EXPECT_TRUE (Has (got, "REPORT:  Comparing 1000 files...\n")) << got;
    EXPECT_EQ (Times (got, "Compare A:"), 1);
    EXPECT_EQ (Times (got, "REPORT:  Found 12 differences\n"), 2);
}

// --- rows ------------------------------------------------------------------

// The first line with a folded sequence of the top level.
static int Folded_Line (const Shot &shot) {
    for (int line = 1; line < Lines_Seen (shot); line++)
        if (Is_Box (shot, 1, line)) return line;
    return 0;
}

TEST_F (Win32ShownProgram, AFoldBoxShowsAndHidesItsRows) {
    Shot before = Show ("nested_a.dcm", "nested_b.dcm");
    int  line   = Folded_Line (before);
    ASSERT_GT (line, 0);
    EXPECT_TRUE (Is_Folded (before, 1, line));
    EXPECT_FALSE (Is_Box (before, 2, line + 1));

    Shot after;
    int  x = Box_Left (1) + BOX_SIZE / 2, y = Band (before, line) + 1 + BOX_SIZE / 2;
    program->Click (x, y);
    EXPECT_TRUE (Comes_True ([&] { return Is_Unfolded (after = program->Look (), 1, line); }));
    EXPECT_TRUE (Is_Unfolded (after, 2, line + 1)) << "its first item";
    EXPECT_FALSE (Is_Box (after, 2, line + 2)) << "the item's first attribute";
    EXPECT_GT (Ink (after, line + 2, TREE_TEXT + 36, 100), 30);

    program->Click (x, y);
    EXPECT_TRUE (Comes_True ([&] { return Is_Folded (after = program->Look (), 1, line); }));
    for (int row = 1; row < Lines_Seen (before); row++)
        EXPECT_EQ (Ink (after, row, 6, 250), Ink (before, row, 6, 250)) << row;
}

TEST_F (Win32ShownProgram, ASelectedRowIsBoldInAllPanes) {
    Shot before = Show ("ct_a.dcm", "ct_b.dcm"), after;
    program->Click (TREE_TEXT + 20, Band (before, 4) + 4);
    EXPECT_TRUE (
        Comes_True ([&] { return Ink (after = program->Look (), 4, TREE_TEXT, 60) > Ink (before, 4, TREE_TEXT, 60); }));
    program->Click (VALUE_TEXT + 50, Band (before, 7) + 4);
    EXPECT_TRUE (
        Comes_True ([&] { return Ink (after = program->Look (), 7, TREE_TEXT, 60) > Ink (before, 7, TREE_TEXT, 60); }));
    EXPECT_EQ (Ink (after, 4, TREE_TEXT, 60), Ink (before, 4, TREE_TEXT, 60)) << "no longer";
}

// --- wheel -----------------------------------------------------------------

// By how many pixels a part of the window has moved up; 0 when it hasn't, -999 when it shows something else.
static int Moved_Up (const Shot &before, const Shot &after, int x, int y, int w, int h) {
    static const int FARTHEST = 130;
    for (int distance = 0; distance <= FARTHEST; distance = distance <= 0 ? 1 - distance : -distance) {
        bool same = true;
        for (int row = y + FARTHEST; same && row < y + h - FARTHEST; row++)
            for (int column = x; same && column < x + w; column++)
                same = after.At (column, row) == before.At (column, row - distance);
        if (same) return distance;
    }
    return -999;
}

TEST_F (Win32ShownProgram, TheWheelScrollsThePanes) {
    Shot before = Show ("ct_a.dcm", "ct_b.dcm");
    int  y = VIEW_STRIP, h = Panes_Top (before) - 20 - VIEW_STRIP, moved = 0;
    auto scrolled = [&] { return (moved = Moved_Up (before, program->Look (), TREE_TEXT, y, 150, h)) > 0; };
    program->Wheel (100, 100, -120);
    EXPECT_TRUE (Comes_True (scrolled));
    int notch = moved;
    EXPECT_EQ (notch % VIEW_PITCH, 0);
    program->Wheel (VALUE_TEXT, 100, -60);
    program->Wheel (VALUE_TEXT, 100, -60);
    EXPECT_TRUE (Comes_True ([&] { return scrolled () && moved == 2 * notch; })) << "two halves are one: " << moved;
    program->Wheel (100, 100, 240);
    EXPECT_TRUE (Comes_True ([&] { return scrolled () || moved == 0; }));
    EXPECT_TRUE (Comes_True ([&] { return !scrolled () && moved == 0; })) << "back";
}

TEST_F (Win32ShownProgram, TheWheelScrollsTheTextListWhenThePointerIsThere) {
    Shot before = Show ("ct_a.dcm", "ct_b.dcm"), after;
    int  y = Panes_Top (before) + LAYOUT_SEPARATOR + 3, h = LAYOUT_STRIP - LAYOUT_SEPARATOR - 6, moved = 0;
    auto Moved = [&] {
        after        = program->Look ();
        return moved = Moved_Up (before, after, 6, y - 60, 400, h + 120);
    };
    ASSERT_EQ (Moved (), 0);
    program->Wheel (300, y + h / 2, 120);
    EXPECT_TRUE (Comes_True ([&] { return Moved () < 0 && moved > -80; })) << moved;
    EXPECT_EQ (moved % 3, 0) << "lines";
    EXPECT_EQ (Moved_Up (before, after, TREE_TEXT, VIEW_STRIP, 150, Panes_Top (before) - 20 - VIEW_STRIP), 0);
    program->Wheel (300, y + h / 2, -120);
    EXPECT_TRUE (Comes_True ([&] { return Moved () == 0; }));
}

// --- separators ------------------------------------------------------------

static HCURSOR Cursor_Shown () {
    CURSORINFO facts = {};
    facts.cbSize     = sizeof facts;
    return GetCursorInfo (&facts) ? facts.hCursor : nullptr;
}

// The shape at a place that has another one than the place before, if it comes.
static HCURSOR Cursor_At (const Shown_Program &program, int x, int y, HCURSOR before) {
    HCURSOR cursor = nullptr;
    program.Point (x, y);
    Comes_True ([&] { return (cursor = Cursor_Shown ()) != before; }, 300);
    return cursor;
}

// The shape that was there at first isn't known, so a whole round may be needed.
TEST_F (Win32ShownProgram, ThePointerTellsWhatCanBeDragged) {
    Shot shot  = Show ("ct_a.dcm", "ct_b.dcm");
    int  strip = Panes_Top (shot) + 4;
    EXPECT_TRUE (Comes_True ([&] {
        HCURSOR arrow   = Cursor_At (*program, 500, 100, nullptr);
        HCURSOR across  = Cursor_At (*program, LAYOUT_LEFT + 4, 100, arrow);
        HCURSOR both    = Cursor_At (*program, LAYOUT_LEFT + 4, strip, across);
        HCURSOR upright = Cursor_At (*program, 500, strip, both);
        HCURSOR again   = Cursor_At (*program, 500, 100, upright);
        return again == arrow && std::set<HCURSOR> {arrow, across, both, upright}.size () == 4;
    }));
}

// The left line of a vertical separator; its right one belongs to it.
static bool Separator_At (const Shot &shot, int x) {
    return shot.Count (VIEW_BLACK, x, 40, 1, 40) == 40 &&
           shot.Count (VIEW_BLACK, x + LAYOUT_SEPARATOR, 40, 1, 40) == 40;
}

TEST_F (Win32ShownProgram, SeparatorsAreDragged) {
    Shot before = Show ("ct_a.dcm", "ct_b.dcm"), after;
    auto At     = [&] (int left, int right) {
        after = program->Look ();
        return Separator_At (after, left) && Separator_At (after, right);
    };
    ASSERT_TRUE (At (LAYOUT_LEFT, LAYOUT_RIGHT));
    EXPECT_TRUE (program->Drag (LAYOUT_RIGHT + 4, 60, 604, 60, [&] { return At (LAYOUT_LEFT, 600); }));
    EXPECT_GT (Ink (after, 1, LAYOUT_LEFT + 12, 100), 30) << "descriptions";
    EXPECT_TRUE (program->Drag (LAYOUT_LEFT + 4, 60, 454, 60, [&] { return At (450, 600); }));
    EXPECT_TRUE (program->Drag (454, 60, 704, 60, [&] { return At (700, 718); })) << "pushes the other one";

    int top = Panes_Top (before);
    EXPECT_TRUE (program->Drag (500, top + 4, 500, top - 96, [&] {
        after = program->Look ();
        return after.At (680, top + 3) != PANE && after.At (640, top - 120) == PANE;
    }));
    EXPECT_TRUE (
        program->Drag (500, top - 96, 500, top + 5, [&] { return program->Look ().At (640, top - 40) == PANE; }));
    EXPECT_TRUE (program->Drag (704, 60, LAYOUT_LEFT + 4, 60, [&] { return At (LAYOUT_LEFT, 718); }));
    EXPECT_TRUE (program->Drag (722, 60, LAYOUT_RIGHT + 4, 60, [&] { return At (LAYOUT_LEFT, LAYOUT_RIGHT); }));
    EXPECT_TRUE (Comes_True ([&] { return Moved_Up (before, program->Look (), 0, 0, 280, top) == 0; })) << "as before";
}

// --- sizes -----------------------------------------------------------------

static void Resize (HWND window, int width, int height) {
    SetWindowPos (window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

TEST_F (Win32ShownProgram, AnySizeIsDrawn) {
    Shot before = Show ("ct_a.dcm", "ct_b.dcm");
    for (int size : {1, 150, 330}) {
        Resize (program->window, size, size);
        EXPECT_TRUE (program->Answers ()) << size;
    }
    int width  = std::min (1200, GetSystemMetrics (SM_CXSCREEN) - 40);
    int height = std::min (900, GetSystemMetrics (SM_CYSCREEN) - 40);
    Resize (program->window, width, height);
    EXPECT_TRUE (Comes_True ([&] {
        Shot shot = program->Look ();
        return shot.width > width - 40 && shot.At (shot.width - 12, 40) == PANE && Ink (shot, 1, TREE_TEXT, 150) > 30 &&
               List_Ink (shot, VIEW_BLACK) > 300 && shot.At (shot.width / 2, Panes_Top (shot) - 50) == PANE;
    }));
    Resize (program->window, 800, 600);
    EXPECT_TRUE (Comes_True ([&] { return program->Look () == before; })) << "as before";
}

// --- keys ------------------------------------------------------------------

TEST_F (Win32ShownProgram, DigitsSetTheTraceLevel) {
    std::string trace = Program_Scratch (*directory) + "Tagwright_trace.dat";
    auto        Press = [&] (char digit, const char *line) {
        size_t before = program->Console ().size ();
        program->Key (digit);
        return Comes_True ([&] { return Has (program->Console ().substr (before), line); });
    };
    EXPECT_TRUE (Press ('9', "REPORT:  " PROGRAM_IDENTIFIER "\n"));
    EXPECT_TRUE (Press ('2', "REPORT:  Trace level: 2\n"));
    EXPECT_TRUE (Press ('4', "REPORT:  Trace level: 4\n"));
    EXPECT_TRUE (Press ('0', "REPORT:  Trace level: 0\n"));
    std::filesystem::remove (trace);
    EXPECT_TRUE (Press ('3', "TRACE:   Prog_ID:      " PROGRAM_IDENTIFIER));
    EXPECT_TRUE (Comes_True ([&] { return Has (Read_Whole (trace), "Kestrelbay_Tools"); }));
    EXPECT_EQ (Read_Whole (trace).find ("TRACE:   ==== ==== Tagwright 2.1 rev-2 ===="), 0u)
        << Read_Whole (trace).substr (0, 300);
    for (char digit : {'5', '6', '7', '8'}) EXPECT_TRUE (Press (digit, "REPORT:  Trace level: 5\n")) << digit;
    EXPECT_TRUE (Press ('1', "REPORT:  Trace level: 1\n"));
}
