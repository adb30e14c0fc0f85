#include "tables/definition_files.h"
