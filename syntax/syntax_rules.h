// What PS3.5 6.2 asks of the values of each VR, as one table: the check (syntax_check.h) and its correcting twin
// (cleanup.h) both follow it, so that they can't drift apart. Beside it, what both need: the run that they are part of,
// reports with their prefixes, and the multiplicity.
#pragma once

#include "attribute/attribute.h"
#include "attribute/settings.h"
#include "platform/window.h"

// --- the table -------------------------------------------------------------

enum Syntax_Form {
    SYNTAX_MULTIPLE,    // Text of values between backslashes, each of at most maximum bytes.
    SYNTAX_SINGLE,      // One text of at most maximum bytes.
    SYNTAX_TITLE,       // AE: as SYNTAX_MULTIPLE, but what isn't printable is only reported.
    SYNTAX_AGE,         // AS
    SYNTAX_DATE,        // DA
    SYNTAX_INTEGER,     // IS
    SYNTAX_TIME,        // TM
    SYNTAX_BINARY       // A multiple of unit bytes.
};

static const int SYNTAX_NONE = 255;     // No pad character.

struct Syntax_Rule {
    uint16_t    vr;
    Syntax_Form form;
    int         leading, trailing;      // Pad characters, or SYNTAX_NONE.
    const char *set;                    // Characters allowed, or none.
    int32_t     maximum;
    int         even;                   // What fills an odd length up, or SYNTAX_NONE.
    int         unit;                   // SYNTAX_BINARY: bytes.
    int         counted;                // SYNTAX_BINARY: 1 when the units are the values, 0 when all is one value.
    const char *expecting;              // What the message about a bad length names.
};

const Syntax_Rule *Syntax_Rule_Of (uint16_t vr);    // None for OB, SQ, UN and VRs that nothing is known about.

// --- a run -----------------------------------------------------------------

// What every building block gets beside the attribute.
struct Syntax_Run {
    Window             window;
    const Settings    *settings;
    const Syntax_Rule *rule;
    int32_t            room;            // Cleanup: bytes that the value's buffer is known to hold.
};

// Reports a finding: kind is the settings' warning or note kind, the format goes on behind the prefix with tag and VR.
void Syntax_Warn (const Syntax_Run *run, const Attribute *attribute, const char *format, ...)
    __attribute__ ((format (printf, 3, 4)));
void Syntax_Note (const Syntax_Run *run, const Attribute *attribute, const char *format, ...)
    __attribute__ ((format (printf, 3, 4)));

// A quoted parameter of a finding, emphasised; each takes one argument.
#define SYNTAX_TEXT   COLOUR_BLUE "%s" COLOUR_BLACK
#define SYNTAX_BYTES  COLOUR_BLUE "%.*s" COLOUR_BLACK
#define SYNTAX_NUMBER COLOUR_BLUE "%d" COLOUR_BLACK

// --- values that are right -------------------------------------------------

// Most values are: there is nothing to report or to correct but perhaps their number, which is what both passes would come
// to one rule after the other. 1 when that is so and the number was compared with the dictionary's; 0 when the value needs
// a closer look, also when traces are to tell of every step.
int Syntax_Glance (Window window, const Settings *settings, const Attribute *attribute);

// 1 when both passes have nothing to say and nothing to change, not even its byte order. Says nothing itself.
int Syntax_Is_Right (const Attribute *attribute);

// --- what check and cleanup share ------------------------------------------

// Compares the number of values with the dictionary's multiplicity: 1, or 0 after a warning.
int Syntax_Multiplicity (const Syntax_Run *run, const Attribute *attribute, int32_t count);

// The length of the value as text: its bytes up to the first NUL.
int32_t Syntax_Text_Length (const Attribute *attribute);
const char *Syntax_Text (const Attribute *attribute);               // The bytes; "" without data.

// Takes the pad characters of the rule's kind off the end and says which wrong one stands there: the byte is taken off
// too and 0 is returned, after a notice. 1: the start may be stripped.
int Syntax_Strip_End (const Syntax_Run *run, Attribute *attribute, int trailing);
int32_t Syntax_Leading (const Attribute *attribute, int leading);   // How many copies stand at the start.

int32_t Syntax_Outside_Set (const Attribute *attribute, const char *set);   // Bytes that are not in the set; NUL never is.
void    Syntax_Set_Note (const Syntax_Run *run, const Attribute *attribute, int32_t count, const char *set);
void    Syntax_Title_Note (const Syntax_Run *run, const Attribute *attribute);  // Bytes that are not printable, if any.
void    Syntax_Length_Warning (const Syntax_Run *run, const Attribute *attribute);  // "Expecting ... but got".

// Warns about one value longer than max: its length, its first max bytes and the rest.
void Syntax_Too_Long (const Syntax_Run *run, const Attribute *attribute, const char *value, int32_t length, int32_t max);

// 1 when every integer of the text fits into 32 bits, by the number of its digits; 0 after a warning about the first that
// doesn't.
int Syntax_Integers_Fit (const Syntax_Run *run, const Attribute *attribute);

// --- old forms -------------------------------------------------------------

enum Syntax_Date { DATE_CURRENT, DATE_OLD, DATE_Y2K, DATE_UNKNOWN };

static const int SYNTAX_DATE_SIZE = 32;

// How the date is written, by its length; for DATE_OLD and DATE_Y2K the date meant goes into suggestion.
Syntax_Date Syntax_Date_Form (const Attribute *attribute, char suggestion[SYNTAX_DATE_SIZE]);

int Syntax_Time_Is_Old (const Attribute *attribute);    // 1 for HH:MM:SS and HH.MM.SS.
static const int32_t SYNTAX_OLD_TIME_MAXIMUM = 16;
void Syntax_Old_Time (const Attribute *attribute, char *suggestion);    // Without its separators; length + 1 bytes.
