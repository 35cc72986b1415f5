// Definitions of data sources: reading any text of either kind fails only as is documented, and what was read, written
// and read again is the same definition.
#include <cstdint>
#include <cstdlib>
#include <exception>

#include "spcbase/datasource/definition.h"
#include "spcbase/foundation/failure.h"

namespace {

// Of the row that the texts come from.
constexpr int row_id = 7;

void require(bool holds) {
  if (!holds) std::abort();
}

template <class Info>
bool reads(Info& info, const CString& text) {
  try {
    info.set_xml(text);
    return true;
  } catch (const DBException&) {
  } catch (const _com_error&) {
  } catch (const std::exception&) {
  }
  return false;
}

template <class Info>
void check(const CString& text) {
  Info info;
  info.id = row_id;
  // What was read before a failure stays, and is a definition like any other.
  reads(info, text);
  const CString exported = info.get_xml(true, false);
  Info again;
  require(reads(again, exported));
  require(again.get_xml(true, false) == exported);
  require(again.connection_string == info.connection_string);
  require(Info(again).get_xml(true, false) == exported);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CString text(reinterpret_cast<const char*>(data), static_cast<int>(size));
  check<OLEDBInfo>(text);
  check<ADONETDBInfo>(text);
  return 0;
}
