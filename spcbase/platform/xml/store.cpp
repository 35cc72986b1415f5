#include "spcbase/platform/xml/store.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "spcbase/platform/xml/node.h"

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

void* store::take_elsewhere(std::size_t size_bytes) {
  // Blocks grow with the document, up to a size that the heap can use again for others. What would fill much of one
  // gets a block of its own, and the present one stays in use.
  constexpr std::size_t smallest_bytes = 1'024;
  constexpr std::size_t largest_bytes = 65'536;
  const std::size_t block_bytes = std::min(largest_bytes, smallest_bytes << std::min<std::size_t>(blocks_.size(), 6));
  const bool is_alone = size_bytes > block_bytes / 4;
  auto block = std::make_unique_for_overwrite<std::byte[]>(is_alone ? size_bytes : block_bytes);
  blocks_.push_back(std::move(block));
  std::byte* const begin = blocks_.back().get();
  if (is_alone) return begin;
  free_ = begin + size_bytes;
  left_bytes_ = block_bytes - size_bytes;
  return begin;
}

std::string_view store::keep(std::string_view text) {
  if (text.empty()) return {};
  char* const copy = static_cast<char*>(take(text.size()));
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

text_block* store::make_text(std::string_view text, std::size_t old_room_bytes) {
  const std::size_t room_bytes = std::max(text.size(), 2 * old_room_bytes);
  auto* const made =
      ::new (take(sizeof(text_block) + room_bytes)) text_block{0, static_cast<std::uint32_t>(room_bytes)};
  if (!text.empty()) made->put(text);
  return made;
}

std::string_view store::name(std::string_view text) {
  const xmlChar* const kept =
      xmlDictLookup(names_, reinterpret_cast<const xmlChar*>(text.data()), static_cast<int>(text.size()));
  if (kept == nullptr) throw std::bad_alloc();
  return {reinterpret_cast<const char*>(kept), text.size()};
}

}  // namespace xml_model
