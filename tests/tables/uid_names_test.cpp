#include "tables/uid_names.h"

#include <string>

#include <gtest/gtest.h>

TEST (UidNames, OwnNamesAreSpeltAsTheProgramHasThem) {
    EXPECT_STREQ ("UID Kestrelbay", UID_Name ("1.2.999.0.1.4242424.2.707"));
    EXPECT_STREQ ("UID Implicit VR, Little Endian", UID_Name ("1.2.840.10008.1.2"));
    EXPECT_STREQ ("UID Exlicit VR, Little Endian", UID_Name ("1.2.840.10008.1.2.1"));
    EXPECT_STREQ ("UID Exlicit VR, Big Endian", UID_Name ("1.2.840.10008.1.2.2"));
    EXPECT_STREQ ("UID Implicit VR, Little Endian (GE Private with size Bug)", UID_Name ("1.2.840.113619.5.2"));
    EXPECT_STREQ ("UID Exlicit VR, Little Endian, Compression: RLE", UID_Name ("1.2.840.10008.1.2.5"));
    EXPECT_STREQ ("UID Exlicit VR, Little Endian, MIME encapsulation", UID_Name ("1.2.840.10008.1.2.6.1"));
    EXPECT_STREQ ("SOP XRAY_RADIOFLUROSCOPIC_IMAGE", UID_Name ("1.2.840.10008.5.1.4.1.1.12.2"));
    EXPECT_STREQ ("SOP RT_STRUCTURE_SET", UID_Name ("1.2.840.10008.5.1.4.1.1.481.3"));
}

TEST (UidNames, PairsOfTransferSyntaxesShareAName) {
    static const char *const pairs[][3] = {
        {"1.2.840.10008.1.2.4.51", "1.2.840.10008.1.2.4.52", "JPEG extended"},
        {"1.2.840.10008.1.2.4.53", "1.2.840.10008.1.2.4.54", "JPEG spect. select. NH"},
        {"1.2.840.10008.1.2.4.55", "1.2.840.10008.1.2.4.56", "JPEG full progression NH"},
        {"1.2.840.10008.1.2.4.57", "1.2.840.10008.1.2.4.58", "JPEG lossless NH"},
        {"1.2.840.10008.1.2.4.59", "1.2.840.10008.1.2.4.60", "JPEG extended NH"},
        {"1.2.840.10008.1.2.4.61", "1.2.840.10008.1.2.4.62", "JPEG spect. select. H"},
        {"1.2.840.10008.1.2.4.63", "1.2.840.10008.1.2.4.64", "JPEG full progression H"},
        {"1.2.840.10008.1.2.4.65", "1.2.840.10008.1.2.4.66", "JPEG lossless H"},
        {"1.2.840.10008.1.2.4.70", "1.2.840.10008.1.2.4.70", "JPEG lossless NH, first order prediction"}};
    for (const auto &pair : pairs) {
        std::string name = std::string ("UID Exlicit VR, Little Endian, Compression: ") + pair[2];
        EXPECT_STREQ (name.c_str (), UID_Name (pair[0]));
        EXPECT_STREQ (name.c_str (), UID_Name (pair[1]));
    }
}

TEST (UidNames, RegistryNameServesWhereThereIsNoOwnOne) {
    EXPECT_STREQ ("Verification SOP Class", UID_Name ("1.2.840.10008.1.1"));
    EXPECT_STREQ ("Media Storage Directory Storage", UID_Name ("1.2.840.10008.1.3.10"));
    EXPECT_STREQ ("Storage Commitment Push Model SOP Class", UID_Name ("1.2.840.10008.1.20.1"));
    EXPECT_STREQ ("RT Plan Storage", UID_Name ("1.2.840.10008.5.1.4.1.1.481.5"));
    EXPECT_STREQ ("Patient Root Query/Retrieve Information Model - FIND", UID_Name ("1.2.840.10008.5.1.4.1.2.1.1"));
    EXPECT_STREQ ("Modality Worklist Information Model - FIND", UID_Name ("1.2.840.10008.5.1.4.31"));
}

