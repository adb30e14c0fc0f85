#include "util/text.h"

#include <float.h>
#include <limits.h>
#include <math.h>

#include <string>

#include <gtest/gtest.h>

#include "platform/system.h"

// --- wildcards -------------------------------------------------------------

TEST (Text, MatchTakesPlainTextsAsTheyAre) {
    EXPECT_TRUE (Text_Match ("", ""));
    EXPECT_TRUE (Text_Match ("abc", "abc"));
    EXPECT_FALSE (Text_Match ("abc", "ab"));
    EXPECT_FALSE (Text_Match ("ab", "abc"));
    EXPECT_FALSE (Text_Match ("", "a"));
    EXPECT_FALSE (Text_Match ("a", ""));
    EXPECT_FALSE (Text_Match ("abc", "ABC"));
    EXPECT_FALSE (Text_Match ("[a]", "a"));
    EXPECT_TRUE (Text_Match ("\xE9", "\xE9"));
}

TEST (Text, MatchQuestionMarkIsExactlyOneCharacter) {
    EXPECT_TRUE (Text_Match ("a?c", "abc"));
    EXPECT_FALSE (Text_Match ("a?c", "ac"));
    EXPECT_FALSE (Text_Match ("?", ""));
    EXPECT_TRUE (Text_Match ("???", "abc"));
    EXPECT_TRUE (Text_Match ("?", "?"));
    EXPECT_TRUE (Text_Match ("?", "*"));
}

TEST (Text, MatchStarIsAnyRun) {
    EXPECT_TRUE (Text_Match ("*", ""));
    EXPECT_TRUE (Text_Match ("*", "anything"));
    EXPECT_TRUE (Text_Match ("**", ""));
    EXPECT_TRUE (Text_Match ("a*", "a"));
    EXPECT_TRUE (Text_Match ("*c", "abc"));
    EXPECT_TRUE (Text_Match ("a*c", "ac"));
    EXPECT_TRUE (Text_Match ("a*b*c", "aXbXbXc"));
    EXPECT_FALSE (Text_Match ("a*b*c", "aXcXb"));
    EXPECT_TRUE (Text_Match ("*a?", "aaab"));
    EXPECT_FALSE (Text_Match ("*a?", "aaaa?b"));
    EXPECT_TRUE (Text_Match ("*ab*ab", "abab"));
    EXPECT_FALSE (Text_Match ("*ab*ab", "abb"));
}

TEST (Text, MatchOfManyStarsEnds) {
    std::string pattern, text (20000, 'a');
    for (int i = 0; i < 50; i++) pattern += "*a";
    EXPECT_TRUE (Text_Match (pattern.c_str (), text.c_str ()));
    EXPECT_FALSE (Text_Match ((pattern + "b").c_str (), text.c_str ()));
}

// --- pieces of texts -------------------------------------------------------

static std::string Trimmed (std::string text) { return Text_Trim (&text[0]); }

TEST (Text, TrimRemovesBlanksAndTabsAtBothEnds) {
    EXPECT_EQ (Trimmed ("abc"), "abc");
    EXPECT_EQ (Trimmed (" \t a b\t \t"), "a b");
    EXPECT_EQ (Trimmed (" \t "), "");
    EXPECT_EQ (Trimmed (""), "");
    EXPECT_EQ (Trimmed (" \na\n "), "\na\n");
}

TEST (Text, AppendFillsABufferAndCuts) {
    char   buffer[8] = "";
    size_t used      = 0;
    Text_Append (buffer, sizeof buffer, &used, "%s", "abc");
    EXPECT_EQ (used, 3u);
    Text_Append (buffer, sizeof buffer, &used, "%d", 12);
    EXPECT_STREQ (buffer, "abc12");
    EXPECT_EQ (used, 5u);
    Text_Append (buffer, sizeof buffer, &used, "%s", "xyz");
    EXPECT_STREQ (buffer, "abc12xy");
    EXPECT_EQ (used, 7u);
    Text_Append (buffer, sizeof buffer, &used, "%s", "more");
    EXPECT_STREQ (buffer, "abc12xy");
    EXPECT_EQ (used, 7u);
}

TEST (Text, AppendExactlyFull) {
    char   buffer[4] = "";
    size_t used      = 0;
    Text_Append (buffer, sizeof buffer, &used, "%s", "abc");
    EXPECT_STREQ (buffer, "abc");
    EXPECT_EQ (used, 3u);
    char none = 'x';
    used      = 0;
    Text_Append (&none, 0, &used, "%s", "abc");
    EXPECT_EQ (none, 'x');
    EXPECT_EQ (used, 0u);
}

TEST (Text, CopySaysWhetherAllFitted) {
    char buffer[4] = "";
    EXPECT_EQ (Text_Copy (buffer, sizeof buffer, "abc"), 1);
    EXPECT_STREQ (buffer, "abc");
    EXPECT_EQ (Text_Copy (buffer, sizeof buffer, "wxyz"), 0);
    EXPECT_STREQ (buffer, "wxy");
    EXPECT_EQ (Text_Copy (buffer, 1, "q"), 0);
    EXPECT_STREQ (buffer, "");
    EXPECT_EQ (Text_Copy (buffer, 1, ""), 1);
    buffer[0] = 'k';
    EXPECT_EQ (Text_Copy (buffer, 0, ""), 0);
    EXPECT_EQ (buffer[0], 'k');
}

// --- numbers ---------------------------------------------------------------

