#include "util/utility_IGB.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/error_text.h"
#include "util/memory.h"

typedef std::vector<unsigned char> Bytes;

static const unsigned ERROR_CODE = 5;

static Bytes Of_Text (const std::string &text) { return Bytes (text.begin (), text.end ()); }

static Bytes operator+ (const Bytes &a, const Bytes &b) {
    Bytes sum = a;
    sum.insert (sum.end (), b.begin (), b.end ());
    return sum;
}

// Bytes 1, 2, 3, ...
static Bytes Counting (size_t count) {
    Bytes bytes (count);
    for (size_t i = 0; i < count; i++) bytes[i] = static_cast<unsigned char> (i + 1);
    return bytes;
}

static Bytes TGA (unsigned width, unsigned height, unsigned depth, const Bytes &pixels) {
    Bytes header (18);
    header[2]  = 2;
    header[12] = static_cast<unsigned char> (width);
    header[13] = static_cast<unsigned char> (width >> 8);
    header[14] = static_cast<unsigned char> (height);
    header[15] = static_cast<unsigned char> (height >> 8);
    header[16] = static_cast<unsigned char> (depth);
    return header + pixels;
}

static std::string Reason (unsigned error) {
    System_Last_Error_Set (error);
    return Error_Text (0);
}

class ImageFiles : public testing::Test {
protected:
    ~ImageFiles () override {
        Image_Free (&image);
        Memory_Fail_At (0);
        for (int i = 0; i < FILE_OPERATIONS; i++) File_Fail_At (static_cast<File_Operation> (i), 0, 0);
        EXPECT_EQ (Memory_Live (), live);
    }

    int64_t Header (const Bytes &bytes) { return IGB_Read_Header (Put ("header", bytes).c_str (), &image); }
    int64_t Header (const std::string &text) { return Header (Of_Text (text)); }

    int Read (const std::string &name, const Bytes &bytes) {
        Image_Free (&image);
        return IGB_Read_Image (Put (name, bytes).c_str (), &image);
    }
    int IGB (const std::string &header, const Bytes &pixels) { return Read ("image.igb", Of_Text (header) + pixels); }
    int Read_TGA (const Bytes &bytes) {
        Image_Free (&image);
        return TGA_Read_Image (Put ("image.tga", bytes).c_str (), &image);
    }

    // A new file is written much faster than an old one anew.
    std::string Put (const std::string &name, const Bytes &bytes) {
        path = directory.File (name);
        std::filesystem::remove (path);
        return directory.Write (name, bytes);
    }

    Bytes Pixels () const {
        if (!image.pixels) return Bytes ();
        return Bytes (image.pixels, image.pixels + size_t (image.width) * image.height * image.pixel_bytes);
    }

    // What was reported since the last call, without the numbers of lines and the directory.
    std::string Reported () {
        std::string text = std::regex_replace (log.All (), std::regex ("Line:[1-9][0-9]*"), "Line:N");
        log.Clear ();
        for (size_t place; (place = text.find (directory.path)) != std::string::npos;)
            text.erase (place, directory.path.size ());
        return text;
    }
    static std::string Short (const std::string &function, const std::string &name, unsigned error = 0) {
        return "7: WARNING: in " + function + "()\n7: File:utility_IGB Line:N\n7: while reading (" + name +
               ")\n7: " + Clean (Reason (error)) + "\n";
    }

    long                live = Memory_Live ();
    Temporary_Directory directory;
    Log_Recorder        log;
    std::string         path;
    Image               image = {};
};

typedef ImageFiles IgbHeader;
typedef ImageFiles IgbImage;
typedef ImageFiles TgaImage;
typedef ImageFiles ImageFilesAtRandom;

// --- header ----------------------------------------------------------------

TEST_F (IgbHeader, OneLineSaysAll) {
    EXPECT_EQ (Header ("x:16 y:17 type:rgba\fpixels"), 20);
    EXPECT_EQ (image.width, 16);
    EXPECT_EQ (image.height, 17);
    EXPECT_EQ (image.pixel_bytes, 4);
    EXPECT_EQ (Reported (), "");
}

TEST_F (IgbHeader, TokensAreSeparatedByBlanksCommasSemicolonsAndTabs) {
    EXPECT_EQ (Header ("  ,;\tx:1,y:2;type:byte\t \f"), 25);
    EXPECT_EQ (image.width, 1);
    EXPECT_EQ (image.height, 2);
    EXPECT_EQ (image.pixel_bytes, 1);
}

TEST_F (IgbHeader, CapitalsAreSmallLetters) {
    EXPECT_EQ (Header ("X:3\nY:4\nTYPE:D_Complex\n\f"), 24);
    EXPECT_EQ (image.width, 3);
    EXPECT_EQ (image.height, 4);
    EXPECT_EQ (image.pixel_bytes, 16);
}

TEST_F (IgbHeader, CommentsRunToTheEndOfTheirLine) {
    EXPECT_GT (Header ("# no key\nx:3 * y:9 nothing\ny:4#\n***\ntype:char#\f"), 0);
    EXPECT_EQ (image.height, 4);
    EXPECT_EQ (Header ("x:3 y:4 # type:char\n\f"), 0);
}

