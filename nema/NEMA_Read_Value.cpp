// The decoders. A result lives in the slot of its decoder's ring and is overwritten by the call that comes round to the
// slot again. Arrays grow ahead by half of what they hold, so a value of nothing but backslashes costs no more than its
// length; a failure still states the one step that was asked for.
#include "nema/NEMA_Read_Value.h"

#include <float.h>
#include <math.h>
#include <string.h>

#include "attribute/value.h"
#include "util/error_text.h"
#include "util/mutex_access.h"
#include "util/my_error_fct.h"
#include "util/text.h"

static const char *const MODULE = "NEMA_Read_Value";

// --- rings -----------------------------------------------------------------

struct Text_Slot {
    char  **texts;
    int64_t capacity; // Entries of texts.
    char   *bytes;    // What all of them point into: the value, cut at its backslashes by zeros.
};

struct Integer_Slot {
    int32_t *numbers;
    int64_t  capacity;
};

struct Float_Slot {
    float  *numbers;
    int64_t capacity;
};

static Text_Slot    text_ring[VALUE_RING_SLOTS];
static Integer_Slot integer_ring[VALUE_RING_SLOTS];
static Float_Slot   float_ring[VALUE_RING_SLOTS];
static int          text_position, integer_position, float_position;

static int Ring_Advance (int *position) {
    Mutex_Access_Start ();
    *position = (*position + 1) % VALUE_RING_SLOTS;
    int slot  = *position;
    Mutex_Access_Stop ();
    return slot;
}

// Makes room for at least entries entries. 1, or 0 after the realloc message with the dimensions of site.
static int Grow (Window window, Memory_Site site, void **array, int64_t *capacity, int64_t entries, size_t size) {
    if (*array && entries <= *capacity) return 1;
    int64_t ahead = *capacity + *capacity / 2;
    if (ahead < entries) ahead = entries;
    void *larger = Memory_Realloc (window, site, *array, static_cast<size_t> (ahead) * size);
    if (!larger) return 0;
    *array    = larger;
    *capacity = ahead;
    return 1;
}

static int Grow_Texts (Window window, Text_Slot *slot, int64_t entries) {
    void *array = slot->texts;
    int   grown =
        Grow (window, HERE ("V_Str[cc]", entries, sizeof (char *)), &array, &slot->capacity, entries, sizeof (char *));
    slot->texts = static_cast<char **> (array);
    return grown;
}

static int Grow_Integers (Window window, Integer_Slot *slot, int64_t entries) {
    void *array   = slot->numbers;
    int   grown   = Grow (window, HERE ("V_Int[cc]", entries, sizeof (int32_t)), &array, &slot->capacity, entries,
                          sizeof (int32_t));
    slot->numbers = static_cast<int32_t *> (array);
    return grown;
}

static int Grow_Floats (Window window, Float_Slot *slot, int64_t entries) {
    void *array = slot->numbers;
    int   grown =
        Grow (window, HERE ("V_Float[cc]", entries, sizeof (float)), &array, &slot->capacity, entries, sizeof (float));
    slot->numbers = static_cast<float *> (array);
    return grown;
}

void NEMA_Value_Rings_Free (void) {
    for (int i = 0; i < VALUE_RING_SLOTS; i++) {
        Memory_Free (text_ring[i].texts);
        Memory_Free (text_ring[i].bytes);
        Memory_Free (integer_ring[i].numbers);
        Memory_Free (float_ring[i].numbers);
        text_ring[i]    = {};
        integer_ring[i] = {};
        float_ring[i]   = {};
    }
    text_position = integer_position = float_position = 0;
}

// --- loading on demand -----------------------------------------------------

static struct {
    int            kind; // 0: none.
    const char    *name;
    const uint8_t *base;
    uint32_t       size;
} registered;

void NEMA_Source_Register (int kind, const char *name, const uint8_t *base, uint32_t size) {
    registered = {kind, name, base, size};
}

