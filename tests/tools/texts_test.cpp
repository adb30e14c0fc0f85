#include "tools/texts.h"

#include <gtest/gtest.h>

#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/log_recorder.h"
#include "tools/keyboard.h"
#include "util/memory.h"

static const uint32_t GREY = Drawing_Colour (170, 170, 170);

// --- a field in a window ---------------------------------------------------

struct Drawn {
    Device::Call call;
    std::string  text;
};

static std::vector<Drawn> drawn;

static void Watch_Drawing (const Device::Call *call) {
    drawn.push_back ({*call, call->text ? std::string (call->text, call->length) : ""});
}

// Large records: not on the stack.
struct Field {
    Window                       window = nullptr;
    std::unique_ptr<Text_Widget> owned {new Text_Widget ()};
    Text_Widget                 *text = owned.get ();

    explicit Field (int w = 300, int h = 151, int size = 9) {
        Window_Description description = {};
        description.title              = "texts";
        description.width              = 800;
        description.height             = 200;
        description.off_screen         = 1;
        window                         = Window_Create (&description);
        text->widget.name              = "text list";
        text->widget.x                 = 10;
        text->widget.y                 = 20;
        text->widget.w                 = (int16_t)w;
        text->widget.h                 = (int16_t)h;
        text->size                     = size;
        Device::Pointer_Set (-1, -1);
    }
    ~Field () {
        Device::Watch (nullptr);
        Texts::Exit (text);
        Window_Destroy (window);
    }

    int    Stop (int number) { return (number * text->tabs + 2) / 3; }
    Field &Ready () {
        Texts::Init (text, window);
        Text::Draw (text);
        return *this;
    }
    void Write (const std::string &line) { Text::Write (text, line.c_str ()); }
    void Write_Many (int first, int count) {
        for (int i = first; i < first + count; i++) Write (std::to_string (i));
        Texts::Re_Write (text);
    }
    int         Visible () { return Texts::Visible_Lines (text); }
    std::string Line (int index) { return Texts::Line (text, index); }
    std::string Top () { return Line (text->line_top); }
    std::string Last () { return Line (text->line_count - 1); }

    int Row_Bottom (int row) { return text->widget.y + text->widget.h + 1 - WIDGET_BORDER - (row + 1) * text->pitch; }
    int Width (Drawing_Font font, const std::string &run) {
        EXPECT_TRUE (Device::Begin (window, nullptr, "test"));
        int width = Device::Run_Width (font, run.data (), (int)run.size ());
        Device::End ();
        return width;
    }
    uint32_t Pixel (int x, int y) {
        Drawing  drawing = Drawing_Begin (window);
        uint32_t pixel   = Drawing_Pixel (drawing, x, y);
        Drawing_End (drawing);
        return pixel;
    }
    // Pixels of this colour in a rectangle, its upper right corner left out.
    int Count (uint32_t colour, int left, int bottom, int right, int top) {
        Drawing drawing = Drawing_Begin (window);
        int     count   = 0;
        for (int y = bottom; y < top; y++)
            for (int x = left; x < right; x++) count += Drawing_Pixel (drawing, x, y) == colour;
        Drawing_End (drawing);
        return count;
    }
    int Inner_Right () { return text->slider.widget.x - 2; }
    int Mouse (int state, int x, int y) {
        Device::Pointer_Set (x, y);
        return Texts::Select (text, state);
    }
    int Slider_X () { return text->slider.widget.x + text->slider.widget.w / 2; }
    int Slider_Y () { return text->slider.widget.y; }
};

// The texts that the action draws.
template <typename Action> static std::vector<Drawn> Texts_Drawn (Action action) {
    drawn.clear ();
    Device::Watch (Watch_Drawing);
    action ();
    Device::Watch (nullptr);
    std::vector<Drawn> texts;
    for (const Drawn &one : drawn)
        if (one.call.kind == Device::CALL_TEXT) texts.push_back (one);
    return texts;
}

static std::vector<Drawn> Rewritten (Field &field) {
    return Texts_Drawn ([&] { Texts::Re_Write (field.text); });
}

static int Calls (Device::Call_Kind kind) {
    int count = 0;
    for (const Drawn &one : drawn) count += one.call.kind == kind;
    return count;
}

static std::string Joined (const std::vector<Drawn> &texts) {
    std::string joined;
    for (const Drawn &one : texts) joined += one.text + "|";
    return joined;
}

// --- init ------------------------------------------------------------------

TEST (Texts, InitMakesFontsAndMeasures) {
    Field field;
    Texts::Init (field.text, field.window);
    EXPECT_TRUE (field.text->normal && field.text->bold && field.text->oblique);
    EXPECT_EQ (field.text->character_width, field.Width (field.text->normal, "H"));
    EXPECT_EQ (Widget_Colour (field.text->widget.colour), GREY);
    Drawing_Font_Metrics metrics;
    ASSERT_TRUE (Device::Begin (field.window, nullptr, "test"));
    Device::Font_Measure (field.text->normal, &metrics);
    Device::End ();
    EXPECT_EQ (field.text->pitch, metrics.height);
    EXPECT_EQ (field.text->tabs, field.Width (field.text->bold, " Color code:"));
    EXPECT_GT (field.text->pitch, 9);
    EXPECT_EQ (field.text->widget.validity, WIDGET_INITIALISED);
}

TEST (Texts, InitKeepsAColourOfItsOwn) {
    Field field;
    field.text->widget.colour[2] = 7;
    Texts::Init (field.text, field.window);
    EXPECT_EQ (Widget_Colour (field.text->widget.colour), Drawing_Colour (0, 0, 7));
}

TEST (Texts, InitWithoutAWindowWarns) {
    Field        field;
    Log_Recorder log (1);
    Texts::Init (field.text, nullptr);
    EXPECT_EQ (log.Text (LOG_TRACE1),
               "Tools: WARNING ! \n   you must provide a window\n   type: Texts::Init   name: text list\n");
    EXPECT_EQ (field.text->widget.validity, 0);
    EXPECT_FALSE (field.text->normal);
}

TEST (Texts, InitAgainWithoutAWindowKeepsTheStoredOne) {
    Field field;
    field.Ready ();
    Log_Recorder log (1);
    Texts::Init (field.text, nullptr);
    EXPECT_EQ (field.text->widget.window, field.window);
    EXPECT_EQ (log.lines.size (), 0u);
}

struct Made {
    std::string face;
    int         height, bold, italic;
};
static std::vector<Made> made;

static Drawing_Font Make_None (const char *face, int height, int bold, int italic) {
    made.push_back ({face, height, bold, italic});
    return nullptr;
}

static Drawing_Font Make_Real (const char *face, int height, int bold, int italic) {
    made.push_back ({face, height, bold, italic});
    return Drawing_Font_Create (face, height, bold, italic);
}

struct Font_Watch {
    explicit Font_Watch (Device::Font_Maker maker) {
        made.clear ();
        Device::Font_Maker_Set (maker);
    }
    ~Font_Watch () { Device::Font_Maker_Set (nullptr); }
};

TEST (Texts, FontsAreNormalBoldAndOblique) {
    Font_Watch watch (Make_Real);
    Field      field;
    Texts::Init (field.text, field.window);
    ASSERT_EQ (made.size (), 3u);
    for (const Made &font : made) {
        EXPECT_EQ (font.face, "Arial");
        EXPECT_EQ (font.height, made[0].height);
    }
    EXPECT_FALSE (made[0].bold || made[0].italic);
    EXPECT_TRUE (made[1].bold && !made[1].italic);
    EXPECT_TRUE (!made[2].bold && made[2].italic);
}

TEST (Texts, FontsAreMadeAgainOnlyForAnotherFaceOrSize) {
    Font_Watch watch (Make_Real);
    Field      field;
    char       face[] = "Courier";
    field.text->face  = face;
    Texts::Init (field.text, field.window);
    Texts::Init (field.text, field.window);
    EXPECT_EQ (made.size (), 3u);
    field.text->size = 20;
    Texts::Init (field.text, field.window);
    EXPECT_EQ (made.size (), 6u);
    strcpy (face, "Arial"); // The text behind the pointer counts.
    Texts::Init (field.text, field.window);
    EXPECT_EQ (made.size (), 9u);
    field.text->face = nullptr;
    Texts::Init (field.text, field.window);
    EXPECT_EQ (made.size (), 9u); // None is Arial.
}

