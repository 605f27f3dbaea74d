#include "comparison/PropertyDifference.h"

#include "comparison/Measure.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <iterator>
#include <tuple>

namespace {

/** Texts as they stand in streams and state, with their escapes. */
struct Entry {
    std::string_view set;
    std::string_view name;
    std::string_view value;
};

bool sameName(const Entry& a, const Entry& b) {
    return a.set == b.set && a.name == b.name;
}

std::vector<Entry> entriesOf(const PropertyList& list) {
    std::vector<Entry> entries;
    if (list.text.empty()) {
        return entries;
    }
    const std::vector<std::string_view> fields = split(list.text, '\t');
    for (std::size_t i = 0; i + 2 < fields.size(); i += 3) {
        entries.push_back({fields[i], fields[i + 1], fields[i + 2]});
    }
    return entries;
}

/** Compares values that are kept with a quote or with a factor. */
class ValueComparison {
public:
    explicit ValueComparison(bool areUnitsKnown) : areUnitsKnown_(areUnitsKnown) {}

    bool same(std::string_view a, std::string_view b) const {
        if (a == b) {
            return true;
        }
        const bool isText = a.substr(0, 1) == "'";
        if (isText != (b.substr(0, 1) == "'")) {
            return false;
        }
        if (isText) {
            return areSameNumberLists(a.substr(1), b.substr(1));
        }
        const std::optional<Measure> x = Measure::read(a);
        const std::optional<Measure> y = Measure::read(b);
        if (wholeNumber(a) && wholeNumber(b)) {
            return wholeNumber(a) == wholeNumber(b); // numbers of something, not measured
        }
        return x && y && (areUnitsKnown_ ? sameMeasure(x->inSi(), y->inSi()) : sameMeasure(x->number, y->number));
    }

