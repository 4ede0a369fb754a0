#include "host/calc/Catalogue.h"

#include "host/calc/Environment.h"
#include "host/values/Encoding.h"

#include <array>
#include <charconv>
#include <map>
#include <vector>

namespace host::calc {

namespace {

constexpr std::string_view kRows =
#include "host/calc/functions.inc"
    ;

/// The part of `text` up to the delimiter, which is removed from `text` with it.
std::string_view takeUpTo(std::string_view& text, char delimiter) {
    const std::size_t end = std::min(text.find(delimiter), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

int numberOf(std::string_view digits) {
    int number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

std::vector<CatalogueRow> readRows() {
    std::vector<CatalogueRow> rows;
    for (std::string_view rest = kRows; !rest.empty();) {
        std::string_view line = takeUpTo(rest, '\n');
        if (line.empty()) continue;
        std::array<std::string_view, 6> columns;
        for (std::string_view& column : columns)
            column = takeUpTo(line, '\t');
        const auto& [category, signature, minimum, maximum, needs, sentence] = columns;
        rows.push_back({.category = category,
                        .signature = signature,
                        .name = signature.substr(0, signature.find(' ')),
                        .minimum = numberOf(minimum),
                        .maximum = numberOf(maximum),
                        .needs = needs,
                        .sentence = sentence});
    }
    return rows;
}

std::map<std::u16string, const CatalogueRow*, std::less<>> indexRows() {
    std::map<std::u16string, const CatalogueRow*, std::less<>> index;
    for (const CatalogueRow& row : catalogue())
        index.emplace(foldName(fromUtf8(row.name)), &row);
    return index;
}

} // namespace

std::span<const CatalogueRow> catalogue() {
    static const std::vector<CatalogueRow> rows = readRows();
    return rows;
}

const CatalogueRow* findInCatalogue(std::u16string_view name) {
    static const auto index = indexRows();
    const auto row = index.find(foldName(name));
    return row == index.end() ? nullptr : row->second;
}

} // namespace host::calc
