#pragma once

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "studio/edit/document.h"
#include "studio/edit/undo_steps.h"
#include "studio/scene/settings/settings.h"
#include "studio/services/directory_info.h"
#include "tests/scene/gltf_builder.h"
#include "tests/scene/settings_samples.h"

namespace tavora::studio {

inline SurfaceShader shader(StateBlock block, bool enabled = true) {
    return {"TAVO", enabled, std::move(block)};
}

/// A scene of three materials, and geometry without any, in a folder of its own
/// that also holds the user's settings and state.
class EditTest : public testing::Test {
  protected:
    EditTest() {
        request_.plugin = TAVORA_MODULE;
        setSettingsFolder(folder_ / "settings");
        ::setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
        writeScene({"Body", "Hair", "Glass"});
    }
    ~EditTest() override { setSettingsFolder({}); }

    void writeScene(const std::vector<std::string>& materials) {
        GltfBuilder builder;
        for (const std::string& name : materials) {
            builder.triangle();
            const int material = builder.add("materials", {{"name", name}});
            builder.primitive(material)["material"] = material;
        }
        builder.triangle();
        file_ = builder.write(folder_, true);
    }

    std::unique_ptr<Document> open() {
        return std::make_unique<Document>(file_, request_, report_);
    }

    static SurfaceShaders stateOf(const Document& document) {
        SurfaceShaders state;
        for (const std::size_t surface : document.settings.surfaces())
            state.push_back(document.settings.at(surface));
        return state;
    }

    static Settings named(const Document& document, std::size_t surface) {
        return settingsOf(document.settings.at(surface)->block);
    }
    static void set(Document& document, const ShaderChanges& changes) {
        document.undo.push(settingsStep(document.settings, changes, "test"));
    }

    /// What a panel does: writes into the record, and tells of it.
    static void edit(Document& document, std::size_t surface, const Json& changes,
                     Gesture gesture = 0) {
        Shader& record = document.settings.record(surface);
        record.load(withChanges(record.save(), changes, "test", {}));
        document.undo.push(recordStep(document.settings, surface, gesture));
    }
    static void edit(Document& document, std::size_t surface, double value, Gesture gesture = 0) {
        edit(document, surface, Json{{"edgeCoverage", value}}, gesture);
    }

    static std::size_t undoAll(Document& document) {
        std::size_t steps = 0;
        for (; document.undo.canUndo(); ++steps)
            document.undo.undo();
        return steps;
    }

    TemporaryFolder folder_;
    std::filesystem::path file_;
    ShadingRequest request_;
    Report report_{ReportOptions{0, true, {}}};
};

}  // namespace tavora::studio
