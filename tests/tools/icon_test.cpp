#include "tools/icon.h"

#include <limits.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "tests/support/off_screen.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"
#include "util/file.h"
#include "util/memory.h"
#include "util/utility_IGB.h"

typedef std::vector<unsigned char> Bytes;

static const unsigned ERROR_CODE = 5;
static const uint32_t WHITE      = 0xFFFFFF;

static Bytes Targa (unsigned width, unsigned height, unsigned depth, const Bytes &pixels) {
    Bytes file (18);
    file[2]  = 2;
    file[12] = static_cast<unsigned char> (width);
    file[13] = static_cast<unsigned char> (width >> 8);
    file[14] = static_cast<unsigned char> (height);
    file[15] = static_cast<unsigned char> (height >> 8);
    file[16] = static_cast<unsigned char> (depth);
    file.insert (file.end (), pixels.begin (), pixels.end ());
    return file;
}

static Bytes Igb (const std::string &header, const Bytes &pixels) {
    Bytes file (header.begin (), header.end ());
    file.insert (file.end (), pixels.begin (), pixels.end ());
    return file;
}

static std::string Reason (unsigned error) {
    System_Last_Error_Set (error);
    return Clean (Error_Text (0));
}

// The cache is the program's; each test begins with an empty one and a folder of its own.
class Icons : public testing::Test {
protected:
    Icons () {
        Icon_Free_All ();
        Icon_Install_Path_Set (directory.path.c_str ());
        std::filesystem::create_directory (directory.File ("Icons"));
        folder = directory.File ("Icons") + System_Separator ();
        live   = Memory_Live ();
    }
    ~Icons () override {
        if (Device::Is_Open ()) Device::End ();
        Memory_Fail_At (0);
        for (int i = 0; i < FILE_OPERATIONS; i++) File_Fail_At (static_cast<File_Operation> (i), 0, 0);
        Icon_Free_All ();
        Icon_Install_Path_Set ("");
        EXPECT_EQ (Memory_Live (), live);
    }

    void Put (const std::string &name, const Bytes &file) { directory.Write ("Icons/" + name, file); }

    // A square of one colour, opaque.
    void Put_Square (const std::string &name, unsigned size, unsigned red, unsigned green, unsigned blue) {
        Bytes pixels;
        for (unsigned i = 0; i < size * size; i++)
            for (unsigned channel : {blue, green, red}) pixels.push_back (static_cast<unsigned char> (channel));
        Put (name, Targa (size, size, 24, pixels));
    }

    static Bytes Pixels (const Icon *icon) {
        return Bytes (icon->pixels, icon->pixels + size_t (icon->width) * icon->height * 4);
    }
    static Bytes Second (const Icon *icon) {
        return Bytes (icon->pixels_rgba, icon->pixels_rgba + size_t (icon->width) * icon->height * 4);
    }

    // What was reported since the last call, without the numbers of lines and with the folder as "<>".
    std::string Reported () {
        std::string text = std::regex_replace (log.All (), std::regex ("Line:[1-9][0-9]*"), "Line:N");
        log.Clear ();
        for (size_t place; (place = text.find (folder)) != std::string::npos;)
            text.replace (place, folder.size (), "<>");
        return text;
    }

    Temporary_Directory directory;
    std::string         folder;
    Log_Recorder        log;
    long                live;
};

typedef Icons IconTable;
typedef Icons IconRgb;
typedef Icons IconTga;

static std::string Missing (const std::string &name) {
    return "7: Icon_Read_TGA() File:icon Line:N\n7: fopen(<>" + name + ") failed\n";
}

// --- TARGA -----------------------------------------------------------------

TEST_F (IconTga, BlueAloneIsTransparency) {
    Put ("a.tga", Targa (3, 2, 24, {255, 0, 0, 0, 0, 0, 100, 0, 0, 1, 2, 3, 255, 1, 0, 255, 0, 1}));
    const Icon *icon = Icon_Read (nullptr, "a.tga");
    ASSERT_NE (icon, nullptr);
    EXPECT_STREQ (icon->name, "a.tga");
    EXPECT_EQ (icon->width, 3);
    EXPECT_EQ (icon->height, 2);
    EXPECT_EQ (Pixels (icon), (Bytes {1, 2, 3, 255, 255, 1, 0, 255, 255, 0, 1, 255, // Rows are turned.
                                      0, 0, 0, 0,   0,   0, 0, 255, 0,   0, 0, 155}));
    EXPECT_EQ (Second (icon),
               (Bytes {3, 2, 1, 255, 0, 1, 255, 255, 1, 0, 255, 255, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 155}));
    EXPECT_EQ (Reported (), "");
}

