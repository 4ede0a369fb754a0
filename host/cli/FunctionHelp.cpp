#include "host/cli/FunctionHelp.h"

#include "host/app/LoadedPlugIn.h"
#include "host/cli/Input.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace host::cli {

namespace {

/// The folder of the documents: KESTREL_DOCS, else that of the sources which this program was built from.
std::filesystem::path documents() {
    const char* const folder = std::getenv("KESTREL_DOCS");
    return folder != nullptr ? folder : KESTREL_DOCS_DIR;
}

const RegisteredFunction* registered(std::u16string_view name, const PlugIn& plugIn) {
    const auto& functions = plugIn.functions();
    const auto found = std::find_if(functions.begin(), functions.end(),
                                    [name](const RegisteredFunction& row) { return row.name == name; });
    return found == functions.end() ? nullptr : &*found;
}

std::string countsOf(int minimum, int maximum) {
    if (maximum < 0) return std::to_string(minimum) + " or more parameters";
    if (maximum == minimum) return std::to_string(minimum) + (minimum == 1 ? " parameter" : " parameters");
    return std::to_string(minimum) + " to " + std::to_string(maximum) + " parameters";
}

} // namespace

std::string helpFor(std::u16string_view name, LoadedPlugIn& loaded) {
    const auto function = loaded.session().functions()->find(name);
    if (!function) return {};
    const RegisteredFunction* row = registered(function->name, loaded.plugIn());
    const std::string counts = countsOf(function->minimum, function->maximum) + "\n";
    if (row == nullptr) return toUtf8(function->name) + ": a function of the host, " + counts;
    // Another plug-in may have a function of the same name, and no page.
    const std::filesystem::path page = documents() / "functions" / (toUtf8(row->name) + ".md");
    if (std::filesystem::exists(page)) return contentOf(page);
    return toUtf8(row->prototype) + "\n" + counts;
}

std::string functionList(std::u16string_view word, LoadedPlugIn& loaded) {
    const std::u16string folded = calc::foldName(word);
    std::string list;
    for (const auto& [name, function] : loaded.session().functions()->rows())
        if (name.find(folded) != std::u16string::npos) list += toUtf8(function->name) + "\n";
    return list;
}

} // namespace host::cli
