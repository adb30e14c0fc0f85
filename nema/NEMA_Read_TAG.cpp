// One header at a time, read as the stream's mode says, in the order in which PS3.5 7.1 puts its fields. Between header
// and result stand the repairs: each knows one encoder fault by its bytes, says so and returns what was meant. Nothing
// here keeps state or memory. A look at the value's first bytes reads ahead and moves back; when there are fewer of them
// than it wants it stays silent, since reading the value will say so.
#include "nema/NEMA_Read_TAG.h"

#include "util/error_text.h"
#include "util/my_error_fct.h"

static const char *const MODULE = "NEMA_Read_TAG";

static const uint8_t  MODE_NUMBER_BITS    = 0x0F; // All but the vendor field.
static const uint8_t  MODE_DELIMITER_BITS = 0xC1; // What stays of a mode for group FFFE: these tags never have a VR.
static const uint16_t GROUP_SIEMENS       = 0x0009;
static const uint16_t ELEMENT_PIXEL       = 0x0010;
static const int64_t  MARK_END            = INT32_MAX - 1; // A length holds a mark of two bytes in front of it.
static const int      PLAIN_SIZE          = 12;            // Of the longest header (PS3.5 7.1.2).

struct Header {
    Window       window;
    NEMA_Source *source;
    uint8_t      mode;
    int64_t      position; // Of the first byte; -1 when it isn't known.
    uint16_t     group;
    uint16_t     element;
    uint16_t     vr;
    int32_t      length;
    int64_t      limit; // 0: unknown.
};

enum Header_Step { STEP_FAILED, STEP_DONE, STEP_NEXT }; // The first two are what the reader returns.

#define WARNING_HEAD "    " EMPHASIS COLOUR_YELLOW "WARNING:" COLOUR_BLACK " "

static int Warning_Kind (const Header *header) {
    return header->source->settings ? header->source->settings->kind_warning : 0;
}

static int Is_Tag (const Header *header, uint16_t group, uint16_t element) {
    return header->group == group && header->element == element;
}

static int Is_Upper (uint8_t byte) { return byte >= 'A' && byte <= 'Z'; }

static Header_Step Fail (const Header *header, const char *what) {
    Log_Message (header->window, LOG_TRACE1, "NEMA_Get_Data_Element() --> failed to read %s", what);
    return STEP_FAILED;
}

static Header_Step Fail_Size (const Header *header) {
    Log_Message (header->window, LOG_TRACE1, "NEMA_Get_Data_Element() --> failed to read size (VR:%c%c)",
                 Code_First (header->vr, '0'), Code_Second (header->vr, '0'));
    return STEP_FAILED;
}

// --- position --------------------------------------------------------------

// -1, after a trace, when the source can't say.
static int64_t Position (const Header *header) {
    int64_t position = NEMA_Tell (header->source);
    if (position >= 0) return position;

    unsigned error = System_Last_Error ();
    Log_Message (header->window, LOG_TRACE1, "file:%s line:%d", MODULE, __LINE__);
    Log_Message (header->window, LOG_TRACE1, "using lseek()");
    System_Last_Error_Set (error);
    Log_Message (header->window, LOG_TRACE1, "%s", Error_Text (0));
    Log_Message (header->window, LOG_TRACE1, "file: (%s)", NEMA_Source_Name (header->source));
    return -1;
}

#define MOVE(header, position) NEMA_Move ((header)->window, (header)->source, (position), MODULE, __LINE__)

// --- tag -------------------------------------------------------------------

// Group 2 is little endian, and explicit by the standard (PS3.10 7.1), but there are writers that leave its VRs out. Two
// upper-case letters behind the tag tell: as the low half of a length they would make more than 16,000 bytes.
static Header_Step Read_Meta_Mode (Header *header) {
    int64_t  behind = header->position < 0 ? Position (header) : header->position + 2;
    uint8_t  first = 0, second = 0;
    uint8_t *mode = &header->mode;

    *mode = static_cast<uint8_t> (*mode & ~MODE_NUMBER_BITS);
    if (!MOVE (header, behind < 0 ? -1 : behind + 2)) return STEP_FAILED;
    if (!NEMA_Read_Bytes (header->window, header->source, *mode, 1, &first)) return Fail (header, "VR byte[0]");
    if (!NEMA_Read_Bytes (header->window, header->source, *mode, 1, &second)) return Fail (header, "VR byte[1]");
    if (!MOVE (header, behind)) return STEP_FAILED;
    if (Is_Upper (first) && Is_Upper (second)) *mode = *mode | MODE_EXPLICIT;
    return STEP_NEXT;
}