TEST (Texts, FontsThatCanNotBeMadeAreTheSystemFont) {
    Font_Watch   watch (Make_None);
    Log_Recorder log;
    Field        field;
    field.Ready ();
    field.Write ("a\xF1"
                 "b\xF2"
                 "c");
    std::vector<Drawn> texts = Rewritten (field);
    EXPECT_EQ (Joined (texts), "a|b|c|");
    for (const Drawn &one : texts) EXPECT_FALSE (one.call.font);
    EXPECT_GT (field.text->pitch, 0);
    Texts::Init (field.text, field.window);
    EXPECT_EQ (made.size (), 3u);
}

TEST (Texts, AFaceTooLongToRememberIsStillDrawn) {
    Field       field;
    std::string face (1000, 'x');
    field.text->face = face.c_str ();
    field.Ready ();
    field.Ready ();
    field.Write ("a");
    EXPECT_EQ (Joined (Rewritten (field)), "a|");
}

// --- display codes ---------------------------------------------------------

struct Code_Case {
    char     code;
    uint32_t colour;
    int      font; // 0 normal, 1 bold, 2 oblique.
};

static const Code_Case CODE_CASES[] = {
    {'\x01', 0xFF0000, 0}, {'\x02', 0, 0}, {'\x03', 0xFFFFFF, 0}, {'\x04', 0x0000FF, 0}, {'\x05', 0x00FFFF, 0},
    {'\x06', 0x00A000, 0}, {'\xF0', 0, 0}, {'\xF1', 0, 1},        {'\xF2', 0, 2},
};

TEST (Texts, EachCodeHoldsForWhatFollows) {
    Field field;
    field.Ready ();
    Drawing_Font fonts[] = {field.text->normal, field.text->bold, field.text->oblique};
    for (const Code_Case &code : CODE_CASES) {
        Text::OverWrite (field.text, (std::string ("ab") + code.code + "cd").c_str ());
        std::vector<Drawn> texts = Rewritten (field);
        ASSERT_EQ (Joined (texts), "ab|cd|") << (int)code.code;
        EXPECT_EQ (texts[0].call.x, 10 + 2);
        EXPECT_EQ (texts[0].call.colour, 0u);
        EXPECT_EQ (texts[0].call.font, field.text->normal);
        EXPECT_EQ (texts[1].call.x, 10 + 2 + field.Width (field.text->normal, "ab"));
        EXPECT_EQ (texts[1].call.colour, code.colour) << (int)code.code;
        EXPECT_EQ (texts[1].call.font, fonts[code.font]) << (int)code.code;
        EXPECT_EQ (texts[1].call.y, texts[0].call.y);
        EXPECT_EQ (Clean (Texts::Line (field.text, 0)), "abcd");
    }
}

TEST (Texts, ColourAndFontEndWithTheLine) {
    Field field;
    field.Ready ();
    field.Write ("\xF1\x04"
                 "red\nplain");
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "red|plain|");
    EXPECT_EQ (texts[0].call.font, field.text->bold);
    EXPECT_EQ (texts[0].call.colour, 0x0000FFu);
    EXPECT_EQ (texts[1].call.font, field.text->normal);
    EXPECT_EQ (texts[1].call.colour, 0u);
}

TEST (Texts, ColourStaysWhenTheFontChangesAndTheOtherWayRound) {
    Field field;
    field.Ready ();
    field.Write ("\xF1\x06"
                 "a\xF0"
                 "b\x01"
                 "c");
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "a|b|c|");
    EXPECT_EQ (texts[1].call.colour, 0x00A000u);
    EXPECT_EQ (texts[1].call.font, field.text->normal);
    EXPECT_EQ (texts[2].call.colour, 0xFF0000u);
    EXPECT_EQ (texts[2].call.x, 12 + field.Width (field.text->bold, "a") + field.Width (field.text->normal, "b"));
}

TEST (Texts, EveryOtherByteIsDrawn) {
    Field field;
    field.Ready ();
    for (int byte = 1; byte < 256; byte++) {
        if (byte <= 6 || byte == '\t' || byte == '\n' || byte == '\r' || (byte >= 0xF0 && byte <= 0xF2)) continue;
        std::string line = std::string ("a") + (char)byte + "b";
        Text::OverWrite (field.text, line.c_str ());
        EXPECT_EQ (Joined (Rewritten (field)), line + "|") << byte;
    }
}

TEST (Texts, CodesAloneDrawNothing) {
    Field field;
    field.Ready ();
    field.Write ("\xF1\x02\xF0\x01");
    field.Write ("");
    EXPECT_EQ (Rewritten (field).size (), 0u);
    EXPECT_EQ (field.text->lines[0].width, 0);
}

// U+1F600 begins with the byte of the normal font's code.
TEST (Texts, AValidLongCharacterIsNoCode) {
    Field field;
    field.Ready ();
    field.Write ("\xF1"
                 "a\xF0\x9F\x98\x80"
                 "b");
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "a\xF0\x9F\x98\x80"
                               "b|");
    EXPECT_EQ (texts[0].call.font, field.text->bold);
    Text::OverWrite (field.text, "\xF0\x9F\x98\x80");
    EXPECT_EQ (Joined (Rewritten (field)), "\xF0\x9F\x98\x80|");
}

TEST (Texts, TheNormalFontsCodeBeforeOtherBytesIsACode) {
    Field field;
    field.Ready ();
    for (std::string rest : {"", "x", "\x9F", "\x9F\x98", "\x9F\x98x", "\x8F\x98\x80", "\xBFz\x80", "\xC3\xA9"}) {
        Text::OverWrite (field.text, ("\xF1"
                                      "a\xF0" +
                                      rest)
                                         .c_str ());
        EXPECT_EQ (Joined (Rewritten (field)), "a|" + rest + (rest.empty () ? "" : "|")) << rest;
    }
}

TEST (Texts, LinesStandOnePitchApart) {
    Field field;
    field.Ready ();
    field.Write ("a\n\nb\nc");
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "a|b|c|");
    EXPECT_EQ (texts[0].call.y, field.Row_Bottom (0));
    EXPECT_EQ (texts[1].call.y, field.Row_Bottom (2));
    EXPECT_EQ (texts[2].call.y, field.Row_Bottom (3));
    EXPECT_EQ (field.Row_Bottom (0) + field.text->pitch, 20 + 152 - 3);
}

TEST (Texts, TheDrawnWidthIsKeptWithTheLine) {
    Field field;
    field.Ready ();
    field.Write ("ab\xF1"
                 "cd");
    EXPECT_EQ (field.text->lines[0].width,
               field.Width (field.text->normal, "ab") + field.Width (field.text->bold, "cd"));
}

// --- tabs ------------------------------------------------------------------

TEST (Texts, TabsAdvanceToStopsCountedFromTheLinesStart) {
    Field field (700);
    field.Ready ();
    field.Write ("a\tb\t\tc");
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "a|b|c|");
    EXPECT_EQ (texts[1].call.x, 12 + field.Stop (1));
    EXPECT_EQ (texts[2].call.x, 12 + field.Stop (3));
}

TEST (Texts, ATabOnAStopGoesToTheNext) {
    Field field (700);
    field.Ready ();
    field.Write ("\ta");
    field.Write ("\t\tb");
    field.Write ("\xF1\t\x04\tc");
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "a|b|c|");
    EXPECT_EQ (texts[0].call.x, 12 + field.Stop (1));
    EXPECT_EQ (texts[1].call.x, 12 + field.Stop (2));
    EXPECT_EQ (texts[2].call.x, 12 + field.Stop (2));
    EXPECT_EQ (texts[2].call.font, field.text->bold);
}