TEST_F (IconTga, OtherDepthsAreRefused) {
    for (unsigned depth : {0u, 1u, 8u, 16u, 32u, 255u}) {
        std::string name = std::to_string (depth) + ".tga";
        Put (name, Targa (1, 1, depth, Bytes (40)));
        EXPECT_EQ (Icon_Read (nullptr, name.c_str ()), nullptr);
        EXPECT_EQ (Reported (), "7: Icon_Read_TGA() File:icon Line:N\n7: <>" + name + " should be RGB\n");
    }
    Put ("short.tga", Bytes (17, 24));
    EXPECT_EQ (Icon_Read (nullptr, "short.tga"), nullptr);
    EXPECT_EQ (Reported (), "7: Icon_Read_TGA() File:icon Line:N\n7: <>short.tga should be RGB\n");
}

TEST_F (IconTga, FewerPixelsAreRefusedBeforeMemoryIsTaken) {
    std::string expected = "7: Icon_Read_TGA() File:icon Line:N\n7: while reading (<>a.tga)\n7: " + Reason (0) + "\n";
    Icon        icon     = {};
    for (size_t count = 0; count < 12; count++) {
        Put ("a.tga", Targa (2, 2, 24, Bytes (count)));
        Memory_Fail_At (3); // Before: the full name and the open file.
        EXPECT_EQ (Icon_Read_TGA (&icon, "a.tga"), 0);
        EXPECT_EQ (Memory_Failed (), 0);
        EXPECT_EQ (icon.pixels, nullptr);
        EXPECT_EQ (Reported (), expected);
    }
    Put ("a.tga", Targa (65535, 65535, 24, Bytes (12)));
    Memory_Fail_At (3);
    EXPECT_EQ (Icon_Read_TGA (&icon, "a.tga"), 0);
    EXPECT_EQ (Memory_Failed (), 0);
    EXPECT_EQ (Reported (), expected);
}

TEST_F (IconTga, ReadingThatFailsIsReported) {
    Icon icon = {};
    Put ("a.tga", Targa (2, 2, 24, Bytes (12)));
    for (unsigned error : {ERROR_CODE, 0u})
        for (long n : {2, 3}) {
            File_Fail_At (FILE_READ, n, error);
            EXPECT_EQ (Icon_Read_TGA (&icon, "a.tga"), 0);
            EXPECT_EQ (icon.pixels, nullptr);
            EXPECT_EQ (icon.pixels_rgba, nullptr);
            EXPECT_EQ (Reported (),
                       "7: Icon_Read_TGA() File:icon Line:N\n7: while reading (<>a.tga)\n7: " + Reason (error) + "\n");
        }
}

TEST_F (IconTga, EmptyImageIsAnIconOfNoPixels) {
    Put ("a.tga", Targa (0, 7, 24, {}));
    const Icon *icon = Icon_Read (nullptr, "a.tga");
    ASSERT_NE (icon, nullptr);
    EXPECT_EQ (icon->width, 0);
    EXPECT_EQ (icon->height, 7);
}

// --- IGB -------------------------------------------------------------------

TEST_F (IconRgb, TransparencyBecomesOpacity) {
    Put ("a.igb", Igb ("x:2 y:1 type:rgba\f", {10, 1, 2, 3, 255, 4, 5, 6}));
    const Icon *icon = Icon_Read (nullptr, "a.igb");
    ASSERT_NE (icon, nullptr);
    EXPECT_EQ (icon->width, 2);
    EXPECT_EQ (icon->height, 1);
    EXPECT_EQ (Pixels (icon), (Bytes {1, 2, 3, 245, 4, 5, 6, 0}));
    EXPECT_EQ (Second (icon), (Bytes {3, 2, 1, 245, 6, 5, 4, 0}));
    EXPECT_EQ (Reported (), "");
}

