#include "attribute/NEMA_Tag_Complement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "attribute/NEMA_Tag_Attribute.h"
#include "tables/data_dictionary.h"
#include "tables/definition_files.h"
#include "tests/support/lists.h"
#include "tests/support/log_recorder.h"
#include "tests/support/temporary.h"
#include "util/memory.h"

static std::string Description (const Attribute *attribute) {
    return attribute->description ? attribute->description : "(none)";
}

static std::string VR (const Attribute *attribute) {
    return {Code_First (attribute->vr, '-'), Code_Second (attribute->vr, '-')};
}

static void Complement (Test_List *list) {
    list->Reset ();
    EXPECT_EQ (0, DICOM_Attribute_Complement (nullptr, &list->cursor, list->first));
}

// One attribute, completed alone in its list.
struct One {
    Test_List  list;
    Attribute *attribute;

    One (uint16_t group, uint16_t element, const std::string &value = "", const char *description = nullptr,
         uint16_t flags = 0) {
        attribute = list.Add (group, element, "", value);
        attribute->flags |= flags;
        if (description) DICOM_Attribute_Set_Description (nullptr, attribute, 0, "%s", description);
        Complement (&list);
    }
};

// --- descriptions ----------------------------------------------------------

TEST (NemaTagComplement, DescriptionIsFormattedAndReplacesTheOldOne) {
    Test_List  list;
    long       live      = Memory_Live ();
    Attribute *attribute = list.Add (0x0009, 0x1001);
    EXPECT_EQ (1, DICOM_Attribute_Set_Description (nullptr, attribute, VR_US, "%s %d", "number", 7));
    EXPECT_EQ ("number 7", Description (attribute));
    EXPECT_EQ ("US", VR (attribute));
    EXPECT_EQ (1, DICOM_Attribute_Set_Description (nullptr, attribute, 0, "[%s]", attribute->description));
    EXPECT_EQ ("[number 7]", Description (attribute));
    EXPECT_EQ ("US", VR (attribute));
    EXPECT_EQ (live + 2, Memory_Live ());
    EXPECT_EQ (1, DICOM_Attribute_Set_Description (nullptr, attribute, VR_LO, "%s", ""));
    EXPECT_EQ (nullptr, attribute->description);
    EXPECT_EQ ("LO", VR (attribute));
    EXPECT_EQ (live + 1, Memory_Live ());
}

TEST (NemaTagComplement, LongDescriptionIsCut) {
    Test_List   list;
    Attribute  *attribute = list.Add (0x0009, 0x1001);
    std::string text (5000, 'x');
    EXPECT_EQ (1, DICOM_Attribute_Set_Description (nullptr, attribute, 0, "%s", text.c_str ()));
    EXPECT_EQ (text.substr (0, DESCRIPTION_TEXT_SIZE - 1), Description (attribute));
}

TEST (NemaTagComplement, FailedCopyLeavesNoDescription) {
    Test_List    list;
    Log_Recorder log;
    Attribute   *attribute = list.Add (0x0009, 0x1001);
    DICOM_Attribute_Set_Description (nullptr, attribute, 0, "old");
    Memory_Fail_At (1);
    EXPECT_EQ (0, DICOM_Attribute_Set_Description (nullptr, attribute, VR_US, "new"));
    Memory_Fail_At (0);
    EXPECT_EQ (nullptr, attribute->description);
    EXPECT_EQ ("US", VR (attribute));
    ASSERT_EQ (1u, log.lines.size ());
    EXPECT_EQ (LOG_ERROR, log.lines[0].kind);
    EXPECT_EQ (0u, log.lines[0].text.find ("line "));
    EXPECT_TRUE (log.Contains (" of NEMA_Tag_Complement \nmemory error in strdup (var=tag->description)"));
}

// --- the pass --------------------------------------------------------------

TEST (NemaTagComplement, NoListIsDone) {
    Log_Recorder   log (4);
    SequenceCursor cursor = {};
    EXPECT_EQ (0, DICOM_Attribute_Complement (nullptr, &cursor, nullptr));
    EXPECT_EQ (std::to_string (LOG_TRACE4) + ": in DICOM_Attribute_Complement()\n", log.All ());
}

TEST (NemaTagComplement, EveryListAndRecordIsTraced) {
    Test_List list;
    list.Add (0x0008, 0x0060);
    list.Open (0x0032, 0x1064);
    list.Item ();
    list.Add (0x0008, 0x0100);
    list.Item ();
    list.Add (0x0008, 0x0102);
    list.Close ();
    Log_Recorder log (5);
    Complement (&list);
    std::string all = log.All (), order;
    for (const Log_Line &line : log.lines)
        if (line.text.find ("DICOM_Attribute_Complement") != std::string::npos)
            order += std::to_string (line.kind - LOG_TRACE1 + 1) + " " + line.text + "\n";
    EXPECT_EQ ("4 in DICOM_Attribute_Complement()\n"
               "5 DICOM_Attribute_Complement (0008,0060)\n"
               "5 DICOM_Attribute_Complement (0032,1064)\n"
               "4 in DICOM_Attribute_Complement()\n"
               "5 DICOM_Attribute_Complement (0008,0100)\n"
               "4 in DICOM_Attribute_Complement()\n"
               "5 DICOM_Attribute_Complement (0008,0102)\n",
               order)
        << all;
    // The cursor goes along, and tells about it at the deepest level.
    EXPECT_TRUE (log.Has (LOG_TRACE5, "    ------------------------ ---- Item[2] in ---------------")) << all;
    EXPECT_TRUE (log.Has (LOG_TRACE5, "------------------------ ---- Sequence in ----(depth=0)-----")) << all;
    EXPECT_EQ (0, list.cursor.depth);
}

