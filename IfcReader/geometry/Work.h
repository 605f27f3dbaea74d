/**
 * @file Work.h
 * How much work one product may make, and what is thrown when a shape can't be built.
 */
#pragma once

#include <cstddef>
#include <stdexcept>

namespace IfcReader {

/** What is told of a thing that stands, or reaches, farther than anything may. */
constexpr const char* beyondReach = "farther than a million kilometres from the origin";

/** One item can't be built; the text says which kind and why. The rest of the product still can. */
class ItemError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** A product asks for more than any real one does: nothing more of it is built. */
class LimitError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/**
 * Counts what building a product takes. The same product costs the same however it is built, whether parts of it were
 * kept from other products or not, so that the limit is met always or never.
 */
class Work {
public:
    /** About as many points as may be read, made or looked at for one product. */
    static constexpr std::size_t limit = 100'000'000;
    /** What a point counts that is kept: it takes memory as well as time. */
    static constexpr std::size_t kept = 10;
    /** What an item counts that is built within another one, however small it is. */
    static constexpr std::size_t nested = 20;
    /** How deep items may stand within each other. */
    static constexpr std::size_t deepest = 500;

    /** @throw LimitError when it was too much */
    void add(std::size_t amount) {
        if (amount > limit - used_) {
            throw LimitError("too much to build");
        }
        used_ += amount;
    }
    std::size_t used() const { return used_; }

    /** Passes a part that was built @p levels deep. @throw LimitError */
    void reach(std::size_t levels) {
        if (levels > deepest - depth_) {
            throw LimitError("items in a circle, or too deep within each other");
        }
        highest_ = depth_ + levels > highest_ ? depth_ + levels : highest_;
    }

    /** Stands on the stack while an item inside another one is built. */
    class Level {
    public:
        /** @throw LimitError */
        explicit Level(Work& work) : work_(work) {
            work_.reach(1);
            work_.add(nested);
            ++work_.depth_;
        }
        ~Level() { --work_.depth_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Work& work_;
    };

    /** Measures what is done while it stands on the stack. */
    class Span {
    public:
        explicit Span(Work& work) : work_(work), used_(work.used_), highest_(work.highest_) {
            work_.highest_ = work_.depth_;
        }
        ~Span() { work_.highest_ = work_.highest_ > highest_ ? work_.highest_ : highest_; }
        Span(const Span&) = delete;
        Span& operator=(const Span&) = delete;

        std::size_t amount() const { return work_.used_ - used_; }
        std::size_t levels() const { return work_.highest_ - work_.depth_; }

    private:
        Work& work_;
        std::size_t used_;
        std::size_t highest_;
    };

private:
    std::size_t used_ = 0;
    std::size_t depth_ = 0;
    std::size_t highest_ = 0;
};

} // namespace IfcReader
