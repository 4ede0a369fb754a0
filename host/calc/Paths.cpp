#include "host/calc/Paths.h"

#include "host/calc/Environment.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

constexpr std::u16string_view kScheme = u"file:", kUrl = u"file://";
constexpr std::array<std::u16string_view, 8> kSchemes{u"file:",     u"filemac:",  u"filewin:", u"filelinux:",
                                                      u"imagemac:", u"imagewin:", u"image:",   u"movie:"};

std::u16string withSlashes(std::u16string_view path, char16_t from, char16_t to) {
    std::u16string result(path);
    std::replace(result.begin(), result.end(), from, to);
    return result;
}

/// Whether a path begins with a drive: C:
bool hasDrive(std::u16string_view path) {
    const auto isLetter = [](char16_t unit) { return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z'; };
    return path.size() >= 2 && isLetter(path[0]) && path[1] == u':';
}

/// The digit of the base 16; -1 for another sign.
int digitOf(char sign) {
    constexpr std::string_view digits = "0123456789abcdef";
    const auto place = digits.find(static_cast<char>(sign >= 'A' && sign <= 'F' ? sign - 'A' + 'a' : sign));
    return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

std::u16string percentDecoded(std::u16string_view text) {
    const std::string utf8 = toUtf8(text);
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const bool isCode =
            utf8[i] == '%' && i + 2 < utf8.size() && digitOf(utf8[i + 1]) >= 0 && digitOf(utf8[i + 2]) >= 0;
        bytes += isCode ? static_cast<char>(digitOf(utf8[i + 1]) * 16 + digitOf(utf8[i + 2])) : utf8[i];
        if (isCode) i += 2;
    }
    return fromUtf8(bytes);
}

std::u16string percentEncoded(std::u16string_view text) {
    constexpr std::string_view plain = "-._~/:!$&'()*+,;=@", digits = "0123456789ABCDEF";
    std::u16string result;
    for (const char sign : toUtf8(text)) {
        const auto byte = static_cast<unsigned char>(sign);
        const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                             (byte >= 'a' && byte <= 'z') || plain.find(sign) != std::string_view::npos;
        if (isPlain) {
            result += static_cast<char16_t>(byte);
        } else {
            result += u'%';
            result += static_cast<char16_t>(digits[byte >> 4U]);
            result += static_cast<char16_t>(digits[byte & 0xFU]);
        }
    }
    return result;
}

} // namespace

std::optional<std::u16string> appPath(std::u16string_view systemPath, PathForm form) {
    std::u16string path(systemPath);
    switch (form) {
    case PathForm::posix: break;
    case PathForm::windows:
        path = withSlashes(path, u'\\', u'/');
        if (hasDrive(path)) path.insert(path.begin(), u'/');
        break;
    case PathForm::url:
        if (!foldName(path).starts_with(kUrl)) return std::nullopt;
        path = percentDecoded(std::u16string_view(path).substr(kUrl.size()));
        if (!path.starts_with(u'/')) path.insert(0, u"//"); // the name of a server
        break;
    default: return std::nullopt;
    }
    if (path.empty()) return std::nullopt;
    return std::u16string(kScheme) + path;
}

std::optional<std::u16string> systemPath(std::u16string_view appPath, PathForm form) {
    const std::u16string folded = foldName(appPath);
    const auto* scheme = std::find_if(kSchemes.begin(), kSchemes.end(),
                                      [&](std::u16string_view row) { return folded.starts_with(row); });
    if (scheme == kSchemes.end() || appPath.size() == scheme->size()) return std::nullopt;
    const std::u16string_view path = appPath.substr(scheme->size());
    switch (form) {
    case PathForm::posix: return std::u16string(path);
    case PathForm::windows:
        return withSlashes(path.starts_with(u'/') && hasDrive(path.substr(1)) ? path.substr(1) : path, u'/',
                           u'\\');
    case PathForm::url:
        return (path.starts_with(u"//") ? std::u16string(kScheme) : std::u16string(kUrl)) +
               percentEncoded(path);
    }
    return std::nullopt;
}

} // namespace host::calc