TEST (Texts, WideTextBeforeATabSkipsStops) {
    Field field (700);
    field.Ready ();
    field.Write (std::string (30, 'W') + "\tb");
    std::vector<Drawn> texts = Rewritten (field);
    int                width = field.Width (field.text->normal, std::string (30, 'W'));
    ASSERT_EQ (texts.size (), 2u);
    EXPECT_EQ (texts[1].call.x, 12 + field.Stop (3 * width / field.text->tabs + 1));
}

TEST (Texts, ManyTabsEndAtTheField) {
    Field field;
    field.Ready ();
    field.Write (std::string (1000000, '\t') + "a");
    EXPECT_EQ (Rewritten (field).size (), 0u);
}

// The legend under the help, in the field of the main window as it opens.
TEST (Texts, TheColumnsOfTheLegendAlign) {
    for (int size = 7; size <= 20; size++) {
        Field field (2000, 180, size);
        field.Ready ();
        field.Write ("\xF1 Color code:\t Comparing with Modality:\t\t\t Comparing with another file:\n"
                     "\xF1\x06 green \x02\xF0\t\t\t not used \t\t\t\t\t\t\t skiped tags as defined in .ini\n"
                     "\xF1\x05 yellow\x02\xF0\t\t\t in the file but not in the modality \t\t not used\n"
                     "\xF1\x01 blue  \x02\xF0\t\t\t in the modality but not in the file \t\t no difference\n"
                     "\xF1\x02 black \x02\xF0\t\t\t in both the file and the modality \t\t different");
        std::vector<Drawn> texts = Rewritten (field);
        ASSERT_EQ (texts.size (), 15u);
        for (int line = 1; line < 5; line++)
            for (int column = 0; column < 3; column++)
                EXPECT_EQ (texts[3 * line + column].call.x, texts[column].call.x)
                    << size << " " << line << " " << column;
    }
}

// --- long lines ------------------------------------------------------------

TEST (Texts, ALongRunIsCutBetweenCharacters) {
    Field field (790, 151, 1);
    field.text->size = 1;
    field.Ready ();
    for (int ahead = 0; ahead < 4; ahead++) {
        std::string line (ahead, 'a');
        while (line.size () < 3000) line += "\xE2\x82\xAC";
        Text::OverWrite (field.text, line.c_str ());
        std::vector<Drawn> texts = Rewritten (field);
        std::string        joined;
        ASSERT_GT (texts.size (), 0u);
        for (const Drawn &one : texts) {
            EXPECT_NE (one.text[0] & 0xC0, 0x80);
            EXPECT_LE (one.text.size (), 520u);
            joined += one.text;
        }
        EXPECT_EQ (joined, line.substr (0, joined.size ()));
    }
}

TEST (Texts, BytesThatAreNoTextAreCutAnywhereAndEnd) {
    Field field;
    field.Ready ();
    Text::OverWrite (field.text, std::string (100000, '\x80').c_str ());
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_GT (texts.size (), 0u);
    EXPECT_LE (texts[0].text.size (), 512u);
}

TEST (Texts, OfALineOfAMegabyteOnlyWhatIsSeenIsDrawn) {
    Field       field;
    std::string line (1 << 20, 'm');
    field.Ready ();
    field.Write (line);
    EXPECT_EQ (field.Line (0), line);
    std::vector<Drawn> texts = Rewritten (field);
    EXPECT_EQ (texts.size (), 1u);
    EXPECT_GE (field.text->lines[0].width, field.Inner_Right () - 12);
}

TEST (Texts, NothingIsDrawnBesideTheLinesArea) {
    Field       field;
    std::string line = "\x04\xF1" + std::string (200, 'W');
    field.Ready ();
    for (int i = 0; i < 30; i++) field.Write (line);
    const uint32_t red = 0x0000FF;
    const Widget  &w   = field.text->widget;
    EXPECT_GT (field.Count (red, w.x, w.y, field.Inner_Right (), w.y + w.h + 1), 100);
    EXPECT_EQ (field.Count (red, field.Inner_Right (), 0, 800, 200), 0);
    EXPECT_EQ (field.Count (red, 0, 0, w.x + 2, 200), 0);
    EXPECT_EQ (field.Count (red, 0, 0, 800, w.y + 1), 0);
    EXPECT_EQ (field.Count (red, 0, w.y + w.h - 2, 800, 200), 0);
}

TEST (Texts, TheWidgetsOwnClipHolds) {
    Field field;
    field.text->widget.clip = {40, 60, 50, 80};
    field.Ready ();
    for (int i = 0; i < 30; i++) field.Write ("\x04\xF1" + std::string (200, 'W'));
    Text::Draw (field.text);
    const uint32_t red = 0x0000FF;
    int            in  = field.Count (red, 40, 61, 90, 141);
    EXPECT_GT (in, 50);
    EXPECT_EQ (field.Count (red, 0, 0, 800, 200), in);
    EXPECT_EQ (field.Count (GREY, 0, 0, 800, 61), 0);
}

// --- storing ---------------------------------------------------------------

TEST (Texts, LinesArePartedAtLineFeeds) {
    struct {
        const char              *written;
        std::vector<std::string> lines;
    } cases[] = {
        {"", {""}},
        {"a", {"a"}},
        {"a\n", {"a"}},
        {"\n", {""}},
        {"a\nb", {"a", "b"}},
        {"a\n\nb", {"a", "", "b"}},
        {"\n\n", {"", ""}},
        {"a\nb\n\n", {"a", "b", ""}},
        {"a\r\nb\r\n", {"a", "b"}},
        {"a\rb", {"a\rb"}},
        {"\r\n", {""}},
        {"a\r\r\n", {"a\r"}},
        {"a\r", {"a"}},
    };
    for (const auto &one : cases) {
        Field field;
        field.Write (one.written);
        ASSERT_EQ (field.text->line_count, (int)one.lines.size ()) << one.written;
        for (size_t i = 0; i < one.lines.size (); i++) EXPECT_EQ (field.Line ((int)i), one.lines[i]) << one.written;
    }
}

TEST (Texts, NoneIsNotWritten) {
    Field field;
    field.Ready ();
    Text::Write (field.text, nullptr);
    Text::OverWrite (field.text, nullptr);
    EXPECT_EQ (field.text->line_count, 0);
}

TEST (Texts, LineOutsideOfTheListIsEmpty) {
    Field field;
    EXPECT_EQ (field.Line (0), "");
    field.Write ("a");
    EXPECT_EQ (field.Line (-1), "");
    EXPECT_EQ (field.Line (1), "");
    EXPECT_EQ (field.Line (INT32_MAX), "");
}

TEST (Texts, TheOldestOfMoreThanTenThousandIsDropped) {
    long live = Memory_Live ();
    {
        Field field;
        field.Ready ();
        field.Write_Many (0, TEXT_LINES);
        EXPECT_EQ (field.text->line_count, TEXT_LINES);
        EXPECT_EQ (field.Line (0), "0");
        long full = Memory_Live ();
        field.Write ("next");
        EXPECT_EQ (field.text->line_count, TEXT_LINES);
        EXPECT_EQ (field.Line (0), "1");
        EXPECT_EQ (field.Last (), "next");
        EXPECT_EQ (field.Line (TEXT_LINES - 2), "9999");
        field.Write_Many (0, 25000);
        EXPECT_EQ (field.text->line_count, TEXT_LINES);
        EXPECT_EQ (field.Line (0), "15000");
        EXPECT_EQ (field.Last (), "24999");
        EXPECT_EQ (field.text->line_top, TEXT_LINES - field.Visible ());
        EXPECT_EQ (Memory_Live (), full);
    }
    EXPECT_EQ (Memory_Live (), live);
}

TEST (Texts, OneTextOfMoreLinesThanAreKeptLeavesItsEnd) {
    Field       field;
    std::string text;
    for (int i = 0; i < 12345; i++) text += std::to_string (i) + "\n";
    field.Ready ();
    field.Write (text);
    EXPECT_EQ (field.text->line_count, TEXT_LINES);
    EXPECT_EQ (field.Line (0), "2345");
    EXPECT_EQ (field.Last (), "12344");
}

