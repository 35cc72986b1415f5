/// Enciphers a text under a key text into a printable one, and reads it again.
///
/// Part of utilities, for the library's own use: hosts reach it through the data sources.
/// Format: docs/formats/protected_texts.md.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <string_view>

#include "spcbase/platform/crypto/provider.h"
#include "spcbase/platform/text/cstring.h"
#include "spcbase/utility/internal/crypt_calls.h"
#include "spcbase/utility/internal/stored_constants.h"

/// What a `TextCipher` works with. Only tests change it.
struct TextCipherSettings {
  std::string_view salt_text = stored_constants::cipher_salt_text;
  std::string_view iv_text = stored_constants::cipher_iv_text;
  const CryptCalls* calls = &CryptCalls::of_platform();
  /// Where secrets of more than `platform::SecretBuffer::inline_size` bytes stand; wiped before it gets them back.
  std::pmr::memory_resource* memory = std::pmr::new_delete_resource();
};

/// Made for one call and thrown away after it. What a secret or a key stood in is wiped; arguments and results are the
/// caller's.
///
/// Fails:  std::runtime_error with the system's text for the last error when a call of the provider fails, line end
///         included; a plain std::exception when there is no such text; std::runtime_error for a text that is none of
///         its own and for an index that is none; std::length_error, before memory is asked for, when a text or a key
///         text is too long: the text form of at most 2 GB. After a failure the object may be used again.
class TextCipher {
 public:
  explicit TextCipher(const TextCipherSettings& settings = {}) : settings_(settings) {}
  ~TextCipher();
  TextCipher(const TextCipher&) = delete;
  TextCipher& operator=(const TextCipher&) = delete;

  /// Enciphers a text. With no provider held, the one of `provider_index` is taken, or the first of 0 and 1 that can be
  /// had.
  /// Null:   a null or empty text gives an empty one. A null key text counts as an empty one.
  CString encrypt(const char* text, const char* key_text);
  /// The same for a text that may hold zero bytes, as the result of `decrypt` may.
  CString encrypt_bytes(std::string_view text, const char* key_text);

  /// Reads an enciphered text; it says itself which provider it needs. The result may hold zero bytes.
  /// Null:   a null or empty text gives an empty one.
  CString decrypt(const char* text, const char* key_text);

  /// The row of the table of providers, -1 until one is chosen.
  std::int32_t provider_index = -1;
  /// The provider that is held; 0 for none.
  HCRYPTPROV provider = 0;
  /// What stands for "=" at the end of the text form.
  char pad_char = '=';

  /// Chooses and acquires a provider for `encrypt`.
  /// Fails:  also when one is held, and for an index that is none.
  void choose_provider();

 private:
  class SessionKey;

  bool try_to_acquire(std::int32_t index);
  void acquire_for_reading(std::int32_t index);
  void release_provider() noexcept;

  TextCipherSettings settings_;
};
