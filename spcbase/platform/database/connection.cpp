#include "spcbase/platform/database/connection.h"

#include <algorithm>

#include "spcbase/platform/database/db_exception.h"

namespace spcdb {

namespace {

/// More than the shapes of all subsystems together; a server's own limits are far above.
constexpr std::size_t most_kept = 256;

/// Diagnostics by which a server says that it does not take a parameter where the literal stood.
bool refuses_the_shape(const CDBException& failure) {
  const auto said = failure.m_strStateNativeOrigin.view();
  const auto state = said.substr(0, std::string_view("State:42000").size());
  // SQLite's ODBC driver has no state for a syntax error, only its number 1; any other HY000 is a failure of its own.
  return state == "State:42000" || state == "State:42601" || state == "State:42P18" || state == "State:07009" ||
         said.starts_with("State:HY000,Native:1,");
}

}  // namespace

Connection::~Connection() {
  for (auto& shapes : shapes_)
    shapes.clear();
  session_->close();
}

KeptStatement& Connection::acquire(const StatementText& text, Reading reading) {
  auto& shapes = shapes_[static_cast<unsigned>(reading)];
  auto found = shapes.find(text.shape);
  if (found != shapes.end()) {
    for (auto& sibling : found->second) {
      // A statement whose literals could not be lifted serves only its own text.
      if (sibling->busy || sibling->literal) continue;
      sibling->busy = true;
      sibling->used = ++clock_;
      return *sibling;
    }
  }
  auto fresh = prepare(text, reading);
  make_room();
  auto& siblings = shapes.try_emplace(std::string(text.shape)).first->second;
  siblings.push_back(std::move(fresh));
  ++kept_count_;
  auto& kept = *siblings.back();
  kept.busy = true;
  kept.used = ++clock_;
  return kept;
}

std::unique_ptr<KeptStatement> Connection::prepare(const StatementText& text, Reading reading) {
  auto kept = std::make_unique<KeptStatement>();
  kept->shape = text.shape;
  try {
    kept->statement = session_->prepare(dressed(text.shape), reading);
  } catch (CDBException* refused) {
    const bool other_form = text.lifted && refuses_the_shape(*refused);
    if (!other_form) throw;
    refused->Delete();
    kept->statement = session_->prepare(dressed(text.given), reading);
    kept->literal = true;
  }
  return kept;
}

std::string Connection::dressed(std::string_view sql) const {
  auto text = quote_names(sql, quirks().quote_open, quirks().quote_close);
  return quirks().backslash_escapes ? double_literal_backslashes(text) : text;
}

void Connection::give_back(KeptStatement& kept) noexcept {
  kept.statement->close();
  kept.busy = false;
  if (!kept.literal) return;
  for (auto& shapes : shapes_) {
    const auto found = shapes.find(kept.shape);
    if (found == shapes.end()) continue;
    kept_count_ -= std::erase_if(found->second, [&](const auto& sibling) { return sibling.get() == &kept; });
    if (found->second.empty()) shapes.erase(found);
    return;
  }
}

void Connection::make_room() {
  while (kept_count_ >= most_kept) {
    Shapes* oldest_map = nullptr;
    Shapes::iterator oldest_shape;
    std::size_t oldest_sibling = 0;
    std::uint64_t oldest = UINT64_MAX;
    for (auto& shapes : shapes_) {
      for (auto it = shapes.begin(); it != shapes.end(); ++it) {
        for (std::size_t i = 0; i < it->second.size(); ++i) {
          const auto& kept = *it->second[i];
          if (kept.busy || kept.used >= oldest) continue;
          oldest = kept.used;
          oldest_map = &shapes;
          oldest_shape = it;
          oldest_sibling = i;
        }
      }
    }
    if (oldest_map == nullptr) return;
    auto& siblings = oldest_shape->second;
    siblings.erase(siblings.begin() + static_cast<std::ptrdiff_t>(oldest_sibling));
    if (siblings.empty()) oldest_map->erase(oldest_shape);
    --kept_count_;
  }
}

const TableKey& Connection::key_of(std::string_view table) {
  auto found = keys_.find(table);
  if (found == keys_.end()) found = keys_.emplace(std::string(table), session_->find_key(table)).first;
  return found->second;
}

void Connection::leave(CRecordset& recordset) noexcept { std::erase(open_, &recordset); }

}  // namespace spcdb
