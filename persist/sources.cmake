target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/persist/default_settings.cpp
  ${CMAKE_SOURCE_DIR}/persist/state_block.cpp
)
