// The table and what both passes do alike. Texts of findings are put together only when somebody will read them.
#include "syntax/syntax_rules.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "attribute/messages.h"
#include "tables/data_dictionary.h"

// --- the table -------------------------------------------------------------

static constexpr char CODE_SET[]    = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ \\";
static constexpr char AGE_SET[]     = "0123456789DWMY";
static constexpr char DATE_SET[]    = "0123456789.\\";
static constexpr char DECIMAL_SET[] = "0123456789+-Ee. \\";
static constexpr char MOMENT_SET[]  = "0123456789+-. \\";
static constexpr char INTEGER_SET[] = "0123456789+- \\";
static constexpr char NUMBER_SET[]  = "0123456789. \\"; // TM and UI.

static constexpr int NONE = SYNTAX_NONE;
static constexpr int NUL  = 0;

// clang-format off
static constexpr Syntax_Rule rules[] = {
    // VR,    form,            leading, trailing, set,  maximum,  even, unit, counted, expecting
    {VR_AE, SYNTAX_TITLE,     NONE, NONE, nullptr,      16,        ' ',  0, 0, nullptr},
    {VR_AS, SYNTAX_AGE,       NONE, NONE, AGE_SET,      4,         NONE, 0, 0, "4 bytes"},
    {VR_AT, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 4, 0, "multiple 2*\"Unigned Short\""},
    {VR_CS, SYNTAX_MULTIPLE,  ' ',  ' ',  CODE_SET,     16,        ' ',  0, 0, nullptr},
    {VR_DA, SYNTAX_DATE,      NONE, NONE, DATE_SET,     8,         NONE, 0, 0, "6, 8 or 10 bytes"},
    {VR_DS, SYNTAX_MULTIPLE,  ' ',  ' ',  DECIMAL_SET,  16,        ' ',  0, 0, nullptr},
    {VR_DT, SYNTAX_MULTIPLE,  NONE, ' ',  MOMENT_SET,   26,        ' ',  0, 0, nullptr},
    {VR_FD, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 8, 1, "\"Floation Point Double\""},
    {VR_FL, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 4, 1, "\"Floation Point\""},
    {VR_IS, SYNTAX_INTEGER,   ' ',  ' ',  INTEGER_SET,  12,        ' ',  0, 0, nullptr},
    {VR_LO, SYNTAX_MULTIPLE,  ' ',  ' ',  nullptr,      64,        ' ',  0, 0, nullptr},
    {VR_LT, SYNTAX_SINGLE,    NONE, ' ',  nullptr,      10240,     NONE, 0, 0, nullptr},
    {VR_OF, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 4, 0, "\"Other Float\""},
    {VR_OW, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 2, 0, "\"Other Word\""},
    {VR_PN, SYNTAX_MULTIPLE,  NONE, NONE, nullptr,      320,       ' ',  0, 0, nullptr},
    {VR_SH, SYNTAX_MULTIPLE,  ' ',  ' ',  nullptr,      16,        ' ',  0, 0, nullptr},
    {VR_SL, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 4, 1, "\"Signed Long\""},
    {VR_SS, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 2, 1, "\"Signed Short\""},
    {VR_ST, SYNTAX_SINGLE,    NONE, ' ',  nullptr,      1024,      NONE, 0, 0, nullptr},
    {VR_TM, SYNTAX_TIME,      NONE, ' ',  NUMBER_SET,   16,        NONE, 0, 0, nullptr},
    {VR_UI, SYNTAX_MULTIPLE,  NONE, NUL,  NUMBER_SET,   64,        NUL,  0, 0, nullptr},
    {VR_UL, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 4, 1, "\"Signed Long\""},
    {VR_US, SYNTAX_BINARY,    NONE, NONE, nullptr,      0,         NONE, 2, 1, "\"Unsigned Short\""},
    {VR_UT, SYNTAX_SINGLE,    NONE, ' ',  nullptr,      INT32_MAX, NONE, 0, 0, nullptr},
};
// clang-format on

static constexpr int RULES = sizeof rules / sizeof *rules;

// Where the rule of a VR stands, if it has one: the VR must still be compared. The factor leaves each rule a place of its
// own.
static constexpr unsigned PLACES = 128;

struct Rule_Places {
    uint8_t of[PLACES];
};

static constexpr unsigned Place_Of (uint16_t vr) { return (vr * 61u >> 8) % PLACES; }

