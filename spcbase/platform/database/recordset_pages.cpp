// Reading forward in pages, for drivers that would hold the whole result in memory.
//
// A page is the statement with a limit, in the order of the key; the next one begins behind the key of its last row.
#include <string>

#include "spcbase/platform/database/recordset_core.h"

namespace spcdb {

namespace {

constexpr long page_rows = 10000;

}  // namespace

void RecordsetCore::plan_pages() {
  page_ = {};
  const bool wanted = forward() && (recordset_.m_dwOptions & CRecordset::inPages) != 0;
  if (!wanted || connection().quirks().streams_forward) return;
  if (!single_table_ || recordset_.m_keyColumns == 0 || !recordset_.m_strSort.IsEmpty())
    raise(AFX_SQL_ERROR_ILLEGAL_MODE, "HY092",
          "Reading in pages needs one table, a class that names its key, and no sort of its own.");
  page_.planned = true;
}

std::string RecordsetCore::page_condition() const {
  std::string condition;
  const auto filter = recordset_.m_strFilter.view();
  if (page_.key.empty()) return condition.append(filter);
  if (!filter.empty()) condition.append("(").append(filter).append(") AND ");
  condition += '(';
  // Behind (a, b): a is greater, or a is equal and b is greater.
  for (std::size_t last = 0; last < page_.key.size(); ++last) {
    condition += last == 0 ? "(" : " OR (";
    for (std::size_t i = 0; i < last; ++i)
      condition.append(page_.names[i]).append("=? AND ");
    condition.append(page_.names[last]).append(">?)");
  }
  return condition += ')';
}

std::string RecordsetCore::page_order() {
  std::string order;
  page_.names.clear();
  for (unsigned i = 0; i < names_.size() && i < 64; ++i) {
    if ((recordset_.m_keyColumns >> i & 1U) == 0) continue;
    if (!order.empty()) order += ',';
    order += piece(names_[i]);
    page_.names.emplace_back(piece(names_[i]));
  }
  return order + " LIMIT " + std::to_string(page_rows);
}

void RecordsetCore::add_page_parameters() {
  for (std::size_t last = 0; last < page_.key.size(); ++last) {
    for (std::size_t i = 0; i <= last; ++i) {
      host_parameters_.push_back(page_.key[i].value);
      if (page_.key[i].value.kind == ValueKind::text) host_parameters_.back().text = page_.key[i].text;
      host_names_.push_back(page_.names[i]);
    }
  }
}

void RecordsetCore::remember_page_end() {
  page_.key.clear();
  for (unsigned i = 0; i < fields_.size() && i < 64; ++i) {
    if ((recordset_.m_keyColumns >> i & 1U) == 0) continue;
    PageKey key;
    key.value.kind = fields_[i].kind;
    bool has_value = false;
    switch (fields_[i].kind) {
      case ValueKind::integer:
        has_value = row_->integer(i, key.value.integer);
        break;
      case ValueKind::real:
        has_value = row_->real(i, key.value.real);
        break;
      case ValueKind::moment:
        has_value = row_->moment(i, key.value.moment);
        break;
      case ValueKind::text: {
        std::string_view text;
        has_value = row_->text(i, text);
        key.text = text;
        break;
      }
      case ValueKind::bytes:
      case ValueKind::long_bytes:
        break;  // no key: told below
    }
    if (!has_value)
      raise(AFX_SQL_ERROR_ILLEGAL_MODE, "HY092",
            "Reading in pages needs a key without nulls; " + source_ + " has one.");
    page_.key.push_back(std::move(key));
  }
}

bool RecordsetCore::fetch_forward() {
  if (page_.planned && page_.rows == page_rows) {
    remember_page_end();
    next_page();
  }
  if (!kept_->statement->fetch()) return false;
  ++page_.rows;
  return true;
}

void RecordsetCore::next_page() {
  StatementWatch(*recordset_.m_pDatabase).done(given(), page_.rows);
  release();
  statement_.Truncate(static_cast<int>(select_size_));
  append_conditions();
  acquire(shape_statement());
  bind_columns();
  gather_parameters();
  kept_->statement->execute(connection().scratch().parameters);
  page_.rows = 0;
}

}  // namespace spcdb
