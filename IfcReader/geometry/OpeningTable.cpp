#include "geometry/OpeningTable.h"

namespace IfcReader {

OpeningTable::OpeningTable(const StepFile& file) {
    for (std::size_t i = 0; i < file.size(); ++i) {
        const StepInstance instance = file[i];
        const bool isVoid = instance.keyword == "IFCRELVOIDSELEMENT";
        if (!isVoid && instance.keyword != "IFCRELAGGREGATES") {
            continue;
        }
        StepArguments arguments(instance.arguments);
        const auto whole = stepReference(arguments.nextAfter(4));
        const std::string_view related = arguments.next().value_or(std::string_view());
        if (!whole) {
            continue;
        }
        if (isVoid) {
            if (const auto opening = stepReference(related)) {
                openings_[*whole].push_back(*opening);
            }
            continue;
        }
        StepArguments parts = listMembers(related);
        while (const auto part = parts.next()) {
            if (const auto id = stepReference(*part)) {
                wholes_.emplace(*id, *whole);
            }
        }
    }
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
