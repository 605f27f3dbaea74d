#include "geometry/Body.h"

#include <algorithm>

namespace IfcReader {

void Box::add(const Vector& p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
}

void Box::add(const Body& body) {
    for (const Face& face : body.faces) {
        for (const Vector& p : face.outer) {
            add(p);
        }
    }
}

bool Box::meets(const Box& other, double distance) const {
    return low.x <= other.high.x + distance && other.low.x <= high.x + distance && low.y <= other.high.y + distance &&
           other.low.y <= high.y + distance && low.z <= other.high.z + distance && other.low.z <= high.z + distance;
}

Vector areaVector(const Loop& loop) {
    Vector sum;
    for (std::size_t i = 1; i + 1 < loop.size(); ++i) {
        sum += cross(loop[i] - loop[0], loop[i + 1] - loop[0]);
    }
    return sum * 0.5;
}

Vector areaVector(const Face& face) {
    Vector sum;
    forEachLoop(face, [&](const Loop& loop) { sum += areaVector(loop); });
    return sum;
}

bool isWithinReach(const Face& face) {
    bool result = true;
    forEachLoop(face, [&](const Loop& loop) {
        for (const Vector& p : loop) {
            result = result && isWithinReach(p);
        }
    });
    return result;
}

bool isWithinReach(const Body& body) {
    return std::all_of(body.faces.begin(), body.faces.end(), [](const Face& face) { return isWithinReach(face); });
}

void flip(Face& face) {
    forEachLoop(face, [](Loop& loop) { std::reverse(loop.begin(), loop.end()); });
    face.plane = face.plane.flipped();
}

void transform(Face& face, const Affine& map) {
    forEachLoop(face, [&](Loop& loop) {
        for (Vector& p : loop) {
            p = map(p);
        }
    });
    face.plane = {};
}

void transform(Body& body, const Affine& map) {
    const bool mirrors = map.determinant() < 0.0;
    for (Face& face : body.faces) {
        transform(face, map);
        if (mirrors) {
            flip(face);
        }
    }
}

double signedVolume(const std::vector<Face>& faces) {
    double sum = 0.0;
    for (const Face& face : faces) {
        const Vector o = faces[0].outer.empty() ? Vector{} : faces[0].outer[0];
        forEachLoop(face, [&](const Loop& loop) {
            for (std::size_t i = 1; i + 1 < loop.size(); ++i) {
                sum += dot(loop[0] - o, cross(loop[i] - o, loop[i + 1] - o));
            }
        });
    }
    return sum / 6.0;
}

void turnOutwards(Body& body) {
    if (signedVolume(body.faces) < 0.0) {
        for (Face& face : body.faces) {
            flip(face);
        }
    }
}

double gap(const std::vector<Face>& faces) {
    Box box;
    for (const Face& face : faces) {
        for (const Vector& p : face.outer) {
            box.add(p);
        }
    }
    const Vector centre = box.centre();
    Vector sum;
    Affine moments{{}, {}, {}, {}}; // each axis times the normals
    double total = 0.0;
    for (const Face& face : faces) {
        Vector area;
        forEachLoop(face, [&](const Loop& loop) {
            for (std::size_t i = 1; i + 1 < loop.size(); ++i) {
                const Vector normal = cross(loop[i] - loop[0], loop[i + 1] - loop[0]) * 0.5;
                const Vector middle = (loop[0] + loop[i] + loop[i + 1]) * (1.0 / 3.0) - centre;
                area += normal;
                moments.x += normal * middle.x;
                moments.y += normal * middle.y;
                moments.z += normal * middle.z;
            }
        });
        sum += area;
        total += length(area);
    }
    if (!(total > 0.0)) {
        return 0.0;
    }
    const double volume = (moments.x.x + moments.y.y + moments.z.z) / 3.0;
    const Vector off[] = {moments.x - Vector{volume, 0, 0}, moments.y - Vector{0, volume, 0},
                          moments.z - Vector{0, 0, volume}};
    const double worst = std::max({length(off[0]), length(off[1]), length(off[2])});
    return std::max(length(sum) / total, worst / (total * std::max(box.radius(), 1e-300)));
}

std::size_t countPoints(const std::vector<Face>& faces) {
    std::size_t count = 0;
    for (const Face& face : faces) {
        forEachLoop(face, [&](const Loop& loop) { count += loop.size(); });
    }
    return count;
}

} // namespace IfcReader
