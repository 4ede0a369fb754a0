#pragma once

#include <span>
#include <string>
#include <string_view>

/// The functions of the app: names, parameters and a sentence for each, whether the host has them or not.
/// The rows stand in functions.tsv.

namespace host::calc {

struct CatalogueRow {
    std::string_view category;
    std::string_view signature; ///< as it is written in a calculation: "Left ( text ; numberOfCharacters )"
    std::string_view name;      ///< the word that the signature begins with
    int minimum, maximum;       ///< counts of parameters; a maximum of -1 is no limit
    std::string_view needs;     ///< the part of the app that the function works with; empty for values alone
    std::string_view sentence;
};

/// Every row, by category. Texts are UTF-8 and live as long as the process.
std::span<const CatalogueRow> catalogue();
/// The row of a name in any case; null when the app has no such function.
const CatalogueRow* findInCatalogue(std::u16string_view name);

} // namespace host::calc
