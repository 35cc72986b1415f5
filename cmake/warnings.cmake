# The flags that the whole tree is compiled with, on one private interface target.
add_library(spcbase_warnings INTERFACE)
target_compile_options(spcbase_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${SPCBASE_WERROR}>:-Werror>
  # g++ 12 warns of overlaps inside its own std::string that cannot happen (its defect 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  -fno-semantic-interposition)

add_library(spcbase_sanitizers INTERFACE)
if(SPCBASE_SANITIZE)
  target_compile_options(spcbase_sanitizers INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # The checks that the sanitizers put in hide from g++ 12 that <regex> has set its members.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(spcbase_sanitizers INTERFACE -fsanitize=address,undefined)
endif()

# Test code itself is not looked at for undefined behaviour: that would cost half of its building.
add_library(spcbase_test_sanitizers INTERFACE)
if(SPCBASE_SANITIZE)
  target_compile_options(spcbase_test_sanitizers INTERFACE
    -fsanitize=address -fno-omit-frame-pointer $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(spcbase_test_sanitizers INTERFACE -fsanitize=address,undefined)
endif()

# The command under sanitizers: optimising what they put in takes half of its building, and its time is the library's.
add_library(spcbase_quick_sanitizing INTERFACE)
if(SPCBASE_SANITIZE)
  target_compile_options(spcbase_quick_sanitizing INTERFACE -O0)
endif()

if(SPCBASE_FUZZ)
  target_compile_options(spcbase_sanitizers INTERFACE -fsanitize=fuzzer-no-link)
endif()
