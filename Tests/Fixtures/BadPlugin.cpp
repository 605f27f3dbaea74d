// A plug-in that fails in the way that the environment variable BAD_PLUGIN asks for: by a word, or by the name of a
// stream, a colon, and what happens to it.

#include <ImportCommon/ExternalGUID.h>

#include <PluginKit/Hex.h>
#include <PluginKit/PluginKit.h>
#include <PluginKit/StreamNames.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>

using namespace PluginKit;

namespace {

ForeignObjectEnv_t env;

ObjectLine box() {
    const double distances[8] = {};
    const double centre[3] = {};
    const double vertices[] = {0, 0, 0, 1, 1, 1, 0, 0, 0};
    ObjectLine object;
    object.identity = ImportCommon::ExternalGUID::fromIFCGlobalID("0123456789012345678901");
    object.spatialHash = ImportCommon::ExternalGUID::spatialHashFromVertexes(3, vertices);
    object.version = ImportCommon::createFromSolid(1, 1, 1, distances, 1, centre);
    object.className = "IFCWALL";
    object.name = "Box";
    return object;
}

/** What a plug-in writes that does its work: one object. */
int good(StreamWriter& writer) {
    writer.material({});
    writer.object(box(), {1, 2, "0123456789012345678901"});
    SolidSurface surface;
    surface.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 1}};
    surface.addPolygon({0, 1, 2});
    writer.shape({surface});
    writer.set({1, "", "custom", "", "Set", "", ""});
    writer.property(textProperty("Name", "value"));
    writer.progress(1.0, "done");
    writer.end();
    return ImportResult_Done;
}

int good() {
    StreamWriter writer(env);
    return good(writer);
}

/** A good import with one line of a stream more, or another one. */
int with(FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    return good();
}

int behind(FILE* stream, const std::string& text) {
    good();
    std::fwrite(text.data(), 1, text.size(), stream);
    return ImportResult_Done;
}

/** An object with a field that is another one. */
int withField(std::size_t field, const std::string& text) {
    good();
    std::fflush(env.objects);
    const std::string path = toUtf8(env.path) + "/objects";
    FILE* const file = std::fopen(path.c_str(), "rb");
    std::string line;
    for (int c = std::fgetc(file); c != EOF && c != '\n'; c = std::fgetc(file)) {
        line += static_cast<char>(c);
    }
    std::fclose(file);
    std::string changed;
    std::size_t i = 0;
    for (const std::string_view part : split(line, '\t')) {
        changed += (i == 0 ? "" : "\t") + (i == field ? text : std::string(part));
        ++i;
    }
    std::rewind(env.objects);
    if (::ftruncate(::fileno(env.objects), 0) != 0) {
        return ImportResult_Failed;
    }
    std::fputs((changed + "\nend\t1\n").c_str(), env.objects);
    return ImportResult_Done;
}

int withVersion(double size) {
    const double distances[8] = {size, size, size, size, size, size, size, size};
    const double centre[3] = {size, size, size};
    const ImportCommon::ExternalVersion version =
        ImportCommon::createFromSolid(size, size, size, distances, size, centre);
    char bytes[ImportCommon::CExternalVersion::MaximumStreamSize];
    return withField(2, toHex(bytes, version.toByteStream(sizeof bytes, bytes)));
}

int withSolid(const std::string& bytes) {
    return behind(env.solids, "1\t2\t" + std::to_string(bytes.size()) + '\n' + bytes + '\n');
}

