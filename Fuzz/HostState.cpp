/**
 * @file HostState.cpp
 * The state file of the example host, and the streams that it reads from a plug-in.
 */
#include "Failure.h"
#include "FuzzInput.h"
#include "comparison/Comparison.h"
#include "state/Files.h"
#include "state/ObjectRecord.h"
#include "state/ObjectStreams.h"
#include "state/StateFolder.h"

#include <PluginKit/Text.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

/** A folder of this process, in memory where the system has a place for that. */
class Folder {
public:
    Folder() {
        const fs::path memory = "/dev/shm";
        std::error_code error;
        path_ = ((fs::is_directory(memory, error) ? memory : fs::temp_directory_path()) / "fuzz-state-XXXXXX").string();
        require(mkdtemp(path_.data()) != nullptr, "temporary folder");
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

void write(const std::string& path, const std::string& content) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const ssize_t written = ::write(file, content.data(), content.size());
    require(::close(file) == 0 && written == static_cast<ssize_t>(content.size()), "file of the target");
}

/** The closing line that makes a damaged body count as whole, so that its records are looked at as well. */
std::string closed(const std::string& body) {
    std::size_t objects = 0;
    const std::string lines = body.substr(body.find('\n') + 1);
    for (const std::string_view line : split(lines, '\n')) {
        objects += line.empty() ? 0 : 1;
    }
    return body + "end " + std::to_string(objects) + ' ' + checksum(body) + '\n';
}

std::vector<std::string> linesOf(const std::vector<ObjectRecord>& objects) {
    std::vector<std::string> lines;
    for (const ObjectRecord& object : objects) {
        lines.push_back(recordToLine(object));
    }
    return lines;
}

/** A record that is accepted is written down so that it reads back as the same. */
void checkLine(const std::string& text) {
    ObjectRecord record;
    try {
        record = recordFromLine(text);
    } catch (const std::runtime_error&) {
        return;
    }
    const std::string line = recordToLine(record);
    require(recordToLine(recordFromLine(line)) == line, "record read back");
    identityText(record);
    require(unescaped(escaped(record.name)) == record.name, "escapes");
    require(validUtf8(printable(record.name)) == printable(record.name), "printable text");
}

/** A state is refused with a Failure, or it becomes the next state as it is. */
void checkState(const std::string& content) {
    static const Folder folder;
    write(folder.path() + "/objects.state", content);
    std::vector<std::string> lines;
    try {
        StateFolder state(folder.path());
        lines = linesOf(state.objects());
        compare(state.objects(), state.objects());
        state.prepare(state.model(), state.objects());
        state.commit();
    } catch (const Failure&) {
        require(readFile(folder.path() + "/objects.state") == content, "a refused state is left as it was");
        return;
    }
    require(linesOf(StateFolder(folder.path()).objects()) == lines, "state read back");
}

void checkStreams(const std::string& objects, const std::string& polygons, const std::string& attributes,
                  const std::string& solids) {
    static const Folder folder;
    write(folder.path() + "/objects", objects);
    write(folder.path() + "/polygons", polygons);
    write(folder.path() + "/attributes", attributes);
    write(folder.path() + "/solids", solids);
    try {
        const std::vector<ObjectRecord> records = readObjects(folder.path(), "plugin");
        for (const ObjectRecord& record : records) {
            checkLine(recordToLine(record));
        }
        require(compare({}, records).changes.size() == records.size(), "one change for each object");
        compare(records, {records.rbegin(), records.rend()});
    } catch (const Failure&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    switch (input.below(8)) {
    case 0:
        checkState(input.bytes());
        break;
    case 1:
        checkState(closed(input.bytes()));
        break;
    case 2: {
        const std::string objects = input.field('\0');
        const std::string polygons = input.field('\0');
        const std::string attributes = input.field('\0');
        checkStreams(objects, polygons, attributes, input.bytes());
        break;
    }
    default:
        checkLine(input.bytes());
    }
    return 0;
}
