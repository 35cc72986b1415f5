// Paths as texts.
#include <string>
#include <string_view>
#include <utility>

#include "spcbase/tree/path.h"
#include "spcbase/utility/text.h"

namespace {

constexpr std::string_view root_prefix = "enterprise:/";

/// How often a separator stands single, and where first.
struct Singles {
  int count = 0;
  std::size_t first = 0;
};

CString undoubled(std::string_view text, char separator) {
  CString result(text);
  const char doubled[] = {separator, separator, '\0'};
  const char single[] = {separator, '\0'};
  result.Replace(doubled, single);
  return result;
}

/// The place of the last single separator, or npos.
std::size_t last_single(std::string_view text, char separator) {
  for (std::size_t i = text.size(); i > 0; --i) {
    if (text[i - 1] != separator) continue;
    if (i < 2 || text[i - 2] != separator) return i - 1;
    --i;
  }
  return std::string_view::npos;
}

/// Appends the pieces between separators; empty ones do not count.
int append_pieces(const CString& text, const char* separators, std::vector<CString>& pieces) {
  int count = 0;
  int start = 0;
  for (CString piece = text.Tokenize(separators, start); start >= 0; piece = text.Tokenize(separators, start)) {
    pieces.push_back(piece);
    ++count;
  }
  return count;
}

}  // namespace

char determine_sep_char(const CString& text, int default_char) {
  const std::string_view all = text.view();
  if (all.empty()) return static_cast<char>(default_char);
  if (all[0] == '/' || all[0] == '\\') return all[0];
  Singles forward;
  Singles backward;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i] != '/' && all[i] != '\\') continue;
    if (i + 1 < all.size() && all[i + 1] == all[i]) {
      ++i;
      continue;
    }
    Singles& singles = all[i] == '/' ? forward : backward;
    if (singles.count++ == 0) singles.first = i;
  }
  if (forward.count == 0 && backward.count == 0) return static_cast<char>(default_char);
  if (forward.count != backward.count) return forward.count > backward.count ? '/' : '\\';
  return forward.first < backward.first ? '/' : '\\';
}

void extract_revision(const char* text, CString& name, int& revision) {
  const CString whole(text);
  const int bar = whole.ReverseFind('|');
  const CString word = bar < 0 ? CString() : whole.Mid(bar + 1);
  int number = 0;
  bool is_word = bar >= 0;
  if (word.CompareNoCase("latestapproved") == 0 || word.CompareNoCase("approved") == 0)
    number = latest_approved_revision;
  else if (word.CompareNoCase("latest") != 0)
    is_word = is_int_str(word, &number);
  name = is_word ? whole.Left(bar) : whole;
  revision = is_word ? number : 0;
}

bool analyse_path(const char* path, CString& folder, CString& name, bool undouble_folder, bool undouble_name,
                  bool with_revision, int* revision) {
  CString text(path);
  text.Trim();
  if (text.Left(static_cast<int>(root_prefix.size())).CompareNoCase(root_prefix.data()) == 0)
    text.Delete(0, static_cast<int>(root_prefix.size()));
  const char separator = determine_sep_char(text, 0);
  if (separator == '\0') return false;
  const std::string_view all = text.view();
  const std::size_t place = last_single(all, separator);
  if (place == std::string_view::npos) return false;

  const auto before = all.substr(0, place == 0 ? 1 : place);
  const auto behind = all.substr(place + 1);
  const CString last = undouble_name ? undoubled(behind, separator) : CString(behind);
  folder = undouble_folder ? undoubled(before, separator) : CString(before);
  if (with_revision) {
    int asked = 0;
    extract_revision(last, name, asked);
    if (revision) *revision = asked;
  } else {
    name = last;
  }
  return true;
}

int split_path(const char* path, std::vector<CString>& names) {
  names.clear();
  CString text(path);
  const char separator = determine_sep_char(text, '\\');
  const char doubled[] = {separator, separator, '\0'};
  const char single[] = {separator, '\0'};
  text.Replace(doubled, "\t");
  append_pieces(text, single, names);
  for (CString& name : names)
    name.Replace('\t', separator);
  return static_cast<int>(names.size());
}

bool split_name_and_ext(const CString& text, CString& name, CString& extension) {
  // Either argument may be the text itself.
  const int dot = text.ReverseFind('.');
  CString before = dot < 0 ? text : text.Left(dot);
  CString behind = dot < 0 ? CString() : text.Mid(dot + 1);
  name = std::move(before);
  extension = std::move(behind);
  return !name.IsEmpty();
}

int extract_paths(const char* text, std::vector<CString>& paths) { return append_pieces(text, ":", paths); }
