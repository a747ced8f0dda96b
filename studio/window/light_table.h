#pragma once

#include <QTreeWidget>

#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// A table of the ambient light and the lights of the picture, with the colours and brightness that
/// the shader gets. Read-only. GUI thread.
class LightTable : public QTreeWidget {
  public:
    explicit LightTable(QWidget* parent);

    void show(const LightSet& lights);
};

}  // namespace tavora::studio