// --- dictionary ------------------------------------------------------------

TEST (NemaTagComplement, DictionaryGivesDefinitionAndVr) {
    One name (0x0010, 0x0010);
    ASSERT_NE (nullptr, name.attribute->definition);
    EXPECT_STREQ ("Patient's Name", name.attribute->definition->name);
    EXPECT_EQ ("PN", VR (name.attribute));
    EXPECT_EQ (nullptr, name.attribute->description);

    One described (0x0010, 0x0010, "", "my own");
    EXPECT_EQ ("my own", Description (described.attribute));
    EXPECT_EQ ("PN", VR (described.attribute));

    One unknown (0x0010, 0x0011);
    EXPECT_EQ (nullptr, unknown.attribute->definition);
    EXPECT_EQ (0, unknown.attribute->vr);
}

TEST (NemaTagComplement, FirstVrOfTheDictionaryCounts) {
    One smallest (0x0028, 0x0106); // US or SS.
    EXPECT_EQ ("US", VR (smallest.attribute));
}

TEST (NemaTagComplement, VrAndDefinitionThatAreThereStay) {
    static const Dictionary_Entry OTHER = {0x0008, 0x0060, 0xFFFF, 1, "other", {VR_ST}, {{1, 1}}};
    Test_List                     list;
    Attribute                    *known = list.Add (0x0010, 0x0010, "LO");
    known->vr                           = VR_UN;
    Attribute *other                    = list.Add (0x0010, 0x0020);
    other->definition                   = &OTHER;
    Complement (&list);
    EXPECT_EQ ("UN", VR (known));
    EXPECT_EQ (VR_LO, known->vr_file);
    EXPECT_EQ (&OTHER, other->definition);
    EXPECT_EQ ("ST", VR (other));
}

// --- group lengths ---------------------------------------------------------

TEST (NemaTagComplement, GroupLengthsGetBanners) {
    static const struct {
        uint16_t    group;
        const char *text;
    } banners[] = {
        {0x0002, "===== Group 0002 (File) =============="}, {0x0008, "===== Group 0008 (Identifying) ======="},
        {0x0010, "===== Group 0010 (Patient) ==========="}, {0x0018, "===== Group 0018 (Acquisition) ======="},
        {0x0020, "===== Group 0020 (Relationship) ======"}, {0x0028, "===== Group 0028 (Presentation) ======"},
        {0x7FE0, "===== Group 7FE0 (Image Data) ========"},
    };
    for (auto &banner : banners)
        for (const char *value : {"", "1234"}) {
            One length (banner.group, 0, value);
            EXPECT_EQ ("\xF1\x02" + std::string (banner.text), Description (length.attribute));
            EXPECT_EQ (38u, std::string (banner.text).size ());
            EXPECT_EQ ("UL", VR (length.attribute));
        }
}

TEST (NemaTagComplement, OtherGroupLengthsHaveFourBytes) {
    EXPECT_EQ ("\xF1\x02===== Group 0011 =====================", Description (One (0x0011, 0, "1234").attribute));
    EXPECT_EQ ("\xF1\x02===== Group 6abc =====================", Description (One (0x6ABC, 0, "1234").attribute));
    EXPECT_EQ ("UL", VR (One (0x0011, 0, "1234").attribute));
    for (const char *value : {"", "12", "12345"}) {
        One length (0x0011, 0, value);
        EXPECT_EQ (nullptr, length.attribute->description);
        EXPECT_EQ (0, length.attribute->vr);
    }
}

TEST (NemaTagComplement, DescribedGroupLengthKeepsItsDescription) {
    One length (0x0008, 0, "1234", "my own");
    EXPECT_EQ ("my own", Description (length.attribute));
}

// --- private creators ------------------------------------------------------

TEST (NemaTagComplement, CreatorsAreNamed) {
    for (uint16_t element : std::initializer_list<uint16_t> {0x0010, 0x0042, 0x00FF}) {
        One creator (0x0009, element, "ACME 1.0", "old");
        EXPECT_EQ ("Private Creator Data Element", Description (creator.attribute));
        EXPECT_EQ ("LO", VR (creator.attribute));
    }
    for (uint16_t element : std::initializer_list<uint16_t> {0x0001, 0x000F, 0x0100, 0x0FFF, 0x1000})
        EXPECT_EQ (nullptr, One (0x0009, element).attribute->description) << element;
    EXPECT_EQ (nullptr, One (0x0008, 0x0010).attribute->description);
}

