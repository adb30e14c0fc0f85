// A table of icons that is only added to: an entry keeps its place and its answer for the life of the program, a file that
// could not be read included. What would surprise: reading a file may open a message box, which may not happen inside a
// drawing session, so a session is ended before the file is opened and begun again afterwards.
#include "tools/icon.h"

#include <stdio.h>
#include <string.h>

#include "util/error_text.h"
#include "util/memory.h"
#include "util/my_error_fct.h"
#include "util/text.h"
#include "util/utility_IGB.h"

static const char *const MODULE = "icon";

static const int ICON_PIXEL_BYTES = 4;

static Icon icons[ICON_LIMIT];

// --- folder ----------------------------------------------------------------

static const char DEFAULT_FOLDER[] = "c:\\Program Files\\Kestrelbay\\Icons\\";

static char install_path[SYSTEM_PATH_SIZE];
static char folder[SYSTEM_PATH_SIZE + 16]; // Empty until it is asked for.

void Icon_Install_Path_Set (const char *path) {
    if (!Text_Copy (install_path, sizeof install_path, path)) install_path[0] = 0;
}

static const char *Folder (void) {
    if (folder[0]) return folder;
    if (install_path[0]) snprintf (folder, sizeof folder, "%sIcons%c", install_path, System_Separator ());
    else Text_Copy (folder, sizeof folder, DEFAULT_FOLDER);
    return folder;
}

// The caller owns it; none without memory. A name is of any length, and only the system knows its limit.
static char *Full_Name (const char *name) {
    size_t size = strlen (Folder ()) + strlen (name) + 1;
    char  *full = static_cast<char *> (Memory_Try (size));
    if (full) snprintf (full, size, "%s%s", Folder (), name);
    return full;
}

// --- pixels ----------------------------------------------------------------

static size_t Pixel_Total (const Icon *icon) { return static_cast<size_t> (icon->width) * icon->height; }

static void Pixels_Free (Icon *icon) {
    Memory_Free (icon->pixels);
    Memory_Free (icon->pixels_rgba);
    icon->pixels      = nullptr;
    icon->pixels_rgba = nullptr;
}

// Room for both copies. On failure the entry has none of them.
static int Pixels_New (Icon *icon, uint16_t width, uint16_t height) {
    icon->width       = width;
    icon->height      = height;
    size_t bytes      = Pixel_Total (icon) * ICON_PIXEL_BYTES;
    icon->pixels      = static_cast<uint8_t *> (Memory_Try (bytes));
    icon->pixels_rgba = static_cast<uint8_t *> (Memory_Try (bytes));
    if (icon->pixels && icon->pixels_rgba) return 1;
    Pixels_Free (icon);
    return 0;
}

// The second copy has the first and the third byte exchanged.
static void Make_Second_Copy (const Icon *icon) {
    const uint8_t *from = icon->pixels;
    uint8_t       *to   = icon->pixels_rgba;
    for (size_t i = Pixel_Total (icon); i > 0; i--, from += ICON_PIXEL_BYTES, to += ICON_PIXEL_BYTES) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
        to[3] = from[3];
    }
}

// --- IGB -------------------------------------------------------------------

static int missing_reported;

// Writing a line to a log file may change the system's last error.
static void Report_Reason (unsigned error) {
    System_Last_Error_Set (error);
    Log_Message (nullptr, LOG_ERRLOG, "%s", Error_Text (0));
}

static int Report_Missing (const char *full) {
    unsigned error = System_Last_Error ();
    if (missing_reported) return 0;
    missing_reported = 1;
    Log_Message (nullptr, LOG_ERRLOG, "Icon_Read_RGB() File:%s Line:%d ", MODULE, __LINE__);
    Log_Message (nullptr, LOG_ERRLOG, "Unable to open (%s)", full);
    Report_Reason (error);
    return 0;
}

static int Memory_Failure (const char *function, const char *name) {
    Log_Message (nullptr, LOG_ERRLOG, "%s(%s) failed in new", function, name);
    return 0;
}

// The file has transparency where the icon has opacity.
static void Take_Image (const Icon *icon, const Image *image) {
    const uint8_t *from = image->pixels;
    uint8_t       *to   = icon->pixels;
    for (size_t i = Pixel_Total (icon); i > 0; i--, from += ICON_PIXEL_BYTES, to += ICON_PIXEL_BYTES) {
        memcpy (to, from, 3);
        to[3] = static_cast<uint8_t> (255 - from[3]);
    }
    Make_Second_Copy (icon);
}

static int Take_RGB (Icon *icon, const char *name, const char *full, const Image *image) {
    if (image->pixel_bytes != ICON_PIXEL_BYTES) {
        Log_Message (nullptr, LOG_ERRLOG, "Icon_Read_RGB() File:%s Line:%d", MODULE, __LINE__);
        Log_Message (nullptr, LOG_ERRLOG, "%s should be RGBA", full);
        return 0;
    }
    if (!Pixels_New (icon, image->width, image->height)) return Memory_Failure ("Icon_Read_RGB", name);
    Take_Image (icon, image);
    return 1;
}

