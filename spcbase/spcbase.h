/// Everything that the library offers its hosts. The types of the platform come along with what uses them.
#pragma once

#include "spcbase/companion/engine.h"
#include "spcbase/dataentry/profile.h"
#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/blob.h"
#include "spcbase/foundation/connection.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/outcome.h"
#include "spcbase/foundation/payload.h"
#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/running_number.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/foundation/settings.h"
#include "spcbase/time/calendar.h"
