// The definition tables as they are shipped: every file, read in another way than the program does it, and every modality
// as the program assembles it. This is the check to run after editing a table.
#include <ctype.h>
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "attribute/attribute.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"

static const char *const FOLDER         = TAGWRIGHT_SOURCE_DIR "/DICOM Tables/";
static const char *const EXAMPLES       = TAGWRIGHT_SOURCE_DIR "/examples/tables/";
static const char *const MODALITY_PATHS = TAGWRIGHT_SOURCE_DIR "/tests/tables/modality_paths.txt";

static const size_t   MODALITY_COUNT = 30;
static const size_t   PRIVATE_FILES  = 315;
static const size_t   PRIVATE_LINES  = 6310;
static const unsigned ITEM           = 0xFFFEE000;

// --- reading ---------------------------------------------------------------

struct Table_Line {
    int         number; // In its file, from 1.
    int         depth;
    std::string include; // Of a directive; then the rest is empty.
    unsigned    tag;     // Group and element.
    std::string type, vr, description, comment;
};

struct Table {
    std::string              file, kind, name; // "DICOM_KIND_NAME.txt"
    std::string              text;
    std::vector<std::string> head;  // Comment lines before the first other one.
    std::vector<std::string> rows;  // Neither empty nor comment.
    std::vector<Table_Line>  lines; // Of attribute lines; a line that can't be read is not here.
    std::vector<std::string> unread;
};

static std::string Trimmed (const std::string &text) {
    size_t first = text.find_first_not_of (' '), last = text.find_last_not_of (' ');
    return first == std::string::npos ? "" : text.substr (first, last - first + 1);
}

static std::string Upper (std::string text) {
    for (char &c : text) c = static_cast<char> (toupper (static_cast<unsigned char> (c)));
    return text;
}

// Stricter than the program: one way to write a line, with every word in its place.
static bool Read_Line (const std::string &text, Table_Line *line) {
    static const std::regex include ("(>*)include ([A-Za-z0-9_-]+) *(;.*)?");
    static const std::regex attribute ("(>*)\\(([0-9A-F]{4}),([0-9A-F]{4})\\)( +type=(1|1C|2|2C|3))?( +VR=([A-Z]{2}))?"
                                       "( +desc=\"([^\"\\[\\];]+)\")? *(; (.*))?");
    std::smatch             found;
    if (std::regex_match (text, found, include)) {
        line->depth   = static_cast<int> (found.length (1));
        line->include = found[2];
        return true;
    }
    std::string marked = text.substr (0, 1) == "-" ? text.substr (1) : text; // Marks come before ">".
    if (!std::regex_match (marked, found, attribute)) return false;
    line->depth       = static_cast<int> (found.length (1));
    line->tag         = static_cast<unsigned> (std::stoul (found[2].str () + found[3].str (), nullptr, 16));
    line->type        = found[5];
    line->vr          = found[7];
    line->description = found[9];
    line->comment     = found[11];
    return true;
}

static Table Read_Table (const std::filesystem::path &path) {
    static const std::regex name ("DICOM_(Module|Attributes|Include|Private)_(.+)\\.txt");
    Table                   table;
    std::smatch             found;
    std::ifstream           stream (path, std::ios::binary);
    std::stringstream       bytes;
    bytes << stream.rdbuf ();
    table.text = bytes.str ();
    table.file = path.filename ().string ();
    if (std::regex_match (table.file, found, name)) {
        table.kind = found[1];
        table.name = found[2];
    }
    int number = 0;
    for (std::string text; std::getline (bytes, text);) {
        number++;
        bool comment = text.substr (0, 1) == ";";
        if (comment && table.rows.empty ()) table.head.push_back (text);
        if (comment || Trimmed (text).empty ()) continue;
        table.rows.push_back (text);
        Table_Line line = {};
        line.number     = number;
        if (table.kind.empty () || table.kind == "Module") continue;
        if (Read_Line (text, &line)) table.lines.push_back (line);
        else table.unread.push_back (text);
    }
    return table;
}

