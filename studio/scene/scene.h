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

/// The scene as the renderer wants it: plain data, posed, in world units.
///
/// World space is right-handed with y up, lengths in metres. Matrices act on
/// row vectors (Imath), so `p * objectToWorld`. Immutable while a render runs;
/// then any thread may read. Between renders animation may pose it anew: surfaces and
/// images stay where they are, objects and lights that are still shown keep their addresses.
namespace tavora::studio {

/// A decoded picture file. Values as stored: colour is sRGB-encoded.
struct Image {
    std::string name;  ///< URI or name in the file, for messages
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;  ///< 4 bytes a pixel, rows from the top
};

enum class Wrap { Repeat, MirroredRepeat, ClampToEdge };
enum class Filter { Nearest, Linear };

/// Where and how a material looks an image up.
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
    bool isData = false;  ///< texels are numbers, averaged as they are; else sRGB-encoded colours
};

enum class AlphaMode { Opaque, Mask, Blend };

/// Which component of a texel is the strength of a channel.
enum class Component { Red, Alpha };

/// The two tones of an avatar's material and the border between them: from
/// `shift` + the cosine between normal and light of `toony` - 1, where the shade
/// shows, to 1 - `toony`, where the base colour does, they blend.
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
    Imath::V3f emissive{0, 0, 0};  ///< strength counted in
    std::optional<TextureUse> emissiveTexture;
    std::optional<TextureUse> normalTexture;  ///< in the frame of the mesh's tangents
    float normalScale = 1;                    ///< of its x and y
    bool normalMap = true;                    ///< false: it is not applied
    float metallic = 1;
    float roughness = 1;
    AlphaMode alphaMode = AlphaMode::Opaque;
    float alphaCutoff = 0.5F;
    bool doubleSided = false;
    bool unlit = false;
    bool selfShadow = true;       ///< false: on no object does it shade itself, only others
    bool castsShadows = true;     ///< false: light passes as if it were not there
    bool receivesShadows = true;  ///< false: light reaches it through whatever is in the way
    std::optional<TextureUse> translucencyTexture;
    Component translucencyComponent = Component::Red;
    float translucencyFactor = 0;
    std::optional<ToonShade> toon;        ///< of an avatar
    std::optional<SurfaceShader> shader;  ///< from the file's extras
};

/// The tangents at a triangle's corners: xyz is the direction in which u grows
/// along the surface, of unit length or 0 where there is none; w is 1, or -1
/// where the texture is mirrored: the bitangent is normal x tangent * w.
using CornerTangents = std::array<Imath::V4f, 3>;

/// Triangles of one surface in the space of their object.
/// Per-vertex arrays are empty or as long as `positions`.
struct Mesh {
    std::string name;
    std::vector<Imath::V3f> positions;
    std::vector<Imath::V3f> normals;  ///< unit; never empty: made when the file has none
    std::array<std::vector<Imath::V2f>, 4> uvs;
    std::vector<Imath::V4f> colors;                       ///< linear RGBA
    std::vector<std::array<std::uint32_t, 3>> triangles;  ///< counter-clockwise seen from the front
    bool smooth = false;  ///< normals differ from the flat ones somewhere
    /// As many as `triangles`; empty on surfaces without a normal map.
    std::vector<CornerTangents> tangents;
    /// Grows whenever animation bends the mesh anew; what it consists of stays.
    std::uint64_t revision = 0;
};

/// A mesh with its surface.
struct Part {
    std::shared_ptr<const Mesh> mesh;
    int surface = 0;                ///< index into Scene::surfaces
    std::int32_t firstPolygon = 0;  ///< number of its first triangle within the object
};

/// A node that carries geometry. Its address is its identity while the scene lives.
struct Object {
    std::string name;
    Imath::M44d objectToWorld;
    bool mirrored = false;  ///< the transform turns triangles inside out
    std::vector<Part> parts;
};

enum class LightKind { Directional, Point, Spot };

/// A light. Its address is its identity while the scene lives.
struct Light {
    std::string name;  ///< UTF-8, unique among lights, at most 79 bytes
    LightKind kind = LightKind::Directional;
    Imath::V3d position{0, 0, 0};    ///< world; unused for directional lights
    Imath::V3d direction{0, 0, -1};  ///< world, unit, the way the light travels
    Imath::V3f color{1, 1, 1};       ///< scene-linear
    float intensity = 1;             ///< lux for directional, candela for others
    float range = std::numeric_limits<float>::infinity();  ///< metres
    // Of a spot light's cones, from the axis; it shines wholly within the inner one.
    double innerCosine = 1;
    double outerCosine = 0.70710678118654752;  ///< an eighth of a turn
    double radius = 0;  ///< metres; of a point or spot light's ball; 0: hard shadows
    double angle = 0;   ///< radians, diameter of a directional light in the sky; 0: hard shadows
    bool makesHighlights = true;
    bool castsShadow = true;  ///< false: it shines through whatever is in the way
};

/// A camera looks along its own -z with +y up.
struct Camera {
    std::string name;
    bool orthographic = false;
    Imath::M44d cameraToWorld;  ///< rotation and translation only
    double verticalFov = 0.8;   ///< radians, perspective only
    double halfHeight = 1;      ///< metres, orthographic only
    double aspect = 0;          ///< width / height; 0: that of the picture
};

struct AnimationInfo {
    std::string name;
    double start = 0;  ///< seconds
    double end = 0;
    std::size_t channels = 0;
};

struct Scene {
    std::string path;                      ///< of the file, for messages
    std::string digest;                    ///< of the bytes of all its files: hexadecimal
    std::shared_ptr<MemoryBudget> memory;  ///< for all that is made of it; null: no limit
    std::vector<Image> images;
    std::vector<Surface> surfaces;
    std::vector<std::shared_ptr<const Object>> objects;
    std::vector<std::shared_ptr<const Light>> lights;
    std::vector<Camera> cameras;
    std::vector<AnimationInfo> animations;
    std::optional<Imath::V3d> ambient;  ///< display-referred, when the file sets one
    Imath::Box3d bounds;                ///< of all triangles, world; empty without any
    std::vector<std::string> warnings;  ///< one line each, for the user
    std::vector<std::string> notes;     ///< the same, for who wants to know more
};

}  // namespace tavora::studio
