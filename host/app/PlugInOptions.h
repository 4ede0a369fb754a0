#pragma once

#include <string>
#include <string_view>

namespace host {

/// The messages that a plug-in's options string asks for.
struct PlugInOptions {
    bool preferences = false; ///< message 5
    bool lifecycle = false;   ///< init and shutdown (0, 4)
    bool idle = false;        ///< message 1
    bool closing = false;     ///< session and file shutdown (8, 9)
    /// The fault of the string, for which the host leaves the plug-in alone; empty for none.
    std::string problem;
};

/// Reads an options string: the identifier's four characters, "1", and a Y or n for preferences, nothing,
/// init and shutdown, idle messages, session and file shutdown, nothing.
PlugInOptions readPlugInOptions(std::u16string_view text);

} // namespace host
