#include "host/cli/Commands.h"

#include "host/values/Clock.h"
#include "host/app/File.h"
#include "host/dispatch/MainQueue.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <thread>
#include <unistd.h>
#include <utility>

namespace host::cli {

namespace {

void writeLine(std::string text, bool exact) {
    if (!exact) std::replace(text.begin(), text.end(), '\r', '\n');
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

void writeJson(const nlohmann::ordered_json& object) {
    writeLine(object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace), true);
}

void writeScriptCall(const ScriptCall& call) {
    writeJson({{"script", toUtf8(call.scriptName)},
               {"file", toUtf8(call.fileName)},
               {"parameter", call.parameter ? call.parameter->asText().utf8() : std::string()},
               {"error", call.error}});
}

void chooseNativeEncoding(const std::string& name) {
    constexpr std::array<std::pair<std::string_view, Encoding>, 5> names{
        {{"macintosh", Encoding::asciiMac},
         {"utf-8", Encoding::utf8},
         {"iso-8859-1", Encoding::iso8859_1},
         {"windows-1252", Encoding::asciiWindows},
         {"shift-jis", Encoding::shiftJisMac}}};
    if (name.empty()) return;
    for (const auto& [known, encoding] : names)
        if (known == name) return setNativeEncoding(encoding);
    throw std::runtime_error("no native encoding is called " + name);
}

} // namespace

Desk::Desk(const Options& options) : json_(options.json) {
    chooseNativeEncoding(options.nativeEncoding);
    if (options.clockSeconds) {
        clock().hold();
        clock().set(std::chrono::seconds(*options.clockSeconds));
    }
    if (options.solutions.empty()) session_.open(Solution{});
    for (const auto& folder : options.solutions)
        session_.open(Solution::load(folder));
    if (json_) session_.onScriptCall = writeScriptCall;
    plugIn_ = std::make_unique<PlugIn>(session_, options.plugIn);
    const std::int64_t answer = plugIn_->init();
    if (!plugIn_->isEnabled())
        throw std::runtime_error("the plug-in does not want to be enabled: it answered init with " +
                                 std::to_string(answer));
}

bool Desk::evaluateAndPrint(const std::string& calculation) {
    return print(session_.evaluate(fromUtf8(calculation)));
}

bool Desk::print(const calc::Result& result) {
    const bool good = result.error == calc::error::none;
    if (json_)
        writeJson({{"type", good ? std::string(typeWord(result.value->nativeType())) : std::string()},
                   {"text", good ? result.value->asText().utf8() : std::string()},
                   {"error", result.error}});
    else if (good)
        writeLine(result.value->asText().utf8(), ::isatty(STDOUT_FILENO) == 0);
    if (!good) {
        const std::string message(calc::errorMessage(result.error));
        std::fprintf(stderr, "kestrel: error %d: %s\n", result.error, message.c_str());
    }
    return good;
}

Desk::~Desk() { session_.end(); }

bool Desk::turn() {
    // A plug-in that queues work of its own in a block serves it in idle messages, perhaps one thing each; it
    // cannot be asked. So there is an idle message for every block, and another after each that did
    // something.
    const Session::Turn turn = session_.turn();
    idleMessagesOwed_ += turn.blocks;
    if (idleMessagesOwed_ > 0) --idleMessagesOwed_;
    isBusy_ = turn.blocks + turn.scriptCalls + turn.scripts + idleMessagesOwed_ > 0;
    return isBusy_;
}

std::chrono::milliseconds Desk::rest() const {
    using std::chrono::milliseconds;
    constexpr milliseconds shortest{1}, longest{250};
    if (isBusy_) return milliseconds::zero();
    const std::optional<Clock::Micros> next = mainQueue().untilNext();
    // A clock that is held brings no delay to its end.
    if (!next || clock().isHeld()) return longest;
    return std::clamp(std::chrono::ceil<milliseconds>(*next), shortest, longest);
}

void Desk::serve(std::chrono::duration<double> most, std::chrono::duration<double> idleAfter) {
    using RealClock = std::chrono::steady_clock;
    const auto began = RealClock::now();
    const auto restBefore = [this, began](std::chrono::duration<double> end) {
        const std::chrono::duration<double> left = end - (RealClock::now() - began);
        if (left.count() > 0)
            std::this_thread::sleep_for(std::min<std::chrono::duration<double>>(rest(), left));
        return left.count() > 0;
    };
    while (restBefore(idleAfter))
        idleMessagesOwed_ += mainQueue().drain();
    while (true) {
        const bool isBusy = turn();
        const bool isWaiting = mainQueue().pending() > 0 && !clock().isHeld();
        if ((!isBusy && !isWaiting) || !restBefore(most)) return;
    }
}

} // namespace host::cli
