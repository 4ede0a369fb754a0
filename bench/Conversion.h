#pragma once

#include "Inputs.h"
#include "Loaded.h"
#include "StyledInputs.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace bench {

/// Arguments for Kestrel_GetAsHTML; by default they request every formatting.
inline host::DataVect conversionOf(host::Text text, std::u16string_view styles = u"all",
                                   std::u16string_view classes = u"all=kst") {
    host::DataVect arguments = texts({u"", u"all", std::u16string(classes), std::u16string(styles)});
    arguments.front() = shared(std::move(text));
    return arguments;
}

/// The function with its arguments.
class Conversion {
public:
    Conversion(const Loaded& plugIn, host::Text text)
        : plugIn_(plugIn), arguments_(conversionOf(std::move(text))) {}

    /// Converts the text and gives the size of the HTML.
    std::uint32_t run() {
        plugIn_.call(function_, arguments_, result_);
        return result_.asText().size();
    }

private:
    const Loaded& plugIn_;
    const host::RegisteredFunction& function_ = plugIn_.function(u"Kestrel_GetAsHTML");
    host::DataVect arguments_;
    host::Data result_;
};

} // namespace bench
