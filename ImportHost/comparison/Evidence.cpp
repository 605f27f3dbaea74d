#include "comparison/Evidence.h"

#include "comparison/Congruence.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace {

std::string tagOf(const ObjectRecord& record) {
    return attributeOf(record, "Tag").value_or("");
}

/** A name without the number that tells it from others of its kind. */
std::string_view stemOf(std::string_view name) {
    const std::size_t digits = name.find_last_not_of("0123456789");
    const std::size_t end = digits == std::string_view::npos ? 0 : digits + 1;
    const std::size_t separators = name.substr(0, end).find_last_not_of(":_ #-");
    return name.substr(0, separators == std::string_view::npos ? 0 : separators + 1);
}

double ofAttribute(const ObjectRecord& before, const ObjectRecord& now, std::string_view attribute, double weight) {
    const std::optional<std::string> a = attributeOf(before, attribute);
    const std::optional<std::string> b = attributeOf(now, attribute);
    if (!a && !b) {
        return 0.0;
    }
    return a == b ? weight : -weight;
}

/** Of shapes that are not the same, those that differ in one dimension were perhaps made longer. */
double ofOtherShapes(const Body& before, const Body& now, double alike) {
    std::array<double, 3> ratios{};
    for (std::size_t i = 0; i < ratios.size(); ++i) {
        constexpr double thinnest = 0.001;
        const double a = before.spread[i] + thinnest;
        const double b = now.spread[i] + thinnest;
        ratios[i] = std::min(a, b) / std::max(a, b);
    }
    std::sort(ratios.begin(), ratios.end());
    constexpr double nearlyEqual = 0.97;
    constexpr double halfAlike = 0.5;
    if (ratios[1] > nearlyEqual) {
        return 2.5 * alike;
    }
    return alike > halfAlike ? 2.0 * alike - 1.0 : -2.0;
}

/** For each body the logarithm of how many there are to one of its shape; more than some are as good as many. */
std::vector<double> raritiesOf(const std::vector<Body>& bodies) {
    constexpr std::size_t many = 50;
    std::vector<std::size_t> order(bodies.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto size = [&](std::size_t i) { return bodies[i].spread[0]; };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return size(a) < size(b); });
    std::vector<double> rarities(bodies.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        constexpr double tolerance = 0.0005;
        std::size_t count = 1;
        const auto look = [&](std::size_t other) {
            if (std::fabs(size(order[other]) - size(order[i])) > tolerance || count >= many) {
                return false;
            }
            count += measureAlike(bodies[order[other]], bodies[order[i]]) ? 1 : 0;
            return true;
        };
        for (std::size_t other = i + 1; other < std::min(order.size(), i + many) && look(other); ++other) {
        }
        for (std::size_t other = i; other > 0 && i - other < many && look(other - 1); --other) {
        }
        rarities[order[i]] = std::log(static_cast<double>(bodies.size()) / static_cast<double>(count));
    }
    return rarities;
}

/** Near is likely; but whatever is moved may be moved anywhere. */
double ofDistance(double distance) {
    constexpr double near = 0.4;
    return 2.5 - std::log1p(distance / near);
}

/** Numbers for texts, the same for the same. */
using Numbering = std::unordered_map<std::string, std::size_t>;

std::vector<std::size_t> numberedProperties(const ObjectRecord& record, Numbering& numbering) {
    std::vector<std::size_t> result;
    if (record.properties.text.empty()) {
        return result;
    }
    const std::vector<std::string_view> fields = split(record.properties.text, '\t');
    for (std::size_t i = 0; i + 2 < fields.size(); i += 3) {
        const char* const begin = fields[i].data();
        const char* const end = fields[i + 2].data() + fields[i + 2].size();
        result.push_back(numbering.emplace(std::string(begin, end), numbering.size()).first->second);
    }
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

} // namespace

TextCounts::Count TextCounts::of(std::string_view text) const {
    const auto found = counts_.find(std::string(text));
    return found == counts_.end() ? Count() : found->second;
}

CopyCheck::CopyCheck(const Pairing& pairing) {
    for (std::size_t i = 0; i < pairing.before().size(); ++i) {
        const ObjectRecord& record = *pairing.before()[i].record;
        names_.addBefore(record.name);
        tags_.addBefore(tagOf(record));
        if (pairing.isFreeBefore(i)) {
            names_.addFreeBefore(record.name);
            tags_.addFreeBefore(tagOf(record));
        }
    }
    for (const Body& body : pairing.now()) {
        names_.addNow(body.record->name);
        tags_.addNow(tagOf(*body.record));
    }
}

