// The rules of the parser and the look-up, on lines of the test's own.
#include "tables/data_dictionary.h"

#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/attribute.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const std::string WARNING = "    \xF1\x05WARNING:\x02 ";

class DataDictionary : public testing::Test {
protected:
    ~DataDictionary () override { Dictionary_Reset (nullptr, 0); }

    // Lines are copied to blocks of just their size, so that a read behind one is found.
    void Set_Tables (const std::vector<std::vector<std::string>> &contents) {
        copies.clear ();
        references.clear ();
        tables.clear ();
        for (const auto &lines : contents) {
            references.emplace_back ();
            for (const std::string &line : lines) {
                copies.emplace_back (new char[line.size () + 1]);
                memcpy (copies.back ().get (), line.c_str (), line.size () + 1);
                references.back ().push_back (copies.back ().get ());
            }
        }
        for (const auto &lines : references) tables.push_back ({lines.data (), static_cast<int> (lines.size ())});
        Dictionary_Reset (tables.data (), static_cast<int> (tables.size ()));
        log.Clear ();
    }

    int Build (const std::vector<std::string> &lines) {
        Set_Tables ({lines});
        return Dictionary_Build (nullptr);
    }

    // The entry of (0010,0010) after a build of this one line.
    const Dictionary_Entry *Parse (const std::string &rest) {
        Build ({"(0010,0010)" + rest});
        return Dictionary_Lookup (nullptr, 0x0010, 0x0010);
    }

    Log_Recorder log;

private:
    std::vector<std::unique_ptr<char[]>>   copies;
    std::vector<std::vector<const char *>> references;
    std::vector<Dictionary_Table>          tables;
};

static std::string Name_Of (uint16_t group, uint16_t element) {
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, group, element);
    return entry ? entry->name : "(none)";
}

// "name|count|VR a..b|VR a..b"
static std::string Text_Of (const Dictionary_Entry *entry) {
    if (!entry) return "(none)";
    std::string text  = std::string (entry->name) + "|" + std::to_string (entry->nb_vr);
    int         count = entry->nb_vr < 0 ? -entry->nb_vr : entry->nb_vr;
    for (int i = 0; i < (count ? count : 1); i++)
        text += std::string ("|") + Code_First (entry->vr[i], '-') + Code_Second (entry->vr[i], '-') + " " +
                std::to_string (entry->vm[i].minimum) + ".." + std::to_string (entry->vm[i].maximum);
    return text;
}

// --- pairs -----------------------------------------------------------------

TEST_F (DataDictionary, OnePairStandsAtTheEnd) {
    EXPECT_EQ ("Table Traverse|1|DS 1..1", Text_Of (Parse (" Table Traverse DS 1")));
    EXPECT_EQ ("Table Traverse|1|DS 1..1", Text_Of (Parse (" Table Traverse                        DS 1")));
    EXPECT_EQ ("Table Traverse|1|DS 1..1", Text_Of (Parse (" Table Traverse  DS   1")));
    EXPECT_EQ ("Table Traverse|1|DS 1..1", Text_Of (Parse (" Table Traverse DS 1  ")));
    EXPECT_EQ ("Distance (mm)|1|DS 1..1", Text_Of (Parse (" Distance (mm) DS 1")));
    EXPECT_EQ ("|1|DS 1..1", Text_Of (Parse (" DS 1")));
}

TEST_F (DataDictionary, MultiplicityHasItsForms) {
    EXPECT_EQ ("A|1|CS 16..16", Text_Of (Parse (" A CS 16")));
    EXPECT_EQ ("A|1|CS 1..8", Text_Of (Parse (" A CS 1-8")));
    EXPECT_EQ ("A|1|CS 1..65535", Text_Of (Parse (" A CS 1-n")));
    EXPECT_EQ ("A|1|CS 2..65535", Text_Of (Parse (" A CS 2-2n")));
    EXPECT_EQ ("A|1|CS 3..65535", Text_Of (Parse (" A CS 3-3n")));
    EXPECT_EQ ("A|1|CS 1..99", Text_Of (Parse (" A CS 1-99")));
}

