/// Sessions that speak to SQLite's own C interface: the embedded default.
///
/// Part of the database platform layer.
#pragma once

#include <memory>
#include <string_view>

#include "spcbase/platform/database/session.h"

namespace spcdb {

/// Opens `sqlite:FILE`, with the options `Create=1` (make the file when it is missing) and `Timeout=ms` (the longest
/// wait for a lock, 5000 when not told) behind semicolons. A file name with a semicolon stands in {braces}. `hook` is
/// behind the session's door from the first call on.
/// Fails: CDBException* when the text names no file or has an unknown option, when the file is missing, is no database
/// or may not be opened.
std::unique_ptr<Session> open_sqlite(std::string_view connect_text, bool read_only, CallHook* hook = nullptr);

}  // namespace spcdb
