#include "spcbase/platform/database/literal_lift.h"

#include <charconv>
#include <system_error>

#include "spcbase/platform/database/sql_scan.h"

namespace spcdb {

namespace {

using scan::same_word;

/// Words behind which a text literal is not a plain value.
bool types_a_literal(std::string_view word) {
  return same_word(word, "DATE") || same_word(word, "TIME") || same_word(word, "TIMESTAMP") ||
         same_word(word, "INTERVAL") || same_word(word, "ESCAPE") || same_word(word, "COLLATE");
}

/// Words behind which numbers in brackets are widths.
bool has_a_width(std::string_view word) {
  static constexpr std::string_view types[] = {"CHAR",    "VARCHAR",   "NCHAR",     "NVARCHAR", "VARCHAR2", "NVARCHAR2",
                                               "DECIMAL", "NUMERIC",   "NUMBER",    "FLOAT",    "DATETIME", "DATETIME2",
                                               "BINARY",  "VARBINARY", "TIMESTAMP", "TIME",     "INT",      "BIGINT"};
  for (const auto type : types) {
    if (same_word(word, type)) return true;
  }
  return false;
}

/// One walk over a text, writing its shape.
class Lifter {
 public:
  Lifter(std::string_view given, LiftFrom from, std::string& shape, LiftedLiterals& literals)
      : given_(given), shape_(shape), literals_(literals), lifting_(from == LiftFrom::beginning) {}

  void run() {
    while (at_ < given_.size())
      step();
    copy();
  }

 private:
  void step() {
    const char c = given_[at_];
    if (scan::is_word_start(c)) {
      word();
    } else if (c == '\'') {
      literal();
    } else if (scan::is_digit(c) || (c == '.' && at_ + 1 < given_.size() && scan::is_digit(given_[at_ + 1]))) {
      number();
    } else if (c == '?') {
      literals_.slots.push_back({});
      ++at_;
      last_word_ = {};
    } else {
      other(c);
    }
  }

  void other(char c) {
    if (c == '[' || c == '"' || c == '`') {
      at_ = scan::name_end(given_, at_);
      last_word_ = {};
    } else if (c == '{') {
      at_ = scan::brace_end(given_, at_);
    } else if (scan::at_comment(given_, at_)) {
      at_ = scan::comment_end(given_, at_);
    } else {
      if (c == '(') open_bracket();
      if (c == ')') close_bracket();
      if (!scan::is_space(c) && c != '(') last_word_ = {};
      ++at_;
    }
  }

  void word() {
    const auto end = scan::word_end(given_, at_);
    last_word_ = given_.substr(at_, end - at_);
    // N'..', X'..' and _utf8'..': the literal belongs to the word.
    if (end < given_.size() && given_[end] == '\'') {
      at_ = scan::literal_end(given_, end);
      last_word_ = {};
      return;
    }
    if (same_word(last_word_, "WHERE")) {
      lifting_ = true;
    } else if (same_word(last_word_, "ORDER") || same_word(last_word_, "GROUP")) {
      positions_ = true;
    } else if (same_word(last_word_, "SELECT")) {
      positions_ = false;
    }
    at_ = end;
  }

  void literal() {
    const auto end = scan::literal_end(given_, at_);
    const bool complete = end - at_ >= 2 && given_[end - 1] == '\'';
    if (!lifting_ || !complete || types_a_literal(last_word_)) {
      at_ = end;
      return;
    }
    add_text(at_ + 1, end - 1);
    last_word_ = {};
  }

  void add_text(std::size_t begin, std::size_t end) {
    LiftedSlot slot;
    const auto inner = given_.substr(begin, end - begin);
    if (inner.find('\'') == std::string_view::npos) {
      slot.source = LiftedSlot::Source::text;
      slot.offset = begin;
      slot.length = inner.size();
    } else {
      slot.source = LiftedSlot::Source::unescaped_text;
      slot.offset = literals_.unescaped.size();
      for (std::size_t i = 0; i < inner.size(); ++i) {
        literals_.unescaped += inner[i];
        if (inner[i] == '\'') ++i;
      }
      slot.length = literals_.unescaped.size() - slot.offset;
    }
    add(slot, end + 1);
  }

  /// Puts a `?` in the place of the literal that ends at `end`.
  void add(const LiftedSlot& slot, std::size_t end) {
    literals_.slots.push_back(slot);
    literals_.any_lifted = true;
    copy();
    shape_ += '?';
    at_ = copied_ = end;
  }

