#include "studio/edit/document.h"

namespace tavora::studio {

Document::Document(const std::filesystem::path& scene, const ShadingRequest& shading,
                   Report& report, const ReadOptions& reading)
    : file(scene, reading), film(scene, reading), settings(film.scene(), shading, report) {}

std::vector<std::string> Document::save(bool overwrite) {
    std::vector<std::string> warnings = file.save(settings, overwrite);
    undo.endStep();
    recovery.clear();
    return warnings;
}

std::vector<std::string> Document::saveAs(const std::filesystem::path& to) {
    std::vector<std::string> warnings = file.saveAs(settings, to);
    undo.endStep();
    recovery.clear();
    return warnings;
}

}  // namespace tavora::studio
