/// The reference data-entry engine: `IQsmSPC` on the caller's own connection, good enough for real use where no engine
/// of the product is at hand.
///
///     CDatabaseEx db;
///     ...
///     oldde::DEHelper helper;
///     helper.set_data(reference_engine::make(db), db, ...);
///
/// Running numbers are safe among concurrent writers: the number is raised first, so that the row is locked before it
/// is read, and both happen in one transaction, the caller's when one is open. Inside the caller's transaction other
/// writers of the same number wait for its end.
#pragma once

#include "spcbase/companion/engine.h"
#include "spcbase/platform/database/database.h"

namespace reference_engine {

/// An engine on a connection, which must stay open for as long as the engine is used. It belongs to the connection's
/// thread.
///
/// - `GetNextRunningNumber` knows the 27 running-number tables; E_INVALIDARG for any other name. A table without its
///   row is a failure.
/// - `SetLabelValue` stores one value in CSLDAT, in the place of an earlier one; characteristic and piece of 0 are
///   null.
/// - `GetCharacteristicFlags` gives CFLG1, CFLG2 and CFLG3 of CSCHRT, 0 for null; three times 0 for an id that is no
///   characteristic, since labels are asked about too.
/// - `GetSubgroupSize` gives SGSIZE of CSCHRT, 0 for null; E_INVALIDARG when there is no such characteristic.
///
/// Fails: a method gives a failing code and publishes an error object that says what happened; a refusal of the
///        database stands in it with its diagnostics, so that `guarded` tells a deadlock or a lost link from the rest.
///        E_POINTER for a null out argument.
SPCLib::IQsmSPCPtr make(CDatabase& db);

}  // namespace reference_engine
