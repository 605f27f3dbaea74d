// The UTF-8 codec beside the system's conversions: element names into a fixed buffer, and long texts.
//
// Every contender is handed what it needs ready-made: an open conversion, a locale that is set, a buffer that is large
// enough. ICU has no 32-bit conversion of its own, so it goes through UTF-16.

#include "BenchmarkSupport.h"

#include <ImportCommon/StringOperations.h>

#ifdef HAVE_ICONV
#include <iconv.h>
#endif
#ifdef HAVE_ICU
#include <unicode/ustring.h>
#endif

#include <clocale>
#include <cstdlib>

using namespace ImportCommon;

namespace {

constexpr std::size_t nameCount = 20000; // too many for the branch predictor to learn
constexpr std::size_t longText = 1 << 20;

/** The same text in both forms. */
struct Text {
    std::string narrow;
    std::wstring wide;
};

/** Texts of a kind, and room for the longest. */
struct Texts {
    std::vector<Text> texts;
    std::vector<char> narrowRoom;
    std::vector<wchar_t> wideRoom;
    std::vector<char16_t> utf16Room;
};

/** Letters by their code points, without surrogates. */
struct Alphabet {
    const char* name;
    wchar_t first;
    wchar_t last;
    unsigned int asciiShare; // in per cent, for the text's other letters
};

constexpr Alphabet alphabets[] = {{"ASCII", L' ', L'~', 100}, {"Latin", 0xC0, 0x17F, 90}, {"CJK", 0x4E00, 0x9FA5, 0}};

void appendUtf8(std::string& text, wchar_t c) {
    unsigned char bytes[8];
    const std::size_t size = StringOperations::ConvertToUTF8(&c, 1, bytes, sizeof bytes);
    text.append(reinterpret_cast<const char*>(bytes), size);
}

Text randomText(const Alphabet& alphabet, std::size_t minimumBytes, std::size_t maximumBytes, std::mt19937& random) {
    const std::size_t bytes = minimumBytes + random() % (maximumBytes - minimumBytes + 1);
    Text text;
    while (text.narrow.size() < bytes) {
        const Alphabet& from = random() % 100 < alphabet.asciiShare ? alphabets[0] : alphabet;
        const auto range = static_cast<unsigned int>(from.last - from.first + 1);
        text.wide += static_cast<wchar_t>(static_cast<unsigned int>(from.first) + random() % range);
        appendUtf8(text.narrow, text.wide.back());
    }
    return text;
}

Texts makeTexts(const Alphabet& alphabet, std::size_t count, std::size_t minimumBytes, std::size_t maximumBytes) {
    std::mt19937 random(4);
    Texts texts;
    for (std::size_t i = 0; i < count; ++i) {
        texts.texts.push_back(randomText(alphabet, minimumBytes, maximumBytes, random));
    }
    texts.narrowRoom.resize(maximumBytes + 16);
    texts.wideRoom.resize(maximumBytes + 16);
    texts.utf16Room.resize(maximumBytes + 16);
    return texts;
}

/** The library. */
struct Library {
    std::size_t decode(const Text& text, Texts& room) {
        return StringOperations::ConvertFromUTF8(reinterpret_cast<const unsigned char*>(text.narrow.c_str()), SIZE_MAX,
                                                 room.wideRoom.data(), room.wideRoom.size());
    }
    std::size_t encode(const Text& text, Texts& room) {
        return StringOperations::ConvertToUTF8(text.wide.data(), text.wide.size(),
                                               reinterpret_cast<unsigned char*>(room.narrowRoom.data()),
                                               room.narrowRoom.size());
    }
};

/** The conversions of the C library in a UTF-8 locale. */
struct CLibrary {
    CLibrary() { std::setlocale(LC_ALL, "C.UTF-8"); }
    std::size_t decode(const Text& text, Texts& room) {
        return std::mbstowcs(room.wideRoom.data(), text.narrow.c_str(), room.wideRoom.size());
    }
    std::size_t encode(const Text& text, Texts& room) {
        return std::wcstombs(room.narrowRoom.data(), text.wide.c_str(), room.narrowRoom.size());
    }
};

#ifdef HAVE_ICONV
class Iconv {
public:
    Iconv() : decoder_(iconv_open("WCHAR_T", "UTF-8")), encoder_(iconv_open("UTF-8", "WCHAR_T")) {}
    ~Iconv() {
        iconv_close(decoder_);
        iconv_close(encoder_);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;

    std::size_t decode(const Text& text, Texts& room) {
        return convert(decoder_, text.narrow.data(), text.narrow.size(), room.wideRoom);
    }
    std::size_t encode(const Text& text, Texts& room) {
        return convert(encoder_, text.wide.data(), text.wide.size() * sizeof(wchar_t), room.narrowRoom);
    }

private:
    template <typename T>
    static std::size_t convert(iconv_t conversion, const void* text, std::size_t size, std::vector<T>& room) {
        char* in = const_cast<char*>(static_cast<const char*>(text));
        char* out = reinterpret_cast<char*>(room.data());
        std::size_t left = room.size() * sizeof(T);
        return iconv(conversion, &in, &size, &out, &left) + left;
    }

    iconv_t decoder_;
    iconv_t encoder_;
};
#endif

#ifdef HAVE_ICU
struct Icu {
    std::size_t decode(const Text& text, Texts& room) {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t units = 0;
        std::int32_t length = 0;
        u_strFromUTF8(room.utf16Room.data(), static_cast<std::int32_t>(room.utf16Room.size()), &units,
                      text.narrow.data(), static_cast<std::int32_t>(text.narrow.size()), &error);
        u_strToUTF32(reinterpret_cast<UChar32*>(room.wideRoom.data()), static_cast<std::int32_t>(room.wideRoom.size()),
                     &length, room.utf16Room.data(), units, &error);
        return static_cast<std::size_t>(length);
    }
    std::size_t encode(const Text& text, Texts& room) {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t units = 0;
        std::int32_t length = 0;
        u_strFromUTF32(room.utf16Room.data(), static_cast<std::int32_t>(room.utf16Room.size()), &units,
                       reinterpret_cast<const UChar32*>(text.wide.data()), static_cast<std::int32_t>(text.wide.size()),
                       &error);
        u_strToUTF8(room.narrowRoom.data(), static_cast<std::int32_t>(room.narrowRoom.size()), &length,
                    room.utf16Room.data(), units, &error);
        return static_cast<std::size_t>(length);
    }
};
#endif

/** What a conversion of plain ASCII can cost at least. */
struct Copy {
    std::size_t decode(const Text& text, Texts& room) {
        const char* bytes = text.narrow.data();
        wchar_t* out = room.wideRoom.data();
        for (std::size_t i = 0; i < text.narrow.size(); ++i) {
            out[i] = static_cast<unsigned char>(bytes[i]);
        }
        return text.narrow.size();
    }
    std::size_t encode(const Text& text, Texts& room) {
        const wchar_t* in = text.wide.data();
        char* out = room.narrowRoom.data();
        for (std::size_t i = 0; i < text.wide.size(); ++i) {
            out[i] = static_cast<char>(in[i]);
        }
        return text.wide.size();
    }
};

template <typename Codec>
void addCodec(const Alphabet& alphabet, const std::string& size, std::size_t count, std::size_t minimumBytes,
              std::size_t maximumBytes, const char* name) {
    const auto add = [=](const std::string& work, std::size_t (Codec::*convert)(const Text&, Texts&)) {
        addBenchmark("text/" + work + " " + alphabet.name + "/" + size + "/" + name, count,
                     [=](benchmark::State& state) {
                         Texts texts = makeTexts(alphabet, count, minimumBytes, maximumBytes);
                         Codec codec;
                         for (auto _ : state) {
                             for (const Text& text : texts.texts) {
                                 benchmark::DoNotOptimize((codec.*convert)(text, texts));
                                 benchmark::ClobberMemory();
                             }
                         }
                     });
    };
    add("decode", &Codec::decode);
    add("encode", &Codec::encode);
}

template <typename Codec>
void addCodecs(const Alphabet& alphabet, const char* name) {
    addCodec<Codec>(alphabet, "names", nameCount, 8, 60, name);
    addCodec<Codec>(alphabet, "1 MiB", 1, longText, longText, name);
}

const bool added = [] {
    for (const Alphabet& alphabet : alphabets) {
        addCodecs<Library>(alphabet, "library");
        addCodecs<CLibrary>(alphabet, "mbstowcs, wcstombs");
#ifdef HAVE_ICONV
        addCodecs<Iconv>(alphabet, "iconv");
#endif
#ifdef HAVE_ICU
        addCodecs<Icu>(alphabet, "ICU");
#endif
    }
    addCodec<Copy>(alphabets[0], "1 MiB", 1, longText, longText, "widening or narrowing copy");
    return true;
}();

} // namespace