TEST_F (IgbHeader, CarriageReturnsAreIgnored) {
    EXPECT_EQ (Header ("x:1\r6 y:2\r\n\rtype:\rchar\r\n\r\f"), 26);
    EXPECT_EQ (image.width, 16);
    EXPECT_EQ (image.height, 2);
    EXPECT_EQ (Header ("x:1 y:2 type:char" + std::string (1000, '\r') + "\f"), 1018);
}

TEST_F (IgbHeader, FormFeedEndsLineAndHeader) {
    EXPECT_EQ (Header ("x:1 y:2\ntype:char\f\nno key"), 18);
    EXPECT_EQ (Header ("x:1 y:2\f type:char\f"), 0);
    EXPECT_EQ (Header ("# x:1 y:2 type:char\f"), 0);
}

TEST_F (IgbHeader, EndOfTheFileIsTheEndOfTheHeader) {
    EXPECT_EQ (Header ("x:1 y:2\ntype:char"), 17);
    EXPECT_EQ (Header ("x:1 y:2\ntype:char\n\n"), 19);
    EXPECT_EQ (Header (""), 0);
    EXPECT_EQ (Header ("\f"), 0);
}

TEST_F (IgbHeader, AllOfXYAndTypeAreNeeded) {
    EXPECT_EQ (Header ("y:2 type:char\f"), 0);
    EXPECT_EQ (Header ("x:2 type:char\f"), 0);
    EXPECT_EQ (Header ("x:2 y:2\f"), 0);
    EXPECT_EQ (Reported (), "");
}

TEST_F (IgbHeader, OtherKeysAreIgnored) {
    EXPECT_GT (Header ("z:9 xx:8 :5 : :: x:1 y:2 type:char fac_x:7 t:x typ:rgba types:rgba\f"), 0);
    EXPECT_EQ (image.width, 1);
    EXPECT_EQ (image.pixel_bytes, 1);
}

TEST_F (IgbHeader, TokenWithoutColonMakesItInvalid) {
    const std::string good = "x:1 y:2 type:char";
    EXPECT_GT (Header (good + "\f"), 0);
    EXPECT_EQ (Header (good + " x\f"), 0);
    EXPECT_EQ (Header ("x : 1 " + good + "\f"), 0);
    EXPECT_EQ (Header (good + "\nx\n\f"), 0);
}

TEST_F (IgbHeader, LinesAreShorterThanEightyCharacters) {
    const std::string keys = "x:1 y:2 type:char";
    for (const std::string &filling : {std::string (" "), std::string ("#")})
        for (const std::string &end : {std::string ("\f"), std::string ("\n\f"), std::string ("")}) {
            std::string line = keys;
            while (line.size () < 79) line += filling;
            EXPECT_EQ (Header (line + end), int64_t (79 + end.size ()));
            EXPECT_EQ (Header (line + "\r" + end), int64_t (80 + end.size ()));
            EXPECT_EQ (Header (line + filling + end), 0);
            EXPECT_EQ (Header ("\n" + line + filling + filling + end), 0);
        }
}

TEST_F (IgbHeader, TypeByThreeLetters) {
    struct {
        const char *value;
        int         bytes;
    } const types[] = {{"byte", 1},       {"char", 1},   {"short", 2}, {"long", 4},     {"float", 4}, {"double", 8},
                       {"complex", 8},    {"rgba", 4},   {"byt", 1},   {"cha", 1},      {"sho", 2},   {"lon", 4},
                       {"flo", 4},        {"dou", 8},    {"com", 8},   {"d_c", 16},     {"rgb", 4},   {"DOUx", 8},
                       {"d_complex", 16}, {"longer", 4}, {"by", 0},    {"d_", 0},       {"", 0},      {"rg", 0},
                       {"int", 0},        {"xrgba", 0},  {":rgba", 0}, {"structure", 0}};
    for (const auto &type : types) {
        EXPECT_EQ (Header (std::string ("x:1 y:2 type:") + type.value + "\f") > 0, type.bytes > 0) << type.value;
        EXPECT_EQ (image.pixel_bytes, type.bytes) << type.value;
    }
    EXPECT_GT (Header ("x:1 y:2 type:rgba type:what\f"), 0); // Leaves it as it is.
    EXPECT_EQ (image.pixel_bytes, 4);
}

TEST_F (IgbHeader, SizesAreDecimalNumbersOfAnImage) {
    struct {
        const char *value;
        int         width;
    } const numbers[] = {{"1", 1},
                         {"+7", 7},
                         {"007", 7},
                         {"12pixels", 12},
                         {"65535", 65535},
                         {"3:4", 3},
                         {"0", 0},
                         {"-1", 0},
                         {"65536", 0},
                         {"x10", 0},
                         {"0x10", 0},
                         {"", 0},
                         {"4294967297", 0},
                         {"99999999999999999999999", 0},
                         {"-18446744073709551615", 0},
                         {"--1", 0}};
    for (const auto &number : numbers) {
        EXPECT_EQ (Header (std::string ("y:2 type:char x:") + number.value + "\f") > 0, number.width > 0)
            << number.value;
        EXPECT_EQ (image.width, number.width) << number.value;
        EXPECT_EQ (Header (std::string ("x:2 type:char y:") + number.value + "\f") > 0, number.width > 0)
            << number.value;
        EXPECT_EQ (image.height, number.width) << number.value;
    }
    EXPECT_GT (Header ("x:1 y:2 x:3 type:char\f"), 0); // The last one counts.
    EXPECT_EQ (image.width, 3);
    EXPECT_EQ (Header ("x:1 y:2 x:none type:char\f"), 0);
}

