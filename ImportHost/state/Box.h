/**
 * @file Box.h
 * A box along the axes of the world.
 */
#pragma once

#include "state/Vector.h"

#include <cstddef>

/** Its low and its high corner. */
struct Box {
    Vector3 low{};
    Vector3 high{};

    double size(std::size_t axis) const { return high[axis] - low[axis]; }
};

inline bool operator==(const Box& a, const Box& b) {
    return a.low == b.low && a.high == b.high;
}

inline bool operator!=(const Box& a, const Box& b) {
    return !(a == b);
}
