// Names are entered before their tables are read, so a definition that fails is not tried again in the same run.
#include "tables/modality.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "nema/NEMA_Read_Value.h"
#include "tables/definition_files.h"
#include "util/mutex_access.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "modality";

// --- names -----------------------------------------------------------------

struct Modality_Row {
    const char *uid;
    const char *name;
};

static const char OTHER[] = "OT_Image";

// The names are parts of file names, odd spellings and blanks included. The first match wins.
// clang-format off
static const Modality_Row modality_rows[] = {
    {"1.2.840.10008.5.1.1.1",               "SOP BASIC_FILM_SESSION"},
    {"1.2.840.10008.5.1.1.2",               "SOP BASIC_FILM_BOX"},
    {"1.2.840.10008.5.1.1.4",               "Basic_Grayscale_Image_Box"},
    {"1.2.840.10008.5.1.1.4.1",             "Basic_Color_Image_Box"},
    {"1.2.840.10008.5.1.1.15",              "Basic_Annotation_Box"},
    {"1.2.840.10008.5.1.1.22",              "VOI_LUT_Box"},
    {"1.2.840.10008.5.1.1.23",              "Presentation_LUT"},
    {"1.2.840.10008.5.1.4.1.1.1",           "CR_Image"},
    {"1.2.840.10008.5.1.4.1.1.1.1",         "XRAY_Image"},
    {"1.2.840.10008.5.1.4.1.1.1.2",         "Mammography_XRAY_Image"},
    {"1.2.840.10008.5.1.4.1.1.1.3",         "Intra_Oral_XRAY_Image"},
    {"1.2.840.10008.5.1.4.1.1.2",           "CT_Image"},
    {"1.2.840.10008.5.1.4.1.1.2.1",         "Enhanced_CT_Image"},
    {"1.2.840.10008.5.1.4.1.1.3.1",         "US_Multi-Frame_Image"},
    {"1.2.840.10008.5.1.4.1.1.4",           "MR_Image"},
    {"1.2.840.10008.5.1.4.1.1.4.1",         "Enhanced_MR_Image"},
    {"1.2.840.10008.5.1.4.1.1.4.2",         "MR_Spectroscopy_Image"},
    {"1.2.840.10008.5.1.4.1.1.6.1",         "US_Image"},
    {"1.2.840.10008.5.1.4.1.1.7",           "SC_Image"},
    {"1.2.840.10008.5.1.4.1.1.11.1",        "Grayscale_Softcopy"},
    {"1.2.840.10008.5.1.4.1.1.12.1",        "XRAY_Angiographic_Image"},
    {"1.2.840.10008.5.1.4.1.1.12.2",        "XRAY_Radiofluroscopic_Image"},
    {"1.2.840.10008.5.1.4.1.1.20",          "NM_Image"},
    {"1.2.840.10008.5.1.4.1.1.77.1.1",      "VL_Endoscopic_Image"},
    {"1.2.840.10008.5.1.4.1.1.77.1.2",      "VL_Microscopic_Image"},
    {"1.2.840.10008.5.1.4.1.1.77.1.3",      "VL_Slidecoord_Micro_Image"},
    {"1.2.840.10008.5.1.4.1.1.77.1.4",      "VL_Photographic_Image"},
    {"1.2.840.10008.5.1.4.1.1.128",         "PET_Image"},
    {"1.2.840.10008.5.1.4.1.1.481.1",       "RT_Image"},
};
// clang-format on

const char *DICOM_Modality_Name (Window window, Attribute *list) {
    SequenceCursor cursor    = {};
    Attribute     *attribute = DICOM_Attribute_Get (window, &cursor, list, 0x0008, 0x0016, 0);
    if (!attribute) return OTHER;
    char **texts = V_Str (window, attribute, 0);
    if (!texts || attribute->vm < 1) return OTHER;
    for (const Modality_Row &row : modality_rows)
        if (!strcmp (row.uid, texts[0])) return row.name;
    return OTHER;
}

// --- override --------------------------------------------------------------

static char override_path[SYSTEM_PATH_SIZE];

int DICOM_Module_Override_Set (const char *path) {
    if (!path) path = "";
    if (strlen (path) >= sizeof override_path) return 0;
    return Text_Copy (override_path, sizeof override_path, path);
}

// 0 when memory ran out.
static int Read_Override (Window window, const Settings *settings, Attribute **list) {
    if (!*override_path) return 1;
    File *file = File_Open (override_path);
    if (!file) {
        Log_Message (window, LOG_WARNING,
                     EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " reading command line override");
        Log_Message (window, LOG_WARNING,
                     "\t\t" COLOUR_BLACK " Unable to open attributes file:" COLOUR_BLUE "%s" COLOUR_BLACK,
                     override_path);
        return 1;
    }
    int done = DICOM_Module_Read_File (window, settings, file, "Command line override", list);
    File_Close (file);
    return done;
}

// --- definitions -----------------------------------------------------------

static char      *Modality_Name[MODALITY_LIMIT]; // Owned. None stands for the empty name.
static Attribute *Modality_List[MODALITY_LIMIT]; // Owned.
static int32_t    Modality_Nb;

// The index of the name, or -1.
static int32_t Modality_Find (const char *name) {
    for (int32_t i = 0; i < Modality_Nb; i++)
        if (!strcmp (Modality_Name[i] ? Modality_Name[i] : "", name)) return i;
    return -1;
}

static int Refuse_Another (Window window) {
    Log_Message (window, LOG_ERROR,
                 EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " DICOM_Module_Read Exceeding " COLOUR_BLUE "%d" COLOUR_BLACK
                                     " modalities!",
                 MODALITY_LIMIT);
    return 0;
}

// Enters a new name. 1, or 0 when memory ran out or the cache is full; the name that fills it is entered all the same.
static int Modality_Enter (Window window, const char *name) {
    if (Modality_Nb == MODALITY_LIMIT) return Refuse_Another (window);
    char *copy = nullptr;
    if (*name) {
        copy = Memory_Strdup (window, HERE ("Modality_Name[Modality_Nb]", 0, 0), name);
        if (!copy) return 0;
    }
    Modality_Name[Modality_Nb++] = copy;
    return Modality_Nb < MODALITY_LIMIT ? 1 : Refuse_Another (window);
}

static Attribute *Module_Read (Window window, const Settings *settings, const char *name) {
    Log_Message (window, LOG_TRACE4, "in Quillmark_Module_Read()");
    if (!name) {
        Log_Message (window, LOG_WARNING,
                     EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " DICOM_Module_Read no modality name!");
        return nullptr;
    }
    int32_t found = Modality_Find (name);
    if (found >= 0) return Modality_List[found];
    if (!Modality_Enter (window, name)) return nullptr;

    Attribute **list     = &Modality_List[Modality_Nb - 1];
    int         override = Read_Override (window, settings, list);
    int         built    = DICOM_Module_Assemble (window, settings, name, list);
    return override && built ? *list : nullptr;
}

Attribute *DICOM_Module_Read (Window window, const Settings *settings, const char *name) {
    Mutex_Access_Start ();
    Attribute *list = Module_Read (window, settings, name);
    Mutex_Access_Stop ();
    return list;
}

void DICOM_Module_Free (Window window) {
    Mutex_Access_Start ();
    for (int32_t i = 0; i < Modality_Nb; i++) {
        SequenceCursor cursor = {};
        Memory_Free (Modality_Name[i]);
        Modality_Name[i] = nullptr;
        DICOM_Attribute_Delete (window, &cursor, &Modality_List[i], TAG_ANY, TAG_ANY);
    }
    Modality_Nb = 0;
    Mutex_Access_Stop ();
}
