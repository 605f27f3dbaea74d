/**
 * @file Looks.h
 * Colours and transparency.
 */
#pragma once

#include "IfcReader/Model.h"
#include "products/Relations.h"
#include "step/StepFile.h"

#include <optional>

namespace IfcReader {

/** How items and materials look: from styled items, and from the representations that show materials. */
class Looks {
public:
    Looks(const StepFile& file, const Relations& relations) : file_(file), relations_(relations) {}

    /** How the first of some items that has a style looks: what is said of an outer one holds for those inside it. */
    std::optional<Look> ofItems(const std::vector<std::uint64_t>& items) const;

    /** How the first of some materials that has a style looks. */
    std::optional<Look> ofMaterials(const std::vector<std::uint64_t>& materials) const;

private:
    std::optional<Look> ofStyledItem(const StepInstance& styledItem, int& tries) const;
    std::optional<Look> ofStyle(const StepInstance& style, int& tries) const;

    const StepFile& file_;
    const Relations& relations_;
};

} // namespace IfcReader