TEST_F (IgbHeader, SupCountsLinesBeyondEight) {
    const std::string keys = "x:1 y:2 type:char"; // 17 characters.
    const std::string rest = "\n\n\n\n\n\n\n\n\n\n\n\n";
    EXPECT_EQ (Header (keys + " sup:0" + rest), 23 + 8);
    EXPECT_EQ (Header (keys + " sup:2" + rest), 23 + 10);
    EXPECT_EQ (Header (keys + " sup:-3" + rest), 24 + 5);
    EXPECT_EQ (Header (keys + " sup:-7" + rest), 24 + 1);
    EXPECT_EQ (Header (keys + " sup:-8" + rest), 24 + 1);
    EXPECT_EQ (Header (keys + " sup:-99999999999" + rest), 34 + 1);
    EXPECT_EQ (Header (keys + " sup:" + rest), 22 + 8);
    EXPECT_EQ (Header (keys + " sup:99999999999" + rest), 33 + 12); // The file ends before.
    EXPECT_EQ (Header (keys + " sup:2\n\n\f" + rest), 23 + 3);      // So does the header.
}

TEST_F (IgbHeader, SupSeenLateEndsTheHeaderWithItsLine) {
    const std::string keys = "x:1 y:2 type:char\n"; // 18 characters.
    EXPECT_EQ (Header (keys + "\n\n\n\n\n\n\n\nsup:0\n\n\n\f"), 18 + 8 + 6);
    EXPECT_EQ (Header (keys + "\n\n\n\n\n\n\n\nsup:2\n\n\n\f"), 18 + 8 + 6);
    EXPECT_EQ (Header (keys + "\n\n\n\n\n\n\n\nsup:3\n\n\n\f"), 18 + 8 + 7);
}

TEST_F (IgbHeader, InvalidLineBehindTheEndIsNotRead) {
    EXPECT_EQ (Header ("x:1 y:2 type:char sup:-7\nno key\n"), 25);
    EXPECT_EQ (Header ("x:1 y:2 type:char sup:-6\nno key\n"), 0);
}

TEST_F (IgbHeader, ZeroBytesAreCharacters) {
    EXPECT_EQ (Header (std::string ("x:1 y:2 type:char\0\f", 19)), 19); // Behind the three letters.
    EXPECT_EQ (image.pixel_bytes, 1);
    EXPECT_EQ (Header (std::string ("x\0:1 y:2 type:char\f", 19)), 0);
    EXPECT_EQ (Header (std::string ("x:1 \0 y:2 type:char\f", 20)), 0);
    EXPECT_EQ (Header (std::string (79, '\0') + "\f"), 0);
    EXPECT_EQ (Header (std::string ("x:1 #\0\ny:2 type:char\f", 21)), 21);
}

TEST_F (IgbHeader, AllBytesThatAreNoAsciiAreCharacters) {
    EXPECT_EQ (Header ("x:1 y:2 type:char \xC4:\xFF \x80:\f"), 25);
    EXPECT_EQ (Header ("x:1 y:2 type:char \xC4\f"), 0);
}

TEST_F (IgbHeader, MissingFileIsReported) {
    image = {nullptr, 1, 2, 3};
    EXPECT_EQ (IGB_Read_Header (directory.File ("none").c_str (), &image), 0);
    EXPECT_EQ (image.width + image.height + image.pixel_bytes, 0);
    EXPECT_EQ (log.lines.size (), 3u);
    EXPECT_EQ (
        Reported ().find ("7: WARNING: in IGB_Read_Header()\n7: Unable to open (none)\n7: [ERROR_FILE_NOT_FOUND] "),
        0u);
    EXPECT_STREQ (System_Error_Name (System_Last_Error ()), "[ERROR_FILE_NOT_FOUND]");
}

TEST_F (IgbHeader, UnreadableFileIsReported) {
    for (long n : {1, 5, 20}) {
        File_Fail_At (FILE_READ, n, ERROR_CODE);
        EXPECT_EQ (Header ("x:1 y:2 type:char\n\n\n\n\f"), 0);
        EXPECT_EQ (Reported (), "7: WARNING: in IGB_Read_Header()\n7: while reading (header)\n7: " +
                                    Clean (Reason (ERROR_CODE)) + "\n");
    }
}

TEST_F (IgbHeader, NameOfAnyLengthIsHarmless) {
    for (size_t length : {200u, 5000u, 100000u}) {
        std::string name (length, 'n');
        EXPECT_EQ (IGB_Read_Header (directory.File (name).c_str (), &image), 0);
        EXPECT_EQ (IGB_Read_Image (directory.File (name + ".igb").c_str (), &image), 0);
        EXPECT_EQ (IGB_Read_Image (directory.File (name + ".tga").c_str (), &image), 0);
        EXPECT_EQ (log.lines.size (), 3u + 6u + 3u);
        log.Clear ();
    }
    EXPECT_EQ (IGB_Read_Image ("", &image), 0);
}