  void number() {
    std::size_t end = at_;
    bool whole = true;
    while (end < given_.size() && scan::is_digit(given_[end]))
      ++end;
    if (end < given_.size() && given_[end] == '.') {
      whole = false;
      ++end;
      while (end < given_.size() && scan::is_digit(given_[end]))
        ++end;
    }
    end = exponent_end(end, whole);
    const bool follows_dot = at_ > 0 && given_[at_ - 1] == '.';
    const bool runs_on = end < given_.size() && (scan::is_word_start(given_[end]) || given_[end] == '.');
    LiftedSlot slot;
    if (lifting_ && !positions_ && width_depth_ == 0 && !follows_dot && !runs_on && parse(end, whole, slot)) {
      add(slot, end);
    } else {
      at_ = runs_on ? scan::word_end(given_, end) : end;
    }
    last_word_ = {};
  }

  std::size_t exponent_end(std::size_t at, bool& whole) const {
    if (at >= given_.size() || (given_[at] != 'e' && given_[at] != 'E')) return at;
    std::size_t end = at + 1;
    if (end < given_.size() && (given_[end] == '+' || given_[end] == '-')) ++end;
    if (end >= given_.size() || !scan::is_digit(given_[end])) return at;
    while (end < given_.size() && scan::is_digit(given_[end]))
      ++end;
    whole = false;
    return end;
  }

  bool parse(std::size_t end, bool whole, LiftedSlot& slot) const {
    const char* first = given_.data() + at_;
    const char* last = given_.data() + end;
    if (whole) {
      slot.source = LiftedSlot::Source::integer;
      const auto [rest, error] = std::from_chars(first, last, slot.integer);
      return error == std::errc{} && rest == last;
    }
    slot.source = LiftedSlot::Source::real;
    const auto [rest, error] = std::from_chars(first, last, slot.real);
    return error == std::errc{} && rest == last;
  }

  void open_bracket() {
    if (width_depth_ > 0 || has_a_width(last_word_)) ++width_depth_;
  }
  void close_bracket() {
    if (width_depth_ > 0) --width_depth_;
    positions_ = false;
  }

  /// Writes what was passed over since the last literal.
  void copy() { shape_.append(given_, copied_, at_ - copied_); }

  std::string_view given_;
  std::string& shape_;
  LiftedLiterals& literals_;
  std::size_t at_ = 0;
  std::size_t copied_ = 0;  ///< what stands before it is in the shape
  bool lifting_;
  bool positions_ = false;  ///< numbers are positions of columns
  int width_depth_ = 0;     ///< inside the brackets of a type
  std::string_view last_word_;
};

}  // namespace

Parameter LiftedLiterals::value_of(const LiftedSlot& slot, std::string_view given) const {
  switch (slot.source) {
    case LiftedSlot::Source::integer:
      return Parameter::of_integer(slot.integer);
    case LiftedSlot::Source::real:
      return Parameter::of_real(slot.real);
    case LiftedSlot::Source::text:
      return Parameter::of_text(given.substr(slot.offset, slot.length));
    case LiftedSlot::Source::unescaped_text:
      return Parameter::of_text(std::string_view(unescaped).substr(slot.offset, slot.length));
    case LiftedSlot::Source::host:
      break;
  }
  return {};
}

void lift_literals(std::string_view given, LiftFrom from, std::string& shape, LiftedLiterals& literals) {
  Lifter(given, from, shape, literals).run();
}

std::string quote_names(std::string_view sql, char quote_open, char quote_close) {
  std::string out;
  out.reserve(sql.size());
  for (std::size_t at = 0; at < sql.size();) {
    const char c = sql[at];
    std::size_t end = at + 1;
    if (c == '\'') {
      end = scan::literal_end(sql, at);
    } else if (c == '"' || c == '`') {
      end = scan::name_end(sql, at);
    } else if (scan::at_comment(sql, at)) {
      end = scan::comment_end(sql, at);
    } else if (c == '[' || c == ']') {
      out += c == '[' ? quote_open : quote_close;
      at = end;
      continue;
    }
    out.append(sql, at, end - at);
    at = end;
  }
  return out;
}

std::string double_literal_backslashes(std::string_view sql) {
  std::string out;
  out.reserve(sql.size());
  for (std::size_t at = 0; at < sql.size();) {
    std::size_t end = at + 1;
    if (sql[at] == '\'') {
      end = scan::literal_end(sql, at);
      for (std::size_t i = at; i < end; ++i) {
        out += sql[i];
        if (sql[i] == '\\') out += '\\';
      }
      at = end;
      continue;
    }
    if (sql[at] == '"' || sql[at] == '`' || sql[at] == '[') end = scan::name_end(sql, at);
    if (scan::at_comment(sql, at)) end = scan::comment_end(sql, at);
    out.append(sql, at, end - at);
    at = end;
  }
  return out;
}

}  // namespace spcdb
