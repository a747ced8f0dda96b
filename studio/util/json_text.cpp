#include "studio/util/json_text.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <utility>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxDepth = 128;
constexpr std::string_view kSpaces = " \t\r\n";

// Scans the members or elements in JSON text that is known to be valid, without checks.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {
        skipSpaces();
        ++offset_;  // the opening bracket
        skipSpaces();
    }

    bool atEnd() const { return text_[offset_] == '}' || text_[offset_] == ']'; }

    std::string_view value() {
        const std::size_t start = offset_;
        skipValue();
        return text_.substr(start, offset_ - start);
    }

    void skip(char separator) {
        skipSpaces();
        if (text_[offset_] == separator) ++offset_;
        skipSpaces();
    }

  private:
    void skipSpaces() {
        offset_ = std::min(text_.find_first_not_of(kSpaces, offset_), text_.size());
    }

    void skipString() {
        for (++offset_; text_[offset_] != '"'; ++offset_) {
            if (text_[offset_] == '\\') ++offset_;
        }
        ++offset_;
    }

    // Counts brackets in place of recursion, since containers may be nested deeply.
    void skipValue() {
        std::size_t depth = 0;
        do {
            const char c = text_[offset_];
            if (c == '"') {
                skipString();
            } else if (c == '{' || c == '[') {
                ++depth;
                ++offset_;
            } else if (c == '}' || c == ']') {
                --depth;
                ++offset_;
            } else if (depth > 0) {
                ++offset_;
            } else {
                offset_ = std::min(text_.find_first_of(" \t\r\n,}]", offset_), text_.size());
            }
        } while (depth > 0);
    }

    std::string_view text_;
    std::size_t offset_ = 0;
};

std::string keyOf(std::string_view quoted) {
    if (quoted.find('\\') == std::string_view::npos) {
        return std::string(quoted.substr(1, quoted.size() - 2));
    }
    return nlohmann::json::parse(quoted).get<std::string>();
}

// The parser's message without its prefix and without the bytes that it quotes.
std::string reasonIn(std::string text) {
    text.resize(std::min(text.find("; last read"), text.size()));
    const std::size_t start = text.rfind(" - ");
    return start == std::string::npos ? "it breaks off" : text.substr(start + 3);
}

/// Builds the tree of a document from the parser's events. The parser's own builder searches all
/// earlier members of an object for each new one, and copies the tree as it grows.
class TreeBuilder {
  public:
    bool null() { return add(nullptr); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(std::int64_t value) { return add(value); }
    bool number_unsigned(std::uint64_t value) { return add(value); }
    bool number_float(double value, const std::string&) { return add(value); }
    bool string(std::string& value) { return add(std::move(value)); }
    bool binary(Json::binary_t&) { return false; }  // not in text
    bool start_object(std::size_t) { return open(Json::object()); }
    bool start_array(std::size_t) { return open(Json::array()); }

    bool key(std::string& key) {
        key_ = std::move(key);
        return true;
    }

    bool end_object() {
        const auto first = firstInside();
        std::vector<bool> isLast = lastOfEachKey();
        auto& members = (first - 1)->value.get_ref<Json::object_t&>();
        members.reserve(static_cast<std::size_t>(entries_.end() - first));
        for (auto entry = first; entry != entries_.end(); ++entry) {
            if (!isLast.empty() && !isLast[static_cast<std::size_t>(entry - first)]) continue;
            members.emplace_back(std::move(entry->key), std::move(entry->value));
        }
        return close(first);
    }

    bool end_array() {
        const auto first = firstInside();
        auto& elements = (first - 1)->value.get_ref<Json::array_t&>();
        elements.reserve(static_cast<std::size_t>(entries_.end() - first));
        for (auto entry = first; entry != entries_.end(); ++entry)
            elements.push_back(std::move(entry->value));
        return close(first);
    }

    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::detail::exception& error) {
        constexpr int kNumberOutOfRange = 406;
        if (error.id != kNumberOutOfRange) reason_ = reasonIn(error.what());
        errorOffset_ = position > 0 ? position - 1 : 0;
        return false;
    }

    Json& tree() { return entries_.front().value; }
    bool isTooDeep() const { return open_.size() > kMaxDepth; }
    const std::string& reason() const { return reason_; }
    std::size_t errorOffset() const { return errorOffset_; }

  private:
    /// A value in a container that is still open. The entries are a stack: each open container,
    /// still empty, is followed by the values in it.
    struct Entry {
        std::string key;
        Json value;
    };

    bool add(Json value) {
        entries_.push_back({std::move(key_), std::move(value)});
        return true;
    }

    bool open(Json value) {
        open_.push_back(entries_.size());
        return add(std::move(value)) && !isTooDeep();
    }

    std::vector<Entry>::iterator firstInside() {
        return entries_.begin() + static_cast<std::ptrdiff_t>(open_.back() + 1);
    }

    bool close(std::vector<Entry>::iterator first) {
        entries_.erase(first, entries_.end());
        open_.pop_back();
        return true;
    }

    /// Which members of the innermost object are the last of their key. Empty when all are.
    std::vector<bool> lastOfEachKey() {
        const auto first = firstInside();
        std::vector<std::pair<std::string_view, std::size_t>> keys;
        keys.reserve(static_cast<std::size_t>(entries_.end() - first));
        for (auto entry = first; entry != entries_.end(); ++entry)
            keys.emplace_back(entry->key, keys.size());
        std::sort(keys.begin(), keys.end());
        std::vector<bool> counts;
        for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
            if (keys[i].first != keys[i + 1].first) continue;
            counts.resize(keys.size(), true);
            counts[keys[i].second] = false;
        }
        return counts;
    }

    std::vector<Entry> entries_;
    std::vector<std::size_t> open_;  // the indices of the open containers' entries
    std::string key_;
    std::string reason_;
    std::size_t errorOffset_ = 0;
};

}  // namespace

Json parseJson(std::string_view text, const std::string& where) {
    TreeBuilder builder;
    if (Json::sax_parse(text, &builder)) return std::move(builder.tree());
    if (builder.isTooDeep()) {
        throw Error(Fault::Scene,
                    fmt::format("{}: its JSON is nested deeper than {}; correct the file", where,
                                kMaxDepth));
    }
    if (builder.reason().empty()) {
        throw Error(Fault::Scene,
                    fmt::format("{}: holds a number too large to read; correct it", where));
    }
    throw Error(Fault::Scene,
                fmt::format("{}: not valid JSON ({}); correct the file there",
                            positionInText(text, builder.errorOffset(), where), builder.reason()));
}

std::string positionInText(std::string_view text, std::size_t offset, const std::string& where) {
    const std::string_view before = text.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineEnd = before.rfind('\n');
    const std::size_t lineStart = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
    return fmt::format("{}:{}:{}", where, line, before.size() - lineStart + 1);
}

std::vector<JsonMember> jsonMembers(std::string_view object) {
    std::vector<JsonMember> members;
    Scanner scanner(object);
    while (!scanner.atEnd()) {
        const std::string_view key = scanner.value();
        scanner.skip(':');
        members.push_back({keyOf(key), key, scanner.value()});
        scanner.skip(',');
    }
    return members;
}

std::vector<std::string_view> jsonElements(std::string_view array) {
    std::vector<std::string_view> elements;
    Scanner scanner(array);
    while (!scanner.atEnd()) {
        elements.push_back(scanner.value());
        scanner.skip(',');
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
