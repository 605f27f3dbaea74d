#include "comparison/Lookalikes.h"

#include "comparison/Congruence.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

/** What an object says of itself, as one text. */
std::string saidBy(const Body& body) {
    const ObjectRecord& record = *body.record;
    std::string text = record.className;
    for (const std::string& part : {record.name, attributeOf(record, "Tag").value_or(""), record.properties.digest}) {
        text += '\t' + std::to_string(part.size()) + '\t' + part;
    }
    return text;
}

/** Sizes that are equal, but for a few that lie between two steps. */
std::string sizeOf(const Body& body) {
    constexpr double step = 0.02;
    std::string text;
    for (const double spread : body.spread) {
        text += ' ' + std::to_string(std::lround(spread / step));
    }
    return text;
}

} // namespace

Lookalikes::Lookalikes(const Pairing& pairing) : pairing_(pairing), counts_(pairing.now().size(), 0) {
    std::unordered_map<std::string, std::size_t> numbers;
    const auto numbered = [&](const std::vector<Body>& bodies) {
        std::vector<std::size_t> result;
        for (const Body& body : bodies) {
            result.push_back(numbers.emplace(saidBy(body), numbers.size()).first->second);
        }
        return result;
    };
    before_ = numbered(pairing.before());
    now_ = numbered(pairing.now());

    using Key = std::pair<std::size_t, std::string>;
    std::map<Key, std::pair<std::size_t, std::size_t>> counts;
    for (const std::size_t i : pairing.freeBefore()) {
        ++counts[{before_[i], sizeOf(pairing.before()[i])}].first;
    }
    for (const std::size_t i : pairing.freeNow()) {
        ++counts[{now_[i], sizeOf(pairing.now()[i])}].second;
    }
    for (const std::size_t i : pairing.freeNow()) {
        const auto& [before, now] = counts[{now_[i], sizeOf(pairing.now()[i])}];
        counts_[i] = std::max(before, now);
    }
}

bool Lookalikes::areLookalikesBefore(std::size_t a, std::size_t b) const {
    return before_[a] == before_[b] && measureAlike(pairing_.before()[a], pairing_.before()[b]);
}

bool Lookalikes::areLookalikesNow(std::size_t a, std::size_t b) const {
    return now_[a] == now_[b] && measureAlike(pairing_.now()[a], pairing_.now()[b]);
}
