// The three columns of short texts behind a row. Each label keeps its text: a code that has none of its own (two
// differences in one record) shows the text of the row before it.
#include <stdio.h>

#include "compare/attribute_comparison.h"
#include "view/result_view.h"

static const int LABEL_SIZE = 40; // The longest are "not in modality definition" and two numbers of ten digits.

static char diff_label[LABEL_SIZE], size_label[LABEL_SIZE], vr_label[LABEL_SIZE];

struct Code_Text {
    int         code;
    const char *text;
};

// clang-format off
static const Code_Text diff_texts[] = {
    {DIFFERENCE_NONE,                ""},
    {DIFFERENCE_SKIPPED,             "skipped"},
    {DIFFERENCE_LENGTH,              "different data size"},
    {DIFFERENCE_VR,                  "different VR"},
    {DIFFERENCE_ONLY_A,              "absent in B"},
    {DIFFERENCE_ONLY_B,              "absent in A"},
    {DIFFERENCE_FILE_ONLY,           "not in modality definition"},
    {DIFFERENCE_FILE_AND_DEFINITION, "used by file"},
    {DIFFERENCE_EXPLICIT_IMPLICIT,   "explicit /vs/ implicit VR"},
    {DIFFERENCE_IMPLICIT_EXPLICIT,   "implicit /vs/ explicit VR"},
};
// clang-format on

static int32_t First_Quantity (const Row *row) { return row->attribute ? row->attribute->diff_a : 0; }

const char *View::DiffLabel (const Row *row) {
    if (row->code & ROW_CONTAINER) {
        snprintf (diff_label, LABEL_SIZE, "%s", row->attribute ? "inside sequence" : "inside item");
    } else if (row->code == DIFFERENCE_BYTES) {
        snprintf (diff_label, LABEL_SIZE, "%d bytes diff.", First_Quantity (row));
    } else {
        for (const Code_Text &entry : diff_texts)
            if (entry.code == row->code) snprintf (diff_label, LABEL_SIZE, "%s", entry.text);
    }
    return diff_label;
}

// 1 for no difference and for a single one.
static int Is_Single (uint16_t code) {
    return code == DIFFERENCE_NONE || (code <= DIFFERENCE_IMPLICIT_EXPLICIT && !(code & (code - 1)));
}

const char *View::SizeLabel (const Row *row) {
    const Attribute *attribute = row->attribute;
    if (!attribute) return size_label;
    if (row->code == DIFFERENCE_LENGTH)
        snprintf (size_label, LABEL_SIZE, "%-d/vs/%-d", attribute->diff_a, attribute->diff_b);
    else if (Is_Single (row->code)) snprintf (size_label, LABEL_SIZE, "%-d", attribute->length);
    return size_label;
}

static uint16_t Quantity_VR (int32_t quantity) { return static_cast<uint16_t> (quantity); }

// "used by file" keeps the VR before it, unlike its size: so it always was, and lists are read side by side.
const char *View::VrLabel (const Row *row) {
    const Attribute *attribute = row->attribute;
    if (!attribute) return vr_label;
    if (row->code == DIFFERENCE_VR) {
        uint16_t a = Quantity_VR (attribute->diff_a), b = Quantity_VR (attribute->diff_b);
        snprintf (vr_label, LABEL_SIZE, "%c%c/vs/%c%c", Code_First (a, '-'), Code_Second (a, '-'), Code_First (b, '-'),
                  Code_Second (b, '-'));
    } else if (row->code != DIFFERENCE_FILE_AND_DEFINITION && Is_Single (row->code)) {
        uint16_t vr = Attribute_VR (attribute);
        snprintf (vr_label, LABEL_SIZE, "%c%c", Code_First (vr, '-'), Code_Second (vr, '-'));
    }
    return vr_label;
}
