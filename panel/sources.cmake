target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/panel/about.cpp
  ${CMAKE_SOURCE_DIR}/panel/control_table.cpp
  ${CMAKE_SOURCE_DIR}/panel/controls/bindings.cpp
  ${CMAKE_SOURCE_DIR}/panel/controls/controls.cpp
  ${CMAKE_SOURCE_DIR}/panel/controls/pick_color.cpp
  ${CMAKE_SOURCE_DIR}/panel/default_settings_event.cpp
  ${CMAKE_SOURCE_DIR}/panel/light_list.cpp
  ${CMAKE_SOURCE_DIR}/panel/setting_events.cpp
  ${CMAKE_SOURCE_DIR}/panel/settings_panel.cpp
  ${CMAKE_SOURCE_DIR}/panel/swatches.cpp
  ${CMAKE_SOURCE_DIR}/panel/tabs.cpp
)
