// Lengths that lie: files cut anywhere, and every length field saying what it shouldn't.
#include <gtest/gtest.h>

#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"

typedef std::vector<unsigned char> Bytes;

// The file of the other tests is read without a word, and all of it.
TEST (HostileLengths, WithoutFaultThereIsNone) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        Bytes            whole    = Everything (syntax).bytes;
        Expected_Reading expected = Expect (whole);
        EXPECT_EQ (-1, expected.stopped);
        EXPECT_EQ (0, expected.odd + expected.cut);
        EXPECT_EQ (16, expected.Attributes ());
        EXPECT_EQ (expected.elements.size (), 30u);
        feed.All (whole);
        EXPECT_EQ ("", feed.Run (feed.Write (whole), feed.good, 1).warnings);
    }
}

TEST (HostileLengths, CutAtEveryByte) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        Bytes whole  = Everything (syntax).bytes;
        int   before = 0;
        for (size_t size = 0; size < whole.size (); size++) {
            SCOPED_TRACE (std::to_string (syntax) + " cut to " + std::to_string (size));
            Bytes cut (whole.begin (), whole.begin () + static_cast<long> (size));
            feed.All (cut);
            int attributes = Expect (cut).Attributes ();
            EXPECT_LE (before, attributes);
            before = attributes;
            if (HasFailure ()) return;
        }
        EXPECT_EQ (16, before);
    }
}

// --- length fields ---------------------------------------------------------

static void Put (Bytes *bytes, const Expected_Element &element, uint32_t number) {
    for (int i = 0; i < element.length_size; i++) {
        int shift = 8 * (element.big ? element.length_size - 1 - i : i);
        (*bytes)[element.pos_data - static_cast<size_t> (element.length_size - i)] =
            static_cast<unsigned char> (number >> shift);
    }
}

static std::vector<uint32_t> Lies (const Expected_Element &element, size_t size) {
    uint32_t all = static_cast<uint32_t> (size);
    if (element.length_size == 2) return {0, 1, 7, all, all - 1, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF};
    return {0, 1, 7, all, all - 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
}

TEST (HostileLengths, EveryLengthFieldLies) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES) {
        Bytes whole = Everything (syntax).bytes;
        for (const Expected_Element &element : Expect (whole).elements)
            for (uint32_t lie : Lies (element, whole.size ())) {
                SCOPED_TRACE (std::to_string (syntax) + " " + Text_Of (element) + " says " + std::to_string (lie));
                Bytes lying = whole;
                Put (&lying, element, lie);
                feed.All (lying);
            }
    }
}
