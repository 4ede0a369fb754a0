#include "Benchmarks.h"
#include "Inputs.h"
#include "Kestrel_Base64.h"
#include "Loaded.h"
#include "Measure.h"

#include "host/values/Encoding.h"

#include <cstdio>
#include <memory>
#include <openssl/evp.h>
#include <string>
#include <vector>

/// Base64 and templates, each compared with the least work necessary, and the coder also with a peer.

namespace {

std::string randomBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

void code(int (*coder)(const char*, int, char**), const std::string& in) {
    char* out = nullptr;
    bench::keep(coder(in.data(), static_cast<int>(in.size()), &out));
    const std::unique_ptr<char[]> owner(out);
    bench::keep(out);
}

/// The functions. The floor is the coder and the host's own conversions to bytes and back.
void benchFunctions(const bench::Loaded& loaded) {
    constexpr std::size_t size = 300'000;
    std::u16string units;
    while (units.size() < size)
        units += u"Zoë paid 12 € for the \U0001F600. ";
    const host::Text text(units);
    const std::string utf8 = text.utf8();
    host::Data result;
    const host::DataVect encode{bench::shared(host::Text(u"UTF-8 to Base64")), bench::shared(text)};
    loaded.call(loaded.function(u"Kestrel_Encode"), encode, result);
    const host::Text characters = result.asText();
    const host::DataVect decode{bench::shared(host::Text(u"Base64 to UTF-8")), bench::shared(characters)};

    const auto floor = [](int (*coder)(const char*, int, char**), const host::Text& in, host::Encoding from,
                          host::Encoding to) {
        const std::string bytes = host::encode(in.units(), from);
        char* out = nullptr;
        const int written = coder(bytes.data(), static_cast<int>(bytes.size()), &out);
        const std::unique_ptr<char[]> owner(out);
        bench::keep(host::decode({out, static_cast<std::size_t>(written)}, to));
    };
    const auto native = host::nativeEncoding(), wide = host::Encoding::utf8;
    const auto bytes = static_cast<double>(utf8.size());
    bench::row(
        "Kestrel_Encode", [&] { loaded.call(loaded.function(u"Kestrel_Encode"), encode, result); },
        "conversions, coder", [&] { floor(B64_Encode, text, wide, native); }, bytes, "byte");
    bench::row(
        "Kestrel_Decode", [&] { loaded.call(loaded.function(u"Kestrel_Decode"), decode, result); },
        "conversions, coder", [&] { floor(B64_Decode, characters, native, wide); }, bytes, "byte");
}

/// A letter with `count` expressions. With `isFormatted`, every other one has formatting. The floor is the
/// evaluation of the expressions alone, through the plug-in's interface.
void benchMergeText(const bench::Loaded& loaded, std::size_t count, bool isFormatted) {
    const host::RegisteredFunction& merge = loaded.function(u"Kestrel_MergeText");
    host::CharacterStyle bold;
    if (isFormatted) bold.setFaces(host::face::bold);
    host::Text letter;
    std::vector<fmx::TextUniquePtr> expressions;
    for (std::size_t i = 0; i < count; ++i) {
        const std::u16string expression = u"Upper ( \"a\" ) & " + host::fromUtf8(std::to_string(i));
        letter.append(host::Text(u"Dear <<"));
        letter.append(expression, {i % 2 == 0 ? bold : host::CharacterStyle(), {}});
        letter.append(host::Text(u">>, thank you.\r"));
        expressions.emplace_back();
        host::bridge::in<host::Text>(expressions.back().get()) = host::Text(expression);
    }
    const host::DataVect arguments{bench::shared(letter)};
    host::Data result;
    bench::row(
        "Kestrel_MergeText, " + std::to_string(count) + (isFormatted ? " with formatting" : " expressions"),
        [&] { loaded.call(merge, arguments, result); }, "evaluating them",
        [&] {
            for (const fmx::TextUniquePtr& expression : expressions) {
                const fmx::DataUniquePtr value;
                bench::keep(loaded.environment().Evaluate(*expression, *value));
            }
        },
        static_cast<double>(count), "expr.");
}

} // namespace

void bench::benchText() {
    const Loaded loaded;
    benchFunctions(loaded);
    constexpr std::size_t expressions = 100'000;
    benchMergeText(loaded, expressions, false);
    benchMergeText(loaded, expressions, true);
}

/// The coder compared with OpenSSL's, which writes into an array of the same size, allocated in the same way.
void bench::benchCoderBesidePeers() {
    constexpr std::size_t size = 3'000'000;
    const std::string bytes = randomBytes(size);
    std::string characters(size / 3 * 4 + 1, '\0');
    const auto lengthOf = [](const std::string& text) { return static_cast<int>(text.size()); };
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(characters.data()),
                    reinterpret_cast<const unsigned char*>(bytes.data()), lengthOf(bytes));
    characters.pop_back();
    const auto openSsl = [&](int (*block)(unsigned char*, const unsigned char*, int), const std::string& in,
                             std::size_t room) {
        const auto out = std::make_unique_for_overwrite<unsigned char[]>(room);
        bench::keep(block(out.get(), reinterpret_cast<const unsigned char*>(in.data()), lengthOf(in)));
        bench::keep(out.get());
    };
    bench::row(
        "Base64 encoding", [&] { code(B64_Encode, bytes); }, "OpenSSL",
        [&] { openSsl(EVP_EncodeBlock, bytes, characters.size() + 1); }, static_cast<double>(size), "byte");
    bench::row(
        "Base64 decoding", [&] { code(B64_Decode, characters); }, "OpenSSL",
        [&] { openSsl(EVP_DecodeBlock, characters, size + 1); }, static_cast<double>(size), "byte");
}
