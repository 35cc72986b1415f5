/// The calls into the cryptographic provider as a test wants them: recorded, and failed where it says so.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "spcbase/platform/system/system_error.h"
#include "spcbase/utility/internal/crypt_calls.h"

namespace test_support {

/// Passes every call on to the platform, and keeps the books. Handles that were made and not given back are counted.
class ScriptedCryptCalls final : public CryptCalls {
 public:
  /// Fails the k-th call, counted from 1, with a number; releases and destructions are no calls in this sense.
  void fail(std::size_t k, DWORD error) {
    failing_call_ = k;
    error_ = error;
  }
  /// Fails acquiring with these flags: for one provider, or for every one when the name is empty.
  void refuse_to_acquire(std::u16string name, DWORD flags) { refused_.emplace_back(std::move(name), flags); }
  /// Answers the question for the length of a parameter: 0 and more are answers, without an entry the platform answers.
  std::function<BOOL(DWORD parameter, DWORD* size)> on_get_key_param;
  std::function<BOOL(HCRYPTKEY key, DWORD parameter, const BYTE* data)> on_set_key_param;

  /// Every call in order, by a short name with what matters of it.
  const std::vector<std::string>& log() const { return log_; }
  std::size_t calls_that_may_fail() const { return calls_; }
  int open_providers() const { return providers_; }
  int open_hashes() const { return hashes_; }
  int open_keys() const { return keys_; }
  bool nothing_open() const { return providers_ == 0 && hashes_ == 0 && keys_ == 0; }
  /// The texts that were hashed, in order.
  const std::vector<std::string>& hashed() const { return hashed_; }
  /// Whether every container was null.
  bool containers_were_null() const { return containers_were_null_; }

  BOOL acquire_context(HCRYPTPROV* provider, const char16_t* container, const char16_t* name, DWORD type,
                       DWORD flags) const override {
    containers_were_null_ = containers_were_null_ && container == nullptr;
    const std::u16string_view wide(name);
    log_.push_back("acquire " + std::string(wide.substr(10, 3).begin(), wide.substr(10, 3).end()) + " " +
                   std::to_string(type) + " " + hex(flags));
    if (fails()) return FALSE;
    for (const auto& [refused_name, refused_flags] : refused_)
      if ((refused_name.empty() || wide == refused_name) && refused_flags == flags) return refuse(refused_error);
    if (!CryptCalls::acquire_context(provider, container, name, type, flags)) return FALSE;
    if ((flags & CRYPT_DELETEKEYSET) != 0)
      *provider = 0xDEAD;  // what it holds after a deletion means nothing
    else
      ++providers_;
    return TRUE;
  }
  BOOL release_context(HCRYPTPROV provider) const override {
    log_.emplace_back("release");
    --providers_;
    return CryptCalls::release_context(provider);
  }
  BOOL create_hash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH* hash) const override {
    log_.push_back("create_hash " + hex(algorithm));
    return !fails() && CryptCalls::create_hash(provider, algorithm, hash) && ++hashes_ != 0;
  }
  BOOL hash_data(HCRYPTHASH hash, const BYTE* data, DWORD size) const override {
    hashed_.emplace_back(reinterpret_cast<const char*>(data), size);
    log_.push_back("hash_data " + hashed_.back());
    return !fails() && CryptCalls::hash_data(hash, data, size);
  }
  BOOL destroy_hash(HCRYPTHASH hash) const override {
    log_.emplace_back("destroy_hash");
    --hashes_;
    return CryptCalls::destroy_hash(hash);
  }
  BOOL derive_key(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTHASH hash, DWORD flags, HCRYPTKEY* key) const override {
    log_.push_back("derive_key " + hex(algorithm) + " " + hex(flags));
    return !fails() && CryptCalls::derive_key(provider, algorithm, hash, flags, key) && ++keys_ != 0;
  }
  BOOL get_key_param(HCRYPTKEY key, DWORD parameter, BYTE* data, DWORD* size) const override {
    log_.push_back("get_key_param " + std::to_string(parameter));
    if (fails()) return FALSE;
    return on_get_key_param ? on_get_key_param(parameter, size) : CryptCalls::get_key_param(key, parameter, data, size);
  }
  BOOL set_key_param(HCRYPTKEY key, DWORD parameter, const BYTE* data) const override {
    log_.push_back("set_key_param " + std::to_string(parameter));
    if (fails()) return FALSE;
    return on_set_key_param ? on_set_key_param(key, parameter, data) : CryptCalls::set_key_param(key, parameter, data);
  }
  BOOL destroy_key(HCRYPTKEY key) const override {
    log_.emplace_back("destroy_key");
    --keys_;
    return CryptCalls::destroy_key(key);
  }
  BOOL encrypt(HCRYPTKEY key, BYTE* data, DWORD* size, DWORD buffer_size) const override {
    log_.emplace_back(data ? "encrypt" : "encrypt null");
    return !fails() && CryptCalls::encrypt(key, data, size, buffer_size);
  }
  BOOL decrypt(HCRYPTKEY key, BYTE* data, DWORD* size) const override {
    log_.emplace_back("decrypt");
    return !fails() && CryptCalls::decrypt(key, data, size);
  }

  static constexpr DWORD refused_error = NTE_BAD_KEYSET;

 private:
  static std::string hex(DWORD value) {
    char text[12];
    std::snprintf(text, sizeof text, "%X", value);
    return text;
  }
  static BOOL refuse(DWORD error) {
    SetLastError(error);
    return FALSE;
  }
  bool fails() const {
    if (++calls_ != failing_call_) return false;
    SetLastError(error_);
    return true;
  }

  std::size_t failing_call_ = 0;
  DWORD error_ = 0;
  std::vector<std::pair<std::u16string, DWORD>> refused_;
  mutable std::vector<std::string> log_;
  mutable std::vector<std::string> hashed_;
  mutable std::size_t calls_ = 0;
  mutable int providers_ = 0;
  mutable int hashes_ = 0;
  mutable int keys_ = 0;
  mutable bool containers_were_null_ = true;
};

}  // namespace test_support