// --- headers without an end ------------------------------------------------

// Nothing but the open file is allocated.
TEST_F (IgbHeader, LongLineEndsEarlyInAFileOfAnySize) {
    Put ("header", Of_Text ("x:1 y:2 type:char\n"));
    std::filesystem::resize_file (path, 1 << 30); // One line of zero bytes.
    auto begin = std::chrono::steady_clock::now ();
    Memory_Fail_At (2);
    EXPECT_EQ (IGB_Read_Header (path.c_str (), &image), 0);
    EXPECT_EQ (Memory_Failed (), 0);
    EXPECT_LT (std::chrono::steady_clock::now () - begin, std::chrono::milliseconds (500));
    EXPECT_EQ (Header (std::string (1000000, ' ')), 0);
}

TEST_F (IgbHeader, ShortLinesCostTimeOnly) {
    std::string text;
    for (const char *line : {"\n", "a:b\n", "# comment\n", "\r", "x:1 y:2 type:rgba\n"}) {
        text.clear ();
        while (text.size () < 2000000) text += line;
        Put ("header", Of_Text (text));
        auto begin = std::chrono::steady_clock::now ();
        Memory_Fail_At (2);
        EXPECT_EQ (IGB_Read_Header (path.c_str (), &image), *line == 'x' ? int64_t (text.size ()) : 0);
        EXPECT_EQ (Memory_Failed (), 0);
        EXPECT_LT (std::chrono::steady_clock::now () - begin, std::chrono::seconds (10));
    }
}

// --- IGB images ------------------------------------------------------------

TEST_F (IgbImage, FirstByteOfFourBecomesTheLast) {
    for (const char *type : {"rgba", "long", "float"}) {
        ASSERT_EQ (IGB (std::string ("x:2 y:1 type:") + type + "\f", {1, 2, 3, 4, 5, 6, 7, 8, 9}), 1);
        EXPECT_EQ (Pixels (), (Bytes {2, 3, 4, 1, 6, 7, 8, 5}));
    }
    EXPECT_EQ (Reported (), "");
}

TEST_F (IgbImage, OtherPixelsAreKeptAsTheyAre) {
    struct {
        const char *type;
        unsigned    bytes;
    } const types[] = {{"byte", 1}, {"char", 1}, {"short", 2}, {"double", 8}, {"complex", 8}, {"d_complex", 16}};
    for (const auto &type : types) {
        Bytes pixels = Counting (3 * 2 * type.bytes);
        ASSERT_EQ (IGB (std::string ("x:3 y:2 type:") + type.type + "\f", pixels + Bytes {99}), 1);
        EXPECT_EQ (image.width, 3);
        EXPECT_EQ (image.height, 2);
        EXPECT_EQ (image.pixel_bytes, type.bytes);
        EXPECT_EQ (Pixels (), pixels) << type.type;
    }
}

TEST_F (IgbImage, PixelsStartBehindAHeaderThatSupEnds) {
    ASSERT_EQ (IGB ("x:2 y:1 type:byte sup:-6\n\n", {'\f', '\n'}), 1);
    EXPECT_EQ (Pixels (), (Bytes {'\f', '\n'}));
}

TEST_F (IgbImage, LargerThanTheFilesBuffer) {
    Bytes pixels (300 * 300 * 4);
    for (size_t i = 0; i < pixels.size (); i++) pixels[i] = static_cast<unsigned char> (i * 7 + i / 251);
    ASSERT_EQ (IGB ("x:300 y:300 type:rgba\f", pixels), 1);
    Bytes read = Pixels ();
    for (size_t i = 0; i < pixels.size (); i += 4)
        if (read[i] != pixels[i + 1] || read[i + 2] != pixels[i + 3] || read[i + 3] != pixels[i]) FAIL () << i;
}

TEST_F (IgbImage, InvalidHeaderIsReported) {
    EXPECT_EQ (IGB ("x:2 y:1\f", {1, 2, 3, 4}), 0);
    EXPECT_EQ (image.pixels, nullptr);
    EXPECT_EQ (Reported (),
               "7: WARNING: in IGB_Read_Image()\n7: File:utility_IGB Line:N\n7: IGB_Read_Image(image.igb) failed\n");
    EXPECT_EQ (System_Last_Error (), 0u);
    for (const char *size : {"x:0 y:1", "x:1 y:0", "x:0 y:0", "x:65536 y:1", "x:-1 y:-1"}) {
        EXPECT_EQ (IGB (std::string (size) + " type:rgba\f", {}), 0);
        EXPECT_NE (Reported ().find ("IGB_Read_Image(image.igb) failed"), std::string::npos);
    }
}

