# cmake -DOUTPUT=x.cpp -DFILES=a.csv,b.csv -P embed.cmake: writes the files into a C++ source as texts.
string(REPLACE "," ";" FILES "${FILES}")
set(cases "")
foreach(path IN LISTS FILES)
  get_filename_component(name "${path}" NAME)
  file(READ "${path}" text)
  string(APPEND cases "  if (name == \"${name}\")\n    return R\"~text~(${text})~text~\";\n")
endforeach()
file(WRITE "${OUTPUT}" "// Made by tools/spc/embed.cmake.
#include \"tools/spc/embedded_data.h\"

namespace spc::embedded {

std::string_view file(std::string_view name) {
${cases}  return {};
}

}  // namespace spc::embedded
")