TEST (NemaTagComplement, PrivateAttributesGetTheNameOfTheirCreator) {
    Test_List list;
    list.Add (0x0009, 0x0010, "LO", "ACME 1.0");
    list.Add (0x0009, 0x0011, "LO", "OTHER");
    list.Add (0x0009, 0x0100);
    Attribute *first  = list.Add (0x0009, 0x1001, "US", "12");
    Attribute *second = list.Add (0x0009, 0x11FF);
    Attribute *orphan = list.Add (0x0009, 0x1201);
    Attribute *group  = list.Add (0x000B, 0x1001);
    first->vr         = VR_US;
    DICOM_Attribute_Set_Description (nullptr, second, 0, "old");
    Complement (&list);
    EXPECT_EQ ("ACME 1.0", Description (first));
    EXPECT_EQ ("US", VR (first));
    EXPECT_EQ ("OTHER", Description (second));
    EXPECT_EQ (0, second->vr);
    EXPECT_EQ ("(none)", Description (orphan));
    EXPECT_EQ ("(none)", Description (group));
    EXPECT_EQ ("(none)", Description (DICOM_Attribute_Get (nullptr, &list.cursor, list.first, 0x0009, 0x0100, 0)));
}

// A directory with a table of one creator.
struct Private_Table {
    Temporary_Directory directory;

    explicit Private_Table (const std::string &text) {
        directory.Write ("DICOM_Private_ACME 1.0.txt", text);
        DICOM_Module_Dir_Set (directory.path.c_str ());
    }
    ~Private_Table () {
        DICOM_Module_Private_Free (nullptr);
        DICOM_Module_Dir_Set ("");
    }
};

TEST (NemaTagComplement, TableOfTheCreatorDescribesItsAttributes) {
    Private_Table table ("(0009,1001) VR=CS desc=\"Mode\"\n(0009,1002) VR=OB\n-(0009,1003) desc=\"Gone\"\n");
    Test_List     list;
    list.Add (0x0009, 0x0010, "LO", "Acme 1.0");
    list.Add (0x0009, 0x0042, "LO", "OTHER");
    Attribute *described = list.Add (0x0009, 0x1001, "UN", "12");
    Attribute *bare      = list.Add (0x0009, 0x1002);
    Attribute *removed   = list.Add (0x0009, 0x1003, "US", "12");
    Attribute *unknown   = list.Add (0x0009, 0x1004, "US", "12");
    Attribute *other     = list.Add (0x0009, 0x4201);
    bare->vr             = VR_US;
    DICOM_Attribute_Set_Description (nullptr, bare, 0, "my own");
    DICOM_Attribute_Set_Description (nullptr, unknown, 0, "my own");
    Complement (&list);
    EXPECT_EQ ("Mode", Description (described));
    EXPECT_EQ (VR_CS, described->vr);
    EXPECT_EQ ("my own", Description (bare)); // The table knows it, but has no name for it.
    EXPECT_EQ (VR_OB, bare->vr);
    EXPECT_EQ ("Gone", Description (removed));
    EXPECT_TRUE (removed->flags & DELETED);
    EXPECT_EQ ("Acme 1.0", Description (unknown));
    EXPECT_FALSE (unknown->flags & DELETED);
    EXPECT_EQ ("OTHER", Description (other));
}

// A list whose private attributes have 100 creators, and the description of the last one's.
static std::string Last_Of_Many (const std::string &creator) {
    Test_List  list;
    Attribute *attribute = nullptr;
    for (uint16_t i = 0; i < 100; i++)
        list.Add (0x0009, static_cast<uint16_t> (0x0010 + i), "LO", creator + std::to_string (i));
    for (uint16_t i = 0; i < 100; i++) attribute = list.Add (0x0009, static_cast<uint16_t> (0x1001 + 0x100 * i));
    Complement (&list);
    return Description (attribute);
}

// What is found out about the directory for one list is forgotten behind it.
TEST (NemaTagComplement, TableThatComesBetweenTwoListsIsSeen) {
    Private_Table table ("(0009,1001) desc=\"Mode\"\n");
    EXPECT_EQ ("OTHER 99", Last_Of_Many ("OTHER "));
    EXPECT_EQ ("Mode", Last_Of_Many ("ACME 1.0 "));
    table.directory.Write ("DICOM_Private_OTH.txt", std::string ("(0009,1001) desc=\"Other\"\n"));
    table.directory.Write ("DICOM_Private_ACME 1.0.txt", std::string ("(0009,1001) desc=\"Changed\"\n"));
    EXPECT_EQ ("OTHER 99", Last_Of_Many ("OTHER "));
    EXPECT_EQ ("Mode", Last_Of_Many ("ACME 1.0 "));
    EXPECT_EQ ("Other", Last_Of_Many ("OTHER 1."));
    EXPECT_EQ ("Changed", Last_Of_Many ("ACME 1.0."));
}

