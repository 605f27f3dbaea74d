#include "comparison/Body.h"

#include "comparison/Moments.h"

#include <cmath>

namespace {

Vector3 centreOf(const Box& box) {
    return (box.low + box.high) * 0.5;
}

Body bodyOf(const ObjectRecord& object) {
    Body body;
    body.record = &object;
    body.shape = object.shape;
    body.box = object.box;
    body.volume = volumeOf(object);
    body.centre = body.hasSurface() ? object.shape.centroid : centreOf(object.box);
    if (body.hasSurface()) {
        body.spread = spreadOf(body.shape);
    } else {
        for (std::size_t i = 0; i < body.spread.size(); ++i) {
            body.spread[i] = object.box.size(i) / 2.0;
        }
        std::sort(body.spread.rbegin(), body.spread.rend());
    }
    return body;
}

} // namespace

std::vector<Body> bodiesOf(const std::vector<ObjectRecord>& objects) {
    std::vector<Body> bodies;
    bodies.reserve(objects.size());
    for (const ObjectRecord& object : objects) {
        bodies.push_back(bodyOf(object));
    }
    return bodies;
}

Body moved(const Body& body, const RigidMotion& motion) {
    Body result = body;
    result.centre = motion.apply(body.centre);
    if (motion.rotation != noRotation) {
        result.shape = rotated(body.shape, motion.rotation);
        result.box.reset();
    } else if (result.box) {
        result.box->low = result.box->low + motion.shift;
        result.box->high = result.box->high + motion.shift;
    }
    result.shape.centroid = result.centre;
    return result;
}
