#include "host/cli/LineEditor.h"

#include "host/cli/Output.h"
#include "host/cli/Wide.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <histedit.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host::cli {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::string_view kPasteBegin = "\033[200~", kPasteEnd = "\033[201~";
/// Keys that no keyboard sends, and that of Emacs for the end of the line.
constexpr wchar_t kPasteKey = 0x80, kCancelKey = 0x81, kEndOfLineKey = 0x05;
constexpr int kHistorySize = 1000;

/// An entry of the history on one line of its file, and back.
std::string escaped(const std::string& entry) {
    std::string line;
    for (const char letter : entry) {
        if (letter == '\\')
            line += "\\\\";
        else if (letter == '\n')
            line += "\\n";
        else
            line += letter;
    }
    return line;
}
std::string unescaped(const std::string& line) {
    std::string entry;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isPair = line[i] == '\\' && i + 1 < line.size();
        if (isPair) ++i;
        entry += isPair && line[i] == 'n' ? '\n' : line[i];
    }
    return entry;
}

/// The bytes of the character that begins with a byte, as UTF-8 has it.
std::size_t bytesOf(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte < 0xC0) return 1;
    if (byte < 0xE0) return 2;
    return byte < 0xF0 ? 3 : 4;
}

/// The beginning that texts have in common, in whole characters.
std::string commonBeginning(const std::vector<std::string>& texts) {
    std::wstring common = wide(texts.front());
    for (const std::string& text : texts) {
        const std::wstring other = wide(text);
        const auto end = std::mismatch(common.begin(), common.end(), other.begin(), other.end()).first;
        common.erase(end, common.end());
    }
    return narrow(common);
}

bool terminalMarksPastes() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

} // namespace

LineEditor::LineEditor(std::filesystem::path historyFile)
    : historyFile_(std::move(historyFile)), marksPastes_(terminalMarksPastes()),
      editor_(::el_init("kestrel", stdin, stdout, stderr)), history_(::history_winit()) {
    HistEventW event;
    ::history_w(history_, &event, H_SETSIZE, kHistorySize);
    ::history_w(history_, &event, H_SETUNIQUE, 1);
    ::el_wset(editor_, EL_CLIENTDATA, this);
    ::el_wset(editor_, EL_PROMPT, promptOf);
    ::el_wset(editor_, EL_EDITOR, L"emacs");
    ::el_wset(editor_, EL_HIST, history_w, history_);
    ::el_wset(editor_, EL_GETCFN, nextKey);
    ::el_wset(editor_, EL_ADDFN, L"kestrel-paste", L"Insert a paste", insertPaste);
    ::el_wset(editor_, EL_ADDFN, L"kestrel-cancel", L"Discard the line", cancel);
    ::el_wset(editor_, EL_ADDFN, L"kestrel-complete", L"Complete a name", complete);
    ::el_source(editor_, nullptr);
    ::el_wset(editor_, EL_BIND, L"\\200", L"kestrel-paste", nullptr);
    ::el_wset(editor_, EL_BIND, L"\\201", L"kestrel-cancel", nullptr);
    ::el_wset(editor_, EL_BIND, L"^I", L"kestrel-complete", nullptr);
    ::el_wset(editor_, EL_BIND, L"^R", L"em-inc-search-prev", nullptr);
    loadHistory();
}

LineEditor::~LineEditor() {
    ::el_end(editor_);
    ::history_wend(history_);
}

LineEditor& LineEditor::of(editline* editor) {
    void* self = nullptr;
    ::el_wget(editor, EL_CLIENTDATA, &self);
    return *static_cast<LineEditor*>(self);
}

LineEditor::End LineEditor::read(std::string_view prompt, std::string& line) {
    prompt_ = wide(prompt);
    isCancelled_ = false;
    nextTurn_ = Clock::now();
    Signals::take(); // those of the calculation before
    if (marksPastes_) write("\033[?2004h");
    int count = 0;
    const wchar_t* const read = ::el_wgets(editor_, &count);
    if (marksPastes_) write("\033[?2004l");
    if (isCancelled_) return End::cancelled;
    if (read == nullptr || count <= 0) return End::closed;
    line = narrow({read, static_cast<std::size_t>(count)});
    if (line.ends_with('\n')) line.pop_back();
    return End::line;
}

// --- Keys --------------------------------------------------------------------------------------------

int LineEditor::nextKey(editline* editor, wchar_t* key) {
    LineEditor& self = of(editor);
    try {
        return self.takeKey(*key) == Source::key ? 1 : 0;
    } catch (...) {
        return -1; // the library is C; the next write reports what is wrong with the output
    }
}

LineEditor::Source LineEditor::takeKey(wchar_t& key) {
    for (;;) {
        if (!queued_.empty()) {
            key = queued_.front();
            queued_.pop_front();
            return Source::key;
        }
        if (takePaste(key)) return Source::key;
        // The beginning of a paste's mark may be a key of its own: then no more of it comes.
        constexpr milliseconds markTime{50};
        const bool mayBeMark = !input_.empty() && kPasteBegin.starts_with(input_);
        if (mayBeMark && waitForInput(markTime)) continue;
        if (takeCharacter()) continue;
        if (Clock::now() >= nextTurn_) turn();
        const auto rest = std::max(nextTurn_ - Clock::now(), Clock::duration::zero());
        const std::size_t before = input_.size();
        if (waitForInput(std::chrono::ceil<milliseconds>(rest)) && input_.size() == before)
            return Source::end;
    }
}

/// Moves a character from the input to the keys; false when there is no whole one.
bool LineEditor::takeCharacter() {
    if (input_.empty() || input_.starts_with(kPasteBegin)) return false;
    const std::size_t size = bytesOf(input_.front());
    if (input_.size() < size) return false;
    for (const wchar_t character : wide(input_.substr(0, size)))
        if (character < 0x80 || character >= 0xA0)
            queued_.push_back(character); // the others are our own keys
    input_.erase(0, size);
    return true;
}

