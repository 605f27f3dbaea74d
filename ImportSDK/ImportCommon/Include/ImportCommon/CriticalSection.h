/**
 * @file CriticalSection.h
 * A lock between threads.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <pthread.h>

#include <atomic>

namespace ImportCommon {

/** A mutex that one thread enters at a time; a thread that enters twice waits for itself for ever. */
class IMPORT_COMMON_API CriticalSection {
public:
    /** Enters a section for as long as it lives; does nothing for a null section. */
    class IMPORT_COMMON_API Lock {
    public:
        /**
         * Enters the section.
         * @param section  the section, which must live longer than the lock; may be null
         */
        explicit Lock(CriticalSection* section);

        /** Leaves the section. REQUIRES: the thread that entered it. */
        ~Lock();

        /** Not copied: one lock leaves the section. */
        Lock(const Lock&) = delete;
        /** Not copied: one lock leaves the section. */
        Lock& operator=(const Lock&) = delete;

    private:
        CriticalSection* section_;
    };

    /** A section that nobody is in. Without memory for the mutex, entering and leaving give an error. */
    CriticalSection();
    /** REQUIRES: no thread is inside, or will enter. */
    ~CriticalSection();

    /** Not copied: others refer to it. */
    CriticalSection(const CriticalSection&) = delete;
    /** Not copied: others refer to it. */
    CriticalSection& operator=(const CriticalSection&) = delete;

    /**
     * Notes @p lock, which may be null, and locks the mutex.
     *
     * REQUIRES: the calling thread is not inside already.
     *
     * @param lock  who enters
     * @return 0 or the system's error number
     */
    int Enter(Lock* lock);

    /**
     * Unlocks the mutex; @p lock is not looked at.
     *
     * REQUIRES: the calling thread is inside.
     *
     * @param lock  who leaves
     * @return 0 or the system's error number
     */
    int Leave(Lock* lock);

private:
    pthread_mutex_t* mutex_;
    std::atomic<Lock*> owner_;
};

} // namespace ImportCommon