bool CopyCheck::isCopy(const ObjectRecord& before, const ObjectRecord& now) const {
    const auto belongsToAnother = [](const TextCounts& counts, std::string_view old, std::string_view fresh) {
        const TextCounts::Count count = counts.of(fresh);
        return !fresh.empty() && old != fresh && count.before > 0 && count.freeBefore == 0;
    };
    return belongsToAnother(names_, before.name, now.name) || belongsToAnother(tags_, tagOf(before), tagOf(now));
}

Evidence::Evidence(const Pairing& pairing)
    : pairing_(pairing), copies_(pairing), rarities_(raritiesOf(pairing.before())) {
    Numbering numbering;
    for (const Body& body : pairing.before()) {
        propertiesBefore_.push_back(numberedProperties(*body.record, numbering));
    }
    for (const Body& body : pairing.now()) {
        propertiesNow_.push_back(numberedProperties(*body.record, numbering));
    }
    std::vector<std::size_t> counts(numbering.size(), 0);
    for (const auto* const side : {&propertiesBefore_, &propertiesNow_}) {
        for (const std::vector<std::size_t>& properties : *side) {
            for (const std::size_t property : properties) {
                ++counts[property];
            }
        }
    }
    const double all = static_cast<double>(pairing.before().size() + pairing.now().size());
    for (const std::size_t count : counts) {
        weights_.push_back(std::log(all / static_cast<double>(count)));
    }
}

double Evidence::score(std::size_t before, std::size_t now) const {
    const Body& a = pairing_.before()[before];
    const Body& b = pairing_.now()[now];
    double score = a.record->className == b.record->className ? 1.0 : -1.0;
    score += ofNames(*a.record, *b.record) + ofTags(*a.record, *b.record);
    score += ofAttribute(*a.record, *b.record, "Type", 0.5) + ofAttribute(*a.record, *b.record, "Storey", 0.25) +
             ofAttribute(*a.record, *b.record, "Material", 0.25);
    if (copies_.isCopy(*a.record, *b.record)) {
        score -= 3.0;
    }
    return score + ofShapes(before, now) + ofProperties(before, now) + ofDistance(distanceBetween(a, b));
}

double Evidence::ofNames(const ObjectRecord& before, const ObjectRecord& now) const {
    if (before.name.empty() && now.name.empty()) {
        return 0.0;
    }
    if (before.name == now.name) {
        const TextCounts::Count count = copies_.names().of(now.name);
        const bool isUnique = count.before == 1 && count.now == 1;
        return isUnique ? 3.0 : count.now <= count.before ? 1.0 : 0.5;
    }
    return !now.name.empty() && stemOf(before.name) == stemOf(now.name) ? 0.5 : -1.0;
}

double Evidence::ofTags(const ObjectRecord& before, const ObjectRecord& now) const {
    const std::string a = tagOf(before);
    const std::string b = tagOf(now);
    if (a.empty() || b.empty()) {
        return 0.0;
    }
    const TextCounts::Count count = copies_.tags().of(b);
    const bool isUnique = count.before == 1 && count.now == 1;
    return a == b ? (isUnique ? 2.5 : 0.5) : -0.5;
}

double Evidence::ofShapes(std::size_t before, std::size_t now) const {
    const Body& a = pairing_.before()[before];
    const Body& b = pairing_.now()[now];
    const double alike = likeness(a, b);
    return alike == 1.0 ? 2.5 + std::min(1.0, 0.25 * rarities_[before]) : ofOtherShapes(a, b, alike);
}

double Evidence::ofProperties(std::size_t before, std::size_t now) const {
    const std::vector<std::size_t>& a = propertiesBefore_[before];
    const std::vector<std::size_t>& b = propertiesNow_[now];
    if (a.empty() && b.empty()) {
        return 0.0;
    }
    double common = 0.0;
    double all = 0.0;
    auto p = a.begin();
    auto q = b.begin();
    while (p != a.end() || q != b.end()) {
        if (q == b.end() || (p != a.end() && *p < *q)) {
            all += weights_[*p++];
        } else if (p == a.end() || *q < *p) {
            all += weights_[*q++];
        } else {
            common += weights_[*p];
            all += weights_[*p];
            ++p;
            ++q;
        }
    }
    return (all > 0.0 ? 2.0 * common / all : 0.0) - 0.5;
}
