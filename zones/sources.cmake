target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/zones/editor/gradient_editor.cpp
  ${CMAKE_SOURCE_DIR}/zones/editor/gradient_painter.cpp
  ${CMAKE_SOURCE_DIR}/zones/preview_grid.cpp
  ${CMAKE_SOURCE_DIR}/zones/zone_list.cpp
  ${CMAKE_SOURCE_DIR}/zones/zone_lookup.cpp
)
