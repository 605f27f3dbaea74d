/**
 * @file ImportFaultsTest.cpp
 * Imports that are killed, run out of disk space, or get a model that is not whole. The state is the old or the new one.
 *
 * The environment variable IMPORTCOMMON_FULL_TESTS makes the runs long.
 */
#include "Support/ImportExample.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#ifdef __linux__
#include <linux/capability.h>
#include <sys/prctl.h>
#endif

#include <chrono>
#include <csignal>
#include <functional>
#include <iostream>
#include <random>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

const bool isFullRun = std::getenv("IMPORTCOMMON_FULL_TESTS") != nullptr;

/** A running host, whose error stream is a pipe. */
class Process {
public:
    explicit Process(
        const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {}) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        std::vector<const char*> texts = {IMPORT_HOST, "--quiet", "--plugin", IFC_PLUGIN};
        for (const std::string& argument : arguments) {
            texts.push_back(argument.c_str());
        }
        texts.push_back(nullptr);
        id_ = fork();
        if (id_ == 0) {
            dup2(ends[1], STDERR_FILENO);
            const int output = open("/dev/null", O_WRONLY);
            dup2(output, STDOUT_FILENO);
            close(ends[0]);
            close(ends[1]);
            endAsWithoutSanitizers();
            alarm(120); // not for ever
            prepare();
            execv(IMPORT_HOST, const_cast<char**>(texts.data()));
            _exit(127);
        }
        close(ends[1]);
        errors_ = ends[0];
    }

    ~Process() { close(errors_); }

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void kill(int signal = SIGKILL) const { ::kill(id_, signal); }

    /** As a terminal does it; the process has to have a group of its own. */
    void killGroup(int signal) const { ::kill(-id_, signal); }

    /** @return the exit code, or the negative number of the signal that ended it */
    int wait(std::string& error) const {
        char block[4096];
        for (ssize_t size = 0; (size = ::read(errors_, block, sizeof block)) > 0;) {
            error.append(block, static_cast<std::size_t>(size));
        }
        int status = 0;
        waitpid(id_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    pid_t id_ = -1;
    int errors_ = -1;
};

/** Waits for something that another process does, but not for ever. */
template <typename Condition>
void waitUntil(const Condition& condition) {
    const auto end = Clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        ASSERT_LT(Clock::now(), end);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

class ImportFaultsTest : public ImportExampleTest {
protected:
    void SetUp() override {
        writeFile(file("revised.ifc"), revised_);
        ASSERT_EQ(import({"revised.ifc"}), 0);
        newState_ = state();
        fs::remove_all(file("state"));
        ASSERT_EQ(import({"house.ifc"}), 0);
        oldState_ = state();
        ASSERT_NE(oldState_, newState_);
    }

    /** The objects of the state, without its first lines, which tell the time, and its last, which depends on them. */
    std::string state() const {
        const std::string text = readFile(file("state/objects.state"));
        const std::size_t model = text.find("\nmodel\t");
        const std::size_t begin = text.find('\n', model + 1);
        const std::size_t end = text.rfind("\nend ");
        EXPECT_TRUE(model < begin && begin <= end && end != std::string::npos) << text.size() << " bytes";
        return begin < end ? text.substr(begin, end - begin) : "";
    }

    /** One import; a failure says so in one line. */
    int import(
        std::vector<std::string> arguments, const std::function<void()>& prepare = [] {}) {
        arguments.insert(arguments.begin(), {"--state", "state"});
        error_.clear();
        const int result = Process(arguments, prepare).wait(error_);
        EXPECT_TRUE(result == 0 || result == 1) << result << ": " << error_;
        EXPECT_EQ(std::count(error_.begin(), error_.end(), '\n'), result) << error_;
        return result;
    }

    /** Imports a text: a refusal leaves the state as it was, a success leaves one that can be read. */
    bool importText(const std::string& model) {
        writeFile(file("model.ifc"), model);
        const int result = import({"model.ifc"});
        if (result != 0) {
            EXPECT_EQ(state(), oldState_);
            EXPECT_EQ(error_.find("crashed"), std::string::npos) << error_;
        } else if (state() != oldState_) {
            EXPECT_EQ(import({"house.ifc"}), 0);
            EXPECT_EQ(state(), oldState_);
        }
        return result == 0;
    }

    std::string oldState_;
    std::string newState_;
    std::string error_;
};

TEST_F(ImportFaultsTest, aKilledImportLeavesTheOldOrTheNewState) {
    const auto begin = Clock::now();
    ASSERT_EQ(import({"revised.ifc"}), 0);
    const auto duration = std::chrono::duration_cast<microseconds>(Clock::now() - begin).count();
    const unsigned int seed = isFullRun ? std::random_device()() : 4711;
    std::cout << "seed " << seed << "\n";
    std::mt19937 random(seed);
    int killed = 0;
    int changed = 0;
    std::string before = state();
    for (int run = 0; killed < (isFullRun ? 200 : 40); ++run) {
        SCOPED_TRACE(run);
        ASSERT_LT(run, 2000) << "imports end before they are killed";
        // Every other moment lies near the end, where the state changes.
        const auto earliest = run % 2 == 0 ? 0 : duration * 3 / 4;
        const microseconds moment(std::uniform_int_distribution<long>(earliest, duration * 9 / 8)(random));
        Process process({"--state", "state", before == oldState_ ? "revised.ifc" : "house.ifc"});
        std::this_thread::sleep_for(moment);
        process.kill();
        std::string error;
        killed += process.wait(error) == -SIGKILL ? 1 : 0;
        const std::string after = state();
        ASSERT_TRUE(after == oldState_ || after == newState_) << after.size() << " bytes";
        changed += after != before ? 1 : 0;
        before = after;
    }
    std::cout << killed << " imports killed, " << changed << " had changed the state\n";
    // The system may close the standard error stream of the last one before it lets go of the state's lock.
    int result = import({"house.ifc"});
    for (int i = 0; i < 1000 && error_.find("another import is running") != std::string::npos; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        result = import({"house.ifc"});
    }
    EXPECT_EQ(result, 0) << error_;
    EXPECT_EQ(state(), oldState_);
    for (const auto& entry : fs::directory_iterator(file("state"))) {
        EXPECT_TRUE(entry.path().filename() == "objects.state" || entry.path().filename() == "output") << entry;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(file("state/output")), fs::directory_iterator()), 16);
}

TEST_F(ImportFaultsTest, anInterruptedComparisonLeavesNoFolder) {
    fs::create_directory(file("temporary"));
    writeFile(file("running"), "");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        for (const bool isWholeGroup : {true, false}) {
            SCOPED_TRACE(std::to_string(signal) + (isWholeGroup ? " for the group" : ""));
            const Process process({"--plugin", BAD_PLUGIN, "--compare", "house.ifc", "revised.ifc"}, [this] {
                setpgid(0, 0);
                setenv("TMPDIR", file("temporary").c_str(), 1);
                setenv("BAD_PLUGIN", "wait", 1);
                setenv("BAD_PLUGIN_WAITS_FOR", file("running").c_str(), 1);
            });
            waitUntil([this] {
                const fs::recursive_directory_iterator all(file("temporary")), end;
                return std::any_of(all, end, [](const auto& entry) { return entry.path().filename() == "objects"; });
            });
            isWholeGroup ? process.killGroup(signal) : process.kill(signal);
            std::string error;
            EXPECT_EQ(process.wait(error), -signal);
            waitUntil([this] { return fs::is_empty(file("temporary")); });
        }
    }
}

