# sentrel_add_gui_test(<name> SOURCES ... LIBS ... [TIMEOUT s])
# A gtest program run under Wine + Xvfb through gui-run, in a prefix and on a display of its
# own (wineprefix-gui-<name>), so ctest runs GUI programs side by side like any other test.
set(SENTREL_GUI_WINEPREFIX "${CMAKE_BINARY_DIR}/wineprefix-gui")
set(SENTREL_GUI_SCREENSHOTS "${CMAKE_BINARY_DIR}/screenshots/gui")
configure_file("${CMAKE_SOURCE_DIR}/tests/gui/support/gui-run.sh.in" "${CMAKE_BINARY_DIR}/gui-run" @ONLY
               FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                WORLD_READ WORLD_EXECUTE)
function(sentrel_add_gui_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS;DEPENDS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} sentrel_gui_support sentrel_test_support gmock gtest_main)
  if(T_DEPENDS)
    add_dependencies(${name} ${T_DEPENDS})
  endif()
  target_compile_definitions(${name} PRIVATE SCREENSHOT_DIR="${SENTREL_GUI_SCREENSHOTS}")
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 180)
  endif()
  file(MAKE_DIRECTORY "${SENTREL_GUI_SCREENSHOTS}")
  add_test(NAME ${name} COMMAND "${CMAKE_BINARY_DIR}/gui-run" "${SENTREL_GUI_WINEPREFIX}-${name}" "$<TARGET_FILE:${name}>"
                                 --gtest_color=no)
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} LABELS "gui")
endfunction()
