#pragma once

#include <ImathBox.h>
#include <ImathMatrix.h>
#include <ImathVec.h>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "studio/scene/surface_shader.h"
#include "studio/util/memory_budget.h"

/// A scene in the form that the renderer uses: plain data, posed for one time.
///
/// World space is right-handed with y up; lengths are in metres. Matrices act on row vectors
/// (Imath), so `p * objectToWorld`. Immutable while a render runs; any thread may read then.
/// Between renders animation may pose it again: surfaces and images keep their addresses,
/// and so do objects and lights that are still visible.
namespace tavora::studio {

/// A decoded image file. Values are as stored: colour is sRGB-encoded.
struct Image {
    std::string name;  ///< URI or name in the file, for messages
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;  ///< 4 bytes a pixel, rows from the top
};

enum class Wrap { Repeat, MirroredRepeat, ClampToEdge };
enum class Filter { Nearest, Linear };

/// Which image a material reads, and how.
struct TextureUse {
    int image = 0;  ///< index into Scene::images
    int uvSet = 0;
    Wrap wrapS = Wrap::Repeat;
    Wrap wrapT = Wrap::Repeat;
    Filter magnify = Filter::Linear;
    Filter minify = Filter::Linear;
    bool mipmaps = true;
    Imath::V2f offset{0, 0};  ///< texture transform: scale, then rotate, then offset
    float rotation = 0;       ///< radians, counter-clockwise in UV space
    Imath::V2f scale{1, 1};
    bool isData = false;  ///< texels are numbers, averaged as stored; else sRGB-encoded colours
};

enum class AlphaMode { Opaque, Mask, Blend };

/// The component of a texel that a channel reads as its strength.
enum class Component { Red, Alpha };

/// The two tones of an avatar's material. With x = `shift` + the cosine between normal and
/// light, the shade colour is shown for x below `toony` - 1, the base colour for x above
/// 1 - `toony`, and a blend of both in between.
/// Formula: the glTF extension VRMC_materials_mtoon 1.0, "Lighting".
struct ToonShade {
    Imath::V3f shadeColor{0, 0, 0};  ///< scene-linear; a factor of the texture, if there is one
    std::optional<TextureUse> shadeTexture;
    float shift = 0;     ///< -1..1
    float toony = 0.9F;  ///< 0..1; 1 is a hard border
};

/// A material. Factors are scene-linear as in the file.
struct Surface {
    std::string name;        ///< UTF-8, unique in the scene
    int materialIndex = -1;  ///< in the file; -1 for the default material
    Imath::V4f baseColor{1, 1, 1, 1};
    std::optional<TextureUse> baseColorTexture;
    Imath::V3f emissive{0, 0, 0};  ///< including the emissive strength
    std::optional<TextureUse> emissiveTexture;
    std::optional<TextureUse> normalTexture;  ///< in the tangent space of the mesh
    float normalScale = 1;                    ///< factor on its x and y
    bool normalMap = true;                    ///< false: the normal texture is not used
    float metallic = 1;
    float roughness = 1;
    AlphaMode alphaMode = AlphaMode::Opaque;
    float alphaCutoff = 0.5F;
    bool doubleSided = false;
    bool unlit = false;
    bool selfShadow = true;       ///< false: no object's part shadows itself, only others
    bool castsShadows = true;     ///< false: it blocks no light
    bool receivesShadows = true;  ///< false: nothing blocks the light that falls on it
    std::optional<TextureUse> translucencyTexture;
    Component translucencyComponent = Component::Red;
    float translucencyFactor = 0;
    std::optional<ToonShade> toon;        ///< of an avatar's material
    std::optional<SurfaceShader> shader;  ///< from the file's extras
};

/// The tangents at a triangle's corners: xyz is the direction in which u grows along the
/// surface, of unit length, or 0 where there is none; w is 1, or -1 where the texture is
/// mirrored. The bitangent is cross(normal, tangent) * w.
using CornerTangents = std::array<Imath::V4f, 3>;

/// Triangles of one surface, in object space. Per-vertex arrays are empty or as long as
/// `positions`.
struct Mesh {
    std::string name;
    std::vector<Imath::V3f> positions;
    std::vector<Imath::V3f> normals;  ///< unit; computed when the file has none
    std::array<std::vector<Imath::V2f>, 4> uvs;
    std::vector<Imath::V4f> colors;                       ///< linear RGBA
    std::vector<std::array<std::uint32_t, 3>> triangles;  ///< counter-clockwise seen from the front
    bool smooth = false;  ///< some vertex normal differs from its triangle's normal
    /// As many as `triangles`; empty on surfaces without a normal map.
    std::vector<CornerTangents> tangents;
    /// 0 for a mesh as stored. Grows whenever animation deforms the mesh again; that changes
    /// positions, normals and tangents, never the triangles or the number of vertices.
    std::uint64_t revision = 0;
};

/// A mesh with its surface.
struct Part {
    std::shared_ptr<const Mesh> mesh;
    int surface = 0;                ///< index into Scene::surfaces
    std::int32_t firstPolygon = 0;  ///< index of its first triangle within the object
};

/// A node with geometry. Its address identifies it as long as the scene exists.
struct Object {
    std::string name;
    Imath::M44d objectToWorld;
    bool mirrored = false;  ///< the transform turns triangles inside out
    std::vector<Part> parts;
};

enum class LightKind { Directional, Point, Spot };

/// A light. Its address identifies it as long as the scene exists.
struct Light {
    std::string name;  ///< UTF-8, unique among lights, at most 79 bytes
    LightKind kind = LightKind::Directional;
    Imath::V3d position{0, 0, 0};    ///< world; unused for directional lights
    Imath::V3d direction{0, 0, -1};  ///< world, unit, in which the light travels
    Imath::V3f color{1, 1, 1};       ///< scene-linear
    float intensity = 1;             ///< lux for directional, candela for others
    float range = std::numeric_limits<float>::infinity();  ///< metres
    // Cosines of a spot light's cone angles from its axis. Inside the inner cone it has its
    // full intensity, outside the outer one none.
    double innerCosine = 1;
    double outerCosine = 0.70710678118654752;  ///< 45 degrees
    double radius = 0;  ///< metres, of a point or spot light that is a ball; 0: hard shadows
    double angle = 0;   ///< radians, diameter of a directional light in the sky; 0: hard shadows
    bool makesHighlights = true;
    bool castsShadow = true;  ///< false: nothing blocks it
};

/// A camera. In camera space it looks along -z, with +y up.
struct Camera {
    std::string name;
    bool orthographic = false;
    Imath::M44d cameraToWorld;  ///< rotation and translation only
    double verticalFov = 0.8;   ///< radians, perspective only
    double halfHeight = 1;      ///< metres, orthographic only
    double aspect = 0;          ///< width / height; 0: the picture's
};

/// An animation that a scene's file has.
struct AnimationInfo {
    std::string name;
    double start = 0;  ///< seconds
    double end = 0;
    std::size_t channels = 0;
};

struct Scene {
    std::string path;                      ///< of the file, for messages
    std::string digest;                    ///< hash of the bytes of all its files, hexadecimal
    std::shared_ptr<MemoryBudget> memory;  ///< for it and all that is built from it; null: no limit
    std::vector<Image> images;
    std::vector<Surface> surfaces;
    std::vector<std::shared_ptr<const Object>> objects;
    std::vector<std::shared_ptr<const Light>> lights;
    std::vector<Camera> cameras;
    std::vector<AnimationInfo> animations;
    std::optional<Imath::V3d> ambient;  ///< display-referred colour, when the file sets one
    Imath::Box3d bounds;                ///< of all triangles, world; empty without triangles
    std::vector<std::string> warnings;  ///< one line each, for the user
    std::vector<std::string> notes;     ///< one line each, shown with -v
};

}  // namespace tavora::studio
