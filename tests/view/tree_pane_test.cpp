#include <gtest/gtest.h>

#include "compare/attribute_comparison.h"
#include "tests/support/log_recorder.h"
#include "tests/view/shown.h"
#include "tools/icon.h"
#include "util/memory.h"
#include "util/my_error_fct.h"

static const uint32_t RED   = Drawing_Colour (255, 0, 0);
static const uint32_t WHITE = Drawing_Colour (255, 255, 255);
static const uint32_t PANE  = Drawing_Colour (VIEW_PANE_COLOUR[0], VIEW_PANE_COLOUR[1], VIEW_PANE_COLOUR[2]);

// Where an upright line begins, and whether it is there.
static int Upright (const Watched &watched, int x, int from, int to, uint32_t colour = VIEW_BLUE) {
    return watched.Lines (x, from, x, to, colour);
}

// A text of the tree pane at this place, in this font and colour.
static ::testing::AssertionResult Has_Text (const Watched &watched, const char *text, int x, int y,
                                            View::View_Font font, uint32_t colour) {
    for (const Drawn &call : watched.calls)
        if (call.kind == Device::CALL_TEXT && call.text == text && call.x == x && call.y == y &&
            call.font == View::Font (font) && call.colour == colour)
            return ::testing::AssertionSuccess ();
    const Drawn *other = watched.Text (text);
    if (!other) return ::testing::AssertionFailure () << "never drawn: " << text;
    return ::testing::AssertionFailure () << text << " at " << other->x << ", " << other->y << " in " << std::hex
                                          << other->colour << ", expected " << std::dec << x << ", " << y;
}

// --- heading ---------------------------------------------------------------

TEST (TreePane, HeadingStandsOnItsBaseLine) {
    Shown   shown;
    Watched watched;
    View::Redraw_All ();
    const Widget        &tree = Result.tree.widget;
    Drawing_Font_Metrics metrics;
    Device::Begin (shown.window, nullptr, "");
    Device::Font_Measure (View::Font (View::FONT_BOLD), &metrics);
    Device::End ();
    const int y = tree.y + tree.h - 14 - metrics.descent;
    EXPECT_TRUE (Has_Text (watched, "Type   (----tag----)", 20, y, View::FONT_BOLD, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "VR", 282, y, View::FONT_BOLD, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "size", 308, y, View::FONT_BOLD, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "diff", 358, y, View::FONT_BOLD, VIEW_BLACK));
    for (int x : {0, 500, 1000})
        EXPECT_TRUE (Has_Text (watched, std::string (126, ' ').c_str (), x, y, View::FONT_BOLD, VIEW_BLACK));
}

TEST (TreePane, HeadingFollowsTheHorizontalSlider) {
    Shown shown;
    shown.Place (300, 600);
    Result.tree_slider.value = 50.75f;
    Watched watched;
    View::Redraw_All ();
    ASSERT_NE (nullptr, watched.Text ("VR"));
    EXPECT_EQ (282 - 50, watched.Text ("VR")->x);
}

// --- texts -----------------------------------------------------------------

TEST (TreePane, AttributeInItsColumns) {
    Shown      shown;
    Attribute *record = shown.Record (0x0008, 0x103E, DIFFERENCE_BYTES, "LO", 24);
    record->diff_a    = 5;
    shown.Build (record);
    Rows.rows[1].name = nullptr;
    Watched watched;
    View::Redraw_All ();
    const int y = shown.Band (1) - 4;
    EXPECT_TRUE (Has_Text (watched, "(0008,103E)", 12 + 18 + 28, y, View::FONT_REGULAR, VIEW_BLACK));
    const int vr = shown.Width (View::Font (View::FONT_REGULAR), "LO");
    EXPECT_TRUE (Has_Text (watched, "LO", 12 + 290 - vr, y, View::FONT_REGULAR, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "24", 12 + 300, y, View::FONT_REGULAR, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "5 bytes diff.", 12 + 330, y, View::FONT_REGULAR, VIEW_BLACK));
}

TEST (TreePane, WideSizePushesTheDifferenceLabel) {
    Shown      shown;
    Attribute *record = shown.Record (0x0008, 0x103E, DIFFERENCE_LENGTH);
    record->diff_a    = 1000000;
    record->diff_b    = 2000000;
    shown.Build (record);
    Watched watched;
    View::Redraw_All ();
    const int size = shown.Width (View::Font (View::FONT_REGULAR), "1000000/vs/2000000");
    ASSERT_GT (size + 10, 30);
    EXPECT_TRUE (Has_Text (watched, "different data size", 12 + 300 + size + 10, shown.Band (1) - 4, View::FONT_REGULAR,
                           VIEW_BLACK));
}

