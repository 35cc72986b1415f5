#include "spcbase/testkit/scripted_session.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "spcbase/platform/database/connection.h"
#include "spcbase/platform/database/db_exception.h"
#include "spcbase/platform/database/moment_text.h"
#include "spcbase/platform/database/value_text.h"

namespace test_support {

using spcdb::ValueKind;

spcdb::Diagnostic error(std::string sqlstate, long native, std::string text, std::string origin) {
  spcdb::Diagnostic diagnostic;
  diagnostic.sqlstate = std::move(sqlstate);
  diagnostic.native = native;
  diagnostic.text = std::move(text);
  diagnostic.origin = std::move(origin);
  return diagnostic;
}

Rule& Rule::answer(std::vector<std::string> columns, std::vector<std::vector<Cell>> rows) {
  action_ = Action::answer;
  columns_ = std::move(columns);
  rows_ = std::move(rows);
  affected_ = -1;
  return *this;
}

Rule& Rule::affect(std::int64_t rows) {
  action_ = Action::affect;
  affected_ = rows;
  return *this;
}

Rule& Rule::refuse(spcdb::Diagnostic diagnostic) {
  action_ = Action::refuse;
  diagnostic_ = std::move(diagnostic);
  return *this;
}

Rule& Rule::refuse_at_prepare(spcdb::Diagnostic diagnostic) {
  action_ = Action::refuse_at_prepare;
  diagnostic_ = std::move(diagnostic);
  return *this;
}

Rule& Rule::alter(std::string statement) {
  action_ = Action::alter;
  altered_ = std::move(statement);
  return *this;
}

Rule& Rule::pass() {
  action_ = Action::pass;
  return *this;
}

Rule& Rule::times(std::size_t count) {
  left_ = count;
  return *this;
}

bool Rule::matches(const std::string& statement) const {
  if (left_ == 0) return false;
  switch (match_) {
    case Match::exact:
      return statement == text_;
    case Match::prefix:
      return statement.starts_with(text_);
    case Match::regex:
      break;
  }
  return std::regex_match(statement, regex_);
}

Rule& Script::add(Rule::Match match, std::string text) {
  rules_.push_back(std::make_unique<Rule>());
  rules_.back()->match_ = match;
  rules_.back()->text_ = std::move(text);
  return *rules_.back();
}

Rule& Script::on(std::string statement) { return add(Rule::Match::exact, std::move(statement)); }
Rule& Script::on_prefix(std::string beginning) { return add(Rule::Match::prefix, std::move(beginning)); }

Rule& Script::on_regex(const std::string& expression) {
  auto& rule = add(Rule::Match::regex, expression);
  rule.regex_ = std::regex(expression, std::regex::ECMAScript | std::regex::icase);
  return rule;
}

Rule* Script::find(const std::string& statement) {
  for (auto& rule : rules_)
    if (rule->matches(statement)) return rule.get();
  return nullptr;
}

namespace {

bool bounds_a_transaction(const std::string& function) {
  return function == "begin" || function == "commit" || function == "rollback";
}

/// A rule that nothing ever meets would let a test pass that proves nothing.
[[noreturn]] void refuse_function(const char* rule, const std::string& function) {
  throw std::invalid_argument(std::string(rule) + ": \"" + function + "\" is no call that it is for");
}

}  // namespace

Script& Script::refuse_call(const std::string& function, spcdb::Diagnostic diagnostic, std::size_t times) {
  if (!bounds_a_transaction(function) && function != "find_key") refuse_function("refuse_call", function);
  call_rules_.emplace(function, CallRule{std::move(diagnostic), times, false});
  return *this;
}

Script& Script::lose_answer(const std::string& function, spcdb::Diagnostic diagnostic, std::size_t times) {
  if (!bounds_a_transaction(function)) refuse_function("lose_answer", function);
  call_rules_.emplace(function, CallRule{std::move(diagnostic), times, true});
  return *this;
}

Script& Script::transactions(bool supported) {
  transactions_ = supported;
  return *this;
}

Script& Script::quirks(const spcdb::Quirks& quirks) {
  quirks_ = quirks;
  return *this;
}

Script& Script::quotes(char open, char close) {
  quotes_ = std::pair(open, close);
  return *this;
}

Script& Script::information(unsigned short type, short return_code, std::uint32_t value) {
  information_[type] = {return_code, value};
  return *this;
}

Script& Script::information_text(unsigned short type, short return_code, std::string text) {
  information_texts_[type] = {return_code, std::move(text)};
  return *this;
}

Script& Script::column_sizes_zero() {
  column_sizes_zero_ = true;
  return *this;
}

Script& Script::refuse_streaming(spcdb::Diagnostic diagnostic) {
  no_streaming_ = std::move(diagnostic);
  return *this;
}

Script& Script::long_lengths_unknown() {
  long_lengths_unknown_ = true;
  return *this;
}

Script& Script::link_is_dead(bool dead) {
  link_is_dead_ = dead;
  return *this;
}

Script& Script::server(std::string description) {
  server_ = std::move(description);
  return *this;
}

Script& Script::key(const std::string& table, std::vector<std::string> columns) {
  keys_[table] = std::move(columns);
  return *this;
}

std::vector<std::string> Script::statements() const {
  std::vector<std::string> found;
  for (const auto& call : calls_)
    if (call.function == "execute" || call.function == "run") found.push_back(call.statement);
  return found;
}

std::vector<SeenCall> Script::calls_of(const std::string& function) const {
  std::vector<SeenCall> found;
  for (const auto& call : calls_)
    if (call.function == function) found.push_back(call);
  return found;
}

std::vector<SeenCall> Script::main_calls() const {
  std::vector<SeenCall> found;
  for (const auto& call : calls_)
    if (call.function != "fetch" && call.function != "close" && call.function != "describe") found.push_back(call);
  return found;
}

void Script::see(std::string function, std::string statement, std::string parameters) {
  calls_.push_back({std::move(function), std::move(statement), std::move(parameters)});
}

std::optional<spcdb::Diagnostic> Script::refusal(const std::string& function, bool after) {
  const auto [begin, end] = call_rules_.equal_range(function);
  for (auto it = begin; it != end; ++it) {
    if (it->second.after != after || it->second.left == 0) continue;
    --it->second.left;
    return it->second.diagnostic;
  }
  return std::nullopt;
}

namespace {

std::string quoted(std::string_view text) {
  std::string out = "'";
  for (const char c : text)
    out.append(c == '\'' ? 2U : 1U, c);
  return out + "'";
}

std::string moment_text(const TIMESTAMP_STRUCT& moment) {
  const auto text = spcdb::format_moment(moment);
  return std::string(text.data(), text.size());
}

std::string text_of(const spcdb::Parameter& parameter) {
  if (parameter.is_null) return "NULL";
  std::string text;
  switch (parameter.kind) {
    case ValueKind::integer:
      spcdb::write_number(text, parameter.integer);
      return text;
    case ValueKind::real:
      spcdb::write_number(text, parameter.real);
      return text;
    case ValueKind::moment:
      return quoted(moment_text(parameter.moment));
    case ValueKind::bytes:
      return std::to_string(parameter.text.size()) + " bytes";
    case ValueKind::long_bytes:
      return std::to_string(parameter.text.size()) + " bytes in pieces";
    case ValueKind::text:
      break;
  }
  return quoted(parameter.text);
}

std::string text_of(std::span<const spcdb::Parameter> parameters) {
  std::string text;
  for (const auto& parameter : parameters)
    text += (text.empty() ? "" : ", ") + text_of(parameter);
  return text;
}

/// A cell of an answer as the text that a driver would give.
std::string text_of(const Cell& cell) {
  struct Writer {
    std::string operator()(std::nullptr_t) const { return {}; }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(long value) const { return std::to_string(value); }
    std::string operator()(double value) const {
      std::string text;
      spcdb::write_number(text, value);
      return text;
    }
    std::string operator()(const char* value) const { return value; }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const TIMESTAMP_STRUCT& value) const { return moment_text(value); }
  };
  return std::visit(Writer{}, cell);
}

}  // namespace

