#include "attribute/listing.h"

#include <string.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tables/data_dictionary.h"
#include "tests/support/log_recorder.h"
#include "tests/support/stream.h"
#include "util/my_error_fct.h"

// An attribute with a value in a block of just its size, so that a read behind it is found.
class Sample {
public:
    Sample (const char *vr, const std::string &bytes) {
        if (*vr) attribute.vr_file = Code (vr[0], vr[1]);
        attribute.flags  = ORIGIN_DICOM;
        attribute.length = static_cast<int32_t> (bytes.size ());
        block.reset (new uint8_t[bytes.size ()]);
        memcpy (block.get (), bytes.data (), bytes.size ());
        attribute.data = block.get ();
    }
    Sample (const char *vr, const Stream &stream)
        : Sample (vr, std::string (stream.bytes.begin (), stream.bytes.end ())) {
        if (stream.syntax == EXPLICIT_BIG) attribute.mode = MODE_BIG_ENDIAN;
    }

    std::string Text () {
        const char *text = DICOM_Attribute_Data_Text (nullptr, &attribute, nullptr);
        return text ? text : "(none)";
    }

    Attribute attribute = {};

private:
    std::unique_ptr<uint8_t[]> block;
};

static std::string Text_Of (const char *vr, const std::string &bytes) { return Sample (vr, bytes).Text (); }

// count pieces, joined.
static std::string Repeat (const std::string &piece, int count, const std::string &separator) {
    std::string text;
    for (int i = 0; i < count; i++) text += (i ? separator : "") + piece;
    return text;
}

// --- texts -----------------------------------------------------------------

TEST (ListingDataText, TextIsShownUpToItsLimit) {
    for (const char *vr : {"AE", "AS", "CS", "DA", "DS", "DT", "IS", "LO", "LT", "PN", "SH", "ST", "UT"}) {
        EXPECT_EQ ("DOE^JOHN", Text_Of (vr, "DOE^JOHN")) << vr;
        EXPECT_EQ (std::string (249, 'x'), Text_Of (vr, std::string (249, 'x'))) << vr;
        EXPECT_EQ (std::string (250, 'x'), Text_Of (vr, std::string (250, 'x'))) << vr;
        EXPECT_EQ (std::string (250, 'x') + "...", Text_Of (vr, std::string (251, 'x'))) << vr;
        EXPECT_EQ (std::string (250, 'x') + "...", Text_Of (vr, std::string (5000, 'x'))) << vr;
    }
}

TEST (ListingDataText, TextEndsAtItsFirstZero) {
    EXPECT_EQ ("abc", Text_Of ("LO", std::string ("abc\0def", 7)));
    EXPECT_EQ ("", Text_Of ("LO", std::string (4, '\0')));
    EXPECT_EQ ("abc...", Text_Of ("LT", "abc" + std::string (300, '\0')));
}

TEST (ListingDataText, TextKeepsBlanksAndBackslashes) {
    EXPECT_EQ ("A\\B ", Text_Of ("CS", "A\\B "));
    EXPECT_EQ ("100%s", Text_Of ("LO", "100%s"));
}

TEST (ListingDataText, KnownUidShowsItsName) {
    EXPECT_EQ ("= UID Implicit VR, Little Endian", Text_Of ("UI", "1.2.840.10008.1.2"));
    EXPECT_EQ ("= UID Implicit VR, Little Endian", Text_Of ("UI", std::string ("1.2.840.10008.1.2\0", 18)));
    EXPECT_EQ ("= UID Exlicit VR, Little Endian", Text_Of ("UI", std::string ("1.2.840.10008.1.2.1\0", 20)));
}

TEST (ListingDataText, UnknownUidShowsItself) {
    EXPECT_EQ ("1.2.3.4", Text_Of ("UI", std::string ("1.2.3.4\0", 8)));
    EXPECT_EQ ("1.2.840.10008.1.2\\1.2.3", Text_Of ("UI", "1.2.840.10008.1.2\\1.2.3"));
    EXPECT_EQ (std::string (249, '1'), Text_Of ("UI", std::string (249, '1')));
    EXPECT_EQ (std::string (250, '1') + "...", Text_Of ("UI", std::string (250, '1')));
    EXPECT_EQ (std::string (250, '1') + "...", Text_Of ("UI", std::string (251, '1')));
    EXPECT_EQ ("1.2.840.10008.1.2...", Text_Of ("UI", "1.2.840.10008.1.2" + std::string (233, '\0')));
}

// --- numbers ---------------------------------------------------------------

