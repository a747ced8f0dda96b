#pragma once

#include "studio/app/requests.h"
#include "studio/setup/report.h"

/// One function a command. Each throws Fault::Usage, Fault::Scene, Fault::Output,
/// Fault::Module or RenderStopped when it cannot do what was asked.
namespace tavora::studio {

void render(const RenderRequest& request, Report& report);
void showInfo(const InfoRequest& request, Report& report);
void showOrStoreSettings(const SettingsRequest& request, Report& report);
void listLooks(const LooksRequest& request, Report& report);
void merge(const MergeRequest& request, Report& report);

}  // namespace tavora::studio
