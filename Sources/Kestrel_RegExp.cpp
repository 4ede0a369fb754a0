#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/Unicode.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"
#include "platform/Platform.h"

#include <array>
#include <cstddef>
#include <regex>
#include <stdexcept>
#include <string>

/// Text by patterns: the standard library's expressions replace, the platform's count.

namespace {

/// The bytes of a text and of a pattern that counting reads, with the terminating zero.
constexpr std::size_t kBufferSize = 1024;

/// The whole characters in the text's first 1023 bytes of UTF-8, up to the first zero. Malformed UTF-8
/// becomes U+FFFD, so there is always a text. The host's native encoding plays no part.
platform::Units beginningOf(const fmx::Text& text) {
    std::array<char, kBufferSize> buffer{};
    text.GetBytes(buffer.data(), static_cast<fmx::uint32>(buffer.size()), 0, fmx::Text::kSize_End,
                  fmx::Text::kEncoding_UTF8);
    buffer.back() = '\0';
    return utf16FromUtf8(withoutCutCharacter(buffer.data()));
}

std::string countOf(const platform::Units& text, const platform::Units& pattern) {
    std::string count;
    switch (platform::countMatches(text, pattern, count)) {
    case platform::Counted::all: return count;
    case platform::Counted::tooLong: throw std::regex_error(std::regex_constants::error_complexity);
    case platform::Counted::failed: break;
    }
    throw std::runtime_error("The platform could not count matches");
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_RegExp_Substitute(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters,
                          fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() < 3)
            return kst::answerWithError(kst::kWrongParameter, "At least three parameters needed", result,
                                        env);
        const fmx::TextUniquePtr text;
        fmlib::RegExpPerformSubstitute(*text, parameters);
        cFMUtils::resultFromText(*text, result);
        return fmx::errcode{0};
    });
}

FMX_PROC(fmx::errcode)
Kestrel_RegExp_PatternCount(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters,
                            fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() < 2)
            return kst::answerWithError(kst::kWrongParameter, "At least two parameters needed", result, env);
        const platform::Units text = beginningOf(parameters.AtAsText(0));
        const platform::Units pattern = beginningOf(parameters.AtAsText(1));
        cFMUtils::FMResultFromString(countOf(text, pattern), result);
        return fmx::errcode{0};
    });
}
