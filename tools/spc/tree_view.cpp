#include "tools/spc/tree_view.h"

#include "tools/spc/utf8.h"

namespace spc {
namespace {

/// A folder on the way from the top to where the visit is.
struct Level {
  std::span<const Folder> left;  ///< folders in it that are still to be visited
  std::span<const Member> members;
};

class Visit {
 public:
  Visit(const NodeTree& tree, const TreePart& part, TreeVisitor& visitor)
      : tree_(tree), part_(part), visitor_(visitor) {}

  TreeCounts run() {
    enter(part_.top, true);
    while (!levels_.empty()) {
      Level& level = levels_.back();
      if (level.left.empty()) {
        leave();
        continue;
      }
      const Folder& next = level.left.front();
      level.left = level.left.subspan(1);
      ++counts_.folders;
      enter(next, level.left.empty() && level.members.empty());
    }
    return counts_;
  }

 private:
  void enter(const Folder& folder, bool is_last) {
    Level level{tree_.folders_in(folder.id), tree_.members_of(folder.id)};
    const std::size_t all = level.left.size();
    if (!part_.all) level.left = without_hidden(level.left);
    // Each folder has one parent, so only the top could be met again: in a circle that it is part of.
    const bool is_again = !levels_.empty() && folder.id == part_.top.id;
    const bool is_end = is_again || (part_.depth != 0 && levels_.size() >= static_cast<std::size_t>(part_.depth));
    visitor_.begin(folder, is_last, is_end && !(level.left.empty() && level.members.empty()));
    if (is_end)
      level = {};
    else
      counts_.hidden += all - level.left.size();
    levels_.push_back(level);
  }
  void leave() {
    for (const Member& member : levels_.back().members)
      ++(member.kind == ObjectKind::monitor ? counts_.monitors : counts_.profiles);
    visitor_.members(levels_.back().members);
    visitor_.end();
    levels_.pop_back();
  }
  static std::span<const Folder> without_hidden(std::span<const Folder> folders) {
    while (!folders.empty() && folders.back().hidden)
      folders = folders.first(folders.size() - 1);
    return folders;
  }

  const NodeTree& tree_;
  const TreePart& part_;
  TreeVisitor& visitor_;
  std::vector<Level> levels_;
  TreeCounts counts_;
};

class Printer final : public TreeVisitor {
 public:
  explicit Printer(std::ostream& out) : out_(out) {}

  void begin(const Folder& folder, bool is_last, bool is_cut) override {
    if (depth_++ == 0) {
      out_ << (folder.id == 0 ? std::string("/") : shown(folder)) << '\n';
      return;
    }
    out_ << indent_ << (is_last ? last_branch : branch) << on_one_line(folder.name) << "/ (" << folder.id
         << (folder.hidden ? ", hidden" : "") << (is_cut ? ") ..." : ")") << '\n';
    widths_.push_back(indent_.size());
    indent_ += is_last ? "    " : "│   ";
  }
  void members(std::span<const Member> all) override {
    for (const Member& member : all)
      out_ << indent_ << (&member == &all.back() ? last_branch : branch) << on_one_line(member.name) << " ("
           << word_of(member.kind) << ' ' << member.id << ")\n";
  }
  void end() override {
    --depth_;
    if (widths_.empty()) return;
    indent_.resize(widths_.back());
    widths_.pop_back();
  }

 private:
  static constexpr const char* branch = "├── ";
  static constexpr const char* last_branch = "└── ";

  std::ostream& out_;
  std::size_t depth_ = 0;
  std::string indent_;
  std::vector<std::size_t> widths_;  ///< of the indent before each folder that is open
};

class Writer final : public TreeVisitor {
 public:
  explicit Writer(JsonWriter& json) : json_(json) {}

  void begin(const Folder& folder, bool /*is_last*/, bool is_cut) override {
    json_.begin_object();
    json_.key("id").value(folder.id);
    json_.key("name").value(folder.name);
    json_.key("hidden").value(folder.hidden);
    json_.key("cut").value(is_cut);
    json_.key("folders").begin_array();
  }
  void members(std::span<const Member> all) override {
    json_.end_array();
    write(all, ObjectKind::monitor, "monitors");
    write(all, ObjectKind::profile, "profiles");
  }
  void end() override { json_.end_object(); }

 private:
  void write(std::span<const Member> all, ObjectKind kind, const char* key) {
    json_.key(key).begin_array();
    for (const Member& member : all) {
      if (member.kind != kind) continue;
      json_.begin_object();
      json_.key("id").value(member.id);
      json_.key("name").value(member.name);
      json_.end_object();
    }
    json_.end_array();
  }

  JsonWriter& json_;
};

}  // namespace

TreeCounts visit_tree(const NodeTree& tree, const TreePart& part, TreeVisitor& visitor) {
  return Visit(tree, part, visitor).run();
}

TreeCounts print_tree(std::ostream& out, const NodeTree& tree, const TreePart& part) {
  Printer printer(out);
  return visit_tree(tree, part, printer);
}

TreeCounts write_tree(JsonWriter& json, const NodeTree& tree, const TreePart& part) {
  Writer writer(json);
  return visit_tree(tree, part, writer);
}

}  // namespace spc
