#include "output/bcf/ZipArchive.h"

#include "Failure.h"

#include <zip.h>

namespace {

constexpr const char* subject = "the zip archive";

} // namespace

ZipArchive::ZipArchive() {
    zip_error_t error;
    zip_error_init(&error);
    source_ = zip_source_buffer_create(nullptr, 0, 0, &error);
    archive_ = source_ == nullptr ? nullptr : zip_open_from_source(source_, ZIP_TRUNCATE, &error);
    if (archive_ == nullptr) {
        const std::string reason = zip_error_strerror(&error);
        zip_source_free(source_);
        zip_error_fini(&error);
        throw Failure(subject, reason);
    }
    zip_error_fini(&error);
    zip_source_keep(source_); // beyond the archive's end
}

ZipArchive::~ZipArchive() {
    if (archive_ != nullptr) {
        zip_discard(archive_);
    }
    zip_source_free(source_);
}

void ZipArchive::add(const std::string& name, std::string content) {
    contents_.push_back(std::move(content));
    zip_source_t* const file = zip_source_buffer(archive_, contents_.back().data(), contents_.back().size(), 0);
    if (file == nullptr || zip_file_add(archive_, name.c_str(), file, ZIP_FL_ENC_UTF_8) < 0) {
        zip_source_free(file);
        throw Failure(subject, zip_strerror(archive_));
    }
}

std::string ZipArchive::bytes() {
    if (zip_close(archive_) != 0) {
        throw Failure(subject, zip_strerror(archive_));
    }
    archive_ = nullptr;
    zip_stat_t status;
    std::string content;
    if (zip_source_stat(source_, &status) != 0 || zip_source_open(source_) != 0) {
        throw Failure(subject, zip_error_strerror(zip_source_error(source_)));
    }
    content.resize(static_cast<std::size_t>(status.size));
    const zip_int64_t read = zip_source_read(source_, content.data(), status.size);
    zip_source_close(source_);
    if (read != static_cast<zip_int64_t>(status.size)) {
        throw Failure(subject, "its bytes can't be read back");
    }
    return content;
}
