#pragma once

#include <cstdint>
#include <vector>

#include "tests/scene/gltf_builder.h"

namespace tavora::studio {

/// A scene in which every part that is read occurs.
inline GltfBuilder fullScene() {
    GltfBuilder file;
    const std::vector<float> z = {0, 0, 1, 0, 0, 1, 0, 0, 1};
    const std::vector<float> uv = {0, 0, 1, 0, 0, 1};
    const std::vector<std::uint8_t> joints = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    const std::vector<float> weights = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
    const std::vector<std::uint16_t> indices = {0, 1, 2};
    const std::vector<float> unit = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const int positions = file.accessor(GltfBuilder::corners(), "VEC3");  // accessor 0
    Json attributes = {{"POSITION", positions}};
    attributes["NORMAL"] = file.accessor(z, "VEC3");                               // 1
    attributes["TEXCOORD_0"] = file.accessor(uv, "VEC2");                          // 2
    attributes["JOINTS_0"] = file.accessor(joints, "VEC4");                        // 3
    attributes["WEIGHTS_0"] = file.accessor(weights, "VEC4");                      // 4
    const int mesh = file.mesh(attributes, file.accessor(indices, "SCALAR"));      // 5
    file.primitive(mesh)["targets"] = {{{"POSITION", file.accessor(z, "VEC3")}}};  // 6
    file.primitive(mesh)["material"] = 0;
    file.document["meshes"][0]["weights"] = {0.5};
    file.root({{"mesh", 0}, {"skin", 0}});
    file.root({{"translation", {0, 0, 0}},
               {"rotation", {0, 0, 0, 1}},
               {"scale", {1, 1, 1}},
               {"extensions",
                {{"KHR_lights_punctual", {{"light", 0}}},
                 {"KHR_node_visibility", {{"visible", true}}}}}});
    file.root({{"matrix", unit}, {"camera", 0}});
    file.add("skins",
             {{"joints", {1}}, {"inverseBindMatrices", file.accessor(unit, "MAT4")}});  // 7
    file.add("cameras",
             R"({"type": "perspective", "name": "C",
        "perspective": {"yfov": 0.8, "znear": 0.1, "aspectRatio": 1}})"_j);
    file.add("cameras", R"({"type": "orthographic", "orthographic":
        {"xmag": 1, "ymag": 2}})"_j);
    file.document["extensions"] =
        R"({"KHR_lights_punctual": {"lights": [{"type": "spot", "name": "L", "color": [1, 1, 1],
            "intensity": 1, "range": 9, "spot": {"innerConeAngle": 0, "outerConeAngle": 1}}]}})"_j;
    file.add("images", {{"uri", kRedPng}, {"name", "a"}});
    file.add("textures", {{"source", 0}, {"sampler", 0}});
    file.add("samplers",
             R"({"wrapS": 10497, "wrapT": 10497, "magFilter": 9729, "minFilter": 9987})"_j);
    file.add("materials", R"({"name": "M", "doubleSided": true, "alphaMode": "MASK",
        "alphaCutoff": 0.5, "emissiveFactor": [0, 0, 0], "pbrMetallicRoughness":
        {"baseColorFactor": [1, 1, 1, 1], "metallicFactor": 0, "roughnessFactor": 1,
         "baseColorTexture": {"index": 0, "texCoord": 0, "extensions": {"KHR_texture_transform":
             {"offset": [0, 0], "rotation": 0, "scale": [1, 1], "texCoord": 0}}}}, "extensions":
        {"KHR_materials_emissive_strength": {"emissiveStrength": 1},
         "KHR_materials_pbrSpecularGlossiness": {"diffuseFactor": [1, 1, 1, 1],
                                                 "glossinessFactor": 0.5},
         "KHR_materials_transmission": {"transmissionFactor": 0.5},
         "KHR_materials_diffuse_transmission": {"diffuseTransmissionFactor": 0.5}}})"_j);
    file.add("animations", R"({"name": "A", "channels": [
        {"sampler": 0, "target": {"node": 1, "path": "translation"}},
        {"sampler": 1, "target": {"node": 0, "path": "weights"}},
        {"sampler": 2, "target": {"path": "pointer", "extensions": {"KHR_animation_pointer":
            {"pointer": "/cameras/0/perspective/yfov"}}}}],
        "samplers": [{"input": 8, "output": 9}, {"input": 8, "output": 10, "interpolation": "STEP"},
                     {"input": 8, "output": 11, "interpolation": "CUBICSPLINE"}]})"_j);
    file.accessor(std::vector<float>{0, 1}, "SCALAR");            // 8, key times
    file.accessor(std::vector<float>{0, 0, 0, 1, 0, 0}, "VEC3");  // 9
    file.accessor(std::vector<float>{0, 1}, "SCALAR");            // 10
    file.accessor(std::vector<float>{0, 1, 0, 0, 1, 0}, "SCALAR");
    file.document["buffers"] = {{{"uri", "scene.bin"}, {"byteLength", file.bytes.size()}}};
    return file;
}

}  // namespace tavora::studio