// All files of a folder by name.
static std::map<std::string, Table> Read_Folder (const std::filesystem::path &folder) {
    std::map<std::string, Table> tables;
    for (const auto &entry : std::filesystem::directory_iterator (folder)) {
        Table table        = Read_Table (entry.path ());
        tables[table.file] = table;
    }
    return tables;
}

static const std::map<std::string, Table> &Shipped () {
    static const std::map<std::string, Table> tables = Read_Folder (FOLDER);
    return tables;
}

static std::vector<const Table *> Of_Kind (const std::string &kinds) {
    std::vector<const Table *> some;
    for (const auto &[file, table] : Shipped ())
        if (!table.kind.empty () && kinds.find (table.kind) != std::string::npos) some.push_back (&table);
    return some;
}

static bool Is_Sequence (const Table_Line &line) {
    if (!line.vr.empty ()) return line.vr == "SQ";
    const Dictionary_Entry *entry =
        Dictionary_Lookup (nullptr, static_cast<uint16_t> (line.tag >> 16), static_cast<uint16_t> (line.tag));
    return entry && entry->vr[0] == VR_SQ;
}

static std::string Place (const Table &table, const Table_Line &line) {
    return table.file + " line " + std::to_string (line.number);
}

// What stands before the comment of a module file's line.
static std::string Module_Name (const std::string &row) { return Trimmed (row.substr (0, row.find (';'))); }

// --- what a definition shall hold ------------------------------------------

typedef std::map<std::string, std::string> Paths; // "00081140>00081150" to "1C"

// From the list beside this source: types in a column for each modality, and a path.
static std::map<std::string, Paths> Expected_Paths () {
    std::map<std::string, Paths> expected;
    std::vector<std::string>     names;
    std::ifstream                stream (MODALITY_PATHS);
    for (std::string line; std::getline (stream, line);) {
        if (!line.empty () && line.back () == '\r') line.pop_back ();
        if (line.empty () || line[0] == '#') continue;
        size_t      number = names.size () + 1, columns = 2 * names.size ();
        std::string head = std::to_string (number) + " ";
        if (names.size () < MODALITY_COUNT && line.substr (0, head.size ()) == head) {
            names.push_back (line.substr (head.size ()));
            expected[names.back ()];
            continue;
        }
        if (line.size () < columns + 9) ADD_FAILURE () << "short line: " << line;
        else
            for (size_t i = 0; i < names.size (); i++) {
                std::string type = Trimmed (line.substr (2 * i, 2));
                if (type != "-") expected[names[i]][line.substr (columns + 1)] = type;
            }
    }
    return expected;
}

TEST (ShippedTables, ListOfPathsHasEveryModality) {
    std::map<std::string, Paths> expected = Expected_Paths ();
    EXPECT_EQ (MODALITY_COUNT, expected.size ());
    for (const auto &[name, paths] : expected) EXPECT_LT (300u, paths.size ()) << name;
}

// --- files -----------------------------------------------------------------

TEST (ShippedTables, EachModalityNameHasItsFileAndNoOther) {
    std::set<std::string> names, files;
    for (const auto &[name, paths] : Expected_Paths ()) names.insert (name);
    for (const Table *table : Of_Kind ("Module")) files.insert (table->name);
    EXPECT_EQ (names, files);
}

TEST (ShippedTables, NothingElseStandsInTheFolder) {
    std::set<std::string> upper;
    for (const auto &[file, table] : Shipped ()) {
        EXPECT_TRUE (!table.kind.empty () || file == "version.txt") << file;
        EXPECT_TRUE (upper.insert (Upper (file)).second) << file << " differs from another only by case";
    }
}

TEST (ShippedTables, VersionIsTheEditionThatEachTableNames) {
    const Table &version = Shipped ().at ("version.txt");
    EXPECT_EQ ("2024\n", version.text);
    for (const auto &[file, table] : Shipped ())
        if (!table.kind.empty ()) {
            ASSERT_LE (3u, table.head.size ()) << file;
            EXPECT_EQ ("; Edition:  2024 ", table.head[1].substr (0, 17)) << file;
        }
}

