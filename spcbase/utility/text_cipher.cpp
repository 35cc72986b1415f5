#include "spcbase/utility/internal/text_cipher.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "spcbase/foundation/internal/raise.h"
#include "spcbase/platform/crypto/base64.h"
#include "spcbase/platform/crypto/secret_buffer.h"
#include "spcbase/platform/system/system_error.h"

namespace {

using platform::SecretBuffer;

/// The table of providers. Its order is part of the stored format.
struct ProviderRow {
  const char16_t* name;
  DWORD type;
  ALG_ID algorithm;
  DWORD key_bits;
  bool salt_on_key;
  bool iv_on_key;
};

constexpr ProviderRow provider_rows[] = {
    {MS_ENHANCED_PROV, PROV_RSA_FULL, CALG_3DES, 168, false, true},
    {MS_STRONG_PROV, PROV_RSA_FULL, CALG_3DES, 168, false, true},
    {MS_DEF_PROV, PROV_RSA_FULL, CALG_RC4, 56, true, false},
};
constexpr std::int32_t row_count = static_cast<std::int32_t>(std::size(provider_rows));
/// Row 2 is too weak for new texts.
constexpr std::int32_t rows_for_new_texts = 2;

/// No keys are stored, so the container needs no name.
constexpr const char16_t* key_container = nullptr;

constexpr std::size_t header_size = 4;
constexpr unsigned format_version = 1;

constexpr auto longest_text_form = static_cast<std::size_t>(std::numeric_limits<int>::max());
/// Leaves room for the header and a block of padding.
constexpr std::size_t longest_text = longest_text_form / 4 * 3 - header_size - 8;

[[noreturn]] void raise_last_error() {
  const CString text = get_system_error_text(GetLastError());
  if (text.IsEmpty()) throw std::exception();
  throw std::runtime_error(text.GetString());
}

void check(BOOL done) {
  if (!done) raise_last_error();
}

const ProviderRow& row_of(std::int32_t index) {
  if (index < 0 || index >= row_count) throw std::runtime_error("There is no such provider of ciphers.");
  return provider_rows[index];
}

std::string_view view_of(const char* text) { return text ? std::string_view(text) : std::string_view(); }

const BYTE* bytes_of(std::string_view text) { return reinterpret_cast<const BYTE*>(text.data()); }

void write_16(unsigned char* target, unsigned value) {
  target[0] = static_cast<unsigned char>(value);
  target[1] = static_cast<unsigned char>(value >> 8U);
}

unsigned read_16(const unsigned char* bytes) { return bytes[0] | static_cast<unsigned>(bytes[1]) << 8U; }

/// Replaces the run of one character at the end of a text by as many of another.
void replace_tail(char* text, std::size_t length, char from, char to) {
  while (length > 0 && text[length - 1] == from)
    text[--length] = to;
}

CString encode(std::span<const unsigned char> bytes, char pad_char) {
  CString text;
  char* target = text.GetBufferSetLength(static_cast<int>(platform::base64_length(bytes.size())));
  platform::encode_base64(bytes, target);
  if (pad_char != '=') replace_tail(target, text.view().size(), '=', pad_char);
  return text;
}

std::optional<std::size_t> decode(std::string_view text, char pad_char, SecretBuffer& bytes) {
  if (pad_char == '=') return platform::decode_base64(text, bytes.bytes());
  std::string standard(text);
  replace_tail(standard.data(), standard.size(), pad_char, '=');
  return platform::decode_base64(standard, bytes.bytes());
}

}  // namespace

/// The hash and the key of one operation.
class TextCipher::SessionKey {
 public:
  SessionKey(const TextCipherSettings& settings, HCRYPTPROV held, const ProviderRow& row, const char* key_text)
      : settings_(settings), calls_(*settings.calls) {
    try {
      derive(held, row, key_text);
    } catch (...) {
      destroy();
      throw;
    }
  }
  ~SessionKey() { destroy(); }
  SessionKey(const SessionKey&) = delete;
  SessionKey& operator=(const SessionKey&) = delete;

  HCRYPTKEY get() const noexcept { return key_; }

 private:
  void derive(HCRYPTPROV held, const ProviderRow& row, const char* key_text) {
    check(calls_.create_hash(held, CALG_SHA1, &hash_));
    if (!row.salt_on_key && !settings_.salt_text.empty()) add(settings_.salt_text);
    if (key_text) add(key_text);
    check(calls_.derive_key(held, row.algorithm, hash_, row.key_bits << 16U, &key_));
    if (row.salt_on_key && !settings_.salt_text.empty()) set(KP_SALT, settings_.salt_text);
    if (row.iv_on_key && !settings_.iv_text.empty()) set(KP_IV, settings_.iv_text);
  }