TEST_F (IconRgb, PixelsOfOtherSizesAreRefused) {
    for (const char *type : {"byte", "short", "double", "d_complex"}) {
        std::string name = std::string (type) + ".igb";
        Put (name, Igb (std::string ("x:1 y:1 type:") + type + "\f", Bytes (16)));
        EXPECT_EQ (Icon_Read (nullptr, name.c_str ()), nullptr);
        EXPECT_EQ (Reported (), "7: Icon_Read_RGB() File:icon Line:N\n7: <>" + name + " should be RGBA\n");
    }
}

TEST_F (IconRgb, FileThatCannotBeReadIsReportedOnceInTheProgramsLife) {
    EXPECT_EQ (Icon_Read (nullptr, "none.igb"), nullptr);
    std::string reported = Reported ();
    std::string own =
        "7: Icon_Read_RGB() File:icon Line:N \n7: Unable to open (<>none.igb)\n7: [ERROR_FILE_NOT_FOUND] ";
    EXPECT_NE (reported.find ("7: WARNING: in IGB_Read_Header()\n7: Unable to open (<>none.igb)\n"), std::string::npos);
    EXPECT_NE (reported.find (own), std::string::npos) << reported;
    Put ("bad.igb", Igb ("x:1 y:1\f", {}));
    EXPECT_EQ (Icon_Read (nullptr, "bad.igb"), nullptr);
    EXPECT_EQ (Icon_Read (nullptr, "gone.igb"), nullptr);
    reported = Reported ();
    EXPECT_EQ (reported.find ("Icon_Read_RGB()"), std::string::npos) << reported;
    EXPECT_NE (reported.find ("IGB_Read_Image(<>bad.igb) failed"), std::string::npos);
    EXPECT_NE (reported.find ("IGB_Read_Image(<>gone.igb) failed"), std::string::npos);
}

TEST_F (IconRgb, ReadsTargaWhenAskedDirectly) {
    Icon icon = {};
    Put ("a.tga", Targa (1, 1, 24, {1, 2, 3}));
    EXPECT_EQ (Icon_Read_RGB (&icon, "a.tga"), 1);
    EXPECT_EQ (Pixels (&icon), (Bytes {1, 2, 3, 0})); // Opacity taken as transparency.
    Memory_Free (icon.pixels);
    Memory_Free (icon.pixels_rgba);
}

// --- table -----------------------------------------------------------------

TEST_F (IconTable, ReadsAFileOnce) {
    Put_Square ("a.tga", 1, 9, 8, 7);
    const Icon *icon = Icon_Read (nullptr, "a.tga");
    ASSERT_NE (icon, nullptr);
    Put_Square ("a.tga", 2, 1, 1, 1);
    EXPECT_EQ (Icon_Read (nullptr, "a.tga"), icon);
    EXPECT_EQ (icon->width, 1);
}

TEST_F (IconTable, DoesNotTryAFailedFileAgain) {
    EXPECT_EQ (Icon_Read (nullptr, "none.tga"), nullptr);
    EXPECT_EQ (Reported (), Missing ("none.tga"));
    Put_Square ("none.tga", 1, 9, 8, 7);
    EXPECT_EQ (Icon_Read (nullptr, "none.tga"), nullptr);
    EXPECT_EQ (Icon_Read (nullptr, "none.igb"), nullptr);
    Reported ();
    EXPECT_EQ (Icon_Read (nullptr, "none.igb"), nullptr);
    EXPECT_EQ (Reported (), "");
}

TEST_F (IconTable, NamesAreExact) {
    Put_Square ("a.tga", 1, 9, 8, 7);
    Put_Square ("ab.tga", 2, 9, 8, 7);
    Put_Square ("a.tga.tga", 3, 9, 8, 7);
    EXPECT_EQ (Icon_Read (nullptr, "a.tga")->width, 1);
    EXPECT_EQ (Icon_Read (nullptr, "ab.tga")->width, 2);
    EXPECT_EQ (Icon_Read (nullptr, "a.tga.tga")->width, 3);
    EXPECT_EQ (Icon_Read (nullptr, "a.tga")->width, 1);
}

