#include "tools/spc/touched_rows.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace spc {
namespace {

std::string upper(std::string_view text) {
  std::string capital(text);
  std::ranges::transform(capital, capital.begin(),
                         [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
  return capital;
}

bool is_blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

/// The words that a statement begins with; what stands in parentheses is passed over, names lose their quotes.
class Words {
 public:
  explicit Words(std::string_view text) : rest_(text) {}

  /// In capital letters; empty at the end.
  std::string next() {
    skip();
    std::string word;
    while (!rest_.empty() && !is_blank(rest_.front()) && rest_.front() != '(')
      word += is_quote(rest_.front()) ? quoted() : std::string(1, taken());
    return upper(word);
  }

 private:
  static bool is_quote(char c) { return c == '[' || c == '"' || c == '`'; }

  char taken() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }
  std::string quoted() {
    const char open = taken();
    const auto end = std::min(rest_.find(open == '[' ? ']' : open), rest_.size());
    std::string name(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return name;
  }
  void skip() {
    while (!rest_.empty() && (is_blank(rest_.front()) || rest_.front() == '('))
      rest_.remove_prefix(rest_.front() == '(' ? std::min(rest_.find(')'), rest_.size() - 1) + 1 : 1);
  }

  std::string_view rest_;
};

/// Words that may stand between what is done and the table.
constexpr std::array between = {"INTO", "FROM", "TOP", "TABLE", "IGNORE", "ONLY"};

}  // namespace

std::optional<RowChange> row_change_of(std::string_view statement) {
  constexpr struct {
    std::string_view verb;
    std::optional<long> TouchedRows::*rows;
  } verbs[] = {{"INSERT", &TouchedRows::inserted},
               {"UPDATE", &TouchedRows::updated},
               {"DELETE", &TouchedRows::deleted},
               {"TRUNCATE", &TouchedRows::deleted}};
  Words words(statement);
  const std::string first = words.next();
  const auto* const verb = std::ranges::find_if(verbs, [&](const auto& known) { return known.verb == first; });
  if (verb == std::end(verbs)) return std::nullopt;
  std::string table = words.next();
  while (std::ranges::find(between, table) != between.end())
    table = words.next();
  return RowChange{table.substr(table.rfind('.') + 1), verb->rows};
}

bool changes_schema(std::string_view statement) {
  const std::string first = Words(statement).next();
  return first == "CREATE" || first == "ALTER" || first == "DROP" || first == "TRUNCATE";
}

void RowCounter::count(const spcdb::StatementReport& report) {
  if (report.failure != nullptr) return;
  if (changes_schema(report.statement)) ++schema_statements_;
  const auto change = row_change_of(report.statement);
  if (!change || report.rows == 0) return;
  auto& rows = tables_[change->table].*change->rows;
  if (report.rows < 0)
    rows.reset();
  else if (rows)
    *rows += static_cast<long>(report.rows);
}

}  // namespace spc
