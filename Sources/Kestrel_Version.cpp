#include "Handlers.h"
#include "PlugIn.h"
#include "bridge/HandlerFrame.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>

/// The plug-in's version, and the log's handler.

namespace {

// The version's text is two digits and the point between them.
static_assert(std::string_view(kPlugInVersion).size() == 3);
constexpr int kMajor = kPlugInVersion[0] - '0';
constexpr int kMinor = kPlugInVersion[2] - '0';
constexpr int kPatch = 0;
constexpr int kBuild = 4;

void putShort(fmx::Text& text) { text.Assign(kPlugInVersion); }

void putLong(fmx::Text& text) {
    std::array<unsigned short, kMostIdentityUnits + 1> name{}; // the last one stays zero
    ReadString(name.data(), name.size(), kReadName);
    text.AssignUnicode(name.data());
    const fmx::TextUniquePtr piece;
    for (const char* const s : {" ", kPlugInVersion}) {
        piece->Assign(s);
        text.AppendText(*piece);
    }
}

void putPlatform(fmx::Text& text) { text.Assign("iOS"); }

void putPacked(fmx::Text& text) {
    std::array<char, 48> digits{}; // enough for four numbers of any size
    std::snprintf(digits.data(), digits.size(), "%02d%02d%02d%02d", kMajor, kMinor, kPatch, kBuild);
    text.Assign(digits.data());
}

/// The format words, and at the same index the function of each.
constexpr const char* gVersionTypes[] = {"short", "long", "platform", "autoupdate"};
constexpr void (*kFormats[])(fmx::Text&) = {putShort, putLong, putPlatform, putPacked};
static_assert(std::size(gVersionTypes) == std::size(kFormats));

} // namespace

/// An unknown format word is no error: the result is that of a call without a word. The last error never
/// changes.
FMX_PROC(fmx::errcode)
Kestrel_Version(short, const fmx::ExprEnv&, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandlerWithoutRecord(result, [&] {
        unsigned format = 0;
        if (parameters.Size() > 0) {
            const unsigned found =
                fmlib::FindFMTextInArray(parameters.AtAsText(0), gVersionTypes, std::size(gVersionTypes));
            if (found < std::size(kFormats)) format = found;
        }
        const fmx::TextUniquePtr text;
        kFormats[format](*text);
        cFMUtils::resultFromText(*text, result);
        return fmx::errcode{0};
    });
}

FMX_PROC(fmx::errcode)
Kestrel_GetLog(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        const fmx::TextUniquePtr text;
        text->Assign("Kestrel_GetLog");
        cFMUtils::resultFromText(*text, result);
        return fmx::errcode{0};
    });
}
