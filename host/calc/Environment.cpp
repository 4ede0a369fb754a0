#include "host/calc/Environment.h"

#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace host::calc {

std::u16string foldName(std::u16string_view name) {
    std::u16string folded(name.size(), u'\0');
    const auto isPlain = [](char16_t unit) { return unit < 0x80; };
    if (std::all_of(name.begin(), name.end(), isPlain)) {
        std::transform(name.begin(), name.end(), folded.begin(), [](char16_t unit) {
            return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
        });
        return folded;
    }
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t size =
            u_strFoldCase(folded.data(), static_cast<std::int32_t>(folded.size()), name.data(),
                          static_cast<std::int32_t>(name.size()), U_FOLD_CASE_DEFAULT, &status);
        if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) return std::u16string(name);
        folded.resize(static_cast<std::size_t>(size));
        if (U_SUCCESS(status)) return folded;
    }
}

DataRef Variables::value(std::u16string_view name, int repetition) const {
    static const DataRef empty = std::make_shared<const Data>();
    const auto variable = values_.find(foldName(name));
    if (variable == values_.end()) return empty;
    const auto value = variable->second.find(repetition);
    return value == variable->second.end() ? empty : value->second;
}

bool Variables::set(std::u16string_view name, int repetition, DataRef value) {
    if (repetition < 1 || repetition > maximumRepetition) return false;
    values_[foldName(name)][repetition] = std::move(value);
    return true;
}

} // namespace host::calc