  void add(std::string_view text) {
    if (text.size() > longest_text_form) throw std::length_error("The key text is too long.");
    check(calls_.hash_data(hash_, bytes_of(text), static_cast<DWORD>(text.size())));
  }

  /// Kept: a length that cannot be asked for, or none, leaves the parameter as it is, without a failure.
  void set(DWORD parameter, std::string_view text) {
    DWORD size = 0;
    if (!calls_.get_key_param(key_, parameter, nullptr, &size) || size == 0) return;
    SecretBuffer value(size, settings_.memory);
    std::copy_n(text.begin(), std::min<std::size_t>(size, text.size()), value.data());
    check(calls_.set_key_param(key_, parameter, value.data()));
  }

  void destroy() noexcept {
    if (key_ != 0) calls_.destroy_key(key_);
    if (hash_ != 0) calls_.destroy_hash(hash_);
  }

  const TextCipherSettings& settings_;
  const CryptCalls& calls_;
  HCRYPTHASH hash_ = 0;
  HCRYPTKEY key_ = 0;
};

TextCipher::~TextCipher() { release_provider(); }

CString TextCipher::encrypt(const char* text, const char* key_text) { return encrypt_bytes(view_of(text), key_text); }

CString TextCipher::encrypt_bytes(std::string_view text, const char* key_text) {
  if (text.empty()) return CString("");
  if (text.size() > longest_text) throw std::length_error("The text is too long to be enciphered.");
  if (provider == 0) choose_provider();
  const SessionKey key(settings_, provider, row_of(provider_index), key_text);
  auto size = static_cast<DWORD>(text.size());
  check(settings_.calls->encrypt(key.get(), nullptr, &size, 0));
  size = std::max(size, static_cast<DWORD>(text.size()));
  SecretBuffer buffer(header_size + size, settings_.memory);
  write_16(buffer.data(), format_version);
  write_16(buffer.data() + 2, static_cast<unsigned>(provider_index));
  std::memcpy(buffer.data() + header_size, text.data(), text.size());
  auto length = static_cast<DWORD>(text.size());
  check(settings_.calls->encrypt(key.get(), buffer.data() + header_size, &length, size));
  return encode(buffer.bytes().first(header_size + length), pad_char);
}

CString TextCipher::decrypt(const char* text, const char* key_text) {
  const std::string_view form = view_of(text);
  if (form.empty()) return CString("");
  if (form.size() > longest_text_form) throw std::length_error("The enciphered text is too long.");
  SecretBuffer buffer(platform::base64_room(form.size()), settings_.memory);
  const auto size = decode(form, pad_char, buffer);
  if (!size || *size < header_size) throw std::runtime_error("The text is not an enciphered one.");
  if (read_16(buffer.data()) != format_version) throw std::runtime_error("The enciphered text has an unknown format.");
  const auto index = static_cast<std::int32_t>(read_16(buffer.data() + 2));
  row_of(index);
  acquire_for_reading(index);
  const SessionKey key(settings_, provider, row_of(index), key_text);
  auto length = static_cast<DWORD>(*size - header_size);
  check(settings_.calls->decrypt(key.get(), buffer.data() + header_size, &length));
  return {reinterpret_cast<const char*>(buffer.data()) + header_size, static_cast<int>(length)};
}

void TextCipher::choose_provider() {
  if (provider != 0) throw std::runtime_error("A provider of ciphers is held already.");
  if (provider_index != -1) {
    if (!try_to_acquire(provider_index)) raise_last_error();
    return;
  }
  for (std::int32_t index = 0; index < rows_for_new_texts; ++index) {
    if (!try_to_acquire(index)) continue;
    provider_index = index;
    return;
  }
  raise_last_error();
}

bool TextCipher::try_to_acquire(std::int32_t index) {
  const ProviderRow& row = row_of(index);
  // Deleting leaves a handle that means nothing, so only the last one counts.
  HCRYPTPROV acquired = 0;
  const auto acquire = [&](DWORD flag) {
    return settings_.calls->acquire_context(&acquired, key_container, row.name, row.type, CRYPT_VERIFYCONTEXT | flag);
  };
  const bool done = acquire(0) || acquire(CRYPT_NEWKEYSET) || (acquire(CRYPT_DELETEKEYSET) && acquire(CRYPT_NEWKEYSET));
  if (done) provider = acquired;
  return done;
}

void TextCipher::acquire_for_reading(std::int32_t index) {
  if (provider != 0 && provider_index == index) return;
  release_provider();
  provider_index = index;
  if (!try_to_acquire(index)) raise_last_error();
}

void TextCipher::release_provider() noexcept {
  if (provider != 0) settings_.calls->release_context(provider);
  provider = 0;
}