TEST (TreePane, RootAndItemsShowTheirNames) {
    Shown shown;
    shown.Build (shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100, DIFFERENCE_ONLY_A)}), "title");
    shown.Unfold_All ();
    Watched watched;
    View::Redraw_All ();
    EXPECT_TRUE (Has_Text (watched, "title", 12 + 28, shown.Band (0) - 4, View::FONT_REGULAR, VIEW_BLUE));
    EXPECT_TRUE (Has_Text (watched, "(1 diff)", 12 + 18 + 118, shown.Band (1) - 4, View::FONT_REGULAR, VIEW_BLACK));
    EXPECT_TRUE (
        Has_Text (watched, "Item 1 (1 diff)", 12 + 36 + 28, shown.Band (2) - 4, View::FONT_REGULAR, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "(0008,0100)", 12 + 54 + 28, shown.Band (3) - 4, View::FONT_REGULAR, VIEW_BLACK));
    EXPECT_EQ (0, watched.Count ("inside item"));
}

TEST (TreePane, SelectedRowIsBold) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0x0008, 0x0001), shown.Record (0x0008, 0x0002)}));
    Rows_Select (2);
    Watched watched;
    View::Redraw_All ();
    EXPECT_TRUE (Has_Text (watched, "(0008,0001)", 58, shown.Band (1) - 4, View::FONT_REGULAR, VIEW_BLUE));
    EXPECT_TRUE (Has_Text (watched, "(0008,0002)", 58, shown.Band (2) - 4, View::FONT_BOLD, VIEW_BLUE));
}

TEST (TreePane, IncludeEntryHasNoTagNorLabels) {
    Shown      shown;
    Attribute *record   = shown.Record (0xFFFF, 0xFFFF, DIFFERENCE_FILE_ONLY, "UN", 4321);
    record->description = shown.Text ("Patient Module");
    shown.Build (record);
    Watched watched;
    View::Redraw_All ();
    EXPECT_TRUE (Has_Text (watched, "include Patient Module", 58, shown.Band (1) - 4, View::FONT_REGULAR, VIEW_YELLOW));
    EXPECT_EQ (0, watched.Count ("(FFFF,FFFF)"));
    EXPECT_EQ (0, watched.Count ("UN"));
    EXPECT_EQ (0, watched.Count ("4321"));
    EXPECT_EQ (0, watched.Count ("not in modality definition"));
    EXPECT_EQ (0, watched.Count (Device::CALL_IMAGE));
}

TEST (TreePane, IncludeEntryWithoutNameAndWithALongOne) {
    Shown      shown;
    Attribute *nameless = shown.Record (0xFFFF, 0xFFFF), *long_one = shown.Record (0xFFFF, 0xFFFF);
    long_one->description = shown.Text (std::string (170, 'n'));
    shown.Build (shown.List ({nameless, long_one}));
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count ("include "));
    EXPECT_EQ (1, watched.Count ("include " + std::string (170, 'n')));
}

// Only one of group and element is no include entry.
TEST (TreePane, HalfAnIncludeTagIsATag) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0xFFFE, 0xFFFF), shown.Record (0xFFFF, 0xFFFE)}));
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count ("(FFFE,FFFF)"));
    EXPECT_EQ (1, watched.Count ("(FFFF,FFFE)"));
}

TEST (TreePane, ColourOfEveryCode) {
    struct {
        int      code;
        uint32_t colour;
    } const colours[] = {{0, VIEW_BLUE},        {1, VIEW_GREEN},       {2, VIEW_BLACK},     {4, VIEW_BLACK},
                         {8, VIEW_BLACK},       {16, VIEW_BLACK},      {32, VIEW_BLACK},    {64, VIEW_YELLOW},
                         {128, VIEW_BLACK},     {256, VIEW_BLACK},     {512, VIEW_BLACK},   {2 | 8, VIEW_BLACK},
                         {1 | 64, VIEW_GREEN},  {64 | 2, VIEW_YELLOW}, {0x8000, VIEW_BLUE}, {0x8001, VIEW_GREEN},
                         {0x8040, VIEW_YELLOW}, {0x8010, VIEW_BLACK}};
    Shown                    shown;
    std::vector<Attribute *> list;
    for (const auto &entry : colours) {
        list.push_back (shown.Record (0x0011, static_cast<uint16_t> (entry.code), static_cast<uint16_t> (entry.code)));
    }
    shown.Build (shown.List (list));
    Watched watched;
    View::Redraw_All ();
    for (const auto &entry : colours) {
        char tag[16];
        snprintf (tag, sizeof tag, "(0011,%04X)", static_cast<unsigned> (entry.code));
        ASSERT_NE (nullptr, watched.Text (tag)) << tag;
        EXPECT_EQ (entry.colour, watched.Text (tag)->colour) << tag;
    }
}

