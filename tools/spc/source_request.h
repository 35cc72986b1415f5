/// What `spc source` is given, and its tasks.
///
/// Part of the command. The tasks give the exit status.
/// Fails: Problem, in which no password stands.
#pragma once

#include <optional>
#include <string>

#include "tools/spc/link.h"
#include "tools/spc/terminal.h"

namespace spc {

/// How a password reaches the command.
struct PasswordRequest {
  std::optional<int> file;  ///< a file descriptor to read it from
  bool ask = false;         ///< at the terminal, even when nothing else calls for it
  bool none = false;        ///< there is none: nobody is asked
  bool in_arguments = false;
};

/// What a definition is to say; what is not given stays as it is, or has its default.
struct SourceFields {
  std::optional<std::string> name;
  std::optional<std::string> description;
  std::optional<std::string> type;
  std::optional<int> flag;
  std::optional<std::string> connection_string;  ///< without password; "ask": typed unseen
  std::optional<std::string> quote;              ///< which identifiers are quoted, "table,column"
  std::optional<int> option;                     ///< of OLE DB alone
  std::optional<std::string> provider;           ///< of ADO.NET alone, as is the time limit
  std::optional<int> timeout;
  std::optional<std::string> date_literal;
  std::optional<std::string> time_literal;
  std::optional<std::string> timestamp_literal;
  std::optional<std::string> concatenation;
  bool default_syntax = false;

  friend bool operator==(const SourceFields&, const SourceFields&) = default;
};

struct SourceRequest {
  std::string which;  ///< NAME or ID
  std::string kind;   ///< "oledb" or "adonet"; empty: both, or the one that there is
  SourceFields fields;
  PasswordRequest password;
  std::string file;
  std::optional<int> file_id;  ///< under which a file without an id is enciphered
  bool all = false;
  bool xml = false;
  bool save = false;
  bool hide_password = false;
  int max_size = 0;
  int as_user = 0;
};

int add_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
int list_sources(const Place& place, const SourceRequest& request, const Terminal& terminal);
int show_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
int edit_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
int remove_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
int export_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
int import_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
/// Opens the outside database and says what it is.
int test_source(const Place& place, const SourceRequest& request, const Terminal& terminal);
/// Reads and saves every definition; status 1 when one failed.
int rewrite_sources(const Place& place, const SourceRequest& request, const Terminal& terminal);

}  // namespace spc
