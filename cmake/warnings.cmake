# The flags that the whole tree is compiled with, on one private interface target.
add_library(spcbase_warnings INTERFACE)
target_compile_options(spcbase_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${SPCBASE_WERROR}>:-Werror>
  # g++ 12 warns of overlaps inside its own std::string that cannot happen (its defect 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  -fno-semantic-interposition)

# What the sanitizers say of each place in the code is data with addresses: a million of them in the command, which is
# started thousands of times by the tests. A program at a fixed place has nothing to move at its start.
set(sanitizing_link -fsanitize=address,undefined $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-no-pie>)

add_library(spcbase_sanitizers INTERFACE)
if(SPCBASE_SANITIZE)
  target_compile_options(spcbase_sanitizers INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # The checks that the sanitizers put in hide from g++ 12 that <regex> has set its members.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(spcbase_sanitizers INTERFACE ${sanitizing_link})
endif()

# Test code itself is not looked at for undefined behaviour: that would cost half of its building.
add_library(spcbase_test_sanitizers INTERFACE)
if(SPCBASE_SANITIZE)
  target_compile_options(spcbase_test_sanitizers INTERFACE
    -fsanitize=address -fno-omit-frame-pointer $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(spcbase_test_sanitizers INTERFACE ${sanitizing_link})
endif()

# The command under sanitizers: optimising what they put in takes half of its building, and its time is the library's.
add_library(spcbase_quick_sanitizing INTERFACE)
if(SPCBASE_SANITIZE)
  target_compile_options(spcbase_quick_sanitizing INTERFACE -O0)
endif()

if(SPCBASE_FUZZ)
  target_compile_options(spcbase_sanitizers INTERFACE -fsanitize=fuzzer-no-link)
endif()