TEST (Texts, OverWriteReplacesTheLastLine) {
    Field field;
    field.Ready ();
    Text::OverWrite (field.text, "first");
    EXPECT_EQ (field.text->line_count, 1);
    field.Write ("second");
    std::vector<Drawn> texts = Texts_Drawn ([&] { Text::OverWrite (field.text, "10 %"); });
    EXPECT_EQ (field.text->line_count, 2);
    EXPECT_EQ (field.Line (0), "first");
    EXPECT_EQ (field.Line (1), "10 %");
    ASSERT_EQ (Joined (texts), "10 %|");
    EXPECT_EQ (texts[0].call.y, field.Row_Bottom (1));
    Text::OverWrite (field.text, "done\nnext");
    EXPECT_EQ (field.Line (1), "done");
    EXPECT_EQ (field.Line (2), "next");
    EXPECT_EQ (field.text->line_count, 3);
}

TEST (Texts, OverWriteErasesALongerLine) {
    Field field;
    field.Ready ();
    field.Write ("\x04"
                 "WWWWWWWWWWWWWWWW");
    Text::OverWrite (field.text, "\x01\xF1"
                                 "WWWW");
    EXPECT_EQ (field.Count (0x0000FF, 0, 0, 800, 200), 0);
    EXPECT_GT (field.Count (0xFF0000, 0, 0, 800, 200), 0);
}

TEST (Texts, OverWriteInAFullListDropsNothing) {
    Field field;
    field.Ready ();
    field.Write_Many (0, TEXT_LINES + 3);
    Text::OverWrite (field.text, "x");
    EXPECT_EQ (field.text->line_count, TEXT_LINES);
    EXPECT_EQ (field.Line (0), "3");
    EXPECT_EQ (field.Line (TEXT_LINES - 2), std::to_string (TEXT_LINES + 1));
    EXPECT_EQ (field.Last (), "x");
}

// --- following and scrolling -----------------------------------------------

TEST (Texts, TheListFollowsNewLines) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 100);
    EXPECT_EQ (field.text->line_top, 100 - field.Visible ());
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ ((int)texts.size (), field.Visible ());
    EXPECT_EQ (texts.back ().text, "99");
    EXPECT_EQ (texts.back ().call.y, field.Row_Bottom (field.Visible () - 1));
}

TEST (Texts, ScrolledUpTheShownLinesStay) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 100);
    Texts::Scroll (field.text, -5);
    std::string top = field.Top ();
    EXPECT_EQ (top, std::to_string (100 - field.Visible () - 5));
    std::vector<Drawn> texts = Texts_Drawn ([&] {
        for (int i = 0; i < 50; i++) field.Write ("more");
    });
    EXPECT_EQ (texts.size (), 0u); // Nothing that is shown has changed.
    EXPECT_EQ (field.Top (), top);
}

TEST (Texts, ScrolledToTheEndTheListFollowsAgain) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 100);
    Texts::Scroll (field.text, -5);
    Texts::Scroll (field.text, 4);
    field.Write ("a");
    EXPECT_EQ (field.text->line_top, 100 - field.Visible () - 1);
    Texts::Scroll (field.text, 2);
    field.Write ("b");
    EXPECT_EQ (field.text->line_top, 102 - field.Visible ());
}

TEST (Texts, ShownLinesStayWhenTheOldestAreDropped) {
    Field field;
    field.Ready ();
    field.Write_Many (0, TEXT_LINES);
    Texts::Scroll (field.text, -500);
    std::string        top   = field.Top ();
    std::vector<Drawn> texts = Texts_Drawn ([&] {
        for (int i = 0; i < 300; i++) field.Write ("more");
    });
    EXPECT_EQ (texts.size (), 0u);
    EXPECT_EQ (field.Top (), top);
}

TEST (Texts, ShownLinesThatAreDroppedGiveWayToTheOldest) {
    Field field;
    field.Ready ();
    field.Write_Many (0, TEXT_LINES);
    Texts::Scroll (field.text, -2 * TEXT_LINES);
    EXPECT_EQ (field.Top (), "0");
    std::vector<Drawn> texts = Texts_Drawn ([&] { field.Write ("more"); });
    EXPECT_EQ (field.Top (), "1");
    ASSERT_GT (texts.size (), 0u);
    EXPECT_EQ (texts[0].text, "1");
    EXPECT_EQ (field.text->scrolled, 1);
}

TEST (Texts, ScrollingStopsAtTheEnds) {
    Field field;
    field.Ready ();
    Texts::Scroll (field.text, 3);
    EXPECT_EQ (field.text->line_top, 0);
    field.Write_Many (0, 100);
    int last = 100 - field.Visible ();
    for (int lines : {1, INT32_MAX}) {
        Texts::Scroll (field.text, lines);
        EXPECT_EQ (field.text->line_top, last);
    }
    for (int lines : {-1000, -1, INT32_MIN}) {
        Texts::Scroll (field.text, lines);
        EXPECT_EQ (field.text->line_top, 0);
    }
    Texts::Scroll (field.text, 1);
    EXPECT_EQ (field.text->line_top, 1);
}

TEST (Texts, ScrollingDrawsTheShownLinesOnly) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 1000);
    std::vector<Drawn> texts = Texts_Drawn ([&] { Texts::Scroll (field.text, -1); });
    ASSERT_EQ ((int)texts.size (), field.Visible ());
    EXPECT_EQ (texts[0].text, field.Top ());
    texts = Texts_Drawn ([&] { Texts::Scroll (field.text, 0); });
    EXPECT_EQ (texts.size (), 0u);
}

TEST (Texts, AnotherHeightKeepsEndOrTop) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 100);
    field.text->widget.h = 100;
    Texts::Init (field.text, field.window);
    EXPECT_EQ (field.text->line_top, 100 - field.Visible ());
    Texts::Scroll (field.text, -20);
    std::string top      = field.Top ();
    field.text->widget.h = 130;
    Texts::Init (field.text, field.window);
    EXPECT_EQ (field.Top (), top);
    Texts::Scroll (field.text, 19);
    field.text->widget.h = 190;
    Texts::Init (field.text, field.window);
    EXPECT_EQ (field.text->line_top, 100 - field.Visible ());
    EXPECT_EQ (field.text->scrolled, 0);
    EXPECT_EQ (field.text->line_count, 100);
}

// --- what writing draws ----------------------------------------------------

TEST (Texts, ANewLineIsDrawnAlone) {
    Field field;
    field.Ready ();
    field.Write ("a\nb");
    std::vector<Drawn> texts = Texts_Drawn ([&] { field.Write ("c"); });
    ASSERT_EQ (Joined (texts), "c|");
    EXPECT_EQ (texts[0].call.y, field.Row_Bottom (2));
}

TEST (Texts, SeveralLinesAreDrawnInOneSession) {
    Field field;
    field.Ready ();
    std::vector<Drawn> texts = Texts_Drawn ([&] { field.Write ("a\nb\nc"); });
    EXPECT_EQ (Joined (texts), "a|b|c|");
    EXPECT_EQ (Calls (Device::CALL_BEGIN), 1);
}

static const int SINGLY = 100, TOGETHER = 50; // Of the lines in a row.

TEST (Texts, OfManyLinesInARowOnlySomeDraw) {
    Field field;
    field.Ready ();
    auto write = [&] (int number) { return Joined (Texts_Drawn ([&] { field.Write (std::to_string (number)); })); };
    std::string shown;
    for (int i = 1; i <= 4 * SINGLY; i++) {
        std::string line  = std::to_string (i) + "|";
        bool        draws = i <= SINGLY || i % TOGETHER == 0;
        if (i > field.Visible ()) shown.erase (0, shown.find ('|') + 1);
        shown += line;
        EXPECT_EQ (write (i), !draws ? "" : i <= field.Visible () ? line : shown) << i;
    }
}