TEST (UidNames, OwnNameWinsOverTheRegistry) {
    EXPECT_STREQ ("SOP BASIC_FILM_SESSION", UID_Name ("1.2.840.10008.5.1.1.1"));
    EXPECT_STREQ ("SOP CR_IMAGE", UID_Name ("1.2.840.10008.5.1.4.1.1.1"));
    EXPECT_STREQ ("SOP CT_IMAGE", UID_Name ("1.2.840.10008.5.1.4.1.1.2"));
    EXPECT_STREQ ("SOP INTRA_ORAL_XRAY_IMAGE_PROC", UID_Name ("1.2.840.10008.5.1.4.1.1.1.3.1"));
}

TEST (UidNames, ThreeRetiredClassesSaySo) {
    EXPECT_STREQ ("Ultrasound Multi-frame Image Storage (Retired)", UID_Name ("1.2.840.10008.5.1.4.1.1.3"));
    EXPECT_STREQ ("Nuclear Medicine Image Storage (Retired)", UID_Name ("1.2.840.10008.5.1.4.1.1.5"));
    EXPECT_STREQ ("Ultrasound Image Storage (Retired)", UID_Name ("1.2.840.10008.5.1.4.1.1.6"));
    EXPECT_STREQ ("SOP STANDALONE_PET_CURVE", UID_Name ("1.2.840.10008.5.1.4.1.1.129"));
}

