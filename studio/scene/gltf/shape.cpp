#include "studio/scene/gltf/shape.h"

#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <string>
#include <string_view>

#include "studio/scene/gltf/source.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;
using namespace std::string_literals;

constexpr double kMostExact = 9007199254740992.0;  // 2^53
constexpr double kMostInt = 2147483648.0;          // 2^31

enum class Kind {
    Object,
    List,
    Text,
    Flag,
    Number,  ///< that a float can hold
    Count,   ///< whole, 0 or more, below 2^53
    Small,   ///< whole, 0 or more, below 2^31
    Code,    ///< whole, 0 to 65535
    Index,   ///< into the list at `of`
};

/// `path`: members by name, "[]" for every element of a list, "{}" for every
/// member of an object, "!" at the end when the last member must be there.
struct Rule {
    std::string_view path;
    Kind kind;
    const char* of = "";
    std::size_t length = 0;  ///< of a list, where it is fixed
};

constexpr Rule kRules[] = {
    {"extensionsUsed[]", Kind::Text},
    {"extensionsRequired[]", Kind::Text},
    {"buffers[]byteLength!", Kind::Count},
    {"buffers[]uri", Kind::Text},
    {"bufferViews[]buffer!", Kind::Index, "buffers"},
    {"bufferViews[]byteOffset", Kind::Count},
    {"bufferViews[]byteLength!", Kind::Count},
    {"bufferViews[]byteStride", Kind::Count},
    {"accessors[]bufferView", Kind::Index, "bufferViews"},
    {"accessors[]byteOffset", Kind::Count},
    {"accessors[]componentType!", Kind::Code},
    {"accessors[]count!", Kind::Count},
    {"accessors[]type!", Kind::Text},
    {"accessors[]normalized", Kind::Flag},
    {"accessors[]sparse.count!", Kind::Small},
    {"accessors[]sparse.indices!", Kind::Object},
    {"accessors[]sparse.indices.bufferView!", Kind::Index, "bufferViews"},
    {"accessors[]sparse.indices.byteOffset", Kind::Small},
    {"accessors[]sparse.indices.componentType!", Kind::Code},
    {"accessors[]sparse.values!", Kind::Object},
    {"accessors[]sparse.values.bufferView!", Kind::Index, "bufferViews"},
    {"accessors[]sparse.values.byteOffset", Kind::Small},
    {"meshes[]name", Kind::Text},
    {"meshes[]primitives!", Kind::List},
    {"meshes[]primitives[]attributes!", Kind::Object},
    {"meshes[]primitives[]attributes{}", Kind::Index, "accessors"},
    {"meshes[]primitives[]indices", Kind::Index, "accessors"},
    {"meshes[]primitives[]material", Kind::Index, "materials"},
    {"meshes[]primitives[]mode", Kind::Code},
    {"meshes[]primitives[]targets[]{}", Kind::Index, "accessors"},
    {"meshes[]primitives[]extensions.KHR_draco_mesh_compression.bufferView!", Kind::Index,
     "bufferViews"},
    {"meshes[]primitives[]extensions.KHR_draco_mesh_compression.attributes!", Kind::Object},
    {"meshes[]primitives[]extensions.KHR_draco_mesh_compression.attributes{}", Kind::Code},
    {"meshes[]weights[]", Kind::Number},
    {"nodes[]name", Kind::Text},
    {"nodes[]mesh", Kind::Index, "meshes"},
    {"nodes[]skin", Kind::Index, "skins"},
    {"nodes[]camera", Kind::Index, "cameras"},
    {"nodes[]children[]", Kind::Index, "nodes"},
    {"nodes[]matrix", Kind::List, "", 16},
    {"nodes[]matrix[]", Kind::Number},
    {"nodes[]translation", Kind::List, "", 3},
    {"nodes[]translation[]", Kind::Number},
    {"nodes[]rotation", Kind::List, "", 4},
    {"nodes[]rotation[]", Kind::Number},
    {"nodes[]scale", Kind::List, "", 3},
    {"nodes[]scale[]", Kind::Number},
    {"nodes[]weights[]", Kind::Number},
    {"nodes[]extensions.KHR_lights_punctual.light!", Kind::Index,
     "extensions/KHR_lights_punctual/lights"},
    {"scenes[]nodes[]", Kind::Index, "nodes"},
    {"scene", Kind::Index, "scenes"},
    {"skins[]joints!", Kind::List},
    {"skins[]joints[]", Kind::Index, "nodes"},
    {"skins[]inverseBindMatrices", Kind::Index, "accessors"},
    {"cameras[]name", Kind::Text},
    {"cameras[]type!", Kind::Text},
    {"cameras[]perspective.yfov!", Kind::Number},
    {"cameras[]perspective.znear!", Kind::Number},
    {"cameras[]perspective.aspectRatio", Kind::Number},
    {"cameras[]orthographic.xmag!", Kind::Number},
    {"cameras[]orthographic.ymag!", Kind::Number},
    {"extensions.KHR_lights_punctual.lights[]name", Kind::Text},
    {"extensions.KHR_lights_punctual.lights[]type!", Kind::Text},
    {"extensions.KHR_lights_punctual.lights[]color", Kind::List, "", 3},
    {"extensions.KHR_lights_punctual.lights[]color[]", Kind::Number},
    {"extensions.KHR_lights_punctual.lights[]intensity", Kind::Number},
    {"extensions.KHR_lights_punctual.lights[]range", Kind::Number},
    {"extensions.KHR_lights_punctual.lights[]spot.innerConeAngle", Kind::Number},
    {"extensions.KHR_lights_punctual.lights[]spot.outerConeAngle", Kind::Number},
    {"images[]bufferView", Kind::Index, "bufferViews"},
    {"images[]uri", Kind::Text},
    {"images[]name", Kind::Text},
    {"samplers[]magFilter", Kind::Code},
    {"samplers[]minFilter", Kind::Code},
    {"samplers[]wrapS", Kind::Code},
    {"samplers[]wrapT", Kind::Code},
    {"textures[]source", Kind::Index, "images"},
    {"textures[]sampler", Kind::Index, "samplers"},
    {"textures[]extensions.EXT_texture_webp.source", Kind::Index, "images"},
    {"materials[]name", Kind::Text},
    {"materials[]alphaMode", Kind::Text},
    {"materials[]alphaCutoff", Kind::Number},
    {"materials[]doubleSided", Kind::Flag},
    {"materials[]emissiveFactor", Kind::List, "", 3},
    {"materials[]emissiveFactor[]", Kind::Number},
    {"materials[]emissiveTexture", Kind::Object},
    {"materials[]pbrMetallicRoughness.baseColorFactor", Kind::List, "", 4},
    {"materials[]pbrMetallicRoughness.baseColorFactor[]", Kind::Number},
    {"materials[]pbrMetallicRoughness.metallicFactor", Kind::Number},
    {"materials[]pbrMetallicRoughness.roughnessFactor", Kind::Number},
    {"materials[]pbrMetallicRoughness.baseColorTexture", Kind::Object},
    {"materials[]extensions.KHR_materials_emissive_strength.emissiveStrength", Kind::Number},
    {"materials[]extensions.KHR_materials_transmission.transmissionFactor", Kind::Number},
    {"materials[]extensions.KHR_materials_diffuse_transmission.diffuseTransmissionFactor",
     Kind::Number},
    {"animations[]name", Kind::Text},
    {"animations[]channels!", Kind::List},
    {"animations[]channels[]sampler!", Kind::Count},
    {"animations[]channels[]target!", Kind::Object},
    {"animations[]channels[]target.node", Kind::Index, "nodes"},
    {"animations[]channels[]target.path!", Kind::Text},
    {"animations[]samplers!", Kind::List},
    {"animations[]samplers[]input!", Kind::Index, "accessors"},
    {"animations[]samplers[]output!", Kind::Index, "accessors"},
    {"animations[]samplers[]interpolation", Kind::Text},
};

