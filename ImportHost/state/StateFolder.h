/**
 * @file StateFolder.h
 * What is remembered of a model between two imports.
 */
#pragma once

#include "state/Files.h"
#include "state/ObjectRecord.h"

#include <memory>
#include <string>
#include <vector>

/**
 * A folder with the objects of the last import that succeeded, and with the streams that it wrote.
 *
 *     objects.state             one line per object, between a header and a closing line with count and checksum
 *     output/                   the sixteen streams of the last import
 *     output-of-import.XXXXXX/  those of an import that runs or was killed
 *
 * The file objects.state is replaced by one rename, so a process that ends at any point leaves the old objects or the
 * new ones. While this object lives, no other process can open the folder as its state.
 */
class StateFolder {
public:
    /** Opens or creates the folder, and clears away what a killed import left. Throws Failure. */
    explicit StateFolder(const std::string& path);

    /** Removes what was created for an import that did not get to commit(). */
    ~StateFolder();

    StateFolder(const StateFolder&) = delete;
    StateFolder& operator=(const StateFolder&) = delete;

    /** The objects of a state, which must be there. Throws Failure. */
    static std::vector<ObjectRecord> read(const std::string& path);

    /** Whether a model was imported before. */
    bool hasObjects() const { return hasObjects_; }

    /** The objects of the last import. */
    const std::vector<ObjectRecord>& objects() const { return objects_; }

    /** A fresh folder for the streams of the import that begins now. */
    const std::string& outputFolder() const { return outputFolder_; }

    /** Writes these objects down as the next state. Throws Failure. */
    void prepare(const std::vector<ObjectRecord>& objects);

    /** Makes what was prepared the state, and the fresh folder the last import's. Throws Failure; then nothing changed.
     */
    void commit();

private:
    void open();
    void close();
    void removeLeftovers() const;
    void load();

    std::string path_;
    std::string outputFolder_;
    int lock_ = -1;
    bool created_ = false;
    bool hasObjects_ = false;
    std::vector<ObjectRecord> objects_;
    std::unique_ptr<PendingFile> next_;
};
