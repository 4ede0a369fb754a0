#include "FMWrapper/FMXCalcEngine.h"

/// Does not compile with the headers of make.sh: a header is missing before this one, and both calls are
/// deprecated.
bool isKnown(const fmx::Data& data, fmx::Text& name, fmx::CharacterStyle::FontScript script,
             const fmx::ExprEnv& env) {
    return data.GetFontInfo(data.GetFontID(name, script, env), name, script, env);
}