TEST_F (DataDictionary, MultiplicityIsKeptInItsRange) {
    EXPECT_EQ ("A|1|CS 65535..65535", Text_Of (Parse (" A CS 65536")));
    EXPECT_EQ ("A|1|CS 1..65535", Text_Of (Parse (" A CS 1-70000")));
    EXPECT_EQ ("A|1|CS 65535..65535", Text_Of (Parse (" A CS 9999999999")));
    EXPECT_EQ ("A|1|CS 0..3", Text_Of (Parse (" A CS -3")));
    EXPECT_EQ ("A|1|CS 1..0", Text_Of (Parse (" A CS 1--5")));
    EXPECT_EQ ("A|1|CS 0..0", Text_Of (Parse (" A CS x7")));
}

TEST_F (DataDictionary, TenCharactersOfAMultiplicityCount) {
    EXPECT_EQ ("A|1|CS 1..2", Text_Of (Parse (" A CS 1-00000002")));
    EXPECT_EQ ("A|1|CS 1..2", Text_Of (Parse (" A CS 1-000000023")));
    EXPECT_EQ ("A|1|CS 1..0", Text_Of (Parse (" A CS 1-0000000000000000000000023")));
}

TEST_F (DataDictionary, PairsInParenthesesKeepTheirOrder) {
    EXPECT_EQ ("Gray|1|US 3..3", Text_Of (Parse (" Gray (US 3)")));
    EXPECT_EQ ("Gray|2|US 1..1|SS 1..2", Text_Of (Parse (" Gray      (US 1)or(SS 1-2)")));
    EXPECT_EQ ("Gray|3|US 1..65535|SS 2..65535|OW 1..1", Text_Of (Parse (" Gray (US 1-n)or(SS 2-2n)or(OW 1)")));
    EXPECT_EQ ("Gray|-3|US 1..65535|SS 2..65535|OW 1..1", Text_Of (Parse (" Gray (US 1-n)or(SS 2-2n)or(OW 1) RET")));
    EXPECT_EQ ("Gray|2|US 1..1|SS 1..1", Text_Of (Parse (" Gray (US 1)(SS 1)")));
    EXPECT_EQ ("", log.All ());
}

TEST_F (DataDictionary, NameBeforeThePairsIsLeftAlone) {
    EXPECT_EQ ("Detector|2|US 1..1|SS 1..1", Text_Of (Parse (" Detector (US 1)or(SS 1)")));
    EXPECT_EQ ("Factor|1|US 1..1", Text_Of (Parse (" Factor(US 1)")));
    EXPECT_EQ ("Gain (dB)|2|US 1..1|SS 1..1", Text_Of (Parse (" Gain (dB) (US 1)or(SS 1)")));
}

TEST_F (DataDictionary, LineWithoutPairKeepsThePlaceholder) {
    EXPECT_EQ ("Just A Name|0|RT 65535..65535", Text_Of (Parse (" Just A Name")));
    EXPECT_EQ ("Just A Name|0|RT 65535..65535", Text_Of (Parse (" Just A Name RET")));
    EXPECT_EQ ("Region n|0|RT 65535..65535", Text_Of (Parse (" Region n")));
    EXPECT_EQ ("Ratio CS a-n|0|RT 65535..65535", Text_Of (Parse (" Ratio CS a-n")));
    EXPECT_EQ ("Ratio CS -n|0|RT 65535..65535", Text_Of (Parse (" Ratio CS -n")));
    EXPECT_EQ ("Ratio CS 1-kn|0|RT 65535..65535", Text_Of (Parse (" Ratio CS 1-kn")));
    EXPECT_EQ ("|0|RT 65535..65535", Text_Of (Parse ("")));
    EXPECT_EQ ("|0|RT 65535..65535", Text_Of (Parse (" ")));
    EXPECT_EQ ("|0|RT 65535..65535", Text_Of (Parse (")")));
    EXPECT_EQ ("|0|RT 65535..65535", Text_Of (Parse (" RET")));
    EXPECT_EQ ("|0|RT 65535..65535", Text_Of (Parse ("      RET")));
}

TEST_F (DataDictionary, FirstPlaceOfASecondPairIsEmpty) {
    const Dictionary_Entry *entry = Parse (" A CS 1");
    ASSERT_NE (nullptr, entry);
    EXPECT_EQ (0, entry->vr[1]);
    EXPECT_EQ (0, entry->vr[2]);
    EXPECT_EQ (0, entry->vm[1].maximum);
}

