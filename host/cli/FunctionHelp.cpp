#include "host/cli/FunctionHelp.h"

#include "host/app/LoadedPlugIn.h"
#include "host/calc/Catalogue.h"
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

std::string countsOf(int minimum, int maximum) {
    if (maximum < 0) return std::to_string(minimum) + " or more parameters";
    if (maximum == minimum) return std::to_string(minimum) + (minimum == 1 ? " parameter" : " parameters");
    return std::to_string(minimum) + " to " + std::to_string(maximum) + " parameters";
}

/// Help for a function of the app. `function` is the host's; null where the host lacks it.
std::string builtInHelp(std::u16string_view name, const calc::Function* function) {
    const calc::CatalogueRow* row = calc::findInCatalogue(name);
    if (row == nullptr && function == nullptr) return {};
    if (row == nullptr)
        return toUtf8(function->name) + ": " + countsOf(function->minimum, function->maximum) + "\n";
    const std::string needs = row->needs.empty() ? "" : " (" + std::string(row->needs) + ")";
    return std::string(row->signature) + "\n" + std::string(row->sentence) + "\n" +
           countsOf(row->minimum, row->maximum) + "\n" +
           (function != nullptr ? "" : "The host does not have this function of the app" + needs + ".\n");
}

/// The address of a plug-in's own help, on a line; empty: there is none.
std::string addressOf(const QuadChar& creator, std::int16_t id, const LoadedPlugIn& loaded) {
    const PlugIn* owner = loaded.ownerOf(creator);
    const std::string address = owner == nullptr ? std::string() : toUtf8(owner->helpAddress(id));
    return address.empty() ? address : address + "\n";
}

std::string stepHelp(const RegisteredStep& step, const LoadedPlugIn& loaded) {
    std::string text = toUtf8(step.name) + " (script step)\n";
    if (!step.description.empty()) text += toUtf8(step.description) + "\n";
    for (const StepParameter& parameter : step.parameters) {
        const bool isTarget = parameter.type == StepParameter::Type::target;
        text += "  " + toUtf8(parameter.label) + (isTarget ? " (receives the result)" : "");
        for (const std::u16string& value : parameter.values)
            text += (&value == &parameter.values.front() ? ": " : ", ") + toUtf8(value);
        text += "\n";
    }
    return text + addressOf(step.creator, step.id, loaded);
}

/// Whether the words that a plug-in gave to its function have this folded text in them.
bool isDescribedBy(std::u16string_view folded, const calc::Function& function, const LoadedPlugIn& loaded) {
    const RegisteredFunction* row = loaded.findFunction(function.name);
    return row != nullptr && calc::foldName(row->words).find(folded) != std::u16string::npos;
}

} // namespace

std::string helpFor(std::u16string_view name, LoadedPlugIn& loaded) {
    const auto function = loaded.session().functions()->find(name);
    const RegisteredFunction* row = function ? loaded.findFunction(function->name) : nullptr;
    if (const auto step = function ? nullptr : loaded.session().registeredStep(name))
        return stepHelp(*step, loaded);
    if (row == nullptr) return builtInHelp(name, function.get());
    const std::filesystem::path page = documents() / "functions" / (toUtf8(row->name) + ".md");
    if (std::filesystem::exists(page)) return contentOf(page);
    const std::string sentence = row->sentence.empty() ? "" : toUtf8(row->sentence) + "\n";
    return toUtf8(row->prototype) + "\n" + sentence + countsOf(row->minimum, row->maximum) + "\n" +
           addressOf(row->creator, row->id, loaded);
}

std::string functionList(std::u16string_view word, LoadedPlugIn& loaded) {
    const std::u16string folded = calc::foldName(word);
    std::string list;
    for (const auto& [name, function] : loaded.session().functions()->rows())
        if (name.find(folded) != std::u16string::npos || isDescribedBy(folded, *function, loaded))
            list += toUtf8(function->name) + "\n";
    return list;
}

std::string functionsPage(const calc::FunctionTable& functions) {
    std::string page =
        "# The functions of the app\n\nA function whose last column is empty works in the host. Any other "
        "fails with "
        "error 1225; the column says what it\nneeds. `./kestrel help --functions-page` writes this page.\n";
    std::string_view category;
    for (const calc::CatalogueRow& row : calc::catalogue()) {
        if (row.category != category)
            page +=
                "\n## " + std::string(row.category) + "\n\n| Function | Gives | Missing |\n|---|---|---|\n";
        category = row.category;
        const std::string_view lack = functions.find(fromUtf8(row.name)) ? "" : row.needs;
        page.append("| `")
            .append(row.signature)
            .append("` | ")
            .append(row.sentence)
            .append(" | ")
            .append(lack);
        page += " |\n";
    }
    return page;
}

} // namespace host::cli
