#pragma once

/// The plug-in's side of the host's messages.
///
/// The host loads the library and calls FMExternCallProc (declared in FMXExtern.h) for every message, on one
/// thread, one message at a time. After an accepted init the functions are registered and idle messages are
/// served, until shutdown. Messages may come in any order and twice; those that make no sense do nothing.
/// Nothing escapes the entry point into the host: an init that fails on the way leaves nothing registered
/// and answers "do not enable", any other message ends where it failed.

#include "bridge/HostInterface.h"

/// True between an accepted init and shutdown.
extern bool gPlugInInitialized;
/// True while the preferences message is handled.
extern bool gPrefsOpen;

/// Major and minor number. The bundle takes its version from this line.
inline constexpr const char* kPlugInVersion = "3.1";

/// What ReadString writes.
enum : unsigned long { kReadName = 1, kReadDescription = 2 };
/// No text of ReadString has more units than this.
inline constexpr unsigned long kMostIdentityUnits = 256;

/// Writes the name or the description from the start of the buffer, without a terminating zero; nothing for
/// any other kind. The buffer's size is not consulted: there must be room for kMostIdentityUnits, or the
/// caller knows that the text fits. Host failures travel as exceptions.
void ReadString(unsigned short* buffer, unsigned long bufferUnits, unsigned long kind);

/// Called by init with the host application's version text; false would refuse the plug-in.
bool Startup(const unsigned short* hostText);
/// Called after the functions are withdrawn.
void Shutdown() noexcept;
/// The plug-in has no preferences.
void Preferences() noexcept;
/// The moment at which scripts may be started.
void SafeIdle();
/// The user or a script is busy; the host's idle level says how.
void SemiSafeIdle(unsigned char idleLevel);
/// Nothing of the host may be called.
void UnsafeIdle();
