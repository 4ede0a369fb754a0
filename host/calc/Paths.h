#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host::calc {

/// Forms of a system's path: /folder/file, C:\\folder\\file, file:///folder/file.
enum class PathForm : std::int32_t { posix = 1, windows = 2, url = 3 };

/// A system's path as the app writes it, such as file:/folder/file. Nothing for a form that does not exist
/// and for a text that is no path of the form.
std::optional<std::u16string> appPath(std::u16string_view systemPath, PathForm form);
/// The path that the app writes as `path`, with file:, another scheme of files or image:, movie: before it.
std::optional<std::u16string> systemPath(std::u16string_view appPath, PathForm form);

} // namespace host::calc
