/**
 * @file ProductName.h
 * Names of nodes in the reader's tree.
 */
#pragma once

#include <optional>
#include <string>

/** A node name CLASS_NAME_GLOBALID in its parts. */
struct ProductName {
    std::string
        className; ///< label of the library's class list; of a class that the list lacks, its name in upper case
    std::string name;
    std::string globalId; ///< empty when the node's name does not end in a valid one
};

/**
 * The parts of a node's name; nothing for a node that is no product, such as "IfcMappedItem" or "$RelAggregates". The
 * reader leaves the name of a node empty when it would get too long: of such a product only that it is one is known.
 */
std::optional<ProductName> parseProductName(const std::string& nodeName);
