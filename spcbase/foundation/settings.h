/// The system-wide settings, read in one query and kept by key.
///
/// Part of the database foundation. A setting is a row of bytes. It stands in CSINI as hexadecimal text, cut into rows
/// that a column holds:
///
///     SystemSettingCache settings;
///     settings.refresh(&db);
///     if (auto value = settings.find("email_sender_source")) use(value->data, value->size);
///
/// The cache stays as it is until it is refreshed, whatever happens to the database. It takes no lock: a host that
/// shares one among threads keeps `refresh` and its readers apart; a value that was found stays valid on its own.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/system/export.h"
#include "spcbase/platform/text/cstring.h"

/// Texts that hosts share.
namespace setting {

/// The key of the setting that says where the sender of an e-mail comes from, and its two values.
inline constexpr const char* email_sender_source = "email_sender_source";
inline constexpr const char* use_system_level = "use system level";
inline constexpr const char* use_stored_in_object = "use stored in object";

}  // namespace setting

/// The settings of the product, read whole from CSINI and kept.
class SystemSettingCache {
 public:
  /// The bytes of one setting.
  struct Data {
    Data() = default;
    /// Zeros.
    explicit Data(int size_bytes)
        : data(size_bytes > 0 ? new unsigned char[static_cast<std::size_t>(size_bytes)]() : nullptr),
          size(size_bytes) {}
    ~Data() { delete[] data; }
    Data(const Data&) = delete;
    Data& operator=(const Data&) = delete;

    unsigned char* data = nullptr;  ///< null when there are none
    int size = 0;                   ///< of `data`, in bytes
  };

  /// The setting with this key, in exactly this case; null when none was read. It outlives a later refresh.
  std::shared_ptr<const Data> find(const CString& key) const {
    const auto found = settings_.find(key);
    return found == settings_.end() ? nullptr : found->second;
  }

  /// Reads all settings. White space at the ends of a key, and at the end of each row's piece of a value, does not
  /// count. What is no pair of the digits 0 to 9 and A to F fails nowhere: such a character counts as 0, and an odd
  /// last one is dropped.
  /// Fails:  `DBException` "Can not open recordset." when the connection is not open, CDBException* from the database;
  ///         the cache is as it was then.
  /// Kept:   a setting that has left the database stays here with its old value.
  void refresh(CDatabase* database) { read(database); }

  /// The keys that were read, in order.
  std::vector<CString> keys() const {
    std::vector<CString> all;
    all.reserve(settings_.size());
    for (const auto& setting : settings_)
      all.push_back(setting.first);
    return all;
  }

 private:
  SPCBASE_API void read(CDatabase* database);

  std::map<CString, std::shared_ptr<Data>> settings_;
};
