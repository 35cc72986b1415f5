#include "spcbase/platform/system/message_source.h"
