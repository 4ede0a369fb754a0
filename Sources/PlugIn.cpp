#include "PlugIn.h"

#include "Registry.h"
#include "bridge/cFMUtils.h"
#include "scripts/Scripts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;
bool gPlugInInitialized = false;
bool gPrefsOpen = false;

namespace {

constexpr std::uint16_t kOldestHost = 50;
constexpr std::uint16_t kNewestHost = 255;
/// The version of the interface that this plug-in speaks. The SDK's own "current version" grows with every
/// release of the host, also when the plug-in does not change.
constexpr int kImplementedVersion = 60;

constexpr std::string_view kName = "Vex Kestrel Plug-In";
/// The host shows the backslashes as they are.
constexpr std::string_view kDescription = R"(Collection of useful and sometimes indispensable functions.\n\n)"
                                          R"(Copyright Vex. All rights reserved.\n\n)"
                                          R"(Version 3.1)";
static_assert(kName.size() <= kMostIdentityUnits && kDescription.size() <= kMostIdentityUnits);
static_assert(kDescription.ends_with(kPlugInVersion));

/// Creator (4 characters), version of this layout, preferences, -, idle messages, -, -, -.
constexpr unsigned short kOptions[] = {'K', 'S', 'T', 'R', '1', 'Y', 'n', 'Y', 'Y', 'n', 'n', 0};

/// The most units that are written for the description. Without this limit, a host that announces a huge
/// buffer would make the plug-in run out of memory.
constexpr FMX_PtrType kMostBufferUnits = 65536;

void answer(int code) { gFMX_ExternCallPtr->result = static_cast<FMX_PtrType>(code); }

template<typename T>
T* pointerFrom(FMX_PtrType address) {
    return reinterpret_cast<T*>(address);
}

/// True when all functions are registered; otherwise none is.
bool registerAll() noexcept {
    try {
        return RegisterExternalFunctions();
    } catch (...) {
        return false;
    }
}

/// The answer to an init from a host of a supported version.
int start(const unsigned short* hostText) {
    if (!Startup(hostText)) return kDoNotEnable;
    if (!registerAll()) {
        Shutdown();
        return kDoNotEnable;
    }
    gPlugInInitialized = true;
    return kImplementedVersion;
}

void init(const FMX_ExternCallStruct& call) {
    const auto hostVersion = static_cast<std::uint16_t>(call.extnVersion);
    if (hostVersion < kOldestHost || hostVersion > kNewestHost) {
        answer(kBadExtnVersion);
        return;
    }
    gPlugInInitialized = false;
    answer(start(pointerFrom<const unsigned short>(call.parm2)));
}

void idle(unsigned char level) {
    if (!gPlugInInitialized) return;
    switch (level) {
    case kFMXT_UserIdle: SafeIdle(); break;
    case kFMXT_Unsafe: UnsafeIdle(); break;
    default: SemiSafeIdle(level); break;
    }
}

void shutdown() {
    gPlugInInitialized = false;
    UnRegisterExternalFunctions();
    Shutdown();
}

void preferences() {
    if (gPrefsOpen) return;
    gPrefsOpen = true;
    Preferences();
    gPrefsOpen = false;
}

/// Writes exactly `units` units, up to the limit: the description, cut where the room ends, and then zeros.
void writeDescription(unsigned short* buffer, FMX_PtrType units) {
    const auto written = static_cast<std::size_t>(std::min(units, kMostBufferUnits));
    std::vector<unsigned short> text(std::max<std::size_t>(written, kMostIdentityUnits));
    ReadString(text.data(), text.size(), kReadDescription);
    std::memcpy(buffer, text.data(), written * sizeof(unsigned short));
}

void getString(const FMX_ExternCallStruct& call) {
    auto* const buffer = pointerFrom<unsigned short>(call.result);
    if (buffer == nullptr) return;
    switch (call.parm1) {
    case kFMXT_NameStr: ReadString(buffer, call.parm3, kReadName); break;
    case kFMXT_AppConfigStr: writeDescription(buffer, call.parm3); break;
    case kFMXT_OptionsStr: std::copy(std::begin(kOptions), std::end(kOptions), buffer); break;
    default: break;
    }
}

void dispatch(const FMX_ExternCallStruct& call) {
    switch (call.whichCall) {
    case kFMXT_Init: init(call); break;
    case kFMXT_Idle: idle(call.parm1); break;
    case kFMXT_Shutdown: shutdown(); break;
    case kFMXT_DoAppPreferences: preferences(); break;
    case kFMXT_GetString: getString(call); break;
    default: break;
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr pb) {
    gFMX_ExternCallPtr = pb;
    if (pb == nullptr) return;
    try {
        dispatch(*pb);
    } catch (...) {
        // The host may be written in C: an exception would end the app.
        return;
    }
}

void ReadString(unsigned short* buffer, unsigned long /*bufferUnits*/, unsigned long kind) {
    if (kind != kReadName && kind != kReadDescription) return;
    const std::string literal(kind == kReadName ? kName : kDescription);
    const fmx::TextUniquePtr text = cFMUtils::FMXTextUniquePtrFromString(literal);
    // The caller's buffer has room for the literal. The host's count may differ.
    const auto units = std::min<std::size_t>(text->GetSize(), literal.size());
    text->GetUnicode(buffer, 0, static_cast<fmx::uint32>(units));
}

bool Startup(const unsigned short* /*hostText*/) { return true; }

void Shutdown() noexcept {}

void Preferences() noexcept {}

void SafeIdle() { performScheduledScripts(); }

void SemiSafeIdle(unsigned char /*idleLevel*/) {}

void UnsafeIdle() {}
