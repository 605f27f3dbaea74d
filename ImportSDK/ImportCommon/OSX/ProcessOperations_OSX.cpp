#include <ImportCommon/ProcessOperations.h>

namespace ImportCommon {

int ProcessOperations::createProcess(const std::wstring&, const std::wstring&, bool) {
    return InvalidHandle();
}

void ProcessOperations::terminateProcess(int, unsigned int) {
}

void ProcessOperations::closeProcess(int) {
}

bool ProcessOperations::hasEnded(int, unsigned int*) {
    return true;
}

int ProcessOperations::InvalidHandle() {
    return 0;
}

} // namespace ImportCommon
