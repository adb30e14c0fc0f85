// The program's own lines, read once more from their files in another way than the program does it.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
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

TEST_F (DictionaryLines, EveryLineIsFoundAgain) {
    const std::regex form (
        "\\((.{4}),(.{4})\\) (.*?) +(?:([A-Z]{2}) ([0-9n-]+)|((?:(?:or)?\\([A-Z]{2} [0-9n-]+\\)){2,3}))( RET)?");
    const std::regex pair ("\\((..) ([^)]+)\\)");

    for (const std::string &line : All_Lines ()) {
        std::smatch part;
        ASSERT_TRUE (std::regex_match (line, part, form)) << line;
        std::string group = part[1], element = part[2];
        std::replace (group.begin (), group.end (), 'x', '0');
        std::replace (element.begin (), element.end (), 'x', '0');

        std::vector<std::pair<std::string, std::string>> pairs;
        if (part[4].matched) pairs.push_back ({part[4], part[5]});
        std::string several = part[6];
        for (std::sregex_iterator i (several.begin (), several.end (), pair), end; i != end; ++i)
            pairs.push_back ({(*i)[1], (*i)[2]});

        const Dictionary_Entry *entry =
            Dictionary_Lookup (nullptr, static_cast<uint16_t> (std::stoi (group, nullptr, 16)),
                               static_cast<uint16_t> (std::stoi (element, nullptr, 16)));
        ASSERT_NE (nullptr, entry) << line;
        EXPECT_EQ (std::stoi (group, nullptr, 16), entry->group) << line;
        EXPECT_EQ (std::stoi (element, nullptr, 16), entry->element) << line;
        EXPECT_EQ (part[3], entry->name) << line;
        EXPECT_EQ (static_cast<int> (pairs.size ()) * (part[7].matched ? -1 : 1), entry->nb_vr) << line;
        for (size_t i = 0; i < pairs.size (); i++) {
            const std::string &vm   = pairs[i].second;
            size_t             dash = vm.find ('-');
            int                low  = std::stoi (vm);
            int high = dash == std::string::npos ? low : vm.back () == 'n' ? 0xFFFF : std::stoi (vm.substr (dash + 1));
            EXPECT_EQ (Code (pairs[i].first[0], pairs[i].first[1]), entry->vr[i]) << line;
            EXPECT_EQ (low, entry->vm[i].minimum) << line;
            EXPECT_EQ (high, entry->vm[i].maximum) << line;
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
