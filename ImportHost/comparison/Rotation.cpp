#include "comparison/Rotation.h"

#include <cmath>

namespace {

constexpr double pi = 3.141592653589793;

/** The rotation of a quaternion of length 1, whose first number is the real one. */
Rotation rotationOf(const std::array<double, 4>& q) {
    const auto [w, x, y, z] = q;
    return {{{1.0 - 2.0 * (y * y + z * z), 2.0 * (x * y - w * z), 2.0 * (x * z + w * y)},
             {2.0 * (x * y + w * z), 1.0 - 2.0 * (x * x + z * z), 2.0 * (y * z - w * x)},
             {2.0 * (x * z - w * y), 2.0 * (y * z + w * x), 1.0 - 2.0 * (x * x + y * y)}}};
}

/** Twice the sine of the angle times the axis. */
Vector3 skewPart(const Rotation& r) {
    return {r[2][1] - r[1][2], r[0][2] - r[2][0], r[1][0] - r[0][1]};
}

struct Centres {
    Vector3 from{};
    Vector3 to{};
};

Centres centresOf(const std::vector<PointPair>& pairs) {
    // Measured from the first pair, so that points far from the origin lose nothing.
    Centres sum;
    for (const auto& [from, to] : pairs) {
        sum.from = sum.from + (from - pairs.front().first);
        sum.to = sum.to + (to - pairs.front().second);
    }
    const double share = 1.0 / static_cast<double>(pairs.size());
    return {pairs.front().first + sum.from * share, pairs.front().second + sum.to * share};
}

RigidMotion motionAbout(const Centres& centres, const Rotation& rotation) {
    return {rotation, centres.to - rotated(centres.from, rotation)};
}

/** Sums of the products of coordinates before and after, about the centres. */
SquareMatrix<3> productsOf(const std::vector<PointPair>& pairs, const Centres& centres) {
    SquareMatrix<3> products{};
    for (const auto& [from, to] : pairs) {
        const Vector3 a = from - centres.from;
        const Vector3 b = to - centres.to;
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                products[i][k] += a[i] * b[k];
            }
        }
    }
    return products;
}

} // namespace

Vector3 rotated(const Vector3& vector, const Rotation& rotation) {
    return {dot(rotation[0], vector), dot(rotation[1], vector), dot(rotation[2], vector)};
}

Rotation product(const Rotation& first, const Rotation& second) {
    const Rotation columns = transposed(second);
    Rotation result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            result[i][k] = dot(first[i], columns[k]);
        }
    }
    return result;
}

Rotation transposed(const Rotation& r) {
    return {{{r[0][0], r[1][0], r[2][0]}, {r[0][1], r[1][1], r[2][1]}, {r[0][2], r[1][2], r[2][2]}}};
}

Rotation rotationAbout(const Vector3& axis, double angle) {
    const double half = angle / 2.0;
    const double s = std::sin(half);
    return rotationOf({std::cos(half), axis[0] * s, axis[1] * s, axis[2] * s});
}

Rotation rotationBetween(const Vector3& from, const Vector3& to) {
    const Vector3 normal = cross(from, to);
    const double sine = length(normal);
    const double cosine = dot(from, to);
    constexpr double parallel = 1e-12;
    if (sine > parallel) {
        return rotationAbout(normal * (1.0 / sine), std::atan2(sine, cosine));
    }
    if (cosine > 0.0) {
        return noRotation;
    }
    // Any axis across will do; the one that is most across one of the world's.
    const Vector3 other = std::fabs(from[2]) < 0.9 ? Vector3{0.0, 0.0, 1.0} : Vector3{1.0, 0.0, 0.0};
    const Vector3 across = cross(from, other);
    return rotationAbout(across * (1.0 / length(across)), pi);
}

double angleOf(const Rotation& rotation) {
    const double trace = rotation[0][0] + rotation[1][1] + rotation[2][2];
    return std::atan2(length(skewPart(rotation)), trace - 1.0);
}

Vector3 axisOf(const Rotation& rotation) {
    const Vector3 skew = skewPart(rotation);
    constexpr double unclear = 1e-6;
    if (length(skew) > unclear) {
        return skew * (1.0 / length(skew));
    }
    if (rotation[0][0] + rotation[1][1] + rotation[2][2] > 1.0) {
        return {0.0, 0.0, 1.0};
    }
    // Half a turn: the axis is what stays where it is.
    SquareMatrix<3> symmetric{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            symmetric[i][k] = (rotation[i][k] + rotation[k][i]) / 2.0;
        }
    }
    const Vector3 axis = eigenvectorsOf(symmetric).vectors[0];
    const double sign = axis[2] != 0.0 ? axis[2] : axis[1] != 0.0 ? axis[1] : axis[0];
    return axis * (sign < 0.0 ? -1.0 : 1.0);
}

RigidMotion fittedMotion(const std::vector<PointPair>& pairs) {
    const Centres centres = centresOf(pairs);
    const SquareMatrix<3> s = productsOf(pairs, centres);
    // Horn's matrix: its first eigenvector is the quaternion of the best turn.
    const SquareMatrix<4> horn = {
        {{s[0][0] + s[1][1] + s[2][2], s[1][2] - s[2][1], s[2][0] - s[0][2], s[0][1] - s[1][0]},
         {s[1][2] - s[2][1], s[0][0] - s[1][1] - s[2][2], s[0][1] + s[1][0], s[2][0] + s[0][2]},
         {s[2][0] - s[0][2], s[0][1] + s[1][0], -s[0][0] + s[1][1] - s[2][2], s[1][2] + s[2][1]},
         {s[0][1] - s[1][0], s[2][0] + s[0][2], s[1][2] + s[2][1], -s[0][0] - s[1][1] + s[2][2]}}};
    return motionAbout(centres, rotationOf(eigenvectorsOf(horn).vectors[0]));
}

RigidMotion fittedShift(const std::vector<PointPair>& pairs) {
    return motionAbout(centresOf(pairs), noRotation);
}

RigidMotion fittedTurnAboutZ(const std::vector<PointPair>& pairs) {
    const Centres centres = centresOf(pairs);
    const SquareMatrix<3> s = productsOf(pairs, centres);
    const double angle = std::atan2(s[0][1] - s[1][0], s[0][0] + s[1][1]);
    return motionAbout(centres, rotationAbout({0.0, 0.0, 1.0}, angle));
}