TEST_F (IgbImage, MissingFileIsReportedByBothReaders) {
    EXPECT_EQ (IGB_Read_Image (directory.File ("none").c_str (), &image), 0);
    ASSERT_EQ (log.lines.size (), 6u);
    EXPECT_EQ (log.lines[0].text, "WARNING: in IGB_Read_Header()");
    EXPECT_EQ (log.lines[5].text, "IGB_Read_Image(" + directory.File ("none") + ") failed");
    EXPECT_STREQ (System_Error_Name (System_Last_Error ()), "[ERROR_FILE_NOT_FOUND]");
}

TEST_F (IgbImage, FileThatIsGoneBeforeItsPixelsIsReported) {
    File_Fail_At (FILE_OPEN, 2, ERROR_CODE);
    EXPECT_EQ (IGB ("x:1 y:1 type:rgba\f", {1, 2, 3, 4}), 0);
    EXPECT_EQ (image.pixels, nullptr);
    EXPECT_EQ (Reported (),
               "7: WARNING: in IGB_Read_Image()\n7: File:utility_IGB Line:N\n7: Unable to open (image.igb)\n7: " +
                   Clean (Reason (ERROR_CODE)) + "\n");
}

TEST_F (IgbImage, FewerPixelsAreRefusedBeforeMemoryIsTaken) {
    const std::string header = "x:3 y:2 type:rgba\f";
    for (size_t count = 0; count < 24; count++) {
        Memory_Fail_At (3); // The two before are the open files.
        EXPECT_EQ (IGB (header, Counting (count)), 0) << count;
        EXPECT_EQ (Memory_Failed (), 0);
        EXPECT_EQ (image.pixels, nullptr);
        EXPECT_EQ (Reported (), Short ("IGB_Read_Image", "image.igb"));
    }
    Memory_Fail_At (0);
    EXPECT_EQ (IGB (header, Counting (24)), 1);
}

TEST_F (IgbImage, SizesBeyondTheFileAreRefusedBeforeMemoryIsTaken) {
    for (const char *header :
         {"x:65535 y:65535 type:d_complex\f", "x:65535 y:65535 type:rgba\f", "x:65535 y:1 type:byte\f",
          "x:1 y:65535 type:byte\f", "x:32768 y:32768 type:rgba\f", "x:16384 y:16384 type:d_c\f"}) {
        Memory_Fail_At (3);
        EXPECT_EQ (IGB (header, Counting (100)), 0) << header;
        EXPECT_EQ (Memory_Failed (), 0);
        EXPECT_EQ (Reported (), Short ("IGB_Read_Image", "image.igb"));
    }
}

TEST_F (IgbImage, HeaderThatIsTheWholeFileHasNoPixels) {
    EXPECT_EQ (IGB ("x:1 y:1 type:rgba", {}), 0);
    EXPECT_EQ (Reported (), Short ("IGB_Read_Image", "image.igb"));
}

TEST_F (IgbImage, ReadingThatFailsIsReported) {
    const std::string header = "x:9 y:9 type:rgba\f";
    long              last   = static_cast<long> (header.size ()) + 1; // After a read for each byte of the header.
    File_Fail_At (FILE_READ, last, ERROR_CODE);
    EXPECT_EQ (IGB (header, Counting (9 * 9 * 4)), 0);
    EXPECT_EQ (image.pixels, nullptr);
    EXPECT_EQ (Reported (), Short ("IGB_Read_Image", "image.igb", ERROR_CODE));
    File_Fail_At (FILE_READ, last, 0); // The file was cut meanwhile.
    EXPECT_EQ (IGB (header, Counting (9 * 9 * 4)), 0);
    EXPECT_EQ (Reported (), Short ("IGB_Read_Image", "image.igb"));
    File_Fail_At (FILE_SEEK, 1, ERROR_CODE);
    EXPECT_EQ (IGB (header, Counting (9 * 9 * 4)), 0);
    EXPECT_EQ (Reported (), Short ("IGB_Read_Image", "image.igb", ERROR_CODE));
    EXPECT_EQ (IGB (header, Counting (9 * 9 * 4)), 1);
}

TEST_F (IgbImage, FullMemoryIsReported) {
    const char *expected[] = {"memory error in malloc (var=file", "memory error in malloc (var=file",
                              "memory error in malloc (var=image->pixels, dim=3x8)"};
    for (long n = 1; n <= 3; n++) {
        Memory_Fail_At (n);
        EXPECT_EQ (IGB ("x:2 y:3 type:rgba\f", Counting (24)), 0);
        EXPECT_EQ (Memory_Failed (), 1);
        EXPECT_EQ (log.Count (LOG_ERROR, expected[n - 1]), 1);
        EXPECT_EQ (image.pixels, nullptr);
        log.Clear ();
    }
    Memory_Fail_At (4);
    EXPECT_EQ (IGB ("x:2 y:3 type:rgba\f", Counting (24)), 1);
    EXPECT_EQ (Memory_Failed (), 0);
}

