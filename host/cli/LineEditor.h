#pragma once

#include "host/cli/Terminal.h"

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Types of the library that edits lines.
struct editline;
struct historyW;

namespace host::cli {

/// The words that may replace the last characters before the cursor.
struct Completions {
    std::size_t replaced = 0; ///< how many bytes before the cursor give way
    std::vector<std::string> texts;
};

/// Reads lines at a terminal, with editing, history and completion. Characters are UTF-8 in every
/// locale; a paste of several lines arrives whole where the terminal marks pastes. A process has one at a
/// time.
class LineEditor {
public:
    /// The history is kept in a file, which need not exist; an empty path keeps none.
    explicit LineEditor(std::filesystem::path historyFile);
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    /// Called while it waits for keys; says how long it need not be called again. Its output appears above
    /// the line.
    std::function<std::chrono::milliseconds()> onWait;
    /// Called for the tab key with the line before the cursor.
    std::function<Completions(const std::string&)> onComplete;

    enum class End : std::uint8_t { line, cancelled, closed };
    /// Reads until Enter (line), Ctrl-C (cancelled), or Ctrl-D in an empty line or the end of input (closed).
    End read(std::string_view prompt, std::string& line);
    /// Adds an entry, which may have several lines, to the history.
    void remember(const std::string& entry);

private:
    enum class Source : std::uint8_t { none, key, end };
    static int nextKey(editline* editor, wchar_t* key);
    static unsigned char insertPaste(editline* editor, int key);
    static unsigned char cancel(editline* editor, int key);
    static unsigned char complete(editline* editor, int key);
    static LineEditor& of(editline* editor);
    static wchar_t* promptOf(editline* editor) { return of(editor).prompt_.data(); }

    Source takeKey(wchar_t& key);
    bool takePaste(wchar_t& key);
    bool takeCharacter();
    bool waitForInput(std::chrono::milliseconds most);
    void turn();
    void takeSignals();
    void eraseLine();
    void showAbove(std::string text);
    void list(const std::vector<std::string>& texts);
    void loadHistory();

    Signals signals_;
    std::filesystem::path historyFile_;
    std::wstring prompt_;
    std::string input_; ///< bytes that were read and are no keys yet
    std::string paste_;
    std::deque<wchar_t> queued_; ///< keys that come before those of the input
    std::chrono::steady_clock::time_point nextTurn_;
    bool isCancelled_ = false, marksPastes_;
    editline* editor_;
    historyW* history_;
};

} // namespace host::cli