TEST_F (DataDictionary, VrIsTheTwoCharactersBeforeTheMultiplicity) {
    EXPECT_EQ ("A US/|1|SS 1..1", Text_Of (Parse (" A US/SS 1")));
    EXPECT_EQ ("Versi|1|on 2..2", Text_Of (Parse (" Version 2")));
    EXPECT_NE (nullptr, Parse (" 1"));
    EXPECT_EQ (0, Parse (" 1")->nb_vr);
    EXPECT_EQ (0, Parse (" S 1")->nb_vr);
}

TEST_F (DataDictionary, RetiredHasANegativeCount) {
    EXPECT_EQ ("Angular Position|-1|DS 1..1",
               Text_Of (Parse (" Angular Position                              DS 1 RET")));
    EXPECT_EQ ("Angular Position|-1|DS 1..65535", Text_Of (Parse (" Angular Position DS 1-n   RET")));
}

// --- name ------------------------------------------------------------------

TEST_F (DataDictionary, NameIsCutAtEightyCharacters) {
    std::string name (90, 'N');
    EXPECT_EQ (std::string (80, 'N') + "|1|DS 1..1", Text_Of (Parse (" " + name + " DS 1")));
    EXPECT_EQ (std::string (80, 'N') + "|1|DS 1..1", Text_Of (Parse (" " + name.substr (0, 81) + " DS 1")));
    EXPECT_EQ (std::string (80, 'N') + "|1|DS 1..1", Text_Of (Parse (" " + name.substr (0, 80) + " DS 1")));
    EXPECT_EQ (std::string (79, 'N') + "|1|DS 1..1", Text_Of (Parse (" " + name.substr (0, 79) + " NNN DS 1")));
}

TEST_F (DataDictionary, LineIsReadForAHundredAndSixtyCharacters) {
    std::string line = " Name";
    line.resize (160 - 11 - 4, ' ');
    EXPECT_EQ ("Name|1|DS 1..1", Text_Of (Parse (line + "DS 1")));
    EXPECT_EQ ("Name|1|DS 1..1", Text_Of (Parse (line + "DS 1RET and more")));
    EXPECT_EQ ("Name|1|DS 1..1", Text_Of (Parse (line + "DS 12345")));
    EXPECT_EQ ("Name|1|DS 1..1", Text_Of (Parse (line + "DS 1 RET")));
}

// --- tag -------------------------------------------------------------------

TEST_F (DataDictionary, DigitsMayBeOfEitherCase) {
    Build ({"(00fE,aBcD) Mixed DS 1"});
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, 0x00FE, 0xABCD);
    ASSERT_NE (nullptr, entry);
    EXPECT_EQ (0x00FE, entry->group);
    EXPECT_EQ (0xABCD, entry->element);
    EXPECT_EQ (0xFFFF, entry->element_mask);
}

TEST_F (DataDictionary, OpenDigitsOfAGroupMatchAnyDigit) {
    Build ({"(50xx,0010) Curve DS 1"});
    EXPECT_EQ ("Curve", Name_Of (0x5000, 0x0010));
    EXPECT_EQ ("Curve", Name_Of (0x5002, 0x0010));
    EXPECT_EQ ("Curve", Name_Of (0x50FE, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x5001, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x5100, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x5000, 0x0011));

    Build ({"(x4y6,0020) Odd Places DS 1"});
    EXPECT_EQ ("Odd Places", Name_Of (0x0406, 0x0020));
    EXPECT_EQ ("Odd Places", Name_Of (0x9456, 0x0020));
    EXPECT_EQ ("(none)", Name_Of (0x9454, 0x0020));
}

TEST_F (DataDictionary, OpenDigitsOfAnElementAreZero) {
    Build ({"(0020,31xx) Source DS 1"});
    EXPECT_EQ ("Source", Name_Of (0x0020, 0x3100));
    EXPECT_EQ ("(none)", Name_Of (0x0020, 0x3101));
    EXPECT_EQ (0xFF00, Dictionary_Lookup (nullptr, 0x0020, 0x3100)->element_mask);
}

TEST_F (DataDictionary, OddGroupIsNeverFound) {
    Build ({"(0009,0010) Private DS 1", "(000x,0010) Any DS 1"});
    EXPECT_EQ ("(none)", Name_Of (0x0009, 0x0010));
    EXPECT_EQ ("Any", Name_Of (0x0008, 0x0010));
    EXPECT_EQ (2, Dictionary_Build (nullptr));
}

