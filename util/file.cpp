#include "util/file.h"
