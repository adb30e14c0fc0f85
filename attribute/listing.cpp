#include "attribute/listing.h"
