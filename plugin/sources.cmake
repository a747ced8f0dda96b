target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/plugin/description.cpp
  ${CMAKE_SOURCE_DIR}/plugin/descriptor.cpp
  ${CMAKE_SOURCE_DIR}/plugin/handler_activation.cpp
  ${CMAKE_SOURCE_DIR}/plugin/instance_life.cpp
  ${CMAKE_SOURCE_DIR}/plugin/interface_activation.cpp
  ${CMAKE_SOURCE_DIR}/plugin/services.cpp
  ${CMAKE_SOURCE_DIR}/plugin/shader_instance.cpp
)
