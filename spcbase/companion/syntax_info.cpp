#include "spcbase/companion/syntax_info.h"

std::shared_ptr<UserDefinedSyntaxInfo> get_default_user_defined_syntax_info() {
  auto syntax = std::make_shared<UserDefinedSyntaxInfo>();
  syntax->date_literal = "DATE '%Y-%m-%d'";
  syntax->time_literal = "TIME '%H:%M:%S'";
  syntax->timestamp_literal = "TIMESTAMP '%Y-%m-%d %H:%M:%S'";
  syntax->concatenation = "||";
  return syntax;
}
