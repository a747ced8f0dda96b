#pragma once

#include <QObject>
#include <memory>

#include "studio/app/requests.h"
#include "studio/edit/document.h"
#include "studio/edit/orbit.h"
#include "studio/render/live/live_picture.h"
#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// One open scene: what is edited, from where it is seen, and its live picture,
/// kept in step. GUI thread.
class Session : public QObject {
    Q_OBJECT
  public:
    /// Throws what Document throws, and Fault::Usage. `report` must outlive it.
    Session(const EditRequest& request, Report& report);
    ~Session() override;

    Document& document() { return document_; }
    const Document& document() const { return document_; }
    const Scene& scene() const { return document_.settings.scene(); }
    /// May be others after the picture changed its shape or its time; those given out stay as
    /// long as they are held.
    const std::shared_ptr<const LightSet>& lights() const { return lights_; }
    const LivePicture& picture() const { return *picture_; }
    const Camera& camera() const { return orbit_->camera(); }
    /// What the picture shows of the settings, an entry a surface of the scene.
    SurfaceShaders shading() const;
    const std::optional<Imath::V3d>& background() const { return background_; }
    /// Grows with every change of what the picture shows.
    std::uint64_t revision() const { return revision_; }
    /// Share of the samples of what was asked last that the picture shows; 1:
    /// it is clean.
    double refined() const;
    /// One line that says why the picture follows no more; else empty.
    std::string failure() const;

    /// What plays, of the scene's animations; none: it is at rest. None of it is part of
    /// the document.
    const std::vector<std::size_t>& playing() const { return playing_; }
    void play(const std::vector<std::size_t>& animations);
    /// Of what plays.
    const TimeRange& range() const { return document_.film.range(); }
    /// In seconds, within the range. A time that was asked for while the first picture of
    /// the one before was not yet there is shown after that, so that something is seen.
    double time() const { return nextTime_.value_or(time_); }
    void setTime(double seconds);
    /// Whether the scene at time() is still to be seen.
    bool isTimePending() const;

    /// Size of the picture in device pixels.
    void setSize(int width, int height);
    int width() const { return width_; }
    int height() const { return height_; }
    /// Width / height of the picture; only once it has a size.
    double aspect() const;

    /// What the view turns around: the place that a pixel shows, or one in the
    /// foreground where it shows a backdrop or nothing.
    void setInterest(int x, int y);
    /// The view; each shows at once.
    void turn(double x, double y);
    void pan(double x, double y);
    void zoom(double factor);
    void frameAll();
    void resetView();
    bool isViewAtStart() const { return orbit_->isAtStart(); }

    /// Shows what the file holds instead of what is edited.
    void compareWithSaved(bool compare);
    bool isComparing() const { return comparing_; }

  signals:
    /// picture() has something newer.
    void pictureChanged();
    void viewChanged();
    void timeChanged();
    void lightsChanged();
    /// All must let go of the scene at once: it is about to be posed anew.
    void aboutToPose();
    void settingsChanged(std::size_t surface);
    /// What can be undone, or whether it is saved, may have changed.
    void stateChanged();

  private:
    void startAt(const Camera& camera);
    std::vector<Imath::V3d> placesShown() const;
    double depthOf(const Imath::V3d& place) const;
    void showView();
    void showSettings();
    void startPlaying(const AnimationRequest& request);
    void lightScene();
    void poseNext();
    void pose(const std::function<void()>& change);
    void warnFrom(std::size_t first);
    const std::optional<SurfaceShader>& shaderOf(std::size_t surface) const;
    void startPicture(const EditRequest& request);

    Report& report_;
    LightingOptions lighting_;
    std::optional<Imath::V3d> background_;
    Document document_;
    std::shared_ptr<const LightSet> lights_;
    std::unique_ptr<Orbit> orbit_;
    std::unique_ptr<LivePicture> picture_;
    std::uint64_t revision_ = 0;       ///< of what was asked last
    std::uint64_t posedRevision_ = 0;  ///< that posed the scene last
    std::vector<std::size_t> playing_;
    double time_ = 0;  ///< at which the scene is posed
    std::optional<double> nextTime_;
    std::string poseFailure_;
    int width_ = 0;
    int height_ = 0;
    bool comparing_ = false;
};

}  // namespace tavora::studio
