#pragma once

#include <QObject>
#include <memory>

#include "studio/app/requests.h"
#include "studio/edit/document.h"
#include "studio/edit/orbit.h"
#include "studio/render/live_picture.h"
#include "studio/scene/lighting/light_levels.h"

namespace tavora::studio {

/// One open scene: what is edited, from where it is seen, and its live picture,
/// kept in step. GUI thread.
class Session : public QObject {
    Q_OBJECT
  public:
    /// Throws what Document throws.
    Session(const EditRequest& request, Report& report);
    ~Session() override;

    Document& document() { return document_; }
    const Document& document() const { return document_; }
    const Scene& scene() const { return document_.settings.scene(); }
    /// May be others after the picture changed its shape; those given out stay as
    /// long as they are held.
    const std::shared_ptr<const LightRig>& lights() const { return lights_; }
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
    void settingsChanged(std::size_t surface);
    /// What can be undone, or whether it is saved, may have changed.
    void stateChanged();

  private:
    void startAt(const Camera& camera);
    std::vector<Imath::V3d> placesShown() const;
    double depthOf(const Imath::V3d& place) const;
    void showView();
    void showSettings();
    const std::optional<SurfaceShader>& shaderOf(std::size_t surface) const;
    void startPicture(const EditRequest& request);

    LightingOptions lighting_;
    std::optional<Imath::V3d> background_;
    Document document_;
    std::shared_ptr<const LightRig> lights_;
    std::unique_ptr<Orbit> orbit_;
    std::unique_ptr<LivePicture> picture_;
    std::uint64_t revision_ = 0;  ///< of what was asked last
    int width_ = 0;
    int height_ = 0;
    bool comparing_ = false;
};

}  // namespace tavora::studio
