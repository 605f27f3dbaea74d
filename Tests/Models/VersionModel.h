/**
 * @file VersionModel.h
 * A plain model of version fingerprints: their stored form, and how alike two of them are.
 */
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <numeric>
#include <string>

namespace VersionModel {

/** All that a version can hold, in the order of its stream: volume, centroid, distances, box. */
using Values_t = std::array<double, 15>;
constexpr std::size_t centroid = 1;
constexpr std::size_t distances = 4;
constexpr std::size_t box = 12;

/** The first value that each kind carries; it carries all from there on. */
constexpr std::size_t firstValue[] = {15, box, 0, distances};

/** Reads the stream form as far as it goes, and returns the kind. */
inline std::uint32_t read(Values_t& v, const std::string& bytes) {
    if (bytes.size() < 4) {
        return 0;
    }
    // Meant: the first three bytes are signed.
    const auto type = static_cast<std::uint32_t>(
        static_cast<signed char>(bytes[0]) + static_cast<signed char>(bytes[1]) * 256 +
        static_cast<signed char>(bytes[2]) * 65536 + static_cast<unsigned char>(bytes[3]) * std::int64_t{16777216});
    std::size_t at = 4;
    const std::size_t blockEnds[] = {distances, box, v.size()};
    for (std::size_t value = type <= 3 ? firstValue[type] : v.size(); value < v.size();) {
        const std::size_t end = *std::upper_bound(std::begin(blockEnds), std::end(blockEnds), value);
        const std::size_t size = (end - value) * sizeof(double);
        const std::size_t remaining = bytes.size() - at;
        if (value == box ? remaining != size : remaining < size) {
            break;
        }
        std::memcpy(&v[value], &bytes[at], size);
        at += size;
        value = end;
    }
    return type;
}

inline std::string stream(const std::string& tag, std::size_t first, const Values_t& v) {
    return tag + std::string(reinterpret_cast<const char*>(v.data() + first), (v.size() - first) * sizeof(double));
}

/** The stream form. */
inline std::string write(std::uint32_t type, const Values_t& v) {
    return stream(std::string(reinterpret_cast<const char*>(&type), sizeof type),
                  type <= 3 ? firstValue[type] : v.size(), v);
}

inline double transform(double s, double threshold, double exponent) {
    const double u = (s - threshold) / (1.0 - threshold);
    return std::pow(u < 0 ? 0 : u, exponent);
}

inline double offsetSimilarity(const double* a, const double* b, double scale) {
    const double r =
        1 - std::sqrt(std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2)) / scale;
    return r < 0 ? 0 : r;
}

/** How alike a version of the given kind is to another. */
inline double similarity(std::size_t type, const Values_t& a, const Values_t& b) {
    if (type <= 1) {
        return type == 0 ? 0 : transform(offsetSimilarity(&a[box], &b[box], 1.0), 0.7, 3);
    }
    const double scale = std::max(std::accumulate(&a[distances], &a[box], 0.0) / 8.0,
                                  std::accumulate(&b[distances], &b[box], 0.0) / 8.0);
    double orientation = 0;
    for (std::size_t i = distances; i < box; ++i) {
        orientation += (1 - std::abs(b[i] - a[i]) / scale) / 8;
    }
    double score = transform(offsetSimilarity(&a[centroid], &b[centroid], scale), 0.7, 3) *
                   transform(orientation, 0.8, 4) * transform(offsetSimilarity(&a[box], &b[box], scale), 0.7, 3);
    if (type == 2) {
        const auto [small, big] = std::minmax(a[0], b[0]);
        score *= transform(std::abs(big) > 1e-20 ? small / big : 1.0, 0.5, 3);
    }
    return score;
}

} // namespace VersionModel
