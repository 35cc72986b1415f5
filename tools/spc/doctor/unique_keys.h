/// The unique keys that a server has, against those that the schema wants.
///
/// Part of the command.
#pragma once

namespace spc::doctor {

class Examination;

/// Finds the keys, primary or unique, over whose columns no unique index of the server stands, whatever its name.
void look_for_missing_keys(Examination& examination);

}  // namespace spc::doctor
