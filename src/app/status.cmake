# The command-line companion `brenvik-status`: the monitor without a screen,
# for terminals, status bars and scripts. QtCore only.
add_executable(brenvik-status ${CMAKE_CURRENT_LIST_DIR}/BrenvikStatusMain.cpp)
target_link_libraries(brenvik-status PRIVATE
  brenvik_core brenvik_presentation brenvik_status_report brenvik_warnings Qt6::Core)
install(TARGETS brenvik-status RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