static constexpr Rule_Places Rule_Places_Make (void) {
    Rule_Places places = {};
    for (int i = 0; i < RULES; i++) places.of[Place_Of (rules[i].vr)] = static_cast<uint8_t> (i);
    return places;
}

static constexpr Rule_Places rule_places = Rule_Places_Make ();

static constexpr bool Places_Are_Unique (void) {
    for (int i = 0; i < RULES; i++)
        if (rule_places.of[Place_Of (rules[i].vr)] != i) return false;
    return true;
}

static_assert (Places_Are_Unique (), "two VRs have one place: take another factor");

const Syntax_Rule *Syntax_Rule_Of (uint16_t vr) {
    const Syntax_Rule *rule = &rules[rule_places.of[Place_Of (vr)]];
    return rule->vr == vr ? rule : nullptr;
}

// --- reports ---------------------------------------------------------------

static const size_t PREFIX_SIZE = 128;

static void Report (const Syntax_Run *run, int kind, const char *prefix, const char *format, va_list arguments) {
    char   text[LOG_TEXT_SIZE];
    size_t used = strlen (prefix);
    memcpy (text, prefix, used);
    vsnprintf (text + used, sizeof text - used, format, arguments);
    Log_Message (run->window, kind, "%s", text);
}

#define TAG_AND_VR TAG_TEXT " VR=" COLOUR_BLUE "%c%c" COLOUR_BLACK " "

void Syntax_Warn (const Syntax_Run *run, const Attribute *attribute, const char *format, ...) {
    int      kind = run->settings ? run->settings->kind_warning : 0;
    uint16_t vr   = Attribute_VR (attribute);
    if (!kind) return;
    char prefix[PREFIX_SIZE];
    snprintf (prefix, sizeof prefix, WARNING_TEXT TAG_AND_VR, attribute->group, attribute->element,
              Code_First (vr, '-'), Code_Second (vr, '-'));
    va_list arguments;
    va_start (arguments, format);
    Report (run, kind, prefix, format, arguments);
    va_end (arguments);
}

void Syntax_Note (const Syntax_Run *run, const Attribute *attribute, const char *format, ...) {
    int      kind = run->settings ? run->settings->kind_note : 0;
    uint16_t vr   = Attribute_VR (attribute);
    if (!kind) return;
    char prefix[PREFIX_SIZE];
    snprintf (prefix, sizeof prefix, EMPHASIS_END "    " TAG_AND_VR, attribute->group, attribute->element,
              Code_First (vr, '-'), Code_Second (vr, '-'));
    va_list arguments;
    va_start (arguments, format);
    Report (run, kind, prefix, format, arguments);
    va_end (arguments);
}

// --- multiplicity ----------------------------------------------------------

// What the dictionary says about the number of values; a maximum below 1 is no upper bound.
struct Bounds {
    int minimum, maximum;
};

static Bounds Bounds_Of (const Dictionary_Entry *entry) {
    return {static_cast<int16_t> (entry->vm[0].minimum), static_cast<int16_t> (entry->vm[0].maximum)};
}

static int Is_Count_Right (const Dictionary_Entry *entry, int32_t count) {
    if (!entry || entry->nb_vr == 0) return 1;
    Bounds bounds = Bounds_Of (entry);
    if (bounds.minimum < 0) return 1;
    if (bounds.minimum == bounds.maximum) return count == bounds.minimum;
    return count >= bounds.minimum && (bounds.maximum < 1 || count <= bounds.maximum);
}

static void Count_Warning (const Syntax_Run *run, const Attribute *attribute, int32_t count) {
    Bounds bounds = Bounds_Of (attribute->definition);
    if (bounds.minimum == bounds.maximum)
        Syntax_Warn (run, attribute,
                     "Invalid number of values in data!, Expecting VN=" SYNTAX_NUMBER " but got " SYNTAX_NUMBER
                     " values",
                     bounds.minimum, count);
    else if (count >= bounds.minimum)
        Syntax_Warn (run, attribute,
                     "To many values in data! Expecting VN=" SYNTAX_NUMBER "-" SYNTAX_NUMBER " but got " SYNTAX_NUMBER
                     " values",
                     bounds.minimum, bounds.maximum, count);
    else if (bounds.maximum < 1)
        Syntax_Warn (run, attribute,
                     "Not enough values in data! Expecting VN=" SYNTAX_NUMBER "-n but got " SYNTAX_NUMBER " values",
                     bounds.minimum, count);
    else
        Syntax_Warn (run, attribute,
                     "Not enough values in data! Expecting VN=" SYNTAX_NUMBER "-" SYNTAX_NUMBER
                     " but got " SYNTAX_NUMBER " values",
                     bounds.minimum, bounds.maximum, count);
}

