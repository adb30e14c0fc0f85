#include "tests/hostile/kinds.h"

#include "attribute/attribute.h"
#include "tests/hostile/feed.h"
#include "tests/hostile/value_rules.h"

typedef std::vector<unsigned char> Bytes;

// --- lengths ---------------------------------------------------------------

static void Put (Bytes *bytes, const Expected_Element &element, uint32_t number) {
    for (int i = 0; i < element.length_size; i++) {
        int shift = 8 * (element.big ? element.length_size - 1 - i : i);
        (*bytes)[element.pos_data - static_cast<size_t> (element.length_size - i)] =
            static_cast<unsigned char> (number >> shift);
    }
}

static std::vector<uint32_t> Lies (const Expected_Element &element, size_t size) {
    uint32_t all = static_cast<uint32_t> (size);
    if (element.length_size == 2) return {0, 1, 7, all, all - 1, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF};
    return {0, 1, 7, all, all - 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
}

std::vector<Hostile_File> Lying_Lengths (Stream_Syntax syntax) {
    std::vector<Hostile_File> files;
    const Bytes               whole = Everything (syntax).bytes;
    for (const Expected_Element &element : Expect (whole).elements)
        for (uint32_t lie : Lies (element, whole.size ())) {
            files.push_back ({Text_Of (element) + " says " + std::to_string (lie), whole});
            Put (&files.back ().bytes, element, lie);
        }
    return files;
}

// --- items and delimiters --------------------------------------------------

Bytes Delimiter (Stream_Syntax syntax, uint16_t element, uint32_t length) {
    Stream stream = Stream_Begin (syntax);
    Stream_Add_Length (&stream, GROUP_DELIMITER, element, "", length, length == 8 ? "ABCDEFGH" : "");
    return stream.bytes;
}

static void Insert (Bytes *bytes, size_t place, const Bytes &more) {
    bytes->insert (bytes->begin () + static_cast<long> (place), more.begin (), more.end ());
}

static void Overwrite (Bytes *bytes, size_t place, const Bytes &more) {
    for (size_t i = 0; i < more.size () && place + i < bytes->size (); i++) (*bytes)[place + i] = more[i];
}

static std::string Name_Of (uint16_t delimiter, uint32_t length) {
    return std::to_string (delimiter) + " of " + std::to_string (length);
}

std::vector<Hostile_File> Delimiters_Before (Stream_Syntax syntax) {
    std::vector<Hostile_File> files;
    const Bytes               whole = Everything (syntax).bytes;
    for (const Expected_Element &element : Expect (whole).elements)
        for (uint16_t delimiter : DELIMITERS)
            for (uint32_t length : LENGTHS) {
                files.push_back ({Name_Of (delimiter, length) + " before " + Text_Of (element), whole});
                Insert (&files.back ().bytes, element.pos_tag, Delimiter (syntax, delimiter, length));
            }
    return files;
}

std::vector<Hostile_File> Delimiters_Over (Stream_Syntax syntax) {
    std::vector<Hostile_File> files;
    const Bytes               whole = Everything (syntax).bytes;
    for (size_t place = 128; place < whole.size (); place++)
        for (uint16_t delimiter : DELIMITERS)
            for (uint32_t length : LENGTHS) {
                files.push_back ({Name_Of (delimiter, length) + " over byte " + std::to_string (place), whole});
                Overwrite (&files.back ().bytes, place, Delimiter (syntax, delimiter, length));
            }
    return files;
}

std::vector<Hostile_File> Delimiters_First (Stream_Syntax syntax) {
    std::vector<Hostile_File> files;
    for (uint16_t delimiter : DELIMITERS)
        for (uint32_t length : LENGTHS) {
            Stream bare = Stream_Begin (syntax);
            bare.bytes  = Delimiter (syntax, delimiter, length);
            for (int i = 0; i < 20; i++) Stream_Add_Text (&bare, 0x0010, 0x0010, "PN", "Doe");
            files.push_back ({Name_Of (delimiter, length) + " first", Everything (syntax).bytes});
            Insert (&files.back ().bytes, 132, Delimiter (syntax, delimiter, length));
            files.push_back ({Name_Of (delimiter, length) + " first of all", bare.bytes});
        }
    return files;
}

// --- meta group ------------------------------------------------------------

Stream Meta_Sequence (Stream_Syntax syntax, bool defined_length) {
    Stream stream = Stream_Begin_File (syntax);
    stream.syntax = EXPLICIT_LITTLE;
    Stream_Open_Sequence (&stream, 0x0002, 0x0100, defined_length);
    stream.syntax = syntax;
    Stream_Open_Item (&stream, defined_length);
    stream.syntax = EXPLICIT_LITTLE;
    Stream_Add_Text (&stream, 0x0002, 0x0013, "SH", "INSIDE");
    stream.syntax = syntax;
    Stream_Close_Item (&stream);
    if (defined_length) stream.syntax = EXPLICIT_LITTLE; // The length is the sequence's own.
    Stream_Close_Sequence (&stream);
    stream.syntax = syntax;
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
    return stream;
}

static std::vector<Hostile_File> Meta_Sequences (Stream_Syntax syntax) {
    return {{"defined length", Meta_Sequence (syntax, true).bytes},
            {"undefined length", Meta_Sequence (syntax, false).bytes}};
}

// --- transfer syntaxes -----------------------------------------------------

void Add_Syntax (Stream *stream, const char *uid) {
    Stream_Syntax before = stream->syntax;
    stream->syntax       = EXPLICIT_LITTLE; // As the meta group always is.
    Stream_Add_Text (stream, 0x0002, 0x0010, "UI", uid);
    stream->syntax = before;
}

Stream Two_Syntaxes (const char *first, const char *second, Stream_Syntax syntax) {
    Stream stream = Stream_Begin_File (EXPLICIT_LITTLE, first);
    Add_Syntax (&stream, second);
    stream.syntax = syntax;
    Stream_Add_Text (&stream, 0x0010, 0x0010, "PN", "Doe");
    Stream_Add_Short (&stream, 0x0028, 0x0010, "US", 2);
    return stream;
}

static std::vector<Hostile_File> Syntaxes_Twice (Stream_Syntax syntax) {
    std::vector<Hostile_File> files;
    for (const char *first : {IMPLICIT_UID, BIG_UID, ""})
        for (const char *second : {IMPLICIT_UID, LITTLE_UID, BIG_UID, JPEG_UID, ""})
            files.push_back ({std::string (first) + " and " + second, Two_Syntaxes (first, second, syntax).bytes});
    return files;
}

// --- values ----------------------------------------------------------------

static std::vector<Hostile_File> Wrong_Values (Stream_Syntax syntax) {
    std::vector<Hostile_File> files;
    for (const Value_Rule &rule : RULES)
        for (size_t length : {size_t (3), rule.most + 1, size_t (65535)}) {
            Stream stream = Stream_Begin_File (syntax);
            Add_Value (&stream, rule, length);
            Stream_Add_Bytes (&stream, 0x7FE0, 0x0020, "OB", "behind");
            files.push_back ({std::string (rule.vr) + " of " + std::to_string (length), stream.bytes});
        }
    return files;
}

const std::vector<Hostile_Kind> HOSTILE_KINDS = {
    {"lengths that lie", Lying_Lengths},         {"delimiters before elements", Delimiters_Before},
    {"delimiters over bytes", Delimiters_Over},  {"delimiters first", Delimiters_First},
    {"sequences in group 0002", Meta_Sequences}, {"two transfer syntaxes", Syntaxes_Twice},
    {"values of wrong lengths", Wrong_Values},
};
