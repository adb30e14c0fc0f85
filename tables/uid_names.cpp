#include "tables/uid_names.h"
