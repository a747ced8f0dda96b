#pragma once

#include <QApplication>
#include <memory>

#include "studio/setup/report.h"

namespace tavora::studio {

enum class Display { Screen, Offscreen };

/// Starts the window system. With Display::Screen a missing display ends the process with one line
/// and the status of a usage error; Display::Offscreen needs no display. `scale` is device pixels
/// for each pixel. To be called once, on the main thread. `report` must outlive the application.
std::unique_ptr<QApplication> startApplication(Display display, double scale, Report& report);

}  // namespace tavora::studio
