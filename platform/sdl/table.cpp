// The one function that the module exports.
#include "platform/posix/display.h"
#include "platform/sdl/private.h"

static const Display TABLE = {
#define TABLE_ENTRY(name) name,
    DISPLAY_FUNCTIONS (TABLE_ENTRY)
#undef TABLE_ENTRY
        Box_Show};

extern "C" __attribute__ ((visibility ("default"))) const Display *Tagwright_Display (size_t table_size);

const Display *Tagwright_Display (size_t table_size) { return table_size == sizeof TABLE ? &TABLE : nullptr; }
