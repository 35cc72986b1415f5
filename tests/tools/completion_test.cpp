// Plan
//   Words of the table: commands, options also behind their values, values of options with and without "=", arguments
//   Files: folders with a slash, hidden ones when asked for, home, connect texts
//   From the database, on both servers: names and ids of profiles, stations, users, data sources, samples, payloads,
//     revisions, settings, paths; --connect and --dsn honoured; nothing and no file made when there is no database;
//     nothing after 2 seconds when the server does not answer; for every option of the table that offers values;
//     behind a thousand others
//   Lines of bash: quotes, backslashes, colons and equals signs
//   bash, zsh and fish themselves, with the scripts as they are installed
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/tools/program.h"
#include "tools/spc/completion.h"
#include "tools/spc/words.h"

namespace {

using command_test::run;
using Texts = std::vector<std::string>;

Texts texts_for(const Texts& words) {
  Texts texts;
  for (const auto& candidate : spc::candidates_for(words))
    texts.push_back(candidate.text);
  return texts;
}

bool has(const Texts& texts, const std::string& text) { return std::ranges::find(texts, text) != texts.end(); }

TEST(Completion, offers_commands_with_what_they_are_for) {
  EXPECT_EQ(texts_for({"sam"}), Texts{"sample"});
  EXPECT_EQ(texts_for({"sample", ""}), (Texts{"import", "list", "show"}));
  EXPECT_EQ(spc::candidates_for({"--json", "db", "ch"}),
            (std::vector<spc::Candidate>{
                {"check", "See that the connection lives and that nothing of the schema is missing"}}));
  EXPECT_EQ(texts_for({"fly"}), Texts());
  EXPECT_EQ(texts_for({}), Texts());
}

TEST(Completion, offers_options_of_the_command_and_of_all) {
  EXPECT_EQ(texts_for({"sample", "list", "--l"}), Texts{"--limit"});
  EXPECT_EQ(texts_for({"sample", "list", "--limit", "3", "--prof"}), Texts{"--profile"});
  EXPECT_EQ(texts_for({"sample", "list", "--conn"}), Texts{"--connect"});
  EXPECT_TRUE(has(texts_for({"db", "check", ""}), "--json")) << "no argument is left";
  EXPECT_EQ(texts_for({"sample", "list", "--", "--l"}), Texts()) << "behind -- there are no options";
}

TEST(Completion, offers_the_values_that_there_are) {
  EXPECT_EQ(texts_for({"source", "list", "--kind", ""}), (Texts{"oledb", "adonet"}));
  EXPECT_EQ(texts_for({"source", "list", "--kind=a"}), Texts{"--kind=adonet"});
  EXPECT_EQ(texts_for({"payload", "get", "mon"}), (Texts{"monitor", "monitor-extra"}));
  EXPECT_EQ(texts_for({"numbers", "check", "CSSAM"}), Texts{"CSSAMP"});
  EXPECT_EQ(texts_for({"doctor", "--only", "folder-ci"}), Texts{"folder-circle"});
  EXPECT_EQ(texts_for({"doctor", "--only", "folder-circle,number-be"}), Texts{"folder-circle,number-behind"});
  EXPECT_EQ(texts_for({"source", "list", "--all=x"}), Texts()) << "a flag has no value";
  EXPECT_EQ(texts_for({"rev", "add", "--reason", ""}), Texts()) << "free text";
}

class Files : public testing::Test {
 protected:
  Files() {
    for (const char* name : {"rings.csv", ".hidden"})
      std::ofstream(folder_.file(name)) << "";
    std::filesystem::create_directory(folder_.file("rings"));
    std::ofstream(folder_.file("rings/more.csv"));
  }
  Texts offered(const std::string& typed) {
    Texts texts = texts_for({"sample", "import", folder_.file("") + typed});
    for (auto& text : texts)
      text.erase(0, folder_.file("").size());
    std::ranges::sort(texts);
    return texts;
  }

