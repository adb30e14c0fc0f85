#include <stdlib.h>

#include "tests/support/environment.h"

void Environment_Set (const std::string &name, const std::string &value) {
    _putenv_s (name.c_str (), value.c_str ()); // An empty value removes it by itself.
}
