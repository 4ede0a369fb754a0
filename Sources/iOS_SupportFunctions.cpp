#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXExtern.h"
#include "FMWrapper/FMXText.h"
#include "fmlib.h"

#include <stdexcept>
#include <string>

void fmlib::FillFMTextWithCurrentDatabaseFileName(fmx::Text& text, const fmx::ExprEnv& env) {
    const fmx::TextUniquePtr expression;
    expression->Assign("Get(FileName)");
    const fmx::DataUniquePtr name;
    const fmx::errcode err = env.Evaluate(*expression, *name);
    if (err != 0)
        throw std::logic_error("Check failed: err == 0; Get(FileName) gave error " + std::to_string(err));
    text.DeleteText(0);
    text.AppendText(name->GetAsText());
}
