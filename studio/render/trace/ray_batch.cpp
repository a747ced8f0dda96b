#include "studio/render/trace/ray_batch.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace tavora::studio {
namespace {

constexpr std::size_t kFloats = 9;
constexpr std::size_t kWords = 3;

}  // namespace

RayBatch::RayBatch(std::size_t capacity) : floats_(kFloats * capacity), words_(kWords * capacity) {
    float* next = floats_.data();
    for (float** array :
         {&arrays_.org_x, &arrays_.org_y, &arrays_.org_z, &arrays_.tnear, &arrays_.dir_x,
          &arrays_.dir_y, &arrays_.dir_z, &arrays_.time, &arrays_.tfar}) {
        *array = next;
        next += capacity;
    }
    arrays_.mask = words_.data();
    arrays_.id = arrays_.mask + capacity;
    arrays_.flags = arrays_.id + capacity;
    std::fill_n(arrays_.mask, capacity, ~0U);
    std::iota(arrays_.id, arrays_.id + capacity, 0U);
}

void RayBatch::setAllDirections(std::size_t count, const Imath::V3f& direction) {
    std::fill_n(arrays_.dir_x, count, direction.x);
    std::fill_n(arrays_.dir_y, count, direction.y);
    std::fill_n(arrays_.dir_z, count, direction.z);
    std::fill_n(arrays_.tnear, count, 0.0F);
    std::fill_n(arrays_.tfar, count, std::numeric_limits<float>::infinity());
}

RTCRay RayBatch::ray(std::size_t ray) const {
    return {arrays_.org_x[ray],
            arrays_.org_y[ray],
            arrays_.org_z[ray],
            arrays_.tnear[ray],
            arrays_.dir_x[ray],
            arrays_.dir_y[ray],
            arrays_.dir_z[ray],
            0,
            arrays_.tfar[ray],
            ~0U,
            0,
            0};
}

}  // namespace tavora::studio
