#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace host::cli {

/// The bytes of a file, or of standard input for "-". Throws std::runtime_error naming it when it cannot be
/// read. Reading stops after `most` bytes: one more than that is enough to refuse a file for its size.
std::string contentOf(const std::filesystem::path& file, std::size_t most = std::size_t{256} << 20U);

} // namespace host::cli
