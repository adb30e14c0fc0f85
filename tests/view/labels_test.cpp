#include <gtest/gtest.h>

#include <limits.h>

#include "compare/attribute_comparison.h"
#include "view/result_view.h"

// A row of its own with a record.
struct Labelled {
    Attribute attribute = {};
    Row       row       = {};

    explicit Labelled (int code, bool has_attribute = true) {
        row.code          = static_cast<uint16_t> (code);
        row.attribute     = has_attribute ? &attribute : nullptr;
        attribute.vr_file = VR_LO;
        attribute.length  = 12;
        attribute.diff_a  = 3;
        attribute.diff_b  = 4;
    }
};

struct Code_Label {
    int         code;
    const char *label;
};

// Leaves texts in the buffers that no code below gives.
static void Fill_Buffers () {
    Labelled bytes (DIFFERENCE_BYTES);
    bytes.attribute.diff_a  = 777;
    bytes.attribute.length  = 888;
    bytes.attribute.vr_file = VR_UT;
    EXPECT_STREQ ("777 bytes diff.", View::DiffLabel (&bytes.row));
    EXPECT_STREQ ("888", View::SizeLabel (&bytes.row));
    EXPECT_STREQ ("UT", View::VrLabel (&bytes.row));
}

TEST (ViewLabels, DifferenceOfEveryCode) {
    static const Code_Label labels[] = {
        {0, ""},
        {1, "skipped"},
        {2, "3 bytes diff."},
        {4, "different data size"},
        {8, "different VR"},
        {16, "absent in B"},
        {32, "absent in A"},
        {64, "not in modality definition"},
        {128, "used by file"},
        {256, "explicit /vs/ implicit VR"},
        {512, "implicit /vs/ explicit VR"},
        {0x8000, "inside sequence"},
        {0x8002, "inside sequence"},
    };
    for (const Code_Label &entry : labels) {
        Fill_Buffers ();
        Labelled row (entry.code);
        EXPECT_STREQ (entry.label, View::DiffLabel (&row.row)) << entry.code;
    }
}

TEST (ViewLabels, DifferenceInsideAnItem) {
    Labelled item (0x8000, false), counted (0x8012, false);
    EXPECT_STREQ ("inside item", View::DiffLabel (&item.row));
    Fill_Buffers ();
    EXPECT_STREQ ("inside item", View::DiffLabel (&counted.row));
}

TEST (ViewLabels, DifferenceOfOtherCodesIsTheLastOne) {
    for (int code : {3, 2 | 8, 1 | 64, 1024, 0x4000, 0x7FFF, 16 | 32}) {
        Fill_Buffers ();
        Labelled row (code);
        EXPECT_STREQ ("777 bytes diff.", View::DiffLabel (&row.row)) << code;
    }
}

TEST (ViewLabels, SizeOfEveryCode) {
    for (int code : {0, 1, 2, 8, 16, 32, 64, 128, 256, 512}) {
        Fill_Buffers ();
        Labelled row (code);
        EXPECT_STREQ ("12", View::SizeLabel (&row.row)) << code;
    }
    Labelled sizes (4);
    EXPECT_STREQ ("3/vs/4", View::SizeLabel (&sizes.row));
}

TEST (ViewLabels, SizeOfOtherCodesIsTheLastOne) {
    for (int code : {3, 2 | 8, 4 | 8, 1024, 0x4000, 0x8000, 0x8002, 0x8004}) {
        Fill_Buffers ();
        Labelled row (code);
        EXPECT_STREQ ("888", View::SizeLabel (&row.row)) << code;
    }
}

TEST (ViewLabels, SizesAreSigned) {
    Labelled undefined (0), sizes (4);
    undefined.attribute.length = LENGTH_UNDEFINED;
    sizes.attribute.diff_a     = INT_MIN;
    sizes.attribute.diff_b     = INT_MAX;
    EXPECT_STREQ ("-1", View::SizeLabel (&undefined.row));
    EXPECT_STREQ ("-2147483648/vs/2147483647", View::SizeLabel (&sizes.row));
}

TEST (ViewLabels, VrOfEveryCode) {
    for (int code : {0, 1, 2, 4, 16, 32, 64, 256, 512}) {
        Fill_Buffers ();
        Labelled row (code);
        EXPECT_STREQ ("LO", View::VrLabel (&row.row)) << code;
    }
}

// "Used by file" is among the codes with a size, but not among those with a VR.
TEST (ViewLabels, VrOfOtherCodesIsTheLastOne) {
    for (int code : {128, 3, 2 | 8, 1024, 0x4000, 0x8000, 0x8008}) {
        Fill_Buffers ();
        Labelled row (code);
        EXPECT_STREQ ("UT", View::VrLabel (&row.row)) << code;
    }
}

TEST (ViewLabels, VrOfDefinitionCountsWithoutOneInTheStream) {
    Labelled row (0);
    row.attribute.vr = VR_PN;
    EXPECT_STREQ ("LO", View::VrLabel (&row.row));
    row.attribute.vr_file = 0;
    EXPECT_STREQ ("PN", View::VrLabel (&row.row));
    row.attribute.vr = 0;
    EXPECT_STREQ ("--", View::VrLabel (&row.row));
}

TEST (ViewLabels, DifferentVrsAreBothShown) {
    Labelled row (8);
    row.attribute.diff_a = VR_US;
    row.attribute.diff_b = VR_SS;
    EXPECT_STREQ ("US/vs/SS", View::VrLabel (&row.row));
    row.attribute.diff_a = 0;
    EXPECT_STREQ ("--/vs/SS", View::VrLabel (&row.row));
    row.attribute.diff_b = 0;
    EXPECT_STREQ ("--/vs/--", View::VrLabel (&row.row));
}

TEST (ViewLabels, RowsWithoutAttributeKeepSizeAndVr) {
    Fill_Buffers ();
    Labelled item (0, false);
    EXPECT_STREQ ("888", View::SizeLabel (&item.row));
    EXPECT_STREQ ("UT", View::VrLabel (&item.row));
    Labelled bytes (2, false);
    EXPECT_STREQ ("0 bytes diff.", View::DiffLabel (&bytes.row));
}
