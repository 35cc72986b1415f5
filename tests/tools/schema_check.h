/// Validates JSON against the schemas that the command tells of, by the part of JSON Schema that they use.
#pragma once

#include <string>

#include "tests/tools/json_check.h"

namespace schema_check {

/// Why a value is not what the schema describes, with the place in it: "$.rows[2]: neither ..."; empty when it is.
/// Fails: std::runtime_error for a keyword that is not known here.
std::string fault_in(const json_check::Value& value, const json_check::Value& schema);

}  // namespace schema_check
