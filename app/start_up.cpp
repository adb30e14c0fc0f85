#include "app/start_up.h"
