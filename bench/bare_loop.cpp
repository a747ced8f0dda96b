#include "bench/bare_loop.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <thread>

#include "studio/render/sampling/sample_pattern.h"
#include "studio/render/trace/camera_rays.h"

namespace tavora::bench {
namespace {

using namespace studio;
using Imath::V2d;
using Imath::V3d;
using Imath::V3f;

constexpr int kTile = 32;  // pixels each way; a thread traces a tile at a time
/// Where shadow rays begin, in lengths of their direction: beyond what rounding can make them
/// meet of their own triangle. Ten times as much changes none of what they meet.
constexpr float kStart = 3e-4F;
constexpr float kInfinite = std::numeric_limits<float>::infinity();

/// The studio's camera rays in single precision. Directions are not normalised, which spares
/// the loop a root a ray.
struct PictureRays {
    V3f eye;
    V3f corner;  ///< direction through the picture's upper left corner
    V3f right;   ///< one pixel
    V3f down;
};

PictureRays pictureRaysOf(const Camera& camera, const FrameSize& size) {
    const studio::CameraRays view(camera, size.width, size.height, size.samples);
    V3d forward;
    camera.cameraToWorld.multDirMatrix(V3d(0, 0, -1), forward);
    const auto through = [&](double x, double y) {
        const V3d direction = view.through(x, y).direction;
        return direction / direction.dot(forward);
    };
    const V3d corner = through(0, 0);
    const V3d eye = view.through(0, 0).origin;
    return {V3f(eye), V3f(corner), V3f(through(1, 0) - corner), V3f(through(0, 1) - corner)};
}

std::vector<V2d> samplePlaces(int samples) {
    return hammersleyPattern(samples);
}

/// Numbers of rays or hits, an array for each of their fields.
struct Vectors {
    explicit Vectors(std::size_t count) : x(count), y(count), z(count) {}

    V3f at(std::size_t i) const { return {x[i], y[i], z[i]}; }
    void set(std::size_t i, const V3f& v) {
        x[i] = v.x;
        y[i] = v.y;
        z[i] = v.z;
    }

    std::vector<float> x;
    std::vector<float> y;
    std::vector<float> z;
};

struct Rays {
    explicit Rays(std::size_t count) : origin(count), direction(count), start(count), end(count) {}

    RTCRayNp forEmbree() {
        RTCRayNp rays{};
        rays.org_x = origin.x.data();
        rays.org_y = origin.y.data();
        rays.org_z = origin.z.data();
        rays.tnear = start.data();
        rays.dir_x = direction.x.data();
        rays.dir_y = direction.y.data();
        rays.dir_z = direction.z.data();
        rays.tfar = end.data();
        return rays;
    }

    Vectors origin;
    Vectors direction;
    std::vector<float> start;
    std::vector<float> end;
};

/// Traces streams of rays for one thread. As arrays of their fields (rtcIntersectNp,
/// rtcOccludedNp) with the coherent flag: that is the fastest of what was measured, on a
/// processor with AVX-512. Of the time that this takes in "suns", an array of structures
/// (rtcIntersect1M) took 1.2 times as much, packets of 16 rays 1.2, single rays 3.6 and
/// streams without the flag 2.7. Streams of squares of pixels, and a tree of high quality,
/// take as long as rows and the usual tree. The scene is robust, as pictures need it: without
/// that, rays slip through edges in 0.93 of the time ("lamps": 0.86).
class Streams {
  public:
    Streams(RTCScene scene, unsigned shadowed, const PictureRays& camera, std::vector<V2d> places,
            const std::vector<const Light*>& lights)
        : scene_(scene),
          shadowed_(shadowed),
          camera_(camera),
          lights_(&lights),
          places_(std::move(places)),
          most_(places_.size() * kTile),
          firstPixel_(places_.size()),
          cameraRays_(most_),
          normals_(most_),
          geometries_(most_),
          unusedWeights_(most_),
          unusedNumbers_(most_),
          hits_(most_),
          hitNormals_(most_),
          shadowRays_(most_) {
        rtcInitIntersectContext(&context_);
        context_.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
        for (std::size_t i = 0; i < most_; ++i)
            cameraRays_.origin.set(i, camera_.eye);
        std::fill_n(shadowRays_.start.begin(), most_, kStart);
    }

