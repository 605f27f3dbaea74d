/**
 * @file VersionStream.cpp
 * Stored version fingerprints as bytes from anywhere, against a plain reading of them.
 */
#include "FuzzInput.h"
#include "Models/VersionModel.h"

#include <ImportCommon/CExternalVersion.h>
#include <ImportCommon/ExternalVersion.h>

using namespace ImportCommon;

namespace {

constexpr unsigned int streamSize = CExternalVersion::MaximumStreamSize;

/** What a version should hold. */
struct Model {
    std::uint32_t type = 0;
    VersionModel::Values_t values{};
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
    const std::string expected = VersionModel::write(model.type, model.values);
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
        model.type = VersionModel::read(model.values, bytes);
        require(version.getType() == static_cast<ExternalVersionType_e>(model.type), "kind");
        checkText(version, textSize);
        checkRoundTrip(version, model);
        before.similarity(version);
        before = version;
    }
    return 0;
}