  test_support::ScratchFolder folder_;
};

TEST_F(Files, are_offered_with_a_slash_behind_folders) {
  EXPECT_EQ(offered("r"), (Texts{"rings.csv", "rings/"}));
  EXPECT_EQ(offered("rings/"), Texts{"rings/more.csv"});
  EXPECT_EQ(offered(""), (Texts{"rings.csv", "rings/"}));
  EXPECT_EQ(offered(".h"), Texts{".hidden"});
  EXPECT_EQ(offered("no such folder/"), Texts());
}

TEST_F(Files, are_offered_in_connect_texts) {
  EXPECT_EQ(texts_for({"--connect", "sq"}), Texts{"sqlite:"});
  EXPECT_EQ(texts_for({"--connect", "sqlite:" + folder_.file("rings.")}), Texts{"sqlite:" + folder_.file("rings.csv")});
}

/// Candidates that the command itself answers, as a shell asks.
Texts answered(Texts words) {
  words.insert(words.begin(), {"complete", "fish", "--"});
  const auto answer = run(words);
  EXPECT_EQ(answer.status, 0) << answer;
  EXPECT_EQ(answer.err, "");
  return spc::words_of(answer.out, "\n");
}

class FromDatabase : public testing::TestWithParam<test_support::ServerKind> {
 protected:
  void SetUp() override {
    ASSERT_EQ(run({"--connect", database_.connect_text(), "demo"}).status, 0);
    database_.execute(
        "INSERT INTO CSINI (QUAL, SECT, KYWORD, SEQNO, OPTVAL) VALUES ('SYSTEM', 'SETTINGS', 'city', 1, '4BC3')");
  }
  Texts offered(Texts words) {
    words.insert(words.begin(), {"--connect", database_.connect_text()});
    return answered(words);
  }

  command_test::EmptyDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Servers, FromDatabase, test_support::main_servers(), test_support::server_name);

TEST_P(FromDatabase, names_and_ids_are_offered) {
  EXPECT_EQ(offered({"sample", "list", "--profile", "P"}), Texts{"Piston rings\t1"});
  EXPECT_EQ(offered({"sample", "list", "--profile", "2"}), Texts{"2\tJuice cans"});
  EXPECT_EQ(offered({"sample", "import", "--station", "Forge"}).front().substr(0, 5), "Forge");
  EXPECT_EQ(offered({"sample", "import", "--user", "an"}), Texts{"anna\t1"});
  EXPECT_EQ(offered({"--as-user", ""}).size(), 3U);
  EXPECT_EQ(offered({"sample", "show", "14"}), (Texts{"140", "14"})) << "the newest first";
  EXPECT_EQ(offered({"payload", "get", "profile", "1"}), Texts{"1\tPiston rings"});
  EXPECT_EQ(offered({"payload", "get", "monitor", "1"}), Texts{"1\tRing diameter"});
  EXPECT_EQ(offered({"settings", "get", "c"}), Texts{"city\t2 bytes"});
  EXPECT_EQ(offered({"path", "/Plant/Filling"}).front(), "/Plant/Filling // packing\tfolder 5");
  EXPECT_EQ(offered({"tree", "/Plant/Forge/Line 1/P"}), Texts{"/Plant/Forge/Line 1/Piston rings\tprofile 1"});
  EXPECT_GE(offered({"source", "show", ""}).size(), 6U) << "names and ids";
}

TEST_P(FromDatabase, revisions_of_the_object_before_are_offered) {
  const std::string type = offered({"rev", "list", "--type", ""}).at(0);
  const std::string id = offered({"rev", "list", "--type", type, "--id", ""}).at(0);
  Texts revisions = offered({"rev", "show", "--type", type, "--id", id, "--revision", ""});
  for (auto& revision : revisions)
    revision.erase(revision.find('\t'));
  EXPECT_EQ(revisions, (Texts{"5", "4", "3", "2", "1"}));
  EXPECT_EQ(offered({"rev", "show", "--type", "77", "--id", ""}), Texts());
}

TEST_P(FromDatabase, there_is_something_for_every_option_that_offers_values) {
  std::size_t offering = 0;
  for (const spc::Command& command : spc::commands()) {
    auto options = spc::options_of(command);
    options.insert(options.end(), spc::global_options().begin(), spc::global_options().end());
    Texts line = {"--connect", database_.connect_text()};
    for (const auto& word : spc::words_of(command.path, " "))
      line.push_back(word);
    for (const spc::Option& option : options) {
      Texts words = line;
      if (!option.is_argument()) words.emplace_back(option.name);
      words.emplace_back(option.offers == spc::Offers::files ? "/" : "");
      if (!command.is_group() && option.offers != spc::Offers::nothing) {
        EXPECT_NE(texts_for(words), Texts()) << command.path << ' ' << option.name;
        ++offering;
      }
      if (option.is_argument()) line.emplace_back(option.words.empty() ? "1" : option.words.front());
    }
  }
  EXPECT_GT(offering, 100U);
}

TEST_P(FromDatabase, what_was_typed_is_found_behind_a_thousand_others) {
  database_.execute("DELETE FROM CSPROF");
  const std::string digits =
      "(SELECT 0 d UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4 UNION ALL SELECT 5 "
      "UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9)";
  database_.execute("INSERT INTO CSPROF (PROFID, NAME) SELECT 1 + a.d + 10 * b.d + 100 * c.d + 1000 * e.d, 'A' FROM " +
                    digits + " a, " + digits + " b, " + digits + " c, " + digits + " e WHERE e.d < 2");
  database_.execute("UPDATE CSPROF SET NAME = 'Zinc' WHERE PROFID = 1999");
  EXPECT_EQ(offered({"sample", "list", "--profile", "Z"}), Texts{"Zinc\t1999"});
  EXPECT_EQ(offered({"sample", "list", "--profile", "1999"}), Texts{"1999\tZinc"});
  EXPECT_EQ(offered({"payload", "get", "profile", ""}).size(), 1000U) << "nobody chooses among more";
}

TEST(CompletionWithoutDatabase, offers_nothing_and_makes_no_file) {
  const test_support::ScratchFolder folder;
  const std::string text = "sqlite:" + folder.file("none.db");
  EXPECT_EQ(answered({"--connect", text, "sample", "list", "--profile", ""}), Texts());
  EXPECT_FALSE(std::filesystem::exists(folder.file("none.db")));
  EXPECT_EQ(answered({"--dsn", "no_such_source", "sample", "show", ""}), Texts());
  EXPECT_EQ(answered({"sample", "show", ""}), Texts()) << "no home folder";
  const auto at_home = run({"complete", "fish", "--", "sample", "show", ""}, folder.path().string());
  EXPECT_EQ(at_home.out + at_home.err, "");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

/// Takes connections at a socket in the file system, and says nothing.
class SilentServer {
 public:
  SilentServer() : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)), path_(folder_.file("socket")) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(socket_, 4), 0);
  }
  ~SilentServer() { ::close(socket_); }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;
  const std::string& path() const { return path_; }

 private:
  test_support::ScratchFolder folder_;
  int socket_;
  std::string path_;
};

