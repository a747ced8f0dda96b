#include "studio/panels/text_control.h"

namespace tavora::studio {
namespace {

QString linesOf(const HostControlDescription& description) {
    QStringList lines;
    if (description.type != HOST_VALUE_TEXT || description.of.text.lines == nullptr) return {};
    for (const char** line = description.of.text.lines; *line != nullptr; ++line)
        lines.append(QString::fromUtf8(*line));
    return lines.join(QLatin1Char('\n'));
}

}  // namespace

TextControl::TextControl(const ControlSeed& seed) : PanelControl(seed) {
    auto* label = new QLabel(linesOf(seed.description), seed.canvas);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    if (label->text().endsWith(QLatin1Char(':'))) {  // a heading
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
    }
    QSize size = label->sizeHint();
    size.setHeight(std::max(size.height(), kRowHeight));
    setField(label, LayoutKind::Text, size);
    addLabel();
}

QString TextControl::ownText() const {
    return static_cast<const QLabel&>(field()).text().section(QLatin1Char('\n'), 0, 0).trimmed();
}

}  // namespace tavora::studio