TEST (ListingDataText, ShortsFollowTheByteOrder) {
    for (Stream_Syntax syntax : {EXPLICIT_LITTLE, EXPLICIT_BIG}) {
        Stream stream = Stream_Begin (syntax);
        for (int number : {1, 0xFFFF, 0x8000, 258}) Stream_Add_16 (&stream, static_cast<uint16_t> (number));
        EXPECT_EQ ("1 / 65535 / 32768 / 258", Sample ("US", stream).Text ());
        EXPECT_EQ ("1 / -1 / -32768 / 258", Sample ("SS", stream).Text ());
        EXPECT_EQ ("0001 ffff 8000 0102", Sample ("OW", stream).Text ());
        EXPECT_EQ ("(0001,ffff) / (8000,0102)", Sample ("AT", stream).Text ());
    }
}

TEST (ListingDataText, LongsAreSigned) {
    for (Stream_Syntax syntax : {EXPLICIT_LITTLE, EXPLICIT_BIG}) {
        Stream stream = Stream_Begin (syntax);
        for (uint32_t number : {1u, 0xFFFFFFFFu, 0x80000000u, 66051u}) Stream_Add_32 (&stream, number);
        EXPECT_EQ ("1 / -1 / -2147483648 / 66051", Sample ("SL", stream).Text ());
        EXPECT_EQ ("1 / -1 / -2147483648 / 66051", Sample ("UL", stream).Text ());
    }
}

TEST (ListingDataText, FloatsHaveThreeDecimals) {
    for (Stream_Syntax syntax : {EXPLICIT_LITTLE, EXPLICIT_BIG}) {
        Stream floats = Stream_Begin (syntax), doubles = Stream_Begin (syntax);
        for (double number : {0.5, -2.0625, 1000000.0}) {
            Stream_Add_Float (&floats, static_cast<float> (number));
            Stream_Add_Double (&doubles, number);
        }
        EXPECT_EQ ("0.500 / -2.062 / 1000000.000", Sample ("FL", floats).Text ());
        EXPECT_EQ ("0.500 / -2.062 / 1000000.000", Sample ("FD", doubles).Text ());
    }
}

TEST (ListingDataText, SwappedUnitsAreRead) {
    Sample sample ("SL", std::string ("\x02\x01\x04\x03", 4));
    sample.attribute.mode = MODE_SWAB;
    EXPECT_EQ ("67305985", sample.Text ());
}

TEST (ListingDataText, NumbersAreShownUpToTheirLimit) {
    struct Limit {
        const char *vr, *zero, *separator;
        int         size, shown;
    };
    static const Limit limits[] = {{"OW", "0000", " ", 2, 32},
                                   {"FL", "0.000", " / ", 4, 16},
                                   {"FD", "0.000", " / ", 8, 16},
                                   {"OB", "00", " ", 1, 32},
                                   {"AT", "(0000,0000)", " / ", 4, 16},
                                   {"SS", "0", " / ", 2, 16},
                                   {"US", "0", " / ", 2, 16},
                                   {"SL", "0", " / ", 4, 16},
                                   {"UL", "0", " / ", 4, 16},
                                   {"TM", "00", " ", 1, 16},
                                   {"OF", "00", " ", 1, 16},
                                   {"UH", "00", " ", 1, 16},
                                   {"", "00", " ", 1, 16}};
    for (const Limit &limit : limits) {
        int         bytes = limit.size * limit.shown;
        std::string full  = Repeat (limit.zero, limit.shown, limit.separator);
        std::string fewer = Repeat (limit.zero, limit.shown - 1, limit.separator);
        EXPECT_EQ (fewer, Text_Of (limit.vr, std::string (bytes - 1, '\0'))) << limit.vr;
        EXPECT_EQ (full, Text_Of (limit.vr, std::string (bytes, '\0'))) << limit.vr;
        EXPECT_EQ (full + " ...", Text_Of (limit.vr, std::string (bytes + 1, '\0'))) << limit.vr;
        EXPECT_EQ (full + " ...", Text_Of (limit.vr, std::string (bytes + limit.size, '\0'))) << limit.vr;
        EXPECT_EQ (full + " ...", Text_Of (limit.vr, std::string (70000, '\0'))) << limit.vr;
        for (int length = 1; length < limit.size; length++)
            EXPECT_EQ ("", Text_Of (limit.vr, std::string (length, '\0'))) << limit.vr;
        EXPECT_EQ (limit.zero, Text_Of (limit.vr, std::string (limit.size, '\0'))) << limit.vr;
    }
}

TEST (ListingDataText, BytesAreHexadecimal) {
    EXPECT_EQ ("00 ab ff 10", Text_Of ("OB", std::string ("\0\xAB\xFF\x10", 4)));
    EXPECT_EQ ("31 32 30 30", Text_Of ("TM", "1200"));
    EXPECT_EQ ("31 32 30 30", Text_Of ("", "1200"));
}

