/**
 * @file Pairing.h
 * Which object of the new model is which one of the old.
 */
#pragma once

#include "comparison/Body.h"

#include <cstddef>
#include <limits>
#include <vector>

/** The objects of both models and the pairs found so far. An object is in one pair at most. */
class Pairing {
public:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    Pairing(std::vector<Body> before, std::vector<Body> now)
        : before_(std::move(before)),
          now_(std::move(now)),
          partnerOfBefore_(before_.size(), none),
          partnerOfNow_(now_.size(), none),
          confidence_(now_.size(), 0.0) {}

    const std::vector<Body>& before() const { return before_; }
    const std::vector<Body>& now() const { return now_; }

    /** The partner's number, or none. */
    std::size_t partnerOfBefore(std::size_t before) const { return partnerOfBefore_[before]; }
    std::size_t partnerOfNow(std::size_t now) const { return partnerOfNow_[now]; }

    /** That an object's partner is the right one, from 0 to 1. */
    double confidence(std::size_t now) const { return confidence_[now]; }

    bool isFreeBefore(std::size_t before) const { return partnerOfBefore_[before] == none; }
    bool isFreeNow(std::size_t now) const { return partnerOfNow_[now] == none; }

    std::vector<std::size_t> freeBefore() const { return freeOnes(partnerOfBefore_); }
    std::vector<std::size_t> freeNow() const { return freeOnes(partnerOfNow_); }

    /** Pairs two free objects. */
    void pair(std::size_t before, std::size_t now, double confidence) {
        partnerOfBefore_[before] = now;
        partnerOfNow_[now] = before;
        confidence_[now] = confidence;
    }

    /** Makes an object and its partner free again. */
    void release(std::size_t now) {
        partnerOfBefore_[partnerOfNow_[now]] = none;
        partnerOfNow_[now] = none;
        confidence_[now] = 0.0;
    }

    /** Carries the old model along. */
    void displaceBefore(const RigidMotion& motion) {
        for (Body& body : before_) {
            body = moved(body, motion);
        }
    }

private:
    static std::vector<std::size_t> freeOnes(const std::vector<std::size_t>& partners) {
        std::vector<std::size_t> result;
        for (std::size_t i = 0; i < partners.size(); ++i) {
            if (partners[i] == none) {
                result.push_back(i);
            }
        }
        return result;
    }

    std::vector<Body> before_;
    std::vector<Body> now_;
    std::vector<std::size_t> partnerOfBefore_;
    std::vector<std::size_t> partnerOfNow_;
    std::vector<double> confidence_;
};