TEST (Texts, DrawingTheWholeFieldBeginsTheRowAnew) {
    Field field (300, 600);
    field.Ready ();
    field.text->size = 1;
    for (auto draw : {Texts::Re_Write, Text::Draw}) {
        field.text->written = SINGLY + 1;
        EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("a"); })), "");
        draw (field.text);
        EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("b"); })), "b|");
        EXPECT_EQ (field.text->written, 1u);
    }
    field.text->written = UINT32_MAX - 1;
    EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("c"); })), "");
    EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("d"); })), "a|b|a|b|c|d|");
}

// Each of them may be seen by its slider only.
TEST (Texts, LinesOutOfSightDoNotCount) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 50);
    Texts::Scroll (field.text, -20);
    for (int i = 0; i < 2 * SINGLY; i++) EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("unseen"); })), "");
    EXPECT_EQ (field.text->stale, 0);
    EXPECT_EQ (field.text->slider.maximum, (float)(50 + 2 * SINGLY - field.Visible ()));
    Texts::Scroll (field.text, TEXT_LINES);
    EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("seen"); })).substr (0, 7), "unseen|");
}

static Text_Widget *painted;

static int Paint_Field (Window, const Window_Event *event) {
    if (event->kind != WINDOW_PAINT || !painted) return 0;
    Texts::Re_Write (painted);
    return 1;
}

TEST (Texts, WhatWasLeftOutIsDrawnByTheNextPaintEvent) {
    Field                    field;
    const Window_Description description = {"painted", 0, 0, 400, 200, GREY, Paint_Field, 0, 1};
    Window                   window      = Window_Create (&description);
    ASSERT_TRUE (window);
    Texts::Init (field.text, window);
    Text::Draw (field.text);
    Window_Loop (); // What the window's beginning asked for.
    painted = field.text;
    for (int round = 0; round < 2; round++) {
        for (int i = 0; i < SINGLY; i++) field.Write ("a");
        EXPECT_EQ (Joined (Texts_Drawn ([] { Window_Loop (); })), "");
        field.Write ("b");
        field.Write ("c");
        std::string seen = Joined (Texts_Drawn ([] { Window_Loop (); }));
        EXPECT_EQ (seen.substr (seen.size () - 6), "a|b|c|");
        EXPECT_EQ (Joined (Texts_Drawn ([] { Window_Loop (); })), "");
    }
    field.text->stale = 1; // As when there was no window to paint yet.
    ASSERT_TRUE (Device::Begin (window, nullptr, "test"));
    field.Write ("d");
    Device::End ();
    EXPECT_NE (Joined (Texts_Drawn ([] { Window_Loop (); })).find ("|d|"), std::string::npos);
    painted = nullptr;
    Texts::Exit (field.text);
    Window_Destroy (window);
}

TEST (Texts, WhatIsWrittenInASessionIsDrawnWithTheNextDrawing) {
    Field field;
    field.Ready ();
    field.Write ("a");
    Log_Recorder log (9);
    ASSERT_TRUE (Device::Begin (field.window, nullptr, "test"));
    std::vector<Drawn> texts = Texts_Drawn ([&] {
        field.Write ("b");
        Texts::Re_Write (field.text);
        Texts::Scroll (field.text, 1);
        Text::Draw (field.text);
    });
    EXPECT_EQ (drawn.size (), 0u);
    EXPECT_TRUE (Device::Is_Open ());
    Device::End ();
    EXPECT_EQ (log.lines.size (), 0u);
    EXPECT_EQ (field.Line (1), "b");
    EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("c"); })), "a|b|c|");
}

TEST (Texts, WhatIsWrittenBeforeInitIsDrawnAfterIt) {
    Log_Recorder log (1);
    Field        field;
    field.Write ("a");
    field.Write ("b");
    Texts::Scroll (field.text, -1);
    EXPECT_FALSE (log.Contains ("provide a window"));
    EXPECT_EQ (log.Count (LOG_TRACE1, "you must call *_Init() first"), 1);
    EXPECT_EQ (log.Count (LOG_TRACE1, "type: Text::Write   name: text list"), 1);
    log.Clear ();
    Texts::Init (field.text, field.window);
    EXPECT_EQ (Joined (Texts_Drawn ([&] { Text::Draw (field.text); })), "a|b|");
    EXPECT_EQ (log.lines.size (), 0u);
}

TEST (Texts, OperationsBeforeInitWarnOnceAndDoNoHarm) {
    void (*operations[]) (Text_Widget *) = {Text::Draw,
                                            Texts::Re_Write,
                                            [] (Text_Widget *text) { Texts::Scroll (text, 1); },
                                            [] (Text_Widget *text) { Texts::Select (text, MOUSE_PRESSED); },
                                            [] (Text_Widget *text) { Text::OverWrite (text, "a"); },
                                            [] (Text_Widget *text) { Texts::Read_Echo (text, 0x241); }};
    const char *names[]                  = {"Text::Draw",    "Texts::Re_Write", "Texts::Scroll",
                                            "Texts::Select", "Text::OverWrite", "Texts::Read_Echo"};
    for (size_t i = 0; i < sizeof names / sizeof *names; i++) {
        Log_Recorder log (1);
        Field        field;
        operations[i](field.text);
        operations[i](field.text);
        EXPECT_EQ (log.Text (LOG_TRACE1),
                   std::string ("Tools: WARNING ! \n   you must call *_Init() first\n   type: ") + names[i] +
                       "   name: text list\n\n");
    }
}

TEST (Texts, WithoutWidthOrHeightNothingIsDrawnOrTaken) {
    for (int side = 0; side < 2; side++) {
        Field field;
        (side ? field.text->widget.h : field.text->widget.w) = 0;
        Log_Recorder log;
        Texts::Init (field.text, field.window);
        Texts_Drawn ([&] {
            Text::Draw (field.text);
            field.Write ("a\nb");
            Texts::Scroll (field.text, 1);
        });
        EXPECT_EQ (drawn.size (), 0u);
        EXPECT_EQ (field.Mouse (MOUSE_PRESSED, 10, 20), 0);
        EXPECT_EQ (field.text->active, 0);
        EXPECT_EQ (field.text->line_count, 2);
        EXPECT_GE (field.Visible (), 1);
    }
}

TEST (Texts, AnyRectangleIsDrawnWithoutHarm) {
    const int16_t sides[] = {INT16_MIN, -1, 0, 1, 2, 5, 29, 30, 31, 40, INT16_MAX};
    for (int16_t place : {(int16_t)0, (int16_t)INT16_MIN, (int16_t)INT16_MAX})
        for (int16_t w : sides)
            for (int16_t h : sides) {
                Field field;
                field.text->widget.x = field.text->widget.y = place;
                field.text->widget.w                        = w;
                field.text->widget.h                        = h;
                field.text->echo                            = 1;
                Texts::Init (field.text, field.window);
                Text::Draw (field.text);
                for (int i = 0; i < 3; i++) field.Write ("ab\tc");
                EXPECT_GE (field.Visible (), 1);
                Texts::Scroll (field.text, -1);
                field.Mouse (MOUSE_PRESSED, place, place);
                field.Mouse (MOUSE_RELEASED, place, place);
                EXPECT_EQ (field.text->line_count, 3);
            }
}

// --- pixels ----------------------------------------------------------------

TEST (Texts, FrameIsSunkenAndGroundIsTheColour) {
    Field field;
    field.text->widget.colour[0] = 200;
    field.text->widget.colour[1] = 210;
    field.text->widget.colour[2] = 120;
    field.Ready ();
    const Widget &w      = field.text->widget;
    uint32_t      ground = Drawing_Colour (200, 210, 120);
    uint32_t      dark   = Drawing_Colour (120, 130, 40);
    uint32_t      light  = Drawing_Colour (255, 255, 200);
    EXPECT_EQ (field.Pixel (w.x, w.y + 60), dark);
    EXPECT_EQ (field.Pixel (w.x + 60, w.y + w.h), dark);
    EXPECT_EQ (field.Pixel (w.x + 60, w.y), light);
    EXPECT_EQ (field.Pixel (w.x + w.w, w.y + 60), light);
    EXPECT_EQ (field.Pixel (w.x + 1, w.y + 1), ground);
    EXPECT_EQ (field.Pixel (w.x + 60, w.y + w.h - 1), ground);
    EXPECT_EQ (field.Pixel (w.x + w.w - 1, w.y + 60), ground);
    EXPECT_EQ (field.Pixel (w.x - 1, w.y + 60), field.Pixel (0, 0));
    EXPECT_EQ (field.Pixel (w.x + w.w + 1, w.y + 60), field.Pixel (0, 0));
}

