// Plan
//   On SQLite and on a private MariaDB server:
//     the password from a file descriptor: put into ODBC's and the other spelling, quoted where it must be
//     from a terminal: asked for, not shown; none; the whole connection string; Ctrl-C leaves the terminal as it was
//     never from the arguments unless forced; nobody at standard input; descriptors that give nothing
//     a marker password stands nowhere: every task, its success and failure, with --trace: output, files, database
//   The words of a command line that cannot be read are not repeated where they may be a password
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <thread>

#include "spcbase/datasource/definition.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/tools/source_fixture.h"
#include "tools/spc/connection_text.h"

namespace {

using command_test::Answer;

class SourcePassword : public command_test::OnSources {
 protected:
  std::string connection_of(const std::string& which) { return source_json({"show", which})["connection_string"].text; }
  /// What is stored, read by the library as a host does.
  std::string clear_connection_of(int id) {
    const std::unique_ptr<OLEDBInfo> definition(OLEDBInfo::retrieve(&db(), 0, id));
    return std::string(definition->connection_string.view());
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, SourcePassword, test_support::main_servers(), test_support::server_name);

TEST_P(SourcePassword, comes_from_a_file_descriptor_and_is_quoted_where_it_must_be) {
  int id = 0;
  for (const auto& [given, password, stored] : std::vector<std::tuple<std::string, std::string, std::string>>{
           {"DSN=wh;UID=anna", "plain", "DSN=wh;UID=anna;PWD=plain"},
           {"DSN=wh;", "a;b}c", "DSN=wh;PWD={a;b}}c}"},
           {"Driver={x};UID=a", " blank ", "Driver={x};UID=a;PWD={ blank }"},
           {"Provider=MSDASQL;Data Source=wh", "plain", "Provider=MSDASQL;Data Source=wh;Password=plain"},
           {"Provider=MSDASQL;DSN=wh", "a;b\"c'", "Provider=MSDASQL;DSN=wh;Password=\"a;b\"\"c'\""},
           {"Data Source=wh", "{x}", "Data Source=wh;Password=\"{x}\""}}) {
    const std::string name = "s" + std::to_string(++id);
    EXPECT_EQ(source({"add", name, "--connection-string", given, "--password-fd", "3"}, password).status, 0);
    EXPECT_EQ(clear_connection_of(id), stored);
    EXPECT_EQ(connection_of(name).find(password), std::string::npos);
  }
}

TEST_P(SourcePassword, comes_through_a_pipe_of_which_nothing_else_is_read) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  const std::string given = "piped\nrest";
  ASSERT_EQ(::write(ends[1], given.data(), given.size()), static_cast<ssize_t>(given.size()));
  const Answer added = command_test::run_prepared({"--connect", database().connect_text(), "source", "add", "a",
                                                   "--connection-string", "DSN=wh", "--password-fd", "0"},
                                                  [&] { ::dup2(ends[0], STDIN_FILENO); });
  EXPECT_EQ(added.out, "Added data source 1 a (OLE DB), with a password\n") << added;
  EXPECT_EQ(clear_connection_of(1), "DSN=wh;PWD=piped");
  std::array<char, 8> rest{};
  EXPECT_EQ(::read(ends[0], rest.data(), rest.size()), 4);
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST_P(SourcePassword, takes_the_place_of_the_old_one) {
  add("a", {"--connection-string", "DSN=wh;UID=anna", "--password-fd", "3"});
  EXPECT_EQ(source({"edit", "a", "--password-fd", "3"}, "n;w").out,
            "Changed data source 1 a (OLE DB), with a password\n");
  EXPECT_EQ(clear_connection_of(1), "DSN=wh;UID=anna;PWD={n;w}");
  source({"edit", "a", "--connection-string", "pwd=x;DSN=wh", "--allow-password-in-arguments"});
  source({"edit", "a", "--password-fd", "3"}, "last");
  EXPECT_EQ(clear_connection_of(1), "pwd=last;DSN=wh");
}

TEST_P(SourcePassword, is_not_taken_from_the_arguments_unless_forced) {
  const Answer refused = source({"add", "a", "--connection-string", "DSN=wh;PWD=topmost"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(
      refused.err,
      "spc: cannot add the data source a: the connection string on the command line holds a password\n"
      "     Every user of the machine can see it there. Leave it out: it is asked for at a terminal, and read with "
      "--password-fd N; --allow-password-in-arguments takes it nevertheless.\n");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB"), "0");
  EXPECT_EQ(source({"add", "a", "--connection-string", "DSN=wh;PWD=topmost", "--allow-password-in-arguments"}).status,
            0);
  EXPECT_EQ(clear_connection_of(1), "DSN=wh;PWD=topmost");
}

TEST_P(SourcePassword, is_told_of_when_there_is_none_to_be_had) {
  const std::vector<std::string> add_a = {"add", "a", "--connection-string", "DSN=wh"};
  EXPECT_EQ(source(add_a).out, "Added data source 1 a (OLE DB), without a password\n") << "nobody can be asked";
  for (const auto& [arguments, password, words] :
       std::vector<std::tuple<std::vector<std::string>, std::string, std::string>>{
           {{"--ask-password"}, "x", "nobody can be asked: standard input is no terminal"},
           {{"--connection-string", "ask"}, "x", "nobody can be asked: standard input is no terminal"},
           {{"--password-fd", "3"}, "", "the line on file descriptor 3 is empty"},
           {{"--password-fd", "3"}, "\xFF", "the password on file descriptor 3 is no text in UTF-8"},
           {{"--password-fd", "77"}, "x", "cannot read file descriptor 77: Bad file descriptor"},
           {{"--password-fd", "0"}, "x", "there is nothing to read on file descriptor 0"}}) {
    std::vector<std::string> edit = {"edit", "a"};
    edit.insert(edit.end(), arguments.begin(), arguments.end());
    const Answer refused = source(edit, password);
    EXPECT_EQ(refused.status, 1) << refused;
    EXPECT_TRUE(refused.complains("spc: cannot edit the data source a: " + words + "\n")) << words << refused;
  }
  EXPECT_EQ(clear_connection_of(1), "DSN=wh");
}

TEST_P(SourcePassword, needs_a_connection_string_to_stand_in) {
  EXPECT_TRUE(source({"add", "a", "--password-fd", "3"}).complains("there is no connection string for the password"));
  EXPECT_TRUE(source({"add", "a", "--connection-string", "sqlite:x.db", "--password-fd", "3"})
                  .complains("an SQLite file has no password"));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB"), "0");
}

/// Somebody who sits at a terminal and types when the echo is off. Without a text nobody is to be asked.
class Typist {
 public:
  explicit Typist(std::string text) : text_(std::move(text)) {}

  Answer run(const std::vector<std::string>& arguments) {
    std::thread typing([&] { type(); });
    Answer answer = command_test::run_prepared(arguments, [&] {
      ::setsid();
      const int own = ::open(pseudo_.name().c_str(), O_RDWR);
      ::ioctl(own, TIOCSCTTY, 0);
      ::dup2(own, STDIN_FILENO);
    });
    ended_ = true;
    typing.join();
    return answer;
  }
  bool echoes() const { return pseudo_.echoes(); }
  std::string shown() const { return pseudo_.shown(); }

 private:
  void type() const {
    while (echoes() && !ended_)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(ended_, text_.empty()) << (ended_ ? "nobody was asked" : "somebody was asked");
    if (!ended_) pseudo_.type(text_.empty() ? "\n" : text_);
  }

  test_support::PseudoTerminal pseudo_;
  std::string text_;
  std::atomic<bool> ended_ = false;
};

class SourceTerminal : public SourcePassword {
 protected:
  Answer typed(Typist& typist, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--connect", database().connect_text(), "source"});
    return typist.run(arguments);
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, SourceTerminal, test_support::main_servers(), test_support::server_name);

TEST_P(SourceTerminal, asks_for_the_password_and_shows_nothing_of_it) {
  Typist typist("s;same\n");
  const Answer added = typed(typist, {"add", "Warehouse", "--connection-string", "DSN=wh;UID=anna"});
  EXPECT_EQ(added.status, 0) << added;
  EXPECT_EQ(added.err, "Password for Warehouse (nothing for none): \n");
  EXPECT_EQ(added.out, "Added data source 1 Warehouse (OLE DB), with a password\n");
  EXPECT_EQ(typist.shown(), "");
  EXPECT_TRUE(typist.echoes());
  EXPECT_EQ(clear_connection_of(1), "DSN=wh;UID=anna;PWD={s;same}");
}

TEST_P(SourceTerminal, is_not_asked_by_a_dry_run) {
  Typist nobody("");
  const Answer tried = typed(nobody, {"add", "Warehouse", "--connection-string", "DSN=wh;UID=anna", "--dry-run"});
  EXPECT_EQ(tried.status, 0) << tried;
  EXPECT_EQ(tried.err, "");
  EXPECT_TRUE(tried.out.starts_with("Added data source 1 Warehouse (OLE DB), with a password\nDry run: ")) << tried;
}

TEST_P(SourceTerminal, takes_an_empty_line_for_no_password) {
  Typist typist("\n");
  EXPECT_EQ(typed(typist, {"add", "a", "--connection-string", "DSN=wh"}).out,
            "Added data source 1 a (OLE DB), without a password\n");
  EXPECT_EQ(clear_connection_of(1), "DSN=wh");
}

TEST_P(SourceTerminal, asks_for_a_whole_connection_string) {
  Typist typist("DSN=wh;PWD=inside\n");
  const Answer added = typed(typist, {"add", "a", "--connection-string", "ask"});
  EXPECT_EQ(added.err, "Connection string of a, password included: \n");
  EXPECT_EQ(clear_connection_of(1), "DSN=wh;PWD=inside");
  EXPECT_EQ(typist.shown(), "");
}

TEST_P(SourceTerminal, asks_for_a_new_password) {
  add("a", {"--connection-string", "DSN=wh;UID=anna", "--password-fd", "3"});
  Typist typist("newer\n");
  EXPECT_EQ(typed(typist, {"edit", "a", "--ask-password"}).status, 0);
  EXPECT_EQ(clear_connection_of(1), "DSN=wh;UID=anna;PWD=newer");
}

TEST_P(SourceTerminal, is_left_as_it_was_by_a_key_that_ends_the_command) {
  Typist typist("half\x03");
  const Answer ended = typed(typist, {"add", "a", "--connection-string", "DSN=wh"});
  EXPECT_EQ(ended.status, 130) << ended;
  EXPECT_TRUE(ended.complains("spc: interrupted: nothing was changed\n")) << ended;
  EXPECT_TRUE(typist.echoes());
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSEXDB"), "0");
}

const std::string marker = "Wx9;Zq\"Marker}7'kT";

std::string base64(const std::string& bytes) {
  constexpr const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i + 2 < bytes.size(); i += 3) {
    const auto at = [&](std::size_t k) { return static_cast<unsigned>(static_cast<unsigned char>(bytes[i + k])); };
    const unsigned three = at(0) << 16U | at(1) << 8U | at(2);
    for (const unsigned shift : {18U, 12U, 6U, 0U})
      text += digits[three >> shift & 63U];
  }
  return text;
}

std::string folded(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return text;
}

/// What would give the marker away: itself whatever its case, backwards, in UTF-16, its longest word, Base64.
std::vector<std::string> traces_of_marker() {
  std::string wide;
  for (const char c : marker)
    wide += std::string(1, c) + '\0';
  std::vector<std::string> traces = {marker, std::string(marker.rbegin(), marker.rend()), wide, "Marker", "rekraM"};
  for (std::size_t skip = 0; skip < 3; ++skip)
    traces.push_back(base64(marker.substr(skip)));
  return traces;
}

void expect_unmarked(const std::string& text, const std::string& where) {
  for (const auto& trace : traces_of_marker())
    EXPECT_EQ(folded(text).find(folded(trace)), std::string::npos) << where << " has \"" << trace << "\"\n" << text;
}

/// A login of the server whose password is the marker; where there are no logins, nothing.
class OutsideUser {
 public:
  explicit OutsideUser(test_support::SchemaDatabase& database) : database_(database) {
    if (database_.kind() != test_support::ServerKind::mariadb) return;
    name_ = "'marked" + std::to_string(::getpid()) + "'@localhost";
    set_password("CREATE USER ", marker);
  }
  ~OutsideUser() {
    if (!name_.empty()) database_.execute("DROP USER " + name_);
  }
  OutsideUser(const OutsideUser&) = delete;
  OutsideUser& operator=(const OutsideUser&) = delete;

  /// Without a password.
  std::string connection_string() const {
    if (name_.empty()) return database_.raw_odbc_text();
    std::smatch socket;
    const std::string text = database_.raw_odbc_text();
    std::regex_search(text, socket, std::regex("SOCKET=[^;]*"));
    return "Driver={MariaDB Unicode};" + socket.str() + ";UID=marked" + std::to_string(::getpid());
  }
  void lock_out() const {
    if (!name_.empty()) set_password("ALTER USER ", "another");
  }

 private:
  void set_password(const std::string& how, const std::string& password) const {
    database_.execute(how + name_ + " IDENTIFIED BY '" + std::regex_replace(password, std::regex("'"), "''") + "'");
  }

  test_support::SchemaDatabase& database_;
  std::string name_;
};

/// Every task, with its success and its failure; what was said is looked at.
class Gathering : public SourcePassword {
 protected:
  void run(std::vector<std::string> arguments, int status) {
    arguments.emplace_back("--trace");
    const Answer answer = source(arguments, marker);
    EXPECT_EQ(answer.status, status) << arguments.front() << ' ' << arguments[1] << answer;
    expect_unmarked(answer.out, arguments.front() + ", standard output");
    expect_unmarked(answer.err, arguments.front() + ", standard error");
    ++runs_;
  }
  std::string file(const std::string& name) const { return folder_.file(name); }
  void expect_unmarked_files(const std::filesystem::path& folder) const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (!entry.is_regular_file()) continue;
      std::ifstream stream(entry.path(), std::ios::binary);
      expect_unmarked({std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}, entry.path());
    }
  }
  const std::filesystem::path& folder() const { return folder_.path(); }
  std::size_t runs() const { return runs_; }

 private:
  test_support::ScratchFolder folder_;
  std::size_t runs_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Servers, Gathering, test_support::main_servers(), test_support::server_name);

TEST_P(Gathering, finds_the_password_nowhere) {
  const OutsideUser user(database());
  const std::string live = user.connection_string();
  run({"add", "live", "--connection-string", live, "--password-fd", "3"}, 0);
  run({"add", "odbc", "--connection-string", "Driver={None};UID=anna", "--password-fd", "3"}, 0);
  run({"add", "net", "--kind", "adonet", "--provider", "p", "--connection-string", "Server=x", "--password-fd", "3"},
      0);
  run({"add", "odbc", "--connection-string", "DSN=x", "--password-fd", "3"}, 1);
  run({"add", "a", "--connection-string", "DSN=x;PWD=\"" + marker + "\""}, 2);
  run({"add", "a", "--connection-string", "PWD=" + marker}, 2);
  run({"add", "a", "--connection-string", "sqlite:x", "--password-fd", "3"}, 2);
  run({"add", "a", "--password", marker}, 2);
  run({"add", "a", "--password-fd", marker}, 2);
  run({"add", "a", "PWD=" + marker}, 2);
  run({"list"}, 0);
  run({"list", "--all", "--json"}, 0);
  for (const char* name : {"live", "odbc", "net"}) {
    run({"show", name}, 0);
    run({"show", name, "--json"}, 0);
    run({"show", name, "--xml"}, 0);
    run({"edit", name, "--type", "t"}, 0);
    run({"edit", name, "--password-fd", "3", "--json"}, 0);
    run({"export", name, file(std::string(name) + ".xml")}, 0);
    run({"export", name, file(std::string(name) + ".xml")}, 1);
    run({"export", name, file(std::string(name) + "_hidden.xml"), "--hide-password"}, 0);
    run({"import", file(std::string(name) + ".xml"), "--name", std::string(name) + " again"}, 0);
    run({"import", file(std::string(name) + ".xml")}, 1);
    run({"import", file(std::string(name) + "_hidden.xml"), "--name", "hidden"}, 1);
    run({"import", file(std::string(name) + ".xml"), "--kind", "oledb", "--name", std::string(name) + " third"},
        std::string(name) == "net" ? 1 : 0);
  }
  run({"test", "live"}, 0);
  run({"test", "live", "--save", "--json"}, 0);
  user.lock_out();
  run({"test", "live"}, kind() == test_support::ServerKind::sqlite ? 0 : 1);
  run({"test", "odbc"}, 1);
  run({"test", "net"}, 1);
  run({"rewrite"}, 0);
  put_definition(
      2, "<external_database version=\"4\"><connection_string_2>AQAAAB</connection_string_2></external_database>");
  run({"rewrite", "--json"}, 1);
  run({"show", "odbc"}, 1);
  run({"remove", "net"}, 0);
  EXPECT_GT(runs(), 50U);
  expect_unmarked_files(folder());
  EXPECT_GE(std::distance(std::filesystem::directory_iterator(folder()), std::filesystem::directory_iterator()), 6);
  for (const auto& row : database().rows("SELECT * FROM CSEXDB"))
    for (const auto& cell : row)
      expect_unmarked(cell.value_or(""), "a row of CSEXDB");
  if (kind() == test_support::ServerKind::sqlite) {
    const std::filesystem::path file = database().connect_text().substr(std::string("sqlite:").size());
    ASSERT_TRUE(std::filesystem::exists(file));
    expect_unmarked_files(file.parent_path());
  }
}

TEST_P(Gathering, would_find_the_password_where_it_stands) {
  for (const auto& trace : traces_of_marker())
    EXPECT_NE(folded("x" + trace + "x").find(folded(trace)), std::string::npos);
  EXPECT_EQ(base64("Man"), "TWFu");
  source({"add", "a", "--connection-string", "DSN=x", "--password-fd", "3"}, marker);
  EXPECT_NE(clear_connection_of(1).find("Marker"), std::string::npos) << "it is stored, enciphered";
}

TEST(written_value, is_plain_where_it_can_be) {
  EXPECT_EQ(spc::written_value("abc-1", spc::Spelling::odbc), "abc-1");
  EXPECT_EQ(spc::written_value("a@b", spc::Spelling::odbc), "{a@b}");
  EXPECT_EQ(spc::written_value("a@b", spc::Spelling::quotes), "a@b");
  EXPECT_EQ(spc::written_value("", spc::Spelling::odbc), "{}");
  EXPECT_EQ(spc::written_value("", spc::Spelling::quotes), "\"\"");
}

TEST(with_password, leaves_the_rest_as_it_is) {
  EXPECT_EQ(spc::with_password("DSN={a;PWD=b};PWD=old ;X=1", "new"), "DSN={a;PWD=b};PWD=new ;X=1");
  EXPECT_EQ(spc::with_password("DSN=x;PWD=1;Password='2'", "new"), "DSN=x;PWD=new;Password=new") << "whichever counts";
  EXPECT_EQ(spc::with_password("DSN=x; ", "new"), "DSN=x;PWD=new");
  EXPECT_EQ(spc::with_password("DSN=x;Database Password=1", "new"), "DSN=x;Database Password=1;PWD=new");
  EXPECT_EQ(spc::with_password("Provider=P;Password=", "new"), "Provider=P;Password=new");
  EXPECT_EQ(spc::with_password("DSN=x;PWD={open", "new"), "DSN=x;PWD=new");
}

}  // namespace
