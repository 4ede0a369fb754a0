#pragma once

#include "host/fmwrapper/Application.h"
#include "host/values/Data.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// A parameter that a script gives to a plug-in's step.
struct StepArgument {
    std::u16string label; ///< of the parameter that it is for; empty: the next one without a value
    DataRef value;
};

struct StepOutcome {
    int error = 0;       ///< the step's own, or 1200 to 1202 for arguments that do not fit
    std::string message; ///< UTF-8, why the arguments do not fit or what the plug-in says about its error
    DataRef result;      ///< never null; a script puts it where its target says
};

/// The parameter that a text `Label: calculation` names, and the calculation. Null, and the whole text, where
/// the step has no such label.
std::pair<const StepParameter*, std::u16string_view> splitLabel(const RegisteredStep& step,
                                                                std::u16string_view text);

/// The values for a step's handler, in the order of the parameters' identifiers: targets are left out, what
/// is missing has its default, a boolean is 1 or 0, and a value is of the parameter's data type where it can
/// be converted. Throws calc::Error with a sentence for a label that the step lacks, for too many arguments
/// and for a value that a list lacks.
DataVect stepValues(const RegisteredStep& step, const std::vector<StepArgument>& arguments);

namespace scripts {

struct StepRow;

/// The row of every step that a plug-in may have registered. Its options are the parameters as they were
/// written, labels included.
const StepRow& plugInStep();

} // namespace scripts

} // namespace host
