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

/// Where a value stands: a member of what stands at `outer`, or an element.
struct Place {
    const Place* outer = nullptr;
    std::string_view member;
    std::size_t element = 0;

    std::string text() const {
        if (outer == nullptr) return "";
        const std::string before = outer->text();
        if (member.empty()) return fmt::format("{}[{}]", before, element);
        return before + (before.empty() ? "" : ".") + std::string(member);
    }
};

/// The member at "a.b" or "a.b.c" of an object, found part by part.
struct Found {
    const Json* value = nullptr;   ///< null where there is none
    const Json* holder = nullptr;  ///< the object that has or lacks it; null where none is
    std::size_t read = 0;          ///< how much of the path leads to the holder
};

Found find(const Json& object, std::string_view path) {
    Found found{nullptr, &object, 0};
    for (std::size_t start = 0;;) {
        const std::size_t dot = path.find('.', start);
        const std::string_view name = path.substr(start, dot - start);
        if (!found.holder->is_object()) return found;
        const auto member = found.holder->find(name);
        const bool last = dot == std::string_view::npos;
        // A null is what some exporters write for a member that they do not have.
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

/// A number that some codes name, others may follow.
template <class T>
concept CodeValue = std::is_enum_v<T> && !NamedValue<T>;

template <class T>
concept Whole = std::integral<T> && !std::same_as<T, bool>;

/// Reads a document by the rules.
class Reader {
  public:
    Reader(const Json& json, const std::string& path) : path_(path) {
        for (std::size_t i = 0; i < lengths_.size(); ++i) {
            const Json* list = find(json, kLists[i]).value;
            if (list != nullptr && list->is_array()) lengths_[i] = list->size();
        }
    }

    template <Structure T>
    void read(const Json& json, const Place& place, const Range&, T& to) const {
        need(json.is_object(), json, place, "an object");
        std::apply([&](const auto&... rule) { (readMember(json, place, rule, to), ...); },
                   kRules<T>);
        checkWhole(json, place, to);
    }

  private:
    template <class T, class M>
    void readMember(const Json& json, const Place& place, const Rule<T, M>& rule, T& to) const {
        if (rule.need != Need::Tolerated)
            return readMember(json, place, rule.path, rule.range, rule.need, to.*rule.member);
        M attempt = to.*rule.member;
        try {
            readMember(json, place, rule.path, rule.range, Need::Optional, attempt);
            to.*rule.member = std::move(attempt);
        } catch (const Error&) {
        }
    }

    template <class M>
    void readMember(const Json& json, const Place& place, std::string_view path, const Range& range,
                    Need need_, M& to) const {
        const Found found = find(json, path);
        const Place inside{&place, path};
        if (found.value != nullptr) return read(*found.value, inside, range, to);
        if (found.holder == nullptr) return;
        need(found.holder->is_object(), *found.holder, Place{&place, path.substr(0, found.read)},
             "an object");
        if (need_ == Need::Needed) failMissing(inside);
    }

    // --- values ---

    void read(const Json& json, const Place& place, const Range&, bool& to) const {
        need(json.is_boolean(), json, place, "true or false");
        to = json.get<bool>();
    }

    void read(const Json& json, const Place& place, const Range&, double& to) const {
        constexpr double kMost = std::numeric_limits<float>::max();
        need(json.is_number() && std::abs(json.get<double>()) <= kMost, json, place,
             "a number of single precision");
        to = json.get<double>();
    }

    void read(const Json& json, const Place& place, const Range&, std::string_view& to) const {
        need(json.is_string(), json, place, "text");
        to = json.get_ref<const std::string&>();
    }

    void read(const Json& json, const Place& place, const Range& range, std::string& to) const {
        std::string_view text;
        read(json, place, range, text);
        to = text;
    }

    template <Whole T>
    void read(const Json& json, const Place& place, const Range& range, T& to) const {
        const auto length = range.of ? lengths_[static_cast<std::size_t>(*range.of)] : 0;
        const double end = static_cast<double>(range.of ? length : range.most + 1);
        // 2.0 and 2e0 are as whole as 2.
        const double number = json.is_number() ? json.get<double>() : -1;
        const bool whole = number >= 0 && number < end && std::floor(number) == number;
        if (!whole || static_cast<std::uint64_t>(number) % range.step != 0)
            refuse(json, place, range.of ? wantedIndex(*range.of) : range.wanted);
        to = static_cast<T>(number);
    }

    template <CodeValue T>
    void read(const Json& json, const Place& place, const Range& range, T& to) const {
        std::underlying_type_t<T> code = 0;
        read(json, place, range, code);
        to = static_cast<T>(code);
    }

    template <NamedValue T>
    void read(const Json& json, const Place& place, const Range& range, T& to) const {
        std::string_view text;
        read(json, place, range, text);
        for (const Named<T>& named : kNames<T>) {
            if (text != named.name) continue;
            to = named.value;
            return;
        }
        if (kOtherNames<T>) return;
        std::string names;
        for (const Named<T>& named : kNames<T>)
            names += (names.empty() ? "" : " or ") + std::string(named.name);
        refuse(json, place, names);
    }

    template <std::size_t N>
    void read(const Json& json, const Place& place, const Range& range,
              std::array<double, N>& to) const {
        need(json.is_array(), json, place, "a list");
        need(json.size() == N, json, place, fmt::format("a list of {} numbers", N));
        for (std::size_t i = 0; i < N; ++i)
            read(json[i], Place{&place, {}, i}, range, to[i]);
    }

    template <class T>
    void read(const Json& json, const Place& place, const Range& range, std::vector<T>& to) const {
        need(json.is_array(), json, place, "a list");
        for (std::size_t i = 0; i < json.size(); ++i)
            read(json[i], Place{&place, {}, i}, range, to.emplace_back());
    }

    void read(const Json& json, const Place& place, const Range& range, Attributes& to) const {
        need(json.is_object(), json, place, "an object");
        for (const auto& [name, value] : json.get_ref<const Json::object_t&>()) {
            const std::string shown = shortened(name);
            read(value, Place{&place, shown}, range, to[name]);
        }
    }

    template <class T>
    void read(const Json& json, const Place& place, const Range& range,
              std::optional<T>& to) const {
        read(json, place, range, to.emplace());
    }

    void read(const Json& json, const Place&, const Range&, Given& to) const {
        to.given = json.is_object();
    }

    void read(const Json& json, const Place& place, const Range&, MemberNames& to) const {
        need(json.is_object(), json, place, "an object");
        for (const auto& member : json.get_ref<const Json::object_t&>())
            to.names.emplace_back(member.first);
    }

    void read(const Json& json, const Place&, const Range&, const Json*& to) const { to = &json; }

    void read(const Json& json, const Place& place, const Range& range, SpareTexture& to) const {
        if (!json.is_object()) return;
        try {
            read(json, place, range, to.info);
        } catch (const Error& error) {
            to = {std::nullopt, error.what()};
        }
    }

    void read(const Json& json, const Place& place, const Range& range, Pointer& to) const {
        std::string_view text;
        read(json, place, range, text);
        try {
            for (Json::json_pointer rest{std::string(text)}; !rest.empty(); rest.pop_back())
                to.tokens.push_back(rest.back());
            std::reverse(to.tokens.begin(), to.tokens.end());
        } catch (const Json::exception&) {
            refuse(json, place, "a JSON pointer");
        }
    }

    // --- what the members of one structure must be to each other ---

    template <class T>
    void checkWhole(const Json&, const Place&, const T&) const {}

    void checkWhole(const Json&, const Place& place, const Camera& camera) const {
        const bool perspective = camera.type == CameraType::Perspective;
        if (perspective ? camera.perspective.has_value() : camera.orthographic.has_value()) return;
        failMissing({&place, perspective ? "perspective" : "orthographic"});
    }

    void checkWhole(const Json&, const Place& place, const AnimationTarget& target) const {
        if (target.path == TargetPath::Pointer && !target.pointer)
            failMissing({&place, "extensions.KHR_animation_pointer"});
    }

    void checkWhole(const Json& json, const Place& place, const Animation& animation) const {
        const Place channels{&place, "channels"};
        const int count = static_cast<int>(animation.samplers.size());
        for (std::size_t i = 0; i < animation.channels.size(); ++i) {
            if (animation.channels[i].sampler < count) continue;
            const Place channel{&channels, {}, i};
            refuse(json["channels"][i]["sampler"], {&channel, "sampler"},
                   wantedIndex(animation.samplers.size(), "samplers"));
        }
    }

    // --- refusals ---

    [[noreturn]] void fail(const Place& place, const std::string& what) const {
        const std::string where = place.text();
        throw Error(Fault::Scene, fmt::format("{}: {} {}: export the file again", path_,
                                              where.empty() ? "the document" : where, what));
    }

    [[noreturn]] void failMissing(const Place& place) const { fail(place, "is missing"); }

    [[noreturn]] void refuse(const Json& json, const Place& place,
                             const std::string& wanted) const {
        const std::string value = json.dump(-1, ' ', true, Json::error_handler_t::replace);
        fail(place, fmt::format("is {} but must be {}", shortened(value), wanted));
    }

    void need(bool holds, const Json& json, const Place& place, const std::string& wanted) const {
        if (!holds) refuse(json, place, wanted);
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
