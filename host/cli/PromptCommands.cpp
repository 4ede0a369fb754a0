#include "host/cli/PromptCommands.h"

#include "host/app/File.h"
#include "host/cli/FunctionHelp.h"
#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace host::cli {

namespace {

void help(Runner& runner, const std::string& name) {
    if (name.empty()) {
        std::string text =
            "A line is a calculation. An open bracket, quotation mark or comment goes on at the next "
            "line.\nTab completes a name, Ctrl-C discards the line or stops the calculation, Ctrl-D "
            "leaves.\n\n";
        for (const PromptCommand& command : promptCommands()) {
            std::string head = "  " + std::string(command.name) + " " + std::string(command.parameters);
            constexpr std::size_t column = 28;
            head.resize(std::max(head.size() + 1, column), ' ');
            text += head + std::string(command.sentence) + "\n";
        }
        return write(text);
    }
    const std::string text = helpFor(fromUtf8(name), runner.loaded());
    if (text.empty()) throw std::runtime_error("there is no function " + name);
    write(text);
}

void functions(Runner& runner, const std::string& word) {
    write(functionList(fromUtf8(word), runner.loaded()));
}

/// One line a variable. Long values are cut; a return is shown as ¶, as calculations write it.
void writeVariables(std::string_view mark, const calc::Variables& variables) {
    constexpr std::size_t most = 100;
    for (const auto& [folded, variable] : variables.all())
        for (const auto& [repetition, value] : variable.repetitions) {
            std::u16string text(value->asText().units().substr(0, most));
            for (std::size_t at = 0; (at = text.find(u'\r', at)) != std::u16string::npos;)
                text[at] = u'¶';
            const std::string index = repetition == 1 ? "" : "[" + std::to_string(repetition) + "]";
            writeLine(std::string(mark) + toUtf8(variable.name) + index + " = " + toUtf8(text) +
                      (value->asText().size() > most ? "…" : ""));
        }
}

void variables(Runner& runner, const std::string& /*argument*/) {
    const calc::Environment place = runner.session().topLevel();
    writeVariables("$", *place.locals);
    if (place.file) writeVariables("$$", place.file->fileVariables());
}

void scripts(Runner& runner, const std::string& /*argument*/) {
    for (const auto& file : runner.session().files())
        for (const Script& script : file->solution().scripts)
            writeLine(toUtf8(file->name()) + ": " + toUtf8(script.name));
}

/// The longest name of a script that the text begins with, since names and parameters may have blanks.
void runScript(Runner& runner, const std::string& argument) {
    const auto file = runner.session().front();
    const std::u16string text = fromUtf8(argument);
    for (std::size_t end = text.size(); file && end != std::u16string::npos && end > 0;
         end = text.rfind(u' ', end - 1)) {
        if (file->script(text.substr(0, end)) == nullptr) continue;
        const std::u16string parameter = end < text.size() ? text.substr(end + 1) : std::u16string();
        runner.session().startScript(file->name(), text.substr(0, end),
                                     std::make_shared<const Data>(Text(parameter)));
        runner.turnTraced();
        return;
    }
    throw std::runtime_error("there is no script " + argument);
}

void showTypes(Runner& runner, const std::string& argument) {
    if (argument != "on" && argument != "off") throw std::runtime_error(":type needs on or off");
    runner.showTypes(argument == "on");
}

void sendPreferences(Runner& runner, const std::string& /*argument*/) {
    if (runner.session().preferences() == 0) throw std::runtime_error("no plug-in asks for preferences");
}

constexpr std::array kCommands{
    PromptCommand{":help", "[NAME]", "this text, or a function's page", help},
    PromptCommand{":functions", "[WORD]",
                  "the functions; with WORD, those whose name or completion words contain it", functions},
    PromptCommand{":vars", "", "the variables", variables},
    PromptCommand{":scripts", "", "the scripts of the open files", scripts},
    PromptCommand{":run", "SCRIPT [PARAMETER]", "run a script of the first file", runScript},
    PromptCommand{":preferences", "", "send plug-ins the message of the preferences' button",
                  sendPreferences},
    PromptCommand{":type", "on|off", "show results with their types", showTypes},
};

} // namespace

std::span<const PromptCommand> promptCommands() { return kCommands; }

void runPromptCommand(Runner& runner, const std::string& line) {
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string name = line.substr(0, end);
    std::string argument = line.substr(std::min(end + 1, line.size()));
    argument.erase(argument.find_last_not_of(' ') + 1);
    const auto* command = std::find_if(kCommands.begin(), kCommands.end(),
                                       [&](const PromptCommand& row) { return row.name == name; });
    if (command == kCommands.end()) return report("there is no command " + name + "; :help lists them");
    try {
        command->run(runner, argument);
    } catch (const std::runtime_error& problem) {
        report(problem.what());
    }
}

} // namespace host::cli
