/**
 * @file Signal.h
 * An event between threads.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <pthread.h>

#include <atomic>

namespace ImportCommon {

/** An event that resets itself: each raise lets one wait pass, and a raise that nobody waits for is remembered once. */
class IMPORT_COMMON_API Signal {
public:
    /** An event that is not raised. */
    Signal();
    /** Waits for threads that are still inside raise. REQUIRES: no thread waits, or will raise or wait. */
    ~Signal();

    /** Not copied: others refer to it. */
    Signal(const Signal&) = delete;
    /** Not copied: others refer to it. */
    Signal& operator=(const Signal&) = delete;

    /** Raises the event; nothing happens when it is raised already. */
    void raise();

    /** Waits until the event is raised, and resets it. @return 0 or the system's error number */
    int wait();

private:
    pthread_mutex_t mutex_;
    pthread_cond_t condition_;
    std::atomic<unsigned int> counter_;
    std::atomic<unsigned int> raising_; // threads inside of raise
};

} // namespace ImportCommon
