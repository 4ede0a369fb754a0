#include "host/calc/Bytes.h"

#include "host/calc/BuiltIns.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <boost/algorithm/hex.hpp>
#include <boost/crc.hpp>
#include <iterator>
#include <openssl/evp.h>

namespace host::calc {

namespace {

std::string base64Line(std::string_view bytes) {
    std::string line((bytes.size() + 2) / 3 * 4 + 1, '\0'); // with the library's final zero
    auto* const out = reinterpret_cast<unsigned char*>(line.data());
    const auto* const in = reinterpret_cast<const unsigned char*>(bytes.data());
    line.resize(static_cast<std::size_t>(EVP_EncodeBlock(out, in, static_cast<int>(bytes.size()))));
    return line;
}

/// The characters of whole groups of four, "=" at their end; nothing for any other text.
std::optional<std::string> bytesOfGroups(std::string groups) {
    const std::size_t padded = groups.size() - std::min(groups.find('='), groups.size());
    if (padded > 2 || groups.find_last_not_of('=') + 1 + padded != groups.size()) return std::nullopt;
    const std::size_t missing = (4 - groups.size() % 4) % 4;
    if (missing == 3 || (missing > 0 && padded > 0)) return std::nullopt;
    groups.append(missing, '=');
    std::string bytes(groups.size() / 4 * 3, '\0');
    auto* const out = reinterpret_cast<unsigned char*>(bytes.data());
    const auto* const in = reinterpret_cast<const unsigned char*>(groups.data());
    if (EVP_DecodeBlock(out, in, static_cast<int>(groups.size())) < 0) return std::nullopt;
    bytes.resize(bytes.size() - padded - missing);
    return bytes;
}

} // namespace

std::string bytesOf(const Data& value) {
    if (value.nativeType() != DataType::binary) return toUtf8(value.asText().units());
    const auto bytes = value.asBinary().fileBytes();
    Work::chargeText(bytes.size());
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

DataRef fileResult(std::u16string name, std::string_view bytes) {
    Binary file;
    file.setFileName(std::move(name));
    file.add(kFileStream, std::as_bytes(std::span(bytes)));
    Work::chargeText(bytes.size());
    return std::make_shared<const Data>(std::move(file));
}

DataRef asciiResult(std::string_view text) {
    checkTextSize(text.size());
    return textResult(std::u16string(text.begin(), text.end()));
}

std::string hexText(std::string_view bytes) {
    checkTextSize(bytes.size() * 2);
    std::string text;
    boost::algorithm::hex(bytes, std::back_inserter(text));
    return text;
}

std::string base64Text(std::string_view bytes, std::size_t lineSize) {
    checkTextSize(bytes.size() / 3 * 4);
    if (lineSize == 0) return base64Line(bytes);
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += lineSize / 4 * 3)
        text += base64Line(bytes.substr(at, lineSize / 4 * 3)) + "\r\n";
    return text;
}

std::string checksumText(std::string_view bytes) {
    boost::crc_optimal<24, 0x864CFB, 0xB704CE, 0, false, false> checksum;
    checksum.process_bytes(bytes.data(), bytes.size());
    const auto sum = static_cast<std::uint32_t>(checksum.checksum());
    std::string sumBytes;
    for (const unsigned shift : {16U, 8U, 0U})
        sumBytes += static_cast<char>(sum >> shift & 0xFFU);
    return '=' + base64Line(sumBytes);
}

std::optional<std::string> bytesOfBase64(const Data& value) {
    std::string text;
    for (const char16_t unit : value.asText().units()) {
        if (unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n') continue;
        if (unit > 0x7F) return std::nullopt;
        text += static_cast<char>(unit);
    }
    // After the last group, "=" and four characters can only be a checksum.
    constexpr std::size_t checksumSize = 5;
    const std::size_t end = text.size() < checksumSize ? 0 : text.size() - checksumSize;
    const bool hasChecksum = text.size() >= checksumSize && text[end] == '=' && !text.ends_with('=');
    const std::string checksum = hasChecksum ? text.substr(end) : "";
    if (hasChecksum) text.resize(end);
    auto bytes = bytesOfGroups(std::move(text));
    if (bytes && hasChecksum && checksumText(*bytes) != checksum) return std::nullopt;
    return bytes;
}

} // namespace host::calc
