#include "attribute/NEMA_Tag_Attribute.h"
