#include "tests/support/lists.h"

#include <string.h>

#include "attribute/NEMA_Tag_Attribute.h"
#include "attribute/value.h"

static const char *const MODULE = "lists";

Test_List::~Test_List () {
    Reset ();
    DICOM_Attribute_Delete (nullptr, &cursor, &first, TAG_ANY, TAG_ANY);
}

void Test_List::Reset () { DICOM_Attribute_Sequence_Reset (nullptr, &cursor); }

Attribute *Test_List::Add (uint16_t group, uint16_t element, const char *vr, const std::string &value) {
    Attribute  record = Record (group, element, vr, value);
    Attribute *added  = DICOM_Attribute_Insert (nullptr, &cursor, &first, &record, 0);
    Value_Release (&record);
    return added;
}

void Test_List::Open (uint16_t group, uint16_t element) {
    DICOM_Attribute_Sequence_Start (nullptr, &cursor, group, element, ORIGIN_DICOM, 0);
}

void Test_List::Item () { DICOM_Attribute_Item_Start (nullptr, &cursor, 0); }

void Test_List::Close () { DICOM_Attribute_Sequence_Stop (nullptr, &cursor, 0); }

Attribute Record (uint16_t group, uint16_t element, const char *vr, const std::string &value, uint16_t flags) {
    Attribute record = {};
    record.group     = group;
    record.element   = element;
    record.flags     = flags;
    record.vr_file   = *vr ? Code (vr[0], vr[1]) : static_cast<uint16_t> (0);
    record.length    = static_cast<int32_t> (value.size ());
    if (!value.empty ()) {
        Value_New (nullptr, HERE ("value", record.length, 1), &record, record.length);
        memcpy (record.data, value.data (), value.size ());
    }
    return record;
}

std::string Outline (const Attribute *list) {
    std::string text;
    for (const Attribute *record = list; record; record = record->next) {
        char tag[16];
        snprintf (tag, sizeof tag, "(%04X,%04X)", record->group, record->element);
        if (!text.empty ()) text += " ";
        text += tag;
        for (int32_t i = 0; i < record->nb_item; i++) text += "[" + Outline (record->item[i]) + "]";
    }
    return text;
}

std::string Fields (const Attribute *list) {
    std::string text;
    char        line[128];
    for (; list; list = list->next) {
        snprintf (line, sizeof line, "%u (%04x,%04x) %x %x %x %x %d %u %u %s ", list->level, list->group, list->element,
                  list->flags, list->vr_file, list->vr, list->mode, list->length, list->pos_tag, list->pos_data,
                  list->definition ? "known" : "-");
        text += line + Value (list) + (list->description ? list->description : "-") + "\n";
        for (int32_t i = 0; i < list->nb_item; i++) text += "[" + Fields (list->item[i]) + "]";
    }
    return text;
}

std::string Value (const Attribute *attribute) {
    if (!attribute->data) return "(none)";
    return std::string (reinterpret_cast<const char *> (attribute->data),
                        static_cast<size_t> (attribute->length > 0 ? attribute->length : 0));
}
