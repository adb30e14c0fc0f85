// Tags where they don't belong: items and delimiters anywhere, sequences in the meta group, transfer syntaxes that come
// twice, late or inside an item.
#include <gtest/gtest.h>

#include "attribute/attribute.h"
#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"

typedef std::vector<unsigned char> Bytes;

// --- items and delimiters --------------------------------------------------

static const uint16_t DELIMITERS[] = {ELEMENT_ITEM, ELEMENT_ITEM_END, ELEMENT_SEQUENCE_END};
static const uint32_t LENGTHS[]    = {0, 0xFFFFFFFF, 8};

// One of the three tags, with a text behind it that its length counts.
static Bytes Delimiter (Stream_Syntax syntax, uint16_t element, uint32_t length) {
    Stream stream = Stream_Begin (syntax);
    Stream_Add_Length (&stream, GROUP_DELIMITER, element, "", length, length == 8 ? "ABCDEFGH" : "");
    return stream.bytes;
}

static void Insert (Bytes *bytes, size_t place, const Bytes &more) {
    bytes->insert (bytes->begin () + static_cast<long> (place), more.begin (), more.end ());
}

static void Overwrite (Bytes *bytes, size_t place, const Bytes &more) {
    for (size_t i = 0; i < more.size () && place + i < bytes->size (); i++) (*bytes)[place + i] = more[i];
}

TEST (HostileStructure, DelimitersBeforeEveryElement) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        Bytes whole = Everything (syntax).bytes;
        for (const Expected_Element &element : Expect (whole).elements)
            for (uint16_t delimiter : DELIMITERS)
                for (uint32_t length : LENGTHS) {
                    SCOPED_TRACE (std::to_string (syntax) + " " + std::to_string (delimiter) + " of " +
                                  std::to_string (length) + " before " + Text_Of (element));
                    Bytes bytes = whole;
                    Insert (&bytes, element.pos_tag, Delimiter (syntax, delimiter, length));
                    feed.All (bytes);
                }
    }
}

TEST (HostileStructure, DelimitersOverEveryByte) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        Bytes whole = Everything (syntax).bytes;
        int   turn  = 0;
        for (size_t place = 128; place < whole.size (); place++)
            for (uint16_t delimiter : DELIMITERS)
                for (uint32_t length : LENGTHS) {
                    turn++;
                    if (syntax != EXPLICIT_LITTLE && turn % 4) continue; // One of them at each place.
                    SCOPED_TRACE (std::to_string (syntax) + " " + std::to_string (delimiter) + " of " +
                                  std::to_string (length) + " over byte " + std::to_string (place));
                    Bytes bytes = whole;
                    Overwrite (&bytes, place, Delimiter (syntax, delimiter, length));
                    feed.Elements (bytes);
                    if (turn % 16 == 0) feed.Comparisons (feed.Write (bytes), Expect (bytes).Attributes ());
                }
    }
}

// Nothing is open that they could close, and what follows them is read.
TEST (HostileStructure, DelimiterIsTheFirstTag) {
    Feed feed;
    for (uint16_t delimiter : DELIMITERS)
        for (uint32_t length : LENGTHS) {
            Bytes  bytes = Everything (EXPLICIT_LITTLE).bytes;
            Stream bare  = Stream_Begin (EXPLICIT_LITTLE);
            Insert (&bytes, 132, Delimiter (EXPLICIT_LITTLE, delimiter, length));
            Insert (&bare.bytes, 0, Delimiter (EXPLICIT_LITTLE, delimiter, length));
            for (int i = 0; i < 20; i++) Stream_Add_Text (&bare, 0x0010, 0x0010, "PN", "Doe");
            for (const Bytes &hostile : {bytes, bare.bytes}) {
                SCOPED_TRACE (std::to_string (delimiter) + " of " + std::to_string (length));
                feed.All (hostile);
                // The text of an item is not skipped: in front of all it is read as an element, which it isn't.
                bool stops = delimiter == ELEMENT_ITEM && length == 8;
                EXPECT_EQ (stops, Expect (hostile).stopped >= 0);
                EXPECT_EQ (stops ? 0 : hostile == bytes ? 16 : 20, Expect (hostile).Attributes ());
            }
            bool closes = delimiter == ELEMENT_SEQUENCE_END;
            EXPECT_EQ (closes ? "WARNING: To many \"out of sequences\" in DICOM stream (0000,0000)" : "",
                       feed.Structural (feed.Write (bytes)));
        }
}

// --- meta group ------------------------------------------------------------

// Items and delimiters are read as the data set is, elements of the meta group always little endian.
TEST (HostileStructure, SequenceInTheMetaGroup) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES)
        for (bool defined_length : {true, false}) {
            Stream stream = Stream_Begin_File (syntax);
            stream.syntax = EXPLICIT_LITTLE;
            Stream_Open_Sequence (&stream, 0x0002, 0x0100, defined_length);
            stream.syntax = syntax;
            Stream_Open_Item (&stream, defined_length);
            stream.syntax = EXPLICIT_LITTLE;
            Stream_Add_Text (&stream, 0x0002, 0x0013, "SH", "INSIDE");
            stream.syntax = syntax;
            Stream_Close_Item (&stream);
            if (defined_length) stream.syntax = EXPLICIT_LITTLE; // The length is the sequence's own.
            Stream_Close_Sequence (&stream);
            stream.syntax = syntax;
            Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
            SCOPED_TRACE (std::to_string (syntax) + " " + std::to_string (defined_length));
            feed.All (stream.bytes);
            EXPECT_EQ ("(0002,0010) (0002,0100)[(0002,0013)] (0010,0010)", feed.Outline (feed.Write (stream.bytes)));
            EXPECT_EQ ("", feed.Structural (feed.Write (stream.bytes)));
        }
}

