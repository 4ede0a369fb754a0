#include "CommandOutput.h"
#include "FunctionCalls.h"
#include "Kestrel_Base64.h"

#include <bitset>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <unistd.h>

/// Base64: the coder on arrays and the two functions of the loaded library, compared with the system's
/// `base64` and with a coder that works bit by bit.

namespace {

using host::Data;
using host::Text;

const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The input has an array of exactly its length, so that the sanitizer finds every access beyond it.
std::string coded(int (*code)(const char*, int, char**), std::string_view bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    char* out = nullptr;
    const int size = code(exact.data(), static_cast<int>(exact.size()), &out);
    const std::unique_ptr<char[]> owner(out);
    EXPECT_EQ(out[size], '\0');
    return {out, static_cast<std::size_t>(size)};
}
std::string encoded(std::string_view bytes) { return coded(B64_Encode, bytes); }
std::string decoded(std::string_view characters) { return coded(B64_Decode, characters); }

/// The decoded bytes, computed bit by bit: six bits for each character, zeros for a character without a
/// value, cut to whole bytes.
std::string decodedByBits(std::string characters) {
    while (characters.size() % 4 != 0)
        characters += '=';
    std::string bits, bytes;
    for (const char character : characters) {
        const std::size_t value = alphabet.find(character);
        bits += std::bitset<6>(value == std::string::npos ? 0 : value).to_string();
    }
    for (std::size_t at = 0; at < bits.size(); at += 8)
        bytes += static_cast<char>(std::bitset<8>(bits.substr(at, 8)).to_ulong());
    if (characters.empty()) return bytes;
    const std::string last = characters.substr(characters.size() - 3);
    return bytes.substr(0,
                        bytes.size() - static_cast<std::size_t>(std::count(last.begin(), last.end(), '=')));
}

/// The output of the system's `base64` for the bytes.
std::string madeByTheSystem(const std::string& options, std::string_view bytes) {
    const std::string name = testing::TempDir() + "base64-" + std::to_string(::getpid());
    std::ofstream(name, std::ios::binary) << bytes;
    const std::string output = outputOf("base64 " + options + " '" + name + "' || echo failed");
    std::filesystem::remove(name);
    return output;
}

std::string randomBytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

TEST(Base64, handlesMissingInputAndDestination) {
    EXPECT_EQ(B64_Encode("Man", 3, nullptr), 0);
    EXPECT_EQ(B64_Decode("TWFu", 4, nullptr), 0);
    EXPECT_EQ(encoded(""), "AA==");
    EXPECT_EQ(decoded(""), "");
    for (const auto code : {B64_Encode, B64_Decode}) {
        char* out = nullptr;
        const int size = code(nullptr, -1, &out);
        const std::unique_ptr<char[]> owner(out);
        EXPECT_EQ(std::string(out, static_cast<std::size_t>(size)), coded(code, ""));
    }
    char* none = nullptr; // for an output longer than the type of its size allows
    EXPECT_THROW(B64_Encode("", std::numeric_limits<int>::max(), &none), std::length_error);
}

TEST(Base64, decodesAnyBytesLikeABitwiseDecoder) {
    std::mt19937 random(5);
    for (int round = 0; round < 5'000; ++round) {
        std::string characters = randomBytes(random, random() % 40);
        for (char& character : characters) {
            if (random() % 8 == 0) continue; // keeps a random byte, also one from 0x80
            character = random() % 8 == 0 ? '=' : alphabet[random() % alphabet.size()];
        }
        ASSERT_EQ(decoded(characters), decodedByBits(characters)) << testing::PrintToString(characters);
    }
}

TEST(Base64, agreesWithTheSystemsToolOnEveryLength) {
    std::mt19937 random(64);
    for (std::size_t size = 1; size <= 64; ++size) {
        const std::string bytes = randomBytes(random, size), characters = encoded(bytes);
        EXPECT_EQ(madeByTheSystem("-w0", bytes), characters);
        EXPECT_EQ(madeByTheSystem("-d", characters), bytes) << characters;
        EXPECT_EQ(decoded(characters), bytes) << characters;
    }
}

class Base64Functions : public FunctionCalls {
protected:
    void TearDown() override {
        host::setNativeEncoding(former_);
        FunctionCalls::TearDown();
    }

    Text encode(const Text& text) {
        return call(u"Kestrel_Encode", {Data(u"UTF-8 to Base64"), Data(text)}).value.asText();
    }
    Text decode(const Text& text) {
        return call(u"Kestrel_Decode", {Data(u"Base64 to UTF-8"), Data(text)}).value.asText();
    }

    /// A text of more than a megabyte with characters of one to four bytes, without U+0000.
    static Text longText() {
        constexpr char32_t lasts[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
        std::mt19937 random(1);
        std::u16string units;
        while (units.size() < 600'000) {
            const char32_t point = 1 + static_cast<char32_t>(random() % lasts[random() % std::size(lasts)]);
            if (point >= 0xD800 && point <= 0xDFFF) continue;
            if (point > 0xFFFF) units += static_cast<char16_t>(0xD7C0 + (point >> 10U));
            units += static_cast<char16_t>(point > 0xFFFF ? 0xDC00 + (point & 0x3FFU) : point);
        }
        return units;
    }

private:
    host::Encoding former_ = host::nativeEncoding();
};

TEST_F(Base64Functions, agreeWithTheSystemsToolOnAMegabyteOfText) {
    const Text text = longText();
    const std::string bytes = text.utf8();
    EXPECT_GE(bytes.size(), 1'000'000U);
    const Text ours = encode(text);
    EXPECT_TRUE(ours.utf8() == madeByTheSystem("-w0", bytes));
    EXPECT_TRUE(madeByTheSystem("-d", ours.utf8()) == bytes);
    EXPECT_TRUE(decode(ours) == text);
}

TEST_F(Base64Functions, decodeWhatTheyEncodeInEveryNativeEncoding) {
    for (int number = 1; number <= 7; ++number) {
        host::setNativeEncoding(host::encodingFromNumber(number));
        for (const char16_t* text : {u"M", u"é", u"日本語", u"a\r\n\t¶~\\", u"\U0001F600\U0001F468‍"}) {
            const Text characters = encode(text);
            EXPECT_EQ(characters.utf8(), encoded(Text(text).utf8())) << number;
            EXPECT_EQ(decode(characters).utf8(), Text(text).utf8()) << number;
        }
        // Native bytes outside ASCII decode as zeros, at most one for each unit of the text.
        const Text foreign(u"é€\U0001F600日ÿ" + std::u16string{0xD83D});
        std::string native = host::encode(foreign.units(), host::nativeEncoding());
        native.resize(foreign.size(), '\0');
        EXPECT_EQ(decode(foreign).utf8(), Text::fromUtf8(decodedByBits(native)).utf8()) << number;
    }
}

TEST_F(Base64Functions, keepDecodedZerosAndCutInputAtZeros) {
    EXPECT_EQ(encode(std::u16string(u"ab\0c", 4)).utf8(), "YWI=");
    // The coder gives one group even for empty input.
    EXPECT_EQ(encode(std::u16string(u"\0c", 2)).utf8(), "AA==");
    // Decoded zeros are kept, also the zeros from a line break.
    EXPECT_EQ(decode(Text(u"YQBi")), Text(std::u16string(u"a\0b", 3)));
    EXPECT_EQ(decode(Text(u"TWFu\r\nQQQQ")), Text(std::u16string(u"Man\0\4\20A", 7)));
}

} // namespace