TEST (Text, IntegersSaturate) {
    EXPECT_EQ (Text_To_Integer ("0"), 0);
    EXPECT_EQ (Text_To_Integer ("  -12 "), -12);
    EXPECT_EQ (Text_To_Integer ("+7abc"), 7);
    EXPECT_EQ (Text_To_Integer ("2147483647"), INT32_MAX);
    EXPECT_EQ (Text_To_Integer ("2147483648"), INT32_MAX);
    EXPECT_EQ (Text_To_Integer ("-2147483648"), INT32_MIN);
    EXPECT_EQ (Text_To_Integer ("-2147483649"), INT32_MIN);
    EXPECT_EQ (Text_To_Integer ("99999999999999999999999"), INT32_MAX);
    EXPECT_EQ (Text_To_Integer ("-99999999999999999999999"), INT32_MIN);
}

TEST (Text, LongsSaturate) {
    EXPECT_EQ (Text_To_Long ("9223372036854775807"), INT64_MAX);
    EXPECT_EQ (Text_To_Long ("9223372036854775808"), INT64_MAX);
    EXPECT_EQ (Text_To_Long ("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ (Text_To_Long ("-9223372036854775809"), INT64_MIN);
    EXPECT_EQ (Text_To_Long ("12345678901"), 12345678901);
}

TEST (Text, WhatIsNoNumberIsZero) {
    for (const char *text : {"", " ", "abc", "-", "+", "--1", ".", "-.", "inf", "-infinity", "nan", "e5"}) {
        EXPECT_EQ (Text_To_Integer (text), 0) << text;
        EXPECT_EQ (Text_To_Long (text), 0) << text;
        EXPECT_EQ (Text_To_Double (text), 0.0) << text;
    }
    EXPECT_EQ (Text_To_Double ("0x10"), 0.0);
    EXPECT_EQ (Text_To_Double ("-0X1p9"), 0.0);
    EXPECT_EQ (Text_To_Integer ("0x10"), 0);
    EXPECT_EQ (Text_To_Integer ("010"), 10);
}

TEST (Text, DoublesSaturate) {
    EXPECT_EQ (Text_To_Double ("1.5"), 1.5);
    EXPECT_EQ (Text_To_Double (" \t-2.5E+3xyz"), -2500.0);
    EXPECT_EQ (Text_To_Double ("+.5"), 0.5);
    EXPECT_EQ (Text_To_Double ("5."), 5.0);
    EXPECT_EQ (Text_To_Double ("0.5"), 0.5);
    EXPECT_EQ (Text_To_Double ("007"), 7.0);
    EXPECT_EQ (Text_To_Double ("1e999"), DBL_MAX);
    EXPECT_EQ (Text_To_Double ("-1e999"), -DBL_MAX);
    EXPECT_EQ (Text_To_Double ("1e-999"), 0.0);
}

TEST (Text, TruncateStaysDefined) {
    EXPECT_EQ (Text_Truncate (1.9), 1);
    EXPECT_EQ (Text_Truncate (-1.9), -1);
    EXPECT_EQ (Text_Truncate (2147483647.0), INT32_MAX);
    EXPECT_EQ (Text_Truncate (2147483647.9), INT32_MAX);
    EXPECT_EQ (Text_Truncate (2147483648.0), INT32_MIN);
    EXPECT_EQ (Text_Truncate (-2147483648.0), INT32_MIN);
    EXPECT_EQ (Text_Truncate (-2147483648.9), INT32_MIN);
    EXPECT_EQ (Text_Truncate (-2147483649.0), INT32_MIN);
    EXPECT_EQ (Text_Truncate (DBL_MAX), INT32_MIN);
    EXPECT_EQ (Text_Truncate (-DBL_MAX), INT32_MIN);
    EXPECT_EQ (Text_Truncate (HUGE_VAL), INT32_MIN);
    EXPECT_EQ (Text_Truncate (nan ("")), INT32_MIN);
}

// --- paths -----------------------------------------------------------------

// The pieces with bars between them.
static std::string Split (const std::string &path) {
    Text_Path pieces;
    Text_Split_Path (path.c_str (), &pieces);
    EXPECT_EQ (pieces.directory_length + pieces.base_length + pieces.extension_length, path.size ());
    return std::string (pieces.directory, pieces.directory_length) + "|" +
           std::string (pieces.base, pieces.base_length) + "|" +
           std::string (pieces.extension, pieces.extension_length);
}

TEST (Text, SplitPathIntoDirectoryBaseAndExtension) {
    EXPECT_EQ (Split (""), "||");
    EXPECT_EQ (Split ("name"), "|name|");
    EXPECT_EQ (Split ("name.dat"), "|name|.dat");
    EXPECT_EQ (Split ("name.tar.gz"), "|name.tar|.gz");
    EXPECT_EQ (Split ("name."), "|name|.");
    EXPECT_EQ (Split (".hidden"), "|.hidden|");
    EXPECT_EQ (Split (".hidden.dat"), "|.hidden|.dat");
    EXPECT_EQ (Split ("/"), "/||");
    EXPECT_EQ (Split ("a/"), "a/||");
    EXPECT_EQ (Split ("/a.b/c"), "/a.b/|c|");
    EXPECT_EQ (Split ("/a.b/c.d"), "/a.b/|c|.d");
    EXPECT_EQ (Split ("/a/.d"), "/a/|.d|");
    EXPECT_EQ (Split ("."), "|.|");
}

TEST (Text, SplitPathKnowsThisSystemsSeparators) {
    bool windows = System_Separator () == '\\';
    EXPECT_EQ (Split ("a\\b.c"), windows ? "a\\|b|.c" : "|a\\b|.c");
    EXPECT_EQ (Split ("C:\\a/b.c"), windows ? "C:\\a/|b|.c" : "C:\\a/|b|.c");
    EXPECT_EQ (Split ("C:b.c"), windows ? "C:|b|.c" : "|C:b|.c");
    EXPECT_EQ (Split ("C:"), windows ? "C:||" : "|C:|");
    EXPECT_EQ (Split ("CC:b"), "|CC:b|");
}
