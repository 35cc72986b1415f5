/// A session that plays a script: it answers, refuses or alters statements, reports what capabilities the script says,
/// and writes down every call. It stands before a real session, or alone; with it a test plays any server.
///
///     auto script = std::make_shared<test_support::Script>();
///     script->on("select getdate()").refuse(test_support::error("42000", 1305, "FUNCTION getdate does not exist"));
///     script->on_prefix("SELECT MAXNO").answer({"MAXNO"}, {{41}});
///     script->on_regex(".*FROM `?CSINI`?.*").answer({"A", "B"}, {});
///     script->on_prefix("UPDATE").once().alter("UPDATE T SET A = 2");
///     script->refuse_call("commit", test_support::error("08S01", 2006, "Server has gone away"));
///     database.adopt_session(std::make_unique<test_support::ScriptedSession>(script, std::move(real)));
///     ...
///     EXPECT_EQ(script->statements(), ...);
///
/// Before an open connection it is put in one step: `auto script = test_support::play(database);`. Rules may be added
/// at any time.
///
/// Texts are matched as they reach the session: names in the quote characters of its quirks, lifted literals as `?`.
/// The first rule that matches and is not used up counts. A statement without a rule goes to the real session; without
/// one it fails, so that no statement passes unseen.
#pragma once

#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "spcbase/platform/database/database.h"
#include "spcbase/platform/database/session.h"

namespace test_support {

/// A driver's diagnostic.
spcdb::Diagnostic error(std::string sqlstate, long native, std::string text, std::string origin = "[scripted]");

/// One value of an answer.
using Cell = std::variant<std::nullptr_t, int, long, double, const char*, std::string, TIMESTAMP_STRUCT>;

/// What happens to the statements of one kind.
class Rule {
 public:
  /// Gives these rows. A statement that is no query is answered without columns.
  Rule& answer(std::vector<std::string> columns, std::vector<std::vector<Cell>> rows);
  /// Succeeds without reaching the server, having touched that many rows.
  Rule& affect(std::int64_t rows);
  /// Fails when it is executed, or already when it is prepared.
  Rule& refuse(spcdb::Diagnostic diagnostic);
  Rule& refuse_at_prepare(spcdb::Diagnostic diagnostic);
  /// Sends another text in its place.
  Rule& alter(std::string statement);
  /// Sends it as it is.
  Rule& pass();
  /// Holds for so many executions only.
  Rule& times(std::size_t count);
  Rule& once() { return times(1); }

 private:
  friend class Script;
  friend class ScriptedSession;
  friend class ScriptedStatement;
  enum class Action : unsigned char { pass, answer, affect, refuse, refuse_at_prepare, alter };

  bool matches(const std::string& statement) const;

  enum class Match : unsigned char { exact, prefix, regex } match_ = Match::exact;
  std::string text_;
  std::regex regex_;
  Action action_ = Action::pass;
  std::size_t left_ = std::numeric_limits<std::size_t>::max();
  std::vector<std::string> columns_;
  std::vector<std::vector<Cell>> rows_;
  std::int64_t affected_ = 0;
  spcdb::Diagnostic diagnostic_;
  std::string altered_;
};

/// One call that the session saw.
struct SeenCall {
  std::string function;    ///< prepare, bind_bytes, execute, fetch, close, describe, run, begin, commit, rollback,
                           ///< information, ...
  std::string statement;   ///< empty when the call has none
  std::string parameters;  ///< of execute, as literals parted by ", "; of information the number of the question;
                           ///< of bind_bytes the buffer's size, 0 for a column read in pieces

  friend bool operator==(const SeenCall&, const SeenCall&) = default;
};

/// What a scripted session plays, and what it saw. Shared by the test and the session.
class Script {
 public:
  /// A rule for one text, to the letter.
  Rule& on(std::string statement);
  /// A rule for all texts that begin so.
  Rule& on_prefix(std::string beginning);
  /// An ECMAScript expression for the whole text, in any case.
  Rule& on_regex(const std::string& expression);

  /// Fails begin, commit, rollback or find_key the next `times` times.
  /// Fails: std::invalid_argument for any other function; statements have rules. So does `lose_answer`.
  Script& refuse_call(const std::string& function, spcdb::Diagnostic diagnostic, std::size_t times = 1);
  /// Lets begin, commit or rollback happen and fails it all the same: the answer was lost on its way.
  Script& lose_answer(const std::string& function, spcdb::Diagnostic diagnostic, std::size_t times = 1);