TEST (NemaTagComplement, NamesOfTablesArentKept) {
    Private_Table table ("(0009,1001) desc=\"Mode\"\n");
    Last_Of_Many ("OTHER ");
    Last_Of_Many ("MORE ");
    long live = Memory_Live ();
    Last_Of_Many ("EVEN ");
    EXPECT_EQ (live + 100, Memory_Live ()) << "names of creators";
}

// Creators are given blocks as they come; the table is written for the first one.
TEST (NemaTagComplement, TableServesEveryBlock) {
    Private_Table table ("(0009,1001) desc=\"Mode\"\n");
    Test_List     list;
    list.Add (0x0009, 0x0077, "LO", "ACME 1.0");
    Attribute *moved = list.Add (0x0009, 0x7701);
    Complement (&list);
    EXPECT_EQ ("Mode", Description (moved));
}

TEST (NemaTagComplement, DamagedTableIsToldAndTheCreatorNames) {
    Private_Table table ("nonsense\n");
    Test_List     list;
    list.Add (0x0009, 0x0010, "LO", "ACME 1.0");
    Attribute   *attribute = list.Add (0x0009, 0x1001);
    Log_Recorder log;
    Complement (&list);
    EXPECT_EQ ("ACME 1.0", Description (attribute));
    EXPECT_EQ (1, log.Count (LOG_WARNING, " reading Attribute file:DICOM_Private_ACME 1.0.txt line:1")) << log.All ();
}

TEST (NemaTagComplement, OrphanKeepsItsDescription) {
    One orphan (0x0009, 0x1001, "", "my own");
    EXPECT_EQ ("my own", Description (orphan.attribute));
}

TEST (NemaTagComplement, CreatorIsTheFirstWithItsTagWhereverItStands) {
    Test_List  list;
    Attribute *before = list.Add (0x0009, 0x1001);
    list.Add (0x0009, 0x0010, "LO", "FIRST");
    list.Add (0x0009, 0x0010, "LO", "SECOND");
    Attribute *behind = list.Add (0x0009, 0x1002);
    Complement (&list);
    EXPECT_EQ ("FIRST", Description (before));
    EXPECT_EQ ("FIRST", Description (behind));
}

static std::string Name_From (const std::string &value) {
    Test_List list;
    list.Add (0x0009, 0x0010, "LO", value);
    Attribute *attribute = list.Add (0x0009, 0x1001);
    DICOM_Attribute_Set_Description (nullptr, attribute, 0, "old");
    Complement (&list);
    return Description (attribute);
}

TEST (NemaTagComplement, CreatorNameIsTrimmedAndEndsAtItsFirstZeroByte) {
    EXPECT_EQ ("ACME 1.0", Name_From (" \tACME 1.0\t  "));
    EXPECT_EQ ("ACME", Name_From (std::string ("ACME \0OTHER", 11)));
    EXPECT_EQ ("100%s%n", Name_From ("100%s%n"));
    EXPECT_EQ ("A\\B", Name_From ("A\\B"));
    EXPECT_EQ ("(none)", Name_From (""));
    EXPECT_EQ ("(none)", Name_From ("    "));
    EXPECT_EQ ("(none)", Name_From (std::string ("\0ACME", 5)));
    EXPECT_EQ (std::string (64, 'x'), Name_From (std::string (64, 'x')));
    EXPECT_EQ (std::string (64, 'x'), Name_From (std::string (65, 'x')));
    EXPECT_EQ ("x", Name_From ("x" + std::string (63, ' ') + "y"));
}

// A length without bytes, defined or not, is no name.
TEST (NemaTagComplement, CreatorWithoutBytesHasNoName) {
    for (int32_t length : {10, LENGTH_UNDEFINED, INT32_MAX, INT32_MIN}) {
        Test_List  list;
        Attribute *creator   = list.Add (0x0009, 0x0010, "LO");
        Attribute *attribute = list.Add (0x0009, 0x1001);
        creator->length      = length;
        Complement (&list);
        EXPECT_EQ ("(none)", Description (attribute));
    }
}

// Items have no creators of their own here: the top list's count at every depth.
TEST (NemaTagComplement, CreatorStandsInTheTopList) {
    Test_List list;
    list.Add (0x0009, 0x0010, "LO", "TOP");
    list.Open (0x0032, 0x1064);
    list.Item ();
    Attribute *creator = list.Add (0x0009, 0x0010, "LO", "ITEM");
    Attribute *inside  = list.Add (0x0009, 0x1001);
    list.Open (0x0040, 0xA730);
    list.Item ();
    list.Add (0x000B, 0x0010, "LO", "DEEP");
    Attribute *deep   = list.Add (0x0009, 0x1002);
    Attribute *orphan = list.Add (0x000B, 0x1002);
    list.Close ();
    list.Close ();
    std::string before = Outline (list.first);
    Complement (&list);
    EXPECT_EQ ("Private Creator Data Element", Description (creator));
    EXPECT_EQ ("TOP", Description (inside));
    EXPECT_EQ ("TOP", Description (deep));
    EXPECT_EQ ("(none)", Description (orphan));
    EXPECT_EQ (before, Outline (list.first)); // Looking created nothing.
}

