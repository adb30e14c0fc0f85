// Values that definition tables write as text.
#include <float.h>
#include <string.h>

#include "attribute/value.h"
#include "tables/definition_files_private.h"
#include "util/text.h"

static const char *const MODULE = "definition_value";

struct Number_Form {
    uint16_t vr;
    char     padding; // Of a text.
    uint8_t  size;    // Of a number in bytes; 0: a text.
    uint8_t  real;
};

// clang-format off
static const Number_Form number_forms[] = {
    {VR_AE, ' ', 0, 0}, {VR_AS, ' ', 0, 0}, {VR_CS, ' ', 0, 0}, {VR_DA, ' ', 0, 0}, {VR_DS, ' ', 0, 0},
    {VR_DT, ' ', 0, 0}, {VR_IS, ' ', 0, 0}, {VR_LO, ' ', 0, 0}, {VR_LT, ' ', 0, 0}, {VR_PN, ' ', 0, 0},
    {VR_SH, ' ', 0, 0}, {VR_ST, ' ', 0, 0}, {VR_TM, ' ', 0, 0}, {VR_UT, ' ', 0, 0}, {VR_UI, 0,   0, 0},
    {VR_US, 0,   2, 0}, {VR_AT, 0,   2, 0}, {VR_SS, 0,   2, 0}, {VR_UL, 0,   4, 0}, {VR_SL, 0,   4, 0},
    {VR_FL, 0,   4, 1}, {VR_FD, 0,   8, 1},
};
// clang-format on

static const Number_Form *Number_Form_Of (uint16_t vr) {
    for (const Number_Form &form : number_forms)
        if (form.vr == vr) return &form;
    return nullptr;
}

static Value_Result Value_Take (Window window, Attribute *attribute, const void *bytes, size_t length, size_t padded) {
    int32_t size = static_cast<int32_t> (padded);
    if (!Value_New (window, HERE ("tag->data", size, 1), attribute, size)) return VALUE_NO_MEMORY;
    memcpy (attribute->data, bytes, length);
    attribute->length = size;
    return VALUE_SET;
}

static Value_Result Value_Text (Window window, Attribute *attribute, const char *text, char padding) {
    size_t length = strlen (text), padded = length + length % 2;
    if (padded > INT32_MAX) return VALUE_REFUSED;
    Value_Result result = Value_Take (window, attribute, text, length, padded);
    if (result == VALUE_SET && padded > length) attribute->data[length] = static_cast<uint8_t> (padding);
    return result;
}

static float To_Float (double number) {
    double limit = FLT_MAX;
    return static_cast<float> (number > limit ? limit : number < -limit ? -limit : number);
}

// The bits of a number, to be cut to its form's size.
static uint64_t Number_Bits (const Number_Form *form, const char *text) {
    uint64_t bits = 0;
    if (!form->real) return static_cast<uint64_t> (Text_To_Long (text));
    double number = Text_To_Double (text);
    if (form->size == sizeof number) {
        memcpy (&bits, &number, sizeof number);
    } else {
        float    single = To_Float (number);
        uint32_t half;
        memcpy (&half, &single, sizeof half);
        bits = half;
    }
    return bits;
}

static const char *Skip_While (const char *text, const char *set) { return text + strspn (text, set); }

// The first number ends at the first backslash, the others at blanks: "1\2 3" is three numbers, "1\2\3" is two, since a
// number ends at what can't belong to it. Tables in use rely on it.
static Value_Result Value_Numbers (Window window, Attribute *attribute, const char *text, const Number_Form *form) {
    static const char BETWEEN[] = " \t\n";

    uint8_t numbers[DEFINITION_NUMBERS_SIZE];
    size_t  used = 0;
    while (text) {
        if (used + form->size > sizeof numbers) return VALUE_REFUSED;
        uint64_t bits = Number_Bits (form, text);
        for (int i = 0; i < form->size; i++) numbers[used++] = static_cast<uint8_t> (bits >> 8 * i);

        const char *backslash = used == form->size ? strchr (text, '\\') : nullptr;
        if (used == form->size) text = backslash ? backslash + 1 : "";
        else text += strcspn (text, BETWEEN);
        text = Skip_While (text, BETWEEN);
        if (!*text) text = nullptr;
    }
    return Value_Take (window, attribute, numbers, used, used);
}

Value_Result Definition_Value_Set (Window window, Attribute *attribute, const char *text) {
    Value_Release (attribute);
    attribute->length = 0;
    if (!*text) return VALUE_SET;
    const Number_Form *form = Number_Form_Of (attribute->vr);
    if (!form) return VALUE_REFUSED;
    return form->size ? Value_Numbers (window, attribute, text, form)
                      : Value_Text (window, attribute, text, form->padding);
}

int DICOM_Module_Value_Set (Window window, Attribute *attribute, const char *text) {
    return Definition_Value_Set (window, attribute, text) == VALUE_SET;
}
