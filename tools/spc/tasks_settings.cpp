#include <algorithm>

#include "tools/spc/bytes.h"
#include "tools/spc/json.h"
#include "tools/spc/problem.h"
#include "tools/spc/settings.h"
#include "tools/spc/table.h"
#include "tools/spc/tasks.h"

namespace spc {
namespace {

constexpr std::size_t widest_value = 60;
constexpr const char* advice_for_damage =
    "Let the program that wrote the setting save it again, or restore its rows of CSINI.";

void write_setting(JsonWriter& json, const SettingView& setting) {
  json.begin_object();
  json.key("key").value(setting.key);
  write_bytes(json, setting.bytes);
  if (!setting.damage.empty()) json.key("damage").value(setting.damage);
  json.end_object();
}

void print_settings(std::ostream& out, const std::vector<SettingView>& settings) {
  if (settings.empty()) {
    out << "There are no settings.\n";
    return;
  }
  Table table;
  table.add_column("key");
  table.add_column("bytes", Align::right);
  table.add_column("value");
  for (const auto& setting : settings)
    table.add_row({setting.key, std::to_string(setting.bytes.size()), readable_in(setting.bytes, widest_value)});
  table.print(out);
}

}  // namespace

int list_settings(const Place& place, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  const auto settings = read_settings(link);
  if (terminal.json) {
    JsonWriter json(terminal.out);
    json.begin_array();
    for (const auto& setting : settings)
      write_setting(json, setting);
    json.end_array();
  } else {
    print_settings(terminal.out, settings);
  }
  const auto damaged = std::ranges::find_if(settings, [](const auto& setting) { return !setting.damage.empty(); });
  if (damaged == settings.end()) return exit_done;
  throw Problem{"the setting " + damaged->key + " is damaged", damaged->damage, advice_for_damage};
}

int get_setting(const Place& place, const std::string& key, const Terminal& terminal) {
  Link link(connect_text_of(place, false), trace_of(terminal));
  const auto settings = read_settings(link);
  const auto found = std::ranges::find(settings, key, &SettingView::key);
  if (found == settings.end())
    throw Problem{"cannot get the setting " + key, "there is none with this key",
                  "spc settings list tells what there is; large and small letters differ."};
  if (terminal.json) {
    JsonWriter json(terminal.out);
    write_setting(json, *found);
  } else {
    terminal.out << readable(found->bytes) << '\n';
  }
  if (found->damage.empty()) return exit_done;
  throw Problem{"the setting " + key + " is damaged", found->damage, advice_for_damage};
}

}  // namespace spc
