#include "spcbase/platform/system/memory.h"