int Syntax_Multiplicity (const Syntax_Run *run, const Attribute *attribute, int32_t count) {
    if (Is_Count_Right (attribute->definition, count)) return 1;
    Count_Warning (run, attribute, count);
    return 0;
}

// --- values that are right --------------------------------------------------

// Every value of a file comes by here, and most are plain: a short text that is one value without a blank, or one number.
// What is asked of those is prepared as one record, and a byte is looked up once for all questions. The rest is looked at
// form by form.

// What keeps a byte out of a text: bit i when it isn't allowed in the value of rules[i]. NUL, which ends a text, is allowed
// in none.
struct Byte_Faults {
    uint32_t of[256];
};

static constexpr uint32_t FAULT_BACKSLASH = 0x80000000u; // It stands between values.
static constexpr uint32_t FAULT_BLANK     = 0x40000000u; // It is trimmed at the ends of a value.

static_assert (RULES <= 30, "a rule is a bit of a byte's faults");

static constexpr bool Is_Allowed (const Syntax_Rule &rule, int byte) {
    if (rule.form == SYNTAX_TITLE) return byte >= 0x20 && byte <= 0x7E;
    if (!rule.set) return byte != NUL;
    for (const char *character = rule.set; *character; character++)
        if (*character == byte) return true;
    return false;
}

static constexpr Byte_Faults Byte_Faults_Make (void) {
    Byte_Faults faults = {};
    for (int byte = 0; byte <= 0xFF; byte++) {
        for (int i = 0; i < RULES; i++) faults.of[byte] |= Is_Allowed (rules[i], byte) ? 0 : 1u << i;
        if (byte == '\\') faults.of[byte] |= FAULT_BACKSLASH;
        if (byte == ' ' || byte == '\t') faults.of[byte] |= FAULT_BLANK;
    }
    return faults;
}

static constexpr Byte_Faults byte_faults = Byte_Faults_Make ();

// What makes a value of the rule at the same place plain.
struct Glance {
    uint64_t lengths; // Bit n: it may have n bytes, its pad included.
    uint32_t faults;  // None of its bytes has one of these; those of a number have none at all.
    uint16_t vr;
    uint16_t pad; // The byte that may fill its length up to an even one, or one that there is not.
};

static constexpr int32_t  GLANCE_LENGTHS = 64; // Bits of lengths.
static constexpr uint16_t NO_BYTE        = 256;

// The longest value that is surely right.
static constexpr int32_t Sure_Maximum (const Syntax_Rule &rule) {
    const int32_t INTEGER_SURE = 8; // Digits of a number that surely fits.
    return rule.form == SYNTAX_INTEGER ? INTEGER_SURE : rule.maximum;
}

static constexpr uint64_t Plain_Lengths (const Syntax_Rule &rule) {
    switch (rule.form) {
    case SYNTAX_BINARY: return 1ull << rule.unit;
    case SYNTAX_AGE:
    case SYNTAX_DATE: return 1ull << rule.maximum;
    case SYNTAX_SINGLE: // Only its end counts.
    case SYNTAX_TIME: return 0;
    default: break;
    }
    uint64_t lengths = 0;
    for (int length = 2; length < GLANCE_LENGTHS && length <= Sure_Maximum (rule); length += 2)
        lengths |= 1ull << length;
    return lengths;
}

struct Glances {
    Glance of[RULES];
};

static constexpr Glances Glances_Make (void) {
    Glances all = {};
    for (int i = 0; i < RULES; i++) {
        const Syntax_Rule &rule   = rules[i];
        uint32_t           faults = rule.form == SYNTAX_BINARY ? 0 : 1u << i | FAULT_BACKSLASH | FAULT_BLANK;
        uint16_t           pad    = rule.even == NONE ? NO_BYTE : static_cast<uint16_t> (rule.even);
        all.of[i]                 = {Plain_Lengths (rule), faults, rule.vr, pad};
    }
    return all;
}

static constexpr Glances glances = Glances_Make ();

