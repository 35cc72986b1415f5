/// Whether a translated text takes the values of the text that it stands for.
///
/// Part of the database foundation, for the library's own use.
#pragma once

#include <string>
#include <string_view>

/// What is wrong with the placeholders of a translation; empty when they take the values of the English text's, a mix
/// of "%d" and "%s". Right are the same ones in the same order, or numbered ones ("%2$s") for every value, each as
/// often as the language wants. "%%" counts as text, any other "%" is wrong. When the English text has no placeholders,
/// it is no format: then only a placeholder is wrong.
std::string placeholder_problem(std::string_view english, std::string_view translation);
