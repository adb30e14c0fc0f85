// The program's own lines, read once more from their files in another way than the program does it.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/attribute.h"
#include "tables/data_dictionary.h"
#include "tests/support/log_recorder.h"
#include "util/memory.h"

static const int LINE_COUNT = 5114;

struct Source_File {
    std::string              name;
    std::vector<std::string> lines; // Without quotes.
};

// The files of the folder, ascending by name, which is their order by group.
static std::vector<Source_File> Source_Files () {
    std::vector<Source_File> files;
    for (const auto &entry : std::filesystem::directory_iterator (TAGWRIGHT_SOURCE_DIR "/tables/dictionary")) {
        Source_File   file {entry.path ().stem ().string (), {}};
        std::ifstream stream (entry.path ());
        for (std::string line; std::getline (stream, line);) {
            if (!line.empty () && line.back () == '\r') line.pop_back ();
            if (line.size () > 3 && line.front () == '"') file.lines.push_back (line.substr (1, line.size () - 3));
        }
        files.push_back (file);
    }
    std::sort (files.begin (), files.end (),
               [] (const Source_File &a, const Source_File &b) { return a.name < b.name; });
    return files;
}

static std::vector<std::string> All_Lines () {
    std::vector<std::string> all;
    for (const Source_File &file : Source_Files ()) all.insert (all.end (), file.lines.begin (), file.lines.end ());
    return all;
}

class DictionaryLines : public testing::Test {
protected:
    DictionaryLines () { Dictionary_Reset (nullptr, 0); }
    ~DictionaryLines () override { Dictionary_Reset (nullptr, 0); }
};

TEST_F (DictionaryLines, BuildWithoutAnyMessage) {
    Log_Recorder log (9);
    EXPECT_EQ (LINE_COUNT, Dictionary_Build (nullptr));
    EXPECT_EQ ("", log.All ());
}

// Lines that are parsed when they are looked up can't be warned about at the build.
TEST_F (DictionaryLines, AllAreParsedWithoutAnyMessage) {
    Log_Recorder log (9);
    Dictionary_Reset (Dictionary_Tables, DICTIONARY_TABLE_COUNT);
    EXPECT_EQ (LINE_COUNT, Dictionary_Build (nullptr));
    EXPECT_EQ ("", log.All ());
}

// What a look-up tells, as a text; empty when there is nothing.
static std::string Told (uint16_t group, uint16_t element) {
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, group, element);
    if (!entry) return "";
    std::string told = std::to_string (entry->group) + " " + std::to_string (entry->element) + " " +
                       std::to_string (entry->element_mask) + " " + std::to_string (entry->nb_vr) + " " + entry->name;
    for (int i = 0; i < DICTIONARY_VR_COUNT; i++)
        told += " " + std::to_string (entry->vr[i]) + " " + std::to_string (entry->vm[i].minimum) + " " +
                std::to_string (entry->vm[i].maximum);
    return told;
}

TEST_F (DictionaryLines, ParsedWhenLookedUpTheyTellWhatTheyTellParsedAtOnce) {
    std::vector<std::string> lines = All_Lines (), told;
    auto                     look  = [] (const std::string &line) {
        return Told (static_cast<uint16_t> (strtoul (line.substr (1, 4).c_str (), nullptr, 16)),
                                          static_cast<uint16_t> (strtoul (line.substr (6, 4).c_str (), nullptr, 16)));
    };
    for (size_t i = lines.size (); i-- > 0;) told.push_back (look (lines[i])); // In another order.
    Dictionary_Reset (Dictionary_Tables, DICTIONARY_TABLE_COUNT);
    for (size_t i = 0; i < lines.size (); i++) {
        ASSERT_EQ (look (lines[i]), told[lines.size () - 1 - i]) << lines[i];
        ASSERT_EQ (look (lines[i]), look (lines[i]));
    }
}

