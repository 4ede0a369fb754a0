#include "host/cli/Input.h"

#include <fstream>
#include <iostream>
#include <stdexcept>

namespace host::cli {

std::string contentOf(const std::filesystem::path& file, std::size_t most) {
    std::ifstream stream;
    if (file != "-") {
        stream.open(file, std::ios::binary);
        if (!stream || std::filesystem::is_directory(file))
            throw std::runtime_error(file.string() + " cannot be read");
    }
    std::istream& input = file == "-" ? std::cin : stream;
    std::string content;
    for (char buffer[65536]; input && content.size() <= most;) {
        input.read(buffer, sizeof buffer);
        content.append(buffer, static_cast<std::size_t>(input.gcount()));
    }
    if (input.bad()) throw std::runtime_error(file.string() + " cannot be read");
    return content;
}

} // namespace host::cli
