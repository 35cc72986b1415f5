/// The shape of a JSON value, said in few words beside the command that prints it.
///
/// Part of the command.
///
///     object({{"file", text()}, {"samples", array(integer())}, optional("damage", text())})
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace spc {

struct Property;

/// What a value may be.
struct Shape {
  enum class Kind : unsigned char {
    text,
    integer,
    number,
    boolean,
    nothing,   ///< null
    constant,  ///< one of `words`
    object,    ///< of `properties` and no others; a name of its own may stand in `words`
    map,       ///< an object with any keys, each value of `parts.front()`
    array,     ///< of `parts.front()`
    any_of,    ///< any of `parts`
    self       ///< as the object around it whose name stands in `words`
  };

  Shape(Kind shape_kind, std::vector<std::string> shape_words = {});

  Kind kind;
  std::vector<std::string> words;
  std::vector<Property> properties;
  std::vector<Shape> parts;
};

/// A member of an object, and what may stand there.
struct Property {
  Property(std::string property_name, Shape property_shape, bool is_required = true)
      : name(std::move(property_name)), shape(std::move(property_shape)), required(is_required) {}

  std::string name;
  Shape shape;
  bool required;
};

using Properties = std::vector<Property>;

// Here, since a list of properties can be made only when it is known what a property is.
inline Shape::Shape(Kind shape_kind, std::vector<std::string> shape_words)
    : kind(shape_kind), words(std::move(shape_words)) {}

namespace shapes {

inline Shape text() { return Shape::Kind::text; }
inline Shape integer() { return Shape::Kind::integer; }
inline Shape number() { return Shape::Kind::number; }
inline Shape boolean() { return Shape::Kind::boolean; }
inline Shape constants(std::vector<std::string> words) { return {Shape::Kind::constant, std::move(words)}; }
inline Shape object(Properties properties) {
  Shape shape(Shape::Kind::object);
  shape.properties = std::move(properties);
  return shape;
}
inline Shape with_parts(Shape::Kind kind, std::vector<Shape> parts) {
  Shape shape(kind);
  shape.parts = std::move(parts);
  return shape;
}
inline Shape map_of(Shape value) { return with_parts(Shape::Kind::map, {std::move(value)}); }
inline Shape array(Shape item) { return with_parts(Shape::Kind::array, {std::move(item)}); }
inline Shape any_of(std::vector<Shape> parts) { return with_parts(Shape::Kind::any_of, std::move(parts)); }
inline Shape nullable(Shape value) { return any_of({std::move(value), Shape::Kind::nothing}); }
/// The shape around it with this name, for what holds more of its own kind.
inline Shape itself(std::string name) { return {Shape::Kind::self, {std::move(name)}}; }
/// Gives a shape a name that `itself` can speak of.
inline Shape named(std::string name, Shape shape) {
  shape.words = {std::move(name)};
  return shape;
}
inline Property optional(std::string name, Shape shape) { return {std::move(name), std::move(shape), false}; }

/// The properties of one list behind those of another.
inline Properties with(Properties properties, Properties more) {
  properties.insert(properties.end(), more.begin(), more.end());
  return properties;
}

}  // namespace shapes
}  // namespace spc
