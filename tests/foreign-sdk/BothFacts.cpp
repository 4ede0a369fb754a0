#include "FMWrapper/FMXCalcEngine.h"

/// Must not compile with the headers of make.sh: an include is missing before this one, and both calls are
/// deprecated.
bool isKnown(const fmx::Data& data, fmx::Text& name, fmx::CharacterStyle::FontScript script,
             const fmx::ExprEnv& env) {
    return data.GetFontInfo(data.GetFontID(name, script, env), name, script, env);
}
