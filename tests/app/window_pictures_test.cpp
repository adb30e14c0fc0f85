// What the whole window looks like, compared with pictures that somebody has looked at: examples and real files, in both
// modes of comparing, folded and unfolded, scrolled, selected, in windows of several sizes.
#include "tests/support/pictures.h"

#include "tests/app/whole_window.h"

static const char *const EXAMPLES = TAGWRIGHT_SOURCE_DIR "/examples";
static const char *const REAL     = "/usr/lib/python3/dist-packages/pydicom/data/test_files";

static const char *const DOCS = TAGWRIGHT_SOURCE_DIR "/docs/"; // scripts/screenshots.sh draws these anew.

TEST (WindowPictures, ScreenshotOfTheHelpAtTheStart) {
    Whole_Window shown (800, 600, EXAMPLES);
    EXPECT_TRUE (Picture_Matches_In (DOCS, shown.window, "screenshot-help"));
}

TEST (WindowPictures, ScreenshotOfAComparison) {
    Whole_Window shown (1200, 660, EXAMPLES);
    shown.Drop ({"ct_a.dcm", "ct_b.dcm"});
    shown.Separators (508, 710, 160);
    shown.Values_From (252);
    EXPECT_TRUE (shown.Fold (0x0008, 0x1140));
    EXPECT_TRUE (shown.Select (0x0008, 0x0033));
    EXPECT_TRUE (Picture_Matches_In (DOCS, shown.window, "screenshot-comparison"));
}

// The window as it opens, with what stands there after the first drop.
TEST (WindowPictures, ScreenshotOfADrop) {
    Whole_Window shown (800, 600, EXAMPLES);
    shown.Drop ({"ct_a.dcm", "ct_b.dcm"});
    EXPECT_TRUE (Picture_Matches_In (DOCS, shown.window, "screenshot-drop"));
}

TEST (WindowPictures, ScreenshotOfAModality) {
    Whole_Window shown (1200, 560, EXAMPLES);
    shown.Drop ({"faults.dcm"});
    shown.Separators (580, 830, 100);
    shown.Values_From (0);
    shown.Scroll (26);
    EXPECT_TRUE (Picture_Matches_In (DOCS, shown.window, "screenshot-modality"));
}

TEST (WindowPictures, ScreenshotOfSkippedAttributes) {
    Whole_Window shown (1200, 560, EXAMPLES);
    shown.Skip ("0008", "0018");
    shown.Skip ("0008", "115?");
    shown.Drop ({"ct_a.dcm", "ct_b.dcm"});
    shown.Separators (508, 710, 100);
    shown.Values_From (252);
    EXPECT_TRUE (shown.Fold (0x0008, 0x1140));
    EXPECT_TRUE (Picture_Matches_In (DOCS, shown.window, "screenshot-skipped"));
}

TEST (WindowPictures, OneFileAgainstItsModality) {
    Whole_Window shown (800, 600, EXAMPLES);
    shown.Drop ({"ct_a.dcm"});
    EXPECT_TRUE (Picture_Matches (shown.window, "window_modality"));
}

TEST (WindowPictures, TwoFilesFolded) {
    Whole_Window shown (800, 600, EXAMPLES);
    shown.Drop ({"ct_a.dcm", "ct_b.dcm"});
    EXPECT_TRUE (Picture_Matches (shown.window, "window_pair"));
}

TEST (WindowPictures, TwoFilesUnfoldedSelectedAndWide) {
    Whole_Window shown (1600, 1000, EXAMPLES);
    shown.Drop ({"ct_a.dcm", "ct_b.dcm"});
    shown.Separators (520, 720, 200);
    EXPECT_TRUE (shown.Fold (0x0008, 0x1140));
    EXPECT_TRUE (shown.Select (0x0010, 0x4000));
    EXPECT_TRUE (Picture_Matches (shown.window, "window_wide"));
}

TEST (WindowPictures, NarrowAndScrolled) {
    Whole_Window shown (400, 300, EXAMPLES);
    shown.Drop ({"ct_a.dcm", "ct_b.dcm"});
    shown.Scroll (10);
    EXPECT_TRUE (Picture_Matches (shown.window, "window_narrow"));
}

TEST (WindowPictures, SequencesFourDeep) {
    Whole_Window shown (1100, 700, EXAMPLES);
    shown.Drop ({"nested_a.dcm", "nested_b.dcm"});
    shown.Separators (508, 698, 160);
    shown.Values_From (300);
    EXPECT_TRUE (shown.Fold (0x0040, 0xA730));
    EXPECT_TRUE (shown.Fold (0x0040, 0xA730, 3));
    EXPECT_TRUE (shown.Fold (0x0040, 0xA730, 5));
    EXPECT_TRUE (Picture_Matches (shown.window, "window_nested"));
}

TEST (WindowPictures, FileThatIsNotThere) {
    Whole_Window shown (800, 600, EXAMPLES);
    shown.Drop ({"none.dcm"});
    EXPECT_TRUE (Picture_Matches (shown.window, "window_no_such_file"));
}

// Real files: private sequences, many VRs, and plans with sequences in sequences.
TEST (WindowPictures, RealImagesOfTwoTransferSyntaxes) {
    Whole_Window shown (1100, 480, REAL);
    shown.Drop ({"MR_small.dcm", "MR_small_implicit.dcm"});
    shown.Separators (508, 698, 160);
    shown.Values_From (300);
    EXPECT_TRUE (Picture_Matches (shown.window, "window_real_images"));
}

TEST (WindowPictures, RealPrivateSequence) {
    Whole_Window shown (1100, 480, REAL);
    shown.Drop ({"nested_priv_SQ.dcm", "priv_SQ.dcm"});
    shown.Separators (508, 698, 160);
    shown.Values_From (300);
    EXPECT_TRUE (shown.Fold (0x0001, 0x0001));
    EXPECT_TRUE (Picture_Matches (shown.window, "window_real_private"));
}

TEST (WindowPictures, RealPlanAgainstItsTruncatedCopy) {
    Whole_Window shown (1100, 480, REAL);
    shown.Drop ({"rtplan.dcm", "rtplan_truncated.dcm"});
    shown.Separators (508, 698, 160);
    shown.Values_From (300);
    shown.Scroll (30);
    EXPECT_TRUE (shown.Fold (0x300A, 0x00B0));
    EXPECT_TRUE (Picture_Matches (shown.window, "window_real_plan"));
}
