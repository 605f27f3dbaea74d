#include <ImportCommon/CriticalSection.h>

#include <cerrno>
#include <new>

namespace ImportCommon {

CriticalSection::CriticalSection() : mutex_(new(std::nothrow) pthread_mutex_t), owner_(nullptr) {
    if (mutex_ != nullptr) {
        pthread_mutex_init(mutex_, nullptr);
    }
}

CriticalSection::~CriticalSection() {
    if (mutex_ != nullptr) {
        pthread_mutex_destroy(mutex_);
        delete mutex_;
    }
}

int CriticalSection::Enter(Lock* lock) {
    owner_ = lock;
    return mutex_ != nullptr ? pthread_mutex_lock(mutex_) : EINVAL;
}

int CriticalSection::Leave(Lock*) {
    owner_ = nullptr; // before the unlock, behind which another thread may destroy the section
    return mutex_ != nullptr ? pthread_mutex_unlock(mutex_) : EINVAL;
}

CriticalSection::Lock::Lock(CriticalSection* section) : section_(section) {
    if (section_ != nullptr) {
        section_->Enter(this);
    }
}

CriticalSection::Lock::~Lock() {
    if (section_ != nullptr) {
        section_->Leave(this);
    }
}

} // namespace ImportCommon
