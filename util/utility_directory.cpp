#include "util/utility_directory.h"
