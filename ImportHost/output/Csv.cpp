#include "output/Csv.h"

#include "output/ChangeText.h"

#include <PluginKit/Text.h>

#include <stdexcept>

namespace {

bool isNumber(const std::string& text) {
    try {
        toDouble(text);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

std::string cell(const std::string& text) {
    const std::string valid = validUtf8(text);
    const bool looksLikeFormula = !valid.empty() && std::string("=+-@\t\r").find(valid.front()) != std::string::npos;
    std::string result = looksLikeFormula && !isNumber(valid) ? "\"'" : "\"";
    for (const char c : valid) {
        if (c == '"') {
            result += '"';
        }
        if (c != '\0') {
            result += c;
        }
    }
    return result + '"';
}

std::string sizeText(const Box& box) {
    return fixedText(box.size(0), 3) + " x " + fixedText(box.size(1), 3) + " x " + fixedText(box.size(2), 3);
}

std::string placeText(const Box& box) {
    std::string text;
    for (std::size_t i = 0; i < 3; ++i) {
        text += (i == 0 ? "" : " ") + fixedText((box.low[i] + box.high[i]) / 2.0, 3);
    }
    return text;
}

std::string volumeText(const ObjectRecord& record) {
    const std::optional<double> volume = volumeOf(record);
    return volume ? fixedText(*volume, 6) : "";
}

/** The lines of one object. */
class Lines {
public:
    explicit Lines(const Change& change) : change_(change) {
        const ObjectRecord& record = change.record();
        head_ = cell(identityText(record)) + ',' + cell(attributeOf(record, "Storey").value_or("")) + ',' +
                cell(statusName(change.status())) + ',';
        tail_ = ',' + cell(record.className) + ',' + cell(record.name) + "\r\n";
    }

    void add(const std::string& attribute, const std::string& before, const std::string& now) {
        text_ += head_ + cell(attribute) + ',' + cell(before) + ',' + cell(now) + tail_;
    }

    /** Adds a line for everything that applies. */
    void addAll() {
        for (const Status status : change_.changes) {
            addStatus(status);
        }
        for (const PropertyDifference& difference : change_.properties) {
            add(difference.set + '.' + difference.name, valueText(difference.before), valueText(difference.now));
        }
        if (change_.perhaps) {
            const std::string other = identityText(*change_.perhaps->object);
            add("perhaps, with confidence " + fixedText(change_.perhaps->confidence, 2),
                change_.now != nullptr ? other : "", change_.now != nullptr ? "" : other);
        }
        for (const std::string& note : change_.notes) {
            add("note", "", note);
        }
    }

    const std::string& text() const { return text_; }

private:
    void addStatus(Status status) {
        switch (status) {
        case Status::Added:
        case Status::Removed:
            add("", "", "");
            break;
        case Status::Reidentified:
            add("identity", identityText(*change_.before), identityText(*change_.now));
            break;
        case Status::Reclassed:
            add("class", change_.before->className, change_.now->className);
            break;
        case Status::Reshaped:
            addShape(*change_.before, *change_.now);
            break;
        case Status::Moved:
            add("position", placeText(change_.before->box), placeText(change_.now->box));
            if (change_.move && change_.move->angle != 0.0) {
                add("turn", "", fixedText(change_.move->angle, 2) + " degrees");
            }
            break;
        case Status::Properties:
        case Status::Unchanged:
            break; // each property has a line of its own
        }
    }

    void addShape(const ObjectRecord& before, const ObjectRecord& now) {
        const std::size_t sizeBefore = text_.size();
        if (sizeText(before.box) != sizeText(now.box)) {
            add("size", sizeText(before.box), sizeText(now.box));
        }
        if (volumeText(before) != volumeText(now)) {
            add("volume", volumeText(before), volumeText(now));
        }
        if (text_.size() == sizeBefore) {
            add("shape", "", ""); // one that a size does not tell
        }
    }

    const Change& change_;
    std::string head_;
    std::string tail_;
    std::string text_;
};

} // namespace

std::string csvText(const Comparison& comparison) {
    std::string text =
        "\xEF\xBB\xBF\"object\",\"storey\",\"status\",\"attribute\",\"old\",\"new\",\"class\",\"name\"\r\n";
    for (const Change& change : comparison.changes) {
        Lines lines(change);
        lines.addAll();
        text += lines.text();
    }
    return text;
}
