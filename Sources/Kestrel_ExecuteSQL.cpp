#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"

/// SQL over the calling file's tables, through the host's own interface. Success is recorded as well.

namespace {

constexpr fmx::uint16 kTab = 0x0009;

/// The separator from a parameter: its first UTF-16 unit, which is half a character outside the basic plane.
/// A missing or empty parameter gives the default.
fmx::TextUniquePtr separatorAt(const fmx::DataVect& parameters, fmx::uint32 position,
                               fmx::uint16 defaultUnit) {
    fmx::uint16 unit = defaultUnit;
    if (parameters.Size() > position) {
        const fmx::Text& given = parameters.AtAsText(position);
        if (given.GetSize() > 0) given.GetUnicode(&unit, 0, 1);
    }
    fmx::TextUniquePtr separator;
    separator->AssignUnicodeWithLength(&unit, 1);
    return separator;
}

/// Every value as the host writes it, without quotation marks. No separator follows the last field or row.
void appendRows(const fmx::RowVect& rows, const fmx::Text& fieldSeparator, const fmx::Text& recordSeparator,
                fmx::Text& out) {
    const fmx::uint32 rowCount = rows.Size();
    for (fmx::uint32 row = 0; row < rowCount; ++row) {
        if (row > 0) out.AppendText(recordSeparator);
        const fmx::DataVect& fields = rows.At(row);
        const fmx::uint32 fieldCount = fields.Size();
        for (fmx::uint32 field = 0; field < fieldCount; ++field) {
            if (field > 0) out.AppendText(fieldSeparator);
            out.AppendText(fields.At(field).GetAsText());
        }
    }
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_ExecuteSQL(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() == 0) return fmx::errcode{0};
        const fmx::TextUniquePtr recordSeparator = separatorAt(parameters, 2, kReturn);
        const fmx::TextUniquePtr fieldSeparator = separatorAt(parameters, 1, kTab);

        const fmx::TextUniquePtr currentFile;
        const fmx::DataVectUniquePtr noParameters;
        const fmx::RowVectUniquePtr rows;
        const fmx::errcode code =
            env.ExecuteFileSQL(parameters.AtAsText(0), *currentFile, *noParameters, *rows);
        if (code != 0) return kst::answerWithError(code, "SQL Error", result, env);

        const fmx::TextUniquePtr answer;
        appendRows(*rows, *fieldSeparator, *recordSeparator, *answer);
        cFMUtils::resultFromText(*answer, result);
        kst::SetLastError(kst::kNoError, "No Error Message", env);
        return fmx::errcode{0};
    });
}
