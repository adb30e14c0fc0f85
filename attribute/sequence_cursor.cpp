#include "attribute/sequence_cursor.h"