TEST (NemaTagComplement, PrivateAttributeAlone) {
    Test_List list;
    list.Add (0x0009, 0x0010, "LO", "ACME 1.0");
    list.Open (0x0032, 0x1064);
    list.Item ();
    Attribute  *inside    = list.Add (0x0009, 0x1001);
    std::string before    = Outline (list.first);
    Attribute   creator   = Record (0x0009, 0x0011);
    Attribute   undefined = Record (0x0009, 0x1101);
    // Wherever the cursor stands.
    EXPECT_EQ (1, DICOM_Attribute_Complement_Private (nullptr, &list.cursor, list.first, inside));
    EXPECT_EQ (1, DICOM_Attribute_Complement_Private (nullptr, &list.cursor, list.first, &creator));
    EXPECT_EQ (1, DICOM_Attribute_Complement_Private (nullptr, &list.cursor, list.first, &undefined));
    EXPECT_EQ (1, DICOM_Attribute_Complement_Private (nullptr, &list.cursor, nullptr, &undefined));
    EXPECT_EQ ("ACME 1.0", Description (inside));
    EXPECT_EQ ("Private Creator Data Element", Description (&creator));
    EXPECT_EQ ("(none)", Description (&undefined));
    EXPECT_EQ (before, Outline (list.first));
    Memory_Free (creator.description);
}

// --- private compression groups --------------------------------------------

TEST (NemaTagComplement, Group1000) {
    static const std::string title = "\xF1\x02---- ---- Group 1000: Compression Info ---- ----\x01";

    One group (0x1000, 0x0000, "1234", nullptr, PRIVATE);
    EXPECT_EQ (title, Description (group.attribute)); // In place of the banner.
    EXPECT_EQ ("LT", VR (group.attribute));
    One huffman (0x1000, 0x0010, "", nullptr, PRIVATE);
    EXPECT_EQ ("Huffman:", Description (huffman.attribute));
    EXPECT_EQ ("US", VR (huffman.attribute));
    One number (0x1000, 0x0012, "", nullptr, PRIVATE);
    EXPECT_EQ ("Nb. Huffman Values:", Description (number.attribute));
    EXPECT_EQ ("US", VR (number.attribute));
    One values (0x1000, 0x0013, "", nullptr, PRIVATE);
    EXPECT_EQ ("Huffman Values:", Description (values.attribute));
    EXPECT_EQ ("SS", VR (values.attribute));
    EXPECT_EQ ("old", Description (One (0x1000, 0x0014, "", "old", PRIVATE).attribute));
    EXPECT_EQ ("old", Description (One (0x1000, 0x0010, "", "old").attribute)); // Not private.
    EXPECT_EQ ("old", Description (One (0x1002, 0x0010, "", "old", PRIVATE).attribute));
}

TEST (NemaTagComplement, Groups7Fxx) {
    for (uint16_t group : std::initializer_list<uint16_t> {0x7F00, 0x7F42, 0x7FDF}) {
        One name (group, 0x0000, "", nullptr, PRIVATE);
        EXPECT_EQ ("Siemens Compression: Group Name", Description (name.attribute));
        EXPECT_EQ ("UL", VR (name.attribute));
        One data (group, 0x0010, "", nullptr, PRIVATE); // Also of an odd group, where it would be a creator.
        EXPECT_EQ ("Siemens Compression: Data", Description (data.attribute));
        EXPECT_EQ ("OB", VR (data.attribute));
        One next (group, 0x0011, "", nullptr, PRIVATE);
        EXPECT_EQ ("Siemens Compression: Next Group", Description (next.attribute));
        EXPECT_EQ ("OW", VR (next.attribute));
        EXPECT_EQ ("old", Description (One (group, 0x0200, "", "old", PRIVATE).attribute));
    }
    for (uint16_t group : std::initializer_list<uint16_t> {0x7EFE, 0x7FE2})
        EXPECT_EQ ("old", Description (One (group, 0x0010, "", "old", PRIVATE).attribute));
    EXPECT_EQ ("old", Description (One (0x7F00, 0x0010, "", "old").attribute)); // Not private.
}

TEST (NemaTagComplement, CompressionGroupsAreTraced) {
    Log_Recorder log (5);
    Attribute    attribute = Record (0x1000, 0x0099);
    EXPECT_EQ (1, SPI_Complement_1000 (nullptr, &attribute));
    attribute.group = 0x7F01;
    EXPECT_EQ (1, SPI_Complement_7Fxx (nullptr, &attribute));
    EXPECT_TRUE (log.Has (LOG_TRACE5, "in SPI_Complement_1000(1000,0099)"));
    EXPECT_TRUE (log.Has (LOG_TRACE5, "in SPI_Complement_7Fxx(7f01,0099)"));
    EXPECT_EQ (2u, log.lines.size ());
}

// --- pixel data and structure ----------------------------------------------