    /** Values to show beside each other: without factors, and in SI units where these differ. */
    std::string shown(std::string_view value, std::string_view other) const {
        if (const std::optional<long> number = wholeNumber(value)) {
            return std::to_string(*number);
        }
        const std::optional<Measure> x = Measure::read(value);
        if (!x) {
            return unescaped(value);
        }
        const std::optional<Measure> y = Measure::read(other);
        return numberText(areUnitsKnown_ && y && x->factor != y->factor ? x->inSi() : x->number);
    }

private:
    bool areUnitsKnown_;
};

/** The values of one set and name; a model may give several. */
using Range = std::pair<std::vector<Entry>::const_iterator, std::vector<Entry>::const_iterator>;

Range takeRange(std::vector<Entry>::const_iterator& next, std::vector<Entry>::const_iterator end) {
    const auto first = next;
    while (next != end && sameName(*first, *next)) {
        ++next;
    }
    return {first, next};
}

constexpr std::size_t mostAlike = 1000;

/** The values of a range that another one, sorted as it is, does not have as they stand. */
std::vector<std::string_view> valuesBeside(const Range& range, const Range& other) {
    std::vector<Entry> entries;
    std::set_difference(range.first, range.second, other.first, other.second, std::back_inserter(entries),
                        [](const Entry& a, const Entry& b) { return a.value < b.value; });
    std::vector<std::string_view> values;
    values.reserve(entries.size());
    for (const Entry& entry : entries) {
        values.push_back(entry.value);
    }
    return values;
}

/** Compares values of one name: equal ones go together, and the others in their order. */
void compareRanges(const Range& old, const Range& fresh, const ValueComparison& comparison,
                   std::vector<PropertyDifference>& differences) {
    std::vector<std::string_view> gone = valuesBeside(old, fresh);
    std::vector<std::string_view> added;
    for (const std::string_view value : valuesBeside(fresh, old)) {
        // Of thousands of values with one name, which no model needs, only equal ones go together.
        const auto end = gone.size() > mostAlike ? gone.begin() : gone.end();
        const auto partner =
            std::find_if(gone.begin(), end, [&](std::string_view other) { return comparison.same(other, value); });
        if (partner != end) {
            gone.erase(partner);
        } else {
            added.push_back(value);
        }
    }
    const Entry& entry = old.first != old.second ? *old.first : *fresh.first;
    for (std::size_t i = 0; i < std::max(gone.size(), added.size()); ++i) {
        PropertyDifference difference = {unescaped(entry.set), unescaped(entry.name), std::nullopt, std::nullopt};
        if (i < gone.size()) {
            difference.before = comparison.shown(gone[i], i < added.size() ? added[i] : "");
        }
        if (i < added.size()) {
            difference.now = comparison.shown(added[i], i < gone.size() ? gone[i] : "");
        }
        differences.push_back(std::move(difference));
    }
}

void compareProperties(const PropertyList& before, const PropertyList& now,
                       std::vector<PropertyDifference>& differences) {
    const bool areUnitsKnown = before.areUnitsKnown && now.areUnitsKnown;
    if (!before.isKnown || !now.isKnown || (before.digest == now.digest && before.text == now.text)) {
        return;
    }
    const ValueComparison comparison(areUnitsKnown);
    const std::vector<Entry> old = entriesOf(before);
    const std::vector<Entry> fresh = entriesOf(now);
    auto o = old.begin();
    auto n = fresh.begin();
    while (o != old.end() || n != fresh.end()) {
        const auto key = [](const Entry& entry) { return std::tie(entry.set, entry.name); };
        const bool takesOld = n == fresh.end() || (o != old.end() && key(*o) <= key(*n));
        const bool takesNew = o == old.end() || (n != fresh.end() && key(*n) <= key(*o));
        const Range oldRange = takesOld ? takeRange(o, old.end()) : Range{o, o};
        const Range newRange = takesNew ? takeRange(n, fresh.end()) : Range{n, n};
        compareRanges(oldRange, newRange, comparison, differences);
    }
}

std::optional<std::string> quoted(const std::optional<std::string>& text) {
    return text ? std::optional<std::string>('\'' + *text) : std::nullopt;
}

/** Numbers inside of a material's or colour's text are measures. */
bool sameAttribute(std::string_view name, const std::optional<std::string>& a, const std::optional<std::string>& b) {
    const bool holdsMeasures = name == "Material" || name == "Colour";
    return a == b || (holdsMeasures && a && b && areSameButForRounding(*a, *b));
}

void compareAttributes(const ObjectRecord& before, const ObjectRecord& now,
                       std::vector<PropertyDifference>& differences) {
    const auto compare = [&](const std::string& name, const std::optional<std::string>& old,
                             const std::optional<std::string>& fresh) {
        if (!sameAttribute(name, old, fresh)) {
            differences.push_back({attributesSetName, name, quoted(old), quoted(fresh)});
        }
    };
    if (!before.attributes || !now.attributes) {
        compare("Name", before.name, now.name); // that is known in any case
        return;
    }
    auto o = before.attributes->begin();
    auto n = now.attributes->begin();
    while (o != before.attributes->end() || n != now.attributes->end()) {
        const bool hasOld = n == now.attributes->end() || (o != before.attributes->end() && o->first <= n->first);
        const bool hasNew = o == before.attributes->end() || (n != now.attributes->end() && n->first <= o->first);
        const std::string name = hasOld ? o->first : n->first;
        const std::optional<std::string> old = hasOld ? std::optional<std::string>((o++)->second) : std::nullopt;
        const std::optional<std::string> fresh = hasNew ? std::optional<std::string>((n++)->second) : std::nullopt;
        compare(name, old, fresh);
    }
}

std::string shownValue(const std::optional<std::string>& value) {
    constexpr std::size_t longest = 40;
    if (!value) {
        return "-";
    }
    std::string text = printable(value->substr(value->compare(0, 1, "'") == 0 ? 1 : 0));
    if (text.size() <= longest) {
        return text;
    }
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end) + "...";
}

} // namespace

std::vector<PropertyDifference> differencesOf(const ObjectRecord& before, const ObjectRecord& now) {
    std::vector<PropertyDifference> differences;
    compareAttributes(before, now, differences);
    compareProperties(before.properties, now.properties, differences);
    return differences;
}

std::string shortText(const std::vector<PropertyDifference>& differences) {
    if (differences.empty()) {
        return "";
    }
    const PropertyDifference& first = differences.front();
    std::string text = printable(first.set) + '.' + printable(first.name) + ": " + shownValue(first.before) + " -> " +
                       shownValue(first.now);
    if (differences.size() > 1) {
        text += ", and " + std::to_string(differences.size() - 1) + " more";
    }
    return text;
}
