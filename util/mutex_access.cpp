#include "util/mutex_access.h"
