// The object tree: a path of 6 names, found exactly, and one name among 100,000 that is found by comparing them all.
#include <algorithm>
#include <array>
#include <string_view>

#include "bench/jobs.h"
#include "spcbase/tree/internal/node_walk.h"
#include "spcbase/tree/path.h"

namespace bench {
namespace {

/// Folders stand this deep, this many in each; the lowest hold so many profiles.
constexpr int depth = 5;
constexpr int width = 4;
constexpr int children = 100'000;

/// "INSERT INTO TABLE (COLUMNS) VALUES (..), (..)", some thousand rows at a time.
class Inserts {
 public:
  Inserts(CDatabaseEx& db, std::string head) : db_(db), head_(std::move(head)) {}
  void add(const std::string& row) {
    text_ += (text_.empty() ? head_ : ", ") + row;
    if (++count_ % 2000 == 0) send();
  }
  void send() {
    if (!text_.empty()) db_.ExecuteSQL(text_.c_str());
    text_.clear();
  }

 private:
  CDatabaseEx& db_;
  std::string head_;
  std::string text_;
  int count_ = 0;
};

std::string row_of(const std::string& id, const std::string& name, const std::string& parent) {
  return "(" + id + ", '" + name + "', " + parent + ")";
}

/// Adds the folders below one, and profiles below the lowest.
void add_below(int parent, int level, int& last, Inserts& folders, std::vector<int>& lowest) {
  for (int i = 0; i < width; ++i) {
    const int id = ++last;
    folders.add(row_of(std::to_string(id), "Folder " + std::to_string(i), std::to_string(parent)));
    if (level < depth)
      add_below(id, level + 1, last, folders, lowest);
    else
      lowest.push_back(id);
  }
}

Place make_tree(Plant& plant) {
  Place place = plant.make_database();
  CDatabaseEx db;
  db.OpenEx(place.connect_text.c_str());
  db.BeginTrans();
  Inserts folders(db, "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES ");
  std::vector<int> lowest;
  int last = 0;
  add_below(0, 1, last, folders, lowest);
  folders.send();
  Inserts profiles(db, "INSERT INTO CSPROF (PROFID, NAME) VALUES ");
  Inserts members(db, "INSERT INTO CSPINN (NODEID, PROFID) VALUES ");
  int profile = 100;
  for (const int folder : lowest)
    for (int i = 0; i < width; ++i) {
      const auto id = std::to_string(++profile);
      profiles.add("(" + id + ", 'Profile " + std::to_string(i) + "')");
      members.add("(" + std::to_string(folder) + ", " + id + ")");
    }
  profiles.send();
  members.send();
  db.CommitTrans();
  return place;
}

/// Goes through the profiles, in an order that jumps.
class Paths {
 public:
  using Names = std::array<std::string, depth + 1>;
  const Names& next() {
    at_ = (at_ + 1811) % 4096;
    int rest = at_;
    for (int level = 0; level <= depth; ++level, rest /= width)
      names_[static_cast<std::size_t>(level)] = (level < depth ? "Folder " : "Profile ") + std::to_string(rest % width);
    return names_;
  }

 private:
  int at_ = 0;
  Names names_;
};

class OurPath final : public OurWork {
 public:
  using OurWork::OurWork;
  void run() override {
    path_.clear();
    for (const auto& name : paths_.next())
      (path_ += '/') += name;
    const int profile = get_prof_id_from_path(&db(), path_.c_str());
    if (profile == 0) throw std::runtime_error("a profile is missing");
    sum_ += profile;
  }

 private:
  Paths paths_;
  std::string path_;
};

template <class Database>
class PlainPath final : public PlainWork<Database> {
 public:
  explicit PlainPath(const Place& place)
      : PlainWork<Database>(place),
        folder_(this->db_.prepare("SELECT NODEID,NAME FROM CSNODE WHERE PNODE = ? AND NAME = ? AND VFLG IS NULL", "it",
                                  "it")),
        profile_(this->db_.prepare("SELECT CSPROFV.PROFID,CSPROFV.NAME,CSPINNV.NODEID FROM CSPINNV,CSPROFV WHERE "
                                   "CSPROFV.PROFID = CSPINNV.PROFID AND NODEID = ? AND NAME = ?",
                                   "it", "iti")) {}

  void run() override {
    const auto& names = paths_.next();
    int id = 0;
    for (std::size_t level = 0; level < names.size(); ++level) {
      auto& select = level < depth ? folder_ : profile_;
      select.set_number(0, id);
      select.set_text(1, names[level]);
      if (!select.query()) throw std::runtime_error("a row is missing");
      id = select.number_at(0);
      select.text_at(1, name_);
      select.close();
    }
    this->sum_ += id;
  }

 private:
  typename Database::Statement& folder_;
  typename Database::Statement& profile_;
  std::string name_;
  Paths paths_;
};

Place make_wide_folder(Plant& plant) {
  Place place = plant.make_database();
  CDatabaseEx db;
  db.OpenEx(place.connect_text.c_str());
  db.BeginTrans();
  Inserts folders(db, "INSERT INTO CSNODE (NODEID, NAME, PNODE) VALUES ");
  for (int id = 1; id <= children; ++id)
    folders.add(row_of(std::to_string(id), "Line " + std::to_string(id), "0"));
  folders.send();
  db.CommitTrans();
  return place;
}

// The blank in front makes it another name on servers that compare without regard to case.
constexpr const char* alike_name = " LINE 99999";

class OurSlowName final : public OurWork {
 public:
  using OurWork::OurWork;
  void run() override { sum_ += find_node_from_names(&db(), {alike_name}, 1); }
};

std::string_view without_blanks(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool same_but_for_case(std::string_view left, std::string_view right) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(), [&](char a, char b) { return lower(a) == lower(b); });
}

template <class Database>
class PlainSlowName final : public PlainWork<Database> {
 public:
  explicit PlainSlowName(const Place& place)
      : PlainWork<Database>(place),
        exact_(this->db_.prepare("SELECT NODEID,NAME FROM CSNODE WHERE PNODE = ? AND NAME = ? AND VFLG IS NULL", "it",
                                 "it")),
        all_(this->db_.prepare("SELECT NODEID,NAME FROM CSNODE WHERE PNODE = ? AND VFLG IS NULL", "i", "it", 100)) {}

  void run() override {
    exact_.set_number(0, 0);
    exact_.set_text(1, wanted_);
    if (exact_.query()) throw std::runtime_error("the name was found exactly");
    exact_.close();
    all_.set_number(0, 0);
    int found = 0;
    for (bool has_row = all_.query(); has_row && found == 0; has_row = all_.next()) {
      all_.text_at(1, name_);
      if (same_but_for_case(without_blanks(name_), without_blanks(wanted_))) found = all_.number_at(0);
    }
    all_.close();
    this->sum_ += found;
  }

 private:
  typename Database::Statement& exact_;
  typename Database::Statement& all_;
  std::string wanted_ = alike_name;
  std::string name_;
};

}  // namespace

Job resolve_path() {
  Job job;
  job.name = "resolve a path of 6 names";
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    const Place place = make_tree(plant);
    return make_pair_of<OurPath, PlainPath>(place, place);
  };
  return job;
}

Job slow_name() {
  Job job;
  job.name = "slow name among 100,000";
  job.sqlite_limit = 1.3;
  job.mariadb_limit = 1.3;
  job.pair = [](Plant& plant) {
    const Place place = make_wide_folder(plant);
    return make_pair_of<OurSlowName, PlainSlowName>(place, place);
  };
  return job;
}

}  // namespace bench
