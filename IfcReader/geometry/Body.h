/**
 * @file Body.h
 * Flat faces and the bodies that they bound.
 */
#pragma once

#include "geometry/Vector.h"

#include <cstdint>
#include <vector>

namespace IfcReader {

/** Corners of a closed chain of edges; the last one is joined to the first. */
using Loop = std::vector<Vector>;

struct Plane {
    Vector normal;
    double distance = 0.0;

    double operator()(const Vector& p) const { return dot(normal, p) - distance; }
    Plane flipped() const { return {-normal, -distance}; }
    bool isKnown() const { return !(normal == Vector{}); }
};

/** A flat face: counter-clockwise seen from outside, its holes clockwise. */
struct Face {
    Loop outer;
    std::vector<Loop> holes;
    /** Of the face that this one was cut from, so that its parts stay in one plane exactly; not always known. */
    Plane plane{};
};

/** What one representation item becomes. */
struct Body {
    std::vector<Face> faces;
    bool solid = true;                ///< the faces enclose a volume and are turned outwards
    std::vector<std::uint64_t> items; ///< the instances it came from, the outermost first
};

struct Box {
    Vector low{1e300, 1e300, 1e300};
    Vector high{-1e300, -1e300, -1e300};

    void add(const Vector& p);
    void add(const Body& body);
    bool empty() const { return low.x > high.x; }
    /** Whether the boxes are less than @p distance apart. */
    bool meets(const Box& other, double distance) const;
    Vector centre() const { return (low + high) * 0.5; }
    /** Of the sphere around the centre that holds the box. */
    double radius() const { return empty() ? 0.0 : length(high - low) * 0.5; }
};

/** Normal of a loop with its area as length. */
Vector areaVector(const Loop& loop);
Vector areaVector(const Face& face);

/** Whether all corners are within reach of the origin. */
bool isWithinReach(const Face& face);
bool isWithinReach(const Body& body);

void flip(Face& face);
void transform(Face& face, const Affine& map);
/** A mirroring map turns the faces, so that they look outwards again. */
void transform(Body& body, const Affine& map);

/** Volume that faces turned outwards enclose; negative when they are turned inwards. */
double signedVolume(const std::vector<Face>& faces);
void turnOutwards(Body& body);

/**
 * How far faces are from closing a volume: 0 where they do. Two sums over the area are 0 for any closed surface, that of
 * its normals, and that of its normals times the places where they stand but for the volume on the diagonal; the first
 * alone would not notice that a tube has no ends. Both are taken as parts of what they would be if nothing cancelled.
 */
double gap(const std::vector<Face>& faces);

/** Points in all loops together. */
std::size_t countPoints(const std::vector<Face>& faces);

/** Calls @p visit with each loop of a face. */
template <typename Visitor>
void forEachLoop(const Face& face, Visitor visit) {
    visit(face.outer);
    for (const Loop& hole : face.holes) {
        visit(hole);
    }
}
template <typename Visitor>
void forEachLoop(Face& face, Visitor visit) {
    visit(face.outer);
    for (Loop& hole : face.holes) {
        visit(hole);
    }
}

} // namespace IfcReader
