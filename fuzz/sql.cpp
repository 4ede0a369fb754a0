#include "host/sql/Database.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

/// Runs any text as SQL statements, one a line, on tables like those of a small business. Any answer is
/// right, but a statement that fails has one of the two codes and no rows, and one that only queries changes
/// nothing.

namespace {

using namespace host;

constexpr const char* tables = R"(
CREATE TABLE Contacts (ID INTEGER PRIMARY KEY, Name TEXT, City TEXT, Born DATE, Wake TIME, Credit NUMERIC,
                       Seen TIMESTAMP, Phones TEXT, "Phones[2]" TEXT);
INSERT INTO Contacts VALUES (1, 'Ada Holm', 'Oslo', '1984-02-29', '06:30:00', 1200, '2024-03-01 08:15:00', '1', '2'),
                            (2, 'Bo', NULL, NULL, NULL, 350.5, NULL, NULL, NULL),
                            (3, 'dag', 'Oslo', '1962-05-01', '23:59:59', -40, '2023-12-31 23:59:59', NULL, '3');
CREATE TABLE Invoices (ID TEXT, "Contact ID" NUMERIC, Issued DATE, Amount NUMERIC, Note TEXT);
INSERT INTO Invoices VALUES ('INV-001', 1, '2024-01-08', 100, 'First'), ('INV-002', 1, NULL, 9.99, '50%');
)";

constexpr std::chrono::milliseconds kBudget{200};

std::u16string all(Database& database) {
    std::u16string text;
    for (const char16_t* const query : {u"SELECT * FROM Contacts", u"SELECT * FROM Invoices"})
        for (const DataVect& row : database.select(query, {}).rows)
            for (const DataRef& value : row)
                text.append(value->asText().units()) += u'\t';
    return text;
}

void check(const calc::SqlAnswer& answer) {
    const bool isRefused = answer.error == 8309 || answer.error == 8310;
    if (answer.error != 0 && (!isRefused || !answer.rows.empty())) std::abort();
    for (const DataVect& row : answer.rows)
        for (const DataRef& value : row)
            if (!value) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = fromUtf8({reinterpret_cast<const char*>(data), size});
    const DataVect parameters{std::make_shared<const Data>(Text(u"Oslo")),
                              std::make_shared<const Data>(Decimal(3)),
                              std::make_shared<const Data>(DateTime{700'000, 0}, DataType::date)};
    Database database(tables, {}, kBudget);
    const std::u16string before = all(database);
    std::u16string_view rest = text;
    while (!rest.empty()) {
        const std::u16string_view statement = rest.substr(0, rest.find(u'\n'));
        rest.remove_prefix(std::min(rest.size(), statement.size() + 1));
        check(database.select(statement, parameters));
        if (all(database) != before) std::abort();
    }
    rest = text;
    while (!rest.empty()) {
        const std::u16string_view statement = rest.substr(0, rest.find(u'\n'));
        rest.remove_prefix(std::min(rest.size(), statement.size() + 1));
        check(database.execute(statement, parameters));
    }
    return 0;
}
