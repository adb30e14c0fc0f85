#include "view/result_view.h"