TEST_F (IgbImage, OnlyTheVeryEndOfTheNameMakesItTarga) {
    Bytes targa = TGA (1, 1, 24, {1, 2, 3});
    Bytes igb   = Of_Text ("x:1 y:1 type:byte\f") + Bytes {9};
    EXPECT_EQ (Read ("a.tga", targa), 1);
    EXPECT_EQ (Read (".tga", targa), 1);
    EXPECT_EQ (Read ("a.tga.igb", igb), 1);
    EXPECT_EQ (image.pixel_bytes, 1);
    EXPECT_EQ (Read ("b.TGA", igb), 1);
    EXPECT_EQ (Read ("tga", igb), 1);
    EXPECT_EQ (Read ("c.tga2", targa), 0);
    EXPECT_EQ (Read ("d.tga", igb), 0);
}

// --- TARGA -----------------------------------------------------------------

TEST_F (TgaImage, RowsAreTurnedAndBlackIsTransparent) {
    ASSERT_EQ (Read_TGA (TGA (2, 3, 24, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 7, 8, 9, 255, 255, 255})), 1);
    EXPECT_EQ (image.width, 2);
    EXPECT_EQ (image.height, 3);
    EXPECT_EQ (image.pixel_bytes, 4);
    EXPECT_EQ (Pixels (),
               (Bytes {7, 8, 9, 255, 255, 255, 255, 255, 0, 1, 0, 255, 0, 0, 1, 255, 0, 0, 0, 0, 1, 0, 0, 255}));
    EXPECT_EQ (Reported (), "");
}

TEST_F (TgaImage, FourBytesAreKeptAsTheyAre) {
    ASSERT_EQ (Read_TGA (TGA (1, 2, 32, {0, 0, 0, 9, 1, 2, 3, 0, 77})), 1);
    EXPECT_EQ (image.pixel_bytes, 4);
    EXPECT_EQ (Pixels (), (Bytes {1, 2, 3, 0, 0, 0, 0, 9}));
}

TEST_F (TgaImage, WideAndHighOnesHaveAllTheirPixels) {
    for (int turned = 0; turned < 2; turned++) {
        unsigned width = turned ? 3 : 30001, height = turned ? 30001 : 3;
        Bytes    pixels (size_t (width) * height * 3);
        for (size_t i = 0; i < pixels.size (); i++) pixels[i] = static_cast<unsigned char> (i % 253 + 1);
        ASSERT_EQ (Read_TGA (TGA (width, height, 24, pixels)), 1);
        for (size_t y = 0; y < height; y++)
            for (size_t x = 0; x < width; x++) {
                const unsigned char *from = &pixels[((height - 1 - y) * width + x) * 3];
                const unsigned char *to   = image.pixels + (y * width + x) * 4;
                if (memcmp (from, to, 3) || to[3] != 255) FAIL () << x << "," << y;
            }
    }
}

TEST_F (TgaImage, OnlySizeAndDepthOfTheHeaderAreUsed) {
    Bytes file = TGA (1, 1, 24, {1, 2, 3});
    for (int i = 0; i < 18; i++)
        if (i < 12 || i > 16) file[static_cast<size_t> (i)] = 0xFF;
    ASSERT_EQ (Read_TGA (file), 1);
    EXPECT_EQ (Pixels (), (Bytes {1, 2, 3, 255}));
}

TEST_F (TgaImage, IdentificationFieldShiftsThePixels) {
    Bytes file = TGA (2, 1, 24, {'I', 'D', 1, 2, 3, 4, 5, 6});
    file[0]    = 2;
    ASSERT_EQ (Read_TGA (file), 1);
    EXPECT_EQ (Pixels (), (Bytes {'I', 'D', 1, 255, 2, 3, 4, 255}));
}

TEST_F (TgaImage, OtherDepthsAreRefused) {
    for (unsigned depth = 0; depth < 256; depth++) {
        int good = depth == 24 || depth == 32;
        EXPECT_EQ (Read_TGA (TGA (1, 1, depth, Bytes (40))), good) << depth;
        EXPECT_EQ (image.pixels != nullptr, good);
        EXPECT_EQ (Reported (),
                   good ? "" : "7: TGA_Read_Image() File:utility_IGB Line:N\n7: image.tga should be TARGA\n");
    }
}

TEST_F (TgaImage, FileThatEndsInItsHeaderIsNone) {
    Bytes file = TGA (1, 1, 24, {});
    for (size_t count = 0; count < 18; count++) {
        EXPECT_EQ (Read_TGA (Bytes (file.begin (), file.begin () + static_cast<long> (count))), 0);
        EXPECT_EQ (Reported (), "7: TGA_Read_Image() File:utility_IGB Line:N\n7: image.tga should be TARGA\n");
    }
    File_Fail_At (FILE_READ, 1, ERROR_CODE);
    EXPECT_EQ (Read_TGA (TGA (1, 1, 24, {1, 2, 3})), 0);
    EXPECT_EQ (Reported (), "7: TGA_Read_Image() File:utility_IGB Line:N\n7: image.tga should be TARGA\n");
}

TEST_F (TgaImage, FewerPixelsAreRefusedBeforeMemoryIsTaken) {
    for (unsigned depth : {24u, 32u})
        for (size_t count = 0; count < 6 * depth / 8; count++) {
            Memory_Fail_At (2); // The one before is the open file.
            EXPECT_EQ (Read_TGA (TGA (3, 2, depth, Counting (count))), 0);
            EXPECT_EQ (Memory_Failed (), 0);
            EXPECT_EQ (image.pixels, nullptr);
            EXPECT_EQ (Reported (), Short ("TGA_Read_Image", "image.tga"));
        }
    Memory_Fail_At (0);
}

