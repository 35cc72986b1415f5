#include "spcbase/platform/datetime/ole_datetime.h"
