#include "studio/panels/number_controls.h"

#include <QHBoxLayout>
#include <QPainter>
#include <functional>

namespace tavora::studio {
namespace {

constexpr int kPercentWidth = 70;
constexpr int kNumWidth = 48;
constexpr int kChannelWidth = 36;
constexpr int kSpacing = 3;
constexpr const char* kChannelNames[] = {"Red", "Green", "Blue"};

/// A field filled with one colour.
class Patch : public QWidget {
  public:
    Patch(QWidget* parent, std::function<QColor()> color)
        : QWidget(parent), color_(std::move(color)) {
        setFixedSize(kPatchSize.width(), kRowHeight);
    }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (!isEnabled()) painter.setOpacity(0.35);
        painter.setPen(palette().color(QPalette::Mid).darker(130));
        painter.setBrush(color_());
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    }

  private:
    std::function<QColor()> color_;
};

NumberField::Range percentRange(const HostControlDescription& description) {
    NumberField::Range range{0, 100, 2, 1, true};
    if (description.type == HOST_VALUE_RANGE &&
        description.of.range.minimum < description.of.range.maximum) {
        range.minimum = description.of.range.minimum;
        range.maximum = description.of.range.maximum;
    }
    range.perPixel = (range.maximum - range.minimum) / 100;
    return range;
}

}  // namespace

NumberControl::NumberControl(const ControlSeed& seed, const NumberField::Range& range, int width)
    : PanelControl(seed), number_(new NumberField(range, seed.canvas)) {
    setField(number_, LayoutKind::Labelled, QSize(width, kRowHeight));
    addLabel();
    connect(number_, &NumberField::entered, this, [this] { fire(); });
}

PanelControl* makePercentControl(const ControlSeed& seed) {
    return new NumberControl(seed, percentRange(seed.description), kPercentWidth);
}

PanelControl* makeNumControl(const ControlSeed& seed) {
    return new NumberControl(seed, {0, 999999, 0, 0.25, false}, kNumWidth);
}

MiniRgbControl::MiniRgbControl(const ControlSeed& seed) : PanelControl(seed) {
    auto* row = new QWidget(seed.canvas);
    patch_ = new Patch(row, [this] {
        const std::array<int, 3> shown = asVector(value());
        const auto channel = [](int level) { return std::clamp(level, 0, 255); };
        return QColor(channel(shown[0]), channel(shown[1]), channel(shown[2]));
    });
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(kSpacing);
    line->addWidget(patch_);
    line->addSpacing(kSpacing);
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        auto* channel = new NumberField({0, 255, 0, 2, false}, row);
        channel->setFixedHeight(kRowHeight);
        channel->setAccessibleName(QString::fromLatin1(kChannelNames[i]));
        line->addWidget(channel);
        connect(channel, &NumberField::entered, this, [this] {
            patch_->update();
            fire();
        });
        channels_[i] = channel;
    }
    const int width = kPatchSize.width() + kSpacing * 4 + kChannelWidth * 3;
    setField(row, LayoutKind::ColorPatch, QSize(width, kRowHeight));
    addLabel();
}

std::vector<QWidget*> MiniRgbControl::focusWidgets() const {
    return {channels_.begin(), channels_.end()};
}

ControlValue MiniRgbControl::value() const {
    std::array<int, 3> shown{};
    for (std::size_t i = 0; i < shown.size(); ++i)
        shown[i] = asInteger(channels_[i]->number());
    return shown;
}

void MiniRgbControl::show(const ControlValue& value) {
    const std::array<int, 3> shown = asVector(value);
    for (std::size_t i = 0; i < shown.size(); ++i)
        channels_[i]->setNumber(shown[i]);
    patch_->update();
}

}  // namespace tavora::studio
