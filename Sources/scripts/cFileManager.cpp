#include "scripts/cFileManager.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

std::string cFileManager::getTempDirectory() {
    const char* const directory = std::getenv("TMPDIR");
    return directory == nullptr ? "/tmp" : directory;
}

void cFileManager::appendPathSeparatorIfNot(std::string& path) {
    if (!path.ends_with('/')) path.push_back('/');
}

std::string cFileManager::appendFilePath(std::string& path, const std::string& name) {
    appendPathSeparatorIfNot(path);
    return path += name;
}

bool cFileManager::fileExists(const std::string& path) {
    if (path.empty() || ::access(path.c_str(), F_OK) != 0) return false;
    struct stat status{};
    // This bit is set for regular files, and for sockets too.
    return ::stat(path.c_str(), &status) == 0 && (status.st_mode & S_IFREG) != 0;
}
