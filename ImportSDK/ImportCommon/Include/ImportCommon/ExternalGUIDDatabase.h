/**
 * @file ExternalGUIDDatabase.h
 * Finds the identities met during an import again.
 */
#pragma once

#include <ImportCommon/ExternalGUID.h>

namespace ImportCommon {

/**
 * Runtime id of an identity: 0 and up for spatial hashes, -2 and below for all other kinds, -1 for none or failure.
 * Ids are valid within one database and are not stored.
 */
enum ExternalGUIDRuntimeID_e : int {
    ExternalGUIDRuntimeID_None = -1 ///< no identity, or failure
};

/**
 * Gives every external identity of an import a compact runtime id and turns an id back into its identity.
 *
 * GlobalIds, PX GUIDs and Halvorne ids get the ids -2, -3, -4 and so on in the order of their first insertion, whatever
 * their kind. Nothing is ever removed. Not safe for use by several threads at a time. Nothing throws.
 *
 * Spatial hashes are kept in a k-d tree of their own and get its node numbers. A hash gets the id of an earlier one
 * when the absolute differences of their 11 values add up to less than 0.01 and the search passes it: the search goes
 * down one side of each split and never looks at the other. Two hashes as close as that, but on different sides of the
 * split of a third one, get different ids. Which of several matches is found depends on the order of insertion.
 */
class IMPORT_COMMON_API ExternalGUIDDatabase {
public:
    /**
     * An empty database. A kind whose table could not be created for lack of memory answers -1, and all of them do when
     * there was none for the database itself.
     */
    ExternalGUIDDatabase();
    /** Forgets all identities; those that were handed out stay. */
    ~ExternalGUIDDatabase();

    /** Not copied. */
    ExternalGUIDDatabase(const ExternalGUIDDatabase&) = delete;
    /** Not copied. */
    ExternalGUIDDatabase& operator=(const ExternalGUIDDatabase&) = delete;

    /**
     * The identity's runtime id; an identity that is not known yet is added.
     * @param guid  the identity; copied
     * @return -1 for an identity of no kind, or when it could not be stored. A spatial hash that could not be stored
     * for lack of memory gives 0.
     */
    ExternalGUIDRuntimeID_e insertGUID(const ExternalGUID& guid);

    /**
     * The identity's runtime id, or -1 when it is not known.
     * @param guid  the identity
     * @return the id or -1
     */
    ExternalGUIDRuntimeID_e findGUID(const ExternalGUID& guid);

    /**
     * The identity of a runtime id; an identity of kind GUIDTypeNone for an id that was never handed out.
     * @param id  a runtime id of this database
     * @return the identity
     */
    ExternalGUID findGUID(ExternalGUIDRuntimeID_e id);

private:
    struct State;
    State* state_;
};

} // namespace ImportCommon