TEST(CompletionWithoutDatabase, gives_up_a_server_that_does_not_answer) {
  const SilentServer server;
  std::string text = test_support::PrivateMariaDb::shared().odbc_connect_text("x");
  const std::string socket = test_support::PrivateMariaDb::shared().socket();
  ASSERT_NE(text.find(socket), std::string::npos) << text;
  text.replace(text.find(socket), socket.size(), server.path());
  const auto started = std::chrono::steady_clock::now();
  EXPECT_EQ(answered({"--connect", text, "sample", "show", ""}), Texts());
  const auto took = std::chrono::steady_clock::now() - started;
  EXPECT_GE(took, std::chrono::milliseconds(1500)) << "the server was not even waited for";
  EXPECT_LT(took, std::chrono::seconds(10));
}

TEST(BashLine, is_read_as_bash_does) {
  EXPECT_EQ(spc::read_bash_line("spc db ").words, (Texts{"spc", "db", ""}));
  EXPECT_EQ(spc::read_bash_line("spc  'a b' \"c \\\" d\" e\\ f").words, (Texts{"spc", "a b", "c \" d", "e f"}));
  EXPECT_EQ(spc::read_bash_line("spc 'a b").open_quote, '\'');
  EXPECT_EQ(spc::read_bash_line("spc '").words, (Texts{"spc", ""}));
  EXPECT_EQ(spc::read_bash_line("spc a\\").words, (Texts{"spc", "a\\"}));
}

TEST(CompletionAnswer, is_in_the_shells_own_form) {
  EXPECT_EQ(run({"complete", "bash", "--", "spc db c"}).out, "create\ncheck\n");
  EXPECT_EQ(run({"complete", "bash", "--", "spc source list --kind=a"}).out, "adonet\n") << "bash parts words at =";
  EXPECT_EQ(run({"complete", "bash", "--", "spc --connect sq"}).out, "sqlite:\n");
  EXPECT_EQ(run({"complete", "bash", "--", "sp"}).out, "");
  EXPECT_EQ(run({"complete", "zsh", "--", "db", "cr"}).out,
            "create\tCreate every table and view in an empty database\n");
  EXPECT_EQ(run({"complete", "ksh", "--", "db"}).status, 2);
  EXPECT_EQ(run({"complete"}).status, 2);
}

