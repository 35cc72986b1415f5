/// Column tables: what a recordset exchanges, as data, and the one loop that turns it into RFX_ calls.
///
/// Part of the database foundation. A recordset class is its fields, its source and its columns:
///
///     class RSNode1 : public TableRecordset<RSNode1> {
///      public:
///       using TableRecordset::TableRecordset;
///       long nodeid = 0;
///       CString name;
///       static constexpr const char* source = "[CSNODE]";
///       static constexpr auto columns = coltab::table(coltab::key("[NODEID]", &RSNode1::nodeid),
///                                                     coltab::field("[NAME]", &RSNode1::name, 255));
///     };
///
/// A field is a `long`, a `CString`, whose width is in characters, a `double` or a `TIMESTAMP_STRUCT`; a class with a
/// blob has another base (blob.h). Order matters: it is that of the select list and of the fields. A field is named as
/// its column, in lower case. Keys are the columns by which a fetched row is found again when it is edited.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>

#include "spcbase/foundation/recordset.h"

namespace coltab {

/// How a column is exchanged.
enum class Kind : unsigned char { number, text, moment, real, blob };

/// One column and the member it is exchanged with. The member's type decides the kind.
template <class Owner, class Value>
struct Column {
  const char* name;      ///< as it is written in statements
  Value Owner::*member;  ///< where a row puts its value
  int width_chars;       ///< of a text, else 0
  bool is_key;           ///< one of the columns that tell rows apart

  /// How it is exchanged.
  static constexpr Kind kind = std::is_same_v<Value, long>      ? Kind::number
                               : std::is_same_v<Value, CString> ? Kind::text
                               : std::is_same_v<Value, double>  ? Kind::real
                                                                : Kind::moment;
  static_assert(kind != Kind::moment || std::is_same_v<Value, TIMESTAMP_STRUCT>, "no exchange for this type");
};

/// A column that does not tell rows apart.
template <class Owner, class Value>
constexpr Column<Owner, Value> field(const char* name, Value Owner::*member, int width_chars = 0) {
  return {name, member, width_chars, false};
}

/// A column of the key.
template <class Owner, class Value>
constexpr Column<Owner, Value> key(const char* name, Value Owner::*member, int width_chars = 0) {
  return {name, member, width_chars, true};
}

/// The blob column of a class that derives from SingleBlobColumnRecordset, which has the field.
struct BlobColumn {
  const char* name;  ///< as it is written in statements

  /// What every blob column is.
  static constexpr Kind kind = Kind::blob;
  static constexpr int width_chars = 0;
  static constexpr bool is_key = false;
};

/// The last column of a table.
constexpr BlobColumn blob(const char* name) { return {name}; }

/// The columns of a class, in order.
template <class... Columns>
constexpr std::tuple<Columns...> table(Columns... columns) {
  return {columns...};
}

/// The key columns as bits by position.
template <class... Columns>
constexpr std::uint64_t key_bits(const std::tuple<Columns...>& columns) {
  static_assert(sizeof...(Columns) <= 64);
  return std::apply(
      [](const auto&... column) {
        std::uint64_t bits = 0;
        unsigned position = 0;
        ((bits |= std::uint64_t{column.is_key} << position++), ...);
        return bits;
      },
      columns);
}

/// One value with its column, by the documented call for its type.
inline void exchange_value(CFieldExchange* exchange, const char* name, long& value, int) {
  RFX_Long(exchange, name, value);
}
inline void exchange_value(CFieldExchange* exchange, const char* name, CString& value, int width_chars) {
  RFX_Text(exchange, name, value, width_chars, 12, 0);
}
inline void exchange_value(CFieldExchange* exchange, const char* name, TIMESTAMP_STRUCT& value, int) {
  RFX_Date(exchange, name, value);
}
inline void exchange_value(CFieldExchange* exchange, const char* name, double& value, int) {
  RFX_Double(exchange, name, value);
}

/// One column of a row.
template <class Base, class Derived, class Value>
inline void exchange_column(Derived& owner, const Column<Base, Value>& column, CFieldExchange* exchange) {
  exchange_value(exchange, column.name, owner.*(column.member), column.width_chars);
}
template <class Owner>
inline void exchange_column(Owner& owner, const BlobColumn&, CFieldExchange* exchange) {
  owner.exchange_blob(exchange);
}

/// Exchanges every column of a table. `columns` is a constant, so this becomes plain calls.
template <class Owner, class... Columns>
inline void exchange_all(Owner& owner, const std::tuple<Columns...>& columns, CFieldExchange* exchange, UINT type) {
  exchange->SetFieldType(type);
  std::apply([&](const auto&... column) { (exchange_column(owner, column, exchange), ...); }, columns);
}

}  // namespace coltab

/// What all recordsets with a column table share. `Derived` has `source` and `columns`, and `parameters` when its
/// filter holds `?`; `Base` is CRecordsetFix for the tables of the schema.
template <class Derived, class Base = CRecordsetFix>
class TableRecordset : public Base {
 public:
  /// No parameters; a class whose filter has some hides this by its own.
  static constexpr auto parameters = coltab::table();

  /// A closed recordset; `more` goes to the base.
  template <class... More>
  explicit TableRecordset(CDatabase* database, More... more) : Base(database, more...) {
    use_columns(Derived::columns);
    this->m_nParams = std::tuple_size_v<std::remove_cvref_t<decltype(Derived::parameters)>>;
    this->m_nDefaultType = CRecordset::snapshot;
  }

  CString GetDefaultConnect() override { return {}; }
  CString GetDefaultSQL() override { return Derived::source; }
  void DoFieldExchange(CFieldExchange* exchange) override {
    auto& self = static_cast<Derived&>(*this);
    coltab::exchange_all(self, Derived::columns, exchange, CFieldExchange::outputColumn);
    if constexpr (std::tuple_size_v<std::remove_cvref_t<decltype(Derived::parameters)>> != 0)
      coltab::exchange_all(self, Derived::parameters, exchange, CFieldExchange::param);
  }

 protected:
  /// For a class that adds columns to those of its base: sets their number and the key.
  template <class... Columns>
  void use_columns(const std::tuple<Columns...>& columns) {
    this->m_nFields = sizeof...(Columns);
    this->m_keyColumns = coltab::key_bits(columns);
  }
};
