#include "studio/scene/gltf/document_pointer.h"

#include <algorithm>
#include <charconv>

#include "studio/scene/gltf/document_rules.h"

namespace tavora::studio::gltf {
namespace {

using Tokens = std::span<const std::string>;

/// The index below `size` that a token names, if it does.
std::optional<std::size_t> indexOf(const std::string& token, std::size_t size) {
    std::size_t index = 0;
    const char* end = token.data() + token.size();
    const auto [stop, error] = std::from_chars(token.data(), end, index);
    if (error != std::errc() || stop != end || index >= size) return std::nullopt;
    return index;
}

/// Whether `tokens` begin with the parts of a rule's path; if so, removes these.
bool removePath(std::string_view path, Tokens& tokens) {
    Tokens rest = tokens;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('.'));
        if (rest.empty() || rest.front() != part) return false;
        rest = rest.subspan(1);
        path.remove_prefix(std::min(part.size() + 1, path.size()));
    }
    tokens = rest;
    return true;
}

/// Finds the member that tokens name inside a value of the document.
struct Finder {
    /// For values that can neither be animated nor contain such members.
    template <class T>
    static MemberRef find(T&, Tokens) {
        return {};
    }

    static MemberRef find(double& number, Tokens tokens) {
        return tokens.empty() ? MemberRef{{&number, 1}} : MemberRef{};
    }

    static MemberRef find(bool& flag, Tokens tokens) {
        return tokens.empty() ? MemberRef{{}, &flag} : MemberRef{};
    }

    template <std::size_t N>
    static MemberRef find(std::array<double, N>& numbers, Tokens tokens) {
        return tokens.empty() ? MemberRef{numbers} : MemberRef{};
    }

    static MemberRef find(std::vector<double>& numbers, Tokens tokens) {
        return tokens.empty() ? MemberRef{{}, nullptr, &numbers} : MemberRef{};
    }

    template <Structure T>
    static MemberRef find(T& object, Tokens tokens) {
        MemberRef found;
        const auto tryRule = [&](const auto& rule) {
            Tokens rest = tokens;
            if (!found.exists() && removePath(rule.path, rest))
                found = find(object.*rule.member, rest);
        };
        std::apply([&](const auto&... rule) { (tryRule(rule), ...); }, kRules<T>);
        return found;
    }

    template <class T>
    static MemberRef find(std::optional<T>& value, Tokens tokens) {
        return value ? find(*value, tokens) : MemberRef{};
    }

    static MemberRef find(OptionalTexture& texture, Tokens tokens) {
        return find(texture.info, tokens);
    }

    template <Structure T>
    static MemberRef find(std::vector<T>& list, Tokens tokens) {
        if (tokens.empty()) return {};
        const std::optional<std::size_t> index = indexOf(tokens.front(), list.size());
        return index ? find(list[*index], tokens.subspan(1)) : MemberRef{};
    }
};

}  // namespace

MemberRef memberAt(Document& document, const Pointer& pointer) {
    return Finder::find(document, Tokens(pointer.tokens));
}

}  // namespace tavora::studio::gltf
