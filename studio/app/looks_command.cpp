#include <algorithm>
#include <fmt/format.h>

#include "studio/app/commands.h"
#include "studio/files/standard_streams.h"
#include "studio/scene/settings/look.h"
#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio {

void listLooks(const LooksRequest& request, Report& report) {
    const std::vector<std::string> names = shippedLooks();
    if (names.empty()) {
        throw Error(Fault::Scene,
                    fmt::format("{}: no looks there; install Tavora's share folder beside bin",
                                shippedLooksFolder().string()));
    }
    report.note(1, fmt::format("looks are in {}", shippedLooksFolder().string()));
    std::size_t width = 0;
    for (const std::string& name : names)
        width = std::max(width, name.size());
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    std::string text;
    for (const std::string& name : names) {
        const Look look = readLook(name);
        list.push_back({{"name", name}, {"title", look.name}, {"description", look.description}});
        text += fmt::format("{:<{}}  {}\n", name, width, oneLine(look.description));
    }
    writeOut(request.json ? list.dump(2) + "\n" : text);
}

}  // namespace tavora::studio
