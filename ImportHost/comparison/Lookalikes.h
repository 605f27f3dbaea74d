/**
 * @file Lookalikes.h
 * Objects that nothing but their places tells apart.
 */
#pragma once

#include "comparison/Pairing.h"

#include <cstddef>
#include <vector>

/** The free objects of both models by what they say of themselves. */
class Lookalikes {
public:
    explicit Lookalikes(const Pairing& pairing);

    /** Whether an object of the old and one of the new model say the same, whatever their shapes. */
    bool saySame(std::size_t before, std::size_t now) const { return before_[before] == now_[now]; }

    /** The same for two objects of one model, which are also of one shape: nothing else tells them apart. */
    bool areLookalikesBefore(std::size_t a, std::size_t b) const;
    bool areLookalikesNow(std::size_t a, std::size_t b) const;

    /** Whether either model has so many free objects like one of the new that one near by may be there by chance. */
    bool areMany(std::size_t now) const { return counts_[now] > many; }

private:
    static constexpr std::size_t many = 64;

    const Pairing& pairing_;
    std::vector<std::size_t> before_; ///< numbers of what they say, by the objects' numbers
    std::vector<std::size_t> now_;
    std::vector<std::size_t> counts_; ///< of free objects like a new one, in the model with more of them
};