TEST (ListingDataText, HugeNumbersEndBeforeTheTextIsFull) {
    Stream floats = Stream_Begin (EXPLICIT_LITTLE), doubles = Stream_Begin (EXPLICIT_LITTLE);
    for (int i = 0; i < 16; i++) {
        Stream_Add_Float (&floats, -std::numeric_limits<float>::max ());
        Stream_Add_Double (&doubles, -std::numeric_limits<double>::max ());
    }
    std::string number = "-340282346638528859811704183484516925440.000";
    EXPECT_EQ (Repeat (number, 10, " / ") + " ...", Sample ("FL", floats).Text ());

    std::string text = Sample ("FD", doubles).Text ();
    EXPECT_EQ (1u + 309u + 4u + 4u, text.size ());
    EXPECT_EQ ("-179769313486231570", text.substr (0, 19));
    EXPECT_EQ (".000 ...", text.substr (text.size () - 8));
}

// Eleven of these numbers fit into the text, but the mark behind them would not.
TEST (ListingDataText, MarkOfACutHasItsRoom) {
    Stream      floats = Stream_Begin (EXPLICIT_LITTLE);
    std::string number = "340282346638528859811704183484516925440.000", shown;
    for (int i = 0; i < 16; i++) {
        float sign = i < 5 ? -1.0f : 1.0f;
        Stream_Add_Float (&floats, sign * std::numeric_limits<float>::max ());
        if (i < 10) shown += std::string (i ? " / " : "") + (i < 5 ? "-" : "") + number;
    }
    EXPECT_EQ (shown + " ...", Sample ("FL", floats).Text ());
}

TEST (ListingDataText, EveryBytePatternFitsTheBuffer) {
    for (const char *vr : {"FL", "FD", "SL", "UL", "SS", "US", "AT", "OW", "OB", "UN", "UI", "LO", "SQ", "OX", ""})
        for (int byte = 0; byte < 256; byte++)
            for (size_t length : {1u, 3u, 8u, 64u, 128u, 129u, 250u, 251u, 600u}) {
                std::vector<char> buffer (LISTING_TEXT_SIZE);
                Sample            sample (vr, std::string (length, static_cast<char> (byte)));
                const char       *text = DICOM_Attribute_Data_Text (nullptr, &sample.attribute, buffer.data ());
                ASSERT_EQ (buffer.data (), text);
                ASSERT_LT (strnlen (text, buffer.size ()), buffer.size ());
            }
}

// --- unknown values --------------------------------------------------------

TEST (ListingDataText, PrintableUnknownIsShownAsText) {
    EXPECT_EQ ("(VR=UN Unknown) abc", Text_Of ("UN", "abc"));
    EXPECT_EQ ("(VR=UN Unknown) abcde ~", Text_Of ("UN", "abcde ~"));
    EXPECT_EQ ("(VR=UN Unknown) " + std::string (32, 'x'), Text_Of ("UN", std::string (32, 'x')));
    EXPECT_EQ ("(VR=UN Unknown) " + std::string (32, 'x') + " ...", Text_Of ("UN", std::string (33, 'x')));
    EXPECT_EQ ("(VR=UN Unknown) " + std::string (32, 'x') + " ...", Text_Of ("UN", std::string (250, 'x') + "\n"));
}

TEST (ListingDataText, UnprintableUnknownIsShownWhenShort) {
    EXPECT_EQ ("(VR=UN Unknown) 00", Text_Of ("UN", std::string ("\0", 1)));
    EXPECT_EQ ("(VR=UN Unknown) 61 62 1f", Text_Of ("UN", "ab\x1F"));
    EXPECT_EQ ("(VR=UN Unknown) 61 62 63 7f", Text_Of ("UN", "abc\x7F"));
    EXPECT_EQ ("(VR=UN Unknown) ", Text_Of ("UN", "abcd\x7F"));
    EXPECT_EQ ("(VR=UN Unknown) ", Text_Of ("UN", std::string ("abcdefg\0", 8)));
    EXPECT_EQ ("(VR=UN Unknown) ", Text_Of ("UN", std::string (249, 'x') + "\n"));
}

// --- no bytes --------------------------------------------------------------

TEST (ListingDataText, ValueLeftInTheFileSaysWhere) {
    Attribute attribute = {};
    attribute.vr_file   = VR_OW;
    attribute.length    = 2000;
    attribute.pos_data  = 1234;
    EXPECT_STREQ ("(data from file at offset=1234)", DICOM_Attribute_Data_Text (nullptr, &attribute, nullptr));
    attribute.vr_file = VR_SQ;
    EXPECT_STREQ ("(data from file at offset=1234)", DICOM_Attribute_Data_Text (nullptr, &attribute, nullptr));
}

TEST (ListingDataText, NothingIsShownOfNothing) {
    Attribute attribute = {};
    for (uint16_t vr : {VR_OB, VR_LO, VR_UI, VR_UN, VR_US, VR_ITEM, VR_UT})
        for (int32_t length : {0, -1, -2, std::numeric_limits<int32_t>::min ()}) {
            attribute.vr     = vr;
            attribute.length = length;
            EXPECT_EQ (nullptr, DICOM_Attribute_Data_Text (nullptr, &attribute, nullptr));
        }
}

