#include "tools/spc/settings.h"

#include <map>
#include <utility>

#include "spcbase/foundation/recordset.h"
#include "spcbase/foundation/schema.h"
#include "spcbase/foundation/settings.h"
#include "tools/spc/problem.h"
#include "tools/spc/utf8.h"

namespace spc {
namespace {

/// The stored text of a setting, its pieces in order.
using Pieces = std::multimap<long, std::string>;

/// The texts as they stand, since the cache passes over what is no hexadecimal text.
std::map<std::string, Pieces> read_texts(CDatabase& db) {
  std::map<std::string, Pieces> texts;
  RSINI rows(&db, false);
  requery_rs_for_read(rows, "QUAL = 'SYSTEM' AND SECT = 'SETTINGS'", true);
  for (; !rows.IsEOF(); rows.MoveNext()) {
    CString key = rows.kyword;
    CString piece = rows.optval;
    piece.TrimRight();
    texts[std::string(key.Trim().view())].emplace(rows.seqno, std::string(piece.view()));
  }
  return texts;
}

struct Damage {
  SettingFault fault = SettingFault::none;
  std::string text;
};

Damage damage_of(const Pieces& pieces) {
  std::string text;
  long last = 0;
  bool first = true;
  for (const auto& [number, piece] : pieces) {
    if (!first && number == last)
      return {SettingFault::doubled_piece, "two of its rows have the number " + std::to_string(number)};
    if (!first && number != last + 1)
      return {SettingFault::missing_piece, "row " + std::to_string(last + 1) + " is missing"};
    // Rows count from 0 or from 1, as the program that writes them likes.
    if (first && number > 1) return {SettingFault::missing_piece, "row 1 is missing"};
    first = false;
    last = number;
    text += piece;
  }
  if (const auto at = text.find_first_not_of("0123456789ABCDEF"); at != std::string::npos)

    return {SettingFault::bad_digit,
            "character " + std::to_string(at + 1) + " of its text is none of 0 to 9 and A to F"};
  if (text.size() % 2 != 0) return {SettingFault::half_byte, "its text ends in the middle of a byte"};
  return {};
}

}  // namespace

std::vector<SettingView> read_settings(Link& link) {
  return doing("cannot read the settings", [&] {
    SystemSettingCache cache;
    cache.refresh(&link.db());
    const auto texts = read_texts(link.db());
    std::vector<SettingView> views;
    for (const auto& key : cache.keys()) {
      const auto value = cache.find(key);
      SettingView& view = views.emplace_back();
      view.key = key.view();
      if (value->size > 0) view.bytes.assign(value->data, value->data + value->size);
      if (const auto found = texts.find(view.key); found != texts.end()) {
        Damage damage = damage_of(found->second);
        view.fault = damage.fault;
        view.damage = std::move(damage.text);
      }
    }
    return views;
  });
}

}  // namespace spc