TEST (NemaTagComplement, PixelDataIsOb) {
    One pixels (0x7FE0, 0x0010, "1234", "old");
    EXPECT_EQ ("Pixel Data", Description (pixels.attribute));
    EXPECT_EQ ("OB", VR (pixels.attribute));

    Test_List  list;
    Attribute *words = list.Add (0x7FE0, 0x0010, "OW", "1234");
    words->vr        = VR_OW;
    Complement (&list);
    EXPECT_EQ ("OB", VR (words));
    EXPECT_EQ (VR_OW, words->vr_file);
    EXPECT_EQ (nullptr, One (0x7FE0, 0x0008).attribute->description);
    EXPECT_EQ (nullptr, One (0x7FDE, 0x0010).attribute->description);
}

TEST (NemaTagComplement, ItemsAndDelimitersAreNamed) {
    static const struct {
        uint16_t    element;
        const char *text;
    } tags[] = {{0xE000, "\x01"
                         "Item"},
                {0xE00D, "\x01"
                         "Item Delimitation Item"},
                {0xE0DD, "\x01"
                         "Sequence Delimitation Item"}};
    for (auto &tag : tags) {
        Test_List  list;
        Attribute *attribute = list.Add (0xFFFE, tag.element);
        attribute->vr        = VR_ITEM;
        DICOM_Attribute_Set_Description (nullptr, attribute, 0, "old");
        Complement (&list);
        EXPECT_EQ (tag.text, Description (attribute));
        EXPECT_EQ (VR_ITEM, attribute->vr);
        EXPECT_EQ (nullptr, One (0xFFFC, tag.element).attribute->description);
    }
    EXPECT_EQ ("old", Description (One (0xFFFE, 0xE001, "", "old").attribute));
}

// --- items -----------------------------------------------------------------

TEST (NemaTagComplement, ItemsUpToTheFirstEmptyOneAreCompleted) {
    Test_List list;
    list.Open (0x0032, 0x1064);
    list.Item ();
    Attribute *first = list.Add (0x7FE0, 0x0010);
    list.Item ();
    list.Item ();
    Attribute *third = list.Add (0x7FE0, 0x0010);
    list.Close ();
    ASSERT_EQ ("(0032,1064)[(7FE0,0010)][][(7FE0,0010)]", Outline (list.first));
    Complement (&list);
    EXPECT_EQ ("Pixel Data", Description (first));
    EXPECT_EQ ("(none)", Description (third));
    EXPECT_EQ ("(0032,1064)[(7FE0,0010)][][(7FE0,0010)]", Outline (list.first));
}

TEST (NemaTagComplement, DeepestItem) {
    Test_List list;
    for (int depth = 0; depth < SEQUENCE_DEPTHS - 1; depth++) {
        list.Open (0x0040, 0xA730);
        list.Item ();
    }
    Attribute *deepest = list.Add (0x0010, 0x0010);
    Complement (&list);
    EXPECT_EQ ("PN", VR (deepest));
    EXPECT_EQ (0, list.cursor.depth);
}

TEST (NemaTagComplement, SecondPassChangesNothing) {
    Test_List list;
    list.Add (0x0008, 0x0000, "UL", "1234");
    list.Add (0x0009, 0x0010, "LO", "ACME 1.0");
    list.Add (0x0009, 0x1001);
    list.Add (0x7FE0, 0x0010);
    auto text = [&] {
        std::string all;
        for (Attribute *record = list.first; record; record = record->next)
            all += Description (record) + VR (record) + "\n";
        return all;
    };
    Complement (&list);
    std::string once = text ();
    Complement (&list);
    EXPECT_EQ (once, text ());
}

// --- failures and costs ----------------------------------------------------

static std::string All_Descriptions (const Attribute *list) {
    std::string text;
    for (const Attribute *record = list; record; record = record->next) {
        text += Description (record) + ";";
        for (int32_t i = 0; i < record->nb_item; i++) text += "[" + All_Descriptions (record->item[i]) + "]";
    }
    return text;
}

// Without memory for the table of creators, the list is searched: the names are the same.
TEST (NemaTagComplement, EveryMemoryFailureIsToldAndOnlyThatDescriptionIsMissing) {
    Dictionary_Build (nullptr);
    std::string complete;
    int         failures = 0;
    for (long n = 0;; n++) {
        Log_Recorder log;
        Test_List    list;
        list.Add (0x0008, 0x0000, "UL", "1234");
        list.Add (0x0009, 0x0010, "LO", "ACME 1.0");
        list.Add (0x0009, 0x1001);
        list.Open (0x0032, 0x1064);
        list.Item ();
        list.Add (0x0009, 0x1002);
        list.Close ();
        list.Add (0x7FE0, 0x0010);
        list.Reset ();

        long live = Memory_Live ();
        Memory_Fail_At (n);
        EXPECT_EQ (0, DICOM_Attribute_Complement (nullptr, &list.cursor, list.first));
        int failed = Memory_Failed ();
        Memory_Fail_At (0);
        std::string descriptions = All_Descriptions (list.first);
        if (n == 0) complete = descriptions;
        if (n > 0 && !failed) break;
        failures += failed;
        EXPECT_EQ (failed, log.Count (LOG_ERROR, " of NEMA_Tag_Complement \nmemory error in "));
        EXPECT_EQ (n == 1, log.Contains ("calloc (var=creators->slots, dim=2x8)")) << log.All ();
        EXPECT_EQ (n > 1, log.Contains ("strdup (var=tag->description)")) << log.All ();
        EXPECT_EQ (n < 2, descriptions == complete) << descriptions;
        EXPECT_EQ (live + 5 - (n > 1), Memory_Live ());
    }
    EXPECT_EQ (1 + 5, failures);
}