static Header_Step Read_Tag (Header *header) {
    uint8_t bytes[2];
    if (!NEMA_Read_Bytes (header->window, header->source, header->mode, sizeof bytes, bytes))
        return Fail (header, "group");
    header->group = Swap_Short (0, bytes);
    if (header->group == GROUP_META) {
        if (Read_Meta_Mode (header) == STEP_FAILED) return STEP_FAILED;
    } else {
        header->group = Swap_Short (header->mode, bytes);
    }
    if (!NEMA_Read_Short (header->window, header->source, header->mode, &header->element))
        return Fail (header, "element");
    Log_Message (header->window, LOG_TRACE5, "--> reading (%04x,%04x)", header->group, header->element);
    return STEP_NEXT;
}

// Philips: an item tag whose bytes are 3F 3F 3F 00 would be an element of an odd private group.
static void Repair_Item_Tag (Header *header) {
    if (!Is_Tag (header, 0x3F3F, 0x003F)) return;
    header->group   = GROUP_DELIMITER;
    header->element = ELEMENT_ITEM;
    Log_Message (header->window, Warning_Kind (header),
                 WARNING_HEAD "Fix Philips bug: tag (3F3F,003F) replaced by (FFFE,E000)");
}

// --- VR and length ---------------------------------------------------------

static int Read_Length (Header *header) {
    uint32_t length = 0;
    if (!NEMA_Read_Long (header->window, header->source, header->mode, &length)) return 0;
    header->length = static_cast<int32_t> (length);
    return 1;
}

static int Read_Short_Length (Header *header) {
    uint16_t length = 0;
    if (!NEMA_Read_Short (header->window, header->source, header->mode, &length)) return 0;
    header->length = length;
    return 1;
}

// A delimiter says all by its tag, so one whose length is cut off by the end of the file still counts.
static Header_Step Read_Implicit (Header *header) {
    if (Read_Length (header)) return STEP_NEXT;
    Fail_Size (header);
    return Is_Tag (header, GROUP_DELIMITER, ELEMENT_ITEM_END) || Is_Tag (header, GROUP_DELIMITER, ELEMENT_SEQUENCE_END)
               ? STEP_DONE
               : STEP_FAILED;
}

// Siemens: an SQ whose length stands in the two reserved bytes, with no 32-bit length behind them. Read plainly the
// length would be made of the first bytes of what follows; the caller gets an unknown element to skip instead.
static Header_Step Repair_Reserved (Header *header, uint16_t reserved) {
    if (!reserved || !Is_Tag (header, 0x0040, 0x0275)) return STEP_NEXT;
    Log_Message (header->window, Warning_Kind (header), WARNING_HEAD "Fix Siemens bug: tag (0040,0275) is skipped");
    header->group   = 0xFFFF;
    header->element = 0xFFFF;
    header->vr      = VR_OB;
    header->length  = reserved;
    return STEP_DONE;
}

static int Has_Reserved_Bytes (uint16_t vr) {
    switch (vr) {
    case VR_OB:
    case VR_OW:
    case VR_OX:
    case VR_SQ:
    case VR_UN:
    case VR_UT: return 1;
    default: return 0;
    }
}

