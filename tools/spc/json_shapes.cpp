#include "tools/spc/json_shapes.h"

namespace spc {

using namespace shapes;

Shape sample_shape() {
  const Shape cell = any_of({number(), text(), {Shape::Kind::nothing}});
  return object({{"sample", integer()},
                 {"profile", integer()},
                 {"profile_name", text()},
                 {"taken", text()},
                 {"auto_labels", map_of(text())},
                 {"columns", array(text())},
                 {"rows", array(array(cell))}});
}

Shape folder_shape() {
  const Shape member = object({{"id", integer()}, {"name", text()}});
  return named("folder", object({{"id", integer()},
                                 {"name", text()},
                                 {"hidden", boolean()},
                                 {"cut", boolean()},
                                 {"folders", array(itself("folder"))},
                                 {"monitors", array(member)},
                                 {"profiles", array(member)}}));
}

Properties revision_properties() {
  const Shape approval = object({{"time", text()},
                                 {"user", text()},
                                 {"user_id", integer()},
                                 {"level", integer()},
                                 {"type", integer()},
                                 {"reason", text()}});
  return {{"revision", integer()}, {"version", text()}, {"row", integer()},
          {"flag", integer()},     {"time", text()},    {"user", text()},
          {"user_id", integer()},  {"reason", text()},  {"approval", nullable(approval)}};
}

Properties bytes_properties() { return {{"bytes", integer()}, optional("text", text()), optional("hex", text())}; }

Property warnings_property() {
  const Shape warning =
      object({{"field", text()}, {"text", text()}, {"taken", text()}, {"wanted", text()}, {"example", text()}});
  return {"warnings", array(warning)};
}

}  // namespace spc
