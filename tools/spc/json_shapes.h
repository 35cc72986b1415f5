/// Shapes that several commands print.
///
/// Part of the command.
#pragma once

#include "tools/spc/json_shape.h"

namespace spc {

/// What write_sample writes.
Shape sample_shape();
/// What write_tree writes: a folder with all that is in it.
Shape folder_shape();
/// What write_revision writes.
Properties revision_properties();
/// What write_bytes writes: the size, and the bytes as text or in hexadecimal.
Properties bytes_properties();
/// What write_warnings writes.
Property warnings_property();

}  // namespace spc