TEST_F (DataDictionary, OddGroupBuildsNothing) {
    Set_Tables ({{"(0008,0010) A DS 1"}});
    long before = Memory_Live ();
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0x0009, 0x0010));
    EXPECT_EQ (before, Memory_Live ());
}

// --- order -----------------------------------------------------------------

TEST_F (DataDictionary, LinesNeedNotStandInOrder) {
    std::vector<std::string> lines;
    for (int group : {0x0040, 0x0008, 0x0020, 0x0010})
        for (int element = 40; element >= 0; element--) {
            char line[64];
            snprintf (line, sizeof line, "(%04x,%04x) %d/%d DS 1", group, (element * 7) % 41, group,
                      (element * 7) % 41);
            lines.push_back (line);
        }
    EXPECT_EQ (4 * 41, Build (lines));
    for (int group : {0x0040, 0x0008, 0x0020, 0x0010})
        for (int element = 0; element < 41; element++)
            EXPECT_EQ (std::to_string (group) + "/" + std::to_string (element),
                       Name_Of (static_cast<uint16_t> (group), static_cast<uint16_t> (element)));
    EXPECT_EQ ("(none)", Name_Of (0x0010, 41));
    EXPECT_EQ ("(none)", Name_Of (0x0012, 0));
    EXPECT_EQ ("(none)", Name_Of (0x0042, 0));
    EXPECT_EQ ("(none)", Name_Of (0x0006, 0));
}

TEST_F (DataDictionary, SeveralNodesMayCoverAGroup) {
    Build ({"(50xx,0010) Curve DS 1", "(50xx,0030) All DS 1", "(5000,0020) One DS 1", "(5000,0030) First DS 1"});
    EXPECT_EQ ("One", Name_Of (0x5000, 0x0020));
    EXPECT_EQ ("Curve", Name_Of (0x5000, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x5002, 0x0020));
    EXPECT_EQ ("First", Name_Of (0x5000, 0x0030));
    EXPECT_EQ ("All", Name_Of (0x5002, 0x0030));
    EXPECT_EQ (4, Dictionary_Build (nullptr));
}

// (7Fxx,0010) would hide the pixel data: its node comes first.
TEST_F (DataDictionary, SmallerMaskedGroupIsAskedFirst) {
    Build ({"(7FE0,0010) Pixel Data OW 1", "(7FE0,0020) Other OW 1", "(7Fxx,0010) Variable OW 1"});
    EXPECT_EQ ("Variable", Name_Of (0x7FE0, 0x0010));
    EXPECT_EQ ("Other", Name_Of (0x7FE0, 0x0020));
}

// Whatever group was asked for before, the answer is the same. The node of (xx10,0010) ends the search for 5000.
TEST_F (DataDictionary, GroupsMayBeAskedForInAnyOrder) {
    static const uint16_t groups[] = {0x0000, 0x0008, 0x0010, 0x0410, 0x5000, 0x5002, 0x5008, 0xFFFE};
    Build ({"(0000,0010) 0000 DS 1", "(0008,0010) 0008 DS 1", "(50xx,0010) 50xx DS 1", "(5002,0010) 5002 DS 1",
            "(xx10,0010) xx10 DS 1"});
    static const char *const names[] = {"0000", "0008", "xx10", "xx10", "(none)", "(none)", "(none)", "(none)"};
    for (uint16_t before : groups)
        for (int i = 0; i < 8; i++) {
            Name_Of (before, 0x0010);
            EXPECT_EQ (names[i], Name_Of (groups[i], 0x0010)) << before << " " << groups[i];
        }
}

TEST_F (DataDictionary, FirstGreaterNodeEndsTheSearch) {
    Build ({"(xx10,0010) Low Digits DS 1", "(0300,0010) Behind DS 1"});
    EXPECT_EQ ("Low Digits", Name_Of (0x0410, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x0300, 0x0010));
}

TEST_F (DataDictionary, EntriesStayWhereTheyAre) {
    Build ({"(0010,0010) A DS 1", "(0008,0010) B DS 1"});
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, 0x0010, 0x0010);
    for (int i = 0; i < 100; i++) Dictionary_Lookup (nullptr, static_cast<uint16_t> (2 * i), 0x0010);
    Dictionary_Build (nullptr);
    EXPECT_EQ (entry, Dictionary_Lookup (nullptr, 0x0010, 0x0010));
    EXPECT_STREQ ("A", entry->name);
}

