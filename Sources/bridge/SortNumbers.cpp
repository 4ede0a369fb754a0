#include "bridge/SortNumbers.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
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

/// The text's bytes and at least one zero.
std::vector<char> bytesOf(const fmx::Text& text) {
    std::vector<char> bytes(std::size_t{text.GetSize()} + 1);
    const auto bufferSize = std::min<std::size_t>(
        bytes.size(), std::numeric_limits<fmx::uint32>::max()); // what the host can be told
    text.GetBytes(bytes.data(), static_cast<fmx::uint32>(bufferSize), 0, fmx::Text::kSize_End,
                  fmx::Text::kEncoding_ASCII_Mac);
    bytes.back() = '\0';
    return bytes;
}

std::vector<double> numbersIn(std::vector<char> bytes) {
    const OwnedLocale locale(::newlocale(LC_ALL_MASK, "C", nullptr));
    if (!locale) throw std::bad_alloc();
    std::vector<double> numbers;
    double number = 0;
    for (auto line = bytes.begin(); line != bytes.end();) {
        const auto end = std::find(line, bytes.end() - 1, '\r');
        *end = '\0'; // white space is skipped, and a return is white space: nothing reads past its line
        char* behind = nullptr;
        const double read = ::strtod_l(&*line, &behind, locale.get());
        if (behind != &*line) number = std::isnan(read) ? std::numeric_limits<double>::quiet_NaN() : read;
        numbers.push_back(number);
        line = end + 1;
    }
    return numbers;
}

/// A strict weak ordering of all doubles; the plain comparison is none where not-a-numbers occur.
bool comesBefore(double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; }

} // namespace

void SortNumberInFMText(const fmx::Text& text, fmx::Data& result) {
    std::vector<double> numbers = numbersIn(bytesOf(text));
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
