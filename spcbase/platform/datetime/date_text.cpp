#include "spcbase/platform/datetime/date_text.h"