static File *Open (Window window) {
    File *file = File_Open (registered.name);
    if (file) return file;

    unsigned error = System_Last_Error ();
    Log_Message (window, LOG_TRACE1, "file:%s line:%d", MODULE, __LINE__);
    Log_Message (window, LOG_WARNING, EMPHASIS COLOUR_RED "ERROR:" COLOUR_BLACK " Unable to open file");
    System_Last_Error_Set (error);
    Log_Message (window, LOG_WARNING, "%s", Error_Text (0));
    Log_Message (window, LOG_WARNING, "file: (%s)", registered.name);
    return nullptr;
}

static int Load_From (Window window, NEMA_Source *source, Attribute *attribute) {
    int32_t length = attribute->length;
    if (!NEMA_Move (window, source, attribute->pos_data, MODULE, __LINE__)) return 0;
    if (!NEMA_Check_Left (window, source, length)) return 0;
    if (!Value_New (window, HERE ("tag->data", length, 1), attribute, length)) return 0;
    if (NEMA_Read_Bytes (window, source, attribute->mode, static_cast<size_t> (length), attribute->data)) return 1;
    Value_Release (attribute);
    return 0;
}

static int Load (Window window, Attribute *attribute) {
    Log_Message (window, LOG_TRACE1, "Reading missing: %d bytes at %d", attribute->length,
                 static_cast<int> (attribute->pos_data));
    if (!registered.kind || (registered.kind == NEMA_FILE && !registered.name)) return 0;

    NEMA_Source source = {registered.kind, registered.name, nullptr, registered.base, registered.size, 0, nullptr};
    if (source.kind == NEMA_FILE && !(source.file = Open (window))) return 0;
    int loaded = Load_From (window, &source, attribute);
    File_Close (source.file);
    return loaded;
}

// --- common start ----------------------------------------------------------

// Counts from 0, loads what is missing and chooses the VR. 1 when there are bytes to decode.
static int Start (Window window, Attribute *attribute, uint16_t *vr) {
    attribute->vm = 0;
    if (!attribute->length) return 0;
    if (!attribute->data && attribute->length >= VALUE_LOAD_LENGTH && !Load (window, attribute)) return 0;
    if (!attribute->data || attribute->length < 0) return 0;
    if (!*vr) *vr = Attribute_VR (attribute);
    return 1;
}

static void Report_Bad_VR (Window window, const Attribute *attribute, uint16_t vr, const char *accepted, int line) {
    Log_Message (window, LOG_TRACE4, "File:%s, Line:%d", MODULE, line);
    Log_Message (window, LOG_TRACE4, "(%04x,%04x): bad VR value (%c%c) != %s)", attribute->group, attribute->element,
                 Code_First (vr, '0'), Code_Second (vr, '0'), accepted);
}

// --- pieces ----------------------------------------------------------------

// A terminated copy of a value, cut at its backslashes one by one. A zero byte inside a piece cuts nothing: it only ends
// the piece's text.
struct Pieces {
    char   *bytes;
    int64_t length; // Without the terminator.
    int64_t next;   // Start of the next piece; behind length when there is none.
};

static Pieces Pieces_Begin (char *bytes, const Attribute *attribute) {
    size_t length = static_cast<size_t> (attribute->length);
    memcpy (bytes, attribute->data, length);
    bytes[length] = 0;
    return {bytes, attribute->length, 0};
}

static char *Pieces_Next (Pieces *pieces) {
    if (pieces->next > pieces->length) return nullptr;
    char *piece  = pieces->bytes + pieces->next;
    void *found  = memchr (piece, '\\', static_cast<size_t> (pieces->length - pieces->next));
    char *end    = found ? static_cast<char *> (found) : pieces->bytes + pieces->length;
    *end         = 0;
    pieces->next = end - pieces->bytes + 1;
    return piece;
}

static size_t Terminated_Size (const Attribute *attribute) { return static_cast<size_t> (attribute->length) + 1; }

// --- texts -----------------------------------------------------------------

// The texts are followed by an entry that is none.
static int Add_Text (Window window, Text_Slot *slot, Attribute *attribute, char *text) {
    if (attribute->vm == INT32_MAX || !Grow_Texts (window, slot, static_cast<int64_t> (attribute->vm) + 2)) return 0;
    slot->texts[attribute->vm++] = text;
    slot->texts[attribute->vm]   = nullptr;
    return 1;
}

