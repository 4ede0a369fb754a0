#pragma once

/// Paths and files. Paths are UTF-8 with "/" between their parts.

#include <string>

class cFileManager {
public:
    /// The environment variable TMPDIR, read anew each time; "/tmp" when it is not set.
    static std::string getTempDirectory();
    /// Makes the path end in "/"; an empty one becomes "/".
    static void appendPathSeparatorIfNot(std::string& path);
    /// Extends a folder's path by a name, which is taken as it stands, and gives the whole path.
    static std::string appendFilePath(std::string& path, const std::string& name);
    /// Whether there is a file, links followed. Folders are none, nor is what this process cannot see.
    static bool fileExists(const std::string& path);
};
