#include "tests/tools/schema_check.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>

namespace schema_check {
namespace {

using json_check::Value;

const Value* member(const Value& object, const std::string& key) {
  const auto found = object.members.find(key);
  return found == object.members.end() ? nullptr : &found->second;
}

bool has_type(const Value& value, const std::string& type) {
  using Kind = Value::Kind;
  if (type == "integer") return value.kind == Kind::number && std::floor(value.number) == value.number;
  if (type == "null") return value.kind == Kind::null;
  if (type == "boolean") return value.kind == Kind::truth;
  if (type == "number") return value.kind == Kind::number;
  if (type == "string") return value.kind == Kind::text;
  if (type == "array") return value.kind == Kind::array;
  if (type == "object") return value.kind == Kind::object;
  throw std::runtime_error("no type of JSON: " + type);
}

class Check {
 public:
  explicit Check(const Value& whole) : whole_(whole) {}

  std::string fault(const Value& value, const Value& schema, const std::string& place) const {
    require_known_keywords(schema);
    using Rule = std::string (Check::*)(const Value&, const Value&, const std::string&) const;
    for (const Rule rule : {&Check::reference_fault, &Check::type_fault, &Check::enum_fault, &Check::any_fault,
                            &Check::items_fault, &Check::required_fault, &Check::properties_fault})
      if (std::string found = (this->*rule)(value, schema, place); !found.empty()) return found;
    return {};
  }

 private:
  static void require_known_keywords(const Value& schema) {
    static const std::set<std::string> known = {"$schema", "title",    "description", "$ref",
                                                "$defs",   "type",     "enum",        "anyOf",
                                                "items",   "required", "properties",  "additionalProperties"};
    if (schema.kind != Value::Kind::object) throw std::runtime_error("a schema is no object");
    for (const auto& [keyword, rule] : schema.members)
      if (!known.contains(keyword)) throw std::runtime_error("unknown keyword " + keyword);
  }

  std::string reference_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* reference = member(schema, "$ref");
    if (reference == nullptr) return {};
    const std::string before = "#/$defs/";
    if (!reference->text.starts_with(before)) throw std::runtime_error("no reference: " + reference->text);
    return fault(value, whole_["$defs"][reference->text.substr(before.size())], place);
  }

  std::string type_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* type = member(schema, "type");
    return type == nullptr || has_type(value, type->text) ? "" : place + " is no " + type->text;
  }

  std::string enum_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* words = member(schema, "enum");
    if (words == nullptr) return {};
    const bool found = value.kind == Value::Kind::text &&
                       std::ranges::any_of(words->items, [&](const Value& word) { return word.text == value.text; });
    return found ? "" : place + " is none of the words";
  }

  std::string any_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* parts = member(schema, "anyOf");
    if (parts == nullptr) return {};
    std::string all;
    for (const Value& part : parts->items) {
      const std::string found = fault(value, part, place);
      if (found.empty()) return {};
      all += (all.empty() ? "" : "; ") + found;
    }
    return "neither: " + all;
  }

  std::string items_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* items = member(schema, "items");
    if (items == nullptr) return {};
    for (std::size_t i = 0; i < value.items.size(); ++i)
      if (std::string found = fault(value.items[i], *items, place + "[" + std::to_string(i) + "]"); !found.empty())
        return found;
    return {};
  }

  std::string required_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* required = member(schema, "required");
    if (required == nullptr) return {};
    for (const Value& name : required->items)
      if (member(value, name.text) == nullptr) return place + " has no " + name.text;
    return {};
  }

  std::string properties_fault(const Value& value, const Value& schema, const std::string& place) const {
    const Value* properties = member(schema, "properties");
    const Value* others = member(schema, "additionalProperties");
    for (const auto& [name, content] : value.members) {
      const std::string inside = place + "." + name;
      const Value* rule = properties == nullptr ? nullptr : member(*properties, name);
      if (rule == nullptr && others != nullptr && others->kind == Value::Kind::truth && !others->truth)
        return inside + " is not in the schema";
      if (rule == nullptr && others != nullptr && others->kind == Value::Kind::object) rule = others;
      if (rule == nullptr) continue;
      if (std::string found = fault(content, *rule, inside); !found.empty()) return found;
    }
    return {};
  }

  const Value& whole_;
};

}  // namespace

std::string fault_in(const Value& value, const Value& schema) { return Check(schema).fault(value, schema, "$"); }

}  // namespace schema_check
