#pragma once

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The camera of an edit window, which the user turns around a point of interest, pans and
/// zooms. Starts as a camera of the scene, to which it can be reset. Plain values; one thread.
class Orbit {
  public:
    /// `bounds` are the scene's, in the world. The point of interest is the point on the
    /// camera's axis that is nearest to their centre.
    Orbit(const Camera& start, const Imath::Box3d& bounds);

    /// Changes the camera at the start; its point of interest is found as for a new orbit. A
    /// view that is still at the start changes with it.
    void setStart(const Camera& start);

    /// Its aspect is 0, that of the picture.
    const Camera& camera() const { return camera_; }
    bool isAtStart() const;

    /// Sets the point of interest, in the world. It stays where it is in the picture when the
    /// view turns or zooms, and follows the pointer when it pans. A point behind the camera is
    /// ignored.
    void setInterest(const Imath::V3d& point);

    /// Drags the scene; x to the right and y down are fractions of the picture's height.
    /// turn() keeps the camera's roll and stops before the poles.
    void turn(double x, double y);
    void pan(double x, double y);
    /// Moves nearer by a factor above 1, or away by one below. A perspective camera never
    /// passes its point of interest; an orthographic one changes its half height.
    void zoom(double factor);
    /// Aims at the centre of `box`, in the world, at a distance from which all of it is visible
    /// in a picture of width / height = `aspect`. An empty box changes nothing.
    void frame(const Imath::Box3d& box, double aspect);
    /// Returns to the camera at the start.
    void reset();

  private:
    void moveTo(const Imath::V3d& eye);
    double depth() const;  ///< of the point of interest, in metres along the camera's axis

    Camera start_;
    Camera camera_;
    Imath::V3d startInterest_;
    Imath::V3d interest_;
    Imath::Box3d bounds_;  ///< of the scene
    double size_;          ///< of the scene, metres
};

}  // namespace tavora::studio
