#include "spcbase/platform/xml/store.h"

#include <libxml/parser.h>

#include <cstring>
#include <new>

namespace xml_model {

life::~life() = default;

store& life::begin() {
  std::unique_ptr<life> begun(new life);
  begun->stores_.push_back(std::make_unique<store>(*begun));
  return *begun.release()->stores_.back();
}

void life::take_over(life& other) {
  stores_.reserve(stores_.size() + other.stores_.size());
  for (auto& moved : other.stores_) {
    moved->set_owner(*this);
    stores_.push_back(std::move(moved));
  }
  references_ += other.references_;
  delete &other;
}

store::store(life& owner) : names_(xmlDictCreate()), owner_(&owner) {
  if (names_ == nullptr) throw std::bad_alloc();
}

store::~store() { xmlDictFree(names_); }

std::string_view store::keep(std::string_view text) {
  if (text.empty()) return {};
  char* const copy = make_room(text.size());
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

std::string_view store::name(std::string_view text) {
  const xmlChar* const kept =
      xmlDictLookup(names_, reinterpret_cast<const xmlChar*>(text.data()), static_cast<int>(text.size()));
  if (kept == nullptr) throw std::bad_alloc();
  return {reinterpret_cast<const char*>(kept), text.size()};
}

}  // namespace xml_model