TEST_F (IconTable, HoldsItsLimitAndNoMore) {
    Put_Square ("last.tga", 1, 9, 8, 7);
    for (int i = 0; i < ICON_LIMIT - 1; i++)
        EXPECT_EQ (Icon_Read (nullptr, (std::to_string (i) + ".tga").c_str ()), nullptr);
    const Icon *icon = Icon_Read (nullptr, "last.tga");
    EXPECT_NE (icon, nullptr);
    Reported ();
    Put_Square ("more.tga", 1, 9, 8, 7);
    EXPECT_EQ (Icon_Read (nullptr, "more.tga"), nullptr);
    EXPECT_EQ (Icon_Read (nullptr, "more.igb"), nullptr);
    EXPECT_EQ (Icon_Read (nullptr, "last.tga"), icon);
    EXPECT_EQ (Icon_Read (nullptr, "0.tga"), nullptr);
    EXPECT_EQ (Reported (), "");
}

TEST_F (IconTable, TargaAnywhereInTheNameDecidesTheReader) {
    Put_Square ("a.tga.igb", 1, 9, 8, 7);
    Put ("b.tga.igb", Igb ("x:1 y:1 type:rgba\f", {0, 1, 2, 3}));
    Put_Square ("c.TGA", 1, 9, 8, 7);
    EXPECT_NE (Icon_Read (nullptr, "a.tga.igb"), nullptr);
    EXPECT_EQ (Reported (), "");
    EXPECT_EQ (Icon_Read (nullptr, "b.tga.igb"), nullptr);
    EXPECT_EQ (Reported (), "7: Icon_Read_TGA() File:icon Line:N\n7: <>b.tga.igb should be RGB\n");
    EXPECT_EQ (Icon_Read (nullptr, "c.TGA"), nullptr);
    EXPECT_NE (Reported ().find ("IGB_Read_Image(<>c.TGA) failed"), std::string::npos);
}

TEST_F (IconTable, NamesOfAnyKindAreHarmless) {
    Put_Square ("a.tga", 1, 9, 8, 7);
    EXPECT_NE (Icon_Read (nullptr, "../Icons/a.tga"), nullptr);
    EXPECT_EQ (Reported (), "");
    for (const std::string &name :
         {std::string (""), std::string ("."), std::string (".."), std::string ("%s%n.tga"), std::string (3000, 'n'),
          std::string (3000, 'n') + ".tga", std::string (200000, '/'), std::string (200000, 'n') + ".tga"}) {
        EXPECT_EQ (Icon_Read (nullptr, name.c_str ()), nullptr);
        EXPECT_NE (Reported (), "");
        EXPECT_EQ (Icon_Read (nullptr, name.c_str ()), nullptr);
        EXPECT_EQ (Reported (), "");
    }
    EXPECT_EQ (Icon_Read (nullptr, nullptr), nullptr);
}

// --- folder ----------------------------------------------------------------

TEST_F (IconTable, FolderIsMadeOnFirstUse) {
    Temporary_Directory other;
    EXPECT_EQ (Icon_Read (nullptr, "a.tga"), nullptr);
    EXPECT_EQ (Reported (), Missing ("a.tga"));
    Icon_Install_Path_Set (other.path.c_str ());
    EXPECT_EQ (Icon_Read (nullptr, "b.tga"), nullptr);
    EXPECT_EQ (Reported (), Missing ("b.tga"));
    Icon_Free_All ();
    EXPECT_EQ (Icon_Read (nullptr, "b.tga"), nullptr);
    EXPECT_EQ (log.lines[1].text, "fopen(" + other.File ("Icons") + System_Separator () + "b.tga) failed");
}

TEST_F (IconTable, WithoutAPathTheFolderIsTheMakers) {
    for (const std::string &path : {std::string (), std::string (SYSTEM_PATH_SIZE, 'n')}) {
        Icon_Free_All ();
        Icon_Install_Path_Set (path.c_str ());
        EXPECT_EQ (Icon_Read (nullptr, "a.tga"), nullptr);
        EXPECT_EQ (log.lines[1].text, "fopen(c:\\Program Files\\Kestrelbay\\Icons\\a.tga) failed");
        log.Clear ();
    }
}

