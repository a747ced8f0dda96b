target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/persist/state_block.cpp
)