TEST (ShippedTables, FilesBeginWithWhatTheyDefineAndHowToEditIt) {
    static const std::map<std::string, std::string> first = {{"Module", "; Modality: "},
                                                             {"Attributes", "; Module:   "},
                                                             {"Include", "; Macro:    "},
                                                             {"Private", "; Private attributes of \""}};
    for (const Table *table : Of_Kind ("Module Attributes Include Private")) {
        const std::string &begin = first.at (table->kind);
        ASSERT_LE (3u, table->head.size ()) << table->file;
        EXPECT_EQ (begin, table->head[0].substr (0, begin.size ())) << table->file;
        EXPECT_EQ ("; A line:   ", table->head[2].substr (0, 12)) << table->file;
        if (table->kind == "Module") {
            EXPECT_EQ (table->name + " (", table->head[0].substr (begin.size (), table->name.size () + 2));
        }
    }
}

TEST (ShippedTables, LinesCanBeReadByTheProgram) {
    for (const auto &[file, table] : Shipped ()) {
        ASSERT_FALSE (table.text.empty ()) << file;
        EXPECT_EQ ('\n', table.text.back ()) << file;
        size_t length = 0;
        for (char c : table.text) {
            EXPECT_TRUE (c == '\n' || (c >= 0x20 && c <= 0x7E)) << file << " byte " << static_cast<int> (c);
            length = c == '\n' ? 0 : length + 1;
            EXPECT_LT (length, static_cast<size_t> (DEFINITION_LINE_SIZE)) << file;
        }
        EXPECT_FALSE (table.rows.empty ()) << file;
        for (const std::string &line : table.unread) ADD_FAILURE () << file << ": " << line;
    }
}

// --- modules and macros ----------------------------------------------------

TEST (ShippedTables, ModuleFilesNameEachModuleOnceAndUseAll) {
    std::set<std::string> used, there;
    for (const Table *table : Of_Kind ("Attributes")) there.insert (table->name);
    for (const Table *table : Of_Kind ("Module")) {
        std::set<std::string> names;
        EXPECT_EQ ("File_Meta_Information", Module_Name (table->rows.front ())) << table->file;
        for (const std::string &row : table->rows) {
            EXPECT_TRUE (names.insert (Module_Name (row)).second) << table->file << ": " << row;
            EXPECT_TRUE (there.count (Module_Name (row))) << table->file << ": " << row;
        }
        used.insert (names.begin (), names.end ());
    }
    EXPECT_EQ (there, used);
}

TEST (ShippedTables, IncludesExistAndAllAreUsed) {
    std::set<std::string> used, there;
    for (const Table *table : Of_Kind ("Include")) there.insert (table->name);
    for (const Table *table : Of_Kind ("Attributes Include Private"))
        for (const Table_Line &line : table->lines)
            if (!line.include.empty ()) used.insert (line.include);
    EXPECT_EQ (there, used);
}

// How deep includes nest below a table; a recursive one never ends and counts as 100.
static int Include_Depth (const std::string &name, int depth) {
    auto found = Shipped ().find ("DICOM_Include_" + name + ".txt");
    if (depth >= 100 || found == Shipped ().end ()) return depth;
    int deepest = depth;
    for (const Table_Line &line : found->second.lines) {
        if (!line.include.empty ()) deepest = std::max (deepest, Include_Depth (line.include, depth + 1));
        if (deepest >= 100) break;
    }
    return deepest;
}

TEST (ShippedTables, IncludesAreNotRecursive) {
    for (const Table *table : Of_Kind ("Include")) EXPECT_GT (100, Include_Depth (table->name, 1)) << table->name;
}

static bool Same_Lines (const Table_Line *lines, const Table &macro) {
    int base = lines->depth - macro.lines[0].depth;
    for (const Table_Line &line : macro.lines) {
        if (lines->depth - base != line.depth || lines->tag != line.tag || lines->type != line.type ||
            lines->include != line.include)
            return false;
        lines++;
    }
    return true;
}

