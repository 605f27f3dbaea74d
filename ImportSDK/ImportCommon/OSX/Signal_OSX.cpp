#include <ImportCommon/Signal.h>

#include <sched.h>

namespace ImportCommon {

Signal::Signal() : counter_(0), raising_(0) {
    pthread_mutex_init(&mutex_, nullptr);
    pthread_cond_init(&condition_, nullptr);
}

Signal::~Signal() {
    // A thread that waited may go on, and destroy the event, before the one that raised it is done with it.
    while (raising_ != 0) {
        sched_yield();
    }
    pthread_cond_destroy(&condition_);
    pthread_mutex_destroy(&mutex_);
}

void Signal::raise() {
    ++raising_;
    // From 0 to 1 in one step, so that two threads which raise at a time never make it 2.
    unsigned int lowered = 0;
    if (counter_.compare_exchange_strong(lowered, 1)) {
        pthread_mutex_lock(&mutex_);
        pthread_cond_signal(&condition_);
        pthread_mutex_unlock(&mutex_);
    }
    --raising_;
}

int Signal::wait() {
    pthread_mutex_lock(&mutex_);
    while (counter_ == 0) {
        pthread_cond_wait(&condition_, &mutex_);
    }
    --counter_;
    return pthread_mutex_unlock(&mutex_);
}

} // namespace ImportCommon
