/// Every recordset class of the schema.
///
/// Part of the database foundation. The library creates no table: it finds the schema in place and knows of it what
/// these classes say.
#pragma once

#include "spcbase/foundation/schema/catalogue.h"
#include "spcbase/foundation/schema/data_entry.h"
#include "spcbase/foundation/schema/data_sources.h"
#include "spcbase/foundation/schema/payloads.h"
#include "spcbase/foundation/schema/revisions.h"
#include "spcbase/foundation/schema/settings.h"
#include "spcbase/foundation/schema/tree.h"
