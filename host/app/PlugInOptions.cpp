#include "host/app/PlugInOptions.h"

#include "host/values/Encoding.h"

#include <array>

namespace host {

namespace {

constexpr std::size_t kOptionsSize = 11;

struct Flag {
    std::size_t place;
    bool PlugInOptions::* member; ///< null: the flag is always n
};
constexpr std::array flags{Flag{5, &PlugInOptions::preferences}, Flag{6, nullptr},
                           Flag{7, &PlugInOptions::lifecycle},   Flag{8, &PlugInOptions::idle},
                           Flag{9, &PlugInOptions::closing},     Flag{10, nullptr}};

std::string problemWith(std::u16string_view text) {
    const std::string quoted = "\"" + toUtf8(text) + "\"";
    if (text.empty()) return "there is no options string (string 131)";
    if (text.size() != kOptionsSize)
        return "the options string " + quoted + " has " + std::to_string(text.size()) + " characters, not " +
               std::to_string(kOptionsSize);
    if (text[4] != u'1') return "character 5 of the options string " + quoted + " is not 1";
    for (const Flag& flag : flags) {
        const bool isGood = text[flag.place] == u'n' || (flag.member != nullptr && text[flag.place] == u'Y');
        if (!isGood)
            return "character " + std::to_string(flag.place + 1) + " of the options string " + quoted +
                   (flag.member == nullptr ? " is not n" : " is neither Y nor n");
    }
    return {};
}

} // namespace

PlugInOptions readPlugInOptions(std::u16string_view text) {
    PlugInOptions options;
    options.problem = problemWith(text);
    if (!options.problem.empty()) return options;
    for (const Flag& flag : flags)
        if (flag.member != nullptr) options.*flag.member = text[flag.place] == u'Y';
    return options;
}

} // namespace host
