/// The statements that create and drop the whole schema, for each kind of server.
///
/// What every server keeps: text widths in characters, unique keys in which two nulls are equal, `REVID` assigned by
/// the database, live views, one running-number row of 0 for each counter. Where a server cannot, the source says so
/// beside the line that makes the difference.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace schema {

/// The servers that DDL is made for; `mysql` is MySQL from 8.0.23 and MariaDB from 10.3.
enum class Server { sqlite, mysql, sql_server, oracle, access };

/// All of them, in the order above.
inline constexpr Server all_servers[] = {Server::sqlite, Server::mysql, Server::sql_server, Server::oracle,
                                         Server::access};

/// "sqlite", "mysql", "sql_server", "oracle" or "access".
std::string_view name_of(Server server);

/// The statements that create everything in an empty database, in order. None ends with a semicolon that the server
/// would not want: each is sent as it is. They are the same at every call.
std::vector<std::string> create_statements(Server server);

/// The statements that drop everything again, in order. Those for Oracle and Access fail on what is not there; the
/// others pass over it.
std::vector<std::string> drop_statements(Server server);

}  // namespace schema
