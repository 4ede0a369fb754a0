#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Facts about the machine and the user's folders. Folders end in a slash; lists have a return between lines.

namespace host::computer {

std::u16string architecture();
std::u16string systemVersion();
std::u16string documentsPath();
/// The files below the documents folder, 1,000 at most.
std::u16string documentsPathListing();
std::u16string temporaryPath();
std::u16string preferencesPath();
/// The folder of the program that runs.
std::u16string programPath();
std::u16string ipAddresses();
std::u16string nicAddresses();
/// 32 hexadecimal digits, the same for the life of the machine.
std::u16string persistentId();
std::int64_t freeBytes();
/// The bytes of the files in a folder, without those below it.
std::int64_t sizeOf(std::u16string_view folder);

} // namespace host::computer