TEST_F(ImportFaultsTest, anInterruptedOutputLeavesNoFile) {
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    const int pipe = open(file("pipe").c_str(), O_RDONLY | O_NONBLOCK); // nothing is read from it
#ifdef F_SETPIPE_SZ
    fcntl(pipe, F_SETPIPE_SZ, 4096);
#endif
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const Process process({"--report", "report.json", "--picture", "pipe", "--state", "state", "revised.ifc"});
        const auto hasTemporary = [this] {
            return std::any_of(fs::directory_iterator(folder_.path()), fs::directory_iterator(), [](const auto& entry) {
                return entry.path().filename().string().rfind(".import-host.", 0) == 0;
            });
        };
        waitUntil(hasTemporary);
        process.kill(signal);
        std::string error;
        EXPECT_EQ(process.wait(error), -signal);
        EXPECT_FALSE(hasTemporary());
        EXPECT_FALSE(fs::exists(file("report.json")));
    }
    close(pipe);
    EXPECT_EQ(state(), oldState_);
}

TEST_F(ImportFaultsTest, aFullDiskLeavesTheOldState) {
    const rlim_t sizes[] = {0, 1, 100, 500, 1000, 2000, 4000, 8000, 12000, 16000, 20000, 24000, oldState_.size() / 2};
    const std::vector<std::string> arguments = {"--report", "report.json", "--picture", "plan.svg", "revised.ifc"};
    for (const rlim_t size : sizes) {
        SCOPED_TRACE(size);
        const int result = import(arguments, [size] {
            const rlimit limit = {size, size};
            setrlimit(RLIMIT_FSIZE, &limit);
            std::signal(SIGXFSZ, SIG_IGN); // the limit shows as an error, as a full disk does
        });
        EXPECT_EQ(result, 1);
        EXPECT_EQ(state(), oldState_);
        EXPECT_FALSE(fs::exists(file("report.json")) || fs::exists(file("plan.svg")));
        EXPECT_EQ(std::distance(fs::directory_iterator(file("state")), fs::directory_iterator()), 2);
    }
    EXPECT_EQ(import(arguments), 0);
    EXPECT_EQ(state(), newState_);
}

