target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/panel/about.cpp
  ${CMAKE_SOURCE_DIR}/panel/bindings.cpp
  ${CMAKE_SOURCE_DIR}/panel/control_table.cpp
  ${CMAKE_SOURCE_DIR}/panel/controls.cpp
  ${CMAKE_SOURCE_DIR}/panel/light_list.cpp
  ${CMAKE_SOURCE_DIR}/panel/pick_color.cpp
  ${CMAKE_SOURCE_DIR}/panel/setting_events.cpp
  ${CMAKE_SOURCE_DIR}/panel/settings_panel.cpp
  ${CMAKE_SOURCE_DIR}/panel/swatches.cpp
  ${CMAKE_SOURCE_DIR}/panel/tabs.cpp
)
