include_guard()

# Headers that most sources include, compiled once for each target: the product's need about a third less time, tests half.
set(forgeyard_standard_headers
  <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <set> <span> <string> <string_view>
  <unordered_map> <utility> <vector>)

# forgeyard_precompile(TARGET HEADER...): the standard headers and those named. Clang's would change with the time of day, so
# that the compiler cache would know none of them again. With precompiled headers GCC 12 sees more overflows in sums of strings
# that aren't there (see the root's CMakeLists.txt); a target that names headers beyond the standard ones goes without those warnings.
function(forgeyard_precompile target)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_precompile_headers(${target} PRIVATE ${forgeyard_standard_headers} ${ARGN})
    if(ARGN AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${target} PUBLIC
        $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds> $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow>
        $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overread>)
    endif()
  endif()
endfunction()
