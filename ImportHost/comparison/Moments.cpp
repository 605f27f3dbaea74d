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

/** Powers of how far the surface reaches along an axis, from the zeroth to the third. */
using Powers = std::array<double, 4>;

/**
 * Tolerances of the moments of a degree: the means of products of up to three coordinates, which are their derivatives,
 * are no larger than the products of the fourth roots of the means of fourth powers.
 */
template <std::size_t Degree, std::size_t Count>
std::array<double, Count> tolerancesOf(const std::array<Powers, 3>& powers, double distance) {
    std::array<double, Count> result{};
    for (std::size_t notX = 0, index = 0; notX <= Degree; ++notX) {
        for (std::size_t z = 0; z <= notX; ++z, ++index) {
            const std::array<std::size_t, 3> exponents = {Degree - notX, notX - z, z};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                double derivative = static_cast<double>(exponents[axis]);
                for (std::size_t k = 0; k < 3 && exponents[axis] > 0; ++k) {
                    // The derivative's own exponent is less by one, and at most three; others are at most three then.
                    derivative *= powers[k][exponents[k] - (k == axis ? 1 : 0)];
                }
                result[index] += derivative * distance;
            }
        }
    }
    return result;
}

template <std::size_t Count>
bool agree(const std::array<double, Count>& a, const std::array<double, Count>& b,
           const std::array<double, Count>& tolerances) {
    for (std::size_t i = 0; i < Count; ++i) {
        if (!(std::fabs(a[i] - b[i]) <= tolerances[i])) {
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
    std::array<Powers, 3> powers{};
    const double fourthPowers[] = {shape.fourth[0], shape.fourth[10], shape.fourth[14]};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double reach = std::sqrt(std::sqrt(std::fmax(fourthPowers[axis], 0.0))) + distance;
        powers[axis] = {1.0, reach, reach * reach, reach * reach * reach};
    }
    second = tolerancesOf<2, Shape::secondCount>(powers, distance);
    third = tolerancesOf<3, Shape::thirdCount>(powers, distance);
    fourth = tolerancesOf<4, Shape::fourthCount>(powers, distance);
}

bool agree(const Shape& a, const Shape& b, const MomentTolerances& tolerances) {
    return agree(a.second, b.second, tolerances.second) && agree(a.third, b.third, tolerances.third) &&
           agree(a.fourth, b.fourth, tolerances.fourth);
}

std::vector<Harmonic> harmonicsOf(const Shape& shape, double distance) {
    const MomentTolerances t(shape, distance);
    const auto& [xx, xy, xz, yy, yz, zz] = shape.second;
    const auto& [xxx, xxy, xxz, xyy, xyz, xzz, yyy, yyz, yzz, zzz] = shape.third;
    const auto& [xxxx, xxxy, xxxz, xxyy, xxyz, xxzz, xyyy, xyyz, xyzz, xzzz, yyyy, yyyz, yyzz, yzzz, zzzz] =
        shape.fourth;
    return {{2, {xx - yy, 2.0 * xy}, t.second[0] + t.second[3]},
            {1, {xzz, yzz}, t.third[5] + t.third[8]},
            {1, {xxx + xyy, xxy + yyy}, t.third[0] + t.third[6]},
            {2, {xxz - yyz, 2.0 * xyz}, t.third[2] + t.third[7]},
            {3, {xxx - 3.0 * xyy, 3.0 * xxy - yyy}, t.third[0] + t.third[6]},
            {2, {xxzz - yyzz, 2.0 * xyzz}, t.fourth[5] + t.fourth[12]},
            {2, {xxxx - yyyy, 2.0 * (xxxy + xyyy)}, t.fourth[0] + t.fourth[10]},
            {3, {xxxz - 3.0 * xyyz, 3.0 * xxyz - yyyz}, t.fourth[2] + t.fourth[11]},
            {4, {xxxx - 6.0 * xxyy + yyyy, 4.0 * (xxxy - xyyy)}, t.fourth[0] + t.fourth[10]}};
}

Eigenvectors<3> principalAxes(const Shape& shape) {
    const auto& [xx, xy, xz, yy, yz, zz] = shape.second;
    return eigenvectorsOf(SquareMatrix<3>{{{xx, xy, xz}, {xy, yy, yz}, {xz, yz, zz}}});
}

Vector3 spreadOf(const Shape& shape) {
    // The roots of the characteristic polynomial; much faster than finding the axes as well.
    const auto& [xx, xy, xz, yy, yz, zz] = shape.second;
    const double mean = (xx + yy + zz) / 3.0;
    const Vector3 d = {xx - mean, yy - mean, zz - mean};
    const double p = std::sqrt((dot(d, d) + 2.0 * (xy * xy + xz * xz + yz * yz)) / 6.0);
    if (p == 0.0) {
        const double all = std::sqrt(std::fmax(mean, 0.0));
        return {all, all, all};
    }
    const double determinant = d[0] * (d[1] * d[2] - yz * yz) - xy * (xy * d[2] - yz * xz) + xz * (xy * yz - d[1] * xz);
    const double angle = std::acos(std::fmin(std::fmax(determinant / (2.0 * p * p * p), -1.0), 1.0)) / 3.0;
    constexpr double third = 2.0943951023931953; // of a full turn
    const double first = mean + 2.0 * p * std::cos(angle);
    const double last = mean + 2.0 * p * std::cos(angle + third);
    const double middle = 3.0 * mean - first - last;
    return {std::sqrt(std::fmax(first, 0.0)), std::sqrt(std::fmax(middle, 0.0)), std::sqrt(std::fmax(last, 0.0))};
}
