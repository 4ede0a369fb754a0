#include "Base64.h"
#include "FunctionCalls.h"

#include <array>
#include <bitset>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>

/// Base64: the coder on bare arrays, and the two functions through the loaded library, both beside the
/// system's `base64` and a coder that works bit by bit.

namespace {

using host::Data;
using host::Text;

const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The input lies in an array of just its length, so that the sanitizer sees any step past it.
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

/// What decoding gives, by bits: six for each character, 0 for those that have none, cut at whole bytes.
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

/// A folder for files that the system's tool reads; gone at the end.
class Folder {
public:
    Folder() { path_ = ::mkdtemp(path_.data()); }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    void write(const std::string& name, std::string_view bytes) const {
        std::ofstream(path_ + "/" + name, std::ios::binary) << bytes;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream in(path_ + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// Runs a command within the folder.
    void run(const std::string& command) const {
        // NOLINTNEXTLINE(cert-env33-c): the system's own tool is what we compare with
        EXPECT_EQ(std::system(("cd '" + path_ + "' && " + command).c_str()), 0) << command;
    }

private:
    std::string path_ = testing::TempDir() + "base64XXXXXX";
};

std::string randomBytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

TEST(Base64, knowsTheStandardsVectors) {
    const struct {
        const char *bytes, *characters;
    } vectors[] = {{"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"}, {"foob", "Zm9vYg=="},
                   {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}, {"Man", "TWFu"}, {"\xC3\xA9", "w6k="}};
    for (const auto& [bytes, characters] : vectors) {
        EXPECT_EQ(encoded(bytes), characters);
        EXPECT_EQ(decoded(characters), bytes);
    }
}

TEST(Base64, answersWithoutInputOrWithoutADestination) {
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
}

TEST(Base64, decodesAnythingAsItsBitsSay) {
    std::mt19937 random(5);
    for (int round = 0; round < 5'000; ++round) {
        std::string characters = randomBytes(random, random() % 40);
        for (char& character : characters) {
            if (random() % 8 == 0) continue; // whatever byte, those from 0x80 on among them
            character = random() % 8 == 0 ? '=' : alphabet[random() % alphabet.size()];
        }
        ASSERT_EQ(decoded(characters), decodedByBits(characters)) << testing::PrintToString(characters);
    }
}

TEST(Base64, agreesWithTheSystemsToolOnEveryLength) {
    constexpr std::size_t longest = 64;
    std::mt19937 random(64);
    const Folder folder;
    std::vector<std::string> inputs;
    for (std::size_t size = 0; size <= longest; ++size) {
        inputs.push_back(randomBytes(random, size));
        folder.write(std::to_string(size), inputs.back());
        folder.write(std::to_string(size) + ".ours", size == 0 ? "" : encoded(inputs.back()));
    }
    folder.run(
        "for n in $(seq 0 64); do base64 -w0 $n >$n.theirs && base64 -d $n.ours >$n.back || exit 1; done");
    for (std::size_t size = 0; size <= longest; ++size) {
        const std::string name = std::to_string(size);
        EXPECT_EQ(folder.read(name + ".back"), inputs[size]) << size;
        if (size > 0) {
            EXPECT_EQ(folder.read(name + ".theirs"), encoded(inputs[size])) << size;
        }
        EXPECT_EQ(decoded(folder.read(name + ".theirs")), inputs[size]) << size;
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

    /// A megabyte of characters of one to four bytes, without U+0000.
    static Text longText() {
        constexpr std::size_t size = 1'000'000;
        constexpr char32_t lasts[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
        std::mt19937 random(1);
        std::u16string units;
        for (std::size_t bytes = 0; bytes < size;) {
            const char32_t last = lasts[random() % std::size(lasts)];
            const char32_t point = 1 + static_cast<char32_t>(random() % last);
            if (point >= 0xD800 && point <= 0xDFFF) continue;
            if (point > 0xFFFF) units += static_cast<char16_t>(0xD7C0 + (point >> 10U));
            units += static_cast<char16_t>(point > 0xFFFF ? 0xDC00 + (point & 0x3FFU) : point);
            bytes += 1 + (point > 0x7F ? 1 : 0) + (point > 0x7FF ? 1 : 0) + (point > 0xFFFF ? 1 : 0);
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
    const Folder folder;
    folder.write("text", bytes);
    folder.run("base64 -w0 text >theirs");
    const Text ours = encode(text);
    EXPECT_TRUE(ours.utf8() == folder.read("theirs"));
    EXPECT_TRUE(decode(ours) == text);
    folder.write("ours", ours.utf8());
    folder.run("base64 -d ours | cmp - text");
}

TEST_F(Base64Functions, makeTheRoundTripInEveryNativeEncoding) {
    for (int number = 1; number <= 7; ++number) {
        host::setNativeEncoding(host::encodingFromNumber(number));
        for (const char16_t* text : {u"M", u"é", u"日本語", u"a\r\n\t¶~\\", u"\U0001F600\U0001F468‍"}) {
            const Text characters = encode(text);
            EXPECT_EQ(characters.utf8(), encoded(Text(text).utf8())) << number;
            EXPECT_EQ(decode(characters).utf8(), Text(text).utf8()) << number;
        }
        // Outside ASCII the native bytes decode as zeros, as many as there are units at most.
        const Text foreign(u"é€\U0001F600日ÿ" + std::u16string{0xD83D});
        std::string native = host::encode(foreign.units(), host::nativeEncoding());
        native.resize(foreign.size(), '\0');
        EXPECT_EQ(decode(foreign).utf8(), Text::fromUtf8(decodedByBits(native)).utf8()) << number;
    }
}

TEST_F(Base64Functions, answerAndRecord) {
    const char* const unchanged = "7 kept";
    const struct {
        const char *calculation, *result, *lastError;
    } cases[] = {
        {"Kestrel_Encode ( \"UTF-8 to Base64\" ; \"\" )", "", unchanged},
        {"Kestrel_Decode ( \"Base64 to UTF-8\" ; \"\" )", "", unchanged},
        {"Kestrel_Encode ( \"UTF-8 to Base64\" ; \"M\" )", "TQ==", unchanged},
        {"Kestrel_Encode ( \"UTF-8 to Base64\" ; \"é\" )", "w6k=", unchanged},
        {"Kestrel_Encode ( \"utf-8 TO base64\" ; 2024 )", "MjAyNA==", unchanged},
        {"Kestrel_Encode ( \"UTF-8 to Base64\" ; Left ( \"😀\" ; 1 ) )", "77+9", unchanged},
        {"Kestrel_Decode ( \"base64 to utf-8\" ; \"w6k=\" )", "é", unchanged},
        {"Kestrel_Decode ( \"Base64 to UTF-8\" ; \"QQ==\" )", "A", unchanged},
        {"Kestrel_Decode ( \"Base64 to UTF-8\" ; \"TWFu¶TWFu\" )", "Man\0015\xEF\xBF\xBD", unchanged},
        {"Length ( Kestrel_Decode ( \"Base64 to UTF-8\" ; \"=\" ) )", "0", unchanged},
        {"Kestrel_Decode ( \"Base64 to UTF-8\" ; \"/w==\" )", "\xEF\xBF\xBD", unchanged},
        {"Kestrel_Encode ( \"\" ; \"M\" )", "-50", "-50 Unrecognized selector"},
        {"Kestrel_Encode ( \" UTF-8 to Base64\" ; \"M\" )", "-50", "-50 Unrecognized selector"},
        {"Kestrel_Encode ( \"Base64 to UTF-8\" ; \"M\" )", "-50", "-50 Unrecognized selector"},
        {"Kestrel_Decode ( \"UTF-8 to Base64\" ; \"M\" )", "-50", "-50 Unrecognized selector"},
        {"Kestrel_Decode ( 0 ; \"M\" )", "-50", "-50 Unrecognized selector"},
    };
    for (const auto& [calculation, result, expectedError] : cases) {
        textOf("Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = \"kept\" ] ; \"\" )");
        EXPECT_EQ(textOf(calculation), result) << calculation;
        EXPECT_EQ(lastError(), expectedError) << calculation;
    }
    EXPECT_EQ(textOf("Kestrel_ValueType ( Kestrel_Encode ( \"UTF-8 to Base64\" ; 7 ) )"), "Text");
    EXPECT_EQ(textOf("Kestrel_ValueType ( Kestrel_Decode ( \"7\" ; 7 ) )"), "Number");
}

TEST_F(Base64Functions, takeExactlyTwoParameters) {
    const Data selectors[] = {Data(u"UTF-8 to Base64"), Data(u"Base64 to UTF-8")};
    const char16_t* const names[] = {u"Kestrel_Encode", u"Kestrel_Decode"};
    for (int i = 0; i < 2; ++i)
        for (std::size_t count = 0; count <= 4; ++count) {
            if (count == 2) continue;
            std::vector<Data> parameters(count, Data(u"TWFu"));
            if (count > 0) parameters.front() = selectors[i];
            const Answer answer = call(names[i], parameters);
            EXPECT_EQ(answer.error, 0);
            EXPECT_EQ(answer.value.asText().utf8(), "-50");
            EXPECT_EQ(lastError(), count < 2 ? "-50 Not enough parameters" : "-50 Too many parameters");
        }
}

TEST_F(Base64Functions, passZerosOnAndCutTextsAtThem) {
    EXPECT_EQ(encode(std::u16string(u"ab\0c", 4)).utf8(), "YWI=");
    // Nothing is left to encode then; the coder still gives its one group.
    EXPECT_EQ(encode(std::u16string(u"\0c", 2)).utf8(), "AA==");
    // Decoded zeros stay, also those that a line break decodes to.
    EXPECT_EQ(decode(Text(u"YQBi")), Text(std::u16string(u"a\0b", 3)));
    EXPECT_EQ(decode(Text(u"TWFu\r\nQQQQ")), Text(std::u16string(u"Man\0\4\20A", 7)));
}

} // namespace
