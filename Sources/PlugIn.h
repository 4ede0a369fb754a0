#pragma once

/// The plug-in's side of the host's messages.
///
/// The host loads the library and calls FMExternCallProc (declared in FMXExtern.h) for every message, on one
/// thread, one message at a time. Functions are registered and idle messages are handled from an accepted
/// init to shutdown. Messages may come in any order and twice; a message that makes no sense does nothing. No
/// exception leaves the entry point. An init that fails leaves nothing registered and answers "do not
/// enable". Any other message that fails ends there.

#include "bridge/HostInterface.h"

/// True between an accepted init and shutdown.
extern bool gPlugInInitialized;
/// True while the preferences message is handled.
extern bool gPrefsOpen;

/// Major and minor number. The bundle takes its version from this line.
inline constexpr const char* kPlugInVersion = "3.1";

/// The texts of ReadString.
enum : unsigned long { kReadName = 1, kReadDescription = 2 };
/// The largest number of UTF-16 units in a text of ReadString.
inline constexpr unsigned long kMostIdentityUnits = 256;

/// Writes the name or the description from the start of the buffer, without a terminating zero. Any other
/// kind writes nothing. The buffer's size is not used: the caller provides room for kMostIdentityUnits, or
/// knows that the text fits. A failing host call throws.
void ReadString(unsigned short* buffer, unsigned long bufferUnits, unsigned long kind);

/// Init calls this with the host application's version text. False would refuse the plug-in.
bool Startup(const unsigned short* hostText);
/// Shutdown calls this after the functions are withdrawn.
void Shutdown() noexcept;
/// The plug-in has no preferences.
void Preferences() noexcept;
/// The moment at which scripts may be started.
void SafeIdle();
/// The user or a script is busy; the host's idle level says how.
void SemiSafeIdle(unsigned char idleLevel);
/// The function must not call the host.
void UnsafeIdle();
