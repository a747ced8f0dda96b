#include "studio/link/activation.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <vector>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

/// The lookup of noteMissing(), and the services that it did not find. They are variables of the
/// thread because a HostLookup gets no data pointer.
thread_local HostLookup* currentLookup = nullptr;
thread_local std::vector<std::string> missing;

void* noteMissing(const char* service, int useMode) {
    void* found = currentLookup(service, useMode);
    if (found == nullptr && std::find(missing.begin(), missing.end(), service) == missing.end()) {
        missing.emplace_back(service);
    }
    return found;
}

/// Activates the class again to find out which services it misses.
std::vector<std::string> missingServices(const HostServerRecord& server, int version,
                                         HostLookup* lookup, void* classRecord) {
    currentLookup = lookup;
    missing.clear();
    server.activate(version, noteMissing, classRecord, nullptr);
    return std::move(missing);
}

bool isEnd(const HostServerRecord& record) {
    return record.className == nullptr || record.serverName == nullptr ||
           record.activate == nullptr;
}

std::string describe(const std::string& className, const std::string& server) {
    return server.empty() ? className : fmt::format("{} \"{}\"", className, server);
}

}  // namespace

const HostServerRecord& findServer(const HostModuleDescriptor& module,
                                   const std::filesystem::path& file, const std::string& className,
                                   const std::string& server) {
    std::vector<std::string> offered;
    for (const HostServerRecord* record = module.servers; !isEnd(*record); ++record) {
        if (record->className == className && (server.empty() || record->serverName == server)) {
            return *record;
        }
        offered.push_back(describe(record->className, record->serverName));
    }
    throw Error(
        Fault::Module,
        fmt::format("{}: the plug-in module has no class {}; it has {}", file.string(),
                    describe(className, server),
                    offered.empty() ? "none" : fmt::format("{}", fmt::join(offered, ", "))));
}

void activate(const HostServerRecord& server, int version, HostLookup* lookup, void* classRecord,
              const std::filesystem::path& file) {
    const int result = server.activate(version, lookup, classRecord, nullptr);
    if (result == HOST_ACTIVATION_OK) return;
    const std::string which = describe(server.className, server.serverName);
    if (result == HOST_ACTIVATION_BAD_VERSION) {
        throw Error(Fault::Module,
                    fmt::format("{}: {} does not work with version {} of its class, the one "
                                "that this host offers",
                                file.string(), which, version));
    }
    if (result == HOST_ACTIVATION_NO_SERVICE) {
        const auto services = missingServices(server, version, lookup, classRecord);
        throw Error(Fault::Module,
                    fmt::format("{}: {} needs services that this host lacks; it asked in vain "
                                "for {}",
                                file.string(), which, fmt::join(services, ", ")));
    }
    throw Error(Fault::Module,
                fmt::format("{}: {} did not activate (result {})", file.string(), which, result));
}

}  // namespace tavora::studio
