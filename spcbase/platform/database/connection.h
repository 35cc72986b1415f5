/// What stands between CDatabase and its session: the kept statements, the open recordsets, the state of the
/// transaction.
///
/// Part of the database platform layer; hosts do not see it.
///
/// Statements are kept prepared by their shape: the text with its literals lifted. Several of one shape may stand side
/// by side, since a recordset holds its own while it reads. The least recently used one goes when there are too many.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "spcbase/platform/database/literal_lift.h"
#include "spcbase/platform/database/observer.h"
#include "spcbase/platform/database/session.h"

class CRecordset;

namespace spcdb {

/// A statement that is kept, with the columns that it is bound to.
struct KeptStatement {
  std::string shape;
  std::unique_ptr<Statement> statement;
  std::vector<ColumnBinding> bound;
  std::uint64_t used = 0;
  bool busy = false;
  bool literal = false;  ///< prepared from the text as it was given: its literals could not be parameters
};

/// How long a statement's text is and what is read of it.
struct StatementText {
  std::string_view shape;  ///< the text to prepare, `?` for what was lifted
  std::string_view given;  ///< the text as it was given, prepared when the server refuses the shape; may equal `shape`
  bool lifted = false;     ///< the two differ
};

/// One connection's state.
class Connection {
 public:
  explicit Connection(std::unique_ptr<Session> session) : session_(std::move(session)) {}
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  Session& session() { return *session_; }
  const Quirks& quirks() const { return session_->quirks(); }

  /// A prepared statement for this text, marked busy.
  KeptStatement& acquire(const StatementText& text, Reading reading);
  /// Ends the statement's result and frees it for the next one who asks.
  void give_back(KeptStatement& kept) noexcept;

  /// The key of a table, asked of the catalogue once.
  const TableKey& key_of(std::string_view table);

  /// The recordsets that are open on this connection.
  void enter(CRecordset& recordset) { open_.push_back(&recordset); }
  void leave(CRecordset& recordset) noexcept;
  const std::vector<CRecordset*>& open_recordsets() const { return open_; }

  bool in_transaction = false;
  /// The server has rolled the open transaction back by itself.
  bool transaction_lost = false;
  /// Asked before each statement but BEGIN, COMMIT and ROLLBACK: true makes it fail unsent, as one that was cancelled
  /// (HY008).
  /// Null: nobody wants to stop anything. Ours, for programs that end in the middle of their work.
  bool (*wants_to_stop)() noexcept = nullptr;

  /// Buffers that every statement writes into, so that a look-up allocates nothing once the connection is warm.
  struct Scratch {
    std::string shape;
    std::string text;
    LiftedLiterals literals;
    std::vector<Parameter> parameters;
    std::vector<ColumnBinding> columns;
  };
  Scratch& scratch() { return scratch_; }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
  };
  using Siblings = std::vector<std::unique_ptr<KeptStatement>>;
  using Shapes = std::unordered_map<std::string, Siblings, Hash, std::equal_to<>>;

  std::unique_ptr<KeptStatement> prepare(const StatementText& text, Reading reading);
  std::string dressed(std::string_view sql) const;
  void make_room();

  std::unique_ptr<Session> session_;
  Shapes shapes_[2];  ///< by Reading
  std::size_t kept_count_ = 0;
  std::uint64_t clock_ = 0;
  std::unordered_map<std::string, TableKey, Hash, std::equal_to<>> keys_;
  std::vector<CRecordset*> open_;
  Scratch scratch_;
};

}  // namespace spcdb
