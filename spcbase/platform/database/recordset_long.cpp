// Bytes in recordsets: the holders of the two kinds, and reading long data when a row becomes current.
#include <algorithm>
#include <string>

#include "spcbase/platform/database/long_binary.h"
#include "spcbase/platform/database/recordset_core.h"
#include "spcbase/platform/system/byte_array.h"
#include "spcbase/platform/system/exceptions.h"

namespace spcdb {

namespace {

/// The byte that an array of size 1 shows for a null.
constexpr BYTE pseudo_null = 0xFF;

/// A block's address for a scope.
class Locked {
 public:
  explicit Locked(HGLOBAL block) : block_(block), bytes_(static_cast<std::byte*>(GlobalLock(block))) {
    if (bytes_ == nullptr) AfxThrowMemoryException();
  }
  ~Locked() { GlobalUnlock(block_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  std::byte* bytes() const { return bytes_; }

 private:
  HGLOBAL block_;
  std::byte* bytes_;
};

/// A block of exactly this size: what lies behind the data would be copied along with them.
void resize(CLongBinary& value, std::size_t size) {
  if (value.m_hData == nullptr || GlobalSize(value.m_hData) != size) {
    release_long(value);
    value.m_hData = GlobalAlloc(GMEM_MOVEABLE, size);
    if (value.m_hData == nullptr) AfxThrowMemoryException();
  }
  value.m_dwDataLength = static_cast<DWORD>(size);
}

void read_known(Statement& statement, unsigned column, CLongBinary& value, std::size_t length) {
  resize(value, length);
  const Locked block(value.m_hData);
  std::size_t at = 0;
  while (at < length) {
    const auto wanted = std::min(long_piece_bytes, length - at);
    const auto taken = statement.read_long(column, {block.bytes() + at, wanted});
    if (taken == 0) break;
    at += taken;
  }
  if (at != length)
    raise(AFX_SQL_ERROR_DATA_TRUNCATED, "01004",
          "The value of column " + std::to_string(column + 1) + " ends after " + std::to_string(at) + " of " +
              std::to_string(length) + " bytes.");
}

/// For drivers that do not tell the length: the block grows as pieces come.
void read_unknown(Statement& statement, unsigned column, CLongBinary& value) {
  std::size_t length = 0;
  std::size_t room = long_piece_bytes;
  resize(value, room);
  for (std::size_t taken = long_piece_bytes; taken == long_piece_bytes;) {
    if (room - length < long_piece_bytes) {
      room *= 2;
      HGLOBAL grown = GlobalReAlloc(value.m_hData, room, GMEM_MOVEABLE);
      if (grown == nullptr) AfxThrowMemoryException();
      value.m_hData = grown;
    }
    const Locked block(value.m_hData);
    taken = statement.read_long(column, {block.bytes() + length, long_piece_bytes});
    length += taken;
  }
  if (length == 0) return release_long(value);
  if (HGLOBAL cut = GlobalReAlloc(value.m_hData, length, GMEM_MOVEABLE); cut != nullptr) value.m_hData = cut;
  value.m_dwDataLength = static_cast<DWORD>(length);
}

bool read_value(Statement& statement, unsigned column, CLongBinary& value) {
  constexpr std::int64_t longest = 0xFFFFFFFFLL;
  std::int64_t length = 0;
  if (!statement.long_length(column, length)) {
    release_long(value);
    return false;
  }
  if (length > longest)
    raise(AFX_SQL_ERROR_DATA_TRUNCATED, "01004",
          "The value of a long column has " + std::to_string(length) + " bytes.");
  if (length == 0) {
    release_long(value);
  } else if (length < 0) {
    read_unknown(statement, column, value);
  } else {
    read_known(statement, column, value, static_cast<std::size_t>(length));
  }
  return true;
}

}  // namespace

void release_long(CLongBinary& value) noexcept {
  GlobalFree(value.m_hData);
  value.m_hData = nullptr;
  value.m_dwDataLength = 0;
}

/// Writes and knows the mark of a null in a byte array: the byte by itself is a value like any other.
struct NullMark {
  static void set(CByteArray& value) {
    value.SetSize(1);
    value[0] = pseudo_null;
    value.marks_null_ = true;
  }
  static bool is_set(const CByteArray& value) { return value.marks_null_; }
};

void mark_null(CByteArray& value) { NullMark::set(value); }
bool is_null_mark(const CByteArray& value) { return NullMark::is_set(value); }

LongParameters::~LongParameters() {
  for (HGLOBAL block : locked_)
    GlobalUnlock(block);
}

Parameter LongParameters::value(const CLongBinary& holder, std::string_view table, std::string_view column) {
  if (holder.m_hData == nullptr || holder.m_dwDataLength == 0) return Parameter::of_long_bytes({}, table, column);
  if (holder.m_dwDataLength > GlobalSize(holder.m_hData)) AfxThrowInvalidArgException();
  locked_.reserve(locked_.size() + 1);
  const void* bytes = GlobalLock(holder.m_hData);
  if (bytes == nullptr) AfxThrowMemoryException();
  locked_.push_back(holder.m_hData);
  return Parameter::of_long_bytes({static_cast<const char*>(bytes), holder.m_dwDataLength}, table, column);
}

/// The size of the buffer that a column of bytes is bound to.
void RecordsetCore::bind_bytes(CByteArray& value, int maximum_size) {
  const auto position = static_cast<unsigned>(fields_.size());
  const auto largest = static_cast<unsigned long>(maximum_size);
  const bool known = position < kept_->statement->column_count();
  const auto reported = known ? kept_->statement->describe(position).precision : 0;
  const auto size = reported == 0 || reported > largest ? largest : reported;
  bind_column(&value, ValueKind::bytes, 0, static_cast<int>(size));
}

bool RecordsetCore::fetch_long(unsigned position, CLongBinary& value) {
  if (!fetches_long_) return !fields_[position].is_null;
  if (kept_ != nullptr) return read_value(*kept_->statement, position, value);
  return fetch_long_by_key(position, value);
}

/// A snapshot holds no long data: those of a row to which it moves are asked for by the row's key.
bool RecordsetCore::fetch_long_by_key(unsigned position, CLongBinary& value) {
  bool unique = false;
  columns_.clear();
  const auto where = single_table_ ? where_key(unique) : std::string();
  if (!unique)
    raise(AFX_SQL_ERROR_ILLEGAL_MODE, "HY092",
          "A recordset that reads long data in pieces moves by the key of its table, and here is none. Open it "
          "forwardOnly.");
  const std::string text = "SELECT " + std::string(piece(names_[position])) + " FROM " + source_ + " WHERE " + where;
  bool has_value = false;
  watched(*recordset_.m_pDatabase, {text, key_values_, columns_}, [&] {
    auto& kept = connection().acquire({text, text, false}, Reading::all);
    try {
      const ColumnBinding in_pieces{ValueKind::long_bytes};
      kept.bound.clear();
      kept.statement->bind_columns({&in_pieces, 1});
      kept.statement->execute(key_values_);
      if (!kept.statement->fetch())
        raise(AFX_SQL_ERROR_NO_CURRENT_RECORD, "02000", "The row of " + source_ + " is no longer there.");
      has_value = read_value(*kept.statement, 0, value);
    } catch (...) {
      connection().give_back(kept);
      throw;
    }
    connection().give_back(kept);
    return std::int64_t{1};
  });
  return has_value;
}

/// Takes the first row of a snapshot, which is shown while the statement stands on it, so that its long data are
/// read along with it.
void RecordsetCore::take_row_with_long_data() {
  auto& statement = *kept_->statement;
  if (!statement.fetch()) return;
  rows_.take(statement);
  row_ = &rows_;
  rows_.select(0);
  fix_up();
}

}  // namespace spcdb
