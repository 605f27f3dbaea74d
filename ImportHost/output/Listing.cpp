#include "output/Listing.h"

#include <PluginKit/Text.h>

std::string listingText(const std::vector<ObjectRecord>& objects) {
    std::string text;
    for (const ObjectRecord& object : objects) {
        text +=
            printable(identityText(object)) + "  " + printable(object.className) + "  " + printable(object.name) + '\n';
    }
    return text + std::to_string(objects.size()) + (objects.size() == 1 ? " object\n" : " objects\n");
}
