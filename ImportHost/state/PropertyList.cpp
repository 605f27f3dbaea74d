#include "state/PropertyList.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <tuple>

namespace {

/** Names and values of all objects together, in bytes. */
constexpr std::size_t mostPropertyBytes = std::size_t(1) << 30;

constexpr double pi = 3.141592653589793;

/** The texts as they stand in streams and state, with their escapes. */
struct Entry {
    std::string_view set;
    std::string name;
    std::string value;
};

bool operator<(const Entry& a, const Entry& b) {
    return std::tie(a.set, a.name, a.value) < std::tie(b.set, b.name, b.value);
}

double finiteNumber(std::string_view text) {
    const double number = toDouble(text);
    if (!std::isfinite(number)) {
        throw std::runtime_error("'" + printable(text) + "' is not a number");
    }
    return number;
}

double positiveNumber(std::string_view text) {
    const double number = finiteNumber(text);
    if (number <= 0.0) {
        throw std::runtime_error("'" + printable(text) + "' is not a factor");
    }
    return number;
}

/** A number that must stay finite in the unit in which it is compared and shown. */
double inRange(double number, std::string_view text) {
    if (!std::isfinite(number)) {
        throw std::runtime_error("'" + printable(text) + "' is out of range");
    }
    return number;
}

/** Degrees, which are off in the last digits when they were radians before. */
std::string degreesText(double degrees) {
    char buffer[64];
    return std::string(buffer,
                       std::to_chars(buffer, buffer + sizeof buffer, degrees, std::chars_format::general, 12).ptr);
}

/** With a point or an exponent, so that it is told from a whole number, which counts something and is compared exactly. */
std::string realText(double number) {
    std::string text = numberText(number);
    if (text.find_first_of(".e") == std::string::npos) {
        text += '.';
    }
    return text;
}

std::string valueOf(std::string_view type, std::string_view value, std::string_view factor) {
    if (type == "text") {
        return '\'' + std::string(value);
    }
    if (type == "angle") {
        return degreesText(inRange(finiteNumber(value) * 180.0 / pi + 0.0, value));
    }
    if (type == "real" || type == "length") {
        const double number = finiteNumber(value) + 0.0;
        if (factor.empty()) {
            return realText(number);
        }
        inRange(number * positiveNumber(factor), value);
        return realText(number) + ' ' + numberText(positiveNumber(factor));
    }
    const bool isState = value == "true" || value == "false";
    if (type == "integer") {
        toLong(value);
    } else if (!(type == "boolean" && isState) && !(type == "logical" && (isState || value == "unknown"))) {
        throw std::runtime_error("'" + printable(value) + "' is not a value of type '" + printable(type) + "'");
    }
    return std::string(value);
}

/** Throws unless a value of a state is one that valueOf() gives. */
void checkValue(std::string_view value) {
    if (value.substr(0, 1) == "'" || value == "true" || value == "false" || value == "unknown") {
        return;
    }
    const std::size_t blank = value.find(' ');
    const double factor = blank == std::string_view::npos ? 1.0 : positiveNumber(value.substr(blank + 1));
    inRange(finiteNumber(value.substr(0, blank)) * factor, value);
}

/**
 * Spells every escape in the one way, whatever the plug-in's or an older state's was: lists are compared as texts. The
 * order is that of the texts.
 */
void respell(PropertyList& list) {
    if (list.text.find('%') == std::string::npos) {
        return;
    }
    const std::vector<std::string_view> fields = split(list.text, '\t');
    std::vector<std::array<std::string, 3>> properties(fields.size() / 3);
    for (std::size_t i = 0; i < properties.size() * 3; ++i) {
        properties[i / 3][i % 3] = escaped(unescaped(fields[i]));
    }
    std::sort(properties.begin(), properties.end());
    std::string text;
    for (const auto& [set, name, value] : properties) {
        text.append(text.empty() ? "" : "\t").append(set).append("\t").append(name).append("\t").append(value);
    }
    list.text = std::move(text);
    list.digest = checksum(list.text);
}

/** Goes through the lines of an attributes stream. */
class AttributesReader {
public:
    explicit AttributesReader(std::size_t objectCount) : entries_(objectCount), attributes_(objectCount) {}

    void read(std::string_view line) {
        const std::vector<std::string_view> fields = split(line, '\t');
        if (fields[0] == "set" && fields.size() >= 7) {
            readSet(fields);
        } else if (fields[0] == "property" && fields.size() >= 6) {
            readProperty(fields);
        } else {
            throw std::runtime_error("neither a set nor a property");
        }
    }

