#pragma once

#include <QImage>
#include <QObject>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "studio/render/final/renderer.h"
#include "studio/scene/lighting/light_set.h"
#include "studio/window/session.h"

namespace tavora::studio {

/// Small pictures of the open scene in the current view, each with one of the shipped looks applied
/// to some surfaces. Rendered in the background, with low priority. GUI thread.
class LookThumbnails : public QObject {
    Q_OBJECT
  public:
    static constexpr int kWidth = 144;
    static constexpr int kHeight = 81;

    /// `session` must outlive it.
    explicit LookThumbnails(Session& session);
    ~LookThumbnails() override;

    /// Starts to render the pictures for these surfaces that are not up to date: all of them after
    /// a change of the surfaces, the settings or the view. Throws Error.
    void renderFor(const std::vector<std::size_t>& surfaces);
    /// Requests the rendering to stop, which it does at the next row of pixels; does not wait for
    /// that. Finished pictures stay valid.
    void stop();

  signals:
    void ready(const QString& look, const QImage& picture);

  private:
    struct Job {
        std::string look;
        SurfaceShaders shading;
    };
    /// The thread's input, copied when it starts.
    struct Task {
        Camera camera;
        std::shared_ptr<const LightSet> lights;
        RenderOptions options;
        std::vector<Job> jobs;
        bool sceneChanged = false;
    };
    void finish();
    void releaseScene();
    Job makeJob(const std::string& look) const;
    void run(const Task& task);

    Session& session_;
    std::unique_ptr<Renderer> renderer_;    ///< used by the thread only; reused
    std::vector<std::size_t> surfaces_;     ///< to which the looks are applied
    std::uint64_t revision_ = 0;            ///< of the session that they show
    bool sceneChanged_ = false;             ///< it was posed since the renderer's last update
    std::atomic<std::size_t> rendered_{0};  ///< number of pictures that are up to date
    std::atomic<bool> stop_{false};
    std::jthread thread_;
};

}  // namespace tavora::studio
