#include "OneTimeWarning.h"

#include <ImportCommon/ForeignObjectSolid.h>

#include <cstdlib>
#include <cstring>

namespace {

/** Takes the note of an allocation that failed. */
void reportFailure(ImportCommon::OneTimeWarning& once, unsigned int size) {
    once.report("Invalid alloc size %d", static_cast<int>(size));
}

} // namespace

ForeignObjectSolid::ForeignObjectSolid(Type_t type, unsigned int size, const char* data) : type_(type) {
    static ImportCommon::OneTimeWarning once;
    if (!replaceBytes(size, data)) {
        reportFailure(once, size);
    }
}

ForeignObjectSolid::ForeignObjectSolid(const ForeignObjectSolid& other) : type_(other.type_) {
    static ImportCommon::OneTimeWarning once;
    if (!replaceBytes(other.size_, other.bytes_)) {
        reportFailure(once, other.size_);
    }
}

ForeignObjectSolid& ForeignObjectSolid::operator=(ForeignObjectSolid& other) {
    static ImportCommon::OneTimeWarning once;
    // The old bytes go first, so that an object which is assigned to itself has none left to copy.
    replaceBytes(0, nullptr);
    if (!replaceBytes(other.size_, other.bytes_)) {
        reportFailure(once, other.size_);
    }
    type_ = other.type_;
    return *this;
}

ForeignObjectSolid::~ForeignObjectSolid() {
    std::free(bytes_);
}

ForeignObjectSolid::Type_t ForeignObjectSolid::getType() const {
    return type_;
}

const char* ForeignObjectSolid::getBytes(unsigned int* size) const {
    *size = size_;
    return bytes_;
}

/** Releases the bytes and copies others; without memory the object is empty and the result false. */
bool ForeignObjectSolid::replaceBytes(unsigned int size, const char* data) {
    std::free(bytes_);
    bytes_ = size > 0 ? static_cast<char*>(std::malloc(size)) : nullptr;
    size_ = bytes_ != nullptr ? size : 0;
    if (bytes_ != nullptr) {
        std::memcpy(bytes_, data, size);
    }
    return size_ == size;
}
