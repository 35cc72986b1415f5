/// From nodes to text.
///
/// Part of the platform layer (xml), for the model itself.
#pragma once

#include <string>

#include "spcbase/platform/xml/node.h"
#include "spcbase/platform/xml/parse.h"

namespace xml_model {

/// The text of a document. What it says can be loaded again and gives the same nodes, texts side by side as one.
/// Fails: `_com_error` with E_FAIL when a prefix is declared nowhere above its place.
std::string write(const dom_node& document, const declaration& head);

}  // namespace xml_model
