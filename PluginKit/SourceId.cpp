#include <PluginKit/SourceId.h>

#include <cstdint>

using ImportCommon::ExternalGUID;
using ImportCommon::PXGUID_t;

namespace PluginKit {

namespace {

/** SipHash-2-4 with a result of 128 bits and the key 0, 1, 2 ... 15: stored identities depend on it. */
class Hash {
public:
    void add(std::string_view text) {
        const std::size_t wholeWords = text.size() / 8;
        for (std::size_t i = 0; i < wholeWords; ++i) {
            addWord(wordOf(text.substr(i * 8, 8)));
        }
        addWord(wordOf(text.substr(wholeWords * 8)) | static_cast<std::uint64_t>(text.size() & 0xFF) << 56);
    }

    PXGUID_t finish() {
        PXGUID_t result = {};
        v2_ ^= 0xEE;
        store(result.bytes);
        v1_ ^= 0xDD;
        store(result.bytes + 8);
        return result;
    }

private:
    static std::uint64_t wordOf(std::string_view bytes) {
        std::uint64_t word = 0;
        for (std::size_t i = bytes.size(); i-- > 0;) {
            word = word << 8 | static_cast<unsigned char>(bytes[i]);
        }
        return word;
    }

    static std::uint64_t turned(std::uint64_t value, int bits) { return value << bits | value >> (64 - bits); }

    void addWord(std::uint64_t word) {
        v3_ ^= word;
        mix(2);
        v0_ ^= word;
    }

    void mix(int rounds) {
        for (int i = 0; i < rounds; ++i) {
            v0_ += v1_;
            v1_ = turned(v1_, 13) ^ v0_;
            v0_ = turned(v0_, 32);
            v2_ += v3_;
            v3_ = turned(v3_, 16) ^ v2_;
            v0_ += v3_;
            v3_ = turned(v3_, 21) ^ v0_;
            v2_ += v1_;
            v1_ = turned(v1_, 17) ^ v2_;
            v2_ = turned(v2_, 32);
        }
    }

    void store(unsigned char* bytes) {
        mix(4);
        const std::uint64_t word = v0_ ^ v1_ ^ v2_ ^ v3_;
        for (int i = 0; i < 8; ++i) {
            bytes[i] = static_cast<unsigned char>(word >> (8 * i));
        }
    }

    static constexpr std::uint64_t lowKey = 0x0706050403020100;
    static constexpr std::uint64_t highKey = 0x0F0E0D0C0B0A0908;

    std::uint64_t v0_ = 0x736F6D6570736575 ^ lowKey;
    std::uint64_t v1_ = 0x646F72616E646F6D ^ highKey ^ 0xEE;
    std::uint64_t v2_ = 0x6C7967656E657261 ^ lowKey;
    std::uint64_t v3_ = 0x7465646279746573 ^ highKey;
};

} // namespace

ExternalGUID identityFromSourceId(std::string_view id) {
    if (id.empty()) {
        return ExternalGUID();
    }
    Hash hash;
    hash.add(id);
    return ExternalGUID::fromPX(hash.finish());
}

} // namespace PluginKit