TEST (ShippedTables, NoMacroIsWrittenOut) {
    for (const Table *table : Of_Kind ("Attributes Include"))
        for (const Table *macro : Of_Kind ("Include")) {
            if (macro == table || macro->lines.size () < 2) continue;
            for (size_t i = 0; i + macro->lines.size () <= table->lines.size (); i++)
                EXPECT_FALSE (Same_Lines (&table->lines[i], *macro))
                    << Place (*table, table->lines[i]) << ": include " << macro->name;
        }
}

// --- lines -----------------------------------------------------------------

TEST (ShippedTables, TagsAreTheDictionarysAndNotRetired) {
    for (const Table *table : Of_Kind ("Attributes Include"))
        for (const Table_Line &line : table->lines) {
            if (!line.include.empty () || line.tag == ITEM) continue;
            const Dictionary_Entry *entry =
                Dictionary_Lookup (nullptr, static_cast<uint16_t> (line.tag >> 16), static_cast<uint16_t> (line.tag));
            ASSERT_TRUE (entry) << Place (*table, line);
            EXPECT_LT (0, entry->nb_vr) << Place (*table, line) << " is retired";
            EXPECT_NE ("", line.type) << Place (*table, line);
            EXPECT_NE (entry->name, line.description)
                << Place (*table, line) << ": desc= says what the dictionary says";
            EXPECT_EQ (line.description.empty () ? entry->name : "", line.comment) << Place (*table, line);
        }
}

TEST (ShippedTables, VRsAreAllowedByTheDictionaryAndSaidWhereTheyMatter) {
    for (const Table *table : Of_Kind ("Attributes Include"))
        for (const Table_Line &line : table->lines) {
            if (line.vr.empty ()) continue;
            const Dictionary_Entry *entry =
                Dictionary_Lookup (nullptr, static_cast<uint16_t> (line.tag >> 16), static_cast<uint16_t> (line.tag));
            ASSERT_TRUE (entry) << Place (*table, line);
            uint16_t        vr  = static_cast<uint16_t> (line.vr[0] << 8 | line.vr[1]);
            const uint16_t *end = entry->vr + abs (entry->nb_vr);
            EXPECT_NE (end, std::find (entry->vr, end, vr)) << Place (*table, line);
            EXPECT_NE (entry->vr[0], vr) << Place (*table, line) << ": VR= says what the dictionary says first";
        }
}

TEST (ShippedTables, SequencesHaveContentAndNothingElseHas) {
    for (const Table *table : Of_Kind ("Attributes Include Private")) {
        const Table_Line *before = nullptr;
        for (const Table_Line &line : table->lines) {
            bool inside = before && before->include.empty () && Is_Sequence (*before);
            int  most   = !before ? 0 : before->depth + inside;
            EXPECT_LE (inside ? most : 0, line.depth) << Place (*table, line);
            EXPECT_GE (most, line.depth) << Place (*table, line);
            before = &line;
        }
        EXPECT_FALSE (before && before->include.empty () && Is_Sequence (*before))
            << table->file << " ends in a sequence";
    }
}

// --- private tables --------------------------------------------------------

// The creator as a file name.
static std::string Key (const std::string &creator) {
    std::string key = Upper (Trimmed (creator));
    for (char &c : key)
        if (strchr ("/\\:*?\"<>|", c)) c = '_';
    return key;
}

// From the first line of the file: Private attributes of "A", "B"
static std::vector<std::string> Creators (const Table &table) {
    std::vector<std::string> creators;
    static const std::regex  quoted ("\"([^\"]+)\"");
    for (std::sregex_iterator i (table.head[0].begin (), table.head[0].end (), quoted), end; i != end; ++i)
        creators.push_back ((*i)[1]);
    return creators;
}

TEST (ShippedTables, PrivateFilesAreNamedForTheirCreators) {
    size_t creators = 0;
    for (const Table *table : Of_Kind ("Private"))
        for (const std::string &creator : Creators (*table)) {
            EXPECT_EQ (Key (creator), table->name);
            EXPECT_GT (static_cast<size_t> (DEFINITION_KEY_SIZE), table->name.size ());
            creators++;
        }
    EXPECT_EQ (PRIVATE_FILES, Of_Kind ("Private").size ());
    EXPECT_EQ (318u, creators);
}

