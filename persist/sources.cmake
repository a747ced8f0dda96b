target_sources(tavora_module PRIVATE
)