// A value that cleaning has emptied is there, unlike one that was discarded.
TEST (ListingDataText, EmptiedValueIsAnEmptyText) {
    for (const char *vr : {"OB", "OW", "LO", "UI", "US", "FD", "TM", ""}) EXPECT_EQ ("", Text_Of (vr, "")) << vr;
    EXPECT_EQ ("(VR=UN Unknown) ", Text_Of ("UN", ""));
}

TEST (ListingDataText, LengthWithoutBytesIsNotRead) {
    for (const char *vr : {"OB", "LO", "UI", "UN", "US", "FD", ""})
        for (int32_t length : {-1, std::numeric_limits<int32_t>::min ()}) {
            Sample sample (vr, "");
            sample.attribute.length = length;
            EXPECT_EQ ("(none)", sample.Text ()) << vr << length;
        }
}

TEST (ListingDataText, SequenceIsNamed) {
    Attribute attribute = {};
    attribute.vr_file   = VR_SQ;
    attribute.length    = LENGTH_UNDEFINED;
    EXPECT_STREQ ("(sequence)", DICOM_Attribute_Data_Text (nullptr, &attribute, nullptr));
    attribute.length = 0;
    EXPECT_STREQ ("(sequence)", DICOM_Attribute_Data_Text (nullptr, &attribute, nullptr));
    EXPECT_EQ ("---- Sequence in ----------------", Text_Of ("SQ", "data"));
}

TEST (ListingDataText, StreamsVrComesBeforeTheDictionarys) {
    Sample sample ("US", std::string ("\x01\0", 2));
    sample.attribute.vr = VR_OB;
    EXPECT_EQ ("1", sample.Text ());
    sample.attribute.vr_file = 0;
    EXPECT_EQ ("01 00", sample.Text ());
}

TEST (ListingDataText, BufferOfTheCallerOrASharedOne) {
    char   buffer[LISTING_TEXT_SIZE];
    Sample one ("LO", "one"), two ("LO", "two");
    EXPECT_EQ (buffer, DICOM_Attribute_Data_Text (nullptr, &one.attribute, buffer));
    const char *shared = DICOM_Attribute_Data_Text (nullptr, &two.attribute, nullptr);
    EXPECT_STREQ ("one", buffer);
    EXPECT_STREQ ("two", shared);
    EXPECT_EQ (shared, DICOM_Attribute_Data_Text (nullptr, &one.attribute, nullptr));
    EXPECT_STREQ ("one", shared);
}

// --- line ------------------------------------------------------------------

static std::string Raw_Line (Attribute *attribute, int depth = 0) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    cursor.depth          = depth;
    DICOM_Attribute_List_Line (nullptr, &cursor, attribute, LOG_TRACE1);
    EXPECT_EQ (1u, log.lines.size ());
    if (log.lines.empty ()) return "";
    EXPECT_EQ (LOG_TRACE1, log.lines[0].kind);
    return log.lines[0].text;
}

static std::string Clean_Line (Attribute *attribute, int depth = 0) { return Clean (Raw_Line (attribute, depth)); }

static char description_text[] = "Patient's Name";

static Attribute Name_Attribute (Sample *sample) {
    Attribute attribute   = sample->attribute;
    attribute.group       = 0x0010;
    attribute.element     = 0xAB10;
    attribute.description = description_text;
    attribute.type        = Code ('2', ' ');
    return attribute;
}

TEST (ListingLine, ShowsAllFieldsInColumns) {
    Sample    sample ("PN", "DOE^JOHN");
    Attribute attribute = Name_Attribute (&sample);
    EXPECT_EQ ("(0010,ab10) (DICOM)     Patient's Name                           (PN,2 ,8   ) DOE^JOHN",
               Clean_Line (&attribute));
}

TEST (ListingLine, CarriesItsColours) {
    Sample    sample ("PN", "DOE^JOHN");
    Attribute attribute = Name_Attribute (&sample);
    EXPECT_EQ ("(\x01"
               "0010\x02,\x01"
               "ab10\x02) \xF1\x01(DICOM)   \xF0 \x05 Patient's Name                          "
               "\x02 (\x01PN\x02,2 ,8   ) DOE^JOHN",
               Raw_Line (&attribute));
}

TEST (ListingLine, IsIndentedByDepth) {
    Sample    sample ("PN", "DOE^JOHN");
    Attribute attribute = Name_Attribute (&sample);
    EXPECT_EQ ("    " + Clean_Line (&attribute), Clean_Line (&attribute, 1));
    EXPECT_EQ (std::string (36, ' ') + Clean_Line (&attribute), Clean_Line (&attribute, 9));
}

