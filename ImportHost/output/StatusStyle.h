/**
 * @file StatusStyle.h
 * How a status looks wherever objects are drawn.
 */
#pragma once

#include "comparison/Comparison.h"

struct StatusStyle {
    Status status;
    const char* fill;   ///< the colour of surfaces, as in CSS
    const char* stroke; ///< the colour of outlines
    const char* mark;   ///< one sign in UTF-8, for those who don't see the colours
};

/** In the order of allStatuses. */
constexpr StatusStyle statusStyles[] = {
    {Status::Unchanged, "#e9e9e9", "#8f8f8f", "="},  {Status::Properties, "#f4a3c8", "#a3286b", "P"},
    {Status::Moved, "#5b9bea", "#1d4f9e", "\u2192"}, {Status::Reshaped, "#ffb547", "#a86400", "\u25B3"},
    {Status::Reclassed, "#c08be6", "#6a2c9c", "C"},  {Status::Reidentified, "#4fd0c8", "#0c6f69", "#"},
    {Status::Added, "#7ccf6a", "#22701a", "+"},      {Status::Removed, "#fbe3e1", "#d0211c", "\u2212"},
};

constexpr const StatusStyle& statusStyle(Status status) {
    for (const StatusStyle& style : statusStyles) {
        if (style.status == status) {
            return style;
        }
    }
    return statusStyles[0];
}
