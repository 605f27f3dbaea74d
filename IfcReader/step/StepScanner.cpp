#include "step/StepScanner.h"

#include "IfcReader/IfcError.h"
#include "step/ArgumentCounts.h"
#include "step/StepCharacters.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace IfcReader {

namespace {

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/** Bytes that mean something between the parentheses of an instance; those in between are passed over at once. */
constexpr std::array<bool, 256> meaningTable() {
    std::array<bool, 256> table{};
    for (const char c : {'(', ')', ',', ';', '#', '\'', '"', '/'}) {
        table[static_cast<unsigned char>(c)] = true;
    }
    for (char c = 'a'; c <= 'z'; ++c) {
        table[static_cast<unsigned char>(c)] = true;
    }
    return table;
}
constexpr std::array<bool, 256> meaning = meaningTable();

/** Characters of words as upper case; 0 for all others. */
constexpr std::array<char, 256> wordTable() {
    std::array<char, 256> table{};
    for (char c = 'A'; c <= 'Z'; ++c) {
        table[static_cast<unsigned char>(c)] = c;
        table[static_cast<unsigned char>(c - 'A' + 'a')] = c;
    }
    for (const char c : {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', '_', '-', '!'}) {
        table[static_cast<unsigned char>(c)] = c;
    }
    return table;
}
constexpr std::array<char, 256> wordCharacters = wordTable();

/** A report for so many bytes. */
constexpr std::size_t reportStep = std::size_t{1} << 20;

} // namespace

StepScanner::StepScanner(StepFile& file, const StepFile::Progress& progress)
    : file_(file), progress_(progress), text_(file.text_.data()), size_(file.text_.size()) {
}

void StepScanner::failAt(std::size_t place, const std::string& what) const {
    std::size_t line = 1;
    for (std::size_t i = 0; i < place; ++i) { // lines end with a line feed, a carriage return, or both
        line += text_[i] == '\n' || (text_[i] == '\r' && at(i + 1) != '\n') ? 1U : 0U;
    }
    throw IfcError("the file is damaged: " + what + " (line " + std::to_string(line) + ")");
}

void StepScanner::failTruncated() {
    throw IfcError("the file is truncated: it does not end with END-ISO-10303-21");
}

void StepScanner::skipBlanks() {
    while (place_ < size_) {
        if (isBlank(text_[place_])) {
            ++place_;
        } else if (text_[place_] == '/' && at(place_ + 1) == '*') {
            blankComment();
        } else {
            return;
        }
    }
}

/** Line breaks stay, so that lines keep their numbers. */
void StepScanner::blankComment() {
    const std::size_t end = std::string_view(text_, size_).find("*/", place_ + 2);
    if (end == std::string_view::npos) {
        failTruncated();
    }
    for (; place_ < end + 2; ++place_) {
        const bool isBreak = text_[place_] == '\n' || text_[place_] == '\r';
        text_[place_] = isBreak ? text_[place_] : ' ';
    }
}

/** Of two quotes that stand for one, the second begins the text again. */
void StepScanner::skipText() {
    const void* end = std::memchr(text_ + place_ + 1, '\'', size_ - place_ - 1);
    if (end == nullptr) {
        failTruncated();
    }
    place_ = static_cast<std::size_t>(static_cast<const char*>(end) - text_) + 1;
}

/** Whoever reads arguments later relies on there being nothing but digits between these quotes. */
void StepScanner::skipBinary() {
    const std::size_t start = place_++;
    while (isDigit(at(place_)) || (upper(at(place_)) >= 'A' && upper(at(place_)) <= 'F')) {
        ++place_;
    }
    if (place_ >= size_) {
        failTruncated();
    }
    if (text_[place_++] != '"') {
        failAt(start, "a binary value that is none");
    }
}

std::string_view StepScanner::takeWord() {
    const std::size_t begin = place_;
    for (; place_ < size_; ++place_) {
        const char c = wordCharacters[static_cast<unsigned char>(text_[place_])];
        if (c == 0) {
            break;
        }
        text_[place_] = c;
    }
    return std::string_view(text_ + begin, place_ - begin);
}

bool StepScanner::takeNumber(std::uint64_t& number) {
    const std::size_t begin = place_;
    const std::size_t safe = std::min(size_, begin + std::numeric_limits<std::uint64_t>::digits10);
    number = 0;
    for (; place_ < safe && isDigit(text_[place_]); ++place_) {
        number = number * 10 + static_cast<std::uint64_t>(text_[place_] - '0');
    }
    for (; place_ < size_ && isDigit(text_[place_]); ++place_) {
        const auto digit = static_cast<std::uint64_t>(text_[place_] - '0');
        if (number > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) {
            failAt(begin, "the number of an instance is too large");
        }
        number = number * 10 + digit;
    }
    return place_ > begin;
}

void StepScanner::takeEnd(const char* behindWhat) {
    skipBlanks();
    if (place_ >= size_) {
        failTruncated();
    }
    if (text_[place_] != ';') {
        failAt(place_, std::string("no semicolon behind ") + behindWhat);
    }
    ++place_;
}

/** About as many as there are instances. */
std::size_t StepScanner::countSemicolons() const {
    std::size_t count = 0;
    const char* const end = text_ + size_;
    for (const char* from = text_; from < end; ++from, ++count) {
        const void* const found = std::memchr(from, ';', static_cast<std::size_t>(end - from));
        if (found == nullptr) {
            break;
        }
        from = static_cast<const char*>(found);
    }
    return count;
}

void StepScanner::scan() {
    const auto isPadding = [](char c) { return c == '\0' || isBlank(c); };
    while (size_ > 0 && isPadding(text_[size_ - 1])) {
        --size_;
    }
    if (std::string_view(text_, size_).substr(0, 3) == "\xEF\xBB\xBF") {
        place_ = 3;
    }
    while (place_ < size_ && isPadding(text_[place_])) {
        ++place_;
    }
    if (place_ == size_) {
        throw IfcError("the file is empty");
    }
    if (text_[place_] == '/') {
        skipBlanks();
    }
    if (takeWord() != "ISO-10303-21") {
        throw IfcError("not an IFC file: it does not begin with ISO-10303-21");
    }
    takeEnd("ISO-10303-21");
    needed_.resize(size_ / 4 + 1);
    file_.entries_.reserve(countSemicolons());
    scanHeader();
    scanData();
    sortEntries();
    checkReferences();
}

/** Up to the first section of data. */
void StepScanner::scanHeader() {
    for (;;) {
        skipBlanks();
        if (place_ >= size_) {
            failTruncated();
        }
        const std::string_view word = takeWord();
        skipBlanks();
        const std::size_t begin = place_ + 1;
        if (at(place_) == '(') {
            scanArguments();
        }
        if (word.empty()) {
            failAt(place_, "the header holds something else than entries");
        }
        if (word == "FILE_SCHEMA" && file_.schema_.empty() && begin < place_) {
            StepArguments names = listMembers(StepArguments({text_ + begin, place_ - begin}).nextAfter(0));
            file_.schema_ = stepText(names.next().value_or(std::string_view()));
            std::transform(file_.schema_.begin(), file_.schema_.end(), file_.schema_.begin(), upper);
        }
        takeEnd("an entry of the header");
        if (word == "DATA") {
            neededBeyond_.clear();
            neededCount_ = 0;
            std::fill(needed_.begin(), needed_.end(), false); // the header has no references that count
            return;
        }
    }
}

void StepScanner::scanData() {
    for (;;) {
        skipBlanks();
        if (place_ >= size_) {
            failTruncated();
        }
        if (text_[place_] == '#') {
            scanInstance();
            continue;
        }
        const std::string_view word = takeWord();
        if (word == "END-ISO-10303-21") {
            takeEnd("the last line");
            skipBlanks();
            if (place_ < size_) {
                failAt(place_, "something follows the end");
            }
            return;
        }
        skipBlanks();
        if (word == "DATA" && at(place_) == '(') {
            scanArguments();
        }
        if (word != "DATA" && word != "ENDSEC") {
            failAt(place_, "something stands between the instances that is none");
        }
        takeEnd("a section");
    }
}

void StepScanner::scanInstance() {
    const std::size_t start = place_++;
    StepFile::Entry entry = {};
    skipBlanks();
    if (!takeNumber(entry.id)) {
        failAt(start, "an instance without a number");
    }
    const auto name = [&] { return '#' + std::to_string(entry.id); };
    skipBlanks();
    if (at(place_) != '=') {
        place_ >= size_ ? failTruncated() : failAt(start, "no = behind " + name());
    }
    ++place_;
    skipBlanks();
    const std::string_view keyword = takeWord();
    skipBlanks();
    if (at(place_) != '(') {
        place_ >= size_ ? failTruncated() : failAt(start, "no class and parenthesis behind " + name());
    }
    entry.begin = place_ + 1;
    const std::size_t count = scanArguments();
    const std::size_t length = place_ - static_cast<std::size_t>(entry.begin);
    if (length > std::numeric_limits<std::uint32_t>::max()) {
        failAt(start, name() + " is longer than 4 GB");
    }
    entry.length = static_cast<std::uint32_t>(length);
    entry.keyword = keywordNumber(keyword);
    checkCount(entry, count);
    if (at(place_) == ';') {
        ++place_;
    } else {
        takeEnd(name().c_str());
    }
    file_.entries_.push_back(entry);
    reportProgress();
}

/** From the opening parenthesis to behind the closing one. @return the number of arguments */
std::size_t StepScanner::scanArguments() {
    const std::size_t start = place_++;
    std::size_t commas = 0;
    bool isEmpty = true;
    for (std::size_t depth = 1; depth > 0;) {
        while (place_ < size_ && !meaning[static_cast<unsigned char>(text_[place_])]) {
            isEmpty = isEmpty && isBlank(text_[place_]);
            ++place_;
        }
        if (place_ >= size_) {
            failTruncated();
        }
        char& c = text_[place_];
        if (c == '/' && at(place_ + 1) == '*') {
            blankComment();
            continue;
        }
        isEmpty = isEmpty && c == ')';
        if (c == '\'' || c == '"') {
            c == '"' ? skipBinary() : skipText();
            continue;
        }
        ++place_;
        if (c == '#') {
            noteReference();
        } else if (c == ',') {
            commas += depth == 1 ? 1 : 0;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            --depth;
        } else if (c == ';') {
            failAt(start, "parentheses that are not closed");
        } else {
            c = upper(c);
        }
    }
    return isEmpty ? 0 : commas + 1;
}

void StepScanner::noteReference() {
    std::uint64_t id = 0;
    const std::size_t start = place_;
    if (!takeNumber(id)) {
        failAt(start, "a reference without a number");
    }
    if (id < needed_.size()) {
        auto isNeeded = needed_[static_cast<std::size_t>(id)];
        neededCount_ += isNeeded ? 0 : 1;
        isNeeded = true;
    } else if (neededBeyond_.empty() || neededBeyond_.back() != id) {
        neededBeyond_.push_back(id);
    }
}

std::uint32_t StepScanner::keywordNumber(std::string_view keyword) {
    // The classes of instances come in rows: most keywords were met just before.
    std::uint32_t& latest = latestKeywords_[keyword.size() % latestKeywords_.size()];
    if (latest < file_.keywords_.size() && file_.keywords_[latest] == keyword) {
        return latest;
    }
    const auto [found, isNew] = keywordNumbers_.emplace(keyword, static_cast<std::uint32_t>(file_.keywords_.size()));
    latest = found->second;
    if (isNew) {
        file_.keywords_.push_back(keyword);
        counts_.push_back(argumentCount(keyword));
    }
    return found->second;
}

void StepScanner::checkCount(const StepFile::Entry& entry, std::size_t count) const {
    const std::size_t wanted = counts_[entry.keyword];
    if (wanted != anyArgumentCount && count != wanted) {
        failAt(static_cast<std::size_t>(entry.begin),
               '#' + std::to_string(entry.id) + "=" + std::string(file_.keywords_[entry.keyword]) + " has " +
                   std::to_string(count) + " arguments instead of " + std::to_string(wanted));
    }
}

/** Most entries are in order already: the others are taken out, sorted, and merged with them from the end. */
void StepScanner::sortEntries() {
    const auto byId = [](const StepFile::Entry& a, const StepFile::Entry& b) { return a.id < b.id; };
    auto& entries = file_.entries_;
    std::vector<StepFile::Entry> others;
    std::size_t sorted = 0;
    for (const StepFile::Entry& entry : entries) {
        if (sorted == 0 || !byId(entry, entries[sorted - 1])) {
            entries[sorted++] = entry;
        } else {
            others.push_back(entry);
        }
    }
    std::sort(others.begin(), others.end(), byId);
    for (std::size_t place = entries.size(); !others.empty();) {
        const bool isOther = sorted == 0 || !byId(others.back(), entries[sorted - 1]);
        --place;
        if (isOther) {
            entries[place] = others.back();
            others.pop_back();
        } else {
            entries[place] = entries[--sorted];
        }
    }
    const auto repeated =
        std::adjacent_find(entries.begin(), entries.end(),
                           [](const StepFile::Entry& a, const StepFile::Entry& b) { return a.id == b.id; });
    if (repeated != entries.end()) {
        throw IfcError("the file is damaged: #" + std::to_string(repeated->id) + " is there more than once");
    }
}

/** A file that lacks an instance that others refer to is a part of one: half its objects would count as removed. */
void StepScanner::checkReferences() {
    const auto fail = [](std::uint64_t id) {
        throw IfcError("the file is damaged: #" + std::to_string(id) + " is referred to and not there");
    };
    for (const StepFile::Entry& entry : file_.entries_) {
        if (entry.id < needed_.size() && needed_[static_cast<std::size_t>(entry.id)]) {
            needed_[static_cast<std::size_t>(entry.id)] = false;
            --neededCount_;
        }
    }
    if (neededCount_ > 0) {
        fail(static_cast<std::uint64_t>(std::find(needed_.begin(), needed_.end(), true) - needed_.begin()));
    }
    for (const std::uint64_t id : neededBeyond_) {
        if (!file_.indexOf(id)) {
            fail(id);
        }
    }
}

void StepScanner::reportProgress() {
    if (progress_ && place_ >= nextReport_) {
        nextReport_ = place_ + reportStep;
        progress_(static_cast<double>(place_) / static_cast<double>(size_));
    }
}

} // namespace IfcReader