/// Takes a whole paste from the input and gives the key that inserts it.
bool LineEditor::takePaste(wchar_t& key) {
    if (!input_.starts_with(kPasteBegin)) return false;
    const std::size_t end = input_.find(kPasteEnd, kPasteBegin.size());
    if (end == std::string::npos) return false;
    paste_ = withLineFeeds(input_.substr(kPasteBegin.size(), end - kPasteBegin.size()));
    while (paste_.ends_with('\n'))
        paste_.pop_back();
    input_.erase(0, end + kPasteEnd.size());
    key = kPasteKey;
    return true;
}

/// True when the terminal has something: bytes, which are added to the input, or its end, which adds none.
bool LineEditor::waitForInput(milliseconds most) {
    std::array<pollfd, 2> waiting{{{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
                                   {.fd = signals_.descriptor(), .events = POLLIN, .revents = 0}}};
    if (::poll(waiting.data(), waiting.size(), static_cast<int>(most.count())) <= 0) return false;
    if (waiting[1].revents != 0) {
        takeSignals();
        return false;
    }
    std::array<char, 4096> chunk{};
    const ssize_t size = ::read(STDIN_FILENO, chunk.data(), chunk.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) return false;
    if (size > 0) input_.append(chunk.data(), static_cast<std::size_t>(size));
    return true;
}

void LineEditor::takeSignals() {
    const Signals::Taken taken = Signals::take();
    if (taken.interrupt) {
        input_.clear();
        queued_.assign({kEndOfLineKey, kCancelKey});
    }
    if (!taken.redraw) return;
    eraseLine();
    ::el_resize(editor_);
    ::el_wset(editor_, EL_PREP_TERM, 1);
    ::el_wset(editor_, EL_REFRESH);
}

/// Lets the host work once.
void LineEditor::turn() {
    CapturedOutput captured;
    const milliseconds rest = onWait ? onWait() : milliseconds(1000);
    nextTurn_ = Clock::now() + rest;
    const std::string text = captured.take();
    if (!text.empty()) showAbove(text);
}

// --- The line ----------------------------------------------------------------------------------------

unsigned char LineEditor::insertPaste(editline* editor, int /*key*/) {
    ::el_winsertstr(editor, wide(of(editor).paste_).c_str());
    return CC_REFRESH;
}

unsigned char LineEditor::cancel(editline* editor, int /*key*/) {
    of(editor).isCancelled_ = true;
    reportRaw("^C\n");
    return CC_EOF;
}

unsigned char LineEditor::complete(editline* editor, int /*key*/) {
    LineEditor& self = of(editor);
    if (!self.onComplete) return CC_ERROR;
    const LineInfoW* const line = ::el_wline(editor);
    const std::string before = narrow({line->buffer, static_cast<std::size_t>(line->cursor - line->buffer)});
    const Completions found = self.onComplete(before);
    if (found.texts.empty()) return CC_ERROR;
    const std::string typed = before.substr(before.size() - found.replaced);
    const std::string common = commonBeginning(found.texts);
    if (found.texts.size() > 1 && (common.size() < typed.size() || common == typed)) {
        self.list(found.texts);
        return CC_NORM;
    }
    ::el_deletestr(editor, static_cast<int>(wide(typed).size()));
    ::el_winsertstr(editor, wide(common).c_str());
    return CC_REFRESH;
}

void LineEditor::list(const std::vector<std::string>& texts) {
    constexpr std::size_t most = 200;
    std::string listed;
    for (std::size_t i = 0; i < std::min(texts.size(), most); ++i)
        listed += (i > 0 ? "  " : "") + texts[i].substr(0, texts[i].find(" ("));
    if (texts.size() > most) listed += "  and " + std::to_string(texts.size() - most) + " more";
    showAbove(listed);
}

/// Takes the line off the screen and leaves the cursor where it began.
void LineEditor::eraseLine() {
    const LineInfoW* const line = ::el_wline(editor_);
    const std::wstring before =
        prompt_ + std::wstring(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
    const std::size_t rows = rowsBelow(before, terminalColumns());
    write("\r" + (rows > 0 ? "\033[" + std::to_string(rows) + "A" : "") + "\033[J");
}

/// Writes text in the place of the line and shows the line again below it.
void LineEditor::showAbove(std::string text) {
    eraseLine();
    if (!text.ends_with('\n')) text += '\n';
    write(text);
    ::el_wset(editor_, EL_REFRESH);
}

// --- History -----------------------------------------------------------------------------------------

void LineEditor::loadHistory() {
    std::vector<std::string> lines;
    std::ifstream file(historyFile_);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    const std::size_t first = lines.size() > kHistorySize ? lines.size() - kHistorySize : 0;
    HistEventW event;
    for (std::size_t i = first; i < lines.size(); ++i)
        ::history_w(history_, &event, H_ENTER, wide(unescaped(lines[i])).c_str());
    // A line that the history has dropped need not stay in the file.
    if (first < kHistorySize) return;
    file.close();
    std::ofstream shorter(historyFile_);
    for (std::size_t i = first; i < lines.size(); ++i)
        shorter << lines[i] << '\n';
}

void LineEditor::remember(const std::string& entry) {
    HistEventW event;
    ::history_w(history_, &event, H_ENTER, wide(entry).c_str());
    if (historyFile_.empty()) return;
    // The history may hold texts that other users must not read.
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    std::ofstream(historyFile_, std::ios::app) << escaped(entry) << '\n';
    ::umask(before);
}

} // namespace host::cli
