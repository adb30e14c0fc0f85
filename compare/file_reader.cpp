#include "compare/file_reader.h"