// --- transfer syntaxes -----------------------------------------------------

static const char IMPLICIT_UID[] = "1.2.840.10008.1.2";
static const char LITTLE_UID[]   = "1.2.840.10008.1.2.1";
static const char BIG_UID[]      = "1.2.840.10008.1.2.2";
static const char JPEG_UID[]     = "1.2.840.10008.1.2.4.50";

static void Add_Syntax (Stream *stream, const char *uid) {
    Stream_Syntax before = stream->syntax;
    stream->syntax       = EXPLICIT_LITTLE; // As the meta group always is.
    Stream_Add_Text (stream, 0x0002, 0x0010, "UI", uid);
    stream->syntax = before;
}

// Each says how what follows it is read, however many came before it. An empty or unknown one says nothing.
TEST (HostileStructure, TwoTransferSyntaxes) {
    static const struct {
        const char   *uids[2];
        Stream_Syntax syntax;
    } CASES[] = {
        {{IMPLICIT_UID, BIG_UID}, EXPLICIT_BIG},
        {{BIG_UID, IMPLICIT_UID}, IMPLICIT_LITTLE},
        {{BIG_UID, LITTLE_UID}, EXPLICIT_LITTLE},
        {{BIG_UID, BIG_UID}, EXPLICIT_BIG},
        {{BIG_UID, ""}, EXPLICIT_BIG},
        {{"", IMPLICIT_UID}, IMPLICIT_LITTLE},
        {{IMPLICIT_UID, JPEG_UID}, IMPLICIT_LITTLE},
        {{JPEG_UID, "nonsense"}, EXPLICIT_LITTLE},
        {{"", ""}, EXPLICIT_LITTLE},
    };
    Feed feed;
    for (const auto &one : CASES) {
        SCOPED_TRACE (std::string (one.uids[0]) + " and " + one.uids[1]);
        Stream stream = Stream_Begin_File (EXPLICIT_LITTLE, one.uids[0]);
        Add_Syntax (&stream, one.uids[1]);
        stream.syntax = one.syntax;
        Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
        Stream_Add_Short (&stream, 0x0028, 0x0010, "US", 2);
        feed.All (stream.bytes);
        EXPECT_EQ ("(0002,0010) (0002,0010) (0010,0010) (0028,0010)", feed.Outline (feed.Write (stream.bytes)));
        EXPECT_EQ ("", feed.Run (feed.Write (stream.bytes), feed.good, 1).warnings);
    }
}

TEST (HostileStructure, TransferSyntaxInTheMiddle) {
    Feed feed;
    for (const char *uid : {IMPLICIT_UID, LITTLE_UID, BIG_UID, JPEG_UID, ""}) {
        SCOPED_TRACE (uid);
        Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
        Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
        Add_Syntax (&stream, uid);
        if (uid == IMPLICIT_UID) stream.syntax = IMPLICIT_LITTLE;
        if (uid == BIG_UID) stream.syntax = EXPLICIT_BIG;
        Stream_Add_Short (&stream, 0x0028, 0x0010, "US", 2);
        feed.All (stream.bytes);
        EXPECT_EQ ("(0002,0010) (0010,0010) (0002,0010) (0028,0010)", feed.Outline (feed.Write (stream.bytes)));
        EXPECT_EQ ("WARNING: (0002,0010) tags should be sorted!", feed.Structural (feed.Write (stream.bytes)));
    }
}

// It counts from the next element on, inside and behind the item. In a sequence of unknown end it also ends it, since it
// is smaller than its predecessor.
TEST (HostileStructure, TransferSyntaxInAnItem) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        for (bool first : {true, false}) {
            SCOPED_TRACE (std::to_string (syntax) + (first ? " first in it" : " behind another"));
            Stream stream = Stream_Begin_File (EXPLICIT_LITTLE);
            Stream_Open_Sequence (&stream, 0x0008, 0x1140, false);
            Stream_Open_Item (&stream, false);
            if (!first) Stream_Add_Text (&stream, 0x0008, 0x1150, "UI", "1.2.3");
            Add_Syntax (&stream, syntax == EXPLICIT_BIG      ? BIG_UID
                                 : syntax == IMPLICIT_LITTLE ? IMPLICIT_UID
                                                             : LITTLE_UID);
            stream.syntax = syntax;
            Stream_Add_Text (&stream, 0x0008, 0x1155, "UI", "1.2.4");
            Stream_Close_Item (&stream);
            Stream_Close_Sequence (&stream);
            Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
            feed.All (stream.bytes);
            EXPECT_EQ (first ? "(0002,0010) (0008,1140)[(0002,0010) (0008,1155)] (0010,0010)"
                             : "(0002,0010) (0008,1140)[(0008,1150)] (0002,0010) (0008,1155) (0010,0010)",
                       feed.Outline (feed.Write (stream.bytes)));
            EXPECT_EQ (first ? ""
                             : "WARNING: (0002,0010) missing end of sequence tag!\n"
                               "WARNING: To many \"out of sequences\" in DICOM stream (fffe,e00d)",
                       feed.Structural (feed.Write (stream.bytes)));
        }
    }
}
