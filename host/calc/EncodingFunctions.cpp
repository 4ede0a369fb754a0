#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Bytes.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <boost/algorithm/hex.hpp>
#include <boost/algorithm/string/classification.hpp>

/// Texts and files as Base64, as hexadecimal digits, in the encodings of text files, and for addresses of the
/// web.

namespace host::calc {

namespace {

DataRef base64Encode(Arguments arguments) {
    return asciiResult(base64Text(bytesOf(*arguments[0]), kBase64Line));
}

/// A form of Base64 by the number of the RFC that describes it.
struct Base64Form {
    int number;
    std::size_t lineSize; ///< 0: one line without an end
    bool hasChecksum;
};
constexpr Base64Form kOneLine{4648, 0, false};
constexpr std::array base64Forms{Base64Form{1421, 64, false}, Base64Form{2045, kBase64Line, false},
                                 Base64Form{4880, kBase64Line, true}};

/// Base64EncodeRFC ( RFCNumber ; data ): one line for every other number.
DataRef base64EncodeRfc(Arguments arguments) {
    const std::int64_t number = whole(arguments[0]);
    const auto* const row = std::find_if(base64Forms.begin(), base64Forms.end(),
                                         [&](const Base64Form& form) { return form.number == number; });
    const Base64Form& form = row == base64Forms.end() ? kOneLine : *row;
    const std::string bytes = bytesOf(*arguments[1]);
    return asciiResult(base64Text(bytes, form.lineSize) + (form.hasChecksum ? checksumText(bytes) : ""));
}

/// A file of the name that the second argument gives, a text without such an argument.
DataRef decodedResult(const std::optional<std::string>& bytes, Arguments arguments) {
    if (!bytes) return questionMark();
    if (arguments.size() < 2) return textResult(Text::fromUtf8(*bytes));
    return fileResult(std::u16string(arguments[1]->asText().units()), *bytes);
}

DataRef base64Decode(Arguments arguments) { return decodedResult(bytesOfBase64(*arguments[0]), arguments); }

DataRef hexEncode(Arguments arguments) { return asciiResult(hexText(bytesOf(*arguments[0]))); }

DataRef hexDecode(Arguments arguments) {
    std::string digits = toUtf8(arguments[0]->asText().units());
    std::erase_if(digits, boost::algorithm::is_any_of(" \t\r\n"));
    std::string bytes;
    try {
        boost::algorithm::unhex(digits, std::back_inserter(bytes));
    } catch (const boost::algorithm::hex_decode_error&) {
        return questionMark();
    }
    return decodedResult(bytes, arguments);
}

struct EncodingName {
    std::u16string_view name; ///< folded
    Encoding encoding;
};
constexpr std::array encodingNames{
    EncodingName{u"utf-8", Encoding::utf8},
    EncodingName{u"iso-8859-1", Encoding::iso8859_1},
    EncodingName{u"windows-1251", Encoding::cyrillicWin},
    EncodingName{u"windows-1252", Encoding::asciiWindows},
    EncodingName{u"shift_jis", Encoding::shiftJisWin},
    EncodingName{u"gb18030", Encoding::gb18030},
    EncodingName{u"euc-kr", Encoding::eucKr},
    EncodingName{u"big5", Encoding::big5},
    EncodingName{u"macintosh", Encoding::asciiMac},
};

std::optional<Encoding> encodingOf(const DataRef& value) {
    const std::u16string name = foldName(value->asText().units());
    const auto* const row = std::find_if(encodingNames.begin(), encodingNames.end(),
                                         [&](const EncodingName& known) { return known.name == name; });
    return row == encodingNames.end() ? std::nullopt : std::optional(row->encoding);
}

/// Every return, line feed or pair of both becomes `lineEnd`.
std::u16string withLineEnds(std::u16string_view text, std::u16string_view lineEnd) {
    std::u16string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(u"\r\n", at), text.size());
        result += text.substr(at, end - at);
        if (end == text.size()) break;
        result += lineEnd;
        at = end + (text.substr(end).starts_with(u"\r\n") ? 2 : 1);
    }
    return result;
}

/// TextEncode ( text ; encoding ; lineEndings )
DataRef textEncode(Arguments arguments) {
    constexpr std::array<std::u16string_view, 3> lineEnds{u"\r", u"\n", u"\r\n"}; // of numbers from 2
    const auto encoding = encodingOf(arguments[1]);
    if (!encoding) return questionMark();
    const std::u16string_view text = arguments[0]->asText().units();
    const std::int64_t choice = whole(arguments[2]) - 2;
    const bool isChanged = choice >= 0 && std::cmp_less(choice, lineEnds.size());
    return fileResult(
        u"text.txt",
        isChanged ? encode(withLineEnds(text, lineEnds.at(static_cast<std::size_t>(choice))), *encoding)
                  : encode(text, *encoding));
}

/// TextDecode ( container ; encoding )
DataRef textDecode(Arguments arguments) {
    const auto encoding = encodingOf(arguments[1]);
    return encoding ? textResult(decode(bytesOf(*arguments[0]), *encoding)) : questionMark();
}

DataRef urlEncode(Arguments arguments) {
    constexpr std::string_view kept = ":-_.!~*'()";
    constexpr std::string_view digits = "0123456789abcdef";
    const auto isKept = [&](char byte) {
        return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
               kept.find(byte) != std::string_view::npos;
    };
    std::string text;
    for (const char byte : toUtf8(arguments[0]->asText().units())) {
        const auto value = static_cast<unsigned char>(byte);
        if (isKept(byte))
            text += byte;
        else
            text += {'%', digits[value >> 4U], digits[value & 0xFU]};
    }
    return asciiResult(text);
}

constexpr std::array rows{
    EagerRow{u"Base64Decode", base64Decode},
    EagerRow{u"Base64Encode", base64Encode},
    EagerRow{u"Base64EncodeRFC", base64EncodeRfc},
    EagerRow{u"GetAsURLEncoded", urlEncode},
    EagerRow{u"HexDecode", hexDecode},
    EagerRow{u"HexEncode", hexEncode},
    EagerRow{u"TextDecode", textDecode},
    EagerRow{u"TextEncode", textEncode},
};

} // namespace

void addEncodingFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