TEST (Texts, TextsAreSeenInTheirColours) {
    Field field;
    field.Ready ();
    field.Write ("\x01\xF1"
                 "WWWW\n\x03\xF1WWWW\n\x04\xF1WWWW\n\x05\xF1WWWW\n\x06\xF1WWWW");
    uint32_t colours[] = {0xFF0000, 0xFFFFFF, 0x0000FF, 0x00FFFF, 0x00A000};
    for (int row = 0; row < 5; row++) {
        int bottom = field.Row_Bottom (row);
        EXPECT_GT (field.Count (colours[row], 12, bottom, 60, bottom + field.text->pitch), 3) << row;
    }
}

TEST (Texts, ScrollingErasesWhatWasThere) {
    Field field;
    field.Ready ();
    for (int i = 0; i < 40; i++) field.Write (i % 2 ? "" : "\x04\xF1WWWW");
    Texts::Scroll (field.text, -1);
    int with = field.Count (0x0000FF, 0, 0, 800, 200);
    for (int i = 0; i < 40; i++) field.Write ("");
    EXPECT_GT (with, 0);
    Texts::Scroll (field.text, 100);
    EXPECT_EQ (field.Count (0x0000FF, 0, 0, 800, 200), 0);
}

// --- slider and mouse ------------------------------------------------------

TEST (Texts, SliderLiesAlongTheRightInnerEdge) {
    Field field;
    field.Ready ();
    const Widget &slider = field.text->slider.widget;
    EXPECT_EQ (slider.w, WIDGET_SLIDER_THICKNESS);
    EXPECT_EQ (slider.x + slider.w, 10 + 300 - WIDGET_BORDER);
    EXPECT_EQ (slider.y, 20 + WIDGET_BORDER);
    EXPECT_EQ (slider.y + slider.h, 20 + 151 - WIDGET_BORDER);
}

TEST (Texts, SliderIsDisabledWhileAllLinesFit) {
    Field field;
    field.Ready ();
    EXPECT_EQ (field.text->slider.widget.state, SLIDER_VERTICAL_DISABLED);
    field.Write_Many (0, field.Visible ());
    EXPECT_EQ (field.text->slider.widget.state, SLIDER_VERTICAL_DISABLED);
    EXPECT_EQ (field.Mouse (MOUSE_PRESSED, field.Slider_X (), field.Slider_Y () + 70), 1);
    EXPECT_EQ (field.text->slider.drag, 0);
    field.Mouse (MOUSE_RELEASED, 0, 0);
    field.Write ("one more");
    EXPECT_EQ (field.text->slider.widget.state, SLIDER_VERTICAL);
    EXPECT_EQ (field.text->slider.maximum, 1);
    EXPECT_EQ (field.text->slider.value, 1);
}

TEST (Texts, SliderShowsProportionAndPlace) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 2 * field.Visible ());
    int half = field.text->slider.half;
    EXPECT_EQ (Sliders::Thumb (&field.text->slider), field.text->slider.widget.w);
    field.Write_Many (0, 2 * field.Visible ());
    EXPECT_LT (field.text->slider.half, half);
    Texts::Scroll (field.text, -1000);
    EXPECT_EQ (field.text->slider.value, 0);
    int top = Sliders::Thumb (&field.text->slider);
    EXPECT_GT (top, field.text->slider.widget.h / 2);
    Texts::Scroll (field.text, 1);
    EXPECT_LT (Sliders::Thumb (&field.text->slider), top);
}

TEST (Texts, ASmallFieldHasNoSlider) {
    for (int side = 0; side < 2; side++) {
        Field field (side ? 300 : 29, side ? 29 : 151);
        field.Ready ();
        field.Write_Many (0, 50);
        EXPECT_TRUE (field.text->slider.widget.state & WIDGET_HIDDEN);
        EXPECT_EQ (field.Mouse (MOUSE_PRESSED, field.Slider_X (), field.Slider_Y () + 10), 1);
        EXPECT_EQ (field.text->slider.drag, 0);
        EXPECT_GT (Rewritten (field).size (), 0u);
    }
}

TEST (Texts, PointerMakesItActive) {
    Field field;
    field.Ready ();
    EXPECT_EQ (field.Mouse (MOUSE_MOVED, 50, 50), 0);
    EXPECT_EQ (field.text->active, 1);
    field.Mouse (MOUSE_MOVED, 10, 20);
    EXPECT_EQ (field.text->active, 1);
    field.Mouse (MOUSE_MOVED, 9, 50);
    EXPECT_EQ (field.text->active, 0);
    field.Mouse (MOUSE_MOVED, 310, 171);
    EXPECT_EQ (field.text->active, 1);
    field.Mouse (MOUSE_HELD, 310, 172);
    EXPECT_EQ (field.text->active, 0);
}

TEST (Texts, PressesInsideAreTakenAndNoOthers) {
    Field field;
    field.Ready ();
    EXPECT_EQ (field.Mouse (MOUSE_PRESSED, 50, 50), 1);
    EXPECT_EQ (field.Mouse (MOUSE_HELD, 60, 60), 0);
    EXPECT_EQ (field.Mouse (MOUSE_RELEASED, 60, 60), 0);
    EXPECT_EQ (field.Mouse (MOUSE_PRESSED, 500, 50), 0);
    EXPECT_EQ (Text::Select (field.text, MOUSE_PRESSED), 0);
    field.text->widget.state |= WIDGET_MOUSE_IGNORED;
    EXPECT_EQ (field.Mouse (MOUSE_PRESSED, 50, 50), 0);
    EXPECT_EQ (field.text->active, 0);
}

static void Take_Thumb (Field &field) {
    const Slider &slider = field.text->slider;
    EXPECT_EQ (field.Mouse (MOUSE_PRESSED, field.Slider_X (), slider.widget.y + Sliders::Thumb (&slider) + slider.half),
               1);
    EXPECT_EQ (slider.drag, 1);
}

TEST (Texts, DraggingTheThumbScrolls) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 500);
    Take_Thumb (field);
    int before = field.text->line_top;
    EXPECT_EQ (field.Mouse (MOUSE_HELD, field.Slider_X (), 95), 1);
    EXPECT_LT (field.text->line_top, before);
    EXPECT_GT (field.text->line_top, 0);
    EXPECT_EQ (field.text->scrolled, 1);
    EXPECT_EQ (Rewritten (field)[0].text, field.Top ());
    field.Mouse (MOUSE_RELEASED, field.Slider_X (), 95);
    EXPECT_EQ (field.text->slider.drag, 0);
    EXPECT_EQ (field.Mouse (MOUSE_HELD, field.Slider_X (), 60), 0);
}

TEST (Texts, ADragGoesOnOutside) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 500);
    Take_Thumb (field);
    EXPECT_EQ (field.Mouse (MOUSE_HELD, -400, 1000), 1);
    EXPECT_EQ (field.text->line_top, 0);
    EXPECT_EQ (field.Mouse (MOUSE_HELD, 5000, -1000), 1);
    EXPECT_EQ (field.text->line_top, 500 - field.Visible ());
    EXPECT_EQ (field.text->scrolled, 0);
    field.Mouse (MOUSE_MOVED, 5000, -1000); // The release may come as a move without a button.
    EXPECT_EQ (field.text->slider.drag, 0);
    field.Write ("a");
    EXPECT_EQ (field.text->line_top, 501 - field.Visible ());
}

