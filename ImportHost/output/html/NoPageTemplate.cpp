#include "output/html/PageTemplate.h"

std::string_view pageTemplate() {
    return {};
}
