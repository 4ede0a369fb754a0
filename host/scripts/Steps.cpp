#include "host/scripts/Steps.h"

#include "host/calc/Environment.h"

#include <map>
#include <string>

namespace host::scripts {

const StepRow* stepNamed(std::u16string_view name) {
    using Rows = std::map<std::u16string, const StepRow*, std::less<>>;
    static const Rows rows = [] {
        Rows found;
        for (const auto table :
             {controlSteps(), fieldSteps(), recordSteps(), transactionSteps(), windowSteps()})
            for (const StepRow& row : table) {
                const std::u16string folded = calc::foldName(row.name);
                found.emplace(folded, &row);
                found.emplace(folded.substr(0, folded.find(u'/')), &row);
            }
        return found;
    }();
    const auto found = rows.find(calc::foldName(name));
    return found == rows.end() ? nullptr : found->second;
}

} // namespace host::scripts
