#include "tables/modality.h"