// In every list, the table finds what the search finds.
TEST (NemaTagComplement, AnyOrderGivesTheNamesThatTheSearchGives) {
    std::mt19937 random (7);
    for (int run = 0; run < 200; run++) {
        Test_List table, search;
        for (int i = 0; i < 60; i++) {
            uint16_t group      = static_cast<uint16_t> (random () % 6 + 9),
                     block      = static_cast<uint16_t> (random () % 4 + 0x10);
            uint16_t    element = static_cast<uint16_t> (random () % 2 ? block : block << 8 | random () % 3);
            std::string value   = std::to_string (i);
            table.Add (group, element, "LO", value);
            search.Add (group, element, "LO", value);
        }
        Complement (&table);
        for (Attribute *record = search.first; record; record = record->next)
            if (record->group & 1) DICOM_Attribute_Complement_Private (nullptr, &search.cursor, search.first, record);
        ASSERT_EQ (All_Descriptions (search.first), All_Descriptions (table.first)) << run;
    }
}

// What is remembered of the creator before, and of its table, changes nothing: each attribute is as if it were completed alone.
TEST (NemaTagComplement, CreatorsWithAndWithoutTablesMayAlternate) {
    static const char *const names[] = {"ACME 1.0", "ACME 2.0", "OTHER", ""};
    Private_Table            table ("(0009,1001) VR=DS desc=\"Mode\"\n(000B,1000) VR=US\n-(000B,1002) desc=\"Gone\"\n");
    std::mt19937             random (11);
    for (int run = 0; run < 200; run++) {
        Test_List together, alone;
        for (uint16_t group : std::initializer_list<uint16_t> {0x0009, 0x000B})
            for (uint16_t block = 0x0010; block < 0x0014; block++) {
                const char *name = names[random () % 4];
                if (random () % 4 == 0) continue;
                together.Add (group, block, "LO", name);
                alone.Add (group, block, "LO", name);
            }
        for (int i = 0; i < 60; i++) {
            uint16_t group   = static_cast<uint16_t> (random () % 2 ? 0x0009 : 0x000B);
            uint16_t element = static_cast<uint16_t> ((random () % 4 + 0x10) << 8 | random () % 3);
            together.Add (group, element);
            alone.Add (group, element);
        }
        Complement (&together);
        for (Attribute *record = alone.first; record; record = record->next)
            DICOM_Attribute_Complement_Private (nullptr, &alone.cursor, alone.first, record);
        Attribute *other = together.first;
        for (Attribute *record = alone.first; record; record = record->next, other = other->next) {
            ASSERT_EQ (Description (record), Description (other)) << run;
            ASSERT_EQ (VR (record), VR (other)) << run;
            ASSERT_EQ (record->flags, other->flags) << run;
        }
    }
}

TEST (NemaTagComplement, EveryQuestionToATableIsTraced) {
    Private_Table table ("(0009,1001) desc=\"Mode\"\n");
    Log_Recorder  log (5);
    Test_List     list;
    list.Add (0x0009, 0x0010, "LO", "OTHER");
    for (uint16_t element = 0x1001; element < 0x1005; element++) list.Add (0x0009, element);
    Complement (&list);
    EXPECT_EQ (4, log.Count (LOG_TRACE5, "in DICOM_Module_Read_Private(OTHER)"));
}

// Four times as many cost about four times as much, also where every attribute has another creator, and none is in order.
TEST (NemaTagComplement, ManyPrivateAttributesCostLinearTime) {
    auto measure = [] (int count) {
        Test_List list;
        list.Add (0xFFFD, 0x0001);
        for (int i = 0; i < count; i++) {
            uint16_t group = static_cast<uint16_t> (0xFFFB - 2 * (i % 0x4000)),
                     block = static_cast<uint16_t> (0x10 + i / 0x4000);
            if (i % 2) list.Add (group, block, "LO", "ACME");
            list.Add (group, static_cast<uint16_t> (block << 8));
        }
        list.Reset ();
        auto start = std::chrono::steady_clock::now ();
        DICOM_Attribute_Complement (nullptr, &list.cursor, list.first);
        return std::chrono::duration<double> (std::chrono::steady_clock::now () - start).count ();
    };
    measure (1000);
    double few = measure (25000), many = measure (100000);
    EXPECT_LT (many, 4 * 3 * few + 0.25);
}