TEST_F (DictionaryLines, TablesHoldTheLinesOfAllFilesInOrder) {
    std::vector<Source_File> files = Source_Files ();
    ASSERT_EQ (static_cast<size_t> (DICTIONARY_TABLE_COUNT), files.size ());
    for (size_t t = 0; t < files.size (); t++) {
        ASSERT_EQ (static_cast<size_t> (Dictionary_Tables[t].count), files[t].lines.size ()) << files[t].name;
        for (size_t i = 0; i < files[t].lines.size (); i++)
            EXPECT_EQ (files[t].lines[i], Dictionary_Tables[t].lines[i]);
    }
    EXPECT_EQ (static_cast<size_t> (LINE_COUNT), All_Lines ().size ());
}

TEST_F (DictionaryLines, FilesAreNamedForTheirGroups) {
    for (const Source_File &file : Source_Files ()) {
        ASSERT_FALSE (file.lines.empty ()) << file.name;
        std::string first = file.lines.front ().substr (1, 4), last = file.lines.back ().substr (1, 4);
        EXPECT_EQ (first == last ? first : first + "-" + last, file.name);
    }
}

TEST_F (DictionaryLines, TagsAscend) {
    std::string before = "";
    for (const std::string &line : All_Lines ()) {
        std::string tag = line.substr (0, 11);
        std::replace (tag.begin (), tag.end (), 'x', '0');
        EXPECT_LT (before, tag);
        before = tag;
    }
}

struct Reading {
    int                      group, element;
    std::string              name;
    std::vector<std::string> vrs, vms;
    bool                     retired;
};

static std::string Trimmed (const std::string &text) { return text.substr (0, text.find_last_not_of (' ') + 1); }

// Reads a line from front to back: the name ends where nothing but pairs follow.
static Reading Read (const std::string &line) {
    Reading     reading = {};
    std::string tag     = line.substr (0, 11);
    std::replace (tag.begin (), tag.end (), 'x', '0');
    sscanf (tag.c_str (), "(%x,%x)", reinterpret_cast<unsigned *> (&reading.group),
            reinterpret_cast<unsigned *> (&reading.element));

    for (size_t start = 12; start < line.size (); start++) {
        const char *text = line.c_str () + start;
        reading.vrs.clear ();
        reading.vms.clear ();
        if (line[start - 1] != ' ') continue;
        char vr[3], vm[11];
        int  used = 0;
        while (sscanf (text, "(%2[A-Z] %10[0-9n-])%n", vr, vm, &used) == 2 && used) {
            reading.vrs.push_back (vr);
            reading.vms.push_back (vm);
            text += used;
            if (!strncmp (text, "or(", 3)) text += 2;
            used = 0;
        }
        if (reading.vrs.empty () && sscanf (text, "%2[A-Z] %10[0-9n-]%n", vr, vm, &used) == 2 && used) {
            reading.vrs.push_back (vr);
            reading.vms.push_back (vm);
            text += used;
        }
        if (reading.vrs.empty () || (*text && strcmp (text, " RET"))) continue;
        reading.retired = *text;
        reading.name    = Trimmed (line.substr (12, start - 12));
        return reading;
    }
    ADD_FAILURE () << "not a line: " << line;
    return reading;
}

static int Limit (const std::string &number) { return number.back () == 'n' ? 0xFFFF : std::stoi (number); }

TEST_F (DictionaryLines, EveryLineIsFoundAgain) {
    for (const std::string &line : All_Lines ()) {
        Reading                 expected = Read (line);
        const Dictionary_Entry *entry    = Dictionary_Lookup (nullptr, static_cast<uint16_t> (expected.group),
                                                              static_cast<uint16_t> (expected.element));
        ASSERT_NE (nullptr, entry) << line;
        EXPECT_EQ (expected.group, entry->group) << line;
        EXPECT_EQ (expected.element, entry->element) << line;
        EXPECT_EQ (expected.name, entry->name) << line;
        EXPECT_EQ (static_cast<int> (expected.vrs.size ()) * (expected.retired ? -1 : 1), entry->nb_vr) << line;
        for (size_t i = 0; i < expected.vrs.size (); i++) {
            const std::string &vm   = expected.vms[i];
            size_t             dash = vm.find ('-');
            EXPECT_EQ (Code (expected.vrs[i][0], expected.vrs[i][1]), entry->vr[i]) << line;
            EXPECT_EQ (std::stoi (vm), entry->vm[i].minimum) << line;
            EXPECT_EQ (Limit (dash == std::string::npos ? vm : vm.substr (dash + 1)), entry->vm[i].maximum) << line;
        }
    }
}