// The texts of one line in their order: tag, VR, size, difference.
TEST (TreePane, CombinedDifferencesRepeatTheLabelsBefore) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0x0008, 0x0001, DIFFERENCE_ONLY_A, "PN", 11),
                              shown.Record (0x0008, 0x0002, DIFFERENCE_BYTES | DIFFERENCE_VR, "UT", 99)}));
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (2, watched.Count ("PN"));
    EXPECT_EQ (0, watched.Count ("UT"));
    EXPECT_EQ (2, watched.Count ("11"));
    EXPECT_EQ (2, watched.Count ("absent in B"));
}

TEST (TreePane, UsedByFileRepeatsTheVrOnly) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0x0008, 0x0001, DIFFERENCE_NONE, "PN", 11),
                              shown.Record (0x0008, 0x0002, DIFFERENCE_FILE_AND_DEFINITION, "UT", 99)}));
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (2, watched.Count ("PN"));
    EXPECT_EQ (1, watched.Count ("99"));
    EXPECT_EQ (1, watched.Count ("used by file"));
}

// Also those of the repaint before: the first line's are then the last line's.
TEST (TreePane, LabelsOutliveTheRepaint) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0x0008, 0x0001, DIFFERENCE_BYTES | DIFFERENCE_VR, "UT", 99),
                              shown.Record (0x0008, 0x0002, DIFFERENCE_ONLY_A, "PN", 11)}));
    View::Redraw_All ();
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (2, watched.Count ("PN"));
    EXPECT_EQ (2, watched.Count ("11"));
    EXPECT_EQ (1, watched.Count ("absent in B")); // The root has an empty label of its own.
}

// Only the second pass makes them, a row once.
TEST (TreePane, RowsAboveTheFirstLineMakeNoLabels) {
    Shown                    shown (1400, 300);
    std::vector<Attribute *> list;
    for (int i = 0; i < 100; i++)
        list.push_back (shown.Record (0x0009, static_cast<uint16_t> (i), DIFFERENCE_BYTES | DIFFERENCE_VR, "UT", 99));
    list[0]->flags   = DIFFERENCE_ONLY_A;
    list[0]->vr_file = VR_PN;
    list[40]->flags  = DIFFERENCE_ONLY_B;
    shown.Build (shown.List (list));
    shown.Scroll (18 * 38);
    Watched watched;
    shown.Scroll (18 * 60);
    EXPECT_EQ (0, watched.Count ("absent in B"));
    EXPECT_GT (watched.Count ("absent in A"), 5); // Of the repaint before.
}

// The label of an item is made though it isn't shown.
TEST (TreePane, ItemsTakePartInTheLabels) {
    Shown shown;
    shown.Build (shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100, DIFFERENCE_BYTES | DIFFERENCE_VR)}));
    shown.Unfold_All ();
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, watched.Count ("inside item"));
}

TEST (TreePane, HorizontalScrollMovesTheColumnsToo) {
    Shown shown;
    shown.Place (300, 600);
    shown.Build (shown.Record (0x0008, 0x0001, DIFFERENCE_ONLY_A, "PN", 11));
    Result.tree_slider.value = 100;
    Watched watched;
    View::Redraw_All ();
    EXPECT_TRUE (Has_Text (watched, "(0008,0001)", 58 - 100, shown.Band (1) - 4, View::FONT_REGULAR, VIEW_BLACK));
    EXPECT_TRUE (Has_Text (watched, "11", 312 - 100, shown.Band (1) - 4, View::FONT_REGULAR, VIEW_BLACK));
}

// --- connectors ------------------------------------------------------------

