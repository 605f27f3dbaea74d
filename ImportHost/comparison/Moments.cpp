#include "comparison/Moments.h"

#include <cmath>

namespace {

constexpr std::size_t power(std::size_t base, std::size_t exponent) {
    return exponent == 0 ? 1 : base * power(base, exponent - 1);
}

/** Where the moments of a degree keep the one whose axes are the digits of a number to the base of three. */
template <std::size_t Degree>
std::size_t packedIndex(std::size_t digits) {
    std::size_t notX = 0;
    std::size_t z = 0;
    for (std::size_t i = 0; i < Degree; ++i, digits /= 3) {
        notX += digits % 3 != 0 ? 1 : 0;
        z += digits % 3 == 2 ? 1 : 0;
    }
    return notX * (notX + 1) / 2 + z;
}

/** Turns a symmetric tensor, one index after the other. */
template <std::size_t Degree, std::size_t Count>
std::array<double, Count> rotatedMoments(const std::array<double, Count>& moments, const Rotation& rotation) {
    constexpr std::size_t size = power(3, Degree);
    std::array<double, size> tensor{};
    for (std::size_t i = 0; i < size; ++i) {
        tensor[i] = moments[packedIndex<Degree>(i)];
    }
    for (std::size_t stride = 1; stride < size; stride *= 3) {
        for (std::size_t block = 0; block < size; block += 3 * stride) {
            for (std::size_t i = block; i < block + stride; ++i) {
                const Vector3 turned =
                    rotated(Vector3{tensor[i], tensor[i + stride], tensor[i + 2 * stride]}, rotation);
                tensor[i] = turned[0];
                tensor[i + stride] = turned[1];
                tensor[i + 2 * stride] = turned[2];
            }
        }
    }
    std::array<double, Count> result{};
    for (std::size_t i = 0; i < size; ++i) {
        result[packedIndex<Degree>(i)] = tensor[i];
    }
    return result;
}

template <std::size_t Count>
bool agree(const std::array<double, Count>& a, const std::array<double, Count>& b, double tolerance) {
    for (std::size_t i = 0; i < Count; ++i) {
        if (!(std::fabs(a[i] - b[i]) <= tolerance)) {
            return false;
        }
    }
    return true;
}

} // namespace

Shape rotated(const Shape& shape, const Rotation& rotation) {
    Shape result = shape;
    result.second = rotatedMoments<2>(shape.second, rotation);
    result.third = rotatedMoments<3>(shape.third, rotation);
    result.fourth = rotatedMoments<4>(shape.fourth, rotation);
    return result;
}

MomentTolerances::MomentTolerances(const Shape& shape, double distance) {
    // Means of powers of the distance from the centroid: the derivatives of the moments are no larger.
    const double square = shape.second[0] + shape.second[3] + shape.second[5];
    const auto& q = shape.fourth;
    const double fourthPower = q[0] + q[10] + q[14] + 2.0 * (q[3] + q[5] + q[12]);
    second = 2.0 * std::sqrt(square) * distance;
    third = 3.0 * square * distance;
    fourth = 4.0 * std::sqrt(square * std::fmax(fourthPower, 0.0)) * distance;
}

bool agree(const Shape& a, const Shape& b, const MomentTolerances& tolerances) {
    return agree(a.second, b.second, tolerances.second) && agree(a.third, b.third, tolerances.third) &&
           agree(a.fourth, b.fourth, tolerances.fourth);
}

std::vector<Harmonic> harmonicsOf(const Shape& shape, const MomentTolerances& tolerances) {
    const auto& [xx, xy, xz, yy, yz, zz] = shape.second;
    const auto& [xxx, xxy, xxz, xyy, xyz, xzz, yyy, yyz, yzz, zzz] = shape.third;
    const auto& [xxxx, xxxy, xxxz, xxyy, xxyz, xxzz, xyyy, xyyz, xyzz, xzzz, yyyy, yyyz, yyzz, yzzz, zzzz] =
        shape.fourth;
    return {{2, {xx - yy, 2.0 * xy}, tolerances.second},
            {1, {xzz, yzz}, tolerances.third},
            {1, {xxx + xyy, xxy + yyy}, tolerances.third},
            {2, {xxz - yyz, 2.0 * xyz}, tolerances.third},
            {3, {xxx - 3.0 * xyy, 3.0 * xxy - yyy}, tolerances.third},
            {2, {xxzz - yyzz, 2.0 * xyzz}, tolerances.fourth},
            {2, {xxxx - yyyy, 2.0 * (xxxy + xyyy)}, tolerances.fourth},
            {3, {xxxz - 3.0 * xyyz, 3.0 * xxyz - yyyz}, tolerances.fourth},
            {4, {xxxx - 6.0 * xxyy + yyyy, 4.0 * (xxxy - xyyy)}, tolerances.fourth}};
}

Eigenvectors<3> principalAxes(const Shape& shape) {
    const auto& [xx, xy, xz, yy, yz, zz] = shape.second;
    return eigenvectorsOf(SquareMatrix<3>{{{xx, xy, xz}, {xy, yy, yz}, {xz, yz, zz}}});
}
