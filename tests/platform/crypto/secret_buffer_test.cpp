// Plan
//   Few bytes stand in the object, more come from the memory that was given; both are zero at first
//   Wiping: wipe() itself; the bytes in the object and those of a block, as they are after the end; keys and hashes
// What cannot be proved here: copies that a compiler keeps in registers or spills to the stack, and those inside
// OpenSSL's own contexts, which OpenSSL wipes when they are freed.
#include "spcbase/platform/crypto/secret_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "spcbase/platform/crypto/objects.h"
#include "tests/support/kept_blocks.h"

namespace {

using platform::SecretBuffer;

/// Storage that can be looked at when the object in it has come to its end.
template <class Object>
struct Storage {
  alignas(Object) unsigned char bytes[sizeof(Object)];

  std::string view() const { return {reinterpret_cast<const char*>(bytes), sizeof bytes}; }
};

const std::string secret = "a secret of 27 bytes, whole";

TEST(SecretBuffer, is_zero_at_first) {
  Storage<SecretBuffer> storage;
  std::memset(storage.bytes, 0xEE, sizeof storage.bytes);
  auto* buffer = new (storage.bytes) SecretBuffer(1025);
  EXPECT_TRUE(std::ranges::all_of(buffer->bytes(), [](unsigned char c) { return c == 0; }));
  buffer->~SecretBuffer();
}

TEST(SecretBuffer, asks_for_memory_only_above_1025_bytes) {
  test_support::KeptBlocks memory;
  { const SecretBuffer buffer(1025, &memory); }
  EXPECT_TRUE(memory.sizes().empty());
  { const SecretBuffer buffer(1026, &memory); }
  EXPECT_EQ(memory.sizes(), (std::vector<std::size_t>{1026}));
  EXPECT_EQ(memory.given_back().size(), 1U);
}

TEST(SecretBuffer, may_be_empty) {
  SecretBuffer buffer(0);
  EXPECT_EQ(buffer.size(), 0U);
  EXPECT_TRUE(buffer.bytes().empty());
}

TEST(SecretBuffer, leaves_nothing_in_the_object_at_its_end) {
  Storage<SecretBuffer> storage;
  auto* buffer = new (storage.bytes) SecretBuffer(secret.size());
  std::memcpy(buffer->data(), secret.data(), secret.size());
  ASSERT_NE(storage.view().find(secret), std::string::npos) << "the secret stands where the test looks";
  buffer->~SecretBuffer();
  EXPECT_EQ(storage.view().find(secret.substr(0, 3)), std::string::npos);
  EXPECT_EQ(storage.view().find(secret.substr(secret.size() - 3)), std::string::npos);
}

TEST(SecretBuffer, gives_a_block_back_wiped_to_its_last_byte) {
  test_support::KeptBlocks memory;
  {
    SecretBuffer buffer(5000, &memory);
    std::memset(buffer.data(), 'x', buffer.size());
  }
  EXPECT_TRUE(memory.all_wiped());
  EXPECT_EQ(memory.given_back().at(0), std::string(5000, '\0'));
}

TEST(Wipe, overwrites_every_byte_and_takes_nothing) {
  char bytes[] = "secret";
  platform::wipe(bytes, sizeof bytes);
  EXPECT_EQ(std::string(bytes, sizeof bytes), std::string(sizeof bytes, '\0'));
  platform::wipe(nullptr, 0);
}

TEST(Wipe, reaches_the_bytes_of_a_key_and_its_initial_vector) {
  Storage<crypto_detail::Key> storage;
  auto* key = new (storage.bytes) crypto_detail::Key;
  key->key_size = 16;
  std::copy_n(secret.begin(), key->bytes.size(), key->bytes.begin());
  std::copy_n("initials", key->iv.size(), key->iv.begin());
  ASSERT_NE(storage.view().find("initials"), std::string::npos);
  key->~Key();
  EXPECT_EQ(storage.view().find("a s"), std::string::npos);
  EXPECT_EQ(storage.view().find(secret.substr(21, 3)), std::string::npos);
  EXPECT_EQ(storage.view().find("ini"), std::string::npos);
}

TEST(Wipe, reaches_the_digest_of_a_hash) {
  Storage<crypto_detail::Hash> storage;
  auto* hash = new (storage.bytes) crypto_detail::Hash;
  std::copy_n(secret.begin(), hash->digest.size(), hash->digest.begin());
  ASSERT_NE(storage.view().find("a secret"), std::string::npos);
  hash->~Hash();
  EXPECT_EQ(storage.view().find("a s"), std::string::npos);
}

}  // namespace
