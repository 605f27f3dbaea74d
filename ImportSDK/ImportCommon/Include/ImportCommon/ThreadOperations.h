/**
 * @file ThreadOperations.h
 * Threads.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <pthread.h>

namespace ImportCommon {

/** Threads. Any thread may create, close and ask about threads; each is closed once. */
class IMPORT_COMMON_API ThreadOperations {
public:
    /**
     * Starts a thread that calls @p function with a copy of @p data.
     *
     * The copy is made on the new thread and this call doesn't wait for it: @p data must stay valid until
     * @p function has been called, which the function can tell by raising a Signal. The copy is released when the
     * function returns or leaves by `pthread_exit`; it is null when there was no memory for it. A few dozen bytes per
     * thread are kept until the process ends.
     *
     * REQUIRES: @p function is not null and lets no exception out; @p data points to @p size bytes.
     *
     * @param function  what the thread does; its result is dropped
     * @param data      what is copied for it
     * @param size  number of bytes at @p data
     * @param flag  has no effect on this platform
     * @return the thread, to be given to closeThread; 0 when it could not be started. Throws `std::bad_alloc` without
     *         memory for its event.
     */
    static pthread_t createThread(unsigned int (*function)(void* data, unsigned long size), const void* data,
                                  unsigned long size, bool flag);

    /**
     * Does nothing: threads can't be killed on this platform.
     * @param thread    not looked at
     * @param exitCode  not looked at
     */
    static void terminateThread(pthread_t thread, unsigned int exitCode);

    /**
     * Waits for a thread to end and forgets it. Threads that createThread didn't start are waited for as well.
     *
     * REQUIRES: 0, or a thread that may be joined and has not been closed yet. The system uses handles again, so that
     * a second call can't be told from a first one for another thread: as with `pthread_join`, its effect is undefined.
     *
     * @param thread  the thread
     * @return 1; 0 for a thread that createThread didn't start
     */
    static int closeThread(pthread_t thread);

    /**
     * Whether the thread was started by createThread and is not closed yet, running or not; that is meant. @p exitCode
     * is left as it is.
     * @param thread    the thread
     * @param exitCode  left as it is
     * @return whether it is
     */
    static bool hasEnded(pthread_t thread, unsigned int* exitCode);

    /**
     * Sleeps; the system takes a number below 0 as an unsigned one, which is more than an hour.
     * @param microseconds  how long
     * @return 0, or -1 when the system refuses
     */
    static int usleep(int microseconds);
};

} // namespace ImportCommon
