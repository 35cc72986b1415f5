// A password of 200 bytes enciphered and read, beside OpenSSL alone doing the same hash, derivation, cipher and Base64,
// with its algorithms fetched once.
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/jobs.h"
#include "spcbase/utility/internal/text_cipher.h"

namespace bench {
namespace {

constexpr char key_text[] = "3337";
constexpr double limit = 1.5;

const std::string& secret() {
  static const std::string text(200, 's');
  return text;
}

double sum_of(std::string_view text) {
  double sum = 0;
  for (const char c : text)
    sum += static_cast<unsigned char>(c);
  return sum;
}

std::string stored_secret() {
  TextCipher cipher;
  return cipher.encrypt(secret().c_str(), key_text).GetString();
}

void require(bool done) {
  if (!done) throw std::runtime_error("OpenSSL failed");
}

struct Free {
  void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
  void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
template <class T>
using Held = std::unique_ptr<T, Free>;

using Block = std::array<unsigned char, 64>;

/// OpenSSL alone.
class PlainCipher : public WorkAlone {
 protected:
  Held<EVP_CIPHER_CTX> keyed_context(int encrypt) const {
    std::array<unsigned char, 20> hash;
    Held<EVP_MD_CTX> hashing(EVP_MD_CTX_new());
    require(EVP_DigestInit_ex(hashing.get(), sha1_.get(), nullptr) == 1);
    constexpr std::string_view salt = stored_constants::cipher_salt_text;
    require(EVP_DigestUpdate(hashing.get(), salt.data(), salt.size()) == 1);
    require(EVP_DigestUpdate(hashing.get(), key_text, sizeof key_text - 1) == 1);
    require(EVP_DigestFinal_ex(hashing.get(), hash.data(), nullptr) == 1);
    std::array<unsigned char, 40> key;
    for (const auto& [filler, at] : {std::pair{0x36, 0}, std::pair{0x5C, 20}}) {
      Block block;
      block.fill(static_cast<unsigned char>(filler));
      for (std::size_t i = 0; i < hash.size(); ++i)
        block[i] ^= hash[i];
      require(EVP_Digest(block.data(), block.size(), key.data() + at, nullptr, sha1_.get(), nullptr) == 1);
    }
    Held<EVP_CIPHER_CTX> context(EVP_CIPHER_CTX_new());
    const auto* iv = reinterpret_cast<const unsigned char*>(stored_constants::cipher_iv_text.data());
    require(EVP_CipherInit_ex2(context.get(), triple_des_.get(), key.data(), iv, encrypt, nullptr) == 1);
    return context;
  }

 private:
  Held<EVP_MD> sha1_{EVP_MD_fetch(nullptr, "SHA1", nullptr)};
  Held<EVP_CIPHER> triple_des_{EVP_CIPHER_fetch(nullptr, "DES-EDE3-CBC", nullptr)};
};

class OurEncrypting final : public WorkAlone {
 public:
  void run() override {
    TextCipher cipher;
    sum_ += sum_of(cipher.encrypt(secret().c_str(), key_text).view());
  }
};

class PlainEncrypting final : public PlainCipher {
 public:
  void run() override {
    const auto context = keyed_context(1);
    std::vector<unsigned char> bytes(4 + secret().size() + 8);
    bytes[0] = 1;
    int head = 0;
    int tail = 0;
    const auto* text = reinterpret_cast<const unsigned char*>(secret().data());
    require(EVP_CipherUpdate(context.get(), bytes.data() + 4, &head, text, static_cast<int>(secret().size())) == 1);
    require(EVP_CipherFinal_ex(context.get(), bytes.data() + 4 + head, &tail) == 1);
    std::string form(bytes.size() * 2, '\0');
    form.resize(static_cast<std::size_t>(
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(form.data()), bytes.data(), 4 + head + tail)));
    sum_ += sum_of(form);
  }
};

class OurDecrypting final : public WorkAlone {
 public:
  void run() override {
    TextCipher cipher;
    sum_ += sum_of(cipher.decrypt(stored_.c_str(), key_text).view());
  }

 private:
  std::string stored_ = stored_secret();
};

class PlainDecrypting final : public PlainCipher {
 public:
  void run() override {
    std::vector<unsigned char> bytes(stored_.size());
    const auto* form = reinterpret_cast<const unsigned char*>(stored_.data());
    const int padding = static_cast<int>(std::count(stored_.begin(), stored_.end(), '='));
    const int size = EVP_DecodeBlock(bytes.data(), form, static_cast<int>(stored_.size())) - padding;
    require(size > 4 && bytes[0] == 1);
    const auto context = keyed_context(0);
    std::string text(bytes.size(), '\0');
    auto* target = reinterpret_cast<unsigned char*>(text.data());
    int head = 0;
    int tail = 0;
    require(EVP_CipherUpdate(context.get(), target, &head, bytes.data() + 4, size - 4) == 1);
    require(EVP_CipherFinal_ex(context.get(), target + head, &tail) == 1);
    text.resize(static_cast<std::size_t>(head + tail));
    sum_ += sum_of(text);
  }

 private:
  std::string stored_ = stored_secret();
};

}  // namespace

Job encipher_secret() {
  Job job;
  job.name = "encipher 200 bytes";
  job.pair_alone = [] { return Pair{std::make_unique<OurEncrypting>(), std::make_unique<PlainEncrypting>()}; };
  job.alone_limit = limit;
  return job;
}

Job decipher_secret() {
  Job job;
  job.name = "decipher 200 bytes";
  job.pair_alone = [] { return Pair{std::make_unique<OurDecrypting>(), std::make_unique<PlainDecrypting>()}; };
  job.alone_limit = limit;
  return job;
}

}  // namespace bench
