/**
 * @file StepFile.h
 * A STEP file in memory: its text and where its instances stand in it.
 */
#pragma once

#include "step/StepText.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace IfcReader {

/**
 * The instances of a file, sorted by number. The text is gone through once; on the way everything outside of texts
 * becomes upper case and comments become blanks, so that keywords and enumerations can be compared as they stand.
 *
 * A file that is read is whole: it ends where it says so, every instance ends, has the number of arguments that its
 * class asks for, and occurs once, and whatever instances refer to is there.
 *
 * It is not changed afterwards: any number of threads may read from it.
 */
class StepFile {
public:
    /** Called with the part that has been read, from 0 to 1. */
    using Progress = std::function<void(double)>;

    /** Takes over the text of a file. Throws IfcError when it is damaged or no STEP file at all. */
    explicit StepFile(std::string text, const Progress& progress = {});

    StepFile(const StepFile&) = delete;
    StepFile& operator=(const StepFile&) = delete;

    /** The first schema that the header names, in upper case; empty when there is none. */
    const std::string& schema() const { return schema_; }

    std::size_t size() const { return entries_.size(); }

    /** The instance at a place in the order of numbers, below size(). The views live as long as this object. */
    StepInstance operator[](std::size_t index) const;

    /** The instance with a number; nothing when there is none. */
    std::optional<StepInstance> find(std::uint64_t id) const;

    /** The instance that an argument refers to; nothing for an argument of another kind. */
    std::optional<StepInstance> find(std::string_view argument) const;

    /** Where the instance with a number stands in the order of numbers; nothing when there is none. */
    std::optional<std::size_t> indexOf(std::uint64_t id) const;

    /** Calls @p visit with each instance of some classes, in the order of numbers. */
    template <typename Visitor>
    void forEachOf(std::initializer_list<std::string_view> keywords, Visitor visit) const {
        std::vector<bool> isWanted;
        for (const std::string_view keyword : keywords_) {
            isWanted.push_back(std::find(keywords.begin(), keywords.end(), keyword) != keywords.end());
        }
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (isWanted[entries_[i].keyword]) {
                visit((*this)[i]);
            }
        }
    }

    /** The keywords in the file, each once. */
    const std::vector<std::string_view>& keywords() const { return keywords_; }

    /** The place in keywords() of an instance's own. */
    std::size_t keywordAt(std::size_t index) const { return entries_[index].keyword; }

    /** How many bytes of text there are. */
    std::size_t textSize() const { return text_.size(); }

private:
    friend class StepScanner;

    struct Entry {
        std::uint64_t id;
        std::uint64_t begin; ///< of the arguments
        std::uint32_t length;
        std::uint32_t keyword;
    };

    std::string text_;
    std::string schema_;
    std::vector<Entry> entries_;
    std::vector<std::string_view> keywords_;
};

/** The text of a file. Throws IfcError when it can't be read. */
std::string readFileText(const std::string& fileName, const StepFile::Progress& progress = {});

} // namespace IfcReader