TEST (Texts, ADragThatBeganElsewhereIsLeftAlone) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 500);
    int top = field.text->line_top;
    field.Mouse (MOUSE_PRESSED, 600, 100);
    EXPECT_EQ (field.Mouse (MOUSE_HELD, field.Slider_X (), field.Slider_Y () + 60), 0);
    EXPECT_EQ (field.text->line_top, top);
}

TEST (Texts, ArrowsScrollALineAndTheTrackAPage) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 500);
    int last = field.text->line_top;
    int x    = field.Slider_X ();
    int y    = field.Slider_Y ();
    int h    = field.text->slider.widget.h;
    EXPECT_EQ (field.Mouse (MOUSE_PRESSED, x, y + h - 5), 1);
    field.Mouse (MOUSE_RELEASED, x, y + h - 5);
    EXPECT_EQ (field.text->line_top, last - 1);
    field.Mouse (MOUSE_PRESSED, x, y + 5);
    field.Mouse (MOUSE_RELEASED, x, y + 5);
    EXPECT_EQ (field.text->line_top, last);
    field.Mouse (MOUSE_PRESSED, x, y + h / 2);
    field.Mouse (MOUSE_RELEASED, x, y + h / 2);
    EXPECT_EQ (field.text->line_top, last - field.Visible ());
}

TEST (Texts, LinesWrittenDuringADragLeaveTheShownOnes) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 500);
    Take_Thumb (field);
    field.Mouse (MOUSE_HELD, field.Slider_X (), 95);
    std::string top = field.Top ();
    field.Write_Many (500, 100);
    EXPECT_EQ (field.Top (), top);
    EXPECT_EQ (field.text->slider.drag, 1);
    EXPECT_EQ (field.Mouse (MOUSE_HELD, field.Slider_X (), 5000), 1);
    EXPECT_EQ (field.Top (), "0");
}

// --- failures --------------------------------------------------------------

static int Count_Lines (Field &field, const std::string &line) {
    int count = 0;
    for (int i = 0; i < field.text->line_count; i++) count += field.Line (i) == line;
    return count;
}

TEST (Texts, ALineThatCanNotBeStoredIsDropped) {
    for (int n = 1;; n++) {
        long live = Memory_Live ();
        bool failed;
        {
            Field        field;
            Log_Recorder log;
            field.Ready ();
            Memory_Fail_At (n);
            field.Write ("a\nb");
            field.Write ("c");
            Text::OverWrite (field.text, "d");
            failed = Memory_Failed ();
            Memory_Fail_At (0);
            EXPECT_EQ (log.Count (LOG_ERROR, "memory error in"), failed ? 1 : 0) << n;
            EXPECT_EQ (log.lines.size (), failed ? 1u : 0u);
            EXPECT_EQ (field.text->line_count, !failed ? 3 : n == 5 ? 3 : 2) << n;
            EXPECT_EQ (Count_Lines (field, "d"), n == 5 ? 0 : 1) << n;
            field.Write ("e");
            EXPECT_EQ (field.Last (), "e");
            EXPECT_EQ ((int)Rewritten (field).size (), field.text->line_count);
        }
        EXPECT_EQ (Memory_Live (), live);
        if (!failed) break;
    }
}

TEST (Texts, MemoryFailuresHaveTheirFixedTexts) {
    Field        field;
    Log_Recorder log;
    field.Ready ();
    Memory_Fail_At (1);
    field.Write ("a");
    EXPECT_EQ (log.Count (LOG_ERROR, "of texts \nmemory error in calloc (var=text->lines, dim=10000x"), 1);
    log.Clear ();
    Memory_Fail_At (2);
    field.Write ("a");
    Memory_Fail_At (0);
    EXPECT_EQ (log.Count (LOG_ERROR, "of texts \nmemory error in strdup (var=text->lines[].text)"), 1);
}

TEST (Texts, AFullListThatCanNotStoreLosesNothing) {
    Field        field;
    Log_Recorder log;
    field.Ready ();
    field.Write_Many (0, TEXT_LINES);
    Memory_Fail_At (1);
    field.Write ("lost");
    Memory_Fail_At (0);
    EXPECT_EQ (field.Line (0), "0");
    EXPECT_EQ (field.Last (), "9999");
}

static Text_Widget *reported_to;

static int Report_Into_Field (Window, int, const char *text) {
    Text::Write (reported_to, text);
    return 1;
}

TEST (Texts, ReportsOfAFailureDoNotComeBack) {
    Field field;
    field.Ready ();
    reported_to = field.text;
    Log_Recorder log;
    Log_Sink_Set (Report_Into_Field);
    Memory_Fail_At (1);
    field.Write ("a");
    Memory_Fail_At (0);
    EXPECT_EQ (field.text->line_count, 0);
    field.Write ("b");
    EXPECT_EQ (field.Last (), "b");
    EXPECT_EQ (field.text->line_count, 1);
}

TEST (Texts, AWarningOfTheCheckDoesNotComeBack) {
    Field field;
    reported_to = field.text;
    Log_Recorder log (1);
    Log_Sink_Set (Report_Into_Field);
    field.Write ("a");
    EXPECT_EQ (field.text->line_count, 1);
}

TEST (Texts, InitSurvivesEveryMemoryFailure) {
    for (int n = 1;; n++) {
        long live = Memory_Live ();
        bool failed;
        {
            Field        field;
            Log_Recorder log;
            Memory_Fail_At (n);
            Texts::Init (field.text, field.window);
            failed = Memory_Failed ();
            Memory_Fail_At (0);
            Text::Draw (field.text);
            field.Write ("a");
            Texts::Init (field.text, field.window);
            EXPECT_EQ (Joined (Texts_Drawn ([&] { Text::Draw (field.text); })), "a|") << n;
        }
        EXPECT_EQ (Memory_Live (), live);
        if (!failed) break;
    }
}

TEST (Texts, ExitLeavesAFieldThatWasNeverInitialised) {
    Field field;
    field.Ready ();
    field.Write_Many (0, 100);
    Texts::Scroll (field.text, -3);
    Texts::Exit (field.text);
    EXPECT_EQ (field.text->line_count, 0);
    EXPECT_EQ (field.text->line_top, 0);
    EXPECT_EQ (field.text->widget.validity, 0);
    EXPECT_FALSE (field.text->lines || field.text->normal || field.text->bold || field.text->oblique);
    Texts::Exit (field.text);
    field.Ready ();
    field.Write ("again");
    EXPECT_EQ (Joined (Rewritten (field)), "again|");
}

// --- typed line ------------------------------------------------------------

enum : int {
    LEFT      = KEY_MOVEMENT + WINDOW_KEY_LEFT,
    RIGHT     = KEY_MOVEMENT + WINDOW_KEY_RIGHT,
    HOME      = KEY_MOVEMENT + WINDOW_KEY_HOME,
    END       = KEY_MOVEMENT + WINDOW_KEY_END,
    DELETE    = KEY_MOVEMENT + WINDOW_KEY_DELETE,
    BACKSPACE = KEY_CHARACTER + 8,
    ENTER     = KEY_CHARACTER + 13,
    ESCAPE    = KEY_CHARACTER + 27
};

static void Type (Field &field, const std::vector<int> &keys) {
    for (int key : keys) EXPECT_EQ (Texts::Read_Echo (field.text, key < 0x100 ? KEY_CHARACTER + key : key), 0) << key;
}

// The typed line with a bar where the cursor stands.
static std::string Typed (Field &field) {
    std::string line = field.text->text;
    return line.insert (field.text->cursor, "|");
}

