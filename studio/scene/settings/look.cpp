#include "studio/scene/settings/look.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <set>
#include <system_error>

#include "studio/files/whole_file.h"
#include "studio/scene/settings/settings.h"
#include "studio/util/error.h"
#include "studio/util/json_text.h"
#include "studio/util/nearest_name.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace fs = std::filesystem;
namespace {

using Json = nlohmann::ordered_json;

// More than a look with the largest gradient that a surface can hold.
constexpr std::size_t kMaxBytes = std::size_t{512} << 20;
constexpr const char* kSuffix = ".json";

/// A look's text and file name, for messages with line and column.
struct Source {
    std::string_view text;
    const std::string& name;

    std::string positionText(std::string_view part) const {
        return positionInText(text, static_cast<std::size_t>(part.data() - text.data()), name);
    }
    [[noreturn]] void refuse(std::string_view part, const std::string& what) const {
        throw Error(Fault::Scene, fmt::format("{}: {}", positionText(part), what));
    }
};

// A JSON parser silently keeps the last of two members with the same name.
std::vector<JsonMember> uniqueMembers(const Source& source, std::string_view object) {
    std::vector<JsonMember> members = jsonMembers(object);
    std::set<std::string> seen;
    for (const JsonMember& member : members) {
        if (seen.insert(member.key).second) continue;
        source.refuse(member.keyText,
                      fmt::format("\"{}\" stands here again; keep one", shortened(member.key)));
    }
    return members;
}

void readMark(const Source& source, const JsonMember& member, Look&) {
    if (Json::parse(member.value) == "look") return;
    source.refuse(member.value, "this is not a look; its \"tavora\" must be \"look\"");
}

void readVersion(const Source& source, const JsonMember& member, Look&) {
    if (Json::parse(member.value) == 1) return;
    source.refuse(member.value, fmt::format("looks of version {} cannot be read; this Tavora reads "
                                            "version 1",
                                            shortened(member.value)));
}

std::string textOf(const Source& source, const JsonMember& member) {
    const Json value = Json::parse(member.value);
    if (value.is_string()) return value;
    source.refuse(member.value, fmt::format("\"{}\" must be a text", member.key));
}

void readName(const Source& source, const JsonMember& member, Look& look) {
    look.name = textOf(source, member);
}

void readDescription(const Source& source, const JsonMember& member, Look& look) {
    look.description = textOf(source, member);
}

// Applies settings one by one, so that a message can name the setting's line.
void readSettings(const Source& source, const JsonMember& member, Look& look) {
    if (member.value.front() != '{') {
        source.refuse(member.value, "\"settings\" must be an object of names and values");
    }
    for (const JsonMember& setting : uniqueMembers(source, member.value)) {
        const Json change = Json::object({{setting.key, parseJson(setting.value, source.name)}});
        applySettings(look.settings, change, source.positionText(setting.keyText));
    }
}

struct MemberHandler {
    const char* key;
    bool required;
    void (*read)(const Source&, const JsonMember&, Look&);
};

constexpr std::array<MemberHandler, 5> kMembers{{
    {"tavora", true, readMark},
    {"version", true, readVersion},
    {"name", false, readName},
    {"description", false, readDescription},
    {"settings", true, readSettings},
}};

const JsonMember* memberOf(const std::vector<JsonMember>& members, const char* key) {
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&](const JsonMember& member) { return member.key == key; });
    return found == members.end() ? nullptr : &*found;
}

void checkKeys(const Source& source, const std::vector<JsonMember>& members) {
    std::vector<std::string> known;
    known.reserve(kMembers.size());
    for (const MemberHandler& handler : kMembers)
        known.emplace_back(handler.key);
    for (const JsonMember& member : members) {
        if (std::find(known.begin(), known.end(), member.key) != known.end()) continue;
        source.refuse(member.keyText, fmt::format("a look has no \"{}\"{}", shortened(member.key),
                                                  nearestNames(member.key, known)));
    }
}

std::string withoutByteOrderMark(const std::string& bytes) {
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    return bytes.starts_with(kByteOrderMark) ? bytes.substr(kByteOrderMark.size()) : bytes;
}

std::string readText(const fs::path& file) {
    try {
        return withoutByteOrderMark(readWholeFile(file, kMaxBytes));
    } catch (const std::system_error& error) {
        throw Error(Fault::Scene, fmt::format("{}: look cannot be read: {}; check the path",
                                              file.string(), error.code().message()));
    }
}

bool isBareName(const std::string& nameOrFile) {
    return nameOrFile.find('/') == std::string::npos && !nameOrFile.ends_with(kSuffix) &&
           !nameOrFile.empty();
}

// A bare name means the shipped look of that name if there is one, else a file.
fs::path fileOfLook(const std::string& nameOrFile) {
    fs::path shipped = shippedLooksFolder() / (nameOrFile + kSuffix);
    std::error_code ignored;
    return isBareName(nameOrFile) && fs::exists(shipped, ignored) ? shipped : fs::path(nameOrFile);
}

fs::path findLook(const std::string& nameOrFile) {
    if (!isBareName(nameOrFile) || isLook(nameOrFile)) return fileOfLook(nameOrFile);
    const std::vector<std::string> names = shippedLooks();
    throw Error(Fault::Scene, fmt::format("no look \"{}\"{}", nameOrFile,
                                          names.empty() ? fmt::format("; none ship in {}",
                                                                      shippedLooksFolder().string())
                                                        : nearestNames(nameOrFile, names)));
}

}  // namespace

Look parseLook(std::string_view text, const std::string& where) {
    const Source source{text, where};
    if (!parseJson(text, where).is_object()) {
        throw Error(Fault::Scene, fmt::format("{}: is no look; it must be a JSON object", where));
    }
    const std::vector<JsonMember> members = uniqueMembers(source, text);
    Look look;
    look.settings = Json::object();
    for (const MemberHandler& handler : kMembers) {
        const JsonMember* member = memberOf(members, handler.key);
        if (member != nullptr) {
            handler.read(source, *member, look);
        } else if (handler.required) {
            throw Error(Fault::Scene,
                        fmt::format("{}: is no look; it has no \"{}\"", where, handler.key));
        }
    }
    checkKeys(source, members);
    return look;
}

Look readLook(const std::string& nameOrFile) {
    const fs::path file = findLook(nameOrFile);
    Look look = parseLook(readText(file), file.string());
    if (look.name.empty()) look.name = file.stem();
    return look;
}

bool isLook(const std::string& nameOrFile) {
    std::error_code ignored;
    return !nameOrFile.empty() && fs::exists(fileOfLook(nameOrFile), ignored);
}

fs::path shippedLooksFolder() {
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    return program.parent_path().parent_path() / "share/tavora/looks";
}

std::vector<std::string> shippedLooks() {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(shippedLooksFolder(), error)) {
        if (entry.path().extension() == kSuffix) names.push_back(entry.path().stem());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace tavora::studio