TEST_F (TgaImage, SizesBeyondTheFileAreRefusedBeforeMemoryIsTaken) {
    unsigned const sizes[][2] = {{65535, 65535}, {32768, 32768}, {65535, 1}, {1, 65535}}; // The second is 0 in 32 bits.
    for (auto &size : sizes)
        for (unsigned depth : {24u, 32u}) {
            Memory_Fail_At (2);
            EXPECT_EQ (Read_TGA (TGA (size[0], size[1], depth, Counting (99))), 0);
            EXPECT_EQ (Memory_Failed (), 0);
            EXPECT_EQ (Reported (), Short ("TGA_Read_Image", "image.tga"));
        }
}

TEST_F (TgaImage, NoWidthOrHeightIsAnEmptyImage) {
    unsigned const sizes[][2] = {{0, 0}, {0, 1}, {1, 0}, {0, 65535}, {65535, 0}};
    for (auto &size : sizes)
        for (unsigned depth : {24u, 32u}) {
            EXPECT_EQ (Read_TGA (TGA (size[0], size[1], depth, {})), 1);
            EXPECT_NE (image.pixels, nullptr);
            EXPECT_EQ (image.width, size[0]);
            EXPECT_EQ (image.height, size[1]);
        }
    EXPECT_EQ (Reported (), "");
}

TEST_F (TgaImage, MissingFileIsReported) {
    EXPECT_EQ (TGA_Read_Image (directory.File ("none.tga").c_str (), &image), 0);
    EXPECT_EQ (Reported (), "7: WARNING: in TGA_Read_Image()\n7: File:utility_IGB Line:N\n7: fopen(none.tga) failed\n");
    EXPECT_STREQ (System_Error_Name (System_Last_Error ()), "[ERROR_FILE_NOT_FOUND]");
}

TEST_F (TgaImage, ReadingThatFailsIsReported) {
    for (unsigned depth : {24u, 32u})
        for (long n : {2, 3, 4}) { // After the header, a read for each row.
            File_Fail_At (FILE_READ, n, ERROR_CODE);
            EXPECT_EQ (Read_TGA (TGA (3, 3, depth, Counting (36))), 0);
            EXPECT_EQ (image.pixels, nullptr);
            EXPECT_EQ (Reported (), Short ("TGA_Read_Image", "image.tga", ERROR_CODE));
            File_Fail_At (FILE_READ, n, 0);
            EXPECT_EQ (Read_TGA (TGA (3, 3, depth, Counting (36))), 0);
            EXPECT_EQ (Reported (), Short ("TGA_Read_Image", "image.tga"));
        }
}

TEST_F (TgaImage, FullMemoryIsReported) {
    const char *expected[] = {"memory error in malloc (var=file",
                              "memory error in malloc (var=image->pixels, dim=3x8)"};
    for (long n = 1; n <= 2; n++) {
        Memory_Fail_At (n);
        EXPECT_EQ (Read_TGA (TGA (2, 3, 24, Counting (18))), 0);
        EXPECT_EQ (Memory_Failed (), 1);
        EXPECT_EQ (log.Count (LOG_ERROR, expected[n - 1]), 1);
        EXPECT_EQ (image.pixels, nullptr);
        log.Clear ();
    }
    Memory_Fail_At (3);
    EXPECT_EQ (Read_TGA (TGA (2, 3, 24, Counting (18))), 1);
    EXPECT_EQ (Memory_Failed (), 0);
}

// --- any file --------------------------------------------------------------

struct Decoded {
    bool  good;
    Bytes pixels;
};

static Decoded Expect_TGA (const Bytes &file) {
    if (file.size () < 18 || (file[16] != 24 && file[16] != 32)) return {false, {}};
    size_t width = file[12] + file[13] * 256u, height = file[14] + file[15] * 256u, bytes = file[16] / 8u;
    if (width * height * bytes > file.size () - 18) return {false, {}};
    Bytes pixels;
    for (size_t y = 0; y < height; y++)
        for (size_t x = 0; x < width; x++) {
            const unsigned char *pixel = &file[18 + ((height - 1 - y) * width + x) * bytes];
            pixels.insert (pixels.end (), pixel, pixel + 3);
            pixels.push_back (bytes == 4 ? pixel[3] : pixel[0] || pixel[1] || pixel[2] ? 255 : 0);
        }
    return {true, pixels};
}

