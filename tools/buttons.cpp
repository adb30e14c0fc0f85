#include "tools/buttons.h"
