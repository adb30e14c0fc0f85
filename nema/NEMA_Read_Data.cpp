#include "nema/NEMA_Read_Data.h"