TEST (TreePane, AttributesAreJoined) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0x0008, 0x0001), shown.Record (0x0008, 0x0002)}));
    Watched watched;
    View::Redraw_All ();
    const int x = 12 + 7, a = shown.Band (1), b = shown.Band (2);
    EXPECT_EQ (1, Upright (watched, x, a + 4, a + 18));
    EXPECT_EQ (1, watched.Lines (x, a + 4, x + 12, a + 4, VIEW_BLUE));
    EXPECT_EQ (1, Upright (watched, x, a, a + 5));
    EXPECT_EQ (1, Upright (watched, x, b + 4, b + 18));
    EXPECT_EQ (1, watched.Lines (x, b + 4, x + 12, b + 4, VIEW_BLUE));
    EXPECT_EQ (0, Upright (watched, x, b, b + 5)); // The last one.

    for (int y = b + 4; y < a + 17; y++) EXPECT_EQ (VIEW_BLUE, shown.Pixel (x, y)) << y - b;
    EXPECT_EQ (PANE, shown.Pixel (x, b + 3));
    EXPECT_EQ (VIEW_BLUE, shown.Pixel (x + 9, b + 4));
    EXPECT_EQ (PANE, shown.Pixel (x + 9, b + 5));
    EXPECT_EQ (PANE, shown.Pixel (x + 9, b + 3));
}

TEST (TreePane, BoxesShowFoldingAndJoinTheirNeighbours) {
    Shown shown;
    shown.Build (
        shown.List ({shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100)}), shown.Record (0x0010, 0x0010)}));
    const int x = 12, b = shown.Band (1), middle = b + 5;
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 3, middle));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 11, middle));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 7, b + 1));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 7, b + 9));
    EXPECT_EQ (WHITE, shown.Pixel (x + 4, b + 2));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 7, middle)); // A plus sign.
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 5, middle));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 9, middle));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 7, middle + 2));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 7, middle - 2));
    EXPECT_EQ (VIEW_BLUE, shown.Pixel (x + 7, b));
    for (int y = b + 10; y < b + 17; y++) EXPECT_EQ (VIEW_BLUE, shown.Pixel (x + 7, y)) << y - b;
    for (int i = 12; i < 17; i++) EXPECT_EQ (VIEW_BLUE, shown.Pixel (x + i, middle)) << i;

    shown.Unfold_All ();
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 5, middle)); // A minus sign.
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (x + 9, middle));
    EXPECT_EQ (WHITE, shown.Pixel (x + 7, middle + 2));
    EXPECT_EQ (WHITE, shown.Pixel (x + 7, middle - 2));
}

// A line beside the rows of a container, as long as another row of its level follows.
TEST (TreePane, AncestorsAreDrawnUntilTheirLastRow) {
    Shown      shown;
    Attribute *deep = shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100), shown.Record (0x0008, 0x0100)});
    shown.Build (shown.List ({deep, shown.Sequence (0x0010, 0x1002, {shown.Record (0x0010, 0x0020)})}));
    shown.Unfold_All ();
    Watched watched;
    View::Redraw_All ();
    // Lines: 1 sequence, 2 item, 3 attribute, 4 last item, 5 attribute, 6 last sequence, 7 last item, 8 attribute.
    auto ancestor = [&] (int line, int level) {
        return Upright (watched, 12 + 7 + 18 * level, shown.Band (line), shown.Band (line) + 19);
    };
    for (int line : {2, 3, 4, 5}) EXPECT_EQ (1, ancestor (line, 0)) << line;
    for (int line : {7, 8}) EXPECT_EQ (0, ancestor (line, 0)) << line;
    EXPECT_EQ (0, ancestor (1, 0)); // Its own level is no ancestor.
    EXPECT_EQ (0, ancestor (2, 1));
    EXPECT_EQ (1, ancestor (3, 1));
    EXPECT_EQ (0, ancestor (5, 1));
    EXPECT_EQ (0, ancestor (8, 1));
    for (int line = 0; line < 9; line++) EXPECT_EQ (0, ancestor (line, 2)) << line;
}

// Below the heading a strip of the line above may be seen: there only what leads on to it is drawn, no half boxes.
TEST (TreePane, LineAboveTheFirstOneHasUprightLinesOnly) {
    Shown                    shown (1400, 300);
    std::vector<Attribute *> list;
    for (int i = 0; i < 30; i++)
        list.push_back (shown.Sequence (0x0009, static_cast<uint16_t> (i), {shown.Record (0x0008, 0x0100)}));
    shown.Build (shown.List (list));
    shown.Scroll (18 * 3);
    const Widget &tree = Result.tree.widget;
    const int     x = 12 + 7, low = shown.Band (3) + 18, high = tree.y + tree.h - VIEW_HEADING;
    ASSERT_LT (low + 3, high);
    for (int y = low; y < high - 1; y++) {
        EXPECT_EQ (VIEW_BLUE, shown.Pixel (x, y)) << y - low;
        for (int beside = 1; beside < 20; beside++) {
            EXPECT_EQ (PANE, shown.Pixel (x + beside, y)) << beside << " " << y - low;
            EXPECT_EQ (PANE, shown.Pixel (x - beside / 2 - 1, y)) << beside << " " << y - low;
        }
    }

    // Line 2 is the item in which line 3, the last one of its level, stands; its sequence is the last one, too.
    shown.Build (shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100)}));
    shown.Unfold_All ();
    Watched watched;
    shown.Scroll (18 * 3);
    for (int level = 0; level < 3; level++)
        EXPECT_EQ (0, Upright (watched, x + 18 * level, shown.Band (2), shown.Band (2) + 19)) << level;
}

