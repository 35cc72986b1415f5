// Plan
//   adding, doubles -> ACLDef.*
//   copies of both lists -> ACLMngr.copy_*
//   what is reported, in which order, and when something throws -> ACLMngr_log.*
//   the conditions, to the letter -> access_predicate.*
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "spcbase/foundation/failure.h"
#include "spcbase/tree/access.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Reports into a vector of texts, which the log context points to.
class Manager : public ACLMngr {
 public:
  Manager() = default;
  Manager(const std::vector<ACLItem>& was, const std::vector<ACLItem>& is) {
    saved = new ACLDef{was};
    current = new ACLDef{is};
  }
  std::vector<std::string> reported() {
    std::vector<std::string> lines;
    log(&lines);
    return lines;
  }
  void copy(const Manager& other) { copy_object(other); }

  int fails_at = 0;  // an id whose name cannot be had

 private:
  int get_object_id() override { return 77; }
  void get_object_name(CString& name) override { name = "bore"; }
  CString get_item_name(CString& name, int id, bool kind) override {
    if (id == fails_at) throw std::runtime_error("no name");
    name.Format("%s%d", kind ? "group " : "user ", id);
    return name;
  }
  static void report(void* context, const char* what, int object, const CString& object_name, const CString& name,
                     const char* right) {
    CString line;
    line.Format("%s %d %s %s%s", what, object, object_name.GetString(), name.GetString(), right);
    static_cast<std::vector<std::string>*>(context)->emplace_back(line.GetString());
  }
  void log_item_added(void* context, int object, const CString& object_name, int, bool, const CString& name,
                      bool right) override {
    report(context, "added", object, object_name, name, right ? " yes" : " no");
  }
  void log_item_removed(void* context, int object, const CString& object_name, int, bool,
                        const CString& name) override {
    report(context, "removed", object, object_name, name, "");
  }
  void log_item_changed(void* context, int object, const CString& object_name, int, bool, const CString& name,
                        bool right) override {
    report(context, "changed", object, object_name, name, right ? " yes" : " no");
  }
};

TEST(ACLDef, takes_one_id_for_each_kind_and_refuses_a_double_whatever_its_right) {
  ACLDef list;
  list.add(5, false, true);
  list.add(5, true, true);
  try {
    list.add(5, false, false);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const DBException& failure) {
    EXPECT_EQ(failure.what(), "Duplicate access control item.");
    EXPECT_EQ(failure.error_code, result_code::failed);
  }
  ASSERT_EQ(list.items.size(), 2U);
  EXPECT_TRUE(list.items[0].right);
}

TEST(ACLDef, copies_its_items_and_its_option) {
  ACLDef list;
  list.add(5, false, true);
  list.option = true;
  const ACLDef copy(list);
  EXPECT_TRUE(copy.option);
  ASSERT_EQ(copy.items.size(), 1U);
  EXPECT_EQ(copy.items[0].id, 5);
}

TEST(ACLMngr, copies_both_lists_deeply) {
  Manager source({{1, false, true}}, {{2, false, true}});
  Manager target(source);
  source.current->items.clear();
  ASSERT_EQ(target.current->items.size(), 1U);
  EXPECT_EQ(target.current->items[0].id, 2);
  EXPECT_EQ(target.saved->items[0].id, 1);
}

TEST(ACLMngr, copy_of_one_without_a_saved_list_leaves_none_and_deletes_what_was_held) {
  Manager source;
  source.current = new ACLDef;
  Manager target({{1, false, true}}, {{2, false, true}});
  target.copy(source);
  EXPECT_EQ(target.saved, nullptr);
  ASSERT_NE(target.current, nullptr);
  EXPECT_THAT(target.current->items, IsEmpty());
}

TEST(ACLMngr, copy_onto_itself_does_nothing) {
  Manager manager({{1, false, true}}, {{2, false, true}});
  const ACLDef* const held = manager.current;
  manager.copy(manager);
  EXPECT_EQ(manager.current, held);
}

TEST(ACLMngr_log, of_two_equal_lists_is_empty) {
  EXPECT_THAT(Manager({{1, false, true}}, {{1, false, true}}).reported(), IsEmpty());
}

TEST(ACLMngr_log, of_the_same_items_in_another_order_is_empty) {
  EXPECT_THAT(Manager({{1, false, true}, {1, true, false}, {2, false, true}},
                      {{2, false, true}, {1, false, true}, {1, true, false}})
                  .reported(),
              IsEmpty());
}

TEST(ACLMngr_log, of_a_right_that_went_is_one_change_with_the_new_right) {
  EXPECT_THAT(Manager({{1, false, true}}, {{1, false, false}}).reported(), ElementsAre("changed 77 bore user 1 no"));
}

TEST(ACLMngr_log, tells_removals_and_changes_in_the_old_order_and_then_additions_in_the_new) {
  Manager manager({{3, false, true}, {1, true, false}, {2, false, true}},
                  {{9, true, true}, {2, false, false}, {8, false, false}, {1, false, true}});
  EXPECT_THAT(manager.reported(),
              ElementsAre("removed 77 bore user 3", "removed 77 bore group 1", "changed 77 bore user 2 no",
                          "added 77 bore group 9 yes", "added 77 bore user 8 no", "added 77 bore user 1 yes"));
}

TEST(ACLMngr_log, what_an_operation_throws_passes_and_the_rest_is_not_reported) {
  Manager manager({{3, false, true}, {4, false, true}, {5, false, true}}, {});
  manager.fails_at = 4;
  std::vector<std::string> lines;
  EXPECT_THROW(manager.log(&lines), std::runtime_error);
  EXPECT_THAT(lines, ElementsAre("removed 77 bore user 3"));
}

TEST(ACLMngr_log, needs_both_lists) {
  Manager manager;
  manager.current = new ACLDef;
  EXPECT_THROW(manager.reported(), DBException);
}

TEST(access_predicate, is_the_text_that_servers_know_as_a_statement) {
  CString filter;
  filter.Format(access_predicate::data_sources, "[EXDBID]", 4, "[EXDBID]", 4);
  EXPECT_EQ(
      filter,
      "(([EXDBID] IN (SELECT EXDBID FROM CSUINEDB WHERE USERID = 4)) OR ([EXDBID] IN (SELECT EXDBID FROM CSGINEDB "
      "WHERE GROUPID IN (SELECT GROUPID FROM CSUSGP WHERE USERID = 4))))");
  filter.Format(access_predicate::profiles, "[PROFID]", 4, "[PROFID]", 4);
  EXPECT_EQ(filter,
            "(([PROFID] IN (SELECT PROFID FROM CSUINP WHERE USERID = 4)) OR ([PROFID] IN (SELECT PROFID FROM CSGINP "
            "WHERE GROUPID IN (SELECT GROUPID FROM CSUSGP WHERE USERID = 4))))");
}

}  // namespace
