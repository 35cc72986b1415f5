// Shapes of JSON as JSON Schema.
#include <map>
#include <sstream>

#include "tools/spc/json.h"
#include "tools/spc/pages.h"

namespace spc {
namespace {

class SchemaWriter {
 public:
  explicit SchemaWriter(std::ostream& out) : json_(out) {}

  void write(const Command& command) {
    const Shape shape = json_of(command);
    json_.begin_object();
    json_.key("$schema").value("https://json-schema.org/draft/2020-12/schema");
    json_.key("title").value("spc " + std::string(command.path) + " --json");
    json_.key("description").value(command.help);
    write_content(shape);
    write_definitions(shape);
    json_.end_object();
  }

 private:
  void write(const Shape& shape) {
    json_.begin_object();
    write_content(shape);
    json_.end_object();
  }

  void write_content(const Shape& shape) {
    if (is_named(shape) || shape.kind == Shape::Kind::self) {
      json_.key("$ref").value("#/$defs/" + shape.words.front());
      return;
    }
    write_kind(shape);
  }

  void write_kind(const Shape& shape) {
    using Kind = Shape::Kind;
    static const std::map<Kind, const char*> types = {
        {Kind::text, "string"},  {Kind::integer, "integer"}, {Kind::number, "number"}, {Kind::boolean, "boolean"},
        {Kind::nothing, "null"}, {Kind::object, "object"},   {Kind::map, "object"},    {Kind::array, "array"}};
    if (const auto type = types.find(shape.kind); type != types.end()) json_.key("type").value(type->second);
    if (shape.kind == Kind::constant) write_words(shape.words);
    if (shape.kind == Kind::object) write_properties(shape.properties);
    if (shape.kind == Kind::map) write_at("additionalProperties", shape.parts.front());
    if (shape.kind == Kind::array) write_at("items", shape.parts.front());
    if (shape.kind == Kind::any_of) write_parts(shape.parts);
  }

  void write_at(const char* key, const Shape& shape) {
    json_.key(key);
    write(shape);
  }

  void write_words(const std::vector<std::string>& words) {
    json_.key("enum").begin_array();
    for (const auto& word : words)
      json_.value(word);
    json_.end_array();
  }

  void write_parts(const std::vector<Shape>& parts) {
    json_.key("anyOf").begin_array();
    for (const Shape& part : parts)
      write(part);
    json_.end_array();
  }

  void write_properties(const Properties& properties) {
    json_.key("properties").begin_object();
    for (const Property& property : properties)
      write_at(property.name.c_str(), property.shape);
    json_.end_object();
    json_.key("required").begin_array();
    for (const Property& property : properties)
      if (property.required) json_.value(property.name);
    json_.end_array();
    json_.key("additionalProperties").value(false);
  }

  static bool is_named(const Shape& shape) { return shape.kind == Shape::Kind::object && !shape.words.empty(); }

  /// The shapes with a name, wherever they stand.
  static void gather(const Shape& shape, std::map<std::string, const Shape*>& found) {
    if (is_named(shape)) found.emplace(shape.words.front(), &shape);
    for (const Shape& part : shape.parts)
      gather(part, found);
    for (const Property& property : shape.properties)
      gather(property.shape, found);
  }

  void write_definitions(const Shape& shape) {
    std::map<std::string, const Shape*> named;
    gather(shape, named);
    if (named.empty()) return;
    json_.key("$defs").begin_object();
    for (const auto& [name, definition] : named) {
      json_.key(name).begin_object();
      write_kind(*definition);
      json_.end_object();
    }
    json_.end_object();
  }

  JsonWriter json_;
};

}  // namespace

std::string schema_of(const Command& command) {
  std::ostringstream text;
  SchemaWriter(text).write(command);
  return text.str();
}

}  // namespace spc
