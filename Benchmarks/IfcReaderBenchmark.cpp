// Reading an IFC model and building its shapes, beside another reader where that is there, and a whole first import.
// Processor time and peak memory of a process for each, on models of 35 and 140 MB.
//
// Usage: IfcReaderBenchmark [MEGABYTES...]
//        IfcReaderBenchmark --write FILE MEGABYTES

#include "IfcBuilding.h"

#include <IfcReader/Model.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#ifdef HAVE_ASSIMP
#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#endif

namespace fs = std::filesystem;

namespace {

/** Every product with its shape, one after the other, as a plug-in takes them. */
int readOurs(const char* fileName) {
    const IfcReader::Model model(fileName);
    std::size_t shapes = 0;
    for (std::size_t i = 0; i < model.size(); ++i) {
        shapes += model.product(i).shape.parts.empty() ? 0 : 1;
    }
    return shapes > 0 ? 0 : 1;
}

#ifdef HAVE_ASSIMP
int readAssimp(const char* fileName) {
    Assimp::Importer importer;
    return importer.ReadFile(fileName, 0) != nullptr ? 0 : 1;
}
#endif

struct Cost {
    double seconds = 0.0;   ///< of processors
    double elapsed = 0.0;   ///< of the clock
    double megabytes = 0.0; ///< at most, in memory
};

/** What a program costs that is run with arguments. */
Cost costOf(std::vector<std::string> arguments) {
    std::vector<char*> texts;
    for (std::string& argument : arguments) {
        texts.push_back(argument.data());
    }
    texts.push_back(nullptr);
    timespec begin = {};
    timespec end = {};
    clock_gettime(CLOCK_MONOTONIC, &begin);
    std::fflush(stdout);
    const pid_t process = fork();
    if (process == 0) {
        if (std::freopen("/dev/null", "w", stdout) != nullptr) {
            execv(texts[0], texts.data());
        }
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(process, &status, 0, &usage);
    clock_gettime(CLOCK_MONOTONIC, &end);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error(arguments[0] + " failed");
    }
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    const double elapsed =
        static_cast<double>(end.tv_sec - begin.tv_sec) + static_cast<double>(end.tv_nsec - begin.tv_nsec) * 1e-9;
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), elapsed, static_cast<double>(usage.ru_maxrss) / 1024.0};
}

/** The cheapest of some runs: others only add to what a program costs by itself. */
Cost costOf(const std::vector<std::string>& arguments, const std::function<void()>& prepare) {
    constexpr int runs = 5;
    Cost best;
    for (int run = 0; run < runs; ++run) {
        prepare();
        const Cost cost = costOf(arguments);
        const auto take = [&](double Cost::*part) {
            best.*part = run == 0 ? cost.*part : std::min(best.*part, cost.*part);
        };
        take(&Cost::seconds);
        take(&Cost::elapsed);
        take(&Cost::megabytes);
    }
    return best;
}

/** @param beside what it is compared with, or nothing */
void print(const char* what, double size, const Cost& cost, const Cost* beside) {
    std::printf("%6.0f MB  %-16s %8.2f s  %8.2f s  %8.0f MB  %6.2f", size, what, cost.seconds, cost.elapsed,
                cost.megabytes, cost.megabytes / size);
    if (beside != nullptr) {
        std::printf("  %10.2f  %6.2f  %7.2f", cost.seconds / beside->seconds, cost.elapsed / beside->elapsed,
                    cost.megabytes / beside->megabytes);
    }
    std::printf("\n");
}

void compare(const std::string& self, const fs::path& folder, double megabytes) {
    const std::string model = (folder / "model.ifc").string();
    IfcBuilding::write(model, static_cast<std::size_t>(megabytes * 1e6));
    const auto nothing = [] {};
    const Cost* beside = nullptr;
#ifdef HAVE_ASSIMP
    const Cost assimp = costOf({self, "--assimp", model}, nothing);
    beside = &assimp;
    print("Assimp: read", megabytes, assimp, beside);
#endif
    print("read and build", megabytes, costOf({self, "--ours", model}, nothing), beside);
#ifdef IMPORT_HOST
    const std::string state = (folder / "state").string();
    const auto forget = [&] { fs::remove_all(state); };
    print("first import", megabytes,
          costOf({IMPORT_HOST, "--quiet", "--plugin", IFC_PLUGIN, "--state", state, model}, forget), beside);
    forget();
#endif
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::string_view mode = argc > 1 ? argv[1] : "";
        if (mode == "--ours") {
            return readOurs(argv[2]);
        }
#ifdef HAVE_ASSIMP
        if (mode == "--assimp") {
            return readAssimp(argv[2]);
        }
#endif
        if (mode == "--write") {
            IfcBuilding::write(argv[2], static_cast<std::size_t>(std::atof(argv[3]) * 1e6));
            return 0;
        }
        std::string folder = (fs::temp_directory_path() / "ifc-benchmark-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        std::vector<double> sizes;
        for (int i = 1; i < argc; ++i) {
            sizes.push_back(std::atof(argv[i]));
            if (!(sizes.back() > 0.0)) {
                throw std::runtime_error(std::string(argv[i]) + " is not a number of megabytes");
            }
        }
        std::printf("    model  %-16s %10s  %10s  %11s  %6s  %10s  %6s  %7s\n", "", "processor", "clock", "memory",
                    "/ file", "/ Assimp's", "/ its", "/ its");
        for (const double size : sizes.empty() ? std::vector<double>{35, 140} : sizes) {
            compare(fs::canonical("/proc/self/exe").string(), folder, size);
        }
        fs::remove_all(folder);
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "IfcReaderBenchmark: %s\n", e.what());
        return 1;
    }
}
