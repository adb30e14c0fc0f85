#include "tests/nema/opened_source.h"

#include "util/error_text.h"
#include "util/my_error_fct.h"

static int Digit (char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

Bytes Hex (const std::string &text) {
    Bytes bytes;
    int   high = -1;
    for (char c : text) {
        int digit = Digit (c);
        if (digit < 0) continue;
        if (high >= 0) bytes.push_back (static_cast<unsigned char> (high * 16 + digit));
        high = high < 0 ? digit : -1;
    }
    return bytes;
}

Bytes operator+ (const Bytes &a, const Bytes &b) {
    Bytes sum = a;
    sum.insert (sum.end (), b.begin (), b.end ());
    return sum;
}

Bytes From_Text (const std::string &text) { return Bytes (text.begin (), text.end ()); }

Opened_Source::Opened_Source (int kind, const Bytes &content) : bytes (content) {
    bytes.shrink_to_fit ();
    settings.kind_warning = LOG_WARNING;
    source.kind           = kind;
    source.settings       = &settings;
    if (kind == NEMA_FILE) {
        path        = directory.Write ("stream.dcm", bytes);
        source.name = path.c_str ();
        source.file = File_Open (path.c_str ());
    } else {
        source.base = bytes.data ();
        source.size = static_cast<uint32_t> (bytes.size ());
    }
}

Opened_Source::~Opened_Source () { File_Close (source.file); }

std::string Opened_Source::Name () const { return source.kind == NEMA_FILE ? path : "memory"; }

int64_t Opened_Source::Position () const { return NEMA_Tell (&source); }

std::string Error_Text_Of (unsigned error) {
    System_Last_Error_Set (error);
    return Error_Text (0);
}
