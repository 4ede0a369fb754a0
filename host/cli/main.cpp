#include "host/cli/Commands.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

using host::cli::Options;

void addSessionOptions(CLI::App& command, Options& options) {
    command.add_option("--solution", options.solutions, "a solution's folder; the first one calculates")
        ->allow_extra_args(false);
    command.add_flag("--json", options.json, "one JSON object a line");
    command.add_option("--clock", options.clockSeconds, "hold the clock at seconds since 1970")
        ->group("Testing");
    command.add_option("--native", options.nativeEncoding, "the native encoding")->group("Testing");
}

void addEvaluationOptions(CLI::App& command, Options& options) {
    const std::string testing = "Testing";
    command.add_option("--for", options.serveSeconds, "serve delayed scripts for so many seconds")
        ->check(CLI::Range(0.0, 1e9));
    command
        .add_option("--idle-after", options.idleAfterSeconds,
                    "seconds for which the user stays busy after the last calculation")
        ->check(CLI::Range(0.0, 86'400.0))
        ->group(testing);
    command.add_option("--fail-host-call", options.failAt, "make the n-th host call fail")->group(testing);
    command.add_option("--fail-with", options.failWith, "its error: 1 or 2")
        ->check(CLI::Range(1, 2))
        ->group(testing);
    command.add_flag("--fail-from-then-on", options.failFromThenOn, "and all that follow")->group(testing);
    command.add_flag("--objects", options.reportObjects, "tell which host objects are left")->group(testing);
    command.add_option("calculation", options.calculations, "a calculation")->required();
}

} // namespace

int main(int argc, char** argv) try {
    Options options;
    if (const char* plugIn = std::getenv("KESTREL_PLUGIN")) options.plugIn = plugIn;

    CLI::App app("The development host of the Vex Kestrel Plug-In", "kestrel");
    app.require_subcommand(1);
    app.add_option("--plugin", options.plugIn, "the plug-in's library");

    CLI::App* eval = app.add_subcommand("eval", "evaluate calculations in one session");
    addSessionOptions(*eval, options);
    addEvaluationOptions(*eval, options);

    CLI::App* repl = app.add_subcommand("repl", "evaluate calculations from a prompt");
    addSessionOptions(*repl, options);

    CLI::App* functions = app.add_subcommand("functions", "list the registered functions");

    CLI::App* html = app.add_subcommand("html", "convert an HTML document with Kestrel_GetAsHTML");
    addSessionOptions(*html, options);
    html->add_option("file", options.document, "the document; - for standard input")->required();
    html->add_option("-o", options.output, "where the result goes");
    html->add_option("--tags", options.tags, "formatting=element, one a line");
    html->add_option("--classes", options.classes, "formatting=class, one a line");
    html->add_option("--styles", options.styles, "formattings, one a line");

    CLI::App* check = app.add_subcommand("check", "check a plug-in against the host's contract");
    check->add_option("plugin", options.plugIn, "the plug-in's library");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& problem) {
        if (problem.get_exit_code() == 0) return app.exit(problem);
        std::fprintf(stderr, "kestrel: %s\n", problem.what());
        return host::cli::wrongUsage;
    }
    if (eval->parsed()) return host::cli::evaluate(options);
    if (repl->parsed()) return host::cli::prompt(options);
    if (html->parsed()) return host::cli::convertHtml(options);
    if (functions->parsed()) return host::cli::listFunctions(options);
    return host::cli::check(options);
} catch (const std::exception& problem) {
    std::fprintf(stderr, "kestrel: %s\n", problem.what());
    return host::cli::wrongUsage;
}
