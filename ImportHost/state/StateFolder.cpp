#include "state/StateFolder.h"

#include "Failure.h"

#include <PluginKit/Text.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view format = "import-host-state";
/** Folder of the streams while an import runs, as mkdtemp takes it, and of the last import's while it is replaced. */
constexpr char outputTemplate[] = "output-of-import.XXXXXX";
constexpr std::size_t outputPrefixLength = sizeof outputTemplate - sizeof "XXXXXX";
constexpr char previousOutput[] = "output-of-import.previous";

/** The text of a state in pieces, so that it need not be in memory beside the objects. */
class StateText {
public:
    StateText(const ImportedModel& model, const std::vector<ObjectRecord>& objects) : objects_(objects) {
        piece_ = std::string(format) + ' ' + std::to_string(stateFormat) + "\nmodel\t" + escaped(model.name) + '\t' +
                 escaped(model.time) + '\n';
    }

    /** The next piece; empty behind the last one. Throws std::runtime_error when they are too much together. */
    std::string_view next() {
        constexpr std::size_t pieceSize = std::size_t{1} << 16;
        if (isComplete_) {
            return {};
        }
        while (next_ < objects_.size() && piece_.size() < pieceSize) {
            piece_ += recordToLine(objects_[next_++]) + '\n';
        }
        sum_.add(piece_);
        isComplete_ = next_ == objects_.size();
        if (isComplete_) {
            piece_ += "end " + std::to_string(objects_.size()) + ' ' + sum_.text() + '\n';
        }
        size_ += piece_.size();
        if (size_ > largestFile) {
            throw std::runtime_error("it would be larger than " + std::to_string(largestFile >> 20) + " MiB");
        }
        shown_.swap(piece_);
        piece_.clear();
        return shown_;
    }

private:
    const std::vector<ObjectRecord>& objects_;
    std::size_t next_ = 0; ///< object that comes next
    std::string piece_;    ///< that is being made
    std::string shown_;
    std::size_t size_ = 0;
    Checksum sum_;
    bool isComplete_ = false;
};

/** The format that the first line tells. Throws std::runtime_error. */
int formatOf(std::string_view header) {
    const std::vector<std::string_view> words = split(header, ' ');
    if (words.size() != 2 || words[0] != format) {
        throw std::runtime_error("not a state of import-host");
    }
    for (int known = 1; known <= stateFormat; ++known) {
        if (words[1] == std::to_string(known)) {
            return known;
        }
    }
    throw std::runtime_error("written by another version of import-host");
}

/** Throws std::runtime_error. */
ImportedModel modelFromLine(std::string_view line) {
    const std::vector<std::string_view> fields = split(line, '\t');
    if (fields.size() != 3 || fields[0] != "model") {
        throw std::runtime_error("the state does not name its model");
    }
    return {unescaped(fields[1]), unescaped(fields[2])};
}

/** Throws std::runtime_error. */
State stateFromText(std::string_view text) {
    const std::string_view header = text.substr(0, text.find('\n'));
    const int number = formatOf(header);
    const std::size_t end = text.rfind("\nend ");
    std::size_t body = header.size() + 1;
    if (end == std::string_view::npos || end + 1 < body) {
        throw std::runtime_error("the state is incomplete");
    }
    State state;
    std::size_t lineNumber = 2;
    if (number >= 3) {
        const std::string_view line = text.substr(body, text.find('\n', body) - body);
        state.model = modelFromLine(line);
        body += line.size() + 1;
        ++lineNumber;
    }

    // A state without objects ends where its body begins.
    const std::string_view lines = text.substr(std::min(body, end + 1), end + 1 - std::min(body, end + 1));
    for (const std::string_view line : split(lines, '\n')) {
        try {
            if (!line.empty()) {
                state.objects.push_back(recordFromLine(line, number));
            }
        } catch (const std::runtime_error& e) {
            throw std::runtime_error("line " + std::to_string(lineNumber) + ": " + e.what());
        }
        ++lineNumber;
    }
    if (text.substr(end + 1) !=
        "end " + std::to_string(state.objects.size()) + ' ' + checksum(text.substr(0, end + 1)) + '\n') {
        throw std::runtime_error("the state is incomplete or damaged");
    }
    return state;
}