// The rules of the header again, on texts: 0, or its size.
static size_t Expect_Header (const Bytes &file, size_t *width, size_t *height, size_t *bytes) {
    std::string all (file.begin (), file.end ());
    long long   limit = -1, lines = 0;
    size_t      place = 0;
    bool        last  = false;
    *width = *height = *bytes = 0;
    while (!last) {
        size_t      end  = all.find_first_of ("\n\f", place);
        std::string line = all.substr (place, end == std::string::npos ? end : end - place);
        last             = end == std::string::npos || all[end] == '\f';
        place            = end == std::string::npos ? all.size () : end + 1;
        lines++;
        line.erase (std::remove (line.begin (), line.end (), '\r'), line.end ());
        if (line.size () > 79) return 0;
        line = line.substr (0, line.find_first_of ("*#"));
        for (char &c : line)
            if (c >= 'A' && c <= 'Z') c = static_cast<char> (c + 32);
        for (size_t start = 0; (start = line.find_first_not_of (" ,;\t", start)) != std::string::npos;) {
            size_t      stop  = line.find_first_of (" ,;\t", start);
            std::string token = line.substr (start, stop == std::string::npos ? stop : stop - start);
            start             = stop == std::string::npos ? line.size () : stop;
            size_t colon      = token.find (':');
            if (colon == std::string::npos) return 0;
            std::string key = token.substr (0, colon), value = token.substr (colon + 1);
            long long   number = strtoll (value.c_str (), nullptr, 10);
            size_t      size   = number > 0 && number < 65536 ? static_cast<size_t> (number) : 0;
            if (key == "x") *width = size;
            if (key == "y") *height = size;
            if (key == "sup") limit = 8 + std::max (-2147483648LL, std::min (2147483647LL, number));
            if (key == "sup" && limit < 0) limit = 0;
            for (const char *type : {"1byt", "1cha", "2sho", "4lon", "4flo", "8dou", "8com", "4rgb", "@d_c"})
                if (key == "type" && value.substr (0, 3) == type + 1)
                    *bytes = *type == '@' ? 16 : static_cast<size_t> (*type - '0');
        }
        if (limit >= 0 && lines >= limit) last = true;
    }
    return *width && *height && *bytes ? place : 0;
}

static Decoded Expect_IGB (const Bytes &file) {
    size_t width, height, bytes;
    size_t start = Expect_Header (file, &width, &height, &bytes);
    if (!start || width * height * bytes > file.size () - start) return {false, {}};
    Bytes pixels (file.begin () + static_cast<long> (start),
                  file.begin () + static_cast<long> (start + width * height * bytes));
    for (auto pixel = pixels.begin (); bytes == 4 && pixel != pixels.end (); pixel += 4)
        std::rotate (pixel, pixel + 1, pixel + 4);
    return {true, pixels};
}

static const char *const PIECES[] = {"x:", "y:",   "type:", "sup:",        "\n",
                                     "\f", "\r",   "#",     "*",           " ",
                                     ":",  "rgba", "dou",   "short",       "65535",
                                     "0",  "-9",   "3",     "99999999999", "                                        "};

static void Mutate (Bytes *file, std::mt19937 *random) {
    auto below = [random] (size_t limit) { return static_cast<size_t> ((*random) () % (limit ? limit : 1)); };
    for (size_t steps = below (4); steps > 0; steps--) {
        auto  place = file->begin () + static_cast<long> (below (file->size () + 1));
        Bytes piece = Of_Text (PIECES[below (std::size (PIECES))]);
        switch (below (6)) {
        case 0: file->erase (place, file->end ()); break;
        case 1: file->insert (place, piece.begin (), piece.end ()); break;
        case 2: file->insert (file->end (), below (40), static_cast<unsigned char> (below (256))); break;
        case 3:
            if (place != file->end ()) file->erase (place);
            break;
        default:
            if (place != file->end ()) *place = static_cast<unsigned char> (below (256));
        }
    }
}

TEST_F (ImageFilesAtRandom, AreReadByTheRulesOrRefused) {
    const Bytes  seeds[] = {TGA (2, 2, 24, Counting (12)),
                            TGA (3, 1, 32, Counting (12)),
                            TGA (1, 1, 24, Bytes (3)),
                            Of_Text ("x:2 y:2 type:rgba\f") + Counting (16),
                            Of_Text ("# image\nx:3, y:1; type:short\nsup:1\n\n\n\n\n\n\n") + Counting (6),
                            Of_Text ("X:1\r\nY:1\r\nTYPE:D_complex\r\n\f") + Counting (16)};
    std::mt19937 random (20160615);
    const int    count   = System_Separator () == '\\' ? 2000 : 20000; // Files are slow under Wine.
    int          read[2] = {0, 0}, refused[2] = {0, 0};
    for (int i = 0; i < count; i++) {
        Bytes file   = seeds[static_cast<size_t> (i) % std::size (seeds)];
        int   is_igb = static_cast<size_t> (i) % std::size (seeds) >= 3;
        Mutate (&file, &random);
        Decoded expected = is_igb ? Expect_IGB (file) : Expect_TGA (file);
        int     good     = Read (is_igb ? "image.igb" : "image.tga", file);
        ASSERT_EQ (good, expected.good) << i << " " << std::string (file.begin (), file.end ());
        ASSERT_EQ (image.pixels != nullptr, good);
        ASSERT_EQ (Pixels (), expected.pixels) << i;
        (good ? read : refused)[is_igb]++;
        log.Clear ();
    }
    for (int is_igb : {0, 1}) {
        EXPECT_GT (read[is_igb], count / 20);
        EXPECT_GT (refused[is_igb], count / 20);
    }
}