static Header_Step Read_Explicit (Header *header) {
    uint8_t vr[2];
    if (!NEMA_Read_Bytes (header->window, header->source, header->mode, sizeof vr, vr)) return STEP_FAILED;
    if (!Is_Upper (vr[0]) || !Is_Upper (vr[1])) return STEP_FAILED;
    header->vr = static_cast<uint16_t> (vr[0] * 256 + vr[1]);
    if (!Has_Reserved_Bytes (header->vr)) return Read_Short_Length (header) ? STEP_NEXT : Fail_Size (header);

    uint16_t reserved = 0;
    if (!NEMA_Read_Short (header->window, header->source, header->mode, &reserved)) return Fail_Size (header);
    if (header->vr != VR_OX && Repair_Reserved (header, reserved) == STEP_DONE) return STEP_DONE;
    return Read_Length (header) ? STEP_NEXT : Fail_Size (header);
}

// --- checks of the length --------------------------------------------------

static Header_Step Check_Limit (const Header *header) {
    if (header->limit <= 0 || header->length < header->limit) return STEP_NEXT;
    Log_Message (header->window, LOG_TRACE1, "NEMA_Get_Data_Element() --> failed size to big (=%08X)",
                 static_cast<unsigned> (header->length));
    return STEP_FAILED;
}

// GE: a length of 13 in front of a value of 10 bytes.
static Header_Step Repair_GE_13_10 (Header *header) {
    if (header->length != 13 || (header->mode & MODE_VENDOR) != MODE_GE) return STEP_NEXT;
    Log_Message (header->window, Warning_Kind (header),
                 WARNING_HEAD "Fix GE bug: lenght from 13 to 10 in tag (%04x,%04x)", header->group, header->element);
    header->length = 10;
    return STEP_DONE;
}

// Values have an even length (PS3.5 7.1.1); one that hasn't is read as it is.
static void Report_Odd (const Header *header) {
    if (!(header->length & 1) || header->length == LENGTH_UNDEFINED) return;
    int kind = Warning_Kind (header);
    Log_Message (header->window, kind, WARNING_HEAD "tag lenght is odd in tag (%04x,%04x)", header->group,
                 header->element);
    if ((header->mode & MODE_VENDOR) != MODE_GE) return;
    Log_Message (header->window, kind,
                 COLOUR_YELLOW "Oups! We assumed this was a GE 13/10 bug, it no longer appears that way");
    Log_Message (header->window, kind, COLOUR_YELLOW "Please contact Kestrelbay for further assistance.");
}

// GE's ROGAN library: an item that claims 8 bytes more than the file has. The mode of a delimiter has lost its vendor
// field by now, so this repair is never taken; files that need it must go on reading as they do.
static void Repair_GE_Rogan (Header *header) {
    if ((header->mode & MODE_VENDOR) != MODE_GE_ROGAN || !Is_Tag (header, GROUP_DELIMITER, ELEMENT_ITEM)) return;
    if (header->length < 1 || header->limit <= 0) return;
    if (Position (header) + header->length <= header->limit) return;
    Log_Message (header->window, Warning_Kind (header),
                 WARNING_HEAD "Fix GE ROGAN LIB bug: lenght from 0x%08x to 0x%08x in tag (%04x,%04x)",
                 static_cast<unsigned> (header->length), static_cast<unsigned> (header->length) - 8, header->group,
                 header->element);
    header->length -= 8;
}

// --- looks at the value ----------------------------------------------------

// The value's first four bytes, without consuming them: STEP_DONE when all are there, STEP_NEXT when not (also when the
// position isn't known, to which to return), STEP_FAILED when there was no way back. start is the value's position.
static Header_Step Look (Header *header, uint8_t bytes[4], int64_t *start) {
    *start = Position (header);
    if (*start < 0) return STEP_NEXT;
    int64_t obtained = NEMA_Read_Some (header->source, bytes, 4);
    if (!MOVE (header, *start)) return STEP_FAILED;
    return obtained == 4 ? STEP_DONE : STEP_NEXT;
}

// Siemens: in private group 9 a blank text of four bytes that claims to be a UL of six, one number and a half.
static Header_Step Repair_Siemens_6_4 (Header *header) {
    uint8_t bytes[4];
    int64_t start;
    if (header->group != GROUP_SIEMENS || header->vr != VR_UL || header->length != 6) return STEP_NEXT;
    Header_Step seen = Look (header, bytes, &start);
    if (seen != STEP_DONE) return seen;
    for (uint8_t byte : bytes)
        if (byte != ' ') return STEP_NEXT;
    Log_Message (header->window, Warning_Kind (header),
                 WARNING_HEAD "Fix Siemens bug: lenght changed from 6 to 4 in tag (%04x,%04x)", header->group,
                 header->element);
    header->length = 4;
    header->vr     = VR_CS;
    return STEP_DONE;
}