// What has been scrolled away still decides which levels have ended.
TEST (TreePane, AncestorsAboveTheFirstLineCount) {
    Shown                    shown (1400, 400);
    std::vector<Attribute *> members;
    for (int i = 0; i < 100; i++) members.push_back (shown.Record (0x0009, static_cast<uint16_t> (i)));
    Attribute *open = shown.Sequence (0x0008, 0x1140, {shown.List (members), shown.Record (0x0008, 0x0100)});
    shown.Build (shown.List ({open, shown.Record (0x0010, 0x0010)}));
    shown.Unfold_All ();
    Result.vertical.value = 18 * 50;
    Watched watched;
    View::Redraw_All ();
    for (int line : {50, 55}) {
        EXPECT_EQ (1, Upright (watched, 12 + 7, shown.Band (line), shown.Band (line) + 19));
        EXPECT_EQ (1, Upright (watched, 12 + 7 + 18, shown.Band (line), shown.Band (line) + 19));
    }
    EXPECT_EQ (1, Upright (watched, 12 + 7, shown.Band (49), shown.Band (49) + 19)); // Above the first one seen,
    EXPECT_EQ (0, Upright (watched, 12 + 7, shown.Band (48), shown.Band (48) + 19)); // and no further.
}

TEST (TreePane, RootHasNoConnector) {
    Shown shown;
    shown.Build (nullptr);
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (0, watched.Count (Device::CALL_LINE));
}

TEST (TreePane, MarkRowHasARedMarkAndConnectors) {
    Shown shown;
    shown.Build (shown.List ({shown.Record (0x0008, 0x0001), shown.Record (0x0008, 0x0002)}));
    Rows.rows[1].kind = ROW_MARK;
    Watched watched;
    View::Redraw_All ();
    const int x = 12, b = shown.Band (1);
    EXPECT_EQ (1, Upright (watched, x + 7, b + 4, b + 18));
    EXPECT_EQ (1, watched.Lines (x + 7, b + 4, x + 19, b + 4, VIEW_BLUE));
    EXPECT_EQ (1, Upright (watched, x + 7, b, b + 5));
    EXPECT_EQ (RED, shown.Pixel (x + 7, b + 4));
    EXPECT_EQ (RED, shown.Pixel (x + 3, b));
    EXPECT_EQ (RED, shown.Pixel (x + 3, b + 8));
    EXPECT_EQ (RED, shown.Pixel (x + 11, b));
    EXPECT_EQ (RED, shown.Pixel (x + 11, b + 8));
    for (const Drawn &call : watched.calls) {
        if (call.kind != Device::CALL_LINE || call.colour != RED) continue;
        EXPECT_GE (call.x, x + 1);
        EXPECT_LE (call.w, x + 13);
    }
}

// --- icons -----------------------------------------------------------------

static std::vector<std::string> Icons_Drawn (const Log_Recorder &log) {
    static const std::string start = "in Icon_Draw_Image(";
    std::vector<std::string> names;
    for (const Log_Line &line : log.lines)
        if (line.text.compare (0, start.size (), start) == 0)
            names.push_back (
                line.text.substr (line.text.find (',') + 1, line.text.rfind (')') - line.text.find (',') - 1));
    return names;
}

TEST (TreePane, IconFollowsTheType) {
    Shown                    shown;
    std::vector<Attribute *> list;
    for (const char *type : {"1 ", "1C", "2 ", "2C", "3 ", "4 ", ""}) {
        list.push_back (shown.Record (0x0008, 0x0001));
        list.back ()->type = *type ? Code (type[0], type[1]) : static_cast<uint16_t> (0);
    }
    shown.Build (shown.List (list));
    Log_Recorder log (5);
    Watched      watched;
    View::Redraw_All ();
    EXPECT_EQ ((std::vector<std::string> {"icon_type_1.tga", "icon_type_1C.tga", "icon_type_2.tga", "icon_type_2C.tga",
                                          "icon_type_3.tga", "icon_type_0.tga", "icon_type_0.tga"}),
               Icons_Drawn (log));
    int line = 1;
    for (const Drawn &call : watched.calls) {
        if (call.kind != Device::CALL_IMAGE) continue;
        EXPECT_EQ (12 + 18 - 1, call.x);
        EXPECT_EQ (shown.Band (line++) - 3, call.y);
    }
    EXPECT_EQ (8, line);
}