/// A statement under a script. The rule is looked for at each execution.
class ScriptedStatement final : public spcdb::Statement {
 public:
  ScriptedStatement(Script& script, spcdb::Session* real_session, std::string sql, spcdb::Reading reading)
      : script_(script), real_session_(real_session), sql_(std::move(sql)), reading_(reading) {
    script_.see("prepare", sql_);
    rule_ = script_.find(sql_);
    if (rule_ != nullptr && rule_->action_ == Rule::Action::refuse_at_prepare) {
      if (rule_->left_ != std::numeric_limits<std::size_t>::max()) --rule_->left_;
      spcdb::raise(rule_->diagnostic_);
    }
    if (is_real()) inner();
  }

  unsigned column_count() const override {
    if (is_real()) return real_ ? real_->column_count() : 0;
    return rule_->action_ == Rule::Action::answer ? static_cast<unsigned>(rule_->columns_.size()) : 0;
  }
  bool integer(unsigned column, std::int64_t& value) override {
    if (real_open_) return real_->integer(column, value);
    if (is_null(column)) return false;
    const auto whole = spcdb::read_whole(text_of(cell(column)), value);
    if (whole != spcdb::Whole::yes) spcdb::refuse_whole(rule_->columns_[column], whole);
    return true;
  }
  bool real(unsigned column, double& value) override {
    if (real_open_) return real_->real(column, value);
    if (is_null(column)) return false;
    if (!spcdb::read_real(text_of(cell(column)), value))
      spcdb::refuse_value(rule_->columns_[column], "22018", "a number");
    return true;
  }
  bool text(unsigned column, std::string_view& value) override {
    if (real_open_) return real_->text(column, value);
    if (is_null(column)) return false;
    texts_.resize(rule_->columns_.size());
    texts_[column] = text_of(cell(column));
    const int width = column < bindings_.size() ? bindings_[column].width_chars : 0;
    if (width > 0 && spcdb::is_wider(texts_[column], width)) spcdb::refuse_width(rule_->columns_[column], width);
    value = texts_[column];
    return true;
  }
  bool moment(unsigned column, TIMESTAMP_STRUCT& value) override {
    if (real_open_) return real_->moment(column, value);
    if (is_null(column)) return false;
    if (!spcdb::parse_moment(text_of(cell(column)), value))
      spcdb::refuse_value(rule_->columns_[column], "22007", "a moment");
    return true;
  }
  bool bytes(unsigned column, std::string_view& value) override {
    if (real_open_) return real_->bytes(column, value);
    if (!answered_bytes(column, value)) return false;
    const int room = column < bindings_.size() ? bindings_[column].size_bytes : 0;
    if (room > 0 && value.size() > static_cast<std::size_t>(room))
      spcdb::refuse_size(rule_->columns_[column], value.size(), room);
    return true;
  }
  bool long_length(unsigned column, std::int64_t& length) override {
    if (real_open_) return real_->long_length(column, length);
    std::string_view value;
    long_offset_ = 0;
    if (!answered_bytes(column, value)) return false;
    length = script_.long_lengths_unknown_ ? -1 : static_cast<std::int64_t>(value.size());
    return true;
  }
  std::size_t read_long(unsigned column, std::span<std::byte> piece) override {
    if (real_open_) return real_->read_long(column, piece);
    const std::string_view value = texts_.at(column);
    const auto taken = std::min(piece.size(), value.size() - long_offset_);
    std::memcpy(piece.data(), value.data() + long_offset_, taken);
    long_offset_ += taken;
    return taken;
  }

