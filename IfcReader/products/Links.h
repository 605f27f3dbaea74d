/**
 * @file Links.h
 * Pairs of instances, found by the first of them.
 */
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace IfcReader {

/** From instances to those that belong to them, in the order in which they were added. */
class Links {
public:
    struct Link {
        std::uint64_t from;
        std::uint64_t to;
    };

    struct Range {
        const Link* first;
        const Link* last;
        const Link* begin() const { return first; }
        const Link* end() const { return last; }
        bool empty() const { return first == last; }
    };

    void add(std::uint64_t from, std::uint64_t to) { links_.push_back({from, to}); }

    /** To be called between the last add() and the first of(). */
    void sort() {
        std::stable_sort(links_.begin(), links_.end(), [](const Link& a, const Link& b) { return a.from < b.from; });
    }

    /** Sorts by both, and leaves each pair once. */
    void sortUnique() {
        std::sort(links_.begin(), links_.end(),
                  [](const Link& a, const Link& b) { return a.from != b.from ? a.from < b.from : a.to < b.to; });
        const auto same = [](const Link& a, const Link& b) { return a.from == b.from && a.to == b.to; };
        links_.erase(std::unique(links_.begin(), links_.end(), same), links_.end());
    }

    Range of(std::uint64_t from) const {
        struct ByFrom {
            bool operator()(const Link& a, std::uint64_t b) const { return a.from < b; }
            bool operator()(std::uint64_t a, const Link& b) const { return a < b.from; }
        };
        const auto [first, last] = std::equal_range(links_.begin(), links_.end(), from, ByFrom());
        return {links_.data() + (first - links_.begin()), links_.data() + (last - links_.begin())};
    }

private:
    std::vector<Link> links_;
};

} // namespace IfcReader
