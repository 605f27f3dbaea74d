#include "command/TemporaryState.h"

#include "Failure.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

TemporaryState::TemporaryState() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    if (error) {
        throw Failure("the folder for temporary files", error.message());
    }
    path_ = (folder / "import-host-XXXXXX").string();
    if (::mkdtemp(path_.data()) == nullptr) {
        throw Failure(path_, std::strerror(errno));
    }
}

TemporaryState::~TemporaryState() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}
