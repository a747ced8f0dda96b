#include "host/handler.h"
#include "host/interface.h"
#include "studio/link/module_copy.h"
#include "studio/link/module_file.h"
#include "studio/link/shader.h"

namespace tavora::studio {
namespace {

ModuleSummary::Class summarizeHandler(const std::filesystem::path& file, HostLookup* lookup,
                                      const HostServerRecord& record) {
    const ModuleCopy copy(file, lookup, record.serverName);
    return {record.className, record.serverName, HOST_SHADER_HANDLER_VERSION,
            Shader(copy, nullptr).descriptionLine()};
}

ModuleSummary::Class summarizeInterface(const std::filesystem::path& file, HostLookup* lookup,
                                        const HostServerRecord& record) {
    // Modules find their services when the handler of the same name activates.
    const ModuleCopy copy(file, lookup, record.serverName);
    const Shader shader(copy, nullptr);
    copy.activateInterface(shader.instance());
    return {record.className, record.serverName, HOST_SHADER_INTERFACE_VERSION, {}};
}

}  // namespace

ModuleSummary summarize(const std::filesystem::path& file, HostLookup* lookup) {
    const ModuleImage image(file);
    ModuleSummary summary;
    summary.file = file;
    summary.descriptorVersion = image.descriptor().version;
    for (const HostServerRecord* record = image.descriptor().servers;
         record->className != nullptr && record->serverName != nullptr; ++record) {
        const std::string className = record->className;
        if (className == HOST_SHADER_HANDLER_CLASS) {
            summary.classes.push_back(summarizeHandler(file, lookup, *record));
        } else if (className == HOST_SHADER_INTERFACE_CLASS) {
            summary.classes.push_back(summarizeInterface(file, lookup, *record));
        } else {
            summary.classes.push_back({className, record->serverName, 0, {}});
        }
    }
    return summary;
}

}  // namespace tavora::studio
