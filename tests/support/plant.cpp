#include "tests/support/plant.h"

namespace test_support {

std::string quoted(const std::string& text) {
  std::string literal = "'";
  for (const char c : text) {
    literal += c;
    if (c == '\'') literal += c;
  }
  return literal + "'";
}

void Plant::station(int id, const std::string& name) {
  database_.execute("INSERT INTO CSSTN (STNID, NAME) VALUES (" + std::to_string(id) + ", " + quoted(name) + ")");
}

void Plant::user(int id, const std::string& name, const std::string& full_name) {
  database_.execute("INSERT INTO CSUSER (USERID, NAME, FULLNAME, PASSWORD) VALUES (" + std::to_string(id) + ", " +
                    quoted(name) + ", " + quoted(full_name) + ", 'secret')");
}

void Plant::characteristic(int id, const std::string& name, const std::string& type, int size, int total) {
  database_.execute("INSERT INTO CSCHRT (CHRTID, NAME, DESCR, CTYPE, CFLG2, SGSIZE) VALUES (" + std::to_string(id) +
                    ", " + quoted(name) + ", " + quoted("about " + name) + ", " + quoted(type) + ", " +
                    std::to_string(total) + ", " + std::to_string(size) + ")");
}

void Plant::label(int id, const std::string& name, const std::string& type, const std::string& list_type) {
  database_.execute("INSERT INTO CSLABEL (LABELID, NAME, LTYPE, LISTTYPE, DEFLG) VALUES (" + std::to_string(id) + ", " +
                    quoted(name) + ", " + quoted(type) + ", " + quoted(list_type) + ", '')");
}

void Plant::profile(int id, const std::vector<Element>& elements) {
  const std::string profile = std::to_string(id);
  database_.execute("INSERT INTO CSPROF (PROFID, NAME) VALUES (" + profile + ", 'Profile " + profile + "')");
  int place = 0;
  for (const Element& element : elements) {
    place += 10;
    const std::string ids =
        profile + ", " + std::to_string(element.id) + ", " + std::to_string(element.seqno != 0 ? element.seqno : place);
    if (element.kind == 'c')
      database_.execute("INSERT INTO CSCINP (PROFID, CHRTID, SEQNO) VALUES (" + ids + ")");
    else
      database_.execute("INSERT INTO CSLINP (PROFID, LABELID, SEQNO, ALFLG) VALUES (" + ids + ", " +
                        (element.kind == 'a' ? "'YES'" : "'NO'") + ")");
  }
}

void Plant::standard() {
  station(1, "North");
  station(2, "South");
  user(1, "anna", "Anna Berg");
  user(2, "ben", "Ben Adler");
  variable(10, "Diameter", 5);
  defects(11, "Scratches", 5);
  total(12, "Rejects");
  variable(13, "Weight", 0);
  label(20, "Shift", "SAMPLE");
  label(21, "Cavity", "PIECE");
  label(22, "Poured", "SAMPLE", "DATETIME");
  label(23, "Supplier", "SAMPLE", "DYNAMIC");
  label(24, "Batch", "SAMPLE");
  label(30, "STATION", "SAMPLE");
  label(31, "OPERATOR", "SAMPLE");
  profile(1, {{'c', 10}});
  profile(
      2,
      {{'c', 10}, {'l', 21}, {'c', 11}, {'c', 12}, {'l', 20}, {'l', 22}, {'l', 23}, {'a', 24}, {'l', 30}, {'a', 31}});
  profile(3, {{'l', 20}, {'l', 22}});
  profile(4, {{'c', 13}, {'l', 20}, {'l', 22}});
}

}  // namespace test_support
