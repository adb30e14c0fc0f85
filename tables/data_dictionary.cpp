// Parser and look-up of the data dictionary. All lines become one sorted array of entries, whose names stand one behind
// the other in one block; a group node says which stretch of the array is its own. Nothing moves after the build, since
// records keep references to their entries. Of the program's own lines, which are known to be right, the build reads only
// the tags: parsing all of them would take longer than comparing two small files, which need a few dozen.
//
// A line is read from both ends: the tag in front, VRs and VMs and the retired mark behind; the name is what is left.
#include "tables/data_dictionary.h"

#include <stdlib.h>
#include <string.h>

#include "attribute/attribute.h"
#include "util/memory.h"
#include "util/my_error_fct.h"

static const char *const MODULE = "data_dictionary";

static const int      TAG_END    = 11; // A line starts with "(gggg,eeee)", a blank,
static const int      NAME_START = 12; // and the name.
static const int      VM_SIZE    = 10; // Characters of a VM that are read.
static const uint16_t NO_LIMIT   = 0xFFFF;
static const int8_t   NOT_PARSED = INT8_MIN; // Pairs of an entry whose name is the whole line still.

// The groups that one group field of a line stands for: "0018" is one, "50xx" every group from 5000 to 50FF.
struct Group_Node {
    uint16_t group; // Masked.
    uint16_t mask;  // A nibble for each hexadecimal digit of the field.
    int      first; // Its entries, ascending by element.
    int      count;
};

Dictionary_Known Dictionary_Known_Tags[DICTIONARY_KNOWN_COUNT];

static struct {
    const Dictionary_Table *tables;
    int                     table_count;
    int                     lazy;    // 1: the program's own lines, parsed when they are looked up.
    int                     built;   // Entries + 1; 0: not built.
    Dictionary_Entry       *entries; // The three blocks are owned.
    Group_Node             *nodes;   // Ascending by group, the narrower mask first.
    char                   *names;
    int                     entry_count;
    int                     node_count;
    size_t                  names_used;
    uint16_t                seek_group; // The group last looked up,
    int                     seek_node;  // and the first node that isn't smaller.
} dictionary = {Dictionary_Tables, DICTIONARY_TABLE_COUNT, 1, 0, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0};

// --- one line --------------------------------------------------------------

struct Line {
    char text[DICTIONARY_LINE_SIZE + 1];
    int  length; // What was not yet taken from the end; NAME_START or more.
};

static int Copy_Line (Line *line, const char *source) {
    size_t length = strnlen (source, DICTIONARY_LINE_SIZE);
    memset (line->text, 0, sizeof line->text);
    memcpy (line->text, source, length);
    line->length = length > NAME_START ? static_cast<int> (length) : NAME_START;
    return line->text[0] == '(' && line->text[5] == ',' && line->text[TAG_END - 1] == ')';
}

static int Ends_With (const Line *line, const char *ending) {
    int size = static_cast<int> (strlen (ending));
    return line->length - size >= NAME_START && !memcmp (line->text + line->length - size, ending, size);
}

static void Cut (Line *line, int count) {
    line->length -= count;
    line->text[line->length] = 0;
}

static void Trim_End (Line *line) {
    while (Ends_With (line, " ")) Cut (line, 1);
}

