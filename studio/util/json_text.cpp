#include "studio/util/json_text.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr std::string_view kSpaces = " \t\r\n";

// Walks text that is known to be valid, so nothing is checked on the way.
class Walk {
  public:
    explicit Walk(std::string_view text) : text_(text) {
        skipSpaces();
        ++at_;  // the opening bracket
        skipSpaces();
    }

    bool atEnd() const { return text_[at_] == '}' || text_[at_] == ']'; }

    std::string_view value() {
        const std::size_t start = at_;
        skipValue();
        return text_.substr(start, at_ - start);
    }

    void skip(char separator) {
        skipSpaces();
        if (text_[at_] == separator) ++at_;
        skipSpaces();
    }

  private:
    void skipSpaces() { at_ = std::min(text_.find_first_not_of(kSpaces, at_), text_.size()); }

    void skipString() {
        for (++at_; text_[at_] != '"'; ++at_) {
            if (text_[at_] == '\\') ++at_;
        }
        ++at_;
    }

    // Containers by counting, not by recursion: they may be nested deep.
    void skipValue() {
        std::size_t depth = 0;
        do {
            const char c = text_[at_];
            if (c == '"') {
                skipString();
            } else if (c == '{' || c == '[') {
                ++depth;
                ++at_;
            } else if (c == '}' || c == ']') {
                --depth;
                ++at_;
            } else if (depth > 0) {
                ++at_;
            } else {
                at_ = std::min(text_.find_first_of(" \t\r\n,}]", at_), text_.size());
            }
        } while (depth > 0);
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

std::string keyOf(std::string_view quoted) {
    if (quoted.find('\\') == std::string_view::npos) {
        return std::string(quoted.substr(1, quoted.size() - 2));
    }
    return nlohmann::json::parse(quoted).get<std::string>();
}

// The parser's own text without its prefix and without the bytes it choked on.
std::string reasonIn(std::string text) {
    text.resize(std::min(text.find("; last read"), text.size()));
    const std::size_t start = text.rfind(" - ");
    return start == std::string::npos ? "it breaks off" : text.substr(start + 3);
}

}  // namespace

nlohmann::ordered_json parseJson(std::string_view text, const std::string& where) {
    try {
        return nlohmann::ordered_json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        const std::size_t at = error.byte > 0 ? error.byte - 1 : 0;
        throw Error(Fault::Scene,
                    fmt::format("{}: not valid JSON ({}); correct the file there",
                                placeInText(text, at, where), reasonIn(error.what())));
    } catch (const nlohmann::json::exception&) {
        throw Error(Fault::Scene,
                    fmt::format("{}: holds a number too large to read; correct it", where));
    }
}

std::string placeInText(std::string_view text, std::size_t offset, const std::string& where) {
    const std::string_view before = text.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineEnd = before.rfind('\n');
    const std::size_t lineStart = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
    return fmt::format("{}:{}:{}", where, line, before.size() - lineStart + 1);
}

std::vector<JsonMember> jsonMembers(std::string_view object) {
    std::vector<JsonMember> members;
    Walk walk(object);
    while (!walk.atEnd()) {
        const std::string_view key = walk.value();
        walk.skip(':');
        members.push_back({keyOf(key), key, walk.value()});
        walk.skip(',');
    }
    return members;
}

std::vector<std::string_view> jsonElements(std::string_view array) {
    std::vector<std::string_view> elements;
    Walk walk(array);
    while (!walk.atEnd()) {
        elements.push_back(walk.value());
        walk.skip(',');
    }
    return elements;
}

std::string_view jsonMember(std::string_view object, std::string_view key) {
    std::string_view found;
    for (const JsonMember& member : jsonMembers(object)) {
        if (member.key == key) found = member.value;
    }
    return found;
}

std::string withMember(std::string_view object, std::string_view key, std::string_view value) {
    std::string text(object);
    const std::vector<JsonMember> members = jsonMembers(object);
    const auto offset = [&](std::string_view part) {
        return static_cast<std::size_t>(part.data() - object.data());
    };
    const auto found = std::find_if(members.rbegin(), members.rend(),
                                    [&](const JsonMember& member) { return member.key == key; });
    if (found != members.rend()) {
        return text.replace(offset(found->value), found->value.size(), value);
    }
    const std::string member = fmt::format("{}:{}", nlohmann::json(key).dump(), value);
    if (members.empty()) return text.insert(text.find('{') + 1, member);
    const std::string_view last = members.back().value;
    return text.insert(offset(last) + last.size(), "," + member);
}

}  // namespace tavora::studio
