/**
 * @file Item.h
 * One instance as the geometry sees it: arguments as numbers in metres and radians, and the items it refers to.
 */
#pragma once

#include "Units.h"
#include "geometry/Work.h"
#include "step/StepFile.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace IfcReader {

class Item;

/** Gives the items of a file to the building of one product. */
class Items {
public:
    /** @param file, units, work outlive this. */
    Items(const StepFile& file, const Units& units, Work& work) : file_(file), units_(units), work_(work) {}

    /** @throw ItemError when there is no such instance */
    Item at(std::uint64_t id) const;
    const StepFile& file() const { return file_; }
    const Units& units() const { return units_; }
    Work& work() const { return work_; }

private:
    const StepFile& file_;
    const Units& units_;
    Work& work_;
};

/**
 * An instance and its arguments. What is not as it has to be throws ItemError: an argument that is missing or of
 * another kind, a number that isn't finite or beyond 1e15.
 */
class Item {
public:
    Item(const Items& items, const StepInstance& instance) : items_(&items), instance_(instance) {}

    std::uint64_t id() const { return instance_.id; }
    std::string_view keyword() const { return instance_.keyword; }
    bool is(std::string_view keyword) const { return instance_.keyword == keyword; }

    /** Neither missing nor '$' nor '*' */
    bool given(std::size_t i) const;
    std::string_view argument(std::size_t i) const;

    double number(std::size_t i) const;
    double length(std::size_t i) const;         ///< in metres
    double positiveLength(std::size_t i) const; ///< in metres, more than 0
    double lengthOr(std::size_t i, double otherwise) const;
    double angle(std::size_t i) const; ///< in radians
    double angleOr(std::size_t i, double otherwise) const;
    /** An enumeration value without its dots; empty for none. */
    std::string_view word(std::size_t i) const;
    std::string text(std::size_t i) const;
    /** The up to three numbers of a list, the others 0; at least @p least have to be there. */
    std::array<double, 3> coordinates(std::size_t i, std::size_t least) const;

    std::uint64_t reference(std::size_t i) const;
    std::optional<std::uint64_t> referenceIf(std::size_t i) const;
    std::vector<std::uint64_t> references(std::size_t i) const; ///< of a list
    std::vector<double> numbers(std::size_t i) const;           ///< of a list
    /** Calls @p visit with each of the references of a list. */
    template <typename Visitor>
    void forEachReference(std::size_t i, Visitor visit) const {
        StepArguments members = list(i);
        for (auto id = members.nextReference(); id; id = members.nextReference()) {
            items_->work().add(1);
            visit(*id);
        }
    }

    /** The item that an argument refers to. */
    Item child(std::size_t i) const { return items_->at(reference(i)); }
    const Items& items() const { return *items_; }

    /** Says what is wrong with this item. */
    [[noreturn]] void fail(const std::string& reason) const;
    double checked(std::string_view argument) const;

private:
    std::optional<std::string_view> argumentIf(std::size_t i) const;
    StepArguments list(std::size_t i) const;
    std::optional<double> nextNumber(StepArguments& members) const;
    double inRange(double value) const;

    const Items* items_;
    StepInstance instance_;
};

} // namespace IfcReader