  void bind_columns(std::span<const spcdb::ColumnBinding> columns) override {
    bindings_.assign(columns.begin(), columns.end());
    for (const auto& column : columns) {
      if (column.kind == ValueKind::bytes) script_.see("bind_bytes", sql_, std::to_string(column.size_bytes));
      if (column.kind == ValueKind::long_bytes) script_.see("bind_bytes", sql_, "0");
    }
    if (real_) real_->bind_columns(columns);
  }

  void execute(std::span<const spcdb::Parameter> parameters) override {
    script_.see("execute", sql_, text_of(parameters));
    close_quietly();
    refuse_streaming(parameters);
    rule_ = script_.find(sql_);
    if (rule_ != nullptr && rule_->left_ != std::numeric_limits<std::size_t>::max()) --rule_->left_;
    if (is_real()) {
      inner().execute(parameters);
      real_open_ = true;
      affected_ = real_->rows_affected();
      return;
    }
    if (rule_->action_ == Rule::Action::refuse || rule_->action_ == Rule::Action::refuse_at_prepare)
      spcdb::raise(rule_->diagnostic_);
    affected_ = rule_->affected_;
    next_row_ = 0;
  }

  std::int64_t rows_affected() const override { return affected_; }

  bool fetch() override {
    script_.see("fetch", sql_);
    if (real_open_) return real_->fetch();
    const bool answers = rule_ != nullptr && rule_->action_ == Rule::Action::answer;
    if (!answers || next_row_ > rule_->rows_.size()) return false;
    return ++next_row_ <= rule_->rows_.size();
  }

