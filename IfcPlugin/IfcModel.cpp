#include "IfcModel.h"

#include "IfcFile.h"
#include "ProductName.h"

#include <assimp/config.h>

#include <assimp/ProgressHandler.hpp>
#include <cmath>

namespace {

class ProgressAdapter : public Assimp::ProgressHandler {
public:
    explicit ProgressAdapter(IfcModel::Progress progress) : progress_(std::move(progress)) {}

    bool Update(float part) override {
        if (part >= 0.0f && part <= 1.0f) {
            progress_(static_cast<double>(part));
        }
        return true;
    }

private:
    IfcModel::Progress progress_;
};

/** The reader turns models to y up; this turns them back, exactly, since it undoes the same rounded rotation. */
Matrix zUp() {
    aiMatrix4x4 rotation;
    aiMatrix4x4::RotationX(AI_MATH_HALF_PI_F, rotation);
    return toDouble(rotation);
}

} // namespace

IfcModel::IfcModel(const std::string& fileName, const Progress& progress)
    : text_(readIfcFile(fileName)), properties_(text_) {
    importer_.SetProgressHandler(new ProgressAdapter(progress)); // the importer owns it
    // No post-processing: it costs more time than reading, and the measurements take polygons as they come.
    scene_ = importer_.ReadFileFromMemory(text_.data(), text_.size(), 0, "ifc");
    if (scene_ == nullptr || scene_->mRootNode == nullptr) {
        throw ModelError(importer_.GetErrorString());
    }

    const Matrix root = zUp() * toDouble(scene_->mRootNode->mTransformation);
    unit_ = std::cbrt(std::abs(root.Determinant()));
    collect(*scene_->mRootNode, root, Matrix(), Matrix(), Product::none);

    for (Product& product : products_) {
        product.name = properties_.nameOf(product.globalId).value_or(product.name);
    }
}

/**
 * A node's placement relative to its parent. The reader gives it so, except below a parent that stands within a
 * hundredth of the origin: there it is left relative to the origin.
 */
Matrix IfcModel::placementIn(const Matrix& parentToWorld, const Matrix& placement) const {
    Matrix scale;
    Matrix::Scaling(Vector(1.0 / unit_, 1.0 / unit_, 1.0 / unit_), scale);
    Matrix parent = scale * parentToWorld;
    return parent.IsIdentity() ? parent.Inverse() * placement : placement;
}

void IfcModel::collect(const aiNode& node, const Matrix& placement, const Matrix& parentToWorld,
                       const Matrix& parentToProduct, std::size_t product) {
    const Matrix toWorld = parentToWorld * placement;
    Matrix toProduct = parentToProduct * placement;

    if (const auto parsed = parseProductName(std::string(node.mName.data, node.mName.length))) {
        Product found;
        found.globalId = parsed->globalId;
        found.className = parsed->className;
        found.name = parsed->name;
        found.parent = product;
        found.origin = Vector(toWorld.a4, toWorld.b4, toWorld.c4);
        found.orientation = toWorld;
        found.orientation.a4 = found.orientation.b4 = found.orientation.c4 = 0.0;
        product = products_.size();
        products_.push_back(found);
        toProduct = Matrix();
    }

    // Meshes of nodes that are no products themselves, such as mapped items, belong to the nearest product above.
    for (unsigned int i = 0; i < node.mNumMeshes && product != Product::none; ++i) {
        products_[product].meshes.push_back({scene_->mMeshes[node.mMeshes[i]], toProduct});
    }
    for (unsigned int i = 0; i < node.mNumChildren; ++i) {
        collect(*node.mChildren[i], placementIn(toWorld, toDouble(node.mChildren[i]->mTransformation)), toWorld,
                toProduct, product);
    }
}
