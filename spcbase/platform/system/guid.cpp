#include "spcbase/platform/system/guid.h"
