/**
 * @file Interruption.h
 * What is tidied up when the user ends the process.
 */
#pragma once

#include <string>

/**
 * The name of a file that is removed when SIGINT, SIGTERM or SIGHUP ends the process, for as long as this object lives.
 * The process still ends by the signal. One that is ignored, as under nohup, stays ignored.
 *
 * There are as many names at a time as a run has outputs; of more the last ones are not removed.
 */
class RemovedOnSignal {
public:
    explicit RemovedOnSignal(std::string path);
    ~RemovedOnSignal();

    RemovedOnSignal(const RemovedOnSignal&) = delete;
    RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;

private:
    std::string path_;
};
