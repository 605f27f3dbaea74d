/**
 * @file IfcModel.h
 * An IFC 2x3 file as a list of products.
 */
#pragma once

#include "Geometry.h"
#include "IfcProperties.h"

#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

using IfcReader::IfcProperties;
using IfcReader::IfcProperty;
using IfcReader::IfcPropertySet;
using IfcReader::IfcValue;

/** One mesh of a product; several products may show the same mesh. */
struct ProductMesh {
    const aiMesh* mesh;
    Matrix toProduct; ///< from the mesh's coordinates to the product's own
};

/** A node of the model that stands for an IFC product, with or without geometry. */
struct Product {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::string globalId;  ///< empty when the file gives no valid one
    std::string className; ///< upper-case label such as "IFCDOOR"
    std::string name;      ///< UTF-8
    std::size_t parent = none;

    /**
     * Placement in the world, in metres and with z up, in two parts. What is measured before the origin is added does
     * not change, not even in its last bit, when the product is only moved.
     */
    Matrix orientation;
    Vector origin;

    std::vector<ProductMesh> meshes;
};

/** Why a file is not a model that can be imported. */
class ModelError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** The products of a file; their meshes live as long as this object. */
class IfcModel {
public:
    /** Called with the part of the file that has been read, from 0 to 1. */
    using Progress = std::function<void(double)>;

    /** Reads a file. Throws ModelError. */
    IfcModel(const std::string& fileName, const Progress& progress);

    IfcModel(const IfcModel&) = delete;
    IfcModel& operator=(const IfcModel&) = delete;

    /** All products, each after its parent. */
    const std::vector<Product>& products() const { return products_; }

    /** What the file says of the products besides. */
    IfcProperties& properties() { return properties_; }

    const aiScene& scene() const { return *scene_; }

private:
    void collect(const aiNode& node, const Matrix& placement, const Matrix& parentToWorld,
                 const Matrix& parentToProduct, std::size_t product);
    Matrix placementIn(const Matrix& parentToWorld, const Matrix& placement) const;

    std::string text_; ///< the properties are views of it
    IfcProperties properties_;
    Assimp::Importer importer_;
    const aiScene* scene_ = nullptr;
    double unit_ = 1.0; ///< of length in the file, in metres
    std::vector<Product> products_;
};