bool isNumber(const Json& value) {
    return value.is_number() &&
           std::abs(value.get<double>()) <= static_cast<double>(std::numeric_limits<float>::max());
}

/// Whole and from 0 to below `end`. Never written with a point or exponent:
/// the parser of the rest takes those for no whole number.
bool isWhole(const Json& value, double end) {
    return value.is_number_unsigned() && value.get<double>() < end;
}

std::size_t sizeOf(const Json& document, const std::string& pointer) {
    const Json::json_pointer at(pointer);
    return document.contains(at) && document.at(at).is_array() ? document.at(at).size() : 0;
}

/// One walk along one rule's path.
class Walk {
  public:
    Walk(const GltfSource& source, const Rule& rule) : source_(source), rule_(rule) {
        if (rule.kind == Kind::Index) count_ = sizeOf(source.document, "/"s + rule.of);
    }

    void along(const Json& value, std::string_view path, const std::string& place) const {
        if (path.empty() || path == "!") return check(value, place);
        if (path.substr(0, 2) == "[]") return elements(value, path.substr(2), place);
        if (path.substr(0, 2) == "{}") return members(value, path.substr(2), place);
        if (path.front() == '.') path.remove_prefix(1);
        if (!value.is_object()) refuse(value, place, "an object");
        const std::string name(path.substr(0, path.find_first_of(".[{!")));
        const std::string inside = place.empty() ? name : place + "." + name;
        const auto found = value.find(name);
        // A null is what some exporters write for a member they do not have.
        if (found != value.end() && !found->is_null())
            return along(*found, path.substr(name.size()), inside);
        if (path.substr(name.size()) == "!") {
            source_.fail(fmt::format("{} is missing: export the file again", inside));
        }
    }

