#pragma once

#include "host/values/Data.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// Arguments of functions.

namespace bench {

inline host::DataRef shared(host::Data value) { return std::make_shared<const host::Data>(std::move(value)); }
inline host::DataRef shared(host::Text text) { return shared(host::Data(std::move(text))); }

inline host::DataVect texts(std::initializer_list<std::u16string> values) {
    host::DataVect arguments;
    for (const std::u16string& value : values)
        arguments.push_back(shared(host::Text(value)));
    return arguments;
}

/// The piece repeated and cut at the size.
inline std::u16string repeated(std::u16string_view piece, std::size_t size) {
    std::u16string text;
    text.reserve(size + piece.size());
    while (text.size() < size)
        text += piece;
    text.resize(size);
    return text;
}

/// A list of `lines` numbers in no order.
inline std::u16string unsortedNumbers(std::size_t lines) {
    constexpr std::size_t stride = 7'919; // a prime
    std::u16string list;
    for (std::size_t line = 0; line < lines; ++line) {
        const std::string number = std::to_string(line * stride % lines) + "\r";
        list.append(number.begin(), number.end());
    }
    return list;
}

/// The statements that create a table "people" of `count` rows.
inline std::string peopleInTable(int count) {
    return "CREATE TABLE people (id INTEGER PRIMARY KEY, name TEXT, city TEXT, born DATE);"
           "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
           std::to_string(count) +
           ") INSERT INTO people SELECT i, 'Ada Brandström ' || i, 'Stockholm', "
           "date('1950-01-01', i % 20000 || ' days') FROM n;";
}

} // namespace bench
