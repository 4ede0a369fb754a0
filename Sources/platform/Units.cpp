#include "platform/Units.h"

#include <exception>

namespace platform {
namespace {

constexpr unsigned short kReplacement = 0xFFFD;

bool isFirstHalf(unsigned short unit) { return unit >= 0xD800U && unit <= 0xDBFFU; }
bool isSecondHalf(unsigned short unit) { return unit >= 0xDC00U && unit <= 0xDFFFU; }

} // namespace

Units wellFormed(Units units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (isFirstHalf(units[i]) && i + 1 < units.size() && isSecondHalf(units[i + 1]))
            ++i;
        else if (isFirstHalf(units[i]) || isSecondHalf(units[i]))
            units[i] = kReplacement;
    }
    return units;
}

bool resize(Units& units, std::size_t size) noexcept {
    try {
        units.resize(size);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace platform
