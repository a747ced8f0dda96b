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

/// Small pictures of the open scene as it is seen, each with one of the looks
/// that ship on some surfaces: what choosing that look would give. Rendered in
/// the background, behind everything else. GUI thread.
class LookThumbnails : public QObject {
    Q_OBJECT
  public:
    static constexpr int kWidth = 144;
    static constexpr int kHeight = 81;

    /// `session` must outlive it.
    explicit LookThumbnails(Session& session);
    ~LookThumbnails() override;

    /// Renders the pictures for these surfaces that are not there yet: none when
    /// nothing changed since they were made, all after a change of the surfaces,
    /// the settings or the view. Throws Error.
    void renderFor(const std::vector<std::size_t>& surfaces);
    /// Asks the rendering to stop, which it does at the next row of pixels; does not
    /// wait for that. What is ready stays.
    void stop();

  signals:
    void ready(const QString& look, const QImage& picture);

  private:
    struct Job {
        std::string look;
        SurfaceShaders shading;
    };
    /// All that the thread needs, as it was when it started.
    struct Order {
        Camera camera;
        std::shared_ptr<const LightSet> lights;
        RenderOptions options;
        std::vector<Job> jobs;
        bool isPosedAnew = false;
    };
    void finish();
    void letGo();
    Job jobFor(const std::string& look) const;
    void run(const Order& order);

    Session& session_;
    std::unique_ptr<Renderer> renderer_;  ///< the thread's, kept from one to the next
    std::vector<std::size_t> surfaces_;   ///< that the pictures are for
    std::uint64_t revision_ = 0;          ///< of the session that they show
    bool isPosedAnew_ = false;            ///< the scene, since the renderer saw it last
    std::atomic<std::size_t> made_{0};    ///< the first so many are there
    std::atomic<bool> stop_{false};
    std::jthread thread_;
};

}  // namespace tavora::studio