/// A folder with the scripts and a database, in which a shell is driven.
class Shells : public testing::Test {
 protected:
  Shells() {
    for (const char* shell : {"bash", "zsh", "fish"})
      std::ofstream(folder_.file(shell)) << spc::completion_script(shell);
    std::ofstream(folder_.file("_spc")) << spc::completion_script("zsh");
    EXPECT_EQ(run({"demo", "--keep", folder_.file("demo.db")}).status, 0);
  }
  /// What a script of a shell prints, line by line.
  Texts drive(const std::string& shell, const std::string& script) {
    std::ofstream(folder_.file("script")) << script;
    const auto bin = std::filesystem::path(SPC_PROGRAM).parent_path().string();
    const std::string line =
        "cd '" + folder_.path().string() + "' && HOME=. PATH='" + bin + "':$PATH " + shell + " script >said 2>&1";
    const int status = std::system(line.c_str());
    std::ifstream said(folder_.file("said"));
    const std::string text{std::istreambuf_iterator<char>(said), std::istreambuf_iterator<char>()};
    EXPECT_EQ(status, 0) << text;
    Texts lines = spc::words_of(text, "\n");
    std::ranges::sort(lines);
    return lines;
  }
  Texts bash(const std::string& line) {
    return drive("bash --norc", ". ./bash\nCOMP_LINE=" + in_quotes(line) + "\nCOMP_POINT=${#COMP_LINE}\n" +
                                    "_spc spc '' ''\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
  }
  /// The builtin that hands candidates to the line editor is stood in for: there is no line here.
  Texts zsh(const std::string& words, const std::string& typed) {
    return drive("zsh -f",
                 "compadd() { while [[ $1 == -* ]]; do [[ $1 == -[dS] ]] && shift; [[ $1 == -a ]] && "
                 "{ shift; print -l -- \"${(@P)1}\"; return }; shift; done }\nfpath=(. $fpath)\nautoload -Uz _spc\n"
                 "words=(spc " +
                     words + " " + typed + ")\nCURRENT=$#words\nPREFIX=" + in_quotes(typed) + "\n_spc\n");
  }
  Texts fish(const std::string& line) {
    return drive("fish --no-config", "source ./fish\ncomplete -C " + in_quotes(line) + "\n");
  }
  static std::string in_quotes(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
      quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
  }

  test_support::ScratchFolder folder_;
};

TEST_F(Shells, bash_offers_commands_options_files_and_names) {
  EXPECT_EQ(bash("spc db c"), (Texts{"check", "create"}));
  EXPECT_EQ(bash("spc sample list --li"), Texts{"--limit"});
  EXPECT_EQ(bash("spc --connect sqlite:de"), Texts{"demo.db"}) << "behind the colon, where bash begins a word";
  EXPECT_EQ(bash("spc payload put monitor 1 ./dem"), Texts{"./demo.db"});
  EXPECT_EQ(bash("spc --connect sqlite:demo.db sample list --profile Pis"), Texts{"Piston\\ rings"});
  EXPECT_EQ(bash("spc --connect sqlite:demo.db sample list --profile 'Pis"), Texts{"Piston rings"});
  EXPECT_EQ(bash("spc --connect 'sqlite:demo.db' sample show 139"), Texts{"139"});
}

TEST_F(Shells, bash_knows_the_function_for_the_command) {
  EXPECT_EQ(drive("bash --norc", ". ./bash\ncomplete -p spc\n"), Texts{"complete -F _spc spc"});
}

TEST_F(Shells, zsh_knows_the_function_for_the_command) {
  EXPECT_EQ(drive("zsh -f", "compdef() { print -- $* }\n. ./zsh\n"), Texts{"_spc spc"});
  EXPECT_EQ(drive("zsh -f", "fpath=($PWD $fpath)\nautoload -Uz compinit && compinit -D -u\nprint $_comps[spc]\n"),
            Texts{"_spc"});
}

TEST_F(Shells, zsh_offers_commands_options_files_and_names) {
  EXPECT_EQ(zsh("db", "c"), (Texts{"check", "create"}));
  EXPECT_EQ(zsh("sample list", "--li"), Texts{"--limit"});
  EXPECT_EQ(zsh("--connect", "sqlite:de"), Texts{"sqlite:demo.db"});
  EXPECT_EQ(zsh("--connect sqlite:demo.db sample list --profile", "Pis"), Texts{"Piston rings"});
  EXPECT_EQ(zsh("--connect 'sqlite:demo.db' sample show", "139"), Texts{"139"});
}

TEST_F(Shells, fish_offers_commands_options_files_and_names) {
  EXPECT_EQ(fish("spc db cr"), Texts{"create\tCreate every table and view in an empty database"});
  EXPECT_EQ(fish("spc sample list --li"), Texts{"--limit\tAt most so many; 20 when it is not given"});
  EXPECT_EQ(fish("spc --connect sqlite:de"), Texts{"sqlite:demo.db"});
  EXPECT_EQ(fish("spc --connect sqlite:demo.db sample list --profile Pis"), Texts{"Piston rings\t1"});
  EXPECT_EQ(fish("spc --connect 'sqlite:demo.db' sample show 139"), Texts{"139"});
}

}  // namespace
