#include "tests/hostile/expected.h"

#include <stdio.h>

#include "attribute/attribute.h"
#include "tables/data_dictionary.h"

typedef std::vector<unsigned char> Bytes;

// The bytes with a place in them.
struct Place {
    const Bytes &bytes;
    size_t       at;

    size_t   Left () const { return at < bytes.size () ? bytes.size () - at : 0; }
    uint64_t Take (size_t count, bool big) {
        uint64_t number = 0;
        for (size_t i = 0; i < count; i++) {
            uint64_t byte = bytes[at + (big ? i : count - 1 - i)];
            number        = number << 8 | byte;
        }
        at += count;
        return number;
    }
};

enum Header_Result { HEADER_READ, HEADER_REFUSED };

static bool Is_Capital (unsigned char byte) { return byte >= 'A' && byte <= 'Z'; }

static bool Is_Long (uint16_t vr) {
    return vr == VR_OB || vr == VR_OW || vr == VR_OX || vr == VR_SQ || vr == VR_UN || vr == VR_UT;
}

// Group, element and how the rest is written.
static bool Read_Tag (Place *place, bool *explicit_vr, Expected_Element *element) {
    if (place->Left () < 2) return false;
    bool meta = place->bytes[place->at] == 2 && place->bytes[place->at + 1] == 0;
    if (meta) {
        if (place->Left () < 6) return false;
        element->big = false;
        *explicit_vr = Is_Capital (place->bytes[place->at + 4]) && Is_Capital (place->bytes[place->at + 5]);
    }
    element->group = static_cast<uint16_t> (place->Take (2, element->big));
    if (place->Left () < 2) return false;
    element->element = static_cast<uint16_t> (place->Take (2, element->big));
    if (element->group == 0x3F3F && element->element == 0x003F) element->group = 0xFFFE, element->element = 0xE000;
    if (element->group == 0xFFFE) *explicit_vr = false;
    return true;
}

// The length as it is written; all is said when the element is one that nothing more is asked about.
static bool Read_Length (Place *place, bool explicit_vr, Expected_Element *element, uint32_t *length, bool *all_said) {
    element->length_size = 4;
    if (explicit_vr) {
        if (place->Left () < 2) return false;
        unsigned char first = place->bytes[place->at], second = place->bytes[place->at + 1];
        if (!Is_Capital (first) || !Is_Capital (second)) return false;
        element->vr = static_cast<uint16_t> (place->Take (2, true));
        if (Is_Long (element->vr)) {
            if (place->Left () < 2) return false;
            place->at += 2;
        } else {
            element->length_size = 2;
        }
    }
    if (place->Left () < static_cast<size_t> (element->length_size)) {
        place->at = place->bytes.size ();
        *all_said = element->group == 0xFFFE && element->element != 0xE000 &&
                    (element->element == 0xE00D || element->element == 0xE0DD);
        *length = 0;
        return *all_said;
    }
    *length = static_cast<uint32_t> (place->Take (static_cast<size_t> (element->length_size), element->big));
    return true;
}

static Header_Result Read_Header (Place *place, bool explicit_vr, Expected_Element *element,
                                  Expected_Reading *reading) {
    uint32_t length   = 0;
    bool     all_said = false;
    if (!Read_Tag (place, &explicit_vr, element)) return HEADER_REFUSED;
    if (!Read_Length (place, explicit_vr, element, &length, &all_said)) return HEADER_REFUSED;
    element->length = static_cast<int32_t> (length);
    if (all_said) return HEADER_READ;

    if (element->length >= static_cast<int64_t> (place->bytes.size ())) return HEADER_REFUSED;
    if (length % 2 && length != 0xFFFFFFFF) reading->odd++;
    if (element->group == 0xFEFF && element->element == 0x00E0) return HEADER_REFUSED;
    if (element->group == 0x0009 && element->vr == VR_UL && length == 6 && place->Left () >= 4 &&
        std::string (place->bytes.begin () + static_cast<long> (place->at),
                     place->bytes.begin () + static_cast<long> (place->at) + 4) == "    ") {
        element->length = 4;
        element->vr     = VR_CS;
        return HEADER_READ;
    }
    return element->length < -1 ? HEADER_REFUSED : HEADER_READ;
}

static uint16_t Counting_Vr (const Expected_Element &element) {
    if (element.vr || element.group == 0xFFFE) return element.vr;
    const Dictionary_Entry *entry = Dictionary_Lookup (nullptr, element.group, element.element);
    return entry ? entry->vr[0] : 0;
}

static std::string Value_Of (const Bytes &bytes, const Expected_Element &element) {
    std::string value;
    if (!element.has_data) return value;
    for (int32_t i = 0; i < element.length; i++)
        value += static_cast<char> (bytes[element.pos_data + static_cast<size_t> (i)]);
    return value.c_str (); // Up to its first zero byte.
}

Expected_Reading Expect (const Bytes &bytes) {
    Expected_Reading reading;
    if (bytes.size () < 132) return reading;
    reading.readable  = true;
    bool  marked      = std::string (bytes.begin () + 128, bytes.begin () + 132) == "DICM";
    Place place       = {bytes, marked ? 132u : 0u};
    bool  explicit_vr = true, big = false, fragments = false;

    for (;;) {
        Expected_Element element = {};
        element.pos_tag          = place.at;
        element.big              = big;
        if (place.at + 4 > bytes.size ()) return reading;
        if (Read_Header (&place, explicit_vr, &element, &reading) == HEADER_REFUSED) {
            reading.stopped = static_cast<long> (element.pos_tag);
            return reading;
        }
        element.pos_data = place.at;
        if (!element.group && !element.element && !element.vr && !element.length) return reading;
        if (element.length > 0 && static_cast<size_t> (element.length) > place.Left ()) {
            reading.cut++;
            element.length = static_cast<int32_t> (place.Left ());
        }

        uint16_t vr   = Counting_Vr (element);
        bool     item = element.group == 0xFFFE && element.element == 0xE000;
        if (!item) fragments = (vr == VR_OB || vr == VR_OW) && element.length == -1;
        element.has_data = element.length > 0 && vr != VR_SQ && (!item || fragments);
        if (element.has_data) place.at += static_cast<size_t> (element.length);
        reading.elements.push_back (element);

        if (element.group != 0x0002 || element.element != 0x0010) continue;
        std::string syntax = Value_Of (bytes, element);
        if (syntax == "1.2.840.10008.1.2") explicit_vr = big = false;
        if (syntax == "1.2.840.10008.1.2.1") explicit_vr = true, big = false;
        if (syntax == "1.2.840.10008.1.2.2") explicit_vr = big = true;
    }
}

int Expected_Reading::Attributes () const {
    int count = 0;
    for (const Expected_Element &element : elements) count += element.group != 0xFFFE;
    return count;
}

std::string Text_Of (const Expected_Element &element) {
    char line[100];
    snprintf (line, sizeof line, "(%04X,%04X) %c%c %d at %zu, %zu%s\n", element.group, element.element,
              Code_First (element.vr, '-'), Code_Second (element.vr, '-'), element.length, element.pos_tag,
              element.pos_data, element.has_data ? ", value" : "");
    return line;
}
