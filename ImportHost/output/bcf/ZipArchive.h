/**
 * @file ZipArchive.h
 * A zip file in memory.
 */
#pragma once

#include <deque>
#include <string>

struct zip;
struct zip_source;

/** Collects files; only bytes() compresses them. */
class ZipArchive {
public:
    /** Throws Failure. */
    ZipArchive();
    ~ZipArchive();

    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    /** Adds a file; slashes in its name are folders. Throws Failure. */
    void add(const std::string& name, std::string content);

    /** The whole archive, once. Throws Failure. */
    std::string bytes();

private:
    zip_source* source_ = nullptr; ///< holds the archive's bytes
    zip* archive_ = nullptr;
    std::deque<std::string> contents_; ///< read when the archive is closed
};
