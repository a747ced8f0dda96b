// Which lights count, for the intensity and for highlights.

#include <cmath>

#include "plugin/record/services.h"
#include "shading/highlight.h"
#include "shading/light_intensity.h"
#include "shading/render_pass.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

const Vec surface = {0.25, 0.5, 0.75}, black = {0, 0, 0}, white = {1, 1, 1};

struct Lights : ::testing::Test {
    double measure() {
        const HostSample sample = upwardSample();
        host.log.clear();
        SceneLights all;
        return cb_lightIntensity(record.get(), &sample, all);
    }
    Vec highlights() {
        HostSample sample = upwardSample(surface);
        SceneLights all;
        drawSpec(record.get(), &sample, all);
        EXPECT_EQ(record->lightCursor, nullptr);
        return colorOf(sample);
    }

    FakeHost host;
    Record record = newRecord();
};

TEST_F(Lights, CountWhereTheyReachTheFront) {
    const struct {
        Vec direction;
        bool reaches;
        double sum, illum;
    } cases[] = {
        {{0, -0.5, 0}, true, 0.5, 1},  {{0, -0.5, 0}, false, 0, 0},
        {{0, 1e-300, 0}, true, 0, 0},  {{1, 0, 0}, true, 0, 1},  // edge-on: its colour only
        {{0, -1e-300, 0}, true, 0, 1}, {{0, nan, 0}, true, 0, 0},
    };
    for (const auto& c : cases) {
        host.lights = {{.direction = c.direction, .reaches = c.reaches}};
        EXPECT_NEAR(measure(), c.sum, 1e-200);
        EXPECT_EQ(colorIllum[0], c.illum) << c.direction[1];
        EXPECT_EQ(record->lightCursor, record->lightList);
    }
}

TEST_F(Lights, AreNotAskedOnceTheSumIsAboveOne) {
    host.ambient = {0.5, 0.5, 0.5};
    host.lights = {{.direction = {0, -0.5, 0}},  // the sum is 1.0: not above
                   {.arriving = {9, 9, 9}, .reaches = false},
                   {.arriving = {0.25, 0.25, 0.25}},
                   {.arriving = {9, 9, 9}}};
    EXPECT_EQ(measure(), 1.0);
    EXPECT_EQ(colorIllum[0], 0.5 + 1.0 + 0.25);
    EXPECT_EQ(host.log, "iii");
    // A bright ambient light asks up to the first that reaches, even from behind.
    host.ambient = {2, 2, 2};
    host.lights[0].reaches = false;
    host.lights[2].direction = {0, 1, 0};
    EXPECT_EQ(measure(), 1.0);
    EXPECT_EQ(colorIllum[0], 2.0);
    EXPECT_EQ(host.log, "iii");
}

TEST_F(Lights, CountByNameAndByEntryWhenChosen) {
    record->useAllLights = 0;
    host.ambient = {0.125, 0.125, 0.125};
    host.lights = {{.name = "Key", .direction = {0, -0.25, 0}},
                   {.name = "key", .direction = {0, -0.5, 0}},
                   {.name = "Key", .direction = {0, -0.25, 0}}};
    const struct {
        Names chosen;
        double sum, illum;
    } cases[] = {
        {{}, 0, 0},
        {{"Nobody", "Ke", "Keys", "ambient"}, 0, 0},
        {{"Key"}, 0.5, 2},
        {{"key", "Ambient", "Ambient"}, 0.75, 1.25},
        {{"key", "key", "Key", "key"}, 1.0, 4},             // the next entry still asks, once
        {{"key", "Ambient", "Ambient", "Key"}, 1.0, 3.25},  // 1.0 on the way is not above
    };
    for (const auto& c : cases) {
        chooseLights(*record, c.chosen);
        EXPECT_EQ(measure(), c.sum);
        EXPECT_EQ(colorIllum[0], c.illum);
        EXPECT_EQ(record->lightCursor, nullptr);
    }
    host.lights[0].name = "Ambient";
    chooseLights(*record, {"Ambient"});
    EXPECT_EQ(measure(), 0.375) << "both the ambient light and one of its name";
}

TEST_F(Lights, AreToldApartByTheirWholeNamesHoweverMany) {
    record->useAllLights = 0;
    for (const int many : {7, 8, 9, 127, 128, 129, 140}) {
        host.lights.clear();
        for (int i = 0; i < many; ++i) {
            const std::string name = (i % 2 == 0 ? "A lamp in hall " : "B lamp in hall ");
            host.lights.push_back({name + std::to_string(10 + i / 2), {i / 4096.0, 0, 0}});
        }
        const int last = many - 1;
        chooseLights(*record, {"B lamp in hall 10", "A lamp in hall 12", host.lights.back().name,
                               "A lamp", "A lamp in hall 12"});
        host.namesAsked = 0;
        measure();
        EXPECT_EQ(colorIllum[0] * 4096, 1 + 4 + last + 4) << many;
        const int beyond = std::max(0, many - 128);
        EXPECT_EQ(host.namesAsked, many - beyond + 5 * beyond) << "once for each remembered";
        record->useAllLights = 1;
        measure();
        EXPECT_EQ(colorIllum[0] * 4096, last * many / 2);
        record->useAllLights = 0;
    }
}

