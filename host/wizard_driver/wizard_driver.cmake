# The wizard driver, its PNG writer and the message-box hook as one library without gtest:
# orblane.exe's demo walk drives the wizard with it, and the GUI and Windows tests link the
# same driver. Included by host/orblane (built in every Windows tree) and by tests/gui/support.
if(NOT TARGET sentrel_wizard_driver)
  add_library(sentrel_wizard_driver STATIC
    "${CMAKE_CURRENT_LIST_DIR}/message_box_hook.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/png_writer.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/wizard_driver.cpp")
  target_include_directories(sentrel_wizard_driver PUBLIC "${CMAKE_SOURCE_DIR}")
  target_link_libraries(sentrel_wizard_driver PUBLIC user32 gdi32 comctl32)
endif()

# The profiles and rules a person makes on the definition and rule pages (the demo walk and
# the GUI matrix), on the driver and the ACL core's catalogue.
if(NOT TARGET sentrel_wizard_forms)
  add_library(sentrel_wizard_forms STATIC "${CMAKE_CURRENT_LIST_DIR}/acl_forms.cpp")
  target_link_libraries(sentrel_wizard_forms PUBLIC sentrel_wizard_driver sentrel_acl_core)
endif()