TEST (ListingLine, SyntaxErrorMakesTheTagRed) {
    Attribute attribute = {};
    attribute.flags     = SYNTAX_ERROR;
    EXPECT_EQ ("(\x04"
               "0000\x02,\x04"
               "0000\x02) ",
               Raw_Line (&attribute).substr (0, 16));
}

TEST (ListingLine, OriginHasAnOrder) {
    struct Case {
        int         flags;
        const char *label;
    };
    static const Case cases[] = {
        {0, "\xF1\x02          \xF0"},
        {3, "\xF1\x02          \xF0"},
        {8, "\xF1\x02          \xF0"},
        {ORIGIN_DICOM, "\xF1\x01(DICOM)   \xF0"},
        {ORIGIN_KEST, "\xF1\x01(Kest)    \xF0"},
        {ORIGIN_MODULE, "\xF1\x01(Module)  \xF0"},
        {ORIGIN_MODULE | CONVERTER | SYNTAX_ERROR | VR_UNKNOWN, "\xF1\x01(Module)  \xF0"},
        {RETIRED | ORIGIN_DICOM, "\xF1\x05(Retired) \xF0"},
        {PRIVATE | RETIRED | ORIGIN_DICOM, "\xF1\x05(Private) \xF0"},
        {DELETED | PRIVATE | RETIRED, "\xF1\x04(Deleted) \xF0"},
        {INVALID | DELETED | PRIVATE | RETIRED, "\xF1\x04(Invalid) \xF0"},
        {DEFAULT | INVALID | DELETED | PRIVATE | RETIRED, "\xF1\x05(Default) \xF0"},
        {FORCED | DEFAULT | INVALID | DELETED | PRIVATE | RETIRED, "\xF1\x05(Forced)  \xF0"},
        {APPEND | FORCED | DEFAULT | INVALID | DELETED | PRIVATE | RETIRED, "\xF1\x05(Append)  \xF0"},
        {APPEND | ORIGIN_KEST, "\xF1\x05(Append)  \xF0"}};
    for (const Case &one : cases) {
        Attribute attribute = {};
        attribute.flags     = static_cast<uint16_t> (one.flags);
        EXPECT_EQ (one.label, Raw_Line (&attribute).substr (16, 13)) << one.flags;
    }
}

TEST (ListingLine, TypeColoursTheDescription) {
    struct Case {
        uint16_t    type;
        const char *colour, *text;
    };
    static const Case cases[] = {{Code ('1', ' '), "\x04", ",1 ,"}, {Code ('1', 'C'), "\x04", ",1C,"},
                                 {Code ('2', ' '), "\x05", ",2 ,"}, {Code ('2', 'C'), "\x05", ",2C,"},
                                 {Code ('3', ' '), "\x06", ",3 ,"}, {Code ('3', 'C'), "\x02", ",3C,"},
                                 {Code ('X', 'Y'), "\x02", ",XY,"}, {0, "\x02", ",--,"}};
    for (const Case &one : cases) {
        Attribute attribute = {};
        attribute.type      = one.type;
        EXPECT_EQ (one.colour + std::string (" Unknown tag"), Raw_Line (&attribute).substr (30, 13));
        EXPECT_EQ (one.text, Clean_Line (&attribute).substr (68, 4));
    }
}

TEST (ListingLine, PrefixHasAnOrder) {
    struct Case {
        int  flags;
        char prefix;
    };
    static const Case cases[] = {{0, ' '},
                                 {INVALID | PRIVATE, ' '},
                                 {APPEND, '+'},
                                 {APPEND | CONVERTER, 'o'},
                                 {APPEND | CONVERTER | FORCED, '!'},
                                 {APPEND | CONVERTER | FORCED | DEFAULT, '='}};
    for (const Case &one : cases) {
        Attribute attribute = {};
        attribute.flags     = static_cast<uint16_t> (one.flags);
        EXPECT_EQ (one.prefix, Clean_Line (&attribute)[23]);
    }
}

TEST (ListingLine, VrShowsWhereItComesFrom) {
    struct Case {
        uint16_t    vr_file, vr;
        int         flags;
        const char *text;
    };
    static const Case cases[] = {{VR_CS, 0, 0,
                                  " (\x01"
                                  "CS\x02,"},
                                 {VR_CS, VR_LO, 0,
                                  " (\x01"
                                  "CS\x02,"},
                                 {0, VR_LO, 0,
                                  " (\x06"
                                  "LO\x02,"},
                                 {0, 0, 0,
                                  " (\x06"
                                  "--\x02,"},
                                 {VR_UN, 0, VR_UNKNOWN,
                                  " (\xF1\x04"
                                  "UN\xF0\x02,"},
                                 {0, VR_UN, VR_UNKNOWN,
                                  " (\xF1\x04"
                                  "UN\xF0\x02,"},
                                 {0, 0, VR_UNKNOWN,
                                  " (\xF1\x04"
                                  "--\xF0\x02,"}};
    for (const Case &one : cases) {
        Attribute attribute = {};
        attribute.vr_file   = one.vr_file;
        attribute.vr        = one.vr;
        attribute.flags     = static_cast<uint16_t> (one.flags);
        EXPECT_EQ (one.text, Raw_Line (&attribute).substr (73, strlen (one.text)));
    }
}

