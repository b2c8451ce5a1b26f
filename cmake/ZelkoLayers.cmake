# One library per engine layer. A layer's headers are reachable only through
# the layers that link it: each layer publishes forwarding headers under its
# own include root in the build tree (include/<layer>/<folder>/name.h), so
# "#include "hot/x.h"" from models/ finds nothing and the build stops there.

function(zelko_layer target folder)
  cmake_parse_arguments(LAYER "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(${target} STATIC ${LAYER_SOURCES})
  set(root "${PROJECT_BINARY_DIR}/include/${folder}")
  file(GLOB headers CONFIGURE_DEPENDS
       "${PROJECT_SOURCE_DIR}/${folder}/*.h" "${PROJECT_SOURCE_DIR}/${folder}/*.inc")
  foreach(header IN LISTS headers)
    get_filename_component(name "${header}" NAME)
    file(CONFIGURE OUTPUT "${root}/${folder}/${name}" CONTENT "#include \"${header}\"\n" @ONLY)
  endforeach()
  target_include_directories(${target} PUBLIC "${root}")
  target_link_libraries(${target} PUBLIC ${LAYER_DEPENDS})
endfunction()