// That of the VR, or when it has no rule that of another one.
static inline const Glance *Glance_Of (uint16_t vr) { return &glances.of[rule_places.of[Place_Of (vr)]]; }

static inline uint32_t Faults_Of_Four (const uint8_t *bytes) {
    const uint32_t *of = byte_faults.of;
    return of[bytes[0]] | of[bytes[1]] | of[bytes[2]] | of[bytes[3]];
}

// 1 when no byte has one of these faults; there is at least one byte. To look at some of them twice costs less than to look
// at the last few one by one.
static inline int Is_Free_Of (uint32_t faults, const uint8_t *bytes, uint32_t count) {
    const uint32_t *of = byte_faults.of;
    if (count < 4) return !((of[bytes[0]] | of[bytes[count / 2]] | of[bytes[count - 1]]) & faults);
    const uint8_t *last = bytes + count - 4;
    for (; bytes < last; bytes += 4)
        if (Faults_Of_Four (bytes) & faults) return 0;
    return !(Faults_Of_Four (last) & faults);
}

// How many bytes the value has when the one pad that makes its length even isn't counted. One that may have a pad is even
// here, so there is a byte in front of the pad.
static inline int32_t Unpadded (const Glance *glance, const Attribute *attribute) {
    int32_t length = attribute->length;
    return length - (attribute->data[length - 1] == glance->pad);
}

static inline int Is_Plain (const Glance *glance, const Attribute *attribute) {
    int32_t length = attribute->length;
    if (length < 0 || length >= GLANCE_LENGTHS || !(glance->lengths >> length & 1)) return 0;
    return Is_Free_Of (glance->faults, attribute->data, static_cast<uint32_t> (Unpadded (glance, attribute)));
}

// The number of values between backslashes, or 0 when one is too long or has blanks around it or a byte isn't allowed.
static int32_t Right_Pieces (uint32_t faults, const uint8_t *bytes, int32_t length, int32_t max) {
    const uint32_t *of     = byte_faults.of;
    const uint8_t  *end    = bytes + length;
    uint32_t        inside = faults & ~FAULT_BLANK;
    if (end[-1] == '\\') return 0;
    for (int32_t count = 1;; count++) {
        const uint8_t *start = bytes;
        while (bytes < end && !(of[*bytes] & inside)) bytes++;
        if (bytes - start > max) return 0;
        if (bytes > start && ((of[*start] | of[bytes[-1]]) & FAULT_BLANK)) return 0;
        if (bytes == end) return count;
        if (*bytes++ != '\\') return 0;
    }
}

// A text of values: only bytes that are allowed, no blank too many, and at its end at most the one pad that makes its
// length even. The pad counts for the longest value here; the few that are just as long are looked at closely.
static int32_t Right_Text (const Glance *glance, const Syntax_Rule *rule, const Attribute *attribute) {
    int32_t length = attribute->length;
    if (rule->even != NONE && length % 2) return 0;
    int32_t unpadded = Unpadded (glance, attribute);
    return Right_Pieces (glance->faults, attribute->data, unpadded, Sure_Maximum (*rule) - (length - unpadded));
}

// A text of one value, whose bytes count only at its end.
static int32_t Right_Single (const Syntax_Rule *rule, const Attribute *attribute) {
    int32_t length = attribute->length;
    uint8_t last   = attribute->data[length - 1];
    return length <= rule->maximum && last != NUL && last != ' ';
}

static int32_t Right_Binary (const Syntax_Rule *rule, const Attribute *attribute) {
    if (attribute->length % rule->unit) return 0;
    return rule->counted ? attribute->length / rule->unit : 1;
}

// How many values there are when they are right but not plain, or 0 when that takes a closer look.
static int32_t Right_Values (const Glance *glance, const Attribute *attribute) {
    const Syntax_Rule *rule = &rules[glance - glances.of];
    if (attribute->length <= 0) return 0;
    switch (rule->form) {
    case SYNTAX_MULTIPLE:
    case SYNTAX_TITLE:
    case SYNTAX_INTEGER: return Right_Text (glance, rule, attribute);
    case SYNTAX_TIME: return Syntax_Time_Is_Old (attribute) ? 0 : Right_Text (glance, rule, attribute);
    case SYNTAX_SINGLE: return Right_Single (rule, attribute);
    case SYNTAX_BINARY: return Right_Binary (rule, attribute);
    case SYNTAX_AGE:
    case SYNTAX_DATE: return 0; // A right one is plain.
    }
    return 0;
}

