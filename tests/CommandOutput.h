#pragma once

#include <array>
#include <cstdio>
#include <string>

/// The standard output of a shell command.
inline std::string outputOf(const std::string& command) {
    FILE* const pipe = ::popen(command.c_str(), "r"); // NOLINT(cert-env33-c): the tests' own commands
    if (pipe == nullptr) return "cannot be run";
    std::string output;
    std::array<char, 1 << 16> chunk{};
    for (std::size_t size = 0; (size = std::fread(chunk.data(), 1, chunk.size(), pipe)) > 0;)
        output.append(chunk.data(), size);
    ::pclose(pipe);
    return output;
}
