#include "util/win_registry.h"
