#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

/// Examples with results, as people write them into documents and tables.
///
/// A Markdown file holds them in blocks that begin with ```kestrel: a calculation of one line or more, then
/// its result in lines that begin with `→`. The calculations of a block share a session. A word after
/// "kestrel" is the context of the block.
///
/// A TSV file (its name ends in .tsv) holds one a line, in three columns: context, calculation, result. In
/// the result `\r` is a return and `\t` a tab; any other backslash is itself. Each has a session of its own.
/// Empty lines and lines that begin with # are skipped.
///
/// The result `ERROR n` says that the calculation fails with error n.
///
/// A context may say where the calculation is evaluated, or what becomes of its value:
/// - `fields@Invoices/3`: at the layout Invoices, with its third record current; the word before is free.
/// - `script:NAME`: the value is the parameter of a script, whose result is the example's.
/// - `filesql`: the value holds SQL statements, one a line; the result has the rows of the last one, a comma
///   between values and a return between rows.

namespace host::cli {

struct Example {
    std::string file;
    std::size_t line = 0;              ///< of the expected result, from 1
    std::string context;               ///< a word; empty: the file as it is opened
    std::string calculation, expected; ///< UTF-8; lines of a text end in a return
    bool tellsLineFeeds = true;        ///< false: a line feed in the result counts as a return
    bool beginsSession = true;         ///< false: it follows the example before it in the same session
    std::string fault;                 ///< why this is no example; empty when it is one
};

/// The examples of a file, in their order; throws std::runtime_error when it cannot be read.
std::vector<Example> readExamples(const std::filesystem::path& file);

} // namespace host::cli
