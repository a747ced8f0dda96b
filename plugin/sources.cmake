target_sources(tavora_module PRIVATE
  ${CMAKE_SOURCE_DIR}/plugin/description.cpp
  ${CMAKE_SOURCE_DIR}/plugin/descriptor.cpp
  ${CMAKE_SOURCE_DIR}/plugin/handler_activation.cpp
  ${CMAKE_SOURCE_DIR}/plugin/instance_creation.cpp
  ${CMAKE_SOURCE_DIR}/plugin/interface_activation.cpp
  ${CMAKE_SOURCE_DIR}/plugin/record/instance_life.cpp
  ${CMAKE_SOURCE_DIR}/plugin/record/light_entry.cpp
  ${CMAKE_SOURCE_DIR}/plugin/record/services.cpp
)
