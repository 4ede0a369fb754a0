#include "scripts/ScriptRecords.h"

#include "scripts/cFileManager.h"

#include <algorithm>
#include <fstream>
#include <iterator>

std::map<std::string, std::string> _scriptStatus;
std::map<std::string, std::string> _scriptResult;

namespace {

const struct {
    char byte;
    const char* written;
} kEscapes[] = {{'/', "%2F"}, {'\0', "%00"}, {'%', "%25"}};

std::string pathOf(const char* kind, const std::string& id) {
    std::string name = kind;
    for (const char byte : id) {
        const auto* const escape = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                                [byte](const auto& row) { return row.byte == byte; });
        if (escape == std::end(kEscapes))
            name += byte;
        else
            name += escape->written;
    }
    std::string path = cFileManager::getTempDirectory();
    return cFileManager::appendFilePath(path, name + ".txt");
}

void write(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
}

std::string read(const std::string& path) {
    if (!cFileManager::fileExists(path)) return kNoRecord;
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

void setScriptStatus(const std::string& id, const std::string& status) {
    write(pathOf("status_", id), status);
}

void setScriptResult(const std::string& id, const std::string& result) {
    write(pathOf("result_", id), result);
}

std::string getScriptStatus(const std::string& id) { return read(pathOf("status_", id)); }

std::string getScriptResult(const std::string& id) { return read(pathOf("result_", id)); }