TEST_F(ImportFaultsTest, aFolderThatCanNotBeWrittenLeavesTheOldState) {
    bool mayWriteAnywhere = geteuid() == 0;
#ifdef __linux__
    // From here on, programs that this one starts are bound by permissions whoever runs them.
    mayWriteAnywhere = mayWriteAnywhere && prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) != 0;
#endif
    if (mayWriteAnywhere) {
        GTEST_SKIP() << "nothing is forbidden to this user";
    }
    for (const char* const folder : {"state", "."}) {
        fs::permissions(file(folder), fs::perms::owner_read | fs::perms::owner_exec);
        EXPECT_EQ(import({"--report", "report.json", "revised.ifc"}), 1);
        fs::permissions(file(folder), fs::perms::owner_all);
        EXPECT_EQ(state(), oldState_);
    }
}

TEST_F(ImportFaultsTest, truncatedModelsAreRefused) {
    const int places = isFullRun ? 100 : 25;
    const std::string end = "END-ISO-10303-21;";
    const std::size_t whole = house_.rfind(end);
    for (int place = 0; place < places; ++place) {
        const std::size_t size = whole * static_cast<std::size_t>(place) / static_cast<std::size_t>(places);
        SCOPED_TRACE(size);
        EXPECT_FALSE(importText(house_.substr(0, size)));
        // With an end put on, what is missing lies inside: a model that is refused, or a smaller one.
        importText(house_.substr(0, size) + "\nENDSEC;\n" + end + "\n");
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_FALSE(importText(house_.substr(0, whole + end.size() - 1)));
    EXPECT_TRUE(importText(house_.substr(0, whole + end.size())));
}

TEST_F(ImportFaultsTest, changedModelsAreRefusedOrImported) {
    const unsigned int seed = isFullRun ? std::random_device()() : 815;
    std::cout << "seed " << seed << "\n";
    std::mt19937 random(seed);
    int imported = 0;
    const int runs = isFullRun ? 2000 : 40;
    for (int run = 0; run < runs; ++run) {
        SCOPED_TRACE(run);
        std::string model = house_;
        for (auto changes = 1 + random() % (run % 2 == 0 ? 3 : 60); changes > 0; --changes) {
            // Bytes of the file's own alphabet make mistakes that lie deeper than a strange character.
            const char byte = run % 3 == 0 ? static_cast<char>(random()) : house_[random() % house_.size()];
            model[random() % model.size()] = byte;
        }
        imported += importText(model) ? 1 : 0;
        if (HasFailure()) {
            writeFile("import-faults-model.ifc", model); // to be looked at, in the build folder
            return;
        }
    }
    std::cout << imported << " of " << runs << " models imported\n";
}

} // namespace
