// Samples.
#include "tools/spc/command_table.h"
#include "tools/spc/json_shapes.h"

namespace spc {
namespace {

using namespace shapes;

Shape imported() {
  return object({{"file", text()},
                 {"profile", integer()},
                 {"profile_name", text()},
                 {"rows", integer()},
                 {"samples", array(integer())}});
}

Shape listed() {
  return array(object({{"sample", integer()}, {"profile", integer()}, {"profile_name", text()}, {"taken", text()}}));
}

}  // namespace

std::vector<Command> sample_commands() {
  return {
      {.path = "sample", .help = "Import, list and show samples"},
      {.path = "sample import",
       .help = "Check a CSV file and save each of its samples",
       .more = "The whole file is checked first: its first fault ends the command before anything is written, and is "
               "told with line and column. Then each sample is saved in a transaction of its own. When saving fails, "
               "the samples before stand, and the message says how many.\n\n"
               "The first line names the columns: \"sample\", whose text is the same in all lines of one sample, "
               "\"piece\", "
               "which counts them and may be left out, and the entries of the profile. Commas part the fields, a point "
               "the decimals, and the file is UTF-8. What a profile wants is told when a column is "
               "wrong. /dev/stdin reads standard input.\n\n"
               "A name is looked for before a number.",
       .options = {{.name = "FILE",
                    .help = "The CSV file, with a column for each entry of the profile",
                    .target = at<&Request::import, &ImportRequest::file>,
                    .required = true,
                    .offers = Offers::files,
                    .problem = why_not_given},
                   {.name = "--profile",
                    .value = "NAME|ID",
                    .help = "The profile of the samples",
                    .target = at<&Request::import, &ImportRequest::profile>,
                    .required = true,
                    .offers = Offers::profiles,
                    .problem = why_not_given},
                   {.name = "--station",
                    .value = "NAME|ID",
                    .help = "Where they were taken",
                    .target = at<&Request::import, &ImportRequest::station>,
                    .offers = Offers::stations,
                    .problem = why_not_given},
                   {.name = "--user",
                    .value = "NAME|ID",
                    .help = "By whom",
                    .target = at<&Request::import, &ImportRequest::user>,
                    .offers = Offers::users,
                    .problem = why_not_given},
                   {.name = "--map",
                    .value = "COLUMN=ENTRY",
                    .help = "A column that stands for an entry of another name",
                    .target = at<&Request::import, &ImportRequest::maps>},
                   {.name = "--set",
                    .value = "ENTRY=VALUE",
                    .help = "The value of an entry without a column",
                    .target = at<&Request::import, &ImportRequest::values>}},
       .examples = {{"--connect sqlite:demo.db sample import rings.csv --profile 'Piston rings' --station 'Forge 2' "
                     "--user anna --map diameter_mm=Diameter --set Phase=production --set 'Taken at=2024-03-05' "
                     "--set 'Gauge=bore gauge A'",
                     "import a file whose columns have other names than the entries, and lacks some"}},
       .changes = true,
       .json = imported,
       .task = on_database<import_samples, &Request::import>},
      {.path = "sample list",
       .help = "List the newest samples",
       .options = {{.name = "--profile",
                    .value = "NAME|ID",
                    .help = "Only those of one profile",
                    .target = at<&Request::list_profile>,
                    .offers = Offers::profiles,
                    .problem = why_not_given},
                   {.name = "--limit",
                    .value = "N",
                    .help = "At most so many; 20 when it is not given",
                    .target = at<&Request::list_limit>,
                    .within = Bounds{1, 1'000'000}}},
       .examples = {{"--connect sqlite:demo.db sample list --profile 'Piston rings' --limit 3",
                     "the three newest of a profile"}},
       .json = listed,
       .task = on_database<list_samples, &Request::list_profile, &Request::list_limit, &Request::as_user>},
      {.path = "sample show",
       .help = "Show a sample as a grid",
       .options = {{.name = "ID",
                    .help = "The sample's number",
                    .target = at<&Request::shown_sample>,
                    .required = true,
                    .within = Bounds{1, largest},
                    .offers = Offers::samples}},
       .examples = {{"--connect sqlite:demo.db sample show 1", "the first sample"},
                    {"--connect sqlite:demo.db --json sample show 1", "the same for a program"}},
       .json = sample_shape,
       .task = on_database<show_sample, &Request::shown_sample>},
  };
}

}  // namespace spc
