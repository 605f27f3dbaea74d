/**
 * @file Body.h
 * An object as the comparison sees it.
 */
#pragma once

#include "comparison/Rotation.h"
#include "state/ObjectRecord.h"

#include <cstddef>
#include <optional>
#include <vector>

/** Where an object is and how it is shaped; one of the old model is carried along when the whole was displaced. */
struct Body {
    const ObjectRecord* record = nullptr;
    Shape shape;
    Vector3 centre{};       ///< of the surface, or of the box where there is no surface
    Vector3 spread{};       ///< how far the surface lies from its centroid along its principal axes, largest first
    std::optional<Box> box; ///< nothing after a turn, which would give the object another one
    std::optional<double> volume;

    bool hasSurface() const { return shape.area > 0.0; }
};

std::vector<Body> bodiesOf(const std::vector<ObjectRecord>& objects);

/** The body after the motion. */
Body moved(const Body& body, const RigidMotion& motion);
