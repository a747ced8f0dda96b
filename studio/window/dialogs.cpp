#include "studio/window/dialogs.h"

#include <QMessageBox>
#include <QPointer>
#include <QThread>
#include <QWidget>

#include "studio/services/messages.h"

namespace tavora::studio {
namespace {

QMessageBox::Icon iconOf(MessageKind kind) {
    switch (kind) {
        case MessageKind::Info:
            return QMessageBox::Information;
        case MessageKind::Warning:
            return QMessageBox::Warning;
        case MessageKind::Error:
            return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

/// Does not wait for the user, so that the module that sent the message continues. A text that is
/// already shown is not shown again.
void showMessage(QWidget& window, MessageKind kind, const QString& text) {
    for (const auto* shown : window.findChildren<QMessageBox*>()) {
        if (shown->text() == text) return;
    }
    auto* box =
        new QMessageBox(iconOf(kind), QObject::tr("Tavora"), text, QMessageBox::Ok, &window);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

}  // namespace

bool guarded(QWidget* window, const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        showError(window, QObject::tr("Not enough memory. Close other programs and try again."));
    } catch (const std::exception& error) {
        showError(window, QString::fromUtf8(error.what()));
    }
    return false;
}

void showError(QWidget* window, const QString& text) {
    QMessageBox box(QMessageBox::Critical, QObject::tr("Tavora"), text, QMessageBox::Ok, window);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

MessageDialogs::MessageDialogs(QWidget& window) {
    setMessageSink([parent = QPointer(&window)](MessageKind kind, const std::string& line) {
        const QString text = QString::fromStdString(line);
        QMetaObject::invokeMethod(
            parent,
            [parent, kind, text] {
                if (parent != nullptr) showMessage(*parent, kind, text);
            },
            Qt::QueuedConnection);
    });
}

MessageDialogs::~MessageDialogs() {
    setMessageSink({});
}

}  // namespace tavora::studio
