#include "tools/spc/demo.h"

#include <chrono>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <sstream>

#include "schema/description.h"
#include "spcbase/dataentry/sample.h"
#include "spcbase/foundation/failure.h"
#include "spcbase/foundation/schema.h"
#include "tools/spc/demo_database.h"
#include "tools/spc/demo_files.h"
#include "tools/spc/demo_history.h"
#include "tools/spc/demo_report.h"
#include "tools/spc/demo_sources.h"
#include "tools/spc/demo_tree.h"
#include "tools/spc/embedded_data.h"
#include "tools/spc/interruption.h"
#include "tools/spc/problem.h"
#include "tools/spc/report/report.h"
#include "tools/spc/revisions.h"
#include "tools/spc/sample_view.h"
#include "tools/spc/schema_work.h"
#include "tools/spc/table.h"
#include "tools/spc/tree_view.h"

namespace spc {
namespace {

/// One line of the demo's account.
struct Step {
  std::string what;
  std::string result;
  std::size_t rows = 0;
  double milliseconds = 0;
};

/// A file whose samples stand.
struct Entered {
  DemoFile file;
  ProfileShape shape;
  std::vector<PreparedSample> samples;
  std::vector<long> numbers;
};

class Demo {
 public:
  Demo(Link& link, const Terminal& terminal) : link_(link), terminal_(terminal) {}

  void run() {
    take("create the schema", [&](Step& step) {
      step.result = std::to_string(create_schema(link_)) + " tables and views";
      mark_as_demo(link_);
      step.rows = schema::running_numbers().size() + 1;
    });
    take("build the plant", [&](Step& step) {
      plant_ = build_plant();
      step.rows = plant_.rows;
      step.result = "3 stations, 3 users, 3 profiles";
    });
    for (auto& file : demo_files(plant_))
      take("import " + file.name, [&](Step& step) { enter(std::move(file), step); });
    take("read back and compare", [&](Step& step) { compare_all(step); });
    take("save and approve a profile", [&](Step& step) {
      history_ = make_history(link_, plant_, entered_.front().shape);
      step.rows = 2 * history_.size();
      step.result = counted(history_.size(), "revision") + ", all payloads as they were saved";
    });
    take("find objects by path", [&](Step& step) {
      tree_ = std::make_unique<NodeTree>(link_, 0);
      found_ = find_by_paths(link_, plant_, history_);
      step.rows = found_.size();
      step.result = counted(found_.size(), "path") + ", one to the latest approved revision";
    });
    take("keep data sources", [&](Step& step) {
      sources_ = make_sources(link_, plant_);
      step.rows = sources_.size();
      step.result = counted(sources_.size(), "data source") + ", of which anna sees 2 and bo sees 2";
    });
    take("renew an old definition", [&](Step& step) {
      renewal_ = renew_old_source(link_);
      step.rows = 1;
      step.result = "version 2 read, saved in the present form";
    });
  }

  const plant::DemoPlant& plant() const { return plant_; }
  const std::vector<Step>& steps() const { return steps_; }
  /// The revisions of the first profile, the latest first.
  const std::vector<rev::RevisionBaseInfo>& history() const { return history_; }
  const std::string& history_of() const { return entered_.front().shape.name; }
  const NodeTree& tree() const { return *tree_; }
  const std::vector<FoundByPath>& found() const { return found_; }
  const std::vector<SeenSource>& sources() const { return sources_; }
  const std::vector<ChangedElement>& renewal() const { return renewal_; }
  /// The samples that are shown: one of each profile.
  std::vector<SampleView> examples() {
    std::vector<SampleView> views;
    for (const auto& entered : entered_)
      views.push_back(read_sample(link_, entered.numbers.front()));
    return views;
  }

 private:
  template <class Work>
  void take(std::string what, Work work) {
    using Clock = std::chrono::steady_clock;
    Step step;
    step.what = std::move(what);
    const auto begin = Clock::now();
    work(step);
    step.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    steps_.push_back(std::move(step));
  }

  plant::DemoPlant build_plant() {
    return doing("cannot build the plant", [&] {
      AutoODBCTransaction transaction(link_.db(), true);
      auto plant = plant::build_demo_plant(link_.db());
      transaction.commit();
      return plant;
    });
  }

  void enter(DemoFile file, Step& step) {
    const CsvFile csv = parse_csv(file.name, embedded::file(file.name));
    ProfileShape shape = read_shape(link_, file.profile);
    auto samples = prepare_samples(csv, shape, file.rules);
    Entered entered{std::move(file), std::move(shape), std::move(samples), {}};
    Progress progress(terminal_, step.what, entered.samples.size());
    for (std::size_t i = 0; i < entered.file.shifts.size(); ++i) {
      const std::size_t begin = entered.file.shifts[i].first - 1;
      const std::size_t end =
          i + 1 < entered.file.shifts.size() ? entered.file.shifts[i + 1].first - 1 : entered.samples.size();
      const auto numbers =
          write_samples(link_, entered.file.name, entered.shape, entered.file.shifts[i].entrant,
                        std::span(entered.samples).subspan(begin, end - begin), [&] { progress.step(); });
      entered.numbers.insert(entered.numbers.end(), numbers.begin(), numbers.end());
    }
    step.rows = csv.rows.size();
    step.result = counted(entered.numbers.size(), "sample");
    entered_.push_back(std::move(entered));
  }

