#include "spcbase/platform/database/field_exchange.h"

#include <cstring>
#include <limits>

#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/database/recordset_core.h"
#include "spcbase/platform/system/byte_array.h"

namespace spcdb {

void RecordsetCore::name_column(CFieldExchange& exchange, std::string_view name, ValueKind kind) {
  CString& text = *exchange.m_pstr;
  if (!names_.empty()) text += ',';
  names_.push_back({{text.view().size(), name.size()}, kind == ValueKind::real});
  text += name;
}

void RecordsetCore::bind_column(void* address, ValueKind kind, int width_chars, int size_bytes) {
  Field field;
  field.address = address;
  field.kind = kind;
  fields_.push_back(field);
  connection().scratch().columns.push_back({kind, width_chars, size_bytes});
}

void RecordsetCore::bind_parameter(std::string_view name, const Parameter& value) {
  host_parameters_.push_back(value);
  host_names_.push_back(name);
}

namespace {

[[noreturn]] void raise_out_of_range(const char* name) {
  raise(AFX_SQL_ERROR, "22003", std::string("The value of ") + name + " is beyond 32 bits.");
}

/// Every pass but the reading of rows.
void tell_of_column(CFieldExchange& exchange, const char* name, ValueKind kind, int width, void* member) {
  RecordsetCore& core = exchange.m_prs->core();
  if (exchange.IsFieldType(CFieldExchange::param)) {
    if (exchange.m_nOperation == CFieldExchange::BindParam) core.bind_parameter(name, value_of_member(kind, member));
  } else if (exchange.m_nOperation == CFieldExchange::Name) {
    core.name_column(exchange, name, kind);
  } else if (exchange.m_nOperation == CFieldExchange::BindFieldToColumn) {
    core.bind_column(member, kind, width);
  }
}

/// What all RFX_ functions do alike; `fetch` reads the member from a row and says whether it was not null.
template <class Fetch>
inline void exchange_column(CFieldExchange& exchange, const char* name, ValueKind kind, int width, void* member,
                            Fetch&& fetch) {
  if (exchange.m_nOperation != CFieldExchange::Fixup) [[unlikely]]
    return tell_of_column(exchange, name, kind, width, member);
  if (!exchange.IsFieldType(CFieldExchange::outputColumn)) return;
  RecordsetCore& core = exchange.m_prs->core();
  const unsigned position = RecordsetCore::next(exchange);
  if (core.has_field(position)) core.field(position).is_null = !fetch(core.row(), position);
}

}  // namespace

Parameter value_of_member(ValueKind kind, const void* member) {
  switch (kind) {
    case ValueKind::integer:
      return Parameter::of_integer(*static_cast<const long*>(member));
    case ValueKind::real:
      return Parameter::of_real(*static_cast<const double*>(member));
    case ValueKind::text:
      return Parameter::of_text(static_cast<const CString*>(member)->view());
    case ValueKind::bytes: {
      const auto& array = *static_cast<const CByteArray*>(member);
      return Parameter::of_bytes(
          {reinterpret_cast<const char*>(array.GetData()), static_cast<std::size_t>(array.GetSize())});
    }
    case ValueKind::long_bytes:
      return Parameter::of_long_bytes({});  // its block is locked where it is sent
    case ValueKind::moment:
      break;
  }
  return Parameter::of_moment(*static_cast<const TIMESTAMP_STRUCT*>(member));
}

}  // namespace spcdb

using spcdb::Row;
using spcdb::ValueKind;

void RFX_Long(CFieldExchange* exchange, const char* name, long& value) {
  spcdb::exchange_column(*exchange, name, ValueKind::integer, 0, &value, [&](Row& row, unsigned position) {
    std::int64_t fetched = 0;
    const bool has_value = row.integer(position, fetched);
    if (fetched < std::numeric_limits<LONG>::min() || fetched > std::numeric_limits<LONG>::max()) [[unlikely]]
      spcdb::raise_out_of_range(name);
    value = fetched;
    return has_value;
  });
}

void RFX_Text(CFieldExchange* exchange, const char* name, CString& value, int max_length, int column_type,
              short scale) {
  static_cast<void>(column_type);
  static_cast<void>(scale);
  spcdb::exchange_column(*exchange, name, ValueKind::text, max_length, &value, [&](Row& row, unsigned position) {
    std::string_view fetched;
    const bool has_value = row.text(position, fetched);
    value = fetched;
    return has_value;
  });
}

void RFX_Date(CFieldExchange* exchange, const char* name, TIMESTAMP_STRUCT& value) {
  spcdb::exchange_column(*exchange, name, ValueKind::moment, 0, &value, [&](Row& row, unsigned position) {
    TIMESTAMP_STRUCT fetched{};
    const bool has_value = row.moment(position, fetched);
    value = fetched;
    return has_value;
  });
}

void RFX_Double(CFieldExchange* exchange, const char* name, double& value) {
  spcdb::exchange_column(*exchange, name, ValueKind::real, 0, &value, [&](Row& row, unsigned position) {
    double fetched = 0;
    const bool has_value = row.real(position, fetched);
    value = fetched;
    return has_value;
  });
}

void RFX_LongBinary(CFieldExchange* exchange, const char* name, CLongBinary& value) {
  if (exchange == nullptr || name == nullptr) AfxThrowInvalidArgException();
  auto& core = exchange->m_prs->core();
  spcdb::exchange_column(*exchange, name, ValueKind::long_bytes, 0, &value,
                         [&](Row&, unsigned position) { return core.fetch_long(position, value); });
}

namespace spcdb {

void exchange_bytes(CFieldExchange* exchange, const char* name, CByteArray& value, int maximum_size) {
  if (exchange == nullptr || name == nullptr || maximum_size < 1) AfxThrowInvalidArgException();
  const bool is_column = exchange->IsFieldType(CFieldExchange::outputColumn) != FALSE;
  if (is_column && exchange->m_nOperation == CFieldExchange::BindFieldToColumn)
    return exchange->m_prs->core().bind_bytes(value, maximum_size);
  exchange_column(*exchange, name, ValueKind::bytes, 0, &value, [&](Row& row, unsigned position) {
    std::string_view fetched;
    if (!row.bytes(position, fetched)) {
      mark_null(value);
      return false;
    }
    value.SetSize(static_cast<INT_PTR>(fetched.size()));
    if (!fetched.empty()) std::memcpy(value.GetData(), fetched.data(), fetched.size());
    return true;
  });
}

}  // namespace spcdb
