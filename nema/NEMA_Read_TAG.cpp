#include "nema/NEMA_Read_TAG.h"
