#include "util/utility_IGB.h"
