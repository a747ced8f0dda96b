#include "studio/window/help.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QScreen>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace tavora::studio {
namespace {

constexpr QSize kKeysSize(520, 560);  // pixels

struct Line {
    const char* keys;  ///< empty: `does` is a heading
    const char* does;
};

constexpr Line lines[] = {
    {"", "Picture"},
    {"Click", "Select a surface"},
    {"Double-click", "Open its options"},
    {"Drag, or arrow keys", "Turn the view"},
    {"Shift-drag, middle or right button", "Pan the view"},
    {"Wheel, + and −", "Zoom"},
    {"Home", "The scene's camera again"},
    {"F", "Frame the whole scene"},
    {"Hold C", "Compare with what is saved"},
    {"P", "Play the animations, or pause"},
    {", and .", "One frame back, one on"},

    {"", "Surfaces"},
    {"Ctrl+Return", "Open the options"},
    {"Space", "Switch the shader on or off"},
    {"Ctrl+A", "Select all"},
    {"Ctrl+C, Ctrl+V", "Copy settings, paste them on what is selected"},
    {"Ctrl+L", "Apply a look from a file"},
    {"Ctrl+Shift+L", "Save the settings as a look"},

    {"", "Scene"},
    {"Ctrl+O", "Open"},
    {"Ctrl+S, Ctrl+Shift+S", "Save, save as"},
    {"Ctrl+Z, Ctrl+Shift+Z", "Undo, redo; also while the options are open"},
    {"Ctrl+Q", "Quit"},

    {"", "Options"},
    {"Tab, Shift+Tab", "Next control, the one before"},
    {"Drag, or ↑ ↓ Page ↑ Page ↓", "Change a number; Shift while dragging: finely"},
    {"Drag a marker, or ← →", "Move the selected zone; with Ctrl by 10 %"},
    {"Home, ↑ ↓, End", "Select another zone, on the markers"},
    {"Delete", "Delete the selected zone"},
    {"Space", "Add a zone after the selected one, as Add or Blend says"},
    {"Return", "OK"},
    {"Esc", "Cancel; during a drag or while typing only that"},
    {"F1", "These keys"},
};

QString keysAsHtml() {
    QString html = "<table cellpadding='3' width='100%'>";
    for (const Line& line : lines) {
        const QString does = QObject::tr(line.does).toHtmlEscaped();
        if (*line.keys == '\0') {
            html += QString("<tr><td colspan='2'><h3>%1</h3></td></tr>").arg(does);
        } else {
            html += QString("<tr><td width='45%'><b>%1</b></td><td>%2</td></tr>")
                        .arg(QObject::tr(line.keys).toHtmlEscaped(), does);
        }
    }
    return html + "</table>";
}

/// The documentation is installed in the share folder, like the looks.
QString documentation() {
    return QDir::cleanPath(QApplication::applicationDirPath() + "/../share/tavora/docs/editing.md");
}

}  // namespace

void showKeys(QWidget& window) {
    const QString name = "keysWindow";
    auto* dialog = window.findChild<QDialog*>(name);
    if (dialog == nullptr) {
        dialog = new QDialog(&window);
        dialog->setObjectName(name);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowTitle(QObject::tr("Keys and Mouse"));
        auto* text = new QTextBrowser(dialog);
        text->setHtml(keysAsHtml());
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
        QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
        auto* layout = new QVBoxLayout(dialog);
        layout->addWidget(text);
        layout->addWidget(buttons);
        dialog->resize(kKeysSize.boundedTo(window.screen()->availableSize() * 9 / 10));
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

void openDocumentation(QWidget& window) {
    const QString file = documentation();
    if (QFileInfo::exists(file) && QDesktopServices::openUrl(QUrl::fromLocalFile(file))) return;
    QMessageBox::information(
        &window, QObject::tr("Tavora"),
        QFileInfo::exists(file)
            ? QObject::tr("No program here opens the documentation. It is in\n%1").arg(file)
            : QObject::tr("The documentation is not installed: %1 is not there.").arg(file));
}

void showAbout(QWidget& window) {
    QMessageBox::about(
        &window, QObject::tr("About Tavora"),
        QObject::tr("<h3>Tavora %1</h3><p>Cel-look shading for glTF scenes: a live picture, the "
                    "shader's options, looks to share.</p>")
            .arg(TAVORA_VERSION));
}

}  // namespace tavora::studio
