#include "studio/scene/gltf/extensions.h"

#include <algorithm>
#include <iterator>

namespace tavora::studio {
namespace {

struct Entry {
    std::string_view name;
    Support support;
};

constexpr Entry kExtensions[] = {
    {"EXT_lights_image_based", Support::Incomplete},
    {"EXT_mesh_gpu_instancing", Support::Incomplete},
    {"EXT_texture_webp", Support::Read},
    {"KHR_animation_pointer", Support::Read},
    {"KHR_draco_mesh_compression", Support::Read},
    {"KHR_lights_punctual", Support::Read},
    {"KHR_materials_anisotropy", Support::NotDrawn},
    {"KHR_materials_clearcoat", Support::NotDrawn},
    {"KHR_materials_diffuse_transmission", Support::NotDrawn},
    {"KHR_materials_dispersion", Support::NotDrawn},
    {"KHR_materials_emissive_strength", Support::Read},
    {"KHR_materials_ior", Support::NotDrawn},
    {"KHR_materials_iridescence", Support::NotDrawn},
    {"KHR_materials_pbrSpecularGlossiness", Support::Read},
    {"KHR_materials_sheen", Support::NotDrawn},
    {"KHR_materials_specular", Support::NotDrawn},
    {"KHR_materials_transmission", Support::NotDrawn},
    {"KHR_materials_unlit", Support::Read},
    {"KHR_materials_variants", Support::NotDrawn},
    {"KHR_materials_volume", Support::NotDrawn},
    {"KHR_mesh_quantization", Support::Read},
    {"KHR_node_visibility", Support::Read},
    {"KHR_texture_transform", Support::Read},
    {"KHR_xmp_json_ld", Support::Read},
    // Avatars: their shading, and data about movement and licences, which affect no picture.
    {"VRM", Support::Read},
    {"VRMC_materials_hdr_emissiveMultiplier", Support::NotDrawn},
    {"VRMC_materials_mtoon", Support::Read},
    {"VRMC_node_constraint", Support::Read},
    {"VRMC_springBone", Support::Read},
    {"VRMC_springBone_extended_collider", Support::Read},
    {"VRMC_vrm", Support::Read},
    {"VRMC_vrm_animation", Support::Read},
};

}  // namespace

Support supportOf(std::string_view extension) {
    const auto* found =
        std::find_if(std::begin(kExtensions), std::end(kExtensions),
                     [extension](const Entry& entry) { return entry.name == extension; });
    return found == std::end(kExtensions) ? Support::Unknown : found->support;
}

}  // namespace tavora::studio