    /// The pixels of a row from `left` to `right`, the last excluded, at most kTile.
    void traceRow(int left, int right, int y) {
        const std::size_t rays = aim(left, right, y);
        intersect(rays);
        const std::size_t hits = keepHits(rays);
        counts_.camera += rays;
        for (const Light* light : *lights_) {
            const std::size_t shadows = aimAt(*light, hits);
            occlude(shadows);
            counts_.shadow += shadows;
        }
    }

    const RayCounts& counts() const { return counts_; }

  private:
    std::size_t aim(int left, int right, int y) {
        const std::size_t samples = places_.size();
        for (std::size_t i = 0; i < samples; ++i) {
            const auto height = static_cast<float>(y + places_[i].y);
            const auto aside = static_cast<float>(places_[i].x);
            firstPixel_.set(i, camera_.corner + camera_.down * height + camera_.right * aside);
        }
        std::size_t count = 0;
        for (int x = left; x < right; ++x, count += samples) {
            const V3f pixel = camera_.right * static_cast<float>(x);
            shift(firstPixel_.x, pixel.x, &cameraRays_.direction.x[count]);
            shift(firstPixel_.y, pixel.y, &cameraRays_.direction.y[count]);
            shift(firstPixel_.z, pixel.z, &cameraRays_.direction.z[count]);
        }
        std::fill_n(cameraRays_.end.begin(), count, kInfinite);
        std::fill_n(geometries_.begin(), count, RTC_INVALID_GEOMETRY_ID);
        return count;
    }

    static void shift(const std::vector<float>& numbers, float by, float* __restrict shifted) {
        for (std::size_t i = 0; i < numbers.size(); ++i)
            shifted[i] = numbers[i] + by;
    }

    void intersect(std::size_t count) {
        RTCRayHitNp queries{};
        queries.ray = cameraRays_.forEmbree();
        queries.hit.Ng_x = normals_.x.data();
        queries.hit.Ng_y = normals_.y.data();
        queries.hit.Ng_z = normals_.z.data();
        queries.hit.geomID = geometries_.data();
        // Embree wants a place for these as well.
        queries.hit.u = queries.hit.v = unusedWeights_.data();
        queries.hit.primID = queries.hit.instID[0] = unusedNumbers_.data();
        rtcIntersectNp(scene_, &context_, &queries, static_cast<unsigned>(count));
    }

    /// Positions and normals, towards the camera and of any length, of hits that want shadow
    /// rays.
    std::size_t keepHits(std::size_t rays) {
        std::size_t count = 0;
        for (std::size_t i = 0; i < rays; ++i) {
            if (geometries_[i] >= shadowed_) continue;  // as is what stands for no hit
            const V3f direction = cameraRays_.direction.at(i);
            const V3f normal = normals_.at(i);
            hits_.set(count, camera_.eye + direction * cameraRays_.end[i]);
            hitNormals_.set(count, normal.dot(direction) > 0 ? -normal : normal);
            ++count;
        }
        return count;
    }

    /// Shadow rays from hits that face the light.
    std::size_t aimAt(const Light& light, std::size_t hits) {
        switch (light.kind) {
            case LightKind::Directional: {
                const V3f toLight(-light.direction);
                return aimWhere(
                    hits, kInfinite, [&](const V3f&) { return toLight; }, reaches);
            }
            case LightKind::Point: {
                const V3f position(light.position);
                return aimWhere(
                    hits, 1, [&](const V3f& hit) { return position - hit; }, reaches);
            }
            case LightKind::Spot:
                break;
        }
        const V3f position(light.position);
        const V3f axis(light.direction);
        const auto outer = static_cast<float>(light.outerCosine);
        return aimWhere(
            hits, 1, [&](const V3f& hit) { return position - hit; },
            [&](const V3f& toLight) { return -toLight.dot(axis) > outer * toLight.length(); });
    }

    static bool reaches(const V3f&) { return true; }

    /// Rays end at `end` lengths of what `toLight` gives for their origin.
    template <class ToLight, class Reaches>
    std::size_t aimWhere(std::size_t hits, float end, const ToLight& toLight,
                         const Reaches& isReached) {
        std::size_t count = 0;
        for (std::size_t i = 0; i < hits; ++i) {
            const V3f hit = hits_.at(i);
            const V3f direction = toLight(hit);
            // The next ray overwrites this one where the light does not count.
            shadowRays_.origin.set(count, hit);
            shadowRays_.direction.set(count, direction);
            if (hitNormals_.at(i).dot(direction) > 0 && isReached(direction)) ++count;
        }
        std::fill_n(shadowRays_.end.begin(), count, end);
        return count;
    }