// Offset of the two bytes from here, at even offsets only, or -1 when they don't come before limit or the end, or so late
// that a length can't reach behind them.
static int64_t Find_Mark (NEMA_Source *source, const uint8_t mark[2], int64_t limit) {
    uint8_t chunk[4096];
    int64_t end = limit > 0 && limit < MARK_END ? limit : MARK_END;
    for (int64_t count = 0;;) {
        int64_t obtained = NEMA_Read_Some (source, chunk, sizeof chunk);
        for (int64_t i = 0; i + 1 < obtained; i += 2, count += 2) {
            if (count >= end) return -1;
            if (chunk[i] == mark[0] && chunk[i + 1] == mark[1]) return count;
        }
        if (obtained < static_cast<int64_t> (sizeof chunk)) return -1;
    }
}

// Siemens: a JPEG stream written straight into pixel data of undefined length, without the items of PS3.5 A.4. Its end
// mark gives the length. Seen with the bytes in order, and with the two of each 16-bit unit in a reversed stream.
static Header_Step Repair_Siemens_Pixels (Header *header) {
    static const struct {
        uint8_t start[4];
        uint8_t end[2];
    } jpeg[] = {
        {{0xFF, 0xD8, 0xFF, 0xE0}, {0xFF, 0xD9}},
        {{0xE0, 0xFF, 0xD8, 0xFF}, {0xD9, 0xFF}},
    };

    uint8_t        bytes[4];
    int64_t        start;
    const uint8_t *mark = nullptr;
    if (!Is_Tag (header, GROUP_PIXEL, ELEMENT_PIXEL) || header->length != LENGTH_UNDEFINED) return STEP_NEXT;
    Header_Step seen = Look (header, bytes, &start);
    if (seen != STEP_DONE) return seen;
    for (const auto &form : jpeg)
        if (Swap_Long (0, bytes) == Swap_Long (0, form.start)) mark = form.end;
    if (!mark) return STEP_NEXT;

    int64_t offset = Find_Mark (header->source, mark, header->limit);
    if (!MOVE (header, start)) return STEP_FAILED;
    if (offset < 0) return STEP_FAILED;
    header->length = static_cast<int32_t> (offset + 2);
    Log_Message (header->window, Warning_Kind (header),
                 WARNING_HEAD "Fix Siemens bug: lenght changed from -1 to %d in tag (%04x,%04x)", header->length,
                 header->group, header->element);
    return STEP_NEXT;
}

// --- the element -----------------------------------------------------------

// In this order: a length beyond the file is refused before any repair looks at it.
static Header_Step Check_Length (Header *header) {
    Header_Step step = Check_Limit (header);
    if (step == STEP_NEXT) step = Repair_GE_13_10 (header);
    if (step != STEP_NEXT) return step;

    Report_Odd (header);
    if (Is_Tag (header, 0xFEFF, 0x00E0)) return STEP_FAILED; // An item tag, read in the wrong byte order.
    Repair_GE_Rogan (header);
    step = Repair_Siemens_6_4 (header);
    if (step == STEP_NEXT) step = Repair_Siemens_Pixels (header);
    if (step != STEP_NEXT) return step;
    return header->length < LENGTH_UNDEFINED ? STEP_FAILED : STEP_NEXT;
}

static Header_Step Read_Header (Header *header) {
    Log_Message (header->window, LOG_TRACE4, "in NEMA_Get_Data_Element(mode:%04X)", header->mode);
    header->position = Position (header);
    if (Read_Tag (header) == STEP_FAILED) return STEP_FAILED;
    Repair_Item_Tag (header);
    if (header->group == GROUP_DELIMITER) header->mode &= MODE_DELIMITER_BITS;

    Header_Step step = header->mode & MODE_EXPLICIT ? Read_Explicit (header) : Read_Implicit (header);
    if (step == STEP_NEXT) step = Check_Length (header);
    if (step != STEP_NEXT) return step;

    Log_Message (header->window, LOG_TRACE4, "[%06X] --> (%04x,%04x) VR:%c%c lenght:%08X (%d)",
                 static_cast<unsigned> (header->position), header->group, header->element, Code_First (header->vr, '0'),
                 Code_Second (header->vr, '0'), static_cast<unsigned> (header->length), header->length);
    return STEP_DONE;
}

