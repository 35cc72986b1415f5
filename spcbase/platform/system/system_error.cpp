#include "spcbase/platform/system/system_error.h"
