#include "OwnNetwork.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <netdb.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* kFolderVariable = "KESTREL_OWN_NETWORK";

/// Addresses whose names are looked up have one name each.
constexpr const char* kHosts = "127.0.0.1 localhost\n"
                               "127.0.0.2 api.ipify.org\n"
                               "127.0.0.5 ip1.dynupdate.no-ip.com\n"
                               "127.0.0.6 v4.ident.me\n"
                               "127.0.0.8 www.whatismypublicip.com\n"
                               "127.0.0.9 checkip.dyndns.org\n"
                               "127.0.0.21 twice.example\n"
                               "127.0.0.22 twice.example\n"
                               "127.0.0.23 quo\"'ted\\\n"
                               "::1 six.example\n";
constexpr const char* kLongNameAddress = "127.0.0.24 ";
constexpr std::size_t kLongestName = 255;

void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

/// Runs before all other code of the program, so the restart loses no state.
[[gnu::constructor]] void moveIn(int, char** arguments, char**) {
    if (std::getenv(kFolderVariable) != nullptr) return;
    std::string folder = (fs::temp_directory_path() / "kestrel-network-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) std::abort();
    std::ofstream(folder + "/hosts") << kHosts << kLongNameAddress << std::string(kLongestName, 'n') << "\n";
    const char* const others = std::getenv("LD_PRELOAD");
    set("LD_PRELOAD", std::string(others == nullptr ? "" : others) + " " SOCKET_WRAPPER " " NSS_WRAPPER);
    set("SOCKET_WRAPPER_DIR", folder);
    set("SOCKET_WRAPPER_MTU", "32768"); // larger than any test's data, so sends are not split
    set("NSS_WRAPPER_HOSTS", folder + "/hosts");
    // The sanitizers do not support RTLD_DEEPBIND, with which the two libraries would load the C library.
    set("SOCKET_WRAPPER_DISABLE_DEEPBIND", "1");
    set("NSS_WRAPPER_DISABLE_DEEPBIND", "1");
    set(kFolderVariable, std::to_string(::getpid()) + " " + folder);
    ::execv("/proc/self/exe", arguments);
    std::perror("own network");
    std::abort();
}

[[gnu::destructor]] void moveOut() {
    const char* const mine = std::getenv(kFolderVariable);
    if (mine == nullptr) return;
    const std::string value = mine;
    const std::size_t space = value.find(' ');
    if (value.substr(0, space) != std::to_string(::getpid())) return; // a child process of the owner
    std::error_code ignored;
    fs::remove_all(value.substr(space + 1), ignored);
}

own_network::Services services = own_network::Services::unknown;
std::string slowName;
std::chrono::milliseconds slowTime{0};

void waitFor(const char* name) {
    if (name != nullptr && name == slowName) std::this_thread::sleep_for(slowTime);
}

} // namespace

namespace own_network {

void setServices(Services which) { services = which; }

Slow::Slow(std::string name, std::chrono::milliseconds time) {
    slowName = std::move(name);
    slowTime = time;
}

Slow::~Slow() { slowName.clear(); }

} // namespace own_network

/// Replaces the preloaded function, which passes names that its file lacks to the real resolver.
extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* wanted, addrinfo** found) {
    waitFor(node);
    const std::string name = node == nullptr ? "" : node;
    const bool isKnown = std::strstr(kHosts, (" " + name + "\n").c_str()) != nullptr;
    if (!isKnown || services == own_network::Services::unknown) return EAI_NONAME;
    static const auto next = reinterpret_cast<decltype(&::getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(node, service, wanted, found);
}

extern "C" hostent* gethostbyname(const char* name) {
    waitFor(name);
    static const auto next =
        reinterpret_cast<decltype(&::gethostbyname)>(::dlsym(RTLD_NEXT, "gethostbyname"));
    return next(name);
}