TEST (TreePane, ItemHasADot) {
    Shown shown;
    shown.Build (shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100)}));
    shown.Unfold_All ();
    Log_Recorder log (5);
    Watched      watched;
    View::Redraw_All ();
    EXPECT_EQ ((std::vector<std::string> {"icon_type_0.tga", "icon_dot.tga", "icon_type_0.tga"}), Icons_Drawn (log));
    int found = 0;
    for (const Drawn &call : watched.calls)
        found += call.kind == Device::CALL_IMAGE && call.x == 12 + 36 && call.y == shown.Band (2) - 1;
    EXPECT_EQ (1, found);
}

static void Forget_Icons () {
    static const std::string folder = std::string (TAGWRIGHT_SOURCE_DIR) + "/";
    Icon_Free_All ();
    Icon_Install_Path_Set (folder.c_str ());
}

// Reading an icon begins the session anew; what follows is clipped as before.
TEST (TreePane, FirstReadingOfAnIconKeepsTheClip) {
    Shown shown;
    shown.Build (shown.Record (0x0008, 0x0001));
    Forget_Icons ();
    Watched watched;
    View::Redraw_All ();
    const Widget &tree  = Result.tree.widget;
    Drawn         clip  = {};
    int           image = 0;
    for (const Drawn &call : watched.calls) {
        if (call.kind == Device::CALL_CLIP) clip = call;
        if (call.kind != Device::CALL_IMAGE) continue;
        image++;
        EXPECT_EQ (tree.y + tree.h - VIEW_HEADING, clip.y + clip.h + 1);
        EXPECT_EQ (tree.y + VIEW_STRIP, clip.y + 1);
        EXPECT_EQ (tree.x + tree.w - VIEW_STRIP, clip.x + clip.w);
    }
    EXPECT_EQ (1, image);
    EXPECT_EQ (watched.Count (Device::CALL_BEGIN), watched.Count (Device::CALL_END));
    EXPECT_FALSE (Device::Is_Open ());
}

// Lines, images and texts of a pane's rows that were drawn under another clip than that of its lines.
static int Drawn_Beside_The_Lines (const Watched &watched) {
    const Widget &tree  = Result.tree.widget;
    Drawn         clip  = {};
    int           clips = 0, wrong = 0;
    for (const Drawn &call : watched.calls) {
        if (call.kind == Device::CALL_CLIP_ALL) break; // The tree pane is done.
        if (call.kind == Device::CALL_CLIP) {
            clip = call;
            clips++;
        }
        if (clips < 2 || (call.kind != Device::CALL_LINE && call.kind != Device::CALL_IMAGE &&
                          call.kind != Device::CALL_TEXT && call.kind != Device::CALL_FILL))
            continue; // The heading's clip is the first one.
        wrong += clip.y + clip.h + 1 != tree.y + tree.h - VIEW_HEADING || clip.y + 1 != tree.y + VIEW_STRIP ||
                 clip.x + clip.w != tree.x + tree.w - VIEW_STRIP || clip.x != tree.x + 1;
    }
    return wrong;
}

// Wherever the memory for an icon is missing, it may be read once more when it is drawn.
TEST (TreePane, ReadingOfAnIconWithoutMemoryKeepsTheClip) {
    Shown shown (1400, 300);
    shown.Many (30);
    shown.Scroll (9); // A line is cut by the heading.
    int n = 0;
    for (int failed = 1; failed;) {
        Forget_Icons ();
        Watched watched;
        Memory_Fail_At (++n);
        View::Redraw_All ();
        failed = Memory_Failed ();
        Memory_Fail_At (0);
        EXPECT_EQ (0, Drawn_Beside_The_Lines (watched)) << n;
        EXPECT_EQ (watched.Count (Device::CALL_BEGIN), watched.Count (Device::CALL_END)) << n;
    }
    EXPECT_GT (n, 3);
}

// The first picture, with all icons read meanwhile, is the same as the next one.
TEST (TreePane, FirstReadingOfAllIconsChangesNothingElse) {
    Shown                    shown (1000, 400);
    std::vector<Attribute *> list;
    for (const char *type : {"1 ", "1C", "2 ", "2C", "3 ", ""}) {
        list.push_back (shown.Sequence (0x0008, 0x1140, {shown.Record (0x0008, 0x0100)}));
        list.back ()->type = *type ? Code (type[0], type[1]) : static_cast<uint16_t> (0);
    }
    shown.Build (shown.List (list));
    shown.Unfold_All ();
    Rows_Select (3);
    Forget_Icons ();
    shown.Scroll (25);
    std::vector<uint32_t> first = shown.Picture ();
    Watched               watched;
    View::Redraw_All ();
    EXPECT_EQ (3, watched.Count (Device::CALL_BEGIN)); // None is read any more.
    EXPECT_TRUE (first == shown.Picture ());
}