int Syntax_Glance (Window window, const Settings *settings, const Attribute *attribute) {
    if (Log_Is_Read (LOG_TRACE5)) return 0; // Every step is told.
    if (!attribute->data) return 1;
    uint16_t      vr     = Attribute_VR (attribute);
    const Glance *glance = Glance_Of (vr);
    if (glance->vr != vr) return attribute->length >= 0;
    int32_t    count = Is_Plain (glance, attribute) ? 1 : Right_Values (glance, attribute);
    Syntax_Run run   = {window, settings, nullptr, 0};
    if (count > 0) Syntax_Multiplicity (&run, attribute, count);
    return count > 0;
}

// Apart from its caller, which mostly does without it and without the registers that it takes.
static __attribute__ ((noinline)) int Is_Right_Closely (const Glance *glance, const Attribute *attribute) {
    int32_t count = Right_Values (glance, attribute);
    return count > 0 && Is_Count_Right (attribute->definition, count);
}

int Syntax_Is_Right (const Attribute *attribute) {
    if (attribute->mode & MODE_BIG_ENDIAN) return 0;
    if (!attribute->data) return 1;
    uint16_t      vr     = Attribute_VR (attribute);
    const Glance *glance = Glance_Of (vr);
    if (glance->vr != vr) return attribute->length >= 0;
    if (!Is_Plain (glance, attribute)) return Is_Right_Closely (glance, attribute);
    return Is_Count_Right (attribute->definition, 1);
}

// --- text ------------------------------------------------------------------

const char *Syntax_Text (const Attribute *attribute) {
    return attribute->data ? reinterpret_cast<const char *> (attribute->data) : "";
}

int32_t Syntax_Text_Length (const Attribute *attribute) {
    if (!attribute->data || attribute->length <= 0) return 0;
    const void *nul = memchr (attribute->data, 0, static_cast<size_t> (attribute->length));
    return nul ? static_cast<int32_t> (static_cast<const uint8_t *> (nul) - attribute->data) : attribute->length;
}

static int Last_Is (const Attribute *attribute, int character) {
    return attribute->length > 0 && attribute->data[attribute->length - 1] == character;
}

int Syntax_Strip_End (const Syntax_Run *run, Attribute *attribute, int trailing) {
    if (trailing == SYNTAX_NONE) return 1;
    while (Last_Is (attribute, trailing)) attribute->length--;

    int wrong = trailing == ' ' ? NUL : ' ';
    if (!Last_Is (attribute, wrong)) return 1;
    Syntax_Note (run, attribute, "invalid padding char used in \"" SYNTAX_BYTES "\" (%s instead of %s)",
                 Syntax_Text_Length (attribute), Syntax_Text (attribute), wrong ? "SPACE" : "NULL",
                 wrong ? "NULL" : "SPACE");
    attribute->length--;
    return 0;
}

int32_t Syntax_Leading (const Attribute *attribute, int leading) {
    int32_t count = 0;
    if (leading == SYNTAX_NONE) return 0;
    while (count < attribute->length && attribute->data[count] == leading) count++;
    return count;
}

int32_t Syntax_Outside_Set (const Attribute *attribute, const char *set) {
    uint8_t allowed[256] = {};
    for (const char *character = set; *character; character++) allowed[static_cast<uint8_t> (*character)] = 1;
    int32_t count = 0;
    for (int32_t i = 0; i < attribute->length; i++) count += !allowed[attribute->data[i]];
    return count;
}

void Syntax_Set_Note (const Syntax_Run *run, const Attribute *attribute, int32_t count, const char *set) {
    Syntax_Note (run, attribute, SYNTAX_NUMBER " char in \"" SYNTAX_BYTES "\" not from set \"" SYNTAX_TEXT "\"", count,
                 Syntax_Text_Length (attribute), Syntax_Text (attribute), set);
}

void Syntax_Title_Note (const Syntax_Run *run, const Attribute *attribute) {
    int32_t count = 0;
    for (int32_t i = 0; i < attribute->length; i++) count += attribute->data[i] < 0x20 || attribute->data[i] > 0x7E;
    if (count) Syntax_Note (run, attribute, SYNTAX_NUMBER " Invalid character in data", count);
}

void Syntax_Length_Warning (const Syntax_Run *run, const Attribute *attribute) {
    Syntax_Warn (run, attribute, "Invalid data! Expecting %s but got " SYNTAX_NUMBER " bytes", run->rule->expecting,
                 attribute->length);
}

