#pragma once

#include <QImage>
#include <QObject>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "studio/render/renderer.h"
#include "studio/scene/light_levels.h"
#include "studio/window/session.h"

namespace tavora::studio {

/// Small pictures of the open model in each of the looks that ship, rendered
/// one after the other in the background. GUI thread.
class LookThumbnails : public QObject {
    Q_OBJECT
  public:
    static constexpr int kWidth = 144;
    static constexpr int kHeight = 81;

    /// Begins at once. `session` must outlive it.
    explicit LookThumbnails(Session& session);
    /// Stops at the next row of pixels.
    ~LookThumbnails() override;

  signals:
    void ready(const QString& look, const QImage& picture);

  private:
    struct Job {
        std::string look;
        std::vector<SurfaceShading> shading;
    };
    void run(const std::vector<Job>& jobs, const Camera& camera);

    Session& session_;
    std::atomic<bool> stop_{false};
    std::jthread thread_;
};

}  // namespace tavora::studio
