#pragma once

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The camera of an edit window: turns around a point of interest, slides and
/// comes nearer, as a hand moves it. Starts as, and goes back to, a camera of
/// the scene. Plain values; one thread.
class Orbit {
  public:
    /// The point of interest is where the camera's axis passes the scene's
    /// middle at its nearest.
    Orbit(const Camera& start, const Imath::Box3d& bounds);

    /// Another camera to start as, the point of interest being what it is for a
    /// new orbit. A view that is still at its start goes along.
    void setStart(const Camera& start);

    /// Camera::aspect is 0: the picture's own.
    const Camera& camera() const { return camera_; }
    bool isAtStart() const;

    /// A place in the world before the camera, not behind it, that stays where it
    /// is in the picture while the view turns or zooms, and under the hand while
    /// it slides.
    void setInterest(const Imath::V3d& place);

    /// Drags in shares of the picture's height, x to the right, y down: the scene
    /// follows. Turning keeps the camera's roll and stops short of the poles.
    void turn(double x, double y);
    void pan(double x, double y);
    /// Above 1 comes nearer by that factor; a perspective camera never passes
    /// its point of interest, an orthographic one changes its half height.
    void zoom(double factor);
    /// Aims at the middle of `box` and sees all of it in a picture of width /
    /// height = `aspect`. An empty box changes nothing.
    void frame(const Imath::Box3d& box, double aspect);
    void reset();

  private:
    void moveTo(const Imath::V3d& eye);
    double depth() const;  ///< of the point of interest, metres along the view

    Camera start_;
    Camera camera_;
    Imath::V3d startInterest_;
    Imath::V3d interest_;
    Imath::Box3d bounds_;  ///< of the scene
    double size_;          ///< of the scene, metres
};

}  // namespace tavora::studio