// --- warnings --------------------------------------------------------------

TEST_F (DataDictionary, FirstLineOfATagWins) {
    EXPECT_EQ (2, Build ({"(00AC,0010) First DS 1", "(00ac,0010) Second CS 2", "(00AC,0020) Next DS 1"}));
    EXPECT_EQ ("First|1|DS 1..1", Text_Of (Dictionary_Lookup (nullptr, 0x00AC, 0x0010)));
    ASSERT_EQ (1u, log.lines.size ());
    EXPECT_EQ (LOG_WARNING, log.lines[0].kind);
    EXPECT_EQ (WARNING + "duplicate tag (00ac,0010) in definition file", log.lines[0].text);
}

TEST_F (DataDictionary, DuplicateOfARepeatingGroupShowsZeros) {
    EXPECT_EQ (1, Build ({"(50xx,0010) First DS 1", "(50xx,0010) Second CS 2"}));
    EXPECT_EQ ("First|1|DS 1..1", Text_Of (Dictionary_Lookup (nullptr, 0x5000, 0x0010)));
    EXPECT_TRUE (log.Has (LOG_WARNING, WARNING + "duplicate tag (5000,0010) in definition file"));
    EXPECT_EQ (1u, log.lines.size ());
}

TEST_F (DataDictionary, TagMayStandInSeveralTablesOnce) {
    Set_Tables ({{"(0010,0010) A DS 1"}, {"(0010,0010) B DS 1", "(0010,0020) C DS 1"}});
    EXPECT_EQ (2, Dictionary_Build (nullptr));
    EXPECT_EQ ("A", Name_Of (0x0010, 0x0010));
    EXPECT_EQ (1, log.Count (LOG_WARNING, "duplicate tag (0010,0010)"));
}

TEST_F (DataDictionary, SyntaxErrorEndsItsTableOnly) {
    Set_Tables ({{"(0010,0010) A DS 1", "(0010,0020) B (US 1)or(SS 1)or(OW 1)or(OB 1)", "(0010,0030) C DS 1"},
                 {"(0010,0040) D DS 1"}});
    EXPECT_EQ (2, Dictionary_Build (nullptr));
    EXPECT_EQ ("A", Name_Of (0x0010, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x0010, 0x0020));
    EXPECT_EQ ("(none)", Name_Of (0x0010, 0x0030));
    EXPECT_EQ ("D", Name_Of (0x0010, 0x0040));
    ASSERT_EQ (1u, log.lines.size ());
    EXPECT_EQ (LOG_WARNING, log.lines[0].kind);
    EXPECT_EQ (WARNING + "Syntax error in definition file for (0010,0020) ", log.lines[0].text);
}

TEST_F (DataDictionary, WarningShowsTheLineAsItStands) {
    Build ({"(50xx,0020) B US 1)"});
    EXPECT_TRUE (log.Has (LOG_WARNING, WARNING + "Syntax error in definition file for (50xx,0020) "));
}

TEST_F (DataDictionary, PairNeedsItsParenthesis) {
    for (const char *rest :
         {" Name US 1)", " Name )", " )", " 1)", "(1)", " (1)", " US)", " (US)", " Name (US 1)or SS 1)", " Name [US 1)",
          " (US 1)or(US 1)or(US 1)or(US 1)", " ))))))", " () ()"}) {
        EXPECT_EQ (0, Build ({std::string ("(0010,0010)") + rest, "(0010,0020) Next DS 1"})) << rest;
        EXPECT_EQ (1, log.Count (LOG_WARNING, "Syntax error in definition file for (0010,0010)")) << rest;
        EXPECT_EQ (1u, log.lines.size ()) << rest;
    }
}

TEST_F (DataDictionary, LineWithoutTagIsASyntaxError) {
    for (const char *line : {"", "(", "RET", " RET", "(0010", "(0010,0010", "0010,0010) A DS 1", "[0010,0010) A DS 1",
                             "Name DS 1", ")", "n", "(0010 0010) A DS 1"}) {
        EXPECT_EQ (0, Build ({line, "(0010,0020) Next DS 1"})) << line;
        char start[16];
        snprintf (start, sizeof start, "%12.12s", line);
        ASSERT_EQ (1u, log.lines.size ()) << line;
        EXPECT_EQ (WARNING + "Syntax error in definition file for " + start, log.lines[0].text);
    }
}

