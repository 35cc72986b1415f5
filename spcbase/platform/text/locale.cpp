#include "spcbase/platform/text/locale.h"
