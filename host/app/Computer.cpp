#include "host/app/Computer.h"

#include "host/values/Encoding.h"

#include <arpa/inet.h>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/utsname.h>

namespace host::computer {

namespace {

namespace fs = std::filesystem;

std::u16string folder(const fs::path& path) {
    std::string text = path.string();
    if (!text.ends_with('/')) text += '/';
    return fromUtf8(text);
}

fs::path home() {
    const char* home = std::getenv("HOME");
    return home == nullptr ? "/" : home;
}

void addLine(std::u16string& list, const std::string& line) {
    if (!list.empty()) list += u'\r';
    list += fromUtf8(line);
}

std::string firstLineOf(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

} // namespace

std::u16string architecture() {
    utsname names{};
    return uname(&names) == 0 ? fromUtf8(names.machine) : std::u16string();
}

std::u16string systemVersion() {
    utsname names{};
    return uname(&names) == 0 ? fromUtf8(names.release) : std::u16string();
}

std::u16string documentsPath() { return folder(home() / "Documents"); }

std::u16string documentsPathListing() {
    constexpr int mostFiles = 1'000;
    std::u16string list;
    std::error_code problem;
    int count = 0;
    for (fs::recursive_directory_iterator entry(home() / "Documents", problem), end;
         !problem && entry != end && count < mostFiles; entry.increment(problem)) {
        if (!entry->is_regular_file(problem)) continue;
        addLine(list, entry->path().string());
        ++count;
    }
    return list;
}

std::u16string temporaryPath() {
    std::error_code problem;
    return folder(fs::temp_directory_path(problem));
}

std::u16string preferencesPath() { return folder(home() / ".config"); }

std::u16string programPath() {
    std::error_code problem;
    return folder(fs::read_symlink("/proc/self/exe", problem).parent_path());
}

std::u16string ipAddresses() {
    std::u16string list;
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) return list;
    for (const ifaddrs* each = first; each != nullptr; each = each->ifa_next) {
        const bool isAddress = each->ifa_addr != nullptr && each->ifa_addr->sa_family == AF_INET;
        if (!isAddress || (each->ifa_flags & IFF_LOOPBACK) != 0) continue;
        std::array<char, INET_ADDRSTRLEN> text{};
        const auto* address = reinterpret_cast<const sockaddr_in*>(each->ifa_addr);
        if (inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size()) != nullptr)
            addLine(list, text.data());
    }
    freeifaddrs(first);
    return list;
}

std::u16string nicAddresses() {
    std::u16string list;
    std::error_code problem;
    for (fs::directory_iterator entry("/sys/class/net", problem), end; !problem && entry != end;
         entry.increment(problem))
        if (entry->path().filename() != "lo")
            if (const std::string address = firstLineOf(entry->path() / "address"); !address.empty())
                addLine(list, address);
    return list;
}

std::u16string persistentId() {
    constexpr std::size_t digits = 32;
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string id = firstLineOf("/etc/machine-id");
    for (char& letter : id)
        letter = letter >= 'a' && letter <= 'f' ? static_cast<char>(letter - 'a' + 'A') : letter;
    const bool isId = id.size() == digits && id.find_first_not_of(kDigits) == std::string::npos;
    return isId ? fromUtf8(id) : std::u16string(digits, u'0');
}

std::int64_t freeBytes() {
    std::error_code problem;
    const auto space = fs::space("/", problem);
    return problem ? 0 : static_cast<std::int64_t>(space.available);
}

std::int64_t sizeOf(std::u16string_view folder) {
    std::int64_t size = 0;
    std::error_code problem;
    for (fs::directory_iterator entry(fs::path(toUtf8(folder)), problem), end; !problem && entry != end;
         entry.increment(problem))
        if (entry->is_regular_file(problem)) size += static_cast<std::int64_t>(entry->file_size(problem));
    return size;
}

} // namespace host::computer