TEST_F(Lights, PowerCurveIsARootCappedAtOne) {
    const auto curve = [&](double sum, int power) {
        host.ambient = {3 * sum, 0, 0};
        record->lightPower = power;
        return measure();
    };
    EXPECT_EQ(curve(0.25, 1), 0.5);
    EXPECT_NEAR(curve(0.125, 2), 0.5, 1e-5);
    EXPECT_EQ(curve(0.25, 3), 0.25);
    EXPECT_NEAR(curve(0.9025, 1), 0.95, 1e-12);
    EXPECT_EQ(curve(2.0, 2), 1.0);
    EXPECT_EQ(curve(-0.5, 0), -0.5);
    EXPECT_EQ(curve(-0.5, 1), 1.0) << "the root is not a number, which counts as 1";
}

TEST_F(Lights, AreThoseOfTheFrameOrNoneWithoutTheirService) {
    record->highlightEnable = 2;
    host.lights = {{.direction = {0.25, -1, 0}, .color = {1, 0, 0}}};
    chooseLights(*record, {"Key"});
    NewTime(record.get(), 0, 2.5);
    measure();
    EXPECT_EQ(highlights(), (Vec{1, 0, 0}));
    EXPECT_EQ(host.queryTimes, (std::vector<double>{2.5, 2.5}));
    host.ambient = white;
    host.lights[0].flags = HOST_LIGHT_NO_SPECULAR;
    lightinfo = nullptr;
    EXPECT_EQ(highlights(), white);
    host.lights.clear();
    EXPECT_EQ(measure(), 0.0);
}

TEST_F(Lights, MakeHighlightsWhenChosenReachingAndNotFlagged) {
    record->highlightEnable = 1;
    const FakeLight good = {.direction = {0.25, -1, 0}, .flags = ~HOST_LIGHT_NO_SPECULAR};
    host.lights = {good, good, good};
    EXPECT_EQ(highlights(), surface) << "not chosen";
    chooseLights(*record, {"Key"});
    host.lights[0].flags = HOST_LIGHT_NO_SPECULAR;
    host.lights[1].reaches = false;
    host.lights[2].name = "Key ";
    EXPECT_EQ(highlights(), surface);
    host.lights.push_back(good);
    EXPECT_EQ(highlights(), white);
}

TEST_F(Lights, HighlightAndRingMeetAtTheirBounds) {
    const float step = 0.0625f, less = std::nextafter(step, 0.0f),
                more = std::nextafter(step, 1.0f);
    const struct {
        double cosine;
        int disc, ring;
        float size, width;
        Vec color;
    } cases[] = {{0.9375, 1, 1, step, step, black},  // 1 - size belongs to the ring
                 {0.9375, 1, 1, more, step, white},
                 {0.9375, 0, 1, more, step, surface},
                 {0.9375, 1, 0, step, step, surface},
                 {0.875, 1, 1, step, step, black},    // and so does 1 - (size + width)
                 {0.875, 1, 1, step, less, surface},  // a sum that single precision rounds up
                 {1.0, 1, 1, step, step, surface},    // a full reflection
                 {-0.875, 1, 1, step, step, surface},
                 {-0.875, 1, 0, 1.9375f, step, white},  // a disc beyond the horizon
                 {-0.875, 1, 1, step, 1.9375f, black},
                 {0.25, 1, 1, 0.875f, -0.25f, white}};  // a ring within the disc
    chooseLights(*record, {"Key"});
    for (const auto& c : cases) {
        record->highlightEnable = c.disc;
        record->highlightOutlineEnable = c.ring;
        record->highlightSize = c.size;
        record->highlightOutlineSize = c.width;
        host.lights = {{.direction = {std::sqrt(1.0 - c.cosine * c.cosine), -c.cosine, 0}}};
        EXPECT_EQ(highlights(), c.color) << c.cosine << ", " << c.size << ", " << c.width;
    }
}

TEST_F(Lights, TheLastHighlightWinsAndStartsFromTheColourAtEntry) {
    record->highlightEnable = record->highlightOutlineEnable = 1;
    record->highlightOpacity = 0.5f;
    record->highlightOutlineOpacity = 0.25f;
    record->highlightOutlineSize = 0.25f;
    const Vec disc = {0.625, 0.75, 0.875}, ring = {0.1875, 0.375, 0.5625};
    host.lights = {{.name = "A", .direction = {0.8, -1, 0}},
                   {.name = "B", .direction = {0.25, -1, 0}}};
    chooseLights(*record, {"A", "B"});
    EXPECT_EQ(highlights(), disc);
    chooseLights(*record, {"B", "A"});
    EXPECT_EQ(highlights(), ring);
}

}  // namespace
}  // namespace tavora::testing