// Every UID that has a name.
// clang-format off
static const char *const NAMES[][2] = {
    {"1.2.999.0.1.4242424.2.707",      "UID Kestrelbay"},
    {"1.2.840.10008.1.1",              "Verification SOP Class"},
    {"1.2.840.10008.1.2",              "UID Implicit VR, Little Endian"},
    {"1.2.840.10008.1.2.1",            "UID Exlicit VR, Little Endian"},
    {"1.2.840.10008.1.2.2",            "UID Exlicit VR, Big Endian"},
    {"1.2.840.113619.5.2",             "UID Implicit VR, Little Endian (GE Private with size Bug)"},
    {"1.2.840.10008.1.2.4.50",         "UID Exlicit VR, Little Endian, Compression: JPEG baseline"},
    {"1.2.840.10008.1.2.4.51",         "UID Exlicit VR, Little Endian, Compression: JPEG extended"},
    {"1.2.840.10008.1.2.4.52",         "UID Exlicit VR, Little Endian, Compression: JPEG extended"},
    {"1.2.840.10008.1.2.4.53",         "UID Exlicit VR, Little Endian, Compression: JPEG spect. select. NH"},
    {"1.2.840.10008.1.2.4.54",         "UID Exlicit VR, Little Endian, Compression: JPEG spect. select. NH"},
    {"1.2.840.10008.1.2.4.55",         "UID Exlicit VR, Little Endian, Compression: JPEG full progression NH"},
    {"1.2.840.10008.1.2.4.56",         "UID Exlicit VR, Little Endian, Compression: JPEG full progression NH"},
    {"1.2.840.10008.1.2.4.57",         "UID Exlicit VR, Little Endian, Compression: JPEG lossless NH"},
    {"1.2.840.10008.1.2.4.58",         "UID Exlicit VR, Little Endian, Compression: JPEG lossless NH"},
    {"1.2.840.10008.1.2.4.59",         "UID Exlicit VR, Little Endian, Compression: JPEG extended NH"},
    {"1.2.840.10008.1.2.4.60",         "UID Exlicit VR, Little Endian, Compression: JPEG extended NH"},
    {"1.2.840.10008.1.2.4.61",         "UID Exlicit VR, Little Endian, Compression: JPEG spect. select. H"},
    {"1.2.840.10008.1.2.4.62",         "UID Exlicit VR, Little Endian, Compression: JPEG spect. select. H"},
    {"1.2.840.10008.1.2.4.63",         "UID Exlicit VR, Little Endian, Compression: JPEG full progression H"},
    {"1.2.840.10008.1.2.4.64",         "UID Exlicit VR, Little Endian, Compression: JPEG full progression H"},
    {"1.2.840.10008.1.2.4.65",         "UID Exlicit VR, Little Endian, Compression: JPEG lossless H"},
    {"1.2.840.10008.1.2.4.66",         "UID Exlicit VR, Little Endian, Compression: JPEG lossless H"},
    {"1.2.840.10008.1.2.4.70",         "UID Exlicit VR, Little Endian, Compression: JPEG lossless NH, first order prediction"},
    {"1.2.840.10008.1.2.4.80",         "UID Exlicit VR, Little Endian, Compression: JPEG-LS Lossless"},
    {"1.2.840.10008.1.2.4.81",         "UID Exlicit VR, Little Endian, Compression: JPEG-LS Lossy (Near Lossless)"},
    {"1.2.840.10008.1.2.4.90",         "UID Exlicit VR, Little Endian, Compression: JPEG-2000 (reversible)"},
    {"1.2.840.10008.1.2.4.91",         "UID Exlicit VR, Little Endian, Compression: JPEG-2000 (irreversible)"},
    {"1.2.840.10008.1.2.4.92",         "UID Exlicit VR, Little Endian, Compression: JPEG-2000 (Multi-component lossless)"},
    {"1.2.840.10008.1.2.4.93",         "UID Exlicit VR, Little Endian, Compression: JPEG-2000 (Multi-component)"},
    {"1.2.840.10008.1.2.4.94",         "UID Exlicit VR, Little Endian, Compression: JPIP Referenced"},
    {"1.2.840.10008.1.2.4.95",         "UID Exlicit VR, Little Endian, Compression: JPIP Referenced Deflate"},
    {"1.2.840.10008.1.2.5",            "UID Exlicit VR, Little Endian, Compression: RLE"},
    {"1.2.840.10008.1.2.6.1",          "UID Exlicit VR, Little Endian, MIME encapsulation"},
    {"1.2.840.10008.5.1.1.1",          "SOP BASIC_FILM_SESSION"},
    {"1.2.840.10008.5.1.1.2",          "SOP BASIC_FILM_BOX"},
    {"1.2.840.10008.5.1.1.4",          "SOP BASIC_GRAYSCALE_IMAGE_BOX"},
    {"1.2.840.10008.5.1.1.4.1",        "SOP BASIC_COLOR_IMAGE_BOX"},
    {"1.2.840.10008.5.1.1.15",         "SOP BASIC_ANNOTATION_BOX"},
    {"1.2.840.10008.5.1.1.22",         "SOP VOI_LUT_BOX"},
    {"1.2.840.10008.5.1.1.23",         "SOP PRESENTATION_LUT"},
    {"1.2.840.10008.5.1.4.1.1.1",      "SOP CR_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.1.1",    "SOP XRAY_IMAGE_PRES"},
    {"1.2.840.10008.5.1.4.1.1.1.1.1",  "SOP XRAY_IMAGE_PROC"},
    {"1.2.840.10008.5.1.4.1.1.1.2",    "SOP MAMMOGRAPHY_XRAY_IMAGE_PRES"},
    {"1.2.840.10008.5.1.4.1.1.1.2.1",  "SOP MAMMOGRAPHY_XRAY_IMAGE_PROC"},
    {"1.2.840.10008.5.1.4.1.1.1.3",    "SOP INTRA_ORAL_XRAY_IMAGE_PRES"},
    {"1.2.840.10008.5.1.4.1.1.1.3.1",  "SOP INTRA_ORAL_XRAY_IMAGE_PROC"},
    {"1.2.840.10008.5.1.4.1.1.2",      "SOP CT_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.3.1",    "SOP US_MULTIFRAME_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.4",      "SOP MR_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.6.1",    "SOP US_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.6.2",    "SOP ENHANCED US VOLUME"},
    {"1.2.840.10008.5.1.4.1.1.7",      "SOP SECONDARY_CAPTURE_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.8",      "SOP STANDALONE_OVERLAY"},
    {"1.2.840.10008.5.1.4.1.1.9",      "SOP STANDALONE_CURVE"},
    {"1.2.840.10008.5.1.4.1.1.10",     "SOP STANDALONE_MODALITY"},
    {"1.2.840.10008.5.1.4.1.1.11",     "SOP STANDALONE_VOI_LUT"},
    {"1.2.840.10008.5.1.4.1.1.11.1",   "SOP GRAYSCALE_SOFTCOPY"},
    {"1.2.840.10008.5.1.4.1.1.12.1",   "SOP XRAY_ANGIOGRAPHIC_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.12.2",   "SOP XRAY_RADIOFLUROSCOPIC_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.20",     "SOP NM_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.77.1.1", "SOP VL_ENDOSCOPIC_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.77.1.2", "SOP VL_MICROSCOPIC_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.77.1.3", "SOP VL_SLIDECOORD_MICRO_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.77.1.4", "SOP VL_PHOTOGRAPHIC_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.128",    "SOP PET_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.129",    "SOP STANDALONE_PET_CURVE"},
    {"1.2.840.10008.5.1.4.1.1.481.1",  "SOP RT_IMAGE"},
    {"1.2.840.10008.5.1.4.1.1.481.2",  "SOP RT_DOSE"},
    {"1.2.840.10008.5.1.4.1.1.481.3",  "SOP RT_STRUCTURE_SET"},
    {"1.2.840.10008.1.3.10",           "Media Storage Directory Storage"},
    {"1.2.840.10008.1.9",              "Basic Study Content Notification SOP Class"},
    {"1.2.840.10008.1.20.1",           "Storage Commitment Push Model SOP Class"},
    {"1.2.840.10008.1.20.1.1",         "Storage Commitment Push Model SOP Instance"},
    {"1.2.840.10008.1.20.2",           "Storage Commitment Pull Model SOP Class"},
    {"1.2.840.10008.1.20.2.1",         "Storage Commitment Pull Model SOP Instance"},
    {"1.2.840.10008.3.1.1.1",          "DICOM Application Context Name"},
    {"1.2.840.10008.3.1.2.1.1",        "Detached Patient Management SOP Class"},
    {"1.2.840.10008.3.1.2.1.4",        "Detached Patient Management Meta SOP Class"},
    {"1.2.840.10008.3.1.2.2.1",        "Detached Visit Management SOP Class"},
    {"1.2.840.10008.3.1.2.3.1",        "Detached Study Management SOP Class"},
    {"1.2.840.10008.3.1.2.3.2",        "Study Component Management SOP Class"},
    {"1.2.840.10008.3.1.2.3.3",        "Modality Performed Procedure Step SOP Class"},
    {"1.2.840.10008.3.1.2.3.4",        "Modality Performed Procedure Step Retrieve SOP Class"},
    {"1.2.840.10008.3.1.2.3.5",        "Modality Performed Procedure Step Notification SOP Class"},
    {"1.2.840.10008.3.1.2.5.1",        "Detached Results Management SOP Class"},
    {"1.2.840.10008.3.1.2.5.4",        "Detached Results Management Meta SOP Class"},
    {"1.2.840.10008.3.1.2.5.5",        "Detached Study Management Meta SOP Class"},
    {"1.2.840.10008.3.1.2.6.1",        "Detached Interpretation Management SOP Class"},
    {"1.2.840.10008.5.1.1.4.2",        "Referenced Image Box SOP Class"},
    {"1.2.840.10008.5.1.1.9",          "Basic Grayscale Print Management Meta SOP Class"},
    {"1.2.840.10008.5.1.1.9.1",        "Referenced Grayscale Print Management Meta SOP Class"},
    {"1.2.840.10008.5.1.1.14",         "Print Job SOP Class"},
    {"1.2.840.10008.5.1.1.16",         "Printer SOP Class"},
    {"1.2.840.10008.5.1.1.17",         "Printer SOP Instance"},
    {"1.2.840.10008.5.1.1.18",         "Basic Color Print Management Meta SOP Class"},
    {"1.2.840.10008.5.1.1.18.1",       "Referenced Color Print Management Meta SOP Class"},
    {"1.2.840.10008.5.1.1.24",         "Image Overlay Box SOP Class"},
    {"1.2.840.10008.5.1.1.25",         "Print Queue SOP Instance"},
    {"1.2.840.10008.5.1.1.26",         "Print Queue Management SOP Class"},
    {"1.2.840.10008.5.1.1.27",         "Stored Print Storage SOP Class"},
    {"1.2.840.10008.5.1.1.29",         "Hardcopy Grayscale Image Storage SOP Class"},
    {"1.2.840.10008.5.1.1.30",         "Hardcopy Color Image Storage SOP Class"},
    {"1.2.840.10008.5.1.1.31",         "Pull Print Request SOP Class"},
    {"1.2.840.10008.5.1.1.32",         "Pull Stored Print Management Meta SOP Class"},
    {"1.2.840.10008.5.1.4.1.1.3",      "Ultrasound Multi-frame Image Storage (Retired)"},
    {"1.2.840.10008.5.1.4.1.1.5",      "Nuclear Medicine Image Storage (Retired)"},
    {"1.2.840.10008.5.1.4.1.1.6",      "Ultrasound Image Storage (Retired)"},
    {"1.2.840.10008.5.1.4.1.1.12.3",   "X-Ray Angiographic Bi-Plane Image Storage"},
    {"1.2.840.10008.5.1.4.1.1.481.5",  "RT Plan Storage"},
    {"1.2.840.10008.5.1.4.1.2.1.1",    "Patient Root Query/Retrieve Information Model - FIND"},
    {"1.2.840.10008.5.1.4.1.2.1.2",    "Patient Root Query/Retrieve Information Model - MOVE"},
    {"1.2.840.10008.5.1.4.1.2.1.3",    "Patient Root Query/Retrieve Information Model - GET"},
    {"1.2.840.10008.5.1.4.1.2.2.1",    "Study Root Query/Retrieve Information Model - FIND"},
    {"1.2.840.10008.5.1.4.1.2.2.2",    "Study Root Query/Retrieve Information Model - MOVE"},
    {"1.2.840.10008.5.1.4.1.2.2.3",    "Study Root Query/Retrieve Information Model - GET"},
    {"1.2.840.10008.5.1.4.1.2.3.1",    "Patient/Study Only Query/Retrieve Information Model - FIND"},
    {"1.2.840.10008.5.1.4.1.2.3.2",    "Patient/Study Only Query/Retrieve Information Model - MOVE"},
    {"1.2.840.10008.5.1.4.31",         "Modality Worklist Information Model - FIND"},
};
// clang-format on

TEST (UidNames, EachUidShowsItsFirstName) {
    for (const auto &row : NAMES) EXPECT_STREQ (row[1], UID_Name (row[0])) << row[0];
}

TEST (UidNames, OthersHaveNone) {
    EXPECT_EQ (nullptr, UID_Name ("1.2.3"));
    EXPECT_EQ (nullptr, UID_Name (""));
    EXPECT_EQ (nullptr, UID_Name (nullptr));
    EXPECT_EQ (nullptr, UID_Name ("1.2.840.10008.1"));
    EXPECT_EQ (nullptr, UID_Name ("1.2.840.10008.1.2 "));
}
