/// Where the nodes of a document live: blocks of memory that are given back as a whole.
///
/// Part of the platform layer (xml), for the model itself. A node is never freed by itself, so no pointer between
/// nodes ever dangles and ending a document of any depth needs no recursion.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

struct _xmlDict;

namespace xml_model {

class store;
struct text_block;

/// Counts the references from outside to anything in its stores, and ends them with the last one. Documents whose nodes
/// were moved into one another share one life.
class life {
 public:
  life(const life&) = delete;
  life& operator=(const life&) = delete;

  /// Begins a life with one store and no reference yet: the caller takes one.
  static store& begin();

  void add_reference() noexcept { ++references_; }
  /// Gives a reference back. Afterwards the life may be over.
  void release() noexcept {
    if (--references_ == 0) delete this;
  }
  /// Takes over everything that lives in `other`, which ends by it.
  void take_over(life& other);

 private:
  life() = default;
  ~life();
  friend struct std::default_delete<life>;

  std::size_t references_ = 0;
  std::vector<std::unique_ptr<store>> stores_;
};

/// Memory for the nodes that one document makes between two loads, their texts and their names.
class store {
 public:
  explicit store(life& owner);
  store(const store&) = delete;
  store& operator=(const store&) = delete;
  ~store();

  life& owner() const noexcept { return *owner_; }
  void set_owner(life& owner) noexcept { owner_ = &owner; }

  /// Something that needs no destructor.
  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= alignment);
    return ::new (take(sizeof(T))) T(std::forward<Arguments>(arguments)...);
  }
  /// A copy of a text that takes the place of one with less room; it gets twice as much at least.
  text_block* make_text(std::string_view text, std::size_t old_room_bytes);
  /// A copy of a text.
  std::string_view keep(std::string_view text);
  /// A name of which there is one copy.
  std::string_view name(std::string_view text);
  /// The names, which a parser of this store shares.
  _xmlDict* names() const noexcept { return names_; }

 private:
  static constexpr std::size_t alignment = 8;

  void* take(std::size_t size_bytes) {
    const std::size_t needed = (size_bytes + alignment - 1) / alignment * alignment;
    if (needed > left_bytes_) return take_elsewhere(needed);
    left_bytes_ -= needed;
    return std::exchange(free_, free_ + needed);
  }
  void* take_elsewhere(std::size_t size_bytes);

  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::byte* free_ = nullptr;
  std::size_t left_bytes_ = 0;
  _xmlDict* names_;
  life* owner_;
};

/// A reference from outside to what lives in a store.
class store_reference {
 public:
  explicit store_reference(store& held) noexcept : store_(&held) { store_->owner().add_reference(); }
  store_reference(const store_reference&) = delete;
  store_reference(store_reference&& other) noexcept : store_reference(*other.store_) {}
  store_reference& operator=(store_reference other) noexcept {
    std::swap(store_, other.store_);
    return *this;
  }
  ~store_reference() { store_->owner().release(); }

  store& operator*() const noexcept { return *store_; }

 private:
  store* store_;
};

}  // namespace xml_model
