// The comparison of pictures itself: a test that compares with a golden picture is worth what this one holds.
#include "tests/support/pictures.h"

#include <filesystem>
#include <string>

#include "platform/drawing.h"
#include "tests/support/environment.h"
#include "tests/support/temporary.h"

static const uint32_t GREY = Drawing_Colour (100, 100, 100);

class PosixPicture : public testing::Test {
public:
    void SetUp () override {
        const char *update = std::getenv ("TAGWRIGHT_GOLDEN_UPDATE");
        if (update) updating = update;
        Environment_Set ("TAGWRIGHT_GOLDEN_UPDATE", "");
        Make (40, 30);
    }

    void TearDown () override {
        Environment_Set ("TAGWRIGHT_GOLDEN_UPDATE", updating);
        Window_Destroy (window);
    }

    void Make (int width, int height) {
        Window_Description description = {"", 0, 0, width, height, GREY, nullptr, 0, 1};
        Window_Destroy (window);
        window = Window_Create (&description);
        ASSERT_NE (window, nullptr);
    }

    void Fill (int pixels, uint32_t colour) {
        Drawing drawing = Drawing_Begin (window);
        Drawing_Fill (drawing, 0, 0, pixels, 1, colour);
        Drawing_End (drawing);
    }

    testing::AssertionResult Compare () { return Picture_Matches_In (golden.c_str (), window, "picture_test"); }

    void Golden_Make () {
        Environment_Set ("TAGWRIGHT_GOLDEN_UPDATE", "1");
        EXPECT_TRUE (Compare ());
        Environment_Set ("TAGWRIGHT_GOLDEN_UPDATE", "");
    }

    Temporary_Directory directory;
    std::string         golden   = directory.File ("golden");
    std::string         updating = "";
    Window              window   = nullptr;
};

static bool Contains (const testing::AssertionResult &result, const std::string &text) {
    return std::string (result.message ()).find (text) != std::string::npos;
}

// The name of the file that the message ends with.
static std::string File_Named (const testing::AssertionResult &result) {
    std::string text = result.message ();
    return text.substr (text.rfind (' ') + 1);
}

TEST_F (PosixPicture, MissingFileFailsAndSaysHowToMakeIt) {
    testing::AssertionResult result = Compare ();
    EXPECT_FALSE (result);
    EXPECT_TRUE (Contains (result, golden + "/picture_test.png")) << result.message ();
    EXPECT_TRUE (Contains (result, "scripts/golden-update.sh"));
    EXPECT_TRUE (std::filesystem::exists (File_Named (result))) << result.message ();
    EXPECT_FALSE (std::filesystem::exists (golden));
}

TEST_F (PosixPicture, UpdateWritesWhatIsThere) {
    Golden_Make ();
    EXPECT_TRUE (Compare ());
    Fill (9, 0);
    EXPECT_FALSE (Compare ());
    Golden_Make ();
    EXPECT_TRUE (Compare ());
}

TEST_F (PosixPicture, UpdateLeavesAnEqualFileAlone) {
    Golden_Make ();
    auto time = std::filesystem::file_time_type::clock::now () - std::chrono::hours (1);
    std::filesystem::last_write_time (golden + "/picture_test.png", time);
    Golden_Make ();
    EXPECT_EQ (std::filesystem::last_write_time (golden + "/picture_test.png"), time);
}

TEST_F (PosixPicture, UpdateThatCannotWriteFails) {
    directory.Write ("golden", std::string ("a file"));
    golden += "/\x01/none";
    Environment_Set ("TAGWRIGHT_GOLDEN_UPDATE", "1");
    EXPECT_FALSE (Compare ());
}

TEST_F (PosixPicture, FewPixelsMayDiffer) {
    Golden_Make ();
    Fill (PICTURE_PIXELS_ALLOWED, Drawing_Colour (255, 0, 0));
    EXPECT_TRUE (Compare ());
    Fill (PICTURE_PIXELS_ALLOWED + 1, Drawing_Colour (255, 0, 0));
    testing::AssertionResult result = Compare ();
    EXPECT_FALSE (result);
    EXPECT_TRUE (Contains (result, "differs in " + std::to_string (PICTURE_PIXELS_ALLOWED + 1) + " pixels"));
    EXPECT_TRUE (Contains (result, "picture_test.difference.png"));
    EXPECT_TRUE (std::filesystem::exists (File_Named (result)));
}

TEST_F (PosixPicture, EveryChannelMayDifferALittle) {
    Golden_Make ();
    const int NEAR = PICTURE_TOLERANCE, FAR = PICTURE_TOLERANCE + 1;
    Fill (40, Drawing_Colour (100 + NEAR, 100 - NEAR, 100 + NEAR));
    EXPECT_TRUE (Compare ());
    Fill (40, Drawing_Colour (100 + FAR, 100, 100));
    EXPECT_FALSE (Compare ());
    Fill (40, Drawing_Colour (100, 100 - FAR, 100));
    EXPECT_FALSE (Compare ());
    Fill (40, Drawing_Colour (100, 100, 100 + FAR));
    EXPECT_FALSE (Compare ());
}

TEST_F (PosixPicture, AnotherSizeFails) {
    Golden_Make ();
    Make (30, 40);
    testing::AssertionResult result = Compare ();
    EXPECT_FALSE (result);
    EXPECT_TRUE (Contains (result, "is 30 x 40 pixels, not 40 x 30")) << result.message ();
}

TEST_F (PosixPicture, NoWindowFails) {
    testing::AssertionResult result = Picture_Matches (nullptr, "none");
    EXPECT_FALSE (result);
    EXPECT_TRUE (Contains (result, "no picture"));
}