TEST (ListingLine, DescriptionHasFortyBytes) {
    static const Dictionary_Entry entry     = {0, 0, 0, 1, "Name of the dictionary", {}, {}};
    Attribute                     attribute = {};
    EXPECT_EQ ("Unknown tag" + std::string (29, ' '), Clean_Line (&attribute).substr (24, 40));
    attribute.definition = &entry;
    EXPECT_EQ ("Name of the dictionary" + std::string (18, ' '), Clean_Line (&attribute).substr (24, 40));

    std::string text (40, 'd');
    attribute.description = &text[0];
    EXPECT_EQ (text + " (", Clean_Line (&attribute).substr (24, 42));
    text += "cut";
    attribute.description = &text[0];
    EXPECT_EQ (std::string (40, 'd') + " (", Clean_Line (&attribute).substr (24, 42));
    text                  = "";
    attribute.description = &text[0];
    EXPECT_EQ (std::string (40, ' ') + " (", Clean_Line (&attribute).substr (24, 42));
}

TEST (ListingLine, CodesInTheDescriptionAreBlanks) {
    Attribute   attribute = {};
    std::string text      = "\xF1\x02"
                            "bold\xF0\x01\x09\xFF"
                            "end\x0A\xEF%s";
    attribute.description = &text[0];
    EXPECT_EQ ("  bold    end\x0A\xEF%s" + std::string (23, ' '), Raw_Line (&attribute).substr (32, 40));
    EXPECT_EQ ("(", Raw_Line (&attribute).substr (74, 1));

    text                  = std::string (38, '\x01') + "abcd";
    attribute.description = &text[0];
    EXPECT_EQ (std::string (38, ' ') + "ab (", Clean_Line (&attribute).substr (24, 42));
}

TEST (ListingLine, LengthIsSigned) {
    Attribute attribute = {};
    EXPECT_EQ (",0   ) ", Clean_Line (&attribute).substr (71, 7));
    attribute.length = LENGTH_UNDEFINED;
    EXPECT_EQ (",-1  ) (no data)", Clean_Line (&attribute).substr (71));
    attribute.length   = 1234567;
    attribute.pos_data = 88;
    EXPECT_EQ (",1234567) (data from file at offset=88)", Clean_Line (&attribute).substr (71));
}

TEST (ListingLine, SequenceSaysSo) {
    Attribute attribute = {};
    attribute.vr        = VR_SQ;
    EXPECT_EQ ("---- Sequence in ---------------", Clean_Line (&attribute).substr (78));
    attribute.length = LENGTH_UNDEFINED;
    EXPECT_EQ ("---- Sequence in ---------------", Clean_Line (&attribute).substr (78));
    attribute.vr_file = VR_OB;
    EXPECT_EQ ("(no data)", Clean_Line (&attribute).substr (78));
    Sample sample ("SQ", "bytes");
    EXPECT_EQ ("---- Sequence in ---------------", Clean_Line (&sample.attribute).substr (78));
}

// --- list ------------------------------------------------------------------

static const std::string HEADING = "(grp, elem) Origin            description                        (VR,Tp,size) data";

TEST (ListingList, LegendStandsAboveTheTopList) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    DICOM_Attribute_List (nullptr, &cursor, nullptr, LOG_TRACE1);
    EXPECT_EQ ("Stool syntax: group & element color: red =syntax error, blue =normal\n"
               "Stool syntax: possible origin: DICOM, Kest, Module, Private, Retired, Deleted, Default, Forced\n"
               "Stool syntax: description prefix:! forced, = default, + append, o used by converter\n"
               "Stool syntax: description color: red type=1,1C, yellow type=2,2C, green type=3, black type unknown\n"
               "Stool syntax: VR color: red VR=UN, blue Explicit VR, green Implicit VR\n" +
                   HEADING + "\n",
               log.Text (LOG_TRACE1));
    EXPECT_EQ (6u, log.lines.size ());
}

