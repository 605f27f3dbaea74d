/**
 * @file Evidence.h
 * What speaks for two objects being one, where neither identity nor place tells.
 */
#pragma once

#include "comparison/Pairing.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/** How often texts occur in both models. */
class TextCounts {
public:
    void addBefore(std::string_view text) { ++counts_[std::string(text)].before; }
    void addNow(std::string_view text) { ++counts_[std::string(text)].now; }
    void addFreeBefore(std::string_view text) { ++counts_[std::string(text)].freeBefore; }

    struct Count {
        std::size_t before = 0;
        std::size_t now = 0;
        std::size_t freeBefore = 0; ///< of those before, how many have no partner
    };

    Count of(std::string_view text) const;

private:
    std::unordered_map<std::string, Count> counts_;
};

/** Tells copies: objects whose name or tag belongs to one that is still there. */
class CopyCheck {
public:
    explicit CopyCheck(const Pairing& pairing);

    /** Whether the name or the tag of @p now is another object's, and not that of @p before. */
    bool isCopy(const ObjectRecord& before, const ObjectRecord& now) const;

    const TextCounts& names() const { return names_; }
    const TextCounts& tags() const { return tags_; }

private:
    TextCounts names_;
    TextCounts tags_;
};

/** Weighs what two objects have in common. */
class Evidence {
public:
    explicit Evidence(const Pairing& pairing);

    /** More is better; about 4.5 is as likely as not. */
    double score(std::size_t before, std::size_t now) const;

private:
    double ofNames(const ObjectRecord& before, const ObjectRecord& now) const;
    double ofTags(const ObjectRecord& before, const ObjectRecord& now) const;
    double ofShapes(std::size_t before, std::size_t now) const;
    double ofProperties(std::size_t before, std::size_t now) const;

    const Pairing& pairing_;
    CopyCheck copies_;
    std::vector<double> rarities_; ///< of the shapes of the old objects: how little of the model has one like it
    std::vector<std::vector<std::size_t>> propertiesBefore_; ///< numbers of the properties of each object, sorted
    std::vector<std::vector<std::size_t>> propertiesNow_;
    std::vector<double> weights_; ///< of each property: the rarer the greater
};
