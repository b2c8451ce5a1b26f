# The translation files travel with the program: copied beside each executable
# that looks for them there (the application, the screen tests) and installed
# under share/zelko-mat, where the installed program finds them.
include(GNUInstallDirs)
file(GLOB_RECURSE ZELKO_LANGUAGE_FILES CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/language"
     "${PROJECT_SOURCE_DIR}/language/*.txt")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/language/" DESTINATION "${CMAKE_INSTALL_DATADIR}/zelko-mat/language")

function(zelko_language_beside target)
  get_target_property(folder ${target} BINARY_DIR)
  set(copies)
  foreach(file IN LISTS ZELKO_LANGUAGE_FILES)
    set(copy "${folder}/language/${file}")
    add_custom_command(OUTPUT "${copy}"
                       COMMAND ${CMAKE_COMMAND} -E copy_if_different "${PROJECT_SOURCE_DIR}/language/${file}" "${copy}"
                       DEPENDS "${PROJECT_SOURCE_DIR}/language/${file}" VERBATIM)
    list(APPEND copies "${copy}")
  endforeach()
  add_custom_target(${target}_language DEPENDS ${copies})
  add_dependencies(${target} ${target}_language)
endfunction()
