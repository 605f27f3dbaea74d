/**
 * @file Measure.h
 * Numbers that were measured, and written down with a few digits.
 */
#pragma once

#include <optional>
#include <string_view>

/** A number as a list of properties keeps it, with the factor that turns it into SI units. */
struct Measure {
    double number;
    double factor;

    double inSi() const { return number * factor; }

    /** Reads "12.5" or "12.5 0.3048"; nothing for any other text. */
    static std::optional<Measure> read(std::string_view text);
};

/** The whole number that a text without a factor stands for, of which a double may lack the last digits. */
std::optional<long> wholeNumber(std::string_view text);

/** Whether two numbers are one that was rounded: they differ by 2e-5 of the larger and 1e-6 at most. */
bool sameMeasure(double a, double b);

/** Whether two texts differ in nothing but the rounding of the numbers inside. */
bool areSameButForRounding(std::string_view a, std::string_view b);

/** The same for texts that are lists or ranges of numbers, as "1.5, 2.5" or "1. .. 5."; others have to be equal. */
bool areSameNumberLists(std::string_view a, std::string_view b);