TEST (ListingList, LegendCarriesItsColours) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    DICOM_Attribute_List (nullptr, &cursor, nullptr, LOG_TRACE1);
    ASSERT_EQ (6u, log.lines.size ());
    EXPECT_EQ ("Stool syntax: group & element color:\x04 red\x02 =syntax error,\x01 blue\x02 =normal",
               log.lines[0].text);
    EXPECT_EQ ("Stool syntax: possible origin: \x01"
               "DICOM, \x01Kest, \x01Module, \x05Private, \x05Retired, "
               "\x04"
               "Deleted, \x05"
               "Default, \x05"
               "Forced",
               log.lines[1].text);
    EXPECT_EQ ("Stool syntax: description prefix:\xF1\x02!\xF0 forced, \xF1\x02=\xF0 default, \xF1\x02+\xF0 append, "
               "\xF1\x02o\xF0 used by converter",
               log.lines[2].text);
    EXPECT_EQ ("Stool syntax: description color:\x04 red\x02 type=1,1C,\x05 yellow\x02 type=2,2C,\x06 green\x02 type=3,"
               "\x02 black\x02 type unknown",
               log.lines[3].text);
    EXPECT_EQ ("Stool syntax: VR color:\x04 red\x02 VR=UN,\x01 blue\x02 Explicit VR,\x06 green\x02 Implicit VR",
               log.lines[4].text);
    EXPECT_EQ ("\xF1\x02" + HEADING + "\xF0", log.lines[5].text);
}

TEST (ListingList, HeadingStandsAboveItsColumns) {
    Sample    sample ("PN", "DOE^JOHN");
    Attribute attribute = Name_Attribute (&sample);
    attribute.flags |= DEFAULT;
    std::string line = Clean_Line (&attribute);
    EXPECT_EQ (HEADING.find ("(grp"), line.find ("(0010"));
    EXPECT_EQ (HEADING.find ("Origin"), line.find ("(Default)"));
    EXPECT_EQ (23u, line.find ('='));
    EXPECT_EQ (24u, line.find ("Patient"));
    EXPECT_EQ (HEADING.find ("(VR"), line.find ("(PN"));
    EXPECT_EQ (HEADING.find ("Tp"), line.find ("2 "));
    EXPECT_EQ (HEADING.find ("size"), line.find ("8   "));
    EXPECT_EQ (HEADING.find ("data"), line.find ("DOE"));
}

// Sequence (0008,1140) with items; the third slot is empty, so the fourth is not reached.
struct Nest {
    Attribute  first = {}, sequence = {}, last = {}, one = {}, two = {}, hidden = {};
    Attribute *items[4] = {&one, &two, nullptr, &hidden};

    Nest () {
        first.group = 0x0008, first.element = 0x0005;
        sequence.group = 0x0008, sequence.element = 0x1140, sequence.vr = VR_SQ, sequence.flags = ORIGIN_DICOM;
        last.group = 0x0010, last.element = 0x0010;
        one.group = 0x0008, one.element = 0x1150, one.level = 1;
        two.group = 0x0008, two.element = 0x1155, two.level = 1;
        hidden.group = 0x0BAD, hidden.level = 1;
        first.next       = &sequence;
        sequence.next    = &last;
        sequence.item    = items;
        sequence.nb_item = 4;
    }
};

// What a listing writes below the legend, each text cut to its tag or to its ruler.
static std::vector<std::string> Skeleton (const Log_Recorder &log, int kind) {
    std::vector<std::string> texts;
    for (size_t i = 0; i < log.lines.size (); i++) {
        EXPECT_EQ (kind, log.lines[i].kind) << log.lines[i].text;
        std::string text  = Clean (log.lines[i].text);
        size_t      start = text.find_first_not_of (' ');
        texts.push_back (text.substr (0, start + (text[start] == '(' ? 11 : text.size ())));
    }
    if (texts.size () >= 6) texts.erase (texts.begin (), texts.begin () + 6);
    return texts;
}

TEST (ListingList, ItemsStandBetweenTheRulers) {
    Log_Recorder   log (2);
    SequenceCursor cursor = {};
    Nest           nest;
    DICOM_Attribute_List (nullptr, &cursor, &nest.first, LOG_TRACE2);
    EXPECT_EQ ((std::vector<std::string> {
                   "(0008,0005)",
                   "(0008,1140)",
                   "------------------------ ---- Sequence in ----(depth=0)-----",
                   "    ------------------------ ---- Item[1] in ---------------",
                   "    (0008,1150)",
                   "    ------------------------ ---- Item[1] out --------------",
                   "    ------------------------ ---- Item[2] in ---------------",
                   "    (0008,1155)",
                   "    ------------------------ ---- Item[2] out --------------",
                   "------------------------ ---- Sequence out --------------",
                   "(0010,0010)",
               }),
               Skeleton (log, LOG_TRACE2));
    EXPECT_EQ (0, cursor.depth);
}

TEST (ListingList, SequenceIsOpenedWithItsTagAndFlags) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    Nest           nest;
    DICOM_Attribute_List (nullptr, &cursor, &nest.first, LOG_TRACE1);
    EXPECT_EQ (0x0008, cursor.group[0]);
    EXPECT_EQ (0x1140, cursor.element[0]);
    EXPECT_EQ (ORIGIN_DICOM, cursor.flags[0]);
}

