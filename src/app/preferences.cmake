# brenvik_app_library(<name> [X11] FILES <files in src/app...> PUBLIC <targets...>)
# A static library of this folder's files; X11 when it talks to the X server
# itself. shell.cmake builds its libraries with it too.
function(brenvik_app_library name)
  cmake_parse_arguments(ARG "X11" "" "FILES;PUBLIC" ${ARGN})
  list(TRANSFORM ARG_FILES PREPEND ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/)
  add_library(${name} STATIC ${ARG_FILES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE brenvik_warnings)
  if(ARG_X11)
    target_link_libraries(${name} PRIVATE PkgConfig::XCB)
  endif()
endfunction()

