# What an installation holds, below any prefix; scripts/package.sh makes a Debian package of it.
#   bin                    forgeyard
#   lib/forgeyard          the module and the platform library, which only its programs load
#   lib/forgeyard/bin      the spawner and the adapters: the directory above is the "Home" of the registry
#   share                  samples, documents, manual pages, completions
set(private lib/forgeyard)

install(TARGETS forgeyard_console RUNTIME DESTINATION bin)
install(TARGETS forgeyard_platform forgeyard_module LIBRARY DESTINATION ${private})
set_target_properties(forgeyard_console PROPERTIES INSTALL_RPATH "$ORIGIN/../${private}")
set_target_properties(forgeyard_platform PROPERTIES INSTALL_RPATH "")
set_target_properties(forgeyard_module PROPERTIES INSTALL_RPATH "$ORIGIN")
# In a component of its own, which is a package of its own: whoever doesn't use source control needs none of its libraries.
install(TARGETS forgeyard_repository LIBRARY DESTINATION ${private} COMPONENT repository)
set_target_properties(forgeyard_repository PROPERTIES INSTALL_RPATH "$ORIGIN")
# Linked statically, they have no search path that an installation could change.
set(small_programs TideSpawn.exe gnu-cc gnu-as TRAMLINK)
set_target_properties(${small_programs} PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "")
install(TARGETS ${small_programs} RUNTIME DESTINATION ${private}/bin)

install(DIRECTORY samples/ DESTINATION share/forgeyard/samples USE_SOURCE_PERMISSIONS)
install(DIRECTORY docs/ DESTINATION share/doc/forgeyard)
install(FILES README.md packaging/copyright DESTINATION share/doc/forgeyard)

# Made by the program itself.
set(made ${CMAKE_BINARY_DIR}/share)
add_custom_command(OUTPUT ${made}/stamp
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${made}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${made}/man
  COMMAND forgeyard_console man --directory ${made}/man
  COMMAND gzip -9nr ${made}/man
  COMMAND gzip -9nc ${CMAKE_SOURCE_DIR}/packaging/changelog > ${made}/changelog.gz
  COMMAND forgeyard_console completion bash > ${made}/forgeyard
  COMMAND forgeyard_console completion zsh > ${made}/_forgeyard
  COMMAND forgeyard_console completion fish > ${made}/forgeyard.fish
  COMMAND ${CMAKE_COMMAND} -E touch ${made}/stamp
  DEPENDS forgeyard_console packaging/changelog
  COMMENT "Writing manual pages and completions" VERBATIM)
add_custom_target(user_files ALL DEPENDS ${made}/stamp)
install(DIRECTORY ${made}/man/ DESTINATION share/man/man1)
install(FILES ${made}/changelog.gz DESTINATION share/doc/forgeyard)
install(FILES ${made}/forgeyard DESTINATION share/bash-completion/completions)
install(FILES ${made}/_forgeyard DESTINATION share/zsh/vendor-completions)
install(FILES ${made}/forgeyard.fish DESTINATION share/fish/vendor_completions.d)
install(FILES packaging/lintian-overrides DESTINATION share/lintian/overrides RENAME forgeyard)
