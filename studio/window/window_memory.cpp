#include "studio/window/window_memory.h"

#include <QSettings>
#include <QSplitter>

#include "studio/services/directory_info.h"

namespace tavora::studio {
namespace {

const QString kGeometry = QStringLiteral("geometry");
const QString kColors = QStringLiteral("colors");

QString splitterKey(const QSplitter& splitter) {
    return QStringLiteral("splitter/") + splitter.objectName();
}

}  // namespace

WindowMemory::WindowMemory() {
    if (const auto folder = settingsFolder()) {
        file_ = QString::fromStdString((*folder / "window.ini").string());
    }
}

bool WindowMemory::restore(QMainWindow& window) const {
    if (file_.isEmpty()) return false;
    const QSettings memory(file_, QSettings::IniFormat);
    for (auto* splitter : window.findChildren<QSplitter*>())
        splitter->restoreState(memory.value(splitterKey(*splitter)).toByteArray());
    return window.restoreGeometry(memory.value(kGeometry).toByteArray());
}

void WindowMemory::store(const QMainWindow& window) const {
    if (file_.isEmpty()) return;
    QSettings memory(file_, QSettings::IniFormat);
    memory.setValue(kGeometry, window.saveGeometry());
    for (const auto* splitter : window.findChildren<QSplitter*>())
        memory.setValue(splitterKey(*splitter), splitter->saveState());
}

QString WindowMemory::colors() const {
    if (file_.isEmpty()) return {};
    return QSettings(file_, QSettings::IniFormat).value(kColors).toString();
}

void WindowMemory::storeColors(const QString& colors) const {
    if (file_.isEmpty()) return;
    QSettings(file_, QSettings::IniFormat).setValue(kColors, colors);
}

}  // namespace tavora::studio