// --- the plain element -----------------------------------------------------

static uint16_t Short_At (const uint8_t *bytes) { return static_cast<uint16_t> (bytes[0] | bytes[1] << 8); }

static int32_t Long_At (const uint8_t *bytes) {
    return static_cast<int32_t> (Short_At (bytes) | static_cast<uint32_t> (Short_At (bytes + 2)) << 16);
}

// The fields of a header that is taken from the buffer.
struct Plain {
    uint16_t group;
    uint16_t element;
    uint16_t vr;
    int32_t  length;
};

// Bytes of a header of that tag and of the bytes in front of its length, which tell by the VR how long that is.
static inline int Plain_Fields (Plain *plain, uint8_t mode, const uint8_t *bytes) {
    if (plain->group == GROUP_DELIMITER || !(mode & MODE_EXPLICIT)) {
        plain->length = Long_At (bytes + 4);
        return 8;
    }
    if (!Is_Upper (bytes[4]) || !Is_Upper (bytes[5])) return 0;
    plain->vr = static_cast<uint16_t> (bytes[4] * 256 + bytes[5]);
    if (!Has_Reserved_Bytes (plain->vr)) {
        plain->length = Short_At (bytes + 6);
        return 8;
    }
    plain->length = Long_At (bytes + 8);
    return Short_At (bytes + 6) ? 0 : PLAIN_SIZE;
}

// Odd, all of them: of the tags that a repair is looking for only the group is asked.
static int Is_Repaired_Group (uint16_t group) { return group == GROUP_SIEMENS || group == 0x3F3F || group == 0xFEFF; }

// 1 when no repair, check or look at the value has anything to do with it.
static inline int Is_Plain (const Plain *plain, int64_t limit) {
    if ((plain->group & 1) && Is_Repaired_Group (plain->group)) return 0;
    if (plain->length == LENGTH_UNDEFINED) return plain->group != GROUP_PIXEL;
    if (plain->length & (INT32_MIN | 1)) return 0;
    return limit <= 0 || plain->length < limit;
}

// Nearly all elements are little endian, have nothing to repair, and stand in the source's buffer: such a header is taken
// from there at once. 1, or 0 when it has to be read field by field; then nothing has happened. Silent, so not for traces.
static inline int Read_Plain (NEMA_Source *source, uint8_t mode, int64_t limit, Plain *plain) {
    if (mode & (MODE_BIG_ENDIAN | MODE_SWAB) || Log_Is_Read (LOG_TRACE4)) return 0;
    const uint8_t *bytes = NEMA_View (source, PLAIN_SIZE);
    if (!bytes) return 0;
    *plain   = {Short_At (bytes), Short_At (bytes + 2), 0, 0};
    int size = plain->group == GROUP_META ? 0 : Plain_Fields (plain, mode, bytes);
    if (!size || !Is_Plain (plain, limit)) return 0;
    NEMA_Advance (source, size);
    return 1;
}

int NEMA_Get_Data_Element (Window window, NEMA_Source *source, uint8_t mode, uint16_t *group, uint16_t *element,
                           uint16_t *vr, int32_t *length, int32_t limit) {
    Plain plain;
    if (Read_Plain (source, mode, limit, &plain)) {
        *group   = plain.group;
        *element = plain.element;
        *vr      = plain.vr;
        *length  = plain.length;
        return 1;
    }
    Header header = {window, source, mode, 0, 0, 0, 0, 0, limit};
    if (Read_Header (&header) == STEP_FAILED) return 0;
    *group   = header.group;
    *element = header.element;
    *vr      = header.vr;
    *length  = header.length;
    return 1;
}
