// Tags where they don't belong: items and delimiters anywhere, sequences in the meta group, transfer syntaxes that come
// twice, late or inside an item.
#include <gtest/gtest.h>

#include "attribute/attribute.h"
#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/kinds.h"

// --- items and delimiters --------------------------------------------------

TEST (HostileStructure, DelimitersBeforeEveryElement) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES)
        for (const Hostile_File &file : Delimiters_Before (syntax)) {
            SCOPED_TRACE (std::to_string (syntax) + " " + file.name);
            feed.All (file.bytes);
        }
}

TEST (HostileStructure, DelimitersOverEveryByte) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        int turn = 0;
        for (const Hostile_File &file : Delimiters_Over (syntax)) {
            turn++;
            if (syntax != EXPLICIT_LITTLE && turn % 4) continue; // One of them at each place.
            SCOPED_TRACE (std::to_string (syntax) + " " + file.name);
            feed.Elements (file.bytes);
            if (turn % 16 == 0) feed.Comparisons (feed.Write (file.bytes), Expect (file.bytes).Attributes ());
        }
    }
}

// Nothing is open that they could close, and what follows them is read.
TEST (HostileStructure, DelimiterIsTheFirstTag) {
    Feed        feed;
    const auto  files = Delimiters_First (EXPLICIT_LITTLE);
    const auto *file  = files.data ();
    for (uint16_t delimiter : DELIMITERS)
        for (uint32_t length : LENGTHS) {
            const Hostile_File &marked = *file++, &bare = *file++;
            for (const Hostile_File *hostile : {&marked, &bare}) {
                SCOPED_TRACE (hostile->name);
                feed.All (hostile->bytes);
                // The text of an item is not skipped: in front of all it is read as an element, which it isn't.
                bool stops = delimiter == ELEMENT_ITEM && length == 8;
                EXPECT_EQ (stops, Expect (hostile->bytes).stopped >= 0);
                EXPECT_EQ (stops ? 0 : hostile == &marked ? 16 : 20, Expect (hostile->bytes).Attributes ());
            }
            bool closes = delimiter == ELEMENT_SEQUENCE_END;
            EXPECT_EQ (closes ? "WARNING: To many \"out of sequences\" in DICOM stream (0000,0000)" : "",
                       feed.Structural (feed.Write (marked.bytes)));
        }
}

// --- meta group ------------------------------------------------------------

// Items and delimiters are read as the data set is, elements of the meta group always little endian.
TEST (HostileStructure, SequenceInTheMetaGroup) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES)
        for (bool defined_length : {true, false}) {
            Stream stream = Meta_Sequence (syntax, defined_length);
            SCOPED_TRACE (std::to_string (syntax) + " " + std::to_string (defined_length));
            feed.All (stream.bytes);
            EXPECT_EQ ("(0002,0010) (0002,0100)[(0002,0013)] (0010,0010)", feed.Outline (feed.Write (stream.bytes)));
            EXPECT_EQ ("", feed.Structural (feed.Write (stream.bytes)));
        }
}

// --- transfer syntaxes -----------------------------------------------------

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
        Stream stream = Two_Syntaxes (one.uids[0], one.uids[1], one.syntax);
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
