#include <gtest/gtest.h>

#include "compare/attribute_comparison.h"
#include "tests/support/log_recorder.h"
#include "tests/view/shown.h"

static void Set_Value (Shown *shown, Attribute *record, const std::string &text) {
    record->data = reinterpret_cast<uint8_t *> (shown->Text (text));
}

// The first call with this text, or one of no place.
static Drawn Found (const Watched &watched, const std::string &text) {
    const Drawn *call = watched.Text (text);
    return call ? *call : Drawn {};
}

// --- values ----------------------------------------------------------------

TEST (ValuePane, NoFileBeforeTheFirstComparison) {
    Shown   shown;
    Watched watched;
    View::Redraw_All ();
    const int x0 = Result.value.widget.x, width = shown.Width (View::Font (View::FONT_BOLD), "(A) no file");
    EXPECT_EQ (x0 + 484 - width, Found (watched, "(A) no file").x);
    EXPECT_EQ (x0 + 495, Found (watched, " /vs/ ").x);
    EXPECT_EQ (x0 + 535, Found (watched, "(B) no file").x);
    EXPECT_EQ (View::Font (View::FONT_BOLD), Found (watched, "(B) no file").font);
    EXPECT_EQ (VIEW_BLACK, Found (watched, "(B) no file").colour);
}

TEST (ValuePane, HeadingNamesTheFiles) {
    Shown shown;
    shown.Names ("/data/a.dcm", "");
    Result.value_slider.value = 30;
    Watched watched;
    View::Redraw_All ();
    const int x0 = Result.value.widget.x - 30;
    EXPECT_EQ (x0 + 484 - shown.Width (View::Font (View::FONT_BOLD), "(A) /data/a.dcm"),
               Found (watched, "(A) /data/a.dcm").x);
    EXPECT_EQ (x0 + 535, Found (watched, "(B) no file").x);
}

// What is drawn of it ends where it should, and between two characters.
TEST (ValuePane, LongNameIsCutWhole) {
    Shown       shown;
    std::string name = std::string (249, 'n') + "\xC3\xA9\xC3\xA9" + "tail";
    shown.Names (name.c_str (), std::string (300, 'b').c_str ());
    Watched watched;
    View::Redraw_All ();
    std::string drawn = "(A) " + std::string (249, 'n');
    ASSERT_EQ (1, watched.Count (drawn));
    EXPECT_EQ (Result.value.widget.x + 484 - shown.Width (View::Font (View::FONT_BOLD), drawn),
               Found (watched, drawn).x);
    EXPECT_EQ (1, watched.Count ("(B) " + std::string (251, 'b')));
}

TEST (ValuePane, ValuesInFixedPitch) {
    Shown      shown;
    Attribute *a = shown.Record (0x0008, 0x0001, DIFFERENCE_ONLY_A), *b = shown.Record (0x0008, 0x0002);
    Set_Value (&shown, a, "\"x\" /vs/ (no tag)");
    a->length = 2; // Of the value, not of the text.
    shown.Build (shown.List ({a, b}));
    Watched watched;
    View::Redraw_All ();
    Drawn text = Found (watched, "\"x\" /vs/ (no tag)");
    EXPECT_EQ (Result.value.widget.x + 6, text.x);
    EXPECT_EQ (shown.Band (1) - 4, text.y);
    EXPECT_EQ (View::Font (View::FONT_FIXED), text.font);
    EXPECT_EQ (VIEW_BLACK, text.colour);
}

TEST (ValuePane, SelectedValueStandsFurtherLeft) {
    Shown      shown;
    Attribute *a = shown.Record (0x0008, 0x0001, DIFFERENCE_SKIPPED);
    Set_Value (&shown, a, "value");
    shown.Build (a);
    Rows_Select (1);
    Watched watched;
    View::Redraw_All ();
    Drawn text = Found (watched, "value");
    EXPECT_EQ (Result.value.widget.x + 6 - 62, text.x);
    EXPECT_EQ (View::Font (View::FONT_FIXED_BOLD), text.font);
    EXPECT_EQ (VIEW_GREEN, text.colour);
}

TEST (ValuePane, NeverMoreThan255Characters) {
    Shown      shown;
    Attribute *a = shown.Record (0x0008, 0x0001);
    Set_Value (&shown, a, std::string (300, 'v'));
    shown.Build (a);
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count (std::string (255, 'v')));
}