void Syntax_Too_Long (const Syntax_Run *run, const Attribute *attribute, const char *value, int32_t length,
                      int32_t max) {
    Syntax_Warn (run, attribute,
                 "String too long! (" SYNTAX_NUMBER "/vs/" SYNTAX_NUMBER " max) Truncated to \"" SYNTAX_BYTES
                 "\"(" SYNTAX_BYTES ")",
                 length, max, max, value, length - max, value + max);
}

// --- integers --------------------------------------------------------------

// The bytes of one integer without signs and blanks. From the second value on its backslash is the first of them, which
// leaves a later value one digit less: files rely on being judged so.
struct Collected {
    char    bytes[LOG_TEXT_SIZE]; // More than a message holds aren't kept.
    int32_t count;
};

static void Collect (Collected *collected, char byte) {
    if (collected->count < LOG_TEXT_SIZE) collected->bytes[collected->count] = byte;
    collected->count++;
}

static int Fits (const Syntax_Run *run, const Attribute *attribute, const Collected *collected) {
    if (collected->count < 10 || (collected->count == 10 && collected->bytes[0] <= '2')) return 1;
    int shown = collected->count < LOG_TEXT_SIZE ? collected->count : LOG_TEXT_SIZE;
    Syntax_Warn (run, attribute, "Value out of range (" SYNTAX_BYTES " \\vs\\ -2**31 to 2**31 - 1)", shown,
                 collected->bytes);
    return 0;
}

int Syntax_Integers_Fit (const Syntax_Run *run, const Attribute *attribute) {
    const char *text   = Syntax_Text (attribute);
    int32_t     length = Syntax_Text_Length (attribute);
    Collected   collected;
    collected.count = 0;
    for (int32_t i = 0; i < length; i++) {
        if (text[i] == '\\') {
            if (!Fits (run, attribute, &collected)) return 0;
            collected.count = 0;
        }
        if (text[i] != '-' && text[i] != ' ') Collect (&collected, text[i]);
    }
    return Fits (run, attribute, &collected);
}

// --- old forms -------------------------------------------------------------

// The number that count characters show; it ends at the first that is no digit.
static int Digits (const Attribute *attribute, int32_t start, int32_t count) {
    int number = 0;
    for (int32_t i = start; i < start + count; i++) {
        int digit = attribute->data[i] - '0';
        if (digit < 0 || digit > 9) break;
        number = number * 10 + digit;
    }
    return number;
}

static void Date_Text (char *suggestion, int year, int month, int day) {
    snprintf (suggestion, SYNTAX_DATE_SIZE, "%04d%02d%02d", year, month, day);
}

Syntax_Date Syntax_Date_Form (const Attribute *attribute, char suggestion[SYNTAX_DATE_SIZE]) {
    suggestion[0] = 0;
    if (attribute->length == 8) return DATE_CURRENT;
    if (attribute->length == 10 && !memcmp (attribute->data, "19", 2) && attribute->data[5] == '.') {
        // "19100.01.3": 1900 and the years since, which pushed the last digit out.
        Date_Text (suggestion, 1900 + Digits (attribute, 2, 3), Digits (attribute, 6, 2),
                   Digits (attribute, 9, 1) * 10);
        return DATE_Y2K;
    }
    if (attribute->length == 10) {
        Date_Text (suggestion, Digits (attribute, 0, 4), Digits (attribute, 5, 2), Digits (attribute, 8, 2));
        return DATE_OLD;
    }
    if (attribute->length == 6) {
        // The month counts from 0 in this form.
        int year = 1900 + Digits (attribute, 0, 2);
        if (year < 1960) year += 100;
        Date_Text (suggestion, year, Digits (attribute, 2, 2) + 1, Digits (attribute, 4, 2));
        return DATE_OLD;
    }
    return DATE_UNKNOWN;
}

int Syntax_Time_Is_Old (const Attribute *attribute) {
    return attribute->length >= 3 && (attribute->data[2] == ':' || attribute->data[2] == '.');
}

void Syntax_Old_Time (const Attribute *attribute, char *suggestion) {
    for (int32_t i = 0; i < attribute->length; i++)
        if (i != 2 && i != 5) *suggestion++ = static_cast<char> (attribute->data[i]);
    *suggestion = 0;
}
