/**
 * @file IfcModel.cpp
 * IFC models of any bytes: refused with one line, or every product comes with a shape that holds together.
 *
 * An input that doesn't begin like a file is the data of one: the header and some instances that shapes build on are put
 * around it, so that what is found is about shapes and properties more often than about headers.
 */
#include "FuzzInput.h"
#include "Support/IfcShapeModel.h"

#include <IfcReader/Model.h>

#include <cmath>

using namespace IfcReader;

namespace {

void checkShape(const Shape& shape) {
    require(std::isfinite(shape.origin.x + shape.origin.y + shape.origin.z), "origin");
    for (const ShapePart& part : shape.parts) {
        require(!part.items.empty() && !part.sizes.empty(), "part of nothing");
        for (const Point& p : part.vertices) {
            require(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z), "vertex");
        }
        std::size_t first = 0;
        for (const std::uint32_t polygonSize : part.sizes) {
            require(polygonSize > 2 && polygonSize <= part.corners.size() - first, "size of a polygon");
            for (std::uint32_t i = 0; i < polygonSize; ++i) {
                const std::uint32_t corner = part.corners[first + i];
                require(corner < part.vertices.size(), "number of a vertex");
                require(corner != part.corners[first + (i + 1) % polygonSize], "edge of no length");
            }
            first += polygonSize;
        }
        require(first == part.corners.size(), "corners of no polygon");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    if (text.substr(0, 4) != "ISO-") {
        text = ifcFile(productOf100 + text, millimetres);
    }
    try {
        const std::unique_ptr<Model> model = Model::ofText(std::move(text));
        for (std::size_t i = 0; i < model->size(); ++i) {
            checkShape(model->product(i).shape);
        }
    } catch (const IfcError& error) {
        require(std::string(error.what()).find('\n') == std::string::npos && *error.what() != 0, "one line");
    }
    return 0;
}