TEST (ShippedTables, PrivateLinesDescribeBlock10) {
    size_t count = 0;
    for (const Table *table : Of_Kind ("Private")) {
        unsigned before = 0;
        for (const Table_Line &line : table->lines) {
            if (line.tag == ITEM && line.depth == 1) continue;
            EXPECT_EQ (1u, line.tag >> 16 & 1) << Place (*table, line);
            EXPECT_EQ (0x1000u, line.tag & 0xFF00) << Place (*table, line);
            EXPECT_LT (before, line.tag) << Place (*table, line);
            EXPECT_NE ("", line.vr) << Place (*table, line);
            EXPECT_NE ("", line.description) << Place (*table, line);
            EXPECT_EQ (Trimmed (line.description), line.description) << Place (*table, line);
            before = line.tag;
            count++;
        }
    }
    EXPECT_EQ (PRIVATE_LINES, count);
}

TEST (ShippedTables, PrivateVRsAreDICOMs) {
    static const std::set<std::string> known = {"AE", "AS", "AT", "CS", "DA", "DS", "DT", "FD", "FL",
                                                "IS", "LO", "LT", "OB", "OF", "OW", "PN", "SH", "SL",
                                                "SQ", "SS", "ST", "TM", "UI", "UL", "UN", "US", "UT"};
    for (const Table *table : Of_Kind ("Private"))
        for (const Table_Line &line : table->lines)
            EXPECT_TRUE (line.tag == ITEM || known.count (line.vr)) << Place (*table, line);
}

// --- beside the program, and the examples ----------------------------------

TEST (ShippedTables, StandBesideTheBuiltProgram) {
    std::filesystem::path folder = std::filesystem::path (TAGWRIGHT_PROGRAM).parent_path () / "DICOM Tables";
    for (const auto &[file, table] : Shipped ()) EXPECT_EQ (table.text, Read_Table (folder / file).text) << file;
}

TEST (ExampleTables, CanBeReadByTheProgram) {
    std::map<std::string, Table> tables = Read_Folder (EXAMPLES);
    EXPECT_EQ (4u, tables.size ());
    for (const auto &[file, table] : tables) {
        if (file == "README.md") continue;
        EXPECT_EQ ('\n', table.text.back ()) << file;
        EXPECT_FALSE (table.lines.empty ()) << file;
        for (const std::string &line : table.unread) ADD_FAILURE () << file << ": " << line;
        for (const Table_Line &line : table.lines)
            EXPECT_NE (line.include.empty (), line.vr.empty () && line.tag != ITEM);
    }
}

// --- as the program reads them ---------------------------------------------

class TablesInUse : public testing::Test {
protected:
    TablesInUse () {
        settings.kind_warning = LOG_WARNING;
        settings.kind_note    = LOG_REPORT;
    }
    ~TablesInUse () override {
        DICOM_Module_Free (nullptr);
        DICOM_Module_Private_Free (nullptr);
        DICOM_Module_Dir_Set ("");
    }

    Settings settings = {};
};

static std::string Type_Text (const Attribute *attribute) {
    char text[] = {Code_First (attribute->type, '-'), Code_Second (attribute->type, '-'), 0};
    return Trimmed (text);
}

// Tags ascend, none stands twice, and a sequence has one item.
static void Collect_Paths (const Attribute *list, const std::string &above, Paths *paths) {
    std::string before;
    for (const Attribute *attribute = list; attribute; attribute = attribute->next) {
        char tag[9];
        snprintf (tag, sizeof (tag), "%04X%04X", attribute->group, attribute->element);
        EXPECT_LT (before, tag) << above;
        EXPECT_EQ (attribute->vr == VR_SQ ? 1 : 0, attribute->nb_item) << above << tag;
        EXPECT_TRUE (attribute->vr) << above << tag;
        EXPECT_EQ (ORIGIN_MODULE, attribute->flags) << above << tag;
        (*paths)[above + tag] = Type_Text (attribute);
        for (int32_t i = 0; i < attribute->nb_item; i++) Collect_Paths (attribute->item[i], above + tag + ">", paths);
        before = tag;
    }
}

