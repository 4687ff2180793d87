include_guard()

# What a program that starts this often needs: no library to load, nothing in it that isn't used.
function(forgeyard_small_program name)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(${name} PRIVATE -ffunction-sections -fdata-sections)
  target_compile_definitions(${name} PRIVATE FORGEYARD_VERSION="${PROJECT_VERSION}")
  if(NOT FORGEYARD_SANITIZE)
    target_link_options(${name} PRIVATE -static -no-pie -Wl,--gc-sections)
  endif()
endfunction()
