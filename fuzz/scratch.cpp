// Files are written anew for every input, so TMPDIR should lie in memory (scripts/fuzz.sh sees to that).
#include "fuzz/scratch.h"

#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "platform/system.h"
#include "util/my_error_fct.h"

void Fuzz_Fail (const char *format, const char *what) {
    fprintf (stderr, format, what);
    fputc ('\n', stderr);
    abort ();
}

// --- bytes -----------------------------------------------------------------

Fuzz_Bytes Fuzz_Take (Fuzz_Bytes *bytes, size_t count) {
    Fuzz_Bytes taken = {bytes->next, std::min (count, bytes->left)};
    bytes->next += taken.left;
    bytes->left -= taken.left;
    return taken;
}

uint8_t Fuzz_Byte (Fuzz_Bytes *bytes) {
    Fuzz_Bytes taken = Fuzz_Take (bytes, 1);
    return taken.left ? *taken.next : 0;
}

// --- files -----------------------------------------------------------------

void Fuzz_Write (const std::string &path, Fuzz_Bytes bytes) {
    FILE *file    = fopen (path.c_str (), "wb");
    bool  written = file && (!bytes.left || fwrite (bytes.next, 1, bytes.left, file) == bytes.left);
    if (!file || fclose (file) || !written) Fuzz_Fail ("can't write %s", path.c_str ());
}

// A definition that is assembled in no time; most inputs have no SOP class, and get that of other images. The private
// attributes are those of a creator that real files name.
struct Table {
    const char *name;
    const char *text;
};

static const Table TABLES[] = {
    {"DICOM_Module_OT_Image.txt", "Image\n"},
    {"DICOM_Module_CT_Image.txt", "Image\nNothing\n"},
    {"DICOM_Attributes_Image.txt", "(0008,0016) type=1\n"
                                   "(0008,1140) type=1C\n"
                                   ">(0008,1150) type=1\n"
                                   ">include Code\n"
                                   "(0010,0010) type=2\n"
                                   "=(0028,0010) type=1 \"512\"\n"
                                   "(7FE0,0010) type=1C VR=OW\n"},
    {"DICOM_Include_Code.txt", "(0008,0100) type=1\n(0008,0104) type=3 desc=\"Meaning\"\n"},
    {"DICOM_Private_GEMS_IDEN_01.txt", "(0009,1001) type=3 VR=LO desc=\"Full fidelity\"\n"
                                       "(0009,1002) type=3 VR=SQ\n"
                                       "-(0009,1004) type=3 VR=SH desc=\"Product id\"\n"},
};

struct Directory {
    std::string path;

    Directory () {
        std::random_device random;
        auto               name = "tagwright-fuzz-" + std::to_string (random ()) + std::to_string (random ());
        path                    = (std::filesystem::temp_directory_path () / name).string () + System_Separator ();
        std::filesystem::create_directories (path + "tables");
        for (const Table &table : TABLES) {
            std::string text = table.text;
            Fuzz_Write (path + "tables" + System_Separator () + table.name,
                        {reinterpret_cast<const uint8_t *> (text.data ()), text.size ()});
        }
    }
    ~Directory () {
        std::error_code ignored;
        std::filesystem::remove_all (path, ignored);
    }
};

const std::string &Fuzz_Directory () {
    static const Directory directory;
    return directory.path;
}

const std::string &Fuzz_Tables () {
    static const std::string path = Fuzz_Directory () + "tables" + System_Separator ();
    return path;
}

// --- settings and log ------------------------------------------------------

// Every text is looked at to its end, and a question is answered by no.
static int Silent_Sink (Window, int kind, const char *text) {
    static char clean[LOG_TEXT_SIZE];
    Log_Clean_Text (text, clean, sizeof clean);
    return kind != LOG_QUESTION;
}

Settings Fuzz_Settings (uint8_t choice) {
    static const uint8_t VENDORS[] = {0, MODE_GE, 0, MODE_GE_ROGAN};

    Settings settings   = {};
    settings.mode_start = static_cast<uint8_t> (VENDORS[(choice >> 5) & 3] | (choice & 0x80 ? 0 : MODE_EXPLICIT));
    if (choice & 0x10) {
        settings.kind_warning = LOG_WARNING;
        settings.kind_note    = LOG_REPORT;
    }
    Log_Sink_Set (Silent_Sink);
    Log.trace_level = (choice & 7) <= 5 ? static_cast<int8_t> (choice & 7) : 0;
    return settings;
}