TEST (TextsEcho, EditsALine) {
    struct {
        std::vector<int> keys;
        const char      *line;
    } cases[] = {
        {{'a', 'b'}, "ab|"},
        {{'a', 'b', LEFT, 'c'}, "ac|b"},
        {{'a', 'b', LEFT, LEFT, LEFT, 'c'}, "c|ab"},
        {{'a', 'b', LEFT, RIGHT, RIGHT, 'c'}, "abc|"},
        {{'a', 'b', HOME, 'c'}, "c|ab"},
        {{'a', 'b', HOME, END, 'c'}, "abc|"},
        {{'a', 'b', 'c', BACKSPACE}, "ab|"},
        {{'a', 'b', 'c', LEFT, BACKSPACE}, "a|c"},
        {{'a', HOME, BACKSPACE}, "|a"},
        {{'a', 'b', 'c', HOME, DELETE}, "|bc"},
        {{'a', 'b', 'c', LEFT, DELETE}, "ab|"},
        {{'a', DELETE}, "a|"},
        {{'a', 'b', LEFT, ESCAPE}, "|"},
        {{ESCAPE, BACKSPACE, DELETE, LEFT, RIGHT, HOME, END}, "|"},
        {{0xE9, 'x'}, "\xC3\xA9x|"},
        {{'x', 0xE9, LEFT, LEFT, RIGHT, 'y'}, "xy|\xC3\xA9"},
        {{'x', 0xFF, BACKSPACE}, "x|"},
        {{0xF1, 0xA0, HOME, DELETE}, "|\xC2\xA0"},
        {{1, 9, 10, 31, 127, 128, 159, 0x1FF, 0x300, 0x400, -5}, "|"},
        {{'a', KEY_MOVEMENT + WINDOW_KEY_UP, KEY_MOVEMENT + WINDOW_KEY_PAGE_DOWN, KEY_MOVEMENT, 0}, "a|"},
    };
    for (const auto &one : cases) {
        Field field;
        field.text->echo = 1;
        field.Ready ();
        Type (field, one.keys);
        EXPECT_EQ (Typed (field), one.line);
    }
}

TEST (TextsEcho, TakesNothingWhileOff) {
    Field field;
    field.Ready ();
    Type (field, {'a', ENTER});
    EXPECT_EQ (Typed (field), "|");
}

TEST (TextsEcho, EnterCompletesTheLine) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    EXPECT_EQ (Texts::Read_Echo (field.text, ENTER), 1);
    Type (field, {'a', 'b', LEFT});
    EXPECT_EQ (Texts::Read_Echo (field.text, ENTER), 1);
    EXPECT_STREQ (field.text->text, "ab");
}

TEST (TextsEcho, ALineHolds255Bytes) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    Type (field, std::vector<int> (300, 'a'));
    EXPECT_EQ (std::string (field.text->text), std::string (255, 'a'));
    Type (field, {BACKSPACE, 0xE9}); // Two bytes don't fit into one.
    EXPECT_EQ (std::string (field.text->text), std::string (254, 'a'));
    Type (field, {HOME, 'b', 'c'});
    EXPECT_EQ (std::string (field.text->text), "b" + std::string (254, 'a'));
}

TEST (TextsEcho, BytesThatAreNoTextAreEditedOneByOne) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    strcpy (field.text->text, "\xE2\x82\x80\x80z\xF0\x9F");
    field.text->cursor = 7;
    Type (field, {BACKSPACE, BACKSPACE, LEFT, BACKSPACE, BACKSPACE});
    EXPECT_EQ (Typed (field), "|z");
}

TEST (TextsEcho, RescaleFindsACharactersStart) {
    struct {
        const char *line;
        int         cursor, expected;
    } cases[] = {
        {"abc", 2, 2},
        {"abc", 3, 3},
        {"abc", 4, 3},
        {"abc", INT32_MAX, 3},
        {"abc", -1, 0},
        {"abc", INT32_MIN, 0},
        {"", 5, 0},
        {"\xC3\xA9z", 1, 0},
        {"\xC3\xA9z", 2, 2},
        {"\xF0\x9F\x98\x80", 3, 0},
        {"\xF0\x9F\x98\x80", 4, 4},
        {"\x80\x80", 1, 1},
        {"\xE2\x82", 1, 1},
    };
    for (const auto &one : cases) {
        Field field;
        strcpy (field.text->text, one.line);
        field.text->cursor = one.cursor;
        Texts::Rescale_Cursor (field.text);
        EXPECT_EQ (field.text->cursor, one.expected) << one.line << " " << one.cursor;
    }
}

TEST (TextsEcho, ALineWithoutItsZeroIsEnded) {
    Field field;
    field.text->echo = 1;
    memset (field.text->text, 'a', TEXT_SIZE);
    field.text->cursor = TEXT_SIZE;
    field.Ready ();
    EXPECT_EQ (field.text->cursor, 255);
    memset (field.text->text, '\xF4', TEXT_SIZE);
    Type (field, {LEFT, RIGHT, BACKSPACE, DELETE, 'x', END});
    EXPECT_EQ (field.text->text[TEXT_SIZE - 1], 0);
}

TEST (TextsEcho, ACursorOutOfBoundsIsDrawnWithinThem) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    strcpy (field.text->text, "ab");
    for (int cursor : {INT32_MIN, -1, 3, INT32_MAX}) {
        int x              = 12 + (cursor < 0 ? 0 : field.Width (field.text->normal, "ab"));
        field.text->cursor = cursor;
        Texts::Re_Write (field.text);
        EXPECT_EQ (field.Count (0, x, field.Row_Bottom (0), x + 1, field.Row_Bottom (0) + field.text->pitch),
                   field.text->pitch);
    }
}

TEST (TextsEcho, StandsBelowTheLinesWithACursor) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    field.Write ("a\nb");
    Type (field, {'x', 'y', LEFT});
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (Joined (texts), "a|b|xy|");
    EXPECT_EQ (texts[2].call.x, 12);
    EXPECT_EQ (texts[2].call.y, field.Row_Bottom (2));
    int x = 12 + field.Width (field.text->normal, "x");
    EXPECT_EQ (field.Count (0, x, field.Row_Bottom (2), x + 1, field.Row_Bottom (1)), field.text->pitch);
    Type (field, {HOME});
    EXPECT_EQ (field.Count (0, 12, field.Row_Bottom (2), 13, field.Row_Bottom (1)), field.text->pitch);
}

TEST (TextsEcho, TypingDrawsItsLineOnly) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    field.Write ("a\nb");
    EXPECT_EQ (Joined (Texts_Drawn ([&] { Type (field, {'x'}); })), "x|");
    EXPECT_EQ (Joined (Texts_Drawn ([&] { field.Write ("c"); })), "c|x|");
}

TEST (TextsEcho, KeepsTheLastRow) {
    Field field;
    field.Ready ();
    int rows         = field.Visible ();
    field.text->echo = 1;
    EXPECT_EQ (field.Visible (), rows - 1);
    field.Ready ();
    field.Write_Many (0, 100);
    Type (field, {'x'});
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ ((int)texts.size (), rows);
    EXPECT_EQ (texts[rows - 2].text, "99");
    EXPECT_EQ (texts[rows - 1].text, "x");
    EXPECT_EQ (texts[rows - 1].call.y, field.Row_Bottom (rows - 1));
    Texts::Scroll (field.text, -3);
    EXPECT_EQ (Rewritten (field).back ().text, "x");
}

TEST (TextsEcho, ALongLineIsShownAroundItsCursor) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    Type (field, std::vector<int> (200, 'w'));
    std::vector<Drawn> texts = Rewritten (field);
    ASSERT_EQ (texts.size (), 1u);
    EXPECT_LT (texts[0].call.x, 0);
    int x = texts[0].call.x + field.Width (field.text->normal, std::string (200, 'w'));
    EXPECT_GT (x, field.Inner_Right () - 10);
    EXPECT_LT (x, field.Inner_Right ());
    Type (field, {HOME});
    EXPECT_EQ (Rewritten (field)[0].call.x, 12);
}

TEST (TextsEcho, DisplayCodesAreNotInterpreted) {
    Field field;
    field.text->echo = 1;
    field.Ready ();
    strcpy (field.text->text, "a\xF1"
                              "b\tc");
    std::vector<Drawn> texts = Rewritten (field);
    EXPECT_EQ (Joined (texts), "a\xF1"
                               "b\tc|");
}
