/**
 * @file SampleObjects.h
 * Objects as an import leaves them, made from simple bodies.
 */
#pragma once

#include "comparison/Rotation.h"
#include "state/ObjectRecord.h"
#include "state/ShapeMeasure.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

using Outline = std::vector<std::array<double, 2>>;

/** An outline drawn upwards; it starts at the given corner, and its side faces may be cut into triangles. */
inline PluginKit::SolidSurface prism(const Outline& outline, double height, std::size_t start = 0,
                                     bool inTriangles = false) {
    PluginKit::SolidSurface surface;
    const auto count = static_cast<std::uint32_t>(outline.size());
    for (const double z : {0.0, height}) {
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const auto& [x, y] = outline[(i + start) % outline.size()];
            surface.vertices.push_back({x, y, z});
        }
    }
    std::vector<std::uint32_t> bottom;
    std::vector<std::uint32_t> top;
    for (std::uint32_t i = 0; i < count; ++i) {
        bottom.insert(bottom.begin(), i);
        top.push_back(count + i);
        const std::uint32_t next = (i + 1) % count;
        if (inTriangles) {
            surface.addPolygon({i, next, count + next});
            surface.addPolygon({i, count + next, count + i});
        } else {
            surface.addPolygon({i, next, count + next, count + i});
        }
    }
    surface.addPolygon(bottom);
    surface.addPolygon(top);
    return surface;
}

inline PluginKit::SolidSurface block(double x, double y, double z) {
    return prism({{0.0, 0.0}, {x, 0.0}, {x, y}, {0.0, y}}, z);
}

inline PluginKit::SolidSurface placed(PluginKit::SolidSurface surface, const RigidMotion& motion) {
    for (Vector3& vertex : surface.vertices) {
        vertex = motion.apply(vertex);
    }
    return surface;
}

inline PluginKit::SolidSurface shifted(const PluginKit::SolidSurface& surface, const Vector3& shift) {
    return placed(surface, {noRotation, shift});
}

/** The mirror image in the plane x = 0, turned outside again. */
inline PluginKit::SolidSurface mirrored(PluginKit::SolidSurface surface) {
    for (Vector3& vertex : surface.vertices) {
        vertex[0] = -vertex[0];
    }
    auto corner = surface.corners.begin();
    for (const std::uint32_t size : surface.sizes) {
        std::reverse(corner, corner + size);
        corner += size;
    }
    return surface;
}

/** An object under a GlobalId, of which 22 characters count. */
inline ObjectRecord object(std::string id, const std::string& name, const std::vector<PluginKit::SolidSurface>& body,
                           const std::string& className = "IFCWALL") {
    id.resize(ImportCommon::ExternalGUID::GlobalIdSize, '0');
    ObjectRecord record;
    record.identity = ImportCommon::ExternalGUID::fromIFCGlobalID(id.c_str());
    record.spatialHash = record.identity;
    record.className = className;
    record.name = name;
    record.box = boxOf(body).value();
    record.shape = shapeOf(body);
    record.position = (record.box.low + record.box.high) * 0.5;
    record.version = ImportCommon::createFromBoundingBox(record.box.size(0), record.box.size(1), record.box.size(2));
    record.attributes.emplace();
    (*record.attributes)["Name"] = name;
    return record;
}

inline ObjectRecord object(const std::string& id, const std::string& name, const PluginKit::SolidSurface& body,
                           const std::string& className = "IFCWALL") {
    return object(id, name, std::vector<PluginKit::SolidSurface>{body}, className);
}