  /// Capabilities. What is not told comes from the real session, or is that of a server that keeps to the standard.
  Script& transactions(bool supported);
  Script& quirks(const spcdb::Quirks& quirks);
  Script& quotes(char open, char close);
  Script& information(unsigned short type, short return_code, std::uint32_t value = 0);
  Script& information_text(unsigned short type, short return_code, std::string text = {});
  Script& column_sizes_zero();
  /// Whatever reads or writes long data in pieces fails when it is executed.
  Script& refuse_streaming(spcdb::Diagnostic diagnostic);
  /// Answers do not tell how long they are when they are read in pieces.
  Script& long_lengths_unknown();
  Script& link_is_dead(bool dead);
  Script& server(std::string description);
  Script& key(const std::string& table, std::vector<std::string> columns);

  /// Everything that was seen, in order.
  const std::vector<SeenCall>& calls() const { return calls_; }
  /// The texts that were executed or run, in order.
  std::vector<std::string> statements() const;
  /// The calls of one function, or of all but fetch, close and describe.
  std::vector<SeenCall> calls_of(const std::string& function) const;
  std::vector<SeenCall> main_calls() const;
  void forget_calls() { calls_.clear(); }

 private:
  friend class ScriptedSession;
  friend class ScriptedStatement;
  struct CallRule {
    spcdb::Diagnostic diagnostic;
    std::size_t left = 0;
    bool after = false;
  };

  Rule& add(Rule::Match match, std::string text);
  Rule* find(const std::string& statement);
  void see(std::string function, std::string statement = {}, std::string parameters = {});
  std::optional<spcdb::Diagnostic> refusal(const std::string& function, bool after);

  std::vector<std::unique_ptr<Rule>> rules_;
  std::multimap<std::string, CallRule> call_rules_;
  std::optional<bool> transactions_;
  std::optional<spcdb::Quirks> quirks_;
  std::optional<std::pair<char, char>> quotes_;
  std::map<unsigned short, std::pair<short, std::uint32_t>> information_;
  std::map<unsigned short, std::pair<short, std::string>> information_texts_;
  bool column_sizes_zero_ = false;
  std::optional<spcdb::Diagnostic> no_streaming_;
  bool long_lengths_unknown_ = false;
  std::optional<bool> link_is_dead_;
  std::optional<std::string> server_;
  std::map<std::string, std::vector<std::string>> keys_;
  std::vector<SeenCall> calls_;
};

/// The session itself.
class ScriptedSession final : public spcdb::Session {
 public:
  /// Plays a script, before a real session or, without one, alone.
  explicit ScriptedSession(std::shared_ptr<Script> script, std::unique_ptr<spcdb::Session> real = nullptr);

  const spcdb::Quirks& quirks() const override { return quirks_; }
  spcdb::CallGate& gate() override { return real_ ? real_->gate() : gate_; }
  void* native_handle() const override;
  /// The session's calls, played by the script.
  std::unique_ptr<spcdb::Statement> prepare(std::string_view sql, spcdb::Reading reading) override;
  std::int64_t run(std::string_view sql) override;
  bool transactions_supported() const override;
  void begin() override;
  void commit() override;
  void rollback() override;
  bool in_transaction() const override { return real_ ? real_->in_transaction() : in_transaction_; }
  short information(unsigned short type, std::uint32_t& value) override;
  short information_text(unsigned short type, std::string& text) override;
  bool link_is_dead() override;
  std::string describe_server() override;
  void set_query_timeout(unsigned seconds) override;
  spcdb::TableKey find_key(std::string_view table) override;
  void close() noexcept override;

  /// The real session behind it; null without one.
  spcdb::Session* real() { return real_.get(); }

 private:
  void end(const std::string& function, void (spcdb::Session::*call)());

  std::shared_ptr<Script> script_;
  std::unique_ptr<spcdb::Session> real_;
  spcdb::CallGate gate_;
  spcdb::Quirks quirks_;
  bool in_transaction_ = false;
  bool closed_ = false;
};

/// Puts a script before a connection: it is opened again, by the text that it was opened by, with the script before it.
/// What is open on it closes; a database in memory begins anew; a script that was played before is done with. Whether
/// there are transactions, the quirks and the quotes are asked once, here: a script that tells them is made before.
/// Returns: the script.
/// Fails: std::logic_error when the connection is not open, when a transaction is open on it, or when it has no text to
///        be opened by; CDBException* when it cannot be opened again. It is then as it was.
std::shared_ptr<Script> play(CDatabase& database, std::shared_ptr<Script> script = std::make_shared<Script>());

}  // namespace test_support