  void close() noexcept override {
    script_.see("close", sql_);
    close_quietly();
  }

  spcdb::ColumnInfo describe(unsigned column) override {
    script_.see("describe", sql_, std::to_string(column));
    spcdb::ColumnInfo info;
    if (is_real()) {
      info = inner().describe(column);
    } else {
      if (column >= rule_->columns_.size()) spcdb::raise(-1, "07009", "The answer has no such column.");
      info.name = rule_->columns_[column];
      info.sql_type = 12;
      info.precision = 255;
    }
    if (script_.column_sizes_zero_) info.precision = 0;
    return info;
  }

 private:
  bool is_real() const {
    return rule_ == nullptr || rule_->action_ == Rule::Action::pass || rule_->action_ == Rule::Action::alter;
  }
  /// A driver that cannot send or give a value in pieces.
  void refuse_streaming(std::span<const spcdb::Parameter> parameters) const {
    if (!script_.no_streaming_) return;
    const auto is_long = [](const auto& one) { return one.kind == ValueKind::long_bytes; };
    if (std::any_of(parameters.begin(), parameters.end(), is_long) ||
        std::any_of(bindings_.begin(), bindings_.end(), is_long))
      spcdb::raise(*script_.no_streaming_);
  }
  bool answered_bytes(unsigned column, std::string_view& value) {
    if (is_null(column)) return false;
    texts_.resize(rule_->columns_.size());
    texts_[column] = text_of(cell(column));
    value = texts_[column];
    return true;
  }
  bool is_null(unsigned column) const { return std::holds_alternative<std::nullptr_t>(cell(column)); }
  const Cell& cell(unsigned column) const {
    if (rule_ == nullptr || next_row_ == 0 || next_row_ > rule_->rows_.size() ||
        column >= rule_->rows_[next_row_ - 1].size())
      spcdb::raise(-1, "24000", "The answer has no such value.");
    return rule_->rows_[next_row_ - 1][column];
  }
  void close_quietly() noexcept {
    if (real_) real_->close();
    real_open_ = false;
    next_row_ = std::numeric_limits<std::size_t>::max();
  }

  /// The statement of the real session for the text that the rule wants.
  spcdb::Statement& inner() {
    if (real_session_ == nullptr) spcdb::raise(-1, "HY000", "The script has no answer for: " + sql_);
    const auto& wanted = rule_ != nullptr && rule_->action_ == Rule::Action::alter ? rule_->altered_ : sql_;
    if (!real_ || real_text_ != wanted) {
      real_ = real_session_->prepare(wanted, reading_);
      real_text_ = wanted;
      if (!bindings_.empty()) real_->bind_columns(bindings_);
    }
    return *real_;
  }

  Script& script_;
  spcdb::Session* real_session_;
  std::string sql_;
  spcdb::Reading reading_;
  Rule* rule_ = nullptr;
  std::unique_ptr<spcdb::Statement> real_;
  std::string real_text_;
  bool real_open_ = false;
  std::vector<spcdb::ColumnBinding> bindings_;
  std::int64_t affected_ = -1;
  std::size_t next_row_ = std::numeric_limits<std::size_t>::max();
  std::vector<std::string> texts_;
  std::size_t long_offset_ = 0;
};

ScriptedSession::ScriptedSession(std::shared_ptr<Script> script, std::unique_ptr<spcdb::Session> real)
    : script_(std::move(script)), real_(std::move(real)) {
  if (real_) quirks_ = real_->quirks();
  if (script_->quirks_) quirks_ = *script_->quirks_;
  if (script_->quotes_) std::tie(quirks_.quote_open, quirks_.quote_close) = *script_->quotes_;
}

void* ScriptedSession::native_handle() const {
  return real_ ? real_->native_handle() : const_cast<void*>(static_cast<const void*>(this));
}

