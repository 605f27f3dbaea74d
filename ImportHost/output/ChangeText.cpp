#include "output/ChangeText.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

std::string degrees(double angle) {
    return fixedText(angle, 2) + " degrees";
}

std::string vectorText(const Vector3& vector) {
    return '(' + fixedText(vector[0], 3) + ", " + fixedText(vector[1], 3) + ", " + fixedText(vector[2], 3) + ')';
}

bool isUpright(const Vector3& axis) {
    return axis == Vector3{0.0, 0.0, 1.0};
}

} // namespace

std::string fixedText(double value, int digits) {
    char buffer[400]; // holds the largest number there is
    std::snprintf(buffer, sizeof buffer, "%.*f", digits, value);
    const std::string text = buffer;
    const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
    return isZero && text.front() == '-' ? text.substr(1) : text;
}

std::string changeText(const Change& change) {
    std::string text = change.changes.empty() ? statusName(Status::Unchanged) : "";
    for (const Status status : change.changes) {
        text += (text.empty() ? "" : ", ") + std::string(statusName(status));
        if (status == Status::Reclassed) {
            text += " (was " + change.before->className + ')';
        } else if (status == Status::Reidentified) {
            text += " (was " + identityText(*change.before) + ')';
        }
    }
    if (change.perhaps) {
        text += std::string(change.now != nullptr ? ", perhaps was " : ", perhaps is ") +
                identityText(*change.perhaps->object);
    }
    for (const std::string& note : change.notes) {
        text += ", " + note;
    }
    return printable(text);
}

std::string moveText(const Change& change) {
    if (!change.move) {
        return "";
    }
    std::string text = fixedText(length(change.move->shift), 3) + " m " + vectorText(change.move->shift);
    if (change.move->angle != 0.0) {
        text += ", turned by " + degrees(change.move->angle);
    }
    return text;
}

std::string displacementText(const Comparison& comparison) {
    if (!comparison.displacement) {
        return "";
    }
    const Displacement& whole = *comparison.displacement;
    std::string text = "The whole model was displaced by " + vectorText(whole.shift) + " m";
    if (whole.turn != 0.0) {
        text += " and turned by " + degrees(whole.turn) + " about " +
                (isUpright(whole.axis) ? "the vertical" : "the axis " + vectorText(whole.axis));
    }
    return text + "; what only followed it is unchanged.";
}

std::string valueText(const std::optional<std::string>& value) {
    const bool isText = value && value->compare(0, 1, "'") == 0;
    return isText ? value->substr(1) : value.value_or("");
}
