#include "tools/spc/report/tree.h"

#include <string>

#include "tools/spc/terminal.h"
#include "tools/spc/tree_view.h"

namespace spc::report_page {
namespace {

/// Browsers and readers of XML take only so many elements within one another.
constexpr int deepest = 40;

void icon(Markup& page, const std::string& kind) {
  page.open("svg", {{"class", "icon"}, {"viewBox", "0 0 20 20"}, {"aria-hidden", "true"}});
  page.empty("use", {{"href", "#icon-" + kind}}).close();
}

class ListWriter final : public TreeVisitor {
 public:
  explicit ListWriter(Markup& page) : page_(page) {}

  void begin(const Folder& folder, bool /*is_last*/, bool is_cut) override {
    page_.open("li");
    write(folder.id == 0 ? "root" : "folder", folder.id == 0 ? std::string("All folders") : folder.name, folder.id);
    if (is_cut) page_.element("p", {{"class", "quiet"}}, "What it holds lies too deep to be shown.");
    page_.open("ul");
  }
  void members(std::span<const Member> all) override {
    for (const Member& member : all) {
      page_.open("li");
      write(member.kind == ObjectKind::monitor ? "monitor" : "profile", member.name, member.id);
      page_.close();
    }
  }
  void end() override { page_.close().close(); }

 private:
  void write(const std::string& kind, const std::string& name, int id) {
    page_.open("span", {{"class", "node"}});
    icon(page_, kind == "root" ? "folder" : kind);
    page_.open("span").name(name);
    if (kind != "root") page_.text(" ").element("span", {{"class", "kind"}}, kind + " " + std::to_string(id));
    page_.close().close();
  }

  Markup& page_;
};

void symbol(Markup& page, const char* id, const char* path) {
  page.open("symbol", {{"id", id}, {"viewBox", "0 0 20 20"}}).empty("path", {{"d", path}}).close();
}

}  // namespace

void write_icons(Markup& page) {
  page.open("svg", {{"class", "symbols"}, {"width", "0"}, {"height", "0"}, {"aria-hidden", "true"}});
  symbol(page, "icon-folder", "M2.5 5.5a1 1 0 0 1 1-1h4l2 2h7a1 1 0 0 1 1 1v7a1 1 0 0 1-1 1h-13a1 1 0 0 1-1-1Z");
  symbol(page, "icon-monitor", "M2.5 3.5V16.5H17.5M5 13L8.5 8.5L11.5 11L17 5");
  symbol(page, "icon-profile", "M4.5 3.5h11v13h-11ZM4.5 7.5h11M4.5 12h11M9 7.5v9");
  page.close();
}

void write_tree(Markup& page, const NodeTree& tree) {
  TreePart part;
  part.depth = deepest;
  page.open("div", {{"class", "scroll"}, {"tabindex", "0"}, {"role", "group"}, {"aria-label", "Tree of the folders"}});
  page.open("ul", {{"class", "tree"}});
  ListWriter writer(page);
  const TreeCounts counts = visit_tree(tree, part, writer);
  page.close().close();
  std::string text = counted(counts.folders, "folder") + ", " + counted(counts.monitors, "monitor") + ", " +
                     counted(counts.profiles, "profile");
  if (counts.hidden != 0) text += "; " + counted(counts.hidden, "hidden folder") + " left out";
  page.element("p", {{"class", "quiet"}}, text + ".");
}

}  // namespace spc::report_page
