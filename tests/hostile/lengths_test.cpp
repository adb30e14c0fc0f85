// Lengths that lie: files cut anywhere, and every length field saying what it shouldn't.
#include <gtest/gtest.h>

#include "tests/hostile/expected.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/kinds.h"

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

TEST (HostileLengths, EveryLengthFieldLies) {
    Feed feed;
    for (Stream_Syntax syntax : HOSTILE_SYNTAXES)
        for (const Hostile_File &file : Lying_Lengths (syntax)) {
            SCOPED_TRACE (std::to_string (syntax) + " " + file.name);
            feed.All (file.bytes);
        }
}