std::unique_ptr<spcdb::Statement> ScriptedSession::prepare(std::string_view sql, spcdb::Reading reading) {
  return std::make_unique<ScriptedStatement>(*script_, real_.get(), std::string(sql), reading);
}

std::int64_t ScriptedSession::run(std::string_view sql) {
  const std::string text(sql);
  script_->see("run", text);
  auto* rule = script_->find(text);
  if (rule != nullptr && rule->left_ != std::numeric_limits<std::size_t>::max()) --rule->left_;
  const auto action = rule != nullptr ? rule->action_ : Rule::Action::pass;
  switch (action) {
    case Rule::Action::refuse:
    case Rule::Action::refuse_at_prepare:
      spcdb::raise(rule->diagnostic_);
    case Rule::Action::answer:
    case Rule::Action::affect:
      return rule->affected_;
    case Rule::Action::pass:
    case Rule::Action::alter:
      break;
  }
  if (!real_) spcdb::raise(-1, "HY000", "The script has no answer for: " + text);
  return real_->run(action == Rule::Action::alter ? std::string_view(rule->altered_) : sql);
}

bool ScriptedSession::transactions_supported() const {
  if (script_->transactions_) return *script_->transactions_;
  return real_ ? real_->transactions_supported() : true;
}

void ScriptedSession::end(const std::string& function, void (spcdb::Session::*call)()) {
  script_->see(function);
  if (const auto refused = script_->refusal(function, false)) spcdb::raise(*refused);
  if (real_) ((*real_).*call)();
  in_transaction_ = function == "begin";
  if (const auto lost = script_->refusal(function, true)) spcdb::raise(*lost);
}

void ScriptedSession::begin() { end("begin", &spcdb::Session::begin); }
void ScriptedSession::commit() { end("commit", &spcdb::Session::commit); }
void ScriptedSession::rollback() { end("rollback", &spcdb::Session::rollback); }

short ScriptedSession::information(unsigned short type, std::uint32_t& value) {
  script_->see("information", {}, std::to_string(type));
  if (const auto found = script_->information_.find(type); found != script_->information_.end()) {
    value = found->second.second;
    return found->second.first;
  }
  if (real_) return real_->information(type, value);
  value = 0;
  return 0;
}

short ScriptedSession::information_text(unsigned short type, std::string& text) {
  script_->see("information", {}, std::to_string(type));
  if (const auto found = script_->information_texts_.find(type); found != script_->information_texts_.end()) {
    text = found->second.second;
    return found->second.first;
  }
  if (real_) return real_->information_text(type, text);
  text.clear();
  return 0;
}

bool ScriptedSession::link_is_dead() {
  script_->see("link_is_dead");
  return script_->link_is_dead_.value_or(real_ && real_->link_is_dead());
}

std::string ScriptedSession::describe_server() {
  return script_->server_.value_or(real_ ? real_->describe_server() : "scripted session");
}

void ScriptedSession::set_query_timeout(unsigned seconds) {
  script_->see("set_query_timeout", {}, std::to_string(seconds));
  if (real_) real_->set_query_timeout(seconds);
}

spcdb::TableKey ScriptedSession::find_key(std::string_view table) {
  script_->see("find_key", std::string(table));
  if (const auto refused = script_->refusal("find_key", false)) spcdb::raise(*refused);
  if (const auto found = script_->keys_.find(std::string(table)); found != script_->keys_.end()) return {found->second};
  return real_ ? real_->find_key(table) : spcdb::TableKey{};
}

void ScriptedSession::close() noexcept {
  if (closed_) return;
  closed_ = true;
  script_->see("close_session");
  if (real_) real_->close();
}

std::shared_ptr<Script> play(CDatabase& database, std::shared_ptr<Script> script) {
  auto* const connection = database.connection();
  if (connection == nullptr) throw std::logic_error("play: the connection is not open");
  if (connection->in_transaction || connection->session().in_transaction())
    throw std::logic_error("play: a transaction is open, which opening the connection again would roll back");
  const CString text = database.GetConnect();
  if (text.IsEmpty()) throw std::logic_error("play: the connection has no connect text to be opened by again");
  const BOOL updatable = database.CanUpdate();
  auto real = spcdb::open_session(text.view(), updatable == FALSE);
  database.adopt_session(std::make_unique<ScriptedSession>(script, std::move(real)), updatable);
  return script;
}

}  // namespace test_support
