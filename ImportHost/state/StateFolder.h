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

/** Where the objects of a state come from. */
struct ImportedModel {
    std::string name; ///< as it was given to the import; empty when the state does not tell
    std::string time; ///< of the import, as 2026-05-31T12:00:00Z; empty likewise
};

/** What a file of a state holds. */
struct State {
    ImportedModel model;
    std::vector<ObjectRecord> objects;
};

/** The time now, as a state keeps it. */
std::string currentTime();

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

    /** The state of a folder, which must be there. Throws Failure. */
    static State read(const std::string& path);

    /** Whether a model was imported before. */
    bool hasObjects() const { return hasObjects_; }

    /** The objects of the last import. */
    const std::vector<ObjectRecord>& objects() const { return state_.objects; }

    /** The model of the last import. */
    const ImportedModel& model() const { return state_.model; }

    /** A fresh folder for the streams of the import that begins now. */
    const std::string& outputFolder() const { return outputFolder_; }

    /** The folder with the streams of the last import, where there was one and they were kept. */
    std::string lastOutputFolder() const { return path_ + "/output"; }

    /** Leaves that folder where it is when the import fails; the next import of the state removes it. */
    void keepOutput() { keepsOutput_ = true; }

    /** Writes these objects down as the next state. Throws Failure. */
    void prepare(const ImportedModel& model, const std::vector<ObjectRecord>& objects);

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
    bool keepsOutput_ = false;
    State state_;
    std::unique_ptr<PendingFile> next_;
};
