#include "studio/render/ray_rows.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace tavora::studio {
namespace {

constexpr std::size_t kValues = 9;
constexpr std::size_t kWords = 3;

}  // namespace

RayRows::RayRows(std::size_t room) : values_(kValues * room), words_(kWords * room) {
    float* value = values_.data();
    for (float** row : {&rows_.org_x, &rows_.org_y, &rows_.org_z, &rows_.tnear, &rows_.dir_x,
                        &rows_.dir_y, &rows_.dir_z, &rows_.time, &rows_.tfar}) {
        *row = value;
        value += room;
    }
    rows_.mask = words_.data();
    rows_.id = rows_.mask + room;
    rows_.flags = rows_.id + room;
    std::fill_n(rows_.mask, room, ~0U);
    std::iota(rows_.id, rows_.id + room, 0U);
}

void RayRows::turnToSky(std::size_t count, const Imath::V3f& direction) {
    std::fill_n(rows_.dir_x, count, direction.x);
    std::fill_n(rows_.dir_y, count, direction.y);
    std::fill_n(rows_.dir_z, count, direction.z);
    std::fill_n(rows_.tnear, count, 0.0F);
    std::fill_n(rows_.tfar, count, std::numeric_limits<float>::infinity());
}

RTCRay RayRows::alone(std::size_t at) const {
    return {rows_.org_x[at],
            rows_.org_y[at],
            rows_.org_z[at],
            rows_.tnear[at],
            rows_.dir_x[at],
            rows_.dir_y[at],
            rows_.dir_z[at],
            0,
            rows_.tfar[at],
            ~0U,
            0,
            0};
}

}  // namespace tavora::studio
