/**
 * @file VersionStream.cpp
 * Stored version fingerprints as bytes from anywhere, against a plain reading of them.
 */
#include "FuzzInput.h"

#include <ImportCommon/CExternalVersion.h>
#include <ImportCommon/ExternalVersion.h>

#include <vector>

using namespace ImportCommon;

namespace {

constexpr unsigned int streamSize = CExternalVersion::MaximumStreamSize;

/** A version as the order in which its values stand in a stream: volume and centroid, distances, box. */
struct Model {
    std::uint32_t type = 0;
    double values[15] = {};

    void read(const std::string& stream) {
        type = 0;
        if (stream.size() < 4) {
            return;
        }
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(stream[i]); };
        const auto number = [&](std::size_t i) {
            return static_cast<std::uint32_t>(static_cast<signed char>(byte(i)));
        };
        type = number(0) + number(1) * 256 + number(2) * 65536 + byte(3) * 16777216U;
        const std::size_t begin = type == 1 ? 12 : type == 3 ? 4 : 0;
        std::size_t at = 4;
        for (std::size_t part = begin; type >= 1 && type <= 3 && part < 15;) {
            const std::size_t next = part == 0 ? 4 : part == 4 ? 12 : 15;
            const std::size_t bytes = (next - part) * sizeof(double);
            if (next == 15 ? stream.size() - at != bytes : stream.size() - at < bytes) {
                return;
            }
            std::memcpy(values + part, stream.data() + at, bytes);
            at += bytes;
            part = next;
        }
    }

    std::string write() const {
        const std::size_t begin = type == 1 ? 12 : type == 2 ? 0 : type == 3 ? 4 : 15;
        return std::string(reinterpret_cast<const char*>(&type), sizeof type) +
               std::string(reinterpret_cast<const char*>(values + begin), (15 - begin) * sizeof(double));
    }
};

void checkText(const ExternalVersion& version, unsigned int size) {
    const ExactArray<char> text(size, 'z');
    version.toString(size, text.get());
    if (version.getType() == ExternalVersionType_Invalid) {
        require(std::string(text.get(), size) == std::string("invalid\0\0", 9).append(256, '\0').substr(0, size),
                "text of an invalid version");
    } else if (version.getType() <= ExternalVersionType_Geometry && size > 0) {
        require(std::memchr(text.get(), 0, size) != nullptr, "text is terminated");
    } else {
        require(std::string(text.get(), size) == std::string(size, 'z'), "text of an unknown version");
    }
}

/** A version whose values are numbers equals itself after its stream was read back. */
void checkRoundTrip(const ExternalVersion& version, const Model& model) {
    const ExactArray<char> stream(streamSize, 'z');
    const unsigned int written = version.toByteStream(streamSize, stream.get());
    const std::string expected = model.write();
    require(std::string(stream.get(), written) == expected, "stream");
    require(std::string(stream.get() + written, streamSize - written) == std::string(streamSize - written, 'z'),
            "bytes behind the stream");
    const ExactArray<char> tooSmall(streamSize - 1, 'z');
    require(version.toByteStream(streamSize - 1, tooSmall.get()) == 0, "stream without room");

    ExternalVersion back;
    back.fromByteStream(written, stream.get());
    require(back.getType() == version.getType() || model.type > 3, "kind read back");
    const ExternalVersion copy = version;
    require((copy == version) == (version == copy), "equality is symmetric");
    version.similarity(copy);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    ExternalVersion version;
    ExternalVersion before;
    Model model;
    while (!input.empty()) {
        const unsigned int textSize = input.take<std::uint8_t>();
        const std::string bytes = input.bytes(input.take<std::uint8_t>());
        const ExactArray<char> exact(bytes.data(), bytes.size());
        version.fromByteStream(static_cast<unsigned int>(exact.size()), exact.get());
        model.read(bytes);
        require(version.getType() == static_cast<ExternalVersionType_e>(model.type), "kind");
        checkText(version, textSize);
        checkRoundTrip(version, model);
        before.similarity(version);
        before = version;
    }
    return 0;
}
