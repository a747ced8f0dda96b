target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/shading/channel_alpha.cpp
  ${CMAKE_SOURCE_DIR}/shading/evaluate.cpp
  ${CMAKE_SOURCE_DIR}/shading/highlight.cpp
  ${CMAKE_SOURCE_DIR}/shading/ink_over.cpp
  ${CMAKE_SOURCE_DIR}/shading/light_intensity.cpp
  ${CMAKE_SOURCE_DIR}/shading/overlays.cpp
  ${CMAKE_SOURCE_DIR}/shading/render_pass.cpp
)
