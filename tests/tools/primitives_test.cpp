#include "tools/primitives.h"