static int Resize_Bytes (Window window, Memory_Site site, Text_Slot *slot, size_t size) {
    void *bytes = Memory_Realloc (window, site, slot->bytes, size);
    if (bytes) slot->bytes = static_cast<char *> (bytes);
    return bytes != nullptr;
}

static char **Split_Texts (Window window, Text_Slot *slot, Attribute *attribute) {
    size_t size = Terminated_Size (attribute);
    if (!Resize_Bytes (window, HERE ("V_Str[cc][tag->vm]", size, 1), slot, size)) return nullptr;
    Pieces pieces = Pieces_Begin (slot->bytes, attribute);
    while (char *piece = Pieces_Next (&pieces))
        if (!Add_Text (window, slot, attribute, piece)) return nullptr;
    return slot->texts;
}

static char **Whole_Text (Window window, Text_Slot *slot, Attribute *attribute) {
    size_t size = Terminated_Size (attribute);
    if (!Resize_Bytes (window, HERE ("(V_Str[cc][tag->vm])", size, 1), slot, size)) return nullptr;
    Pieces whole = Pieces_Begin (slot->bytes, attribute);
    return Add_Text (window, slot, attribute, whole.bytes) ? slot->texts : nullptr;
}

char **V_Str (Window window, Attribute *attribute, uint16_t vr) {
    Text_Slot *slot = &text_ring[Ring_Advance (&text_position)];
    if (!Start (window, attribute, &vr)) return nullptr;
    switch (vr) {
    case VR_AE:
    case VR_CS:
    case VR_LO:
    case VR_SH:
    case VR_UI: return Split_Texts (window, slot, attribute);
    case VR_AS:
    case VR_LT:
    case VR_OB:
    case VR_ST:
    case VR_UN:
    case VR_UT: return Whole_Text (window, slot, attribute);
    default: Report_Bad_VR (window, attribute, vr, "AE,AS,CS,LO,LT,SH,ST,UI,UT", __LINE__); return nullptr;
    }
}

// --- numbers in texts ------------------------------------------------------

// Hands every piece to add, which returns 0 to stop. 1 when all were added.
template <typename Slot>
static int Split_Numbers (Window window, Slot *slot, Attribute *attribute, uint16_t vr,
                          int (*add) (Window window, Slot *slot, Attribute *attribute, uint16_t vr,
                                      const char *piece)) {
    size_t size  = Terminated_Size (attribute);
    char  *bytes = static_cast<char *> (Memory_Malloc (window, HERE ("buf", size, 1), size));
    if (!bytes) return 0;
    Pieces pieces = Pieces_Begin (bytes, attribute);
    int    added  = 1;
    while (char *piece = added ? Pieces_Next (&pieces) : nullptr) added = add (window, slot, attribute, vr, piece);
    Memory_Free (bytes);
    return added;
}

// --- integers --------------------------------------------------------------

static int32_t Signed_Long (uint8_t mode, const uint8_t *bytes) {
    return static_cast<int32_t> (Swap_Long (mode, bytes));
}

static int32_t Signed_Short (uint8_t mode, const uint8_t *bytes) {
    return static_cast<int16_t> (Swap_Short (mode, bytes));
}

static int32_t Unsigned_Short (uint8_t mode, const uint8_t *bytes) { return Swap_Short (mode, bytes); }

struct Integer_Form {
    uint16_t vr;
    int32_t  size;
    int32_t (*read) (uint8_t mode, const uint8_t *bytes);
};

// clang-format off
static const Integer_Form integer_forms[] = {
    {VR_SL, 4, Signed_Long},
    {VR_UL, 4, Signed_Long},
    {VR_AT, 4, Signed_Long},        // One number, not two of 16 bits.
    {VR_SS, 2, Signed_Short},
    {VR_US, 2, Unsigned_Short},
    {VR_UH, 2, Unsigned_Short},
    {VR_OW, 2, Signed_Short},       // Words above 0x7FFF come out negative, which is wanted.
};
// clang-format on