static int Load_RGB (Icon *icon, const char *name, const char *full) {
    Image image;
    if (!IGB_Read_Image (full, &image)) return Report_Missing (full);
    int taken = Take_RGB (icon, name, full, &image);
    Image_Free (&image);
    return taken;
}

int Icon_Read_RGB (Icon *icon, const char *name) {
    char *full = Full_Name (name);
    if (!full) return Memory_Failure ("Icon_Read_RGB", name);
    int loaded = Load_RGB (icon, name, full);
    Memory_Free (full);
    return loaded;
}

// --- TARGA -----------------------------------------------------------------

static int Report_TGA (int line, const char *format, const char *full) {
    Log_Message (nullptr, LOG_ERRLOG, "Icon_Read_TGA() File:%s Line:%d", MODULE, line);
    Log_Message (nullptr, LOG_ERRLOG, format, full);
    return 0;
}

static int Report_Short (int line, const char *full) {
    unsigned error = System_Last_Error ();
    Report_TGA (line, "while reading (%s)", full);
    Report_Reason (error);
    return 0;
}

// Blue without red and green is black, the more transparent the bluer it is.
static void Take_Blue_Key (const Icon *icon) {
    uint8_t *end = icon->pixels + Pixel_Total (icon) * ICON_PIXEL_BYTES;
    for (uint8_t *pixel = icon->pixels; pixel < end; pixel += ICON_PIXEL_BYTES) {
        if (pixel[1] || pixel[2]) continue;
        pixel[3] = static_cast<uint8_t> (255 - pixel[0]);
        pixel[0] = 0;
    }
    Make_Second_Copy (icon);
}

static int Load_TGA (Icon *icon, const char *name, const char *full, File *file, const TGA_Header *header) {
    if (header->depth != 24) return Report_TGA (__LINE__, "%s should be RGB", full);
    if (!TGA_Is_Complete (file, header)) return Report_Short (__LINE__, full);
    if (!Pixels_New (icon, header->width, header->height)) return Memory_Failure ("Icon_Read_TGA", name);
    if (!TGA_Read_Pixels (file, header, icon->pixels)) {
        Report_Short (__LINE__, full);
        Pixels_Free (icon);
        return 0;
    }
    Take_Blue_Key (icon);
    return 1;
}

int Icon_Read_TGA (Icon *icon, const char *name) {
    TGA_Header header;
    char      *full = Full_Name (name);
    if (!full) return Memory_Failure ("Icon_Read_TGA", name);
    File *file   = TGA_Open (full, &header);
    int   loaded = file ? Load_TGA (icon, name, full, file, &header) : Report_TGA (__LINE__, "fopen(%s) failed", full);
    File_Close (file);
    Memory_Free (full);
    return loaded;
}

// --- table -----------------------------------------------------------------

// The entry of this name, or the first unused one, or none.
static Icon *Find (const char *name) {
    for (Icon &icon : icons)
        if (!icon.name || !strcmp (icon.name, name)) return &icon;
    return nullptr;
}

// Without memory for its name the entry stays unused.
static void Load (Icon *icon, const char *name) {
    int    is_targa = strstr (name, ".tga") != nullptr;
    size_t size     = strlen (name) + 1;
    icon->name      = static_cast<char *> (Memory_Try (size));
    if (!icon->name) {
        Memory_Failure (is_targa ? "Icon_Read_TGA" : "Icon_Read_RGB", name);
        return;
    }
    memcpy (icon->name, name, size);
    if (is_targa) Icon_Read_TGA (icon, name);
    else Icon_Read_RGB (icon, name);
}

const Icon *Icon_Read (const Widget *widget, const char *name) {
    Icon *icon = name ? Find (name) : nullptr;
    if (!icon) return nullptr;
    if (!icon->name) {
        int paused = widget && Device::Is_Open ();
        if (paused) Device::End ();
        Load (icon, name);
        if (paused && Device::Begin (widget->window, widget->region, "Icon_Read"))
            Device::ClipTo (widget->x, widget->y, widget->w, widget->h);
    }
    return icon->pixels ? icon : nullptr;
}

void Icon_Free_All (void) {
    for (Icon &icon : icons) {
        Memory_Free (icon.name);
        Pixels_Free (&icon);
        icon = Icon {};
    }
    folder[0]        = 0;
    missing_reported = 0;
}

// --- drawing ---------------------------------------------------------------

// A widget reaches one pixel further than its size says.
static int Meets (const Widget *widget, int x, int y, const Icon *icon) {
    if (widget->w < 1 || widget->h < 1) return 0;
    int64_t left = x, bottom = y;
    return left <= widget->x + widget->w && left + icon->width > widget->x && bottom <= widget->y + widget->h &&
           bottom + icon->height > widget->y;
}

void Icon_Draw_Image (const Widget *widget, int x, int y, const char *label, const char *name) {
    Log_Message (widget->window, LOG_TRACE5, "in Icon_Draw_Image(%s,%s)", label, name);
    const Icon *icon = Icon_Read (widget, name);
    if (!icon || !Meets (widget, x, y, icon)) return;
    Device::Draw_Image (x, y, icon->pixels, 0, 0, icon->width, icon->height, icon->width,
                        Widget_Colour (widget->colour));
}
