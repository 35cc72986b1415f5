/// Sessions that reach a server through ODBC: any driver, and any connection that a host has opened itself.
///
/// Part of the database platform layer.
#pragma once

#include <memory>
#include <string_view>

#include "spcbase/platform/database/session.h"

namespace spcdb {

/// Connects by an ODBC connect text, with or without "ODBC;" before it. What a known driver needs and the text does not
/// say is added. `hook` is behind the session's door from the first call on.
/// Fails: CDBException* when the text names neither a driver nor a data source, and for every refusal of the driver.
std::unique_ptr<Session> open_odbc(std::string_view connect_text, bool read_only, CallHook* hook = nullptr);

/// Takes a connection handle (SQLHDBC) that a host has connected. It stays the host's: closing the session leaves it
/// connected, with autocommit on.
/// Fails: CDBException* when the driver does not answer for it.
std::unique_ptr<Session> adopt_odbc(void* connection, CallHook* hook = nullptr);

}  // namespace spcdb