    void occlude(std::size_t count) {
        const RTCRayNp queries = shadowRays_.forEmbree();
        rtcOccludedNp(scene_, &context_, &queries, static_cast<unsigned>(count));
    }

    RTCScene scene_;
    unsigned shadowed_;  ///< geometries, the first ones, whose hits want shadow rays
    RTCIntersectContext context_;
    PictureRays camera_;
    const std::vector<const Light*>* lights_;
    std::vector<V2d> places_;
    std::size_t most_;
    Vectors firstPixel_;  ///< directions through the samples of the row's pixel 0
    Rays cameraRays_;
    Vectors normals_;  ///< of the triangles that the camera rays hit
    std::vector<unsigned> geometries_;
    std::vector<float> unusedWeights_;
    std::vector<unsigned> unusedNumbers_;
    Vectors hits_;
    Vectors hitNormals_;
    Rays shadowRays_;
    RayCounts counts_;
};

}  // namespace

BareLoop::BareLoop(const Scene& scene, const Camera& camera, std::vector<const Light*> lights)
    : camera_(camera), lights_(std::move(lights)), device_(rtcNewDevice(nullptr)) {
    if (camera.orthographic) throw std::runtime_error("the bare loop wants a perspective camera");
    if (device_ == nullptr) throw std::runtime_error("Embree makes no device");
    scene_.reset(rtcNewScene(device_.get()));
    rtcSetSceneFlags(scene_.get(), RTC_SCENE_FLAG_ROBUST);
    attachWhere(scene, true);
    attachWhere(scene, false);
    rtcCommitScene(scene_.get());
}

void BareLoop::attachWhere(const Scene& scene, bool wantsShadows) {
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts) {
            const Surface& surface = scene.surfaces[static_cast<std::size_t>(part.surface)];
            if ((!surface.unlit && surface.receivesShadows) == wantsShadows)
                attach(*object, *part.mesh);
        }
    }
    if (wantsShadows) shadowed_ = attached_;
}

void BareLoop::attach(const Object& object, const Mesh& mesh) {
    RTCGeometry geometry = rtcNewGeometry(device_.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* vertices = static_cast<V3f*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0,
                                                               RTC_FORMAT_FLOAT3, sizeof(V3f),
                                                               mesh.positions.size()));
    for (std::size_t i = 0; i < mesh.positions.size(); ++i)
        vertices[i] = V3f(V3d(mesh.positions[i]) * object.objectToWorld);
    void* indices = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                            sizeof(mesh.triangles[0]), mesh.triangles.size());
    std::copy(mesh.triangles.begin(), mesh.triangles.end(),
              static_cast<std::array<std::uint32_t, 3>*>(indices));
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_.get(), geometry);
    rtcReleaseGeometry(geometry);
    ++attached_;
}

RayCounts BareLoop::trace(const FrameSize& size) const {
    const PictureRays camera = pictureRaysOf(camera_, size);
    const int columns = (size.width + kTile - 1) / kTile;
    const int rows = (size.height + kTile - 1) / kTile;
    std::atomic<int> next{0};
    std::vector<RayCounts> counts(static_cast<std::size_t>(size.threads));
    const auto traceTiles = [&](RayCounts& traced) {
        Streams streams(scene_.get(), shadowed_, camera, samplePlaces(size.samples), lights_);
        for (int tile = next++; tile < columns * rows; tile = next++) {
            const int left = tile % columns * kTile;
            const int top = tile / columns * kTile;
            for (int y = top; y < std::min(top + kTile, size.height); ++y)
                streams.traceRow(left, std::min(left + kTile, size.width), y);
        }
        traced = streams.counts();
    };
    {
        std::vector<std::jthread> threads;
        for (RayCounts& traced : counts)
            threads.emplace_back(traceTiles, std::ref(traced));
    }
    RayCounts all;
    for (const RayCounts& traced : counts) {
        all.camera += traced.camera;
        all.shadow += traced.shadow;
    }
    return all;
}

}  // namespace tavora::bench
