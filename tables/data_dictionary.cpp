#include "tables/data_dictionary.h"
