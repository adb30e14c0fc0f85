// Image files. The first byte chooses who reads the rest, and by which name.
#include <filesystem>

#include "fuzz/fuzz.h"
#include "fuzz/scratch.h"
#include "platform/system.h"
#include "tools/icon.h"
#include "util/utility_IGB.h"

enum Reader { READ_HEADER, READ_IGB, READ_TARGA, READ_ICON_IGB, READ_ICON_TARGA, READERS };

// The directory that has icons, with a separator.
static const std::string &Icon_Folder () {
    static std::string folder;
    if (folder.empty ()) {
        folder = Fuzz_Directory () + "Icons";
        std::filesystem::create_directories (folder);
        folder += System_Separator ();
    }
    return folder;
}

static void Read_Image (int (*read) (const char *path, Image *image), const std::string &path) {
    Image image = {};
    read (path.c_str (), &image);
    Image_Free (&image);
}

static void Read (Reader reader, const std::string &path, const char *name) {
    Image image = {};
    switch (reader) {
    case READ_HEADER: IGB_Read_Header (path.c_str (), &image); break;
    case READ_IGB: Read_Image (IGB_Read_Image, path); break;
    case READ_TARGA: Read_Image (TGA_Read_Image, path); break;
    default: Icon_Read (nullptr, name); break;
    }
}

void Fuzz_Images (const uint8_t *bytes, size_t size) {
    Fuzz_Bytes  input  = {bytes, size};
    uint8_t     choice = Fuzz_Byte (&input);
    Reader      reader = static_cast<Reader> (choice % READERS);
    const char *name   = reader == READ_TARGA || reader == READ_ICON_TARGA ? "image.tga" : "image.rgb";
    Fuzz_Settings (5);
    Fuzz_Write (Icon_Folder () + name, input);
    Icon_Install_Path_Set (Fuzz_Directory ().c_str ());
    Read (reader, Icon_Folder () + name, name);
    Icon_Free_All ();
    Icon_Install_Path_Set ("");
}