TEST (TreePane, MissingIconsAreLeftOutAndReportedOnce) {
    Shown shown;
    Icon_Free_All ();
    static const std::string folder = std::string (TAGWRIGHT_SOURCE_DIR) + "/no such folder/";
    Icon_Install_Path_Set (folder.c_str ());
    Log_Recorder log;
    shown.Build (shown.Record (0x0008, 0x0001));
    const int reported = log.Count (LOG_ERRLOG, "icon_type_0.tga");
    EXPECT_GE (reported, 1);
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (reported, log.Count (LOG_ERRLOG, "icon_type_0.tga"));
    EXPECT_EQ (0, watched.Count (Device::CALL_IMAGE));
    EXPECT_EQ (1, watched.Count ("(0008,0001)"));
}

// --- glyphs ----------------------------------------------------------------

static int Pixels_Of (const Shown &shown, int left, int bottom, uint32_t colour) {
    int count = 0;
    for (int y = 0; y < 16; y++)
        for (int x = 0; x < 16; x++) count += shown.Pixel (left + x, bottom + y) == colour;
    return count;
}

TEST (TreePane, GlyphsAreReliefBlocks) {
    Shown shown;
    shown.Build (shown.Record (0xFFFF, 0xFFFF));
    const int      root_y = shown.Band (0) - 1, include_x = 12 + 18, include_y = shown.Band (1) - 1;
    const uint32_t grey = Drawing_Colour (80, 80, 80);
    EXPECT_EQ (WHITE, shown.Pixel (12, root_y + 15));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (12 + 15, root_y));
    EXPECT_EQ (grey, shown.Pixel (12 + 14, root_y + 1));
    EXPECT_EQ (Drawing_Colour (255, 64, 64), shown.Pixel (12 + 2, root_y + 3));
    EXPECT_EQ (WHITE, shown.Pixel (include_x, include_y + 15));
    EXPECT_EQ (VIEW_BLACK, shown.Pixel (include_x + 15, include_y));
    EXPECT_EQ (grey, shown.Pixel (include_x + 14, include_y + 1));
    EXPECT_EQ (Drawing_Colour (142, 142, 56), shown.Pixel (include_x + 2, include_y + 3));
    EXPECT_GT (Pixels_Of (shown, 12, root_y, VIEW_BLACK), Pixels_Of (shown, include_x, include_y, VIEW_BLACK));
    EXPECT_EQ (0, Pixels_Of (shown, 12, root_y, PANE)); // 16 x 16, whole.
    EXPECT_EQ (PANE, shown.Pixel (12 + 16, root_y));
    EXPECT_EQ (PANE, shown.Pixel (12, root_y + 16));
}

// --- limits ----------------------------------------------------------------

TEST (TreePane, HundredLevelsAreShown) {
    Shown        shown;
    Log_Recorder log;
    shown.Build (shown.Record (0x0008, 0x0001));
    Rows.rows[1].level = 100;
    View::Redraw_All ();
    EXPECT_EQ (0, log.Count (LOG_ERROR));
}

TEST (TreePane, MoreThanHundredLevelsEndTheProgram) {
    Shown shown;
    shown.Names ("one.dcm", "two.dcm");
    shown.Build (shown.List ({shown.Record (0x0008, 0x1140), shown.Record (0x0008, 0x1150)}));
    Log_Recorder log;
    Rows.rows[2].level = 101;
    Watched watched;
    View::Redraw_All ();
    EXPECT_EQ (1, log.Count (LOG_ERROR));
    EXPECT_EQ ("The nesting level of (0008,1150) is 101, and at most 100 can be shown.\n\n(A) one.dcm\n(B) two.dcm\n\n"
               "The program ends. Nothing is lost: files are only read.\n",
               log.Text (LOG_ERROR));
    EXPECT_FALSE (Device::Is_Open ());
    EXPECT_EQ (View::FATAL_EXIT, Window_Loop ());

    EXPECT_EQ (1, watched.Count (Device::CALL_BEGIN)); // The other panes were left alone,
    watched.calls.clear ();
    View::Redraw_All (); // and nothing is drawn any more, nor said.
    View::ResetView (shown.window);
    EXPECT_EQ (1, View::SetScrollRanges (&Result.tree, &Result.description, &Result.value, &Result.vertical,
                                         &Result.tree_slider, &Result.description_slider, &Result.value_slider));
    View::OnButton (shown.window, MOUSE_PRESSED);
    View::OnMouseMove (shown.window, 1);
    EXPECT_TRUE (watched.calls.empty ());
    EXPECT_EQ (1, log.Count (LOG_ERROR));
}

