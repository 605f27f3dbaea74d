/**
 * @file ItemBuilder.h
 * Makes bodies of representation items.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"
#include "geometry/MappedShapes.h"

#include <string>
#include <vector>

namespace IfcReader {

/** Collects the bodies of some items, and what could not be built of them. */
class ItemBuilder {
public:
    /** @param mapped, items outlive this. */
    ItemBuilder(const Items& items, MappedShapes& mapped) : items_(items), mapped_(mapped) {}

    /**
     * Appends the bodies of an item; curves, points, texts and boxes have none. What can't be built becomes a doubt.
     * The shape of a mapped item is moved by the origin of its map first, then by the item's own target.
     * @throw LimitError
     */
    void append(std::uint64_t id);

    /** The bodies of all items of a representation. @throw LimitError */
    void appendRepresentation(const Item& representation);

    /** Notes a doubt: each one once, and no more of them than anybody would read. */
    void addDoubt(const std::string& doubt);

    std::vector<Body> bodies;
    std::vector<std::string> doubts; ///< kind of item, and reason

private:
    void appendItem(const Item& item);
    void appendMapped(const Item& item);
    Body body(const Item& item, const Box* reach = nullptr);
    Body solidBody(const Item& item, const Box* reach);
    Body combined(const Item& item, const Box* reach);

    const Items& items_;
    MappedShapes& mapped_;
};

} // namespace IfcReader