// Whatever the bytes are, the lines around theirs stay as they are.
TEST (ValuePane, ValuesOfAnyBytesStayOnTheirLine) {
    Shown      shown (1200, 400);
    Attribute *a = shown.Record (0x0008, 0x0001), *b = shown.Record (0x0008, 0x0002),
              *c = shown.Record (0x0008, 0x0003);
    Set_Value (&shown, a, "above");
    Set_Value (&shown, c, "below");
    shown.Build (shown.List ({a, b, c}));
    auto others = [&] {
        const Widget         &value = Result.value.widget;
        std::vector<uint32_t> pixels;
        Drawing               drawing = Drawing_Begin (shown.window);
        for (int x = 0; x < 1200; x++)
            for (int y = 0; y < 400; y++)
                if (x <= value.x || x >= value.x + value.w || y < shown.Band (2) - 5 || y > shown.Band (2) + 15)
                    pixels.push_back (Drawing_Pixel (drawing, x, y));
        Drawing_End (drawing);
        return pixels;
    };
    std::vector<uint32_t> before = others ();
    std::string           controls;
    for (int code = 1; code < 32; code++) controls += static_cast<char> (code);
    for (const std::string &text :
         {std::string ("one\ntwo\r\nthree\n\n\n"), controls, std::string ("\t\t\t") + controls,
          std::string ("\x7F\x80\xFF\xFE\xC0\xC1\xF5 \xE2\x82 \xED\xA0\x80 \xF4\x90\x80\x80"),
          std::string (10000, '\n'), std::string (10000, 'W'), std::string (10000, '\xFF'), std::string (300, '\t'),
          std::string ("\xC3")}) {
        Set_Value (&shown, b, text);
        Watched watched;
        View::Redraw_All ();
        EXPECT_TRUE (before == others ()) << text.substr (0, 20);
        for (const Drawn &call : watched.calls) EXPECT_LE (call.text.size (), 255u);
    }
}

// --- descriptions ----------------------------------------------------------

TEST (DescriptionPane, TextsAndHeading) {
    Shown      shown;
    Attribute *a   = shown.Record (0x0008, 0x0001, DIFFERENCE_FILE_ONLY);
    a->description = shown.Text ("Study Date");
    shown.Build (a);
    Result.description_slider.value = 5;
    Watched watched;
    View::Redraw_All ();
    const int x0 = Result.description.widget.x - 5;
    EXPECT_EQ (x0 + 20, Found (watched, "Description").x);
    EXPECT_EQ (View::Font (View::FONT_BOLD), Found (watched, "Description").font);
    EXPECT_EQ (x0 + 6, Found (watched, "Study Date").x);
    EXPECT_EQ (shown.Band (1) - 4, Found (watched, "Study Date").y);
    EXPECT_EQ (View::Font (View::FONT_REGULAR), Found (watched, "Study Date").font);
    EXPECT_EQ (VIEW_YELLOW, Found (watched, "Study Date").colour);
    Rows_Select (1);
    watched.calls.clear ();
    View::Redraw_All ();
    EXPECT_EQ (View::Font (View::FONT_BOLD), Found (watched, "Study Date").font);
    EXPECT_EQ (x0 + 6, Found (watched, "Study Date").x);
}

TEST (DescriptionPane, UnknownTagIsPadded) {
    Shown shown;
    shown.Build (shown.Record (0x0009, 0x0001));
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count ("Unknown tag                             "));
}

TEST (DescriptionPane, OnlyPlainCharactersAreShown) {
    Shown      shown;
    Attribute *a = shown.Record (0x0009, 0x0001), *b = shown.Record (0x0009, 0x0002);
    a->description = shown.Text ("M\xC3\xA9t\xE9o\x01\x10\x0A end");
    b->description = shown.Text ("\x11\x7F");
    shown.Build (shown.List ({a, b}));
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count ("Mto end"));
    EXPECT_EQ (1, watched.Count ("\x11\x7F"));
}

TEST (DescriptionPane, RowsWithoutAttributeHaveNone) {
    Shown shown;
    shown.Build (nullptr);
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ ((std::vector<std::string> {"Type   (----tag----)", "VR", "size", "diff", "a.dcm /vs/ b.dcm",
                                          "(A) no file", " /vs/ ", "(B) no file", "Description"}),
               watched.Texts ());
}

TEST (DescriptionPane, LongestOneIsShown) {
    Shown      shown;
    Attribute *a   = shown.Record (0x0009, 0x0001);
    a->description = shown.Text (std::string (179, 'd'));
    Log_Recorder log;
    Watched      watched;
    shown.Build (a);
    EXPECT_EQ (0, log.Count (LOG_ERROR));
    EXPECT_EQ (1, watched.Count (std::string (179, 'd')));
}

TEST (DescriptionPane, LongerOneEndsTheProgram) {
    Shown      shown;
    Attribute *a   = shown.Record (0x0019, 0x1001);
    a->description = shown.Text (std::string (180, 'd'));
    shown.Names ("one.dcm", nullptr);
    Log_Recorder log;
    Watched      watched;
    shown.Build (a);
    EXPECT_EQ ("The length of the description of (0019,1001) is 180, and at most 179 can be shown.\n\n(A) one.dcm\n"
               "(B) no file\n\nThe program ends. Nothing is lost: files are only read.\n",
               log.Text (LOG_ERROR));
    EXPECT_EQ (0, watched.Count (std::string (180, 'd')));
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ (View::FATAL_EXIT, Window_Loop ());
}
