// What a mesh and Embree need at least: the ground of make_growth_scene.py in
// memory (positions, normals, indices), an acceleration structure over it, and
// nothing else. Prints the peak of the process's memory.
//
//   mesh_floor TRIANGLES

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <embree3/rtcore.h>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct Ground {
    std::vector<std::array<float, 3>> positions;
    std::vector<std::array<float, 3>> normals;
    std::vector<std::array<std::uint32_t, 3>> triangles;
};

void addVertex(Ground& ground, double x, double z) {
    const double slopeX = 0.35 * std::cos(3.5 * x) * std::sin(2.5 * z);
    const double slopeZ = 0.25 * std::sin(3.5 * x) * std::cos(2.5 * z);
    const double length = std::sqrt(slopeX * slopeX + slopeZ * slopeZ + 1);
    const double height = 0.1 * std::sin(3.5 * x) * std::sin(2.5 * z);
    ground.positions.push_back(
        {static_cast<float>(x), static_cast<float>(height), static_cast<float>(z)});
    ground.normals.push_back({static_cast<float>(-slopeX / length), static_cast<float>(1 / length),
                              static_cast<float>(-slopeZ / length)});
}

Ground makeGround(std::uint32_t side) {
    Ground ground;
    ground.positions.reserve(std::size_t{side + 1} * (side + 1));
    ground.normals.reserve(ground.positions.capacity());
    ground.triangles.reserve(std::size_t{2} * side * side);
    for (std::uint32_t row = 0; row <= side; ++row) {
        for (std::uint32_t column = 0; column <= side; ++column)
            addVertex(ground, 10.0 * column / side - 5, 10.0 * row / side - 5);
    }
    for (std::uint32_t row = 0; row < side; ++row) {
        for (std::uint32_t column = 0; column < side; ++column) {
            const std::uint32_t a = row * (side + 1) + column;
            const std::uint32_t c = a + side + 1;
            ground.triangles.push_back({a, c, a + 1});
            ground.triangles.push_back({a + 1, c, c + 1});
        }
    }
    return ground;
}

void build(Ground& ground) {
    RTCDevice device = rtcNewDevice(nullptr);
    RTCScene scene = rtcNewScene(device);
    rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST);
    RTCGeometry mesh = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(mesh, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               ground.positions.data(), 0, sizeof(ground.positions[0]),
                               ground.positions.size());
    rtcSetSharedGeometryBuffer(mesh, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                               ground.triangles.data(), 0, sizeof(ground.triangles[0]),
                               ground.triangles.size());
    rtcCommitGeometry(mesh);
    rtcAttachGeometry(scene, mesh);
    rtcReleaseGeometry(mesh);
    rtcCommitScene(scene);
    rtcReleaseScene(scene);
    rtcReleaseDevice(device);
}

/// In MB; 0 where the system does not say.
double peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        double kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes) return kilobytes / 1024;
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    const double triangles = count == 2 ? std::strtod(arguments[1], nullptr) : 0;
    if (!(triangles >= 2 && triangles <= 1e9)) {
        std::fprintf(stderr, "usage: mesh_floor TRIANGLES\n");
        return 2;
    }
    Ground ground = makeGround(static_cast<std::uint32_t>(std::lround(std::sqrt(triangles / 2))));
    build(ground);
    std::printf("%.1f\n", peakMemory());
    return 0;
}
