#include "selectors/SortNumbers.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale.h> // newlocale: POSIX, not in <clocale>
#include <locale>
#include <memory>
#include <new>
#include <sstream>
#include <stdlib.h> // strtod_l: POSIX, not in <cstdlib>
#include <string>
#include <type_traits>
#include <vector>
#if defined(__APPLE__)
#include <xlocale.h> // where Apple declares strtod_l
#endif

namespace {

struct FreeLocale {
    void operator()(locale_t locale) const { ::freelocale(locale); }
};
using OwnedLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

/// The number of every line.
std::vector<double> numbersIn(std::string bytes) {
    bytes.push_back('\0'); // the end of the last line
    const OwnedLocale locale(::newlocale(LC_ALL_MASK, "C", nullptr));
    if (!locale) throw std::bad_alloc();
    std::vector<double> numbers;
    double number = 0;
    for (auto line = bytes.begin(); line != bytes.end();) {
        const auto end = std::find(line, bytes.end() - 1, '\r');
        // A return is white space, which strtod_l skips: without the zero it would read the next line's
        // number.
        *end = '\0';
        char* endOfNumber = nullptr;
        const double read = ::strtod_l(&*line, &endOfNumber, locale.get());
        if (endOfNumber != &*line)
            number = std::isnan(read) ? std::numeric_limits<double>::quiet_NaN() : read;
        numbers.push_back(number);
        line = end + 1;
    }
    return numbers;
}

/// A strict weak ordering of all doubles. The plain comparison is none when a not-a-number occurs.
bool comesBefore(double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; }

} // namespace

void SortNumberInFMText(const fmx::Text& text, fmx::Data& result) {
    std::vector<double> numbers =
        numbersIn(bytesFromFMText(text, text.GetSize(), fmx::Text::kEncoding_ASCII_Mac));
    std::sort(numbers.begin(), numbers.end(), comesBefore);
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    for (const double number : numbers)
        stream << number << '\r';
    const std::string bytes = stream.str();
    const fmx::TextUniquePtr sorted;
    sorted->AssignWithLength(bytes.data(), hostLength(bytes.size()), fmx::Text::kEncoding_ASCII_Mac);
    cFMUtils::resultFromText(*sorted, result);
}