  private:
    [[noreturn]] void refuse(const Json& value, const std::string& place,
                             const std::string& wanted) const {
        std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
        if (text.size() > 40) text = text.substr(0, 40) + "..";
        source_.fail(fmt::format("{} is {} but must be {}: export the file again",
                                 place.empty() ? "the document" : place, text, wanted));
    }

    void elements(const Json& value, std::string_view path, const std::string& place) const {
        if (!value.is_array()) refuse(value, place, "a list");
        std::size_t i = 0;
        for (const Json& element : value)
            along(element, path, fmt::format("{}[{}]", place, i++));
    }

    void members(const Json& value, std::string_view path, const std::string& place) const {
        if (!value.is_object()) refuse(value, place, "an object");
        for (const auto& member : value.items())
            along(member.value(), path, place + "." + member.key());
    }

    void check(const Json& value, const std::string& place) const {
        switch (rule_.kind) {
            case Kind::Object:
                return need(value.is_object(), value, place, "an object");
            case Kind::List:
                need(value.is_array(), value, place, "a list");
                if (rule_.length == 0) return;
                return need(value.size() == rule_.length, value, place,
                            fmt::format("a list of {} numbers", rule_.length));
            case Kind::Text:
                return need(value.is_string(), value, place, "text");
            case Kind::Flag:
                return need(value.is_boolean(), value, place, "true or false");
            case Kind::Number:
                return need(isNumber(value), value, place, "a number of single precision");
            case Kind::Count:
                return need(isWhole(value, kMostExact), value, place, "a whole number from 0");
            case Kind::Small:
                return need(isWhole(value, kMostInt), value, place, "a whole number below 2^31");
            case Kind::Code:
                return need(isWhole(value, 65536), value, place, "a whole number from 0 to 65535");
            case Kind::Index:
                return checkIndex(value, place);
        }
    }

    void need(bool holds, const Json& value, const std::string& place,
              const std::string& wanted) const {
        if (!holds) refuse(value, place, wanted);
    }

    void checkIndex(const Json& value, const std::string& place) const {
        if (isWhole(value, static_cast<double>(count_))) return;
        const std::string_view list(rule_.of);
        const std::string_view name = list.substr(list.rfind('/') + 1);
        refuse(value, place,
               count_ == 0 ? fmt::format("absent, as the file has no {}", name)
                           : fmt::format("one of its {} {}, counted from 0", count_, name));
    }

    const GltfSource& source_;
    const Rule& rule_;
    std::size_t count_ = 0;  // of the list that an index points into
};

}  // namespace

void checkShape(const GltfSource& source) {
    for (const Rule& rule : kRules)
        Walk(source, rule).along(source.document, rule.path, "");
}

}  // namespace tavora::studio