// Every line that comes from a good one by cutting, or by changing one character, is read without a fault.
TEST_F (DataDictionary, DamagedLinesAreSafe) {
    // clang-format off
    static const char *const good[] = {
        "(0018,1131) Table Traverse DS 1-n RET",
        "(50xx,0010) Gray (US 1-n)or(SS 2-2n)or(OW 1) RET",
        "(0010,31xx) CS 1"
    };
    // clang-format on
    std::vector<std::vector<std::string>> contents;
    for (std::string line : good) {
        for (size_t i = 0; i <= line.size (); i++) {
            contents.push_back ({line.substr (0, i)});
            contents.push_back ({line.substr (i)});
            contents.push_back ({line.substr (0, i) + std::string (200, 'x') + line.substr (i)});
            contents.push_back ({line.substr (0, i) + std::string (200, ')') + line.substr (i)});
            for (char c : {'(', ')', ' ', 'n', '9', '-', 'R', '\xFF'}) {
                std::string changed       = line;
                changed[i % line.size ()] = c;
                contents.push_back ({changed});
            }
        }
    }
    Set_Tables (contents);
    int count = Dictionary_Build (nullptr);
    EXPECT_GT (count, 10);
    EXPECT_EQ (contents.size (), static_cast<size_t> (count) + log.lines.size ());
    for (int group = 0; group < 0x10000; group += 2)
        for (int element : {0x0000, 0x0010, 0x1131, 0x3100}) {
            const Dictionary_Entry *entry =
                Dictionary_Lookup (nullptr, static_cast<uint16_t> (group), static_cast<uint16_t> (element));
            if (!entry) continue;
            ASSERT_LE (strlen (entry->name), static_cast<size_t> (DICTIONARY_NAME_SIZE));
            ASSERT_LE (abs (entry->nb_vr), DICTIONARY_VR_COUNT);
        }
}

// --- life ------------------------------------------------------------------

TEST_F (DataDictionary, CountIsRemembered) {
    EXPECT_EQ (2, Build ({"(0010,0010) A DS 1", "(0010,0010) Again DS 1", "(0010,0020) B DS 1"}));
    log.Clear ();
    EXPECT_EQ (2, Dictionary_Build (nullptr));
    EXPECT_EQ ("", log.All ());
}

TEST_F (DataDictionary, EmptyDictionaryIsRememberedToo) {
    Set_Tables ({{}, {""}});
    EXPECT_EQ (0, Dictionary_Build (nullptr));
    EXPECT_EQ (1u, log.lines.size ());
    EXPECT_EQ (0, Dictionary_Build (nullptr));
    EXPECT_EQ (1u, log.lines.size ());
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0x0010, 0x0010));
}

TEST_F (DataDictionary, TableWithoutLinesAddsNothing) {
    static const Dictionary_Table none[] = {{nullptr, 0}, {nullptr, -5}};
    Dictionary_Reset (none, 2);
    EXPECT_EQ (0, Dictionary_Build (nullptr));
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0x0010, 0x0010));
    EXPECT_EQ ("", log.All ());
}

TEST_F (DataDictionary, FirstLookUpBuilds) {
    Set_Tables ({{"(0010,0010) A DS 1"}});
    EXPECT_EQ ("A", Name_Of (0x0010, 0x0010));
}

TEST_F (DataDictionary, ResetReleasesEverything) {
    Dictionary_Reset (nullptr, 0);
    long before = Memory_Live ();
    Build ({"(0010,0010) A DS 1"});
    EXPECT_LT (before, Memory_Live ());
    Dictionary_Reset (nullptr, 0);
    EXPECT_EQ (before, Memory_Live ());
    EXPECT_EQ ("Patient's Name", Name_Of (0x0010, 0x0010));
}

TEST_F (DataDictionary, EveryTagGivesItsOwnEntryAlsoTheSecondTime) {
    Dictionary_Reset (nullptr, 0);
    for (int round = 0; round < 2; round++) {
        int found = 0;
        for (uint32_t group = 0; group < 0x60; group += 2) {
            for (uint32_t element = 0; element < 0x2000; element++) {
                const Dictionary_Entry *entry =
                    Dictionary_Lookup (nullptr, static_cast<uint16_t> (group), static_cast<uint16_t> (element));
                if (!entry) continue;
                found++;
                EXPECT_EQ (entry->group, group);
                EXPECT_EQ (entry->element, element);
                EXPECT_EQ (entry, Dictionary_Lookup (nullptr, entry->group, entry->element));
            }
        }
        EXPECT_GT (found, 1000);
    }
}

