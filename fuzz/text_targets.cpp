// The files that users write: definition tables and the configuration; and the words of the command line.
#include <string.h>

#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/configuration.h"
#include "app/start_up.h"
#include "attribute/NEMA_Tag_Attribute.h"
#include "fuzz/fuzz.h"
#include "fuzz/scratch.h"
#include "tables/definition_files.h"
#include "tables/modality.h"
#include "util/my_error_fct.h"

// --- definition tables -----------------------------------------------------

// In the order in which they stand in an input. They can name one another.
static const char *const TABLES[] = {
    "DICOM_Attributes_A.txt", "DICOM_Include_B.txt", "DICOM_Include_C.txt",
    "DICOM_Private_FUZZ.txt", "DICOM_Module_M.txt",  "override.txt",
};

static const char DEFAULT_MODULE[] = "A\n";

// The modality always has a table, so that the bytes need not say so.
static void Write_Tables (const std::string &directory, Fuzz_Bytes input) {
    for (const char *name : TABLES) {
        const void *feed  = input.left ? memchr (input.next, '\f', input.left) : nullptr;
        size_t      size  = feed ? static_cast<size_t> (static_cast<const uint8_t *> (feed) - input.next) : input.left;
        Fuzz_Bytes  table = Fuzz_Take (&input, size);
        Fuzz_Byte (&input);
        if (!strcmp (name, "DICOM_Module_M.txt") && !table.left)
            table = {reinterpret_cast<const uint8_t *> (DEFAULT_MODULE), strlen (DEFAULT_MODULE)};
        Fuzz_Write (directory + name, table);
    }
}

// A few lines can ask for as many attributes as one list may have (DEFINITION_RECORDS), since includes multiply. That
// costs seconds in this build and would be found again and again; tests of the tables hold it. So an input says "include"
// only so often.
static const int INCLUDES = 8;

static std::string Cut_Includes (Fuzz_Bytes input) {
    static const char WORD[] = "include";

    std::string text (reinterpret_cast<const char *> (input.next), input.left);
    int         count = 0;
    for (size_t at = text.find (WORD); at != std::string::npos; at = text.find (WORD, at + 1))
        if (++count > INCLUDES) text[at] = ';';
    return text;
}

static void Ask_Private (const Settings *settings) {
    static const char *const CREATORS[] = {"FUZZ", "fuzz 1.0", "FU"};

    for (const char *creator : CREATORS) {
        Attribute attribute = {};
        attribute.group     = 0x0009;
        attribute.element   = 0x1001;
        DICOM_Module_Read_Private (nullptr, settings, creator, &attribute);
        Memory_Free (attribute.description);
    }
}

void Fuzz_Definition (const uint8_t *bytes, size_t size) {
    static const std::string directory = Fuzz_Directory ();

    Fuzz_Bytes  input    = {bytes, size};
    Settings    settings = Fuzz_Settings (Fuzz_Byte (&input));
    std::string tables   = Cut_Includes (input);
    Write_Tables (directory, {reinterpret_cast<const uint8_t *> (tables.data ()), tables.size ()});
    DICOM_Module_Dir_Set (directory.c_str ());
    DICOM_Module_Override_Set ((directory + "override.txt").c_str ());
    DICOM_Module_Read (nullptr, &settings, "M");
    DICOM_Module_Include_Get (nullptr, &settings, "B", "fuzz", 1);
    Ask_Private (&settings);
    DICOM_Module_Include_Free (nullptr);
    DICOM_Module_Free (nullptr);
    DICOM_Module_Private_Free (nullptr);
    DICOM_Module_Override_Set ("");
    DICOM_Module_Dir_Set ("");
}

// --- configuration ---------------------------------------------------------

static void Match_Skipped () {
    static const uint16_t TAGS[][2] = {{0x0010, 0x0010}, {0xFFFE, 0xE00D}, {0x7FE0, 0xABCD}};

    for (int32_t i = 0; i < Program.settings.Nb_Skip; i++)
        for (const auto &tag : TAGS)
            DICOM_Attribute_Tag_Match (Program.settings.Skip_Group[i], Program.settings.Skip_Element[i], tag[0],
                                       tag[1]);
}

void Fuzz_Configuration (const uint8_t *bytes, size_t size) {
    static const char NAME[] = "fuzz.ini";

    Fuzz_Bytes   input = {bytes, size};
    Log_Settings log   = Log;
    Program.settings   = Fuzz_Settings (Fuzz_Byte (&input));
    Fuzz_Write (Fuzz_Directory () + NAME, input);
    Configuration_Read (Fuzz_Directory ().c_str (), NAME);
    Match_Skipped ();
    Configuration_Read (Fuzz_Directory ().c_str (), NAME); // A second file, as the user's behind the installed one.
    Configuration_Free ();
    DICOM_Module_Override_Set ("");
    DICOM_Module_Dir_Set ("");
    Program.settings = {};
    Log              = log;
}

// --- command line ----------------------------------------------------------

static void Read_Command_Line (const Program_Arguments *arguments) {
    Command_Line line;
    Command_Line_Read (arguments, &line);
    Command_Line_Free (&line);
}

void Fuzz_Command_Line (const uint8_t *bytes, size_t size) {
    std::string               text (reinterpret_cast<const char *> (bytes), size);
    std::vector<const char *> words;
    for (size_t start = 0; start < text.size (); start += strlen (&text[start]) + 1) words.push_back (&text[start]);

    Fuzz_Settings (0);
    Program_Arguments one  = {text.c_str (), 0, nullptr};
    Program_Arguments many = {nullptr, static_cast<int> (words.size ()), words.data ()};
    Read_Command_Line (&one);
    Read_Command_Line (&many);
}
