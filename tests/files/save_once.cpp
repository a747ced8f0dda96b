// Saves once, as the window does: save_once WHAT SCENE FILE. Ends like the programs, with one
// line and the status of what went wrong.
#include <filesystem>
#include <string>

#include "host/services/file_io.h"
#include "studio/edit/document.h"
#include "studio/files/standard_streams.h"
#include "studio/scene/settings/look_writing.h"
#include "studio/services/messages.h"
#include "studio/services/registry.h"
#include "studio/setup/shading_request.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

void storeDefaults(Document& document, const std::string& file) {
    const auto& files = *static_cast<const HostFileIo*>(findService(HOST_FILE_IO_SERVICE, 0));
    const HostSaveState* out =
        files.openSave(std::filesystem::absolute(file).c_str(), HOST_IO_OBJECT);
    if (out == nullptr) return;
    SceneSettings& settings = document.settings;
    settings.module().instances().save(settings.record(0).instance(), out);
    files.closeSave(out);
}

void save(const std::string& what, const std::string& scene, const std::string& file) {
    Report report{ReportOptions{}};
    ShadingRequest request;
    request.looks = {{"", "noir"}};
    Document document(scene, request, report);
    if (what == "scene") document.save();
    if (what == "look") writeLook(document.settings.at(0)->block, file);
    if (what == "defaults") storeDefaults(document, file);
    if (what == "recovery") document.recovery.write();
}

}  // namespace
}  // namespace tavora::studio

int main(int, char** argv) {
    using namespace tavora::studio;
    int status = 0;
    setMessageSink([&](MessageKind kind, const std::string& text) {
        if (kind != MessageKind::Error) return;
        writeError(text + '\n');
        status = static_cast<int>(Fault::Output);
    });
    try {
        save(argv[1], argv[2], argv[3]);
    } catch (const Error& error) {
        writeError(error.what() + std::string("\n"));
        status = static_cast<int>(error.fault());
    }
    setMessageSink({});
    return status;
}