// Tags that share a place, unknown ones, the first and the last of all, and those that stand for many groups, each twice.
TEST_F (DataDictionary, KnownTagsAreFoundAsInTheLines) {
    Dictionary_Reset (nullptr, 0);
    long before = Memory_Live ();
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0x0000, 0x0000));
    EXPECT_LT (before, Memory_Live ()) << "an empty place is no tag's";
    int found = 0;
    for (int group : {0x0000, 0x0001, 0x0008, 0x0009, 0x0010, 0x5000, 0x5001, 0x60FE, 0x60FF, 0x7FE0, 0xFFFE, 0xFFFF})
        for (int element : {0x0000, 0x0001, 0x0010, 0x0020, 0x0100, 0x0210, 0x2000, 0x3000, 0xFFFE, 0xFFFF})
            for (int times = 0; times < 2; times++) {
                uint16_t                g = static_cast<uint16_t> (group), e = static_cast<uint16_t> (element);
                const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, g, e);
                EXPECT_EQ (group & 1 ? nullptr : Dictionary_Seek (nullptr, g, e), entry) << group << " " << element;
                found += entry != nullptr;
            }
    EXPECT_GT (found, 20);
}

TEST_F (DataDictionary, TagIsUnknownOnceItWasSoughtInVain) {
    Set_Tables ({{"(0008,0010) A DS 1"}});
    long before = Memory_Live ();
    for (uint16_t element : std::initializer_list<uint16_t> {0x0010, 0x0011}) {
        EXPECT_FALSE (Dictionary_Is_Unknown (0x0008, element));
        EXPECT_EQ (before, Memory_Live ());
    }
    for (uint16_t element : std::initializer_list<uint16_t> {0x0010, 0x0011})
        Dictionary_Lookup (nullptr, 0x0008, element);
    EXPECT_FALSE (Dictionary_Is_Unknown (0x0008, 0x0010));
    EXPECT_TRUE (Dictionary_Is_Unknown (0x0008, 0x0011));
    EXPECT_FALSE (Dictionary_Is_Unknown (0x0008, 0x0012));
    Dictionary_Reset (nullptr, 0);
    EXPECT_FALSE (Dictionary_Is_Unknown (0x0008, 0x0011));
}

TEST_F (DataDictionary, ResetForgetsWhereTheLastGroupStood) {
    Build ({"(0008,0010) A DS 1", "(0010,0010) B DS 1"});
    EXPECT_EQ ("B", Name_Of (0x0010, 0x0010));
    Build ({"(0010,0010) C DS 1", "(0020,0010) D DS 1"});
    EXPECT_EQ ("C", Name_Of (0x0010, 0x0010));
}

TEST_F (DataDictionary, MissingMemoryIsReportedAndTriedAgain) {
    Set_Tables ({{"(0010,0010) A DS 1", "(0010,0020) B DS 1"}});
    long before   = Memory_Live ();
    int  failures = 0;
    for (long n = 1;; n++) {
        Dictionary_Reset (nullptr, 0);
        Set_Tables ({{"(0010,0010) A DS 1", "(0010,0020) B DS 1"}});
        Memory_Fail_At (n);
        const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, 0x0010, 0x0010);
        if (!Memory_Failed ()) {
            EXPECT_NE (nullptr, entry);
            break;
        }
        failures++;
        Memory_Fail_At (0);
        EXPECT_EQ (nullptr, entry);
        EXPECT_EQ (before, Memory_Live ());
        ASSERT_EQ (1u, log.lines.size ());
        EXPECT_EQ (LOG_ERROR, log.lines[0].kind);
        EXPECT_EQ (1, log.Count (LOG_ERROR, " of data_dictionary \nmemory error in malloc (var="));
        EXPECT_EQ ("A", Name_Of (0x0010, 0x0010));
        EXPECT_EQ (2, Dictionary_Build (nullptr));
    }
    Memory_Fail_At (0);
    EXPECT_EQ (3, failures);
}
