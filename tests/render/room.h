#pragma once

#include <optional>

#include <nlohmann/json.hpp>

#include "tests/render/test_scene.h"

namespace tavora::studio {

/// The surfaces of the Room.
enum Place { kBall, kPane, kLeaf, kWall, kClear, kSign };

/// Of everything that a ray may meet something: a seamed ball, a clear pane, one that
/// is wholly clear, a leaf with holes and an unlit sign before a painted, bumpy wall,
/// a part of which is there twice; beyond the wall, nothing.
struct Room : TestScene {
    Room();
    /// A sun, a lamp and a spot of that size in metres or radians, and dim light all over.
    void addLights(double radius, double angle);
};

/// A quad with the tangents that its UVs make.
std::shared_ptr<const Mesh> tangentQuadMesh(double halfSide);

/// Sees all of the Room, and nothing around it.
Camera roomCamera();

/// The module's defaults with some settings changed.
StateBlock look(const nlohmann::ordered_json& changes = nlohmann::ordered_json::object());

/// One quad of half side 1 at the origin that faces +z, and its surface.
struct QuadScene : TestScene {
    QuadScene();
    Surface& surface() { return scene.surfaces[0]; }
};

/// What one ray shows, straight down from `eye`; with the probe module's shader on all
/// surfaces, if there are settings for it.
Picture onePixel(const TestScene& test, const std::optional<StateBlock>& probe = {},
                 RenderStats* stats = nullptr, const Imath::V3d& eye = {0, 0, 5});
/// The same as displayed.
Imath::V3d colorOf(const TestScene& test, const std::optional<StateBlock>& probe = {});
Imath::V3d colorFrom(const Imath::V3d& eye, const TestScene& test);

void expectColor(const Imath::V3d& actual, const Imath::V3d& expected);

}  // namespace tavora::studio