/** Whether a file is one that an import left which was killed. */
bool isLeftover(const std::string& fileName) {
    return fileName == previousOutput || fileName == "objects.state.new" || PendingFile::isTemporary(fileName) ||
           (fileName.size() == std::strlen(outputTemplate) &&
            fileName.compare(0, outputPrefixLength, outputTemplate, outputPrefixLength) == 0);
}

} // namespace

std::string currentTime() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    char text[sizeof "2026-05-31T12:00:00Z" + 16] = {};
    if (::gmtime_r(&now, &parts) != nullptr) {
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    }
    return text;
}

StateFolder::StateFolder(const std::string& path) : path_(path) {
    try {
        open();
        load();
        removeLeftovers();
        outputFolder_ = path_ + '/' + outputTemplate;
        if (::mkdtemp(outputFolder_.data()) == nullptr) {
            outputFolder_.clear();
            throw Failure(path_, std::strerror(errno));
        }
    } catch (...) {
        close();
        throw;
    }
}

StateFolder::~StateFolder() {
    close();
}

/** Removes what was created and not committed, and lets others use the folder. */
void StateFolder::close() {
    std::error_code ignored;
    next_.reset();
    if (!outputFolder_.empty() && !keepsOutput_) {
        fs::remove_all(outputFolder_, ignored);
    }
    if (created_) {
        fs::remove(path_, ignored); // succeeds only while it is empty
    }
    if (lock_ >= 0) {
        ::flock(lock_, LOCK_UN); // a process that a plug-in left running may hold the same handle
        ::close(lock_);
    }
}

void StateFolder::open() {
    created_ = ::mkdir(path_.c_str(), 0777) == 0;
    if (!created_ && errno != EEXIST) {
        throw Failure(path_, std::strerror(errno));
    }
    lock_ = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock_ < 0) {
        throw Failure(path_, std::strerror(errno));
    }
    if (::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        throw Failure(path_, errno == EWOULDBLOCK ? "another import is running" : std::strerror(errno));
    }
}

State StateFolder::read(const std::string& path) {
    const std::string fileName = path + "/objects.state";
    try {
        return stateFromText(readFile(fileName));
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw Failure(fileName, e.what());
    }
}

void StateFolder::load() {
    std::error_code error;
    hasObjects_ = fs::exists(fs::symlink_status(path_ + "/objects.state", error));
    if (hasObjects_) {
        state_ = read(path_);
        return;
    }
    for (fs::directory_iterator entry(path_, error), end; !error && entry != end; entry.increment(error)) {
        if (!isLeftover(entry->path().filename().string())) {
            throw Failure(path_, "not a state folder of import-host: it holds other files");
        }
    }
    if (error) {
        throw Failure(path_, error.message());
    }
}

void StateFolder::removeLeftovers() const {
    std::error_code error;
    std::vector<fs::path> leftovers;
    for (fs::directory_iterator entry(path_, error), end; !error && entry != end; entry.increment(error)) {
        if (isLeftover(entry->path().filename().string())) {
            leftovers.push_back(entry->path());
        }
    }
    for (const fs::path& leftover : leftovers) {
        fs::remove_all(leftover, error);
    }
}

void StateFolder::prepare(const ImportedModel& model, const std::vector<ObjectRecord>& objects) {
    const std::string fileName = path_ + "/objects.state";
    StateText text(model, objects);
    try {
        next_ = std::make_unique<PendingFile>(fileName, [&text] { return text.next(); });
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw Failure(fileName, e.what());
    }
}

void StateFolder::commit() {
    next_->commit();

    // From here on the import counts. Streams that can't be put in their place are no reason to say it failed.
    const std::string last = path_ + "/output";
    const std::string previous = path_ + '/' + previousOutput;
    std::error_code ignored;
    fs::rename(last, previous, ignored);
    fs::rename(outputFolder_, last, ignored);
    if (!ignored) {
        outputFolder_.clear();
    }
    fs::remove_all(previous, ignored);
    syncFolder(path_);
}
