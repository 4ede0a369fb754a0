#include "host/values/Binary.h"

#include "host/values/Encoding.h"
#include "host/values/Picture.h"

#include <algorithm>
#include <string_view>

namespace host {

namespace {

/// How the files of a kind begin.
struct FileKind {
    std::string_view start;
    QuadChar type;
};
using namespace std::string_view_literals;
constexpr QuadChar kJpeg{{'J', 'P', 'E', 'G'}};
constexpr std::array fileKinds{FileKind{"\x89PNG\r\n\x1A\n"sv, {{'P', 'N', 'G', 'f'}}},
                               FileKind{"\xFF\xD8\xFF"sv, kJpeg}, FileKind{"GIF8"sv, {{'G', 'I', 'F', 'f'}}},
                               FileKind{"%PDF"sv, {{'P', 'D', 'F', ' '}}}};

std::string_view charactersOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

const Binary::Stream& Binary::at(std::size_t index) const {
    return hasName() && index == streams_.size() ? nameStream_ : streams_.at(index);
}

int Binary::indexOf(const QuadChar& type) const {
    for (std::size_t index = 0; index < count(); ++index)
        if (at(index).type == type) return static_cast<int>(index);
    return -1;
}

void Binary::add(const QuadChar& type, std::span<const std::byte> bytes) {
    if (type == kNameStream) return setFileName(Text::fromUtf8(charactersOf(bytes)));
    const auto found = std::find_if(streams_.begin(), streams_.end(),
                                    [&](const Stream& stream) { return stream.type == type; });
    Stream& stream = found == streams_.end() ? streams_.emplace_back() : *found;
    stream.type = type;
    stream.bytes.assign(bytes.begin(), bytes.end());
}

void Binary::addFile(std::span<const std::byte> bytes) {
    const auto kind = std::find_if(fileKinds.begin(), fileKinds.end(), [bytes](const FileKind& row) {
        return charactersOf(bytes).starts_with(row.start);
    });
    add(kind == fileKinds.end() ? kFileStream : kind->type, bytes);
    if (kind == fileKinds.end() || kind->type != kJpeg) return;
    const auto [width, height] = pictureSizeOf(bytes);
    const auto byte = [](std::uint32_t number) { return static_cast<std::byte>(number & 0xFFU); };
    add(kSizeStream, std::array{byte(width >> 8U), byte(width), byte(height >> 8U), byte(height)});
}

bool Binary::remove(const QuadChar& type) {
    if (type == kNameStream) {
        const bool hadName = hasName();
        setFileName({});
        return hadName;
    }
    return std::erase_if(streams_, [&](const Stream& stream) { return stream.type == type; }) > 0;
}

std::size_t Binary::totalSize() const {
    std::size_t size = nameStream_.bytes.size();
    for (const Stream& stream : streams_)
        size += stream.bytes.size();
    return size;
}

std::span<const std::byte> Binary::fileBytes() const {
    if (streams_.empty()) return {};
    const auto file = std::find_if(streams_.begin(), streams_.end(),
                                   [](const Stream& stream) { return stream.type == kFileStream; });
    return (file == streams_.end() ? streams_.front() : *file).bytes;
}

void Binary::setFileName(Text name) {
    const std::string utf8 = name.utf8();
    const auto bytes = std::as_bytes(std::span(utf8));
    nameStream_.bytes.assign(bytes.begin(), bytes.end());
    fileName_ = std::move(name);
}

std::uint32_t Binary::begin(std::optional<QuadChar> type) {
    unfinished_[++lastNumber_].type = type;
    return lastNumber_;
}

bool Binary::append(std::uint32_t number, std::span<const std::byte> bytes) {
    const auto found = unfinished_.find(number);
    if (found == unfinished_.end()) return false;
    found->second.bytes.insert(found->second.bytes.end(), bytes.begin(), bytes.end());
    return true;
}

bool Binary::finish(std::uint32_t number) {
    const auto found = unfinished_.find(number);
    if (found == unfinished_.end()) return false;
    const Unfinished stream = std::move(found->second);
    unfinished_.erase(found);
    if (stream.type)
        add(*stream.type, stream.bytes);
    else
        addFile(stream.bytes);
    return true;
}

} // namespace host