  void compare_all(Step& step) {
    std::size_t samples = 0;
    for (const auto& entered : entered_)
      samples += entered.samples.size();
    Progress progress(terminal_, step.what, samples);
    std::size_t cells = 0;
    for (const auto& entered : entered_) {
      oldde::DEHelper helper;
      for (std::size_t i = 0; i < entered.samples.size(); ++i) {
        cells += compare(helper, entered, i, step);
        progress.step();
      }
    }
    step.result = counted(samples, "sample") + ", " + counted(cells, "cell") + ", all as in the files";
  }

  /// Compares one sample with the file it came from. Gives the number of cells.
  std::size_t compare(oldde::DEHelper& helper, const Entered& entered, std::size_t i, Step& step) {
    const long number = entered.numbers[i];
    const Grid& wanted = entered.samples[i].grid;
    const Grid found = doing("cannot read sample " + std::to_string(number), [&] {
      double date = 0;
      return Grid(
          helper.get_data(link_.engine(), link_.db(), static_cast<int>(number), entered.shape.id, 0, 0, 0, &date));
    });
    step.rows += static_cast<std::size_t>(wanted.rows());
    // Labels of a sample without pieces count as rows, so a grid may come back longer, but then empty there.
    if (found.rows() < wanted.rows() || found.filled_rows() > wanted.rows() || found.columns() != wanted.columns())
      differ(entered, i, "its grid has another size");
    for (const auto& column : entered.shape.columns)
      for (LONG row = 0; row < wanted.rows(); ++row)
        if (!same_cell(wanted.at(column.index, row), found.at(column.index, row)))
          differ(entered, i,
                 column.name + " of piece " + std::to_string(row + 1) + " is \"" +
                     cell_text(found.at(column.index, row)) + "\" and not \"" +
                     cell_text(wanted.at(column.index, row)) + "\"");
    return entered.shape.columns.size() * static_cast<std::size_t>(wanted.rows());
  }

  [[noreturn]] static void differ(const Entered& entered, std::size_t i, const std::string& how) {
    throw Problem{"the demo failed",
                  "sample " + std::to_string(entered.numbers[i]) + ", which is sample " + entered.samples[i].key +
                      " of " + entered.file.name + ": " + how,
                  "The database did not keep what was saved: please report this with the server's name and version."};
  }

  Link& link_;
  const Terminal& terminal_;
  std::vector<Step> steps_;
  plant::DemoPlant plant_;
  std::vector<Entered> entered_;
  std::vector<rev::RevisionBaseInfo> history_;
  std::unique_ptr<NodeTree> tree_;
  std::vector<FoundByPath> found_;
  std::vector<SeenSource> sources_;
  std::vector<ChangedElement> renewal_;
};

std::string milliseconds_text(double milliseconds) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << milliseconds << " ms";
  return text.str();
}

void print_for_people(std::ostream& out, Demo& demo, Link& link, const DemoDatabase& database,
                      const std::string& report) {
  out << "A small plant with real measurements, in " << link.db().describe_server().view() << "\n\n";
  Table table("  ");
  table.add_column("step");
  table.add_column("rows", Align::right);
  table.add_column("time", Align::right);
  table.add_column("result");
  for (const auto& step : demo.steps())
    table.add_row({step.what, std::to_string(step.rows), milliseconds_text(step.milliseconds), step.result});
  table.print(out);
  for (const auto& view : demo.examples()) {
    out << '\n';
    print_sample(out, view);
  }
  out << "\nThe history of " << demo.history_of() << "\n\n";
  print_history(out, demo.history(), "  ");
  out << "\nThe tree of the plant\n\n";
  print_tree(out, demo.tree(), TreePart());
  out << "\nFound by path\n\n";
  print_found(out, demo.found(), "  ");
  out << "\nThe data sources, and who sees them\n\n";
  print_seen(out, demo.sources(), "  ");
  out << "\nA definition of version 2\n\n";
  print_renewal(out, demo.renewal(), "  ");
  out << '\n';
  if (!report.empty()) out << "The report: " << report << '\n';
  out << database.farewell() << '\n';
}

void print_for_machines(std::ostream& out, Demo& demo, Link& link) {
  JsonWriter json(out);
  json.begin_object();
  json.key("server").value(link.db().describe_server().view());
  json.key("steps").begin_array();
  for (const auto& step : demo.steps()) {
    json.begin_object();
    json.key("step").value(step.what);
    json.key("rows").value(step.rows);
    json.key("milliseconds").value(step.milliseconds);
    json.key("result").value(step.result);
    json.end_object();
  }
  json.end_array();
  json.key("examples").begin_array();
  for (const auto& view : demo.examples())
    write_sample(json, view);
  json.end_array();
  json.key("history");
  write_history(json, demo.history());
  json.key("tree");
  write_tree(json, demo.tree(), TreePart());
  json.key("paths");
  write_found(json, demo.found());
  json.key("data_sources");
  write_seen(json, demo.sources());
  json.key("renewal");
  write_renewal(json, demo.renewal());
  json.end_object();
}

}  // namespace

void run_demo(const DemoRequest& request, const Terminal& terminal) {
  if (!request.report.empty()) report_page::refuse_existing(request.report);
  const bool dry_run = terminal.dry_run != nullptr;
  DemoDatabase database(request, dry_run);
  Link link(database.connect_text(), terminal);
  make_room_for_demo(link);
  Demo demo(link, terminal);
  try {
    demo.run();
  } catch (const Problem&) {
    if (!interrupted()) throw;
    const Undisturbed cleaning(link.db());
    throw interruption(database.give_up(link));
  }
  if (!request.report.empty() && !dry_run) write_demo_report(link, demo.plant(), request.report);
  if (terminal.json)
    print_for_machines(terminal.out, demo, link);
  else
    print_for_people(terminal.out, demo, link, database, request.report);
}

}  // namespace spc