TEST_F (IconTable, LongestPathOfAnInstallationFits) {
    Icon_Install_Path_Set ((std::string (SYSTEM_PATH_SIZE - 2, 'n') + "/").c_str ());
    EXPECT_EQ (Icon_Read (nullptr, "a.tga"), nullptr);
    EXPECT_EQ (log.lines[1].text,
               "fopen(" + std::string (SYSTEM_PATH_SIZE - 2, 'n') + "/Icons" + System_Separator () + "a.tga) failed");
}

// --- memory ----------------------------------------------------------------

TEST_F (IconTable, FullMemoryIsReported) {
    Put_Square ("a.tga", 2, 9, 8, 7);
    Put ("a.igb", Igb ("x:1 y:1 type:rgba\f", {0, 1, 2, 3}));
    struct {
        const char *name, *message;
        long        allocations; // Name, full name, files, image, both copies.
    } const kinds[] = {{"a.tga", "Icon_Read_TGA(a.tga) failed in new", 5},
                       {"a.igb", "Icon_Read_RGB(a.igb) failed in new", 7}};
    for (const auto &kind : kinds) {
        for (long n = 1; n <= kind.allocations; n++) {
            Icon_Free_All ();
            Memory_Fail_At (n);
            EXPECT_EQ (Icon_Read (nullptr, kind.name), nullptr);
            EXPECT_EQ (Memory_Failed (), 1) << n;
            // Files and images are reported by those who need them.
            EXPECT_EQ (log.Has (LOG_ERRLOG, kind.message), n <= 2 || n > kind.allocations - 2) << n;
            EXPECT_EQ (log.Count (LOG_ERROR), !(n <= 2 || n > kind.allocations - 2)) << n;
            log.Clear ();
            EXPECT_EQ (Icon_Read (nullptr, kind.name) != nullptr, n == 1); // Only an entry with a name is remembered.
            EXPECT_EQ (Reported (), "");
        }
        Icon_Free_All ();
        Memory_Fail_At (kind.allocations + 1);
        EXPECT_NE (Icon_Read (nullptr, kind.name), nullptr);
        EXPECT_EQ (Memory_Failed (), 0);
    }
}

// --- session ---------------------------------------------------------------

class IconDrawing : public Icons {
protected:
    IconDrawing () : screen (40, 30) {
        widget.name = "pane";
        Place (10, 10, 20, 10);
        Shade (0, 0, 0);
        Device::Reports_Reset ();
    }
    ~IconDrawing () override {
        if (Device::Is_Open ()) Device::End ();
        Widget_Exit (&widget);
    }

    void Place (int16_t x, int16_t y, int16_t w, int16_t h) {
        widget.x = x;
        widget.y = y;
        widget.w = w;
        widget.h = h;
        Widget_Init (&widget, screen.window, "Test");
    }
    void Shade (int16_t red, int16_t green, int16_t blue) {
        widget.colour[0] = red;
        widget.colour[1] = green;
        widget.colour[2] = blue;
        widget.colour[3] = 0;
    }

    // Draws in a session of its own.
    void Draw (int x, int y, const char *name) {
        ASSERT_EQ (Device::Begin (screen.window, nullptr, "test"), 1);
        Icon_Draw_Image (&widget, x, y, "label", name);
        EXPECT_TRUE (Device::Is_Open ());
        Device::End ();
    }

    Off_Screen    screen;
    Call_Recorder calls;
    Widget        widget = {};
};

static std::string Kinds (const Call_Recorder &calls) {
    std::string text;
    for (const Call_Recorder::Call &call : calls.calls) text += "BECAFLIT"[call.kind];
    return text;
}

