#include "geometry/OpeningTable.h"

namespace IfcReader {

OpeningTable::OpeningTable(const StepFile& file) {
    file.forEachOf({"IFCRELVOIDSELEMENT", "IFCRELAGGREGATES", "IFCRELNESTS"}, [&](const StepInstance& instance) {
        StepArguments arguments(instance.arguments);
        const auto whole = stepReference(arguments.nextAfter(4));
        if (!whole) {
            return;
        }
        if (instance.keyword == "IFCRELVOIDSELEMENT") {
            if (const auto opening = stepReference(arguments.nextAfter(0))) {
                openings_[*whole].push_back(*opening);
            }
            return;
        }
        if (auto parts = arguments.nextList()) {
            for (auto part = parts->nextReference(); part; part = parts->nextReference()) {
                wholes_.emplace(*part, *whole);
            }
        }
    });
}

std::vector<std::uint64_t> OpeningTable::openingsOf(std::uint64_t product) const {
    constexpr int mostWholes = 100; // a file may lead in circles
    std::vector<std::uint64_t> all;
    for (int i = 0; i < mostWholes; ++i) {
        const auto own = openings_.find(product);
        if (own != openings_.end()) {
            all.insert(all.end(), own->second.begin(), own->second.end());
        }
        const auto whole = wholes_.find(product);
        if (whole == wholes_.end()) {
            break;
        }
        product = whole->second;
    }
    return all;
}

} // namespace IfcReader