TEST (ListingList, EmptyFirstSlotListsNoItem) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    Nest           nest;
    nest.items[0] = nullptr;
    DICOM_Attribute_List (nullptr, &cursor, &nest.sequence, LOG_TRACE1);
    EXPECT_EQ ((std::vector<std::string> {"(0008,1140)", "------------------------ ---- Sequence in ----(depth=0)-----",
                                          "------------------------ ---- Sequence out --------------", "(0010,0010)"}),
               Skeleton (log, LOG_TRACE1));
}

TEST (ListingList, SequenceWithoutItemsIsNotOpened) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    Nest           nest;
    nest.sequence.nb_item = 0;
    DICOM_Attribute_List (nullptr, &cursor, &nest.sequence, LOG_TRACE1);
    EXPECT_EQ ((std::vector<std::string> {"(0008,1140)", "(0010,0010)"}), Skeleton (log, LOG_TRACE1));
}

TEST (ListingList, LegendIsWrittenAtTheTopOnly) {
    Log_Recorder   log (1);
    SequenceCursor cursor = {};
    Nest           nest;
    cursor.depth = 1;
    DICOM_Attribute_List (nullptr, &cursor, &nest.one, LOG_TRACE1);
    ASSERT_EQ (1u, log.lines.size ());
    EXPECT_EQ ("    (0008,1150)", Clean (log.lines[0].text).substr (0, 15));
}

TEST (ListingList, KindOfTheCallerMayBeAReport) {
    Log_Recorder   log;
    SequenceCursor cursor = {};
    Nest           nest;
    DICOM_Attribute_List (nullptr, &cursor, &nest.first, LOG_REPORT);
    EXPECT_EQ (17, log.Count (LOG_REPORT));
    EXPECT_EQ (17u, log.lines.size ());
}

TEST (ListingList, NothingHappensBelowItsTraceLevel) {
    for (int kind : {LOG_TRACE1, LOG_TRACE2, LOG_TRACE5, LOG_TRACE9}) {
        int            depth = kind - LOG_TRACE1 + 1;
        Log_Recorder   log (depth - 1);
        SequenceCursor cursor = {};
        Nest           nest;
        DICOM_Attribute_List (nullptr, &cursor, &nest.first, kind);
        DICOM_Attribute_List_Line (nullptr, &cursor, &nest.first, kind);
        EXPECT_EQ (0, log.Count (kind));
        // Where the cursor's own traces are written, they still are.
        EXPECT_EQ (kind > LOG_TRACE5, log.Count (LOG_TRACE5, "root->Item_Number") > 0) << kind;
    }
}

TEST (ListingList, SilentListIsNotWalked) {
    // A list that bites its own tail: a walk would not come back.
    Log_Recorder   log (1);
    SequenceCursor cursor    = {};
    Attribute      attribute = {};
    attribute.next           = &attribute;
    DICOM_Attribute_List (nullptr, &cursor, &attribute, LOG_TRACE2);
    EXPECT_EQ ("", log.All ());
}

TEST (ListingList, NestDeeperThanTheCursorEnds) {
    static const int         DEPTHS = 50000;
    std::vector<Attribute>   sequences (DEPTHS, Attribute {});
    std::vector<Attribute *> items (DEPTHS);
    Attribute                behind = {};
    behind.group                    = 0x0010;
    for (int i = 0; i + 1 < DEPTHS; i++) {
        items[i]             = &sequences[i + 1];
        sequences[i].vr      = VR_SQ;
        sequences[i].item    = &items[i];
        sequences[i].nb_item = 1;
    }
    sequences[0].next                   = &behind;
    sequences[SEQUENCE_DEPTHS - 1].next = &behind;

    Log_Recorder   log (1);
    Settings       settings = {};
    SequenceCursor cursor   = {};
    settings.kind_warning   = LOG_WARNING;
    cursor.settings         = &settings;
    DICOM_Attribute_List (nullptr, &cursor, &sequences[0], LOG_TRACE1);

    EXPECT_EQ (0, cursor.depth);
    EXPECT_EQ (1, log.Count (LOG_WARNING, "To many \"sequences\" in DICOM stream"));
    EXPECT_EQ (1u, log.lines.size () - log.Count (LOG_TRACE1));
    EXPECT_EQ (SEQUENCE_DEPTHS, log.Count (LOG_TRACE1, "(0000,0000)"));
    EXPECT_EQ (1, log.Count (LOG_TRACE1, std::string (36, ' ') + "(0010,0000)"));
    EXPECT_EQ (2, log.Count (LOG_TRACE1, "(0010,0000)"));
    EXPECT_EQ (9, log.Count (LOG_TRACE1, "---- Item[1] out "));
    EXPECT_EQ (9, log.Count (LOG_TRACE1, "---- Sequence out "));
}
