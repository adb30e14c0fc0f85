// Texts for error codes: what kind of code it is, its name, and what the system says about it.
#include "util/error_text.h"

#include <errno.h>
#include <stdint.h>
#include <string.h>

#include "platform/system.h"
#include "util/text.h"

static const size_t TEXT_SIZE = 2048;

// Bits 16 to 27 of a code.
static const char *Facility_Label (unsigned facility) {
    // clang-format off
    switch (facility) {
    case  1: return "(facility=RPC) ";
    case  2: return "(facility=Dispatch) ";
    case  3: return "(facility=Storage) ";
    case  4: return "(facility=ITF) ";
    case  7: return "(facility=Win32) ";
    case  8: return "(facility=Windows) ";
    case  9: return "(facility=SSPI) ";
    case 10: return "(facility=Control) ";
    case 11: return "(facility=CERT) ";
    case 12: return "(facility=Internet) ";
    default: return "";
    }
    // clang-format on
}

const char *Error_Text (unsigned code) {
    static char text[TEXT_SIZE];

    char   message[TEXT_SIZE];
    size_t used = 0;
    if (!code) code = System_Last_Error ();
    if (!System_Error_Message (code, message, sizeof message)) return "--- ? ---";
    const char *name = System_Error_Name (code & 0xFFFF);
    text[0]          = 0;
    Text_Append (text, sizeof text, &used, "%s%s %s", Facility_Label (code >> 16 & 0xFFF), name ? name : "", message);
    return text;
}

const char *C_Error_Text (int code) { return strerror (code ? code : errno); }