TEST_F (DictionaryLines, StructureAndCommandGroupsAreLeftOut) {
    for (const std::string &line : All_Lines ()) {
        EXPECT_NE ("0000", line.substr (1, 4));
        EXPECT_NE ("FFFE", line.substr (1, 4));
    }
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0xFFFE, 0xE000));
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0xFFFE, 0xE00D));
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0xFFFE, 0xE0DD));
    EXPECT_EQ (nullptr, Dictionary_Lookup (nullptr, 0x0000, 0x0000));
}

static std::string Name_Of (uint16_t group, uint16_t element) {
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, group, element);
    return entry ? entry->name : "(none)";
}

TEST_F (DictionaryLines, RepeatingGroupsAreOneLine) {
    for (int group = 0x5000; group <= 0x50FE; group += 2)
        EXPECT_EQ ("Number of Points", Name_Of (static_cast<uint16_t> (group), 0x0010));
    for (int group = 0x6000; group <= 0x60FE; group += 2)
        EXPECT_EQ ("Overlay Rows", Name_Of (static_cast<uint16_t> (group), 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x5001, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x4FFE, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x5100, 0x0010));
    EXPECT_EQ ("(none)", Name_Of (0x6100, 0x0010));
}

TEST_F (DictionaryLines, OpenDigitsOfAnElementStandForZeroOnly) {
    EXPECT_EQ ("Source Image IDs", Name_Of (0x0020, 0x3100));
    EXPECT_EQ ("(none)", Name_Of (0x0020, 0x3101));
    EXPECT_EQ ("Zonal Map", Name_Of (0x1010, 0x0000));
    EXPECT_EQ (0xFF00, Dictionary_Lookup (nullptr, 0x0020, 0x3100)->element_mask);
}

TEST_F (DictionaryLines, PixelDataIsNotHidden) {
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, 0x7FE0, 0x0010);
    ASSERT_NE (nullptr, entry);
    EXPECT_STREQ ("Pixel Data", entry->name);
    EXPECT_EQ (2, entry->nb_vr);
    EXPECT_EQ (VR_OB, entry->vr[0]);
    EXPECT_EQ (VR_OW, entry->vr[1]);
}

TEST_F (DictionaryLines, LookUpTablesHaveAMultiplicityForEachVr) {
    const Dictionary_Entry *data = Dictionary_Lookup (nullptr, 0x0028, 0x3006);
    ASSERT_NE (nullptr, data);
    EXPECT_EQ (2, data->nb_vr);
    EXPECT_EQ (VR_US, data->vr[0]);
    EXPECT_EQ (0xFFFF, data->vm[0].maximum);
    EXPECT_EQ (VR_OW, data->vr[1]);
    EXPECT_EQ (1, data->vm[1].maximum);

    const Dictionary_Entry *gray = Dictionary_Lookup (nullptr, 0x0028, 0x1200);
    ASSERT_NE (nullptr, gray);
    EXPECT_EQ (-3, gray->nb_vr);
    EXPECT_EQ (VR_SS, gray->vr[1]);
    EXPECT_EQ (0xFFFF, gray->vm[1].maximum);
    EXPECT_EQ (1, gray->vm[2].maximum);
}

TEST_F (DictionaryLines, BuildingTakesFewAllocations) {
    Memory_Fail_At (4);
    Log_Recorder log;
    EXPECT_EQ (LINE_COUNT, Dictionary_Build (nullptr));
    EXPECT_EQ (0, Memory_Failed ());
    Memory_Fail_At (0);
}