std::string words(std::initializer_list<std::uint32_t> numbers) {
    std::string bytes;
    for (const std::uint32_t number : numbers) {
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    return bytes;
}

/** Properties within properties, each with a long name: all their full names together are far longer than the stream. */
int nested() {
    StreamWriter writer(env);
    good(writer);
    for (std::size_t depth = 0; depth < 5000; ++depth) {
        PropertyLine complex = complexProperty(std::string(200, 'n'));
        complex.depth = depth;
        writer.property(complex);
        PropertyLine leaf = textProperty("leaf", "");
        leaf.depth = depth + 1;
        writer.property(leaf);
    }
    return ImportResult_Done;
}

/** Very many values of one name, others in each process. */
int alike() {
    StreamWriter writer(env);
    good(writer);
    for (int i = 0; i < 100'000; ++i) {
        writer.property(integerProperty("Value", i * 100'000LL + ::getpid()));
    }
    return ImportResult_Done;
}

int overflow(int depth) {
    volatile char block[4096] = {};
    block[0] = static_cast<char>(depth);
    return depth == std::numeric_limits<int>::max() ? 0 : overflow(depth + 1) + block[0];
}

int talk(FILE* stream, std::size_t lines) {
    const std::string line = std::string(1023, 'x') + '\n';
    for (std::size_t i = 0; i < lines; ++i) {
        std::fwrite(line.data(), 1, line.size(), stream);
    }
    return good();
}

/** Waits until the file that the environment names is gone. */
int wait() {
    const char* const file = std::getenv("BAD_PLUGIN_WAITS_FOR");
    while (file != nullptr && ::access(file, F_OK) == 0) {
        ::usleep(1000);
    }
    return good();
}

/** Leaves a process behind that waits likewise: this program, or another one. */
int leave(bool runsProgram) {
    if (::fork() == 0) {
        if (runsProgram) {
            ::execlp("sh", "sh", "-c", "while test -e \"$BAD_PLUGIN_WAITS_FOR\"; do sleep 0.1; done", nullptr);
        }
        wait();
        ::_exit(0);
    }
    return good();
}

int replaceObjects(const std::function<void(const std::filesystem::path&)>& put) {
    good();
    std::fflush(env.objects);
    const std::filesystem::path objects = toUtf8(env.path) + "/objects";
    std::filesystem::remove(objects);
    put(objects);
    return ImportResult_Done;
}

int raise(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    return good();
}

int fail(const std::string& reason) {
    StreamWriter(env).error(reason);
    return ImportResult_Failed;
}

// clang-format off
const std::map<std::string, std::function<int()>> behaviours = {
    {"good", [] { return good(); }},
    {"silence", [] { return ImportResult_Done; }},
    // How it ends
    {"crash", [] { std::abort(); return 0; }},
    {"segv", [] { return raise(SIGSEGV); }},
    {"fpe", [] { return raise(SIGFPE); }},
    {"bus", [] { return raise(SIGBUS); }},
    {"kill", [] { return raise(SIGKILL); }},
    {"term", [] { return raise(SIGTERM); }},
    {"pipe", [] { return raise(SIGPIPE); }},
    {"overflow", [] { return overflow(0); }},
    {"exit", [] { std::_Exit(3); return 0; }},
    {"quit", [] { std::_Exit(0); return 0; }},
    {"orderly", [] { std::exit(0); return 0; }},
    {"terminate", [] { std::terminate(); return 0; }},
    {"throw", []() -> int { throw std::runtime_error("out of order"); }},
    {"throw-int", []() -> int { throw 5; }},
    {"throw-memory", []() -> int { throw std::bad_alloc(); }},
    {"thread-exit", [] { pthread_exit(nullptr); return 0; }},
    {"fail", [] { return 77; }},
    {"fail-negative", [] { return -1; }},
    {"fail-silently", [] { return 1; }},
    {"fail-version", [] { return 2; }},
    {"fail-controls", [] { return fail("red \x1B[31m \xC2\x9B" "31m\n next"); }},
    {"fail-long", [] { return fail(std::string(1000000, 'x')); }},
    // What it says and leaves behind
    {"shout", [] { std::fputs("one\ntwo \x1B[31m\n", stderr); std::abort(); return 0; }},
    {"shout-much", [] { talk(stderr, 65536); std::abort(); return 0; }},
    {"shout-out", [] { talk(stdout, 65536); std::fflush(stdout); std::abort(); return 0; }},
    {"talk", [] { return talk(stderr, 1000); }},
    {"leave", [] { return leave(true); }},
    {"leave-fork", [] { return leave(false); }},
    {"wait", wait},
    // What it does to its process
    {"close-all", [] { good(); for (int i = 0; i < 256; ++i) { ::close(i); } return 0; }},
    {"close-standard", [] { ::close(0); ::close(1); ::close(2); return good(); }},
    {"chdir", [] { return ::chdir("/") == 0 ? good() : 1; }},
    {"umask", [] { ::umask(0777); return good(); }},
    {"locale", [] { std::setlocale(LC_ALL, "de_DE.UTF-8"); return good(); }},
    {"clearenv", [] { const int result = good(); ::clearenv(); return result; }},
    {"ignore-signals", [] { for (int i = 1; i < 32; ++i) { std::signal(i, SIG_IGN); } return good(); }},
    {"remove-folder", [] { good(); std::filesystem::remove_all(toUtf8(env.path)); return 0; }},
    {"objects-gone", [] { return replaceObjects([](const auto&) {}); }},
    {"objects-fifo", [] { return replaceObjects([](const auto& path) { ::mkfifo(path.c_str(), 0600); }); }},
    {"objects-folder", [] { return replaceObjects([](const auto& path) { std::filesystem::create_directory(path); }); }},
    {"objects-link", [] { return replaceObjects([](const auto& path) { std::filesystem::create_symlink("x", path); }); }},
    {"objects-device", [] { return replaceObjects([](const auto& p) { std::filesystem::create_symlink("/dev/zero", p); }); }},
    {"objects-huge", [] { good(); std::fflush(env.objects); return ::ftruncate(::fileno(env.objects), off_t(1) << 40); }},
    // What it writes
    {"objects-no-end", [] { std::fputs("", env.objects); StreamWriter writer(env); writer.object(box(), {}); return 0; }},
    {"objects-more-end", [] { return behind(env.objects, "end\t1\n"); }},
    {"objects-behind-end", [] { return behind(env.objects, "x\n"); }},
    {"objects-cut", [] { return behind(env.objects, "x"); }},
    {"objects-garbage", [] { return with(env.objects, "garbage\n"); }},
    {"objects-zeros", [] { return with(env.objects, std::string(1000, '\0') + '\n'); }},
    {"objects-tabs", [] { return with(env.objects, std::string(100000, '\t') + '\n'); }},
    {"objects-identity", [] { return withField(0, "00"); }},
    {"objects-none", [] { return withField(1, std::string(192, '0')); }},
    {"objects-version", [] { return withField(2, "09000000"); }},
    {"objects-version-infinite", [] { return withVersion(std::numeric_limits<double>::infinity()); }},
    {"objects-version-nan", [] { return withVersion(std::numeric_limits<double>::quiet_NaN()); }},
    {"objects-version-huge", [] { return withVersion(1e308); }},
    {"objects-version-negative", [] { return withVersion(-1e308); }},
    {"objects-position-short", [] { return withField(4, "0 0"); }},
    {"objects-position-nan", [] { return withField(4, "0 0 nan"); }},
    {"objects-position-huge", [] { return withField(4, "0 0 1e308"); }},
    {"objects-position-comma", [] { return withField(4, "0 0 1,5"); }},
    {"polygons-object", [] { return behind(env.polygons, "2\t0\t0 0 0\n"); }},
    {"polygons-vertex", [] { return behind(env.polygons, "1\t0\t0 0 0\t0 1 2\n"); }},
    {"polygons-coordinate", [] { return behind(env.polygons, "1\t0\t0 0\n"); }},
    {"polygons-huge", [] { return behind(env.polygons, "1\t0\t1e308 0 0\n"); }},
    {"polygons-garbage", [] { return behind(env.polygons, "garbage\n"); }},
    {"attributes-first", [] { return with(env.attributes, "property\t0\ta\t\ttext\tb\n"); }},
    {"attributes-depth", [] { return behind(env.attributes, "property\t3\ta\t\ttext\tb\n"); }},
    {"attributes-object", [] { return behind(env.attributes, "set\t7\t-\tcustom\t-\tSet\t\n"); }},
    {"attributes-type", [] { return behind(env.attributes, "property\t0\ta\t\tcolour\tred\n"); }},
    {"attributes-nan", [] { return behind(env.attributes, "property\t0\ta\t\treal\tnan\n"); }},
    {"attributes-angle", [] { return behind(env.attributes, "property\t0\ta\t\tangle\t1e308\n"); }},
    {"attributes-factor", [] { return behind(env.attributes, "property\t0\ta\t\treal\t1e308\t\t10\n"); }},
    {"attributes-garbage", [] { return behind(env.attributes, "garbage\n"); }},
    {"attributes-nested", nested},
    {"solids-garbage", [] { return behind(env.solids, "garbage\n"); }},
    {"solids-size", [] { return behind(env.solids, "1\t2\t9223372036854775807\nx\n"); }},
    {"solids-object", [] { return behind(env.solids, "9\t2\t4\n" + words({0}) + '\n'); }},
    {"solids-surfaces", [] { return withSolid(words({0xFFFFFFFF, 0, 0, 0})); }},
    {"solids-vertices", [] { return withSolid(words({1, 0, 0xFFFFFFFF, 0})); }},
    {"solids-polygons", [] { return withSolid(words({1, 0, 0, 0xFFFFFFFF, 0, 0})); }},
    {"solids-corner", [] { return withSolid(words({1, 0, 0, 1, 1, 5})); }},
    {"escapes-small", [] { return behind(env.attributes, "set\t1\t-\tcustom\t-\tS%1f\t\nproperty\t0\tN%0a\t\ttext\t%c3%a4%1f\n"); }},
    {"escapes-capital", [] { return behind(env.attributes, "set\t1\t-\tcustom\t-\tS%1F\t\nproperty\t0\tN%0A\t\ttext\t%C3%A4%1F\n"); }},
    {"attributes-alike", alike},
    {"log-garbage", [] { return behind(env.log, "garbage\n\t\n\0"); }},
    {"progress-garbage", [] { return with(env.progress, "x\n-1\tx\nnan\n1e999\tx\n\n0.5\t\x1B[31m\n"); }},
    {"objects-large", [] { good(); std::fflush(env.objects); return ::ftruncate(::fileno(env.objects), off_t(1) << 29); }},
    {"doubtful-two", [] { return behind(env.info, "doubtful\t2\n"); }},
    {"doubtful-none", [] { return behind(env.info, "doubtful\t0\n"); }},
    {"doubtful-some", [] { return behind(env.info, "doubtful\tsome\n"); }},
    {"info-garbage", [] { return behind(env.info, "garbage\n"); }},
};
// clang-format on

/** What happens to one of the streams: its file is closed, or it takes nothing more. */
int spoil(const std::string& name, const std::string& how) {
    for (const StreamName& stream : streamNames) {
        if (name == stream.name) {
            FILE* const file = env.*stream.handle;
            good();
            std::fputs("\n", file);
            const int full = how == "full" ? ::open("/dev/full", O_WRONLY) : -1;
            full >= 0 ? ::dup2(full, ::fileno(file)) : ::close(::fileno(file));
            return ImportResult_Done;
        }
    }
    return 1;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ImportModel() {
    const char* const value = std::getenv("BAD_PLUGIN");
    const std::string how = value != nullptr ? value : "";
    if (!foreignobject_env_deserialize(env)) {
        return ImportResult_WrongVersion;
    }
    const std::size_t colon = how.find(':');
    if (colon != std::string::npos) {
        return spoil(how.substr(0, colon), how.substr(colon + 1));
    }
    const auto behaviour = behaviours.find(how);
    return behaviour == behaviours.end() ? 99 : behaviour->second();
}
