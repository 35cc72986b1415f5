#include "spcbase/foundation/settings.h"

#include <algorithm>
#include <string>
#include <utility>

#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/internal/opening.h"
#include "spcbase/foundation/schema/settings.h"

namespace {

/// The pieces of one value with their numbers.
using Pieces = std::vector<std::pair<int, CString>>;

std::string join(Pieces& pieces) {
  std::ranges::sort(pieces, {}, &Pieces::value_type::first);
  std::string text;
  for (const auto& piece : pieces)
    text.append(piece.second.view());
  return text;
}

/// Kept: lower-case letters are no digits, and what is no digit counts as 0.
unsigned digit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10U;
  return 0;
}

std::shared_ptr<SystemSettingCache::Data> decode(const std::string& text) {
  auto data = std::make_shared<SystemSettingCache::Data>(static_cast<int>(text.size() / 2));
  for (std::size_t i = 0; i + 1 < text.size(); i += 2)
    data->data[i / 2] = static_cast<unsigned char>(digit(text[i]) << 4U | digit(text[i + 1]));
  return data;
}

}  // namespace

void SystemSettingCache::read(CDatabase* database) {
  std::map<CString, Pieces> pieces;
  RSINI rows(database, true);
  rows.m_strFilter = "QUAL = 'SYSTEM' AND SECT = 'SETTINGS'";
  if (!open_for_read(rows)) throw_can_not_open_rs_exception();
  for (; !rows.IsEOF(); rows.MoveNext()) {
    rows.optval.TrimRight();
    pieces[rows.kyword.Trim()].emplace_back(static_cast<int>(rows.seqno), rows.optval);
  }
  rows.Close();
  for (auto& [key, value] : pieces)
    settings_[key] = decode(join(value));
}