    std::vector<ObjectData> data() {
        std::vector<ObjectData> data(entries_.size());
        for (std::size_t i = 0; i < data.size(); ++i) {
            data[i].attributes = std::move(attributes_[i]);
            data[i].properties = listOf(entries_[i]);
        }
        return data;
    }

private:
    static PropertyList listOf(std::vector<Entry>& entries) {
        std::sort(entries.begin(), entries.end());
        PropertyList list;
        for (const Entry& entry : entries) {
            list.text += list.text.empty() ? "" : "\t";
            list.text.append(entry.set).append("\t").append(entry.name).append("\t").append(entry.value);
        }
        list.isKnown = true;
        list.digest = checksum(list.text);
        respell(list);
        return list;
    }

    void readSet(const std::vector<std::string_view>& fields) {
        const long object = toLong(fields[1]);
        if (object < 0 || static_cast<unsigned long>(object) > entries_.size()) {
            throw std::runtime_error("there is no object " + std::to_string(object));
        }
        object_ = static_cast<std::size_t>(object);
        set_ = fields.size() > 7 ? fields[7] : fields[5];
        path_.clear();
        isInSet_ = true;
        isOwn_ = fields[3] == "attributes";
        if (isOwn_ && object_ > 0 && !attributes_[object_ - 1]) {
            attributes_[object_ - 1].emplace();
        }
    }

    void readProperty(const std::vector<std::string_view>& fields) {
        const long depth = toLong(fields[1]);
        if (!isInSet_ || depth < 0 || static_cast<unsigned long>(depth) > path_.size()) {
            throw std::runtime_error("a property of nothing");
        }
        path_.resize(static_cast<std::size_t>(depth));
        charge(fields[5].size());
        if (isOwn_) {
            readAttribute(depth, fields);
            return;
        }
        std::string name = path_.empty() ? std::string() : path_.back() + '.';
        name += fields.size() > 6 && !fields[6].empty() ? fields[6] : fields[2];
        charge(name.size());
        if (fields[4] == "complex") {
            path_.push_back(std::move(name));
        } else if (object_ > 0) {
            const std::string_view factor = fields.size() > 7 ? fields[7] : std::string_view();
            entries_[object_ - 1].push_back({set_, std::move(name), valueOf(fields[4], fields[5], factor)});
        }
    }

    /** Full names grow with the depth of a property: a small stream may mean more of them than memory holds. */
    void charge(std::size_t bytes) {
        charged_ += bytes;
        if (charged_ > mostPropertyBytes) {
            throw std::runtime_error("more than " + std::to_string(mostPropertyBytes >> 20) + " MiB of properties");
        }
    }

    void readAttribute(long depth, const std::vector<std::string_view>& fields) {
        if (depth != 0 || fields[4] != "text") {
            throw std::runtime_error("an attribute that is not a text");
        }
        if (object_ > 0) {
            (*attributes_[object_ - 1])[unescaped(fields[2])] = unescaped(fields[5]);
        }
    }

    std::vector<std::vector<Entry>> entries_;
    std::vector<std::optional<Attributes>> attributes_;
    std::size_t object_ = 0; ///< that the set belongs to; 0 for a product without geometry
    std::string_view set_;
    std::size_t charged_ = 0;
    bool isInSet_ = false;
    bool isOwn_ = false;            ///< whether the set holds the object's own attributes
    std::vector<std::string> path_; ///< full names of the complex properties around the next one
};

} // namespace

std::vector<ObjectData> readObjectData(std::string_view attributesStream, std::size_t objectCount) {
    AttributesReader reader(objectCount);
    std::size_t number = 0;
    Parts lines(attributesStream, '\n');
    for (std::string_view line; lines.next(line);) {
        ++number;
        try {
            if (!line.empty()) {
                reader.read(line);
            }
        } catch (const std::runtime_error& e) {
            throw std::runtime_error("line " + std::to_string(number) + ": " + e.what());
        }
    }
    return reader.data();
}

void appendPropertyList(std::string& text, const PropertyList& list) {
    text += list.isKnown ? list.digest : "-";
    if (list.isKnown && !list.text.empty()) {
        text.append(1, '\t').append(list.text);
    }
}

PropertyList propertyListFromFields(std::string_view fields) {
    PropertyList list;
    const std::size_t end = std::min(fields.find('\t'), fields.size());
    list.digest = fields.substr(0, end);
    list.text = fields.substr(std::min(end + 1, fields.size()));
    list.isKnown = list.digest != "-";
    const auto tabs = std::count(list.text.begin(), list.text.end(), '\t');
    if (list.isKnown ? list.digest.size() != 16 || (end < fields.size() && tabs % 3 != 2) : end < fields.size()) {
        throw std::runtime_error("not a list of properties");
    }
    if (!list.text.empty()) {
        const std::vector<std::string_view> texts = split(list.text, '\t');
        for (std::size_t i = 2; i < texts.size(); i += 3) {
            checkValue(texts[i]);
        }
    }
    respell(list);
    return list;
}