static int Add_Integer (Window window, Integer_Slot *slot, Attribute *attribute, uint16_t vr, const char *piece) {
    if (attribute->vm == INT32_MAX || !Grow_Integers (window, slot, static_cast<int64_t> (attribute->vm) + 1)) return 0;
    slot->numbers[attribute->vm++] = vr == VR_IS ? Text_To_Integer (piece) : Text_Truncate (Text_To_Double (piece));
    return 1;
}

static int32_t *Binary_Integers (Window window, Integer_Slot *slot, Attribute *attribute, const Integer_Form *form) {
    int32_t count = attribute->length / form->size;
    if (!Grow_Integers (window, slot, count)) return nullptr;
    const uint8_t *bytes = attribute->data;
    for (int32_t i = 0; i < count; i++, bytes += form->size) slot->numbers[i] = form->read (attribute->mode, bytes);
    attribute->vm = count;
    return slot->numbers;
}

// The dictionary's placeholder for "US or UL or something else": the length decides.
static uint16_t Resolve (uint16_t vr, int32_t length) {
    if (vr != VR_RT) return vr;
    return length == 2 ? VR_US : length == 4 ? VR_UL : VR_OB;
}

int32_t *V_Int (Window window, Attribute *attribute, uint16_t vr) {
    Integer_Slot *slot = &integer_ring[Ring_Advance (&integer_position)];
    if (!Start (window, attribute, &vr)) return nullptr;
    vr = Resolve (vr, attribute->length);
    if (vr == VR_DS || vr == VR_IS)
        return Split_Numbers (window, slot, attribute, vr, Add_Integer) ? slot->numbers : nullptr;
    for (const Integer_Form &form : integer_forms)
        if (form.vr == vr) return Binary_Integers (window, slot, attribute, &form);
    Report_Bad_VR (window, attribute, vr, "DS,IS,US,UH,UL,SS,SL", __LINE__);
    return nullptr;
}

// --- floating-point numbers ------------------------------------------------

// What doesn't fit becomes infinite; the language leaves such a conversion undefined.
static float Narrow (double number) {
    if (number > FLT_MAX) return INFINITY;
    if (number < -FLT_MAX) return -INFINITY;
    return static_cast<float> (number);
}

static int Add_Float (Window window, Float_Slot *slot, Attribute *attribute, float number) {
    if (attribute->vm == INT32_MAX || !Grow_Floats (window, slot, static_cast<int64_t> (attribute->vm) + 1)) return 0;
    slot->numbers[attribute->vm++] = number;
    return 1;
}

static int Add_Float_Text (Window window, Float_Slot *slot, Attribute *attribute, uint16_t vr, const char *piece) {
    float number = vr == VR_IS ? static_cast<float> (Text_To_Integer (piece)) : Narrow (Text_To_Double (piece));
    return Add_Float (window, slot, attribute, number);
}

static float *Binary_Floats (Window window, Float_Slot *slot, Attribute *attribute, int32_t size) {
    if (attribute->length % size) return nullptr;
    uint8_t mode = attribute->mode;
    for (int32_t i = 0; i < attribute->length; i += size) {
        const uint8_t *bytes  = attribute->data + i;
        float          number = size == 8 ? Narrow (Swap_Double (mode, bytes)) : Swap_Float (mode, bytes);
        if (!Add_Float (window, slot, attribute, number)) return nullptr;
    }
    return slot->numbers;
}

float *V_Float (Window window, Attribute *attribute, uint16_t vr) {
    Float_Slot *slot = &float_ring[Ring_Advance (&float_position)];
    if (!Start (window, attribute, &vr)) return nullptr;
    switch (vr) {
    case VR_FD: return Binary_Floats (window, slot, attribute, 8);
    case VR_FL: return Binary_Floats (window, slot, attribute, 4);
    case VR_IS:
    case VR_DS: return Split_Numbers (window, slot, attribute, vr, Add_Float_Text) ? slot->numbers : nullptr;
    default: Report_Bad_VR (window, attribute, vr, "IS,DS,FL,FD", __LINE__); return nullptr;
    }
}
