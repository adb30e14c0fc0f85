#include "tools/sliders.h"
