#include <stdlib.h>

#include "tests/support/environment.h"

void Environment_Set (const std::string &name, const std::string &value) {
    if (value.empty ()) unsetenv (name.c_str ());
    else setenv (name.c_str (), value.c_str (), 1);
}
