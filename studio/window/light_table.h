#pragma once

#include <QTreeWidget>

#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// The ambient light and the lights of the picture, with their colours and
/// levels as the shader meets them. To read, not to change. GUI thread.
class LightTable : public QTreeWidget {
  public:
    explicit LightTable(QWidget* parent);

    void show(const LightSet& lights);
};

}  // namespace tavora::studio