// In an ordered list each creator is passed once in search of those that aren't there, however often it comes.
TEST (NemaTagComplement, ManyOrphansCostLinearTime) {
    auto measure = [] (int count) {
        Test_List list;
        for (int i = 0; i < count; i++) list.Add (0x0009, 0x0010, "LO", "ACME");
        for (int i = 0; i < count; i++) list.Add (0x0009, static_cast<uint16_t> (0x1100 + i));
        list.Reset ();
        auto start = std::chrono::steady_clock::now ();
        DICOM_Attribute_Complement_Top (nullptr, &list.cursor, list.first);
        return std::chrono::duration<double> (std::chrono::steady_clock::now () - start).count ();
    };
    measure (1000);
    double few = measure (14000), many = measure (56000);
    EXPECT_LT (many, 4 * 3 * few + 0.25);
}

// --- complete records ------------------------------------------------------

static std::string State (const Attribute *record) {
    return Description (record) + "|" + VR (record) + "|" + (record->definition ? record->definition->name : "-");
}

// Whatever is called complete stays as it is, and of tags outside of the special groups that is so, known or unknown.
TEST (NemaTagComplement, CompleteRecordsAreLeftAsTheyAre) {
    static const Dictionary_Entry NAMED = {0, 0, 0xFFFF, 1, "named", {VR_ST}, {{1, 1}}};
    Dictionary_Reset (nullptr, 0);
    int complete = 0, unknown = 0;
    for (uint16_t group : std::initializer_list<uint16_t> {0x0008, 0x0009, 0x0010, 0x1000, 0x7EFE, 0x7F00, 0x7F02,
                                                           0x7FDE, 0x7FE0, 0x7FE1, 0xFFFC, 0xFFFE})
        for (uint16_t element :
             std::initializer_list<uint16_t> {0x0000, 0x0010, 0x0011, 0x0013, 0x1001, 0xE000, 0xE00D, 0xE0DD})
            for (int kind = 0; kind < 16; kind++) {
                Test_List list;
                if (group & 1) list.Add (group, 0x0010, "LO", "ACME 1.0");
                Attribute *record  = list.Add (group, element, "", "1234");
                record->definition = kind & 1 ? &NAMED : nullptr;
                record->vr         = kind & 2 ? VR_UN : 0;
                record->flags      = static_cast<uint16_t> (ORIGIN_DICOM | (kind & 4 ? PRIVATE : 0));
                if (kind & 8) DICOM_Attribute_Set_Description (nullptr, record, 0, "old");
                std::string before   = State (record);
                int         is_whole = DICOM_Attribute_Is_Complete (record);
                Complement (&list);
                EXPECT_EQ (is_whole ? before : State (record), State (record))
                    << group << "," << element << " " << kind;
                (kind & 1 ? complete : unknown) += is_whole;
            }
    EXPECT_EQ (7 * 7 * 2, complete); // Groups, elements, with and without description.
    EXPECT_EQ ((7 * 7 - 4) * 3, unknown) << "without private mark and description it is looked up at first";
}

// Ordered or not, with creators that come twice or not at all: the top list alone is completed as the whole one.
TEST (NemaTagComplement, TopListAloneFindsTheSameCreators) {
    std::mt19937 random (13);
    int          ordered = 0;
    for (int run = 0; run < 400; run++) {
        std::vector<std::pair<uint16_t, uint16_t>> tags;
        for (int i = 0; i < 40; i++) {
            uint16_t block = static_cast<uint16_t> (random () % 4 ? random () % 3 + 0x10 : random () % 2 ? 0xFF : 0x0F);
            tags.push_back ({static_cast<uint16_t> (random () % 5 + 9),
                             static_cast<uint16_t> (random () % 2 ? block : block << 8 | random () % 3)});
        }
        if (run % 2) std::sort (tags.begin (), tags.end ());
        Test_List whole, top;
        for (size_t i = 0; i < tags.size (); i++)
            for (Test_List *list : {&whole, &top}) list->Add (tags[i].first, tags[i].second, "LO", std::to_string (i));
        ordered += !top.first->unordered;
        Complement (&whole);
        top.Reset ();
        DICOM_Attribute_Complement_Top (nullptr, &top.cursor, top.first);
        ASSERT_EQ (All_Descriptions (whole.first), All_Descriptions (top.first)) << run;
    }
    EXPECT_EQ (200, ordered);
}

TEST (NemaTagComplement, TopListAloneLeavesItemsAsTheyAre) {
    Test_List list;
    list.Add (0x0009, 0x0010, "LO", "ACME 1.0");
    list.Add (0x0009, 0x1001);
    list.Open (0x0032, 0x1064);
    list.Item ();
    Attribute *inside = list.Add (0x0009, 0x1002);
    list.Close ();
    list.Add (0x7FE0, 0x0010);
    list.Reset ();
    EXPECT_EQ (0, DICOM_Attribute_Complement_Top (nullptr, &list.cursor, list.first));
    std::string text = All_Descriptions (list.first);
    EXPECT_EQ ("(none)", Description (inside));
    Complement (&list);
    EXPECT_EQ ("ACME 1.0", Description (inside));
    EXPECT_EQ ("Private Creator Data Element;ACME 1.0;(none);[(none);]Pixel Data;", text);
    EXPECT_EQ (0, list.cursor.depth);
}
