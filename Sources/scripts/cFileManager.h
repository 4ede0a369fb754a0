#pragma once

/// Paths and files. Paths are UTF-8 with "/" between their parts.

#include <string>

class cFileManager {
public:
    /// The environment variable TMPDIR, read at each call; "/tmp" when it is not set.
    static std::string getTempDirectory();
    /// Makes the path end in "/"; an empty one becomes "/".
    static void appendPathSeparatorIfNot(std::string& path);
    /// Adds a name to a folder's path, unchanged, and returns the whole path.
    static std::string appendFilePath(std::string& path, const std::string& name);
    /// True for a file; links are followed. False for a folder, and for a file that this process cannot see.
    static bool fileExists(const std::string& path);
};
