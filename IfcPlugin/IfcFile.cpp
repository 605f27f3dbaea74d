#include "IfcFile.h"

#include "IfcModel.h"
#include "step/StepText.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

using namespace IfcReader;

namespace {

std::string readAll(const std::string& fileName) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(fileName.c_str(), "rb"), std::fclose);
    if (!file) {
        throw ModelError(std::strerror(errno));
    }

    std::string text;
    std::error_code error;
    const std::uintmax_t expected = std::filesystem::file_size(fileName, error);
    if (!error) {
        text.reserve(static_cast<std::size_t>(expected));
    }
    char block[65536];
    std::size_t size = 0;
    while ((size = std::fread(block, 1, sizeof block, file.get())) > 0) {
        text.append(block, size);
    }
    if (std::ferror(file.get()) != 0) {
        throw ModelError(std::strerror(errno));
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0 || c == '\0'; };
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/** The first schema that the header names, in upper case. */
std::string schemaOf(std::string_view text) {
    const std::string_view header = text.substr(0, text.find("ENDSEC"));
    const std::size_t entry = header.find("FILE_SCHEMA");
    const std::size_t open = header.find('\'', entry == std::string_view::npos ? header.size() : entry);
    if (open == std::string_view::npos) {
        return "";
    }
    const std::size_t close = header.find('\'', open + 1);
    std::string schema(header.substr(open + 1, close - open - 1));
    std::transform(schema.begin(), schema.end(), schema.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return schema;
}

/** The instances that others refer to must be there: the reader stumbles over one that is not. Throws ModelError. */
void checkReferences(std::string_view model) {
    std::vector<std::uint64_t> known;
    std::vector<std::uint64_t> needed;
    StepInstances instances(model);
    while (const auto instance = instances.next()) {
        known.push_back(instance->id);
        appendStepReferences(instance->arguments, needed);
    }
    std::sort(known.begin(), known.end());
    for (const std::uint64_t id : needed) {
        if (!std::binary_search(known.begin(), known.end(), id)) {
            throw ModelError("the file is damaged: #" + std::to_string(id) + " is referred to and not there");
        }
    }
}

} // namespace

std::string readIfcFile(const std::string& fileName) {
    constexpr std::string_view begin = "ISO-10303-21;";
    constexpr std::string_view end = "END-ISO-10303-21;";

    std::string text = readAll(fileName);
    const std::string_view model = trimmed(text);
    if (model.empty()) {
        throw ModelError("the file is empty");
    }
    if (model.substr(0, begin.size()) != begin) {
        throw ModelError("not an IFC file: it does not begin with ISO-10303-21");
    }
    // The reader takes some files that were cut off for whole ones; half a model would make half its objects removed.
    if (model.size() < end.size() || model.substr(model.size() - end.size()) != end) {
        throw ModelError("the file is truncated: it does not end with END-ISO-10303-21");
    }

    const std::string schema = schemaOf(model);
    if (schema.compare(0, 6, "IFC2X3") != 0) {
        throw ModelError("not an IFC 2x3 model: its schema is " + (schema.empty() ? "missing" : schema));
    }
    checkReferences(model);
    return text;
}
