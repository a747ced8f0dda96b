#include "studio/scene/gltf/document_reader.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <fmt/format.h>
#include <iterator>
#include <limits>
#include <type_traits>

#include "studio/scene/gltf/document_rules.h"
#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio::gltf {
namespace {

/// Where a value is in the document: a member of the object at `outer`, or an element of the
/// list there. Null `outer`: the document itself.
struct Location {
    const Location* outer = nullptr;
    std::string_view member;
    std::size_t element = 0;

    std::string text() const {
        if (outer == nullptr) return "";
        const std::string before = outer->text();
        if (member.empty()) return fmt::format("{}[{}]", before, element);
        return before + (before.empty() ? "" : ".") + std::string(member);
    }
};

/// The result of looking for a member by a path like "a.b".
struct Found {
    const Json* value = nullptr;   ///< null when it is absent
    const Json* holder = nullptr;  ///< what should be the object that has it; null when absent
    std::size_t read = 0;          ///< length of the part of the path that leads to the holder
};

Found find(const Json& object, std::string_view path) {
    Found found{nullptr, &object, 0};
    for (std::size_t start = 0;;) {
        const std::size_t dot = path.find('.', start);
        const std::string_view name = path.substr(start, dot - start);
        if (!found.holder->is_object()) return found;
        const auto member = found.holder->find(name);
        const bool last = dot == std::string_view::npos;
        // Some exporters write null for an absent member.
        const bool there = member != found.holder->end() && !member->is_null();
        if (last && there) found.value = &*member;
        if (last) return found;
        if (!there) return {};
        found.holder = &*member;
        found.read = dot;
        start = dot + 1;
    }
}

template <class T>
concept NamedValue = std::is_array_v<std::remove_const_t<decltype(kNames<T>)>>;

/// An enumeration that is a number in the file.
template <class T>
concept CodeValue = std::is_enum_v<T> && !NamedValue<T>;

template <class T>
concept Whole = std::integral<T> && !std::same_as<T, bool>;

/// Reads a document by the rules in document_rules.h.
class Reader {
  public:
    Reader(const Json& json, const std::string& path) : path_(path) {
        for (std::size_t i = 0; i < lengths_.size(); ++i) {
            const Json* list = find(json, kLists[i]).value;
            if (list != nullptr && list->is_array()) lengths_[i] = list->size();
        }
    }

    template <Structure T>
    void read(const Json& json, const Location& location, const Range&, T& to) const {
        require(json.is_object(), json, location, "an object");
        std::apply([&](const auto&... rule) { (readMember(json, location, rule, to), ...); },
                   kRules<T>);
        checkStructure(json, location, to);
    }

  private:
    template <class T, class M>
    void readMember(const Json& json, const Location& location, const Rule<T, M>& rule,
                    T& to) const {
        if (rule.presence != Presence::Tolerated)
            return readMember(json, location, rule.path, rule.range, rule.presence,
                              to.*rule.member);
        M value = to.*rule.member;
        try {
            readMember(json, location, rule.path, rule.range, Presence::Optional, value);
            to.*rule.member = std::move(value);
        } catch (const Error&) {
        }
    }

    template <class M>
    void readMember(const Json& json, const Location& location, std::string_view path,
                    const Range& range, Presence presence, M& to) const {
        const Found found = find(json, path);
        const Location inside{&location, path};
        if (found.value != nullptr) return read(*found.value, inside, range, to);
        if (found.holder == nullptr) return;
        require(found.holder->is_object(), *found.holder,
                Location{&location, path.substr(0, found.read)}, "an object");
        if (presence == Presence::Required) failMissing(inside);
    }

    // --- values ---

    void read(const Json& json, const Location& location, const Range&, bool& to) const {
        require(json.is_boolean(), json, location, "true or false");
        to = json.get<bool>();
    }

    void read(const Json& json, const Location& location, const Range&, double& to) const {
        constexpr double kMost = std::numeric_limits<float>::max();
        require(json.is_number() && std::abs(json.get<double>()) <= kMost, json, location,
                "a number of single precision");
        to = json.get<double>();
    }

    void read(const Json& json, const Location& location, const Range&,
              std::string_view& to) const {
        require(json.is_string(), json, location, "text");
        to = json.get_ref<const std::string&>();
    }

    void read(const Json& json, const Location& location, const Range& range,
              std::string& to) const {
        std::string_view text;
        read(json, location, range, text);
        to = text;
    }

    template <Whole T>
    void read(const Json& json, const Location& location, const Range& range, T& to) const {
        const auto length = range.of ? lengths_[static_cast<std::size_t>(*range.of)] : 0;
        const double end = static_cast<double>(range.of ? length : range.max + 1);
        // 2.0 and 2e0 are as whole as 2.
        const double number = json.is_number() ? json.get<double>() : -1;
        const bool whole = number >= 0 && number < end && std::floor(number) == number;
        if (!whole || static_cast<std::uint64_t>(number) % range.step != 0)
            refuse(json, location, range.of ? wantedIndex(*range.of) : range.wanted);
        to = static_cast<T>(number);
    }

    template <CodeValue T>
    void read(const Json& json, const Location& location, const Range& range, T& to) const {
        std::underlying_type_t<T> code = 0;
        read(json, location, range, code);
        to = static_cast<T>(code);
    }