TEST_F (IconDrawing, ReadingPausesTheSession) {
    Put_Square ("a.tga", 4, 9, 8, 7);
    ASSERT_EQ (Device::Begin (screen.window, nullptr, "test"), 1);
    const Icon *icon = Icon_Read (&widget, "a.tga");
    EXPECT_NE (icon, nullptr);
    EXPECT_TRUE (Device::Is_Open ());
    EXPECT_EQ (Device::Current_Window (), screen.window);
    EXPECT_EQ (Kinds (calls), "BEBC");
    const Call_Recorder::Call &clip = calls.calls.back ();
    EXPECT_EQ (clip.x, 10);
    EXPECT_EQ (clip.y, 10);
    EXPECT_EQ (clip.w, 20);
    EXPECT_EQ (clip.h, 10);
    EXPECT_EQ (Icon_Read (&widget, "a.tga"), icon);       // It is known now,
    EXPECT_EQ (Icon_Read (nullptr, "none.tga"), nullptr); // and without a widget nobody knows where to begin again.
    EXPECT_EQ (Kinds (calls), "BEBC");
    EXPECT_EQ (Icon_Read (&widget, "failed.tga"), nullptr);
    EXPECT_EQ (Kinds (calls), "BEBCEBC");
    EXPECT_EQ (Icon_Read (&widget, "failed.tga"), nullptr);
    EXPECT_EQ (Kinds (calls), "BEBCEBC");
}

TEST_F (IconDrawing, ReportsWhileTheSessionIsPaused) {
    static int open;
    open = 0;
    Log_Sink_Set ([] (Window, int, const char *) { return open += Device::Is_Open (), 1; });
    ASSERT_EQ (Device::Begin (screen.window, nullptr, "test"), 1);
    EXPECT_EQ (Icon_Read (&widget, "none.tga"), nullptr);
    EXPECT_EQ (Icon_Read (&widget, "none.igb"), nullptr);
    Put_Square ("a.tga", 4, 9, 8, 7);
    for (long n = 1; n <= 5; n++) {
        Icon_Free_All ();
        Memory_Fail_At (n);
        EXPECT_EQ (Icon_Read (&widget, "a.tga"), nullptr);
    }
    EXPECT_EQ (open, 0);
    EXPECT_TRUE (Device::Is_Open ());
}

TEST_F (IconDrawing, ReadingWithoutASessionBeginsNone) {
    Put_Square ("a.tga", 4, 9, 8, 7);
    EXPECT_NE (Icon_Read (&widget, "a.tga"), nullptr);
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ (Kinds (calls), "");
}

TEST_F (IconDrawing, FullTableLeavesTheSessionAlone) {
    for (int i = 0; i < ICON_LIMIT; i++) Icon_Read (nullptr, (std::to_string (i) + ".tga").c_str ());
    ASSERT_EQ (Device::Begin (screen.window, nullptr, "test"), 1);
    EXPECT_EQ (Icon_Read (&widget, "more.tga"), nullptr);
    EXPECT_EQ (Kinds (calls), "B");
}

// --- drawing ---------------------------------------------------------------

TEST_F (IconDrawing, StandsOnItsBottomLeftCorner) {
    Put_Square ("a.tga", 4, 200, 100, 50);
    Draw (12, 13, "a.tga");
    EXPECT_EQ (screen.Count (Drawing_Colour (200, 100, 50), 12, 13, 4, 4), 16);
    EXPECT_EQ (screen.Count (WHITE), 40 * 30 - 16);
}

TEST_F (IconDrawing, IsBlendedOnTheWidgetsColour) {
    Put ("a.tga", Targa (3, 1, 24, {255, 0, 0, 128, 0, 0, 50, 100, 200}));
    Shade (300, 100, 40);
    Draw (12, 13, "a.tga");
    EXPECT_EQ (screen.Pixel (12, 13), Drawing_Colour (255 * 255 >> 8, 100 * 255 >> 8, 40 * 255 >> 8));
    EXPECT_EQ (screen.Pixel (13, 13), Drawing_Colour (255 * 128 >> 8, 100 * 128 >> 8, 40 * 128 >> 8));
    EXPECT_EQ (screen.Pixel (14, 13), Drawing_Colour (200 * 255 >> 8, 100 * 255 >> 8, 50 * 255 >> 8));
    ASSERT_EQ (calls.Count (Device::CALL_IMAGE), 1);
    EXPECT_EQ (calls.Of (Device::CALL_IMAGE)[0].colour, Drawing_Colour (255, 100, 40));
}

