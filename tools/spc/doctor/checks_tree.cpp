// What is wrong in the tree of folders, with what they hold, and with who may see it.
#include <set>

#include "tools/spc/doctor/check.h"
#include "tools/spc/doctor/examination.h"
#include "tools/spc/node_tree.h"

namespace spc::doctor {
namespace {

void look_for_circles(Examination& examination) {
  Subjects folders{"NODEID", {}};
  const NodeTree tree(examination.link());
  std::set<int> ids;
  for (const Unreachable& thing : tree.unreachable()) {
    if (!thing.in_circle) continue;
    if (ids.empty()) folders.detail = thing.why;
    ids.insert(thing.id);
  }
  for (const int id : ids)
    add(folders, std::to_string(id), examination.limit());
  examination.found("CSNODE", std::move(folders));
}

/// A link from a folder; 0 is the root, which has no row.
Query without_folder(const std::string& table) {
  Query query = without_parent(table, "NODEID", "CSNODE");
  query.condition += " AND [" + table + "].[NODEID] <> 0";
  return query;
}

Query parent_missing() {
  return {"CSNODE", "NODEID",
          "[CSNODE].[PNODE] IS NOT NULL AND [CSNODE].[PNODE] <> 0 AND NOT EXISTS (SELECT P.[NODEID] FROM [CSNODE] P "
          "WHERE P.[NODEID] = [CSNODE].[PNODE])"};
}

Query doubled_names(const std::string& table, const std::string& id, const std::string& columns) {
  return {table, "FIRSTID", "",
          "(SELECT MIN([" + id + "]) AS FIRSTID FROM [" + table + "] WHERE [VFLG] IS NULL GROUP BY " + columns +
              " HAVING COUNT(*) > 1) D"};
}

}  // namespace

std::vector<Check> tree_checks() {
  return {
      {"folder-without-parent",
       Severity::error,
       "The folder's parent is no folder, so no path leads to it or to what it holds.",
       "Set PNODE to the folder that it belongs in, or to 0 for the root; spc tree --all shows what stands nowhere.",
       {parent_missing()}},
      {"folder-parent-null",
       Severity::error,
       "The folder's parent is null. The root is 0, and no path leads to a folder without a parent.",
       "Set PNODE to the folder that it belongs in, or to 0 for the root.",
       {{"CSNODE", "NODEID", "[PNODE] IS NULL"}}},
      {"folder-circle",
       Severity::error,
       "The parents of the folder lead back to itself: no path leads there, and whoever climbs never arrives.",
       "Set PNODE of one folder of the circle to a folder outside of it, or to 0; spc tree --all shows the circle.",
       {},
       look_for_circles,
       "CSNODE"},
      {"folder-name-doubled",
       Severity::warning,
       "Two live folders of one parent have the same name, of which a path finds only one.",
       "Rename one of them, or remove the one that is empty.",
       {doubled_names("CSNODE", "NODEID", "[PNODE], [NAME]")}},
      {"member-without-folder",
       Severity::error,
       "A monitor or profile is linked into a folder that does not exist, so no path leads to it there.",
       "Set NODEID to an existing folder, or delete the link; spc path --kind profile ID shows where a profile stands.",
       {without_folder("CSMINN"), without_folder("CSPINN")}},
      {"member-without-object",
       Severity::error,
       "A folder holds a monitor or profile that does not exist: the next one that gets this id appears there.",
       "Delete the link.",
       {without_parent("CSMINN", "MONID", "CSMON"), without_parent("CSPINN", "PROFID", "CSPROF")}},
      {"access-without-object",
       Severity::error,
       "Somebody was given access to what does not exist: whatever gets this id next is open to them.",
       "Delete the rows.",
       {without_parent("CSUINP", "PROFID", "CSPROF"), without_parent("CSGINP", "PROFID", "CSPROF"),
        without_parent("CSUINEDB", "EXDBID", "CSEXDB"), without_parent("CSGINEDB", "EXDBID", "CSEXDB")}},
      {"access-without-holder",
       Severity::error,
       "Access was given to a user or group that does not exist: whoever gets this id next inherits it.",
       "Delete the rows.",
       {without_parent("CSUINP", "USERID", "CSUSER"), without_parent("CSGINP", "GROUPID", "CSGROUP"),
        without_parent("CSUINEDB", "USERID", "CSUSER"), without_parent("CSGINEDB", "GROUPID", "CSGROUP")}},
      {"group-member-missing",
       Severity::error,
       "A membership names a group or a user that does not exist: whoever gets this id next inherits what it opens.",
       "Delete the rows.",
       {without_parent("CSUSGP", "GROUPID", "CSGROUP"), without_parent("CSUSGP", "USERID", "CSUSER")}},
  };
}

}  // namespace spc::doctor
