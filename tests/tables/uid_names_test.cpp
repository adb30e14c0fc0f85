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

TEST (UidNames, OthersHaveNone) {
    EXPECT_EQ (nullptr, UID_Name ("1.2.3"));
    EXPECT_EQ (nullptr, UID_Name (""));
    EXPECT_EQ (nullptr, UID_Name (nullptr));
    EXPECT_EQ (nullptr, UID_Name ("1.2.840.10008.1"));
    EXPECT_EQ (nullptr, UID_Name ("1.2.840.10008.1.2 "));
}