// Sequences and their items take turns, one level each; an attribute stands in the innermost item.
static void Build_Nested (Shown *shown, int sequences) {
    Attribute *record = shown->Record (0x0008, 0x0100);
    for (int i = 0; i < sequences; i++) record = shown->Sequence (0x0040, static_cast<uint16_t> (i), {record});
    shown->Build (record);
}

TEST (TreePane, HundredAndOneLevelsMayBeFoldedAway) {
    Shown        shown (2600, 2400);
    Log_Recorder log;
    shown.Place (2000, 2300);
    Build_Nested (&shown, 50);
    ASSERT_EQ (101, Rows.rows[Rows.count - 1].level);
    for (int line = 1; line < 100; line++)
        if (Rows.rows[line].kind & ROW_FOLDED) {
            ASSERT_EQ (1, Rows_Toggle (line, line - 1));
        }
    EXPECT_EQ (102, Rows.visible);
    ASSERT_EQ (1, Rows_Toggle (100, 99));
    Watched watched;
    View::ResetView (shown.window);
    EXPECT_EQ (0, log.Count (LOG_ERROR));
    EXPECT_EQ (1, watched.Count ("(0040,0000)")); // All hundred are seen.
    EXPECT_EQ (
        1, watched.Lines (12 + 18 * 99 + 12, shown.Band (100) + 5, 12 + 18 * 99 + 19, shown.Band (100) + 5, VIEW_BLUE));
    shown.Click (12 + 18 * 99 + 7, shown.Band (100) + 5);
    EXPECT_EQ (1, log.Count (LOG_ERROR, "The nesting level of (0008,0100) is 101, and at most 100 can be shown."));
    EXPECT_EQ (View::FATAL_EXIT, Window_Loop ());
}

static int told_inside, told;

static int Look_At_Session (Window, int kind, const char *) {
    if (kind != LOG_ERROR) return 1;
    told++;
    told_inside += Device::Is_Open ();
    View::Redraw_All (); // As the events that a box lets in do.
    View::ResetView (Result.tree.widget.window);
    return 1;
}

TEST (TreePane, LimitIsToldOutsideOfTheSessionAndOnce) {
    Shown shown;
    shown.Build (shown.Record (0x0008, 0x1140));
    Rows.rows[1].level = 101;
    told = told_inside = 0;
    Watched watched;
    Log_Sink_Set (Look_At_Session);
    View::Redraw_All ();
    Log_Sink_Set (nullptr);
    EXPECT_EQ (1, told);
    EXPECT_EQ (0, told_inside);
    EXPECT_EQ (1, watched.Count (Device::CALL_BEGIN));
    EXPECT_EQ (Device::CALL_END, watched.calls.back ().kind);
    EXPECT_EQ (View::FATAL_EXIT, Window_Loop ());
}

TEST (TreePane, LimitCountsAboveTheFirstLineSeen) {
    Shown shown (1400, 400);
    shown.Many (100);
    Rows.rows[1].level    = 101;
    Result.vertical.value = 18 * 50;
    Log_Recorder log;
    View::Redraw_All ();
    EXPECT_EQ (1, log.Count (LOG_ERROR, "(0009,0000) is 101"));
    EXPECT_EQ (View::FATAL_EXIT, Window_Loop ());
}

// An item has no tag: the sequence's is named.
TEST (TreePane, LimitOfAnItemNamesItsSequence) {
    Shown shown (1400, 400);
    shown.Build (
        shown.List ({shown.Sequence (0x0040, 0xA730, {shown.Record (0x0008, 0x0100)}), shown.Record (0x0050, 1)}));
    shown.Unfold_All ();
    Log_Recorder log;
    Rows.rows[2].level = 200;
    View::Redraw_All ();
    EXPECT_EQ (1, log.Count (LOG_ERROR, "The nesting level of (0040,A730) is 200, and at most 100 can be shown."));
    EXPECT_EQ (1, log.Count (LOG_ERROR, "(A) no file\n(B) no file"));
    EXPECT_EQ (View::FATAL_EXIT, Window_Loop ());
}
