#pragma once

#include "studio/app/requests.h"
#include "studio/setup/report.h"

/// The commands, one function for each. They throw Error, with any Fault, and RenderStopped.
namespace tavora::studio {

void render(const RenderRequest& request, Report& report);
void showInfo(const InfoRequest& request, Report& report);
void showOrStoreSettings(const SettingsRequest& request, Report& report);
void listLooks(const LooksRequest& request, Report& report);
void merge(const MergeRequest& request, Report& report);

}  // namespace tavora::studio