static int Hex_Digit (char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// Four digits of a tag. What is no digit counts as 0 and leaves its nibble of the mask clear.
static uint16_t Parse_Field (const char *text, uint16_t *mask) {
    unsigned value = 0, digits = 0;
    for (int i = 0; i < 4; i++) {
        int digit = Hex_Digit (text[i]);
        value     = value << 4 | (digit < 0 ? 0u : static_cast<unsigned> (digit));
        digits    = digits << 4 | (digit < 0 ? 0u : 0xFu);
    }
    *mask = static_cast<uint16_t> (digits);
    return static_cast<uint16_t> (value);
}

static uint16_t Parse_Number (const char *text) {
    long number = strtol (text, nullptr, 10);
    return static_cast<uint16_t> (number < 0 ? 0 : number > NO_LIMIT ? NO_LIMIT : number);
}

// "3", "1-8", "1-n", "2-2n".
static Dictionary_Multiplicity Parse_VM (const char *text) {
    uint16_t    minimum = Parse_Number (text);
    const char *dash    = strchr (text, '-');
    if (!dash) return {minimum, minimum};
    return {minimum, strchr (dash, 'n') ? NO_LIMIT : Parse_Number (dash + 1)};
}

static int Word_Start (const Line *line) {
    int start = line->length;
    while (start > NAME_START && line->text[start - 1] != ' ') start--;
    return start;
}

// 1 for a last word such as "1-n" or "2-2n", and for any that ends in a digit.
static int Ends_In_VM (const Line *line) {
    const char *word = line->text + Word_Start (line);
    char        last = line->text[line->length - 1];
    if (line->length == NAME_START) return 0;
    if (last >= '0' && last <= '9') return 1;

    size_t count = strspn (word, "0123456789");
    if (!count || word[count] != '-') return 0;
    word += count + 1;
    word += strspn (word, "0123456789");
    return !strcmp (word, "n");
}

struct Pair {
    uint16_t                vr;
    Dictionary_Multiplicity vm;
};

// Takes the last word as VM and the two characters before it as VR. 0 when there are no two characters.
static int Take_Pair (Line *line, Pair *pair) {
    char vm[VM_SIZE + 1] = "";
    int  start           = Word_Start (line);
    int  size            = line->length - start;
    memcpy (vm, line->text + start, size < VM_SIZE ? size : VM_SIZE);
    Cut (line, size);
    Trim_End (line);
    if (line->length - NAME_START < 2) return 0;

    pair->vm = Parse_VM (vm);
    pair->vr = Code (line->text[line->length - 2], line->text[line->length - 1]);
    Cut (line, 2);
    Trim_End (line);
    return 1;
}

// Takes "(US 1)or(SS 1)". The number of pairs, last one first, or -1 for a pair too many or without its "(".
static int Take_Pairs (Line *line, Pair *pairs) {
    int count = 0;
    while (Ends_With (line, ")")) {
        if (count == DICTIONARY_VR_COUNT) return -1;
        Cut (line, 1);
        if (!Take_Pair (line, &pairs[count++])) return -1;
        if (!Ends_With (line, "(")) return -1;
        Cut (line, 1);
        if (Ends_With (line, ")or")) Cut (line, 2);
    }
    return count;
}

// Fills everything but the name, which line holds afterwards. 1, or 0 for a syntax error.
static int Parse_Line (Line *line, const char *source, Dictionary_Entry *entry, uint16_t *group_mask) {
    if (!Copy_Line (line, source)) return 0;
    *entry         = {};
    entry->group   = Parse_Field (line->text + 1, group_mask);
    entry->element = Parse_Field (line->text + 6, &entry->element_mask);
    entry->vr[0]   = VR_RT;
    entry->vm[0]   = {NO_LIMIT, NO_LIMIT};

    Trim_End (line);
    int retired = Ends_With (line, "RET");
    if (retired) {
        Cut (line, line->length - NAME_START > 3 ? 4 : 3);
        Trim_End (line);
    }

    Pair pairs[DICTIONARY_VR_COUNT] = {};
    int  count                      = Take_Pairs (line, pairs);
    if (count < 0) return 0;
    if (!count && Ends_In_VM (line)) count = Take_Pair (line, pairs);
    for (int i = 0; i < count; i++) {
        entry->vr[i] = pairs[count - 1 - i].vr;
        entry->vm[i] = pairs[count - 1 - i].vm;
    }
    entry->nb_vr = static_cast<int8_t> (retired ? -count : count);

    if (line->length - NAME_START > DICTIONARY_NAME_SIZE) Cut (line, line->length - NAME_START - DICTIONARY_NAME_SIZE);
    Trim_End (line);
    return 1;
}

// --- the whole -------------------------------------------------------------

// Where the first entry with this element or a greater one stands.
static int Entry_Place (const Group_Node *node, uint16_t element) {
    int first = node->first, count = node->count;
    while (count > 0) {
        int half = count / 2;
        if (dictionary.entries[first + half].element < element) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

static Dictionary_Entry *Entry_Find (const Group_Node *node, uint16_t element) {
    int place = Entry_Place (node, element);
    if (place == node->first + node->count || dictionary.entries[place].element != element) return nullptr;
    return &dictionary.entries[place];
}

static int Node_Follows (const Group_Node *node, uint16_t group, uint16_t mask) {
    return node->group != group ? node->group > group : node->mask < mask;
}

// The node of a group field, made when there is none. Sought from the end, since lines mostly stand in order.
static Group_Node *Node_Find_Or_Add (uint16_t group, uint16_t mask) {
    Group_Node *nodes = dictionary.nodes;
    int         place = dictionary.node_count;
    while (place > 0 && Node_Follows (&nodes[place - 1], group, mask)) place--;
    if (place > 0 && nodes[place - 1].group == group && nodes[place - 1].mask == mask) return &nodes[place - 1];

    memmove (&nodes[place + 1], &nodes[place], sizeof *nodes * (dictionary.node_count - place));
    nodes[place] = {group, mask, place ? nodes[place - 1].first + nodes[place - 1].count : 0, 0};
    dictionary.node_count++;
    return &nodes[place];
}

static const char *Name_Add (const Line *line) {
    char *name = dictionary.names + dictionary.names_used;
    int   size = line->length - NAME_START;
    memcpy (name, line->text + NAME_START, size);
    name[size] = 0;
    dictionary.names_used += size + 1;
    return name;
}

// Gives the entry a place, or none: the first line of a tag wins.
static Dictionary_Entry *Entry_Add (Window window, const Dictionary_Entry *entry, uint16_t group_mask) {
    Group_Node *node = Node_Find_Or_Add (entry->group, group_mask);
    if (Entry_Find (node, entry->element)) {
        Log_Message (window, LOG_WARNING,
                     "    " EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK
                     " duplicate tag (%04x,%04x) in definition file",
                     entry->group, entry->element);
        return nullptr;
    }
    int               place = Entry_Place (node, entry->element);
    Dictionary_Entry *at    = &dictionary.entries[place];
    memmove (at + 1, at, sizeof *at * (dictionary.entry_count - place));
    *at = *entry;
    dictionary.entry_count++;
    node->count++;
    for (Group_Node *other = node + 1; other < dictionary.nodes + dictionary.node_count; other++) other->first++;
    return at;
}

static void Table_Add_Unparsed (Window window, const Dictionary_Table *table) {
    for (int i = 0; i < table->count; i++) {
        Dictionary_Entry entry = {};
        uint16_t         group_mask;
        entry.group   = Parse_Field (table->lines[i] + 1, &group_mask);
        entry.element = Parse_Field (table->lines[i] + 6, &entry.element_mask);
        entry.nb_vr   = NOT_PARSED;
        entry.name    = table->lines[i];
        Entry_Add (window, &entry, group_mask);
    }
}

// The rest of what its line says.
static void Entry_Complete (Dictionary_Entry *entry) {
    Line             line;
    Dictionary_Entry parsed;
    uint16_t         group_mask;
    if (entry->nb_vr != NOT_PARSED || !Parse_Line (&line, entry->name, &parsed, &group_mask)) return;
    parsed.name = Name_Add (&line);
    *entry      = parsed;
}

static void Table_Add (Window window, const Dictionary_Table *table) {
    for (int i = 0; i < table->count; i++) {
        Line             line;
        Dictionary_Entry entry;
        uint16_t         group_mask;
        if (!Parse_Line (&line, table->lines[i], &entry, &group_mask)) {
            Log_Message (window, LOG_WARNING,
                         "    " EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK
                         " Syntax error in definition file for %12.12s",
                         table->lines[i]);
            return;
        }
        Dictionary_Entry *added = Entry_Add (window, &entry, group_mask);
        if (added) added->name = Name_Add (&line);
    }
}

static void Release (void) {
    Memory_Free (dictionary.entries);
    Memory_Free (dictionary.nodes);
    Memory_Free (dictionary.names);
    dictionary.entries     = nullptr;
    dictionary.nodes       = nullptr;
    dictionary.names       = nullptr;
    dictionary.entry_count = 0;
    dictionary.node_count  = 0;
    dictionary.names_used  = 0;
    dictionary.built       = 0;
    dictionary.seek_group  = 0;
    dictionary.seek_node   = 0;
    memset (Dictionary_Known_Tags, 0, sizeof Dictionary_Known_Tags);
}

// Makes room for all lines, as if every one began a group of its own. 1, or 0 after the memory message.
static int Allocate (Window window) {
    size_t lines = 0, bytes = 0;
    for (int t = 0; t < dictionary.table_count; t++) {
        const Dictionary_Table *table = &dictionary.tables[t];
        for (int i = 0; i < table->count; i++) {
            size_t length = strnlen (table->lines[i], DICTIONARY_LINE_SIZE);
            bytes += (length > NAME_START ? length - NAME_START : 0) + 1;
            lines++;
        }
    }
    void *entries =
        Memory_Malloc (window, HERE ("entries", lines, sizeof (Dictionary_Entry)), lines * sizeof (Dictionary_Entry));
    dictionary.entries = static_cast<Dictionary_Entry *> (entries);
    if (!entries) return 0;
    void *nodes      = Memory_Malloc (window, HERE ("nodes", lines, sizeof (Group_Node)), lines * sizeof (Group_Node));
    dictionary.nodes = static_cast<Group_Node *> (nodes);
    if (!nodes) return 0;
    dictionary.names = static_cast<char *> (Memory_Malloc (window, HERE ("names", bytes, 1), bytes));
    return dictionary.names != nullptr;
}

int Dictionary_Build (Window window) {
    if (dictionary.built) return dictionary.built - 1;
    if (!Allocate (window)) {
        Release ();
        return 0;
    }
    for (int t = 0; t < dictionary.table_count; t++) {
        if (dictionary.lazy) Table_Add_Unparsed (window, &dictionary.tables[t]);
        else Table_Add (window, &dictionary.tables[t]);
    }
    dictionary.built = dictionary.entry_count + 1;
    return dictionary.entry_count;
}

static int Is_Smaller (const Group_Node *node, uint16_t group) { return node->group < (group & node->mask); }

// The walk over the nodes stops at the first one that is greater, also when its mask hides digits in front; a node that
// lacks the element leaves it to the next one, since another mask may cover the same group. Tags come group by group, so
// the way to a group is gone once.
static const Dictionary_Entry *Find (uint16_t group, uint16_t element) {
    const Group_Node *end = dictionary.nodes + dictionary.node_count;
    if (group != dictionary.seek_group) {
        const Group_Node *node = dictionary.nodes;
        while (node < end && Is_Smaller (node, group)) node++;
        dictionary.seek_group = group;
        dictionary.seek_node  = static_cast<int> (node - dictionary.nodes);
    }
    for (const Group_Node *node = dictionary.nodes + dictionary.seek_node; node < end; node++) {
        if (node->group > (group & node->mask)) break;
        if (Is_Smaller (node, group)) continue;
        Dictionary_Entry *entry = Entry_Find (node, element);
        if (!entry) continue;
        Entry_Complete (entry);
        return entry;
    }
    return nullptr;
}

const Dictionary_Entry *Dictionary_Seek (Window window, uint16_t group, uint16_t element) {
    Dictionary_Build (window);
    const Dictionary_Entry *entry = Find (group, element);
    if (dictionary.built) *Dictionary_Known_Place (group, element) = {Dictionary_Known_Key (group, element), entry};
    return entry;
}

void Dictionary_Reset (const Dictionary_Table *tables, int count) {
    Release ();
    dictionary.tables      = tables ? tables : Dictionary_Tables;
    dictionary.table_count = tables ? count : DICTIONARY_TABLE_COUNT;
    dictionary.lazy        = !tables;
}
