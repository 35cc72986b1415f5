// Plan, on SQLite and on a private MariaDB server
//   put, get and delete of each kind: through files and standard output; every byte value; JSON; a second put replaces
//   Bad input: unknown kind; ids without a row; no payload; a missing, an empty file, a folder; a file that is there
//     already; negative sizes
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/tools/json_check.h"
#include "tests/tools/program.h"

namespace {

using command_test::Answer;

class PayloadCommand : public command_test::OnDatabase {
 protected:
  PayloadCommand() {
    execute("INSERT INTO CSMON (MONID) VALUES (3)");
    execute("INSERT INTO CSPROF (PROFID) VALUES (5)");
  }

  std::string file(const std::string& bytes) {
    std::ofstream(folder_.file("in"), std::ios::binary) << bytes;
    return folder_.file("in");
  }
  static std::string content(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }

  test_support::ScratchFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Servers, PayloadCommand, test_support::main_servers(), test_support::server_name);

std::string every_byte() {
  std::string bytes;
  for (int i = 0; i < 256; ++i)
    bytes += static_cast<char>(i);
  return bytes;
}

struct Kind {
  const char* name;
  const char* id;
  const char* described;
};
constexpr Kind kinds[] = {{"monitor", "3", "the payload of monitor 3"},
                          {"profile", "5", "the payload of profile 5"},
                          {"monitor-extra", "3", "the extra payload of monitor 3"}};

TEST_P(PayloadCommand, puts_and_gets_every_byte_of_each_kind) {
  for (const auto& kind : kinds) {
    const Answer put = spc({"payload", "put", kind.name, kind.id, file(every_byte())});
    EXPECT_EQ(put.status, 0) << put;
    EXPECT_EQ(put.out, "Stored " + std::string(kind.described) + ": 256 bytes\n");
    EXPECT_EQ(spc({"payload", "get", kind.name, kind.id}).out, every_byte());
    const std::string copy = folder_.file(kind.name);
    const Answer got = spc({"payload", "get", kind.name, kind.id, copy, "--max-size", "1000"});
    EXPECT_EQ(got.out, "Wrote " + std::string(kind.described) + ": 256 bytes\n") << got;
    EXPECT_EQ(content(copy), every_byte());
  }
}

TEST_P(PayloadCommand, put_replaces_and_delete_removes) {
  for (const auto& kind : kinds) {
    EXPECT_EQ(spc({"payload", "put", kind.name, kind.id, file("first and longer")}).status, 0);
    EXPECT_EQ(spc({"payload", "put", kind.name, kind.id, file("second")}).status, 0);
    EXPECT_EQ(spc({"payload", "get", kind.name, kind.id}).out, "second");
    const Answer deleted = spc({"payload", "delete", kind.name, kind.id});
    EXPECT_EQ(deleted.out, "Deleted " + std::string(kind.described) + ": 6 bytes\n") << deleted;
    EXPECT_EQ(spc({"payload", "get", kind.name, kind.id}).status, 1);
  }
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "0");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSPOPB"), "0");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMEXT"), "0");
}

TEST_P(PayloadCommand, answers_in_json) {
  const auto put = json_check::parse(spc({"--json", "payload", "put", "profile", "5", file("Größe")}).out);
  EXPECT_EQ(put["bytes"].number, 7);
  const auto text = json_check::parse(spc({"--json", "payload", "get", "profile", "5"}).out);
  EXPECT_EQ(text["text"].text, "Größe");
  EXPECT_EQ(spc({"payload", "put", "profile", "5", file(std::string("\0\xFF", 2))}).status, 0);
  EXPECT_EQ(json_check::parse(spc({"--json", "payload", "get", "profile", "5"}).out)["hex"].text, "00FF");
  EXPECT_EQ(json_check::parse(spc({"--json", "payload", "delete", "profile", "5"}).out)["bytes"].number, 2);
}

TEST_P(PayloadCommand, names_the_kinds_for_an_unknown_one) {
  const Answer answer = spc({"payload", "get", "station", "3"});
  EXPECT_EQ(answer.status, 2);
  EXPECT_EQ(answer.err,
            "spc: cannot find payloads of the kind station: there is no such kind\n"
            "     The kinds are monitor, profile, monitor-extra.\n");
}

TEST_P(PayloadCommand, refuses_an_id_without_a_row) {
  const Answer put = spc({"payload", "put", "monitor", "4", file("x")});
  EXPECT_EQ(put.status, 1);
  EXPECT_EQ(put.err,
            "spc: cannot put the payload of monitor 4: there is no monitor 4\n"
            "     See that the number is right: it is MONID of the table CSMON.\n");
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "0");
  EXPECT_TRUE(spc({"payload", "get", "profile", "6"}).complains("there is no profile 6\n"));
  EXPECT_EQ(spc({"payload", "delete", "monitor-extra", "4"}).status, 1);
}

TEST_P(PayloadCommand, tells_of_an_object_without_a_payload) {
  for (const char* task : {"get", "delete"}) {
    const Answer answer = spc({"payload", task, "monitor", "3"});
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.err, "spc: cannot " + std::string(task) +
                              " the payload of monitor 3: monitor 3 has none\n     spc payload put stores one.\n");
  }
}

TEST_P(PayloadCommand, refuses_a_file_that_cannot_be_stored) {
  const Answer missing = spc({"payload", "put", "monitor", "3", folder_.file("none")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_TRUE(missing.complains("No such file or directory\n     See that the file is there and readable.")) << missing;
  EXPECT_TRUE(spc({"payload", "put", "monitor", "3", file("")}).complains("the file is empty\n"));
  EXPECT_TRUE(spc({"payload", "put", "monitor", "3", folder_.path()}).complains("it is a folder\n"));
  EXPECT_EQ(value("SELECT COUNT(*) FROM CSMOPB"), "0");
}

TEST_P(PayloadCommand, leaves_a_file_that_is_there_alone) {
  EXPECT_EQ(spc({"payload", "put", "monitor", "3", file("stored")}).status, 0);
  const Answer got = spc({"payload", "get", "monitor", "3", file("mine")});
  EXPECT_EQ(got.status, 1);
  EXPECT_TRUE(got.complains("the file is there already\n     Name a file that does not exist yet.")) << got;
  EXPECT_EQ(content(folder_.file("in")), "mine");
  EXPECT_TRUE(spc({"payload", "get", "monitor", "3", folder_.file("no/such")}).complains("cannot write "));
}

TEST_P(PayloadCommand, refuses_negative_sizes_and_numbers) {
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{"payload", "get", "monitor", "3", "--max-size=-1"},
        {"payload", "get", "monitor", "3", "--max-size", "-1"},
        {"payload", "get", "monitor", "0"},
        {"payload", "get", "monitor", "-3"},
        {"payload", "get", "monitor", "three"},
        {"payload", "put", "monitor", "3"}}) {
    const Answer answer = spc(wrong);
    EXPECT_EQ(answer.status, 2) << answer;
    EXPECT_TRUE(answer.err.starts_with("spc: cannot read the command line: ")) << answer;
  }
}

}  // namespace
