/**
 * @file StepScanner.h
 * The one pass over the text of a STEP file.
 */
#pragma once

#include "step/StepFile.h"

#include <array>

namespace IfcReader {

/**
 * Finds the instances of a file and brings its text into the form that StepFile promises. The state between two
 * statements is the place where the next one begins.
 */
class StepScanner {
public:
    StepScanner(StepFile& file, const StepFile::Progress& progress);

    /** Goes through the whole text. Throws IfcError. */
    void scan();

private:
    [[noreturn]] void failAt(std::size_t place, const std::string& what) const;
    [[noreturn]] static void failTruncated();

    char at(std::size_t place) const { return place < size_ ? text_[place] : '\0'; }
    void skipBlanks();
    void blankComment();
    void skipText();
    void skipBinary();
    std::string_view takeWord();
    bool takeNumber(std::uint64_t& number);
    void takeEnd(const char* behindWhat);

    void scanHeader();
    void scanData();
    void scanInstance();
    std::size_t scanArguments();
    void noteReference();
    std::uint32_t keywordNumber(std::string_view keyword);
    void checkCount(const StepFile::Entry& entry, std::size_t count) const;
    void sortEntries();
    void checkReferences();
    std::size_t countSemicolons() const;
    void reportProgress();

    StepFile& file_;
    const StepFile::Progress& progress_;
    char* text_;
    std::size_t size_;
    std::size_t place_ = 0;
    std::size_t nextReport_ = 0;

    std::unordered_map<std::string_view, std::uint32_t> keywordNumbers_;
    std::array<std::uint32_t, 32> latestKeywords_{}; ///< by length
    std::vector<std::size_t> counts_;                ///< arguments that each keyword asks for

    /** Numbers that arguments refer to: a bit for each of the small ones, the others one by one. */
    std::vector<bool> needed_;
    std::size_t neededCount_ = 0; ///< bits that are set
    std::vector<std::uint64_t> neededBeyond_;
};

} // namespace IfcReader