    template <NamedValue T>
    void read(const Json& json, const Location& location, const Range& range, T& to) const {
        std::string_view text;
        read(json, location, range, text);
        for (const Named<T>& named : kNames<T>) {
            if (text != named.name) continue;
            to = named.value;
            return;
        }
        if (kOtherNames<T>) return;
        std::string names;
        for (const Named<T>& named : kNames<T>)
            names += (names.empty() ? "" : " or ") + std::string(named.name);
        refuse(json, location, names);
    }

    template <std::size_t N>
    void read(const Json& json, const Location& location, const Range& range,
              std::array<double, N>& to) const {
        require(json.is_array(), json, location, "a list");
        require(json.size() == N, json, location, fmt::format("a list of {} numbers", N));
        for (std::size_t i = 0; i < N; ++i)
            read(json[i], Location{&location, {}, i}, range, to[i]);
    }

    template <class T>
    void read(const Json& json, const Location& location, const Range& range,
              std::vector<T>& to) const {
        require(json.is_array(), json, location, "a list");
        for (std::size_t i = 0; i < json.size(); ++i)
            read(json[i], Location{&location, {}, i}, range, to.emplace_back());
    }

    void read(const Json& json, const Location& location, const Range& range,
              Attributes& to) const {
        require(json.is_object(), json, location, "an object");
        for (const auto& [name, value] : json.get_ref<const Json::object_t&>()) {
            const std::string shown = shortened(name);
            read(value, Location{&location, shown}, range, to[name]);
        }
    }

    template <class T>
    void read(const Json& json, const Location& location, const Range& range,
              std::optional<T>& to) const {
        read(json, location, range, to.emplace());
    }

    void read(const Json& json, const Location&, const Range&, Given& to) const {
        to.given = json.is_object();
    }

    void read(const Json& json, const Location& location, const Range&, MemberNames& to) const {
        require(json.is_object(), json, location, "an object");
        for (const auto& member : json.get_ref<const Json::object_t&>())
            to.names.emplace_back(member.first);
    }

    void read(const Json& json, const Location&, const Range&, const Json*& to) const {
        to = &json;
    }

    void read(const Json& json, const Location& location, const Range& range,
              OptionalTexture& to) const {
        if (!json.is_object()) return;
        try {
            read(json, location, range, to.info);
        } catch (const Error& error) {
            to = {std::nullopt, error.what()};
        }
    }

    void read(const Json& json, const Location& location, const Range& range, Pointer& to) const {
        std::string_view text;
        read(json, location, range, text);
        try {
            for (Json::json_pointer rest{std::string(text)}; !rest.empty(); rest.pop_back())
                to.tokens.push_back(rest.back());
            std::reverse(to.tokens.begin(), to.tokens.end());
        } catch (const Json::exception&) {
            refuse(json, location, "a JSON pointer");
        }
    }

    // --- checks across the members of a structure ---

    template <class T>
    void checkStructure(const Json&, const Location&, const T&) const {}

    void checkStructure(const Json&, const Location& location, const Camera& camera) const {
        const bool perspective = camera.type == CameraType::Perspective;
        if (perspective ? camera.perspective.has_value() : camera.orthographic.has_value()) return;
        failMissing({&location, perspective ? "perspective" : "orthographic"});
    }

    void checkStructure(const Json&, const Location& location,
                        const AnimationTarget& target) const {
        if (target.path == TargetPath::Pointer && !target.pointer)
            failMissing({&location, "extensions.KHR_animation_pointer"});
    }

    void checkStructure(const Json& json, const Location& location,
                        const Animation& animation) const {
        const Location channels{&location, "channels"};
        const int count = static_cast<int>(animation.samplers.size());
        for (std::size_t i = 0; i < animation.channels.size(); ++i) {
            if (animation.channels[i].sampler < count) continue;
            const Location channel{&channels, {}, i};
            refuse(json["channels"][i]["sampler"], {&channel, "sampler"},
                   wantedIndex(animation.samplers.size(), "samplers"));
        }
    }

    // --- errors ---

    [[noreturn]] void fail(const Location& location, const std::string& what) const {
        const std::string where = location.text();
        throw Error(Fault::Scene, fmt::format("{}: {} {}: export the file again", path_,
                                              where.empty() ? "the document" : where, what));
    }

    [[noreturn]] void failMissing(const Location& location) const { fail(location, "is missing"); }

    [[noreturn]] void refuse(const Json& json, const Location& location,
                             const std::string& wanted) const {
        const std::string value = json.dump(-1, ' ', true, Json::error_handler_t::replace);
        fail(location, fmt::format("is {} but must be {}", shortened(value), wanted));
    }

    void require(bool holds, const Json& json, const Location& location,
                 const std::string& wanted) const {
        if (!holds) refuse(json, location, wanted);
    }

    static std::string wantedIndex(std::size_t count, std::string_view name) {
        return count == 0 ? fmt::format("absent, as the file has no {}", name)
                          : fmt::format("one of its {} {}, counted from 0", count, name);
    }

    std::string wantedIndex(List list) const {
        const auto i = static_cast<std::size_t>(list);
        return wantedIndex(lengths_[i], kLists[i].substr(kLists[i].rfind('.') + 1));
    }

    const std::string& path_;
    std::array<std::size_t, std::size(kLists)> lengths_{};
};

template <class T>
T readBy(const Json& json, const std::string& path) {
    T result;
    Reader(json, path).read(json, {}, {}, result);
    return result;
}

}  // namespace

Document readDocument(const Json& json, const std::string& path) {
    return readBy<Document>(json, path);
}

Preamble readPreamble(const Json& json, const std::string& path) {
    return readBy<Preamble>(json, path);
}

}  // namespace tavora::studio::gltf
