#include <ImportCommon/PngTexture.h>

namespace ImportCommon {

PngTexture::PngTexture() = default;

PngTexture::PngTexture(const std::vector<char>& data) : data_(data) {
}

PngTexture::PngTexture(const PngTexture& other) = default;

PngTexture& PngTexture::operator=(const PngTexture& other) = default;

PngTexture::~PngTexture() = default;

const std::vector<char>& PngTexture::getData() const {
    return data_;
}

} // namespace ImportCommon