// A line for each path that differs: what is expected of it, and what it is.
static std::string Differences (const Paths &expected, const Paths &found) {
    std::string text;
    for (const auto &[path, type] : expected) {
        auto there = found.find (path);
        if (there == found.end ()) text += path + " " + type + ", lost\n";
        else if (there->second != type) text += path + " " + type + ", but is " + there->second + "\n";
    }
    for (const auto &[path, type] : found)
        if (!expected.count (path)) text += path + " " + type + ", invented\n";
    return text;
}

TEST_F (TablesInUse, EachModalityIsAssembledWithoutAWordAndAsExpected) {
    DICOM_Module_Dir_Set (FOLDER);
    for (const auto &[name, expected] : Expected_Paths ()) {
        Log_Recorder log;
        Paths        found;
        Attribute   *list = DICOM_Module_Read (nullptr, &settings, name.c_str ());
        EXPECT_TRUE (list) << name;
        Collect_Paths (list, "", &found);
        EXPECT_EQ ("", log.All ()) << name;
        EXPECT_EQ ("", Differences (expected, found)) << name;
    }
}

// What the tables say of a private attribute: "CS Acquisition Mode".
static std::string Private_Text (const Settings *settings, const std::string &creator, unsigned tag) {
    Test_List  list;
    Attribute *attribute = list.Add (static_cast<uint16_t> (tag >> 16), static_cast<uint16_t> (tag));
    if (DICOM_Module_Read_Private (nullptr, settings, creator.c_str (), attribute) != 1) return "";
    std::string text = {Code_First (attribute->vr, '-'), Code_Second (attribute->vr, '-'), ' '};
    return text + (attribute->description ? attribute->description : "");
}

TEST_F (TablesInUse, EachPrivateAttributeIsFoundInAnyBlockWithoutAWord) {
    DICOM_Module_Dir_Set (FOLDER);
    Log_Recorder log;
    for (const Table *table : Of_Kind ("Private"))
        for (const std::string &creator : Creators (*table))
            for (const Table_Line &line : table->lines) {
                if (line.tag == ITEM) continue;
                std::string text = line.vr + " " + line.description;
                EXPECT_EQ (text, Private_Text (&settings, creator, line.tag)) << Place (*table, line);
                EXPECT_EQ (text, Private_Text (&settings, creator, line.tag + 0x3200)) << Place (*table, line);
            }
    EXPECT_EQ ("", log.All ());
}

TEST_F (TablesInUse, ExampleMarksARawHeaderAsDeleted) {
    DICOM_Module_Dir_Set (EXAMPLES);
    Test_List  list;
    Attribute *header = list.Add (0x0029, 0x10F0), *mode = list.Add (0x0029, 0x1008);
    EXPECT_EQ (1, DICOM_Module_Read_Private (nullptr, &settings, "Acme/Imaging", header));
    EXPECT_EQ (1, DICOM_Module_Read_Private (nullptr, &settings, "Acme/Imaging", mode));
    EXPECT_EQ (DELETED, header->flags & DELETED);
    EXPECT_EQ (0, mode->flags & DELETED);
}

TEST_F (TablesInUse, ExamplesDescribeTheirCreators) {
    DICOM_Module_Dir_Set (EXAMPLES);
    Log_Recorder log;
    EXPECT_EQ ("CS Acquisition Mode", Private_Text (&settings, "Acme/Imaging", 0x00291008));
    EXPECT_EQ ("SQ Calibration Sequence", Private_Text (&settings, "Acme/Imaging", 0x00291120));
    EXPECT_EQ ("DS Table Feed", Private_Text (&settings, "Example Scanner 2.1", 0x00191001));
    EXPECT_EQ ("DT Last Service", Private_Text (&settings, "Example Scanner", 0x00091002));
    EXPECT_EQ ("", Private_Text (&settings, "Example", 0x00091002));
    EXPECT_EQ ("", log.All ());
}
