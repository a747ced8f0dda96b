#include "studio/scene/settings/look.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/settings/settings.h"
#include "tests/files/temporary_folder.h"
#include "tests/scene/settings_samples.h"

namespace tavora::studio {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// A look with `settings` on its third line.
std::string lookText(const std::string& settings) {
    return "{\"tavora\": \"look\", \"version\": 1,\n \"name\": \"N\", \"description\": \"D\",\n "
           "\"settings\": " +
           settings + "\n}\n";
}

TEST(Look, ReadsAFileInTheFormOfSettings) {
    const TemporaryFolder folder;
    putBytes(folder / "a.json",
             "\xef\xbb\xbf" + lookText(R"({"edgeColor": "#00ff00", "slopeStyle": 1})"));
    const Look look = readLook(folder / "a.json");
    EXPECT_EQ(look.name, "N");
    EXPECT_EQ(look.description, "D");
    EXPECT_EQ(look.settings.dump(), R"({"edgeColor":[0.0,1.0,0.0],"slopeStyle":"Step"})");
    const Look written = parseLook(
        R"({"t\u0061vora":"l\u006fok","version":1.0,"settings":{"maxTraceDepth":3.0}})", "x");
    EXPECT_EQ(written.settings.dump(), R"({"maxTraceDepth":3})") << "by another program";
}

struct Refused {
    std::string text;
    const char* says;
};

TEST(Look, SaysWhereItIsWrong) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const Refused cases[] = {
        {"", "look.json:1:1: not valid JSON"},
        {"{\"tavora\": \"look\",\n \"version\": 1,\n ]", "look.json:3:2: not valid JSON"},
        {"{} // no comments", "look.json:1:4: not valid JSON"},
        {"{\"a\": \"\xff\"}", "not valid JSON"},
        {"{\"a\": 1e999}", "number too large"},
        {"[]", "must be a JSON object"},
        {R"({"version": 1, "settings": {}})", "has no \"tavora\""},
        {R"({"tavora": "scene", "version": 1, "settings": {}})",
         "look.json:1:12: this is not a look"},
        {R"({"tavora": "look", "version": 2, "settings": {}})",
         "look.json:1:31: looks of version 2"},
        {R"({"tavora": "look", "version": 1})", "has no \"settings\""},
        {R"({"tavora": "look", "version": 1, "settings": {}, "descripton": ""})",
         "did you mean description"},
        {lookText("[]"), "look.json:3:14: \"settings\" must be an object"},
        {lookText("{\n  \"edgeEnable\": true,\n  \"edgeCoverige\": 1}"),
         "look.json:5:3: unknown setting \"edgeCoverige\"; did you mean edgeCoverage"},
        {lookText("{\n  \"edgeCoverage\": 20}"), "look.json:4:3: edgeCoverage must be"},
        {lookText("{\"edgeEnable\": true,\n \"edgeEnable\": false}"),
         "look.json:4:2: \"edgeEnable\" stands here again"},
        {lookText(R"({"zones[0].color": "#ffffff"})"), "give the whole list"},
        {lookText("{\"zones\": " + deep + "}"), "nested deeper than 128"},
    };
    for (const Refused& refused : cases) {
        const std::string message = refusal([&] { parseLook(refused.text, "look.json"); });
        EXPECT_THAT(message, HasSubstr(refused.says)) << refused.text.substr(0, 200);
        EXPECT_EQ(message.find('\n'), std::string::npos);
    }
}

TEST(Look, FilesThatCannotBeReadAreNamed) {
    const TemporaryFolder folder;
    const std::string none = folder / "none.json";
    EXPECT_THAT(refusal([&] { readLook(none); }), StartsWith(none + ": look cannot be read"));
    EXPECT_THAT(refusal([&] { readLook(folder.path().string() + "/"); }),
                HasSubstr("cannot be read"));
    EXPECT_THAT(refusal([] { readLook("no-such-look"); }), StartsWith("no look \"no-such-look\""));
}

}  // namespace
}  // namespace tavora::studio
