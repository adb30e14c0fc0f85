#include "attribute/NEMA_Tag_Copy.h"