TEST_F (IconDrawing, IsDrawnWhenItMeetsTheWidget) {
    Put_Square ("a.tga", 4, 200, 100, 50);
    struct {
        int x, y, drawn;
    } const places[] = {{10, 10, 1},      {6, 10, 0},       {7, 10, 1},      {30, 10, 1},   {31, 10, 0},
                        {10, 6, 0},       {10, 7, 1},       {10, 20, 1},     {10, 21, 0},   {7, 7, 1},
                        {30, 20, 1},      {31, 21, 0},      {-100, 12, 0},   {12, -100, 0}, {INT_MAX, 12, 0},
                        {12, INT_MAX, 0}, {INT_MIN, 12, 0}, {12, INT_MIN, 0}};
    for (const auto &place : places) {
        calls.calls.clear ();
        Draw (place.x, place.y, "a.tga");
        EXPECT_EQ (calls.Count (Device::CALL_IMAGE), place.drawn) << place.x << "," << place.y;
    }
}

TEST_F (IconDrawing, WidgetOfNoSizeMeetsNothing) {
    Put_Square ("a.tga", 4, 200, 100, 50);
    int16_t const sizes[][2] = {{0, 10}, {10, 0}, {0, 0}, {-5, 10}, {10, -5}, {INT16_MIN, INT16_MIN}};
    for (auto &size : sizes) {
        Place (10, 10, size[0], size[1]);
        Draw (10, 10, "a.tga");
    }
    EXPECT_EQ (calls.Count (Device::CALL_IMAGE), 0);
    Place (INT16_MAX, INT16_MAX, INT16_MAX, INT16_MAX);
    Draw (65534, 65534, "a.tga");
    Draw (65535, 65535, "a.tga");
    EXPECT_EQ (calls.Count (Device::CALL_IMAGE), 1);
}

TEST_F (IconDrawing, MissingIconDrawsNothing) {
    Draw (12, 13, "none.tga");
    Draw (12, 13, "none.igb");
    Put ("empty.tga", Targa (0, 0, 24, {}));
    Draw (12, 13, "empty.tga");
    EXPECT_EQ (calls.Count (Device::CALL_IMAGE), 0);
    EXPECT_EQ (screen.Count (WHITE), 40 * 30);
}

TEST_F (IconDrawing, WritesATrace) {
    Put_Square ("a.tga", 4, 200, 100, 50);
    Draw (12, 13, "a.tga");
    EXPECT_EQ (Reported (), "");
    Log_Recorder deep (5);
    Draw (12, 13, "a.tga");
    EXPECT_TRUE (deep.Has (LOG_TRACE5, "in Icon_Draw_Image(label,a.tga)"));
    EXPECT_EQ (deep.Count (LOG_TRACE5), 1);
}

// --- the program's own icons -----------------------------------------------

TEST (ShippedIcons, AllAreReadAndDiffer) {
    const char *const  names[] = {"icon_type_0.tga",  "icon_type_1.tga", "icon_type_1C.tga", "icon_type_2.tga",
                                  "icon_type_2C.tga", "icon_type_3.tga", "icon_dot.tga"};
    Log_Recorder       log;
    std::vector<Bytes> pictures;
    Icon_Free_All ();
    Icon_Install_Path_Set (TAGWRIGHT_SOURCE_DIR "/");
    for (const char *name : names) {
        const Icon *icon = Icon_Read (nullptr, name);
        ASSERT_NE (icon, nullptr) << name;
        EXPECT_EQ (icon->width, 16);
        EXPECT_EQ (icon->height, 16);
        EXPECT_EQ (icon->pixels[3], 0) << name; // The corner is free,
        int clear = 0;
        for (size_t i = 3; i < 16 * 16 * 4; i += 4) clear += icon->pixels[i] == 0;
        EXPECT_GT (clear, 16) << name;
        EXPECT_EQ (icon->pixels[(10 * 16 + 7) * 4 + 3], 255) << name; // the middle is not.
        for (const Bytes &other : pictures) EXPECT_NE (other, Bytes (icon->pixels, icon->pixels + 16 * 16 * 4));
        pictures.push_back (Bytes (icon->pixels, icon->pixels + 16 * 16 * 4));
    }
    EXPECT_EQ (log.All (), "");
    Icon_Free_All ();
    Icon_Install_Path_Set ("");
}
