#include "host/values/Binary.h"

#include <algorithm>

namespace host {

int Binary::indexOf(const QuadChar& type) const {
    const auto found = std::find_if(streams_.begin(), streams_.end(),
                                    [&](const Stream& stream) { return stream.type == type; });
    return found == streams_.end() ? -1 : static_cast<int>(found - streams_.begin());
}

void Binary::add(const QuadChar& type, std::span<const std::byte> bytes) {
    const int index = indexOf(type);
    Stream& stream = index < 0 ? streams_.emplace_back() : streams_[static_cast<std::size_t>(index)];
    stream.type = type;
    stream.bytes.assign(bytes.begin(), bytes.end());
}

bool Binary::remove(const QuadChar& type) {
    return std::erase_if(streams_, [&](const Stream& stream) { return stream.type == type; }) > 0;
}

std::size_t Binary::totalSize() const {
    std::size_t size = 0;
    for (const Stream& stream : streams_)
        size += stream.bytes.size();
    return size;
}

std::span<const std::byte> Binary::fileBytes() const {
    if (streams_.empty()) return {};
    return streams_[static_cast<std::size_t>(std::max(indexOf(kFileStream), 0))].bytes;
}

} // namespace host
