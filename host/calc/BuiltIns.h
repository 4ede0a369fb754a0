#pragma once

#include "host/calc/Engine.h"
#include "host/calc/Evaluation.h"

#include <cstddef>
#include <span>
#include <string_view>

/// The families of built-in functions, each a table of rows, and the tools that their implementations share.

namespace host::calc {

void addTextFunctions(FunctionTable& table);
void addTrimFunctions(FunctionTable& table);
void addConversionFunctions(FunctionTable& table);
void addListFunctions(FunctionTable& table);
void addSortFunctions(FunctionTable& table);
void addAggregateFunctions(FunctionTable& table);
void addRepeatingFunctions(FunctionTable& table);
void addJapaneseFunctions(FunctionTable& table);
void addNumberFunctions(FunctionTable& table);
void addRealFunctions(FunctionTable& table);
void addFinancialFunctions(FunctionTable& table);
void addDateFunctions(FunctionTable& table);
void addLogicFunctions(FunctionTable& table);
void addGetFunctions(FunctionTable& table);
void addFieldFunctions(FunctionTable& table);
void addStyleFunctions(FunctionTable& table);
void addJsonFunctions(FunctionTable& table);
void addEncodingFunctions(FunctionTable& table);
void addCryptFunctions(FunctionTable& table);
void addSignatureFunctions(FunctionTable& table);
void addContainerFunctions(FunctionTable& table);
void addMarkupFunctions(FunctionTable& table);

DataRef textResult(Text text);
DataRef numberResult(Decimal number);
DataRef booleanResult(bool value);
DataRef emptyResult();
/// The result of an impossible operation (a division by zero): the text "?", of no type.
DataRef questionMark();

/// A text may not outgrow this; beyond, the calculation's error is 1200.
inline constexpr std::size_t kMostUnits = std::size_t{1} << 28U;
/// Throws that error for a text of so many units.
inline void checkTextSize(std::size_t units) {
    if (units > kMostUnits) throw Error{error::unspecific};
}

/// A row of a family's table: a function that needs its arguments alone.
struct EagerRow {
    std::u16string_view name;
    DataRef (*implementation)(std::span<const DataRef>);
    int listSize = 0; ///< as in Function
};
/// A function that also needs the evaluation.
struct EvaluationRow {
    std::u16string_view name;
    DataRef (*implementation)(Evaluation&, std::span<const DataRef>);
    Form form = Form::values;
};
/// A function that evaluates its own arguments.
struct LazyRow {
    std::u16string_view name;
    DataRef (*implementation)(Evaluation&, std::span<const Node* const>);
    Form form = Form::values;
};

void addRow(FunctionTable& table, const EagerRow& row);
void addRow(FunctionTable& table, const EvaluationRow& row);
void addRow(FunctionTable& table, const LazyRow& row);

/// Adds every row of a table.
template<typename Rows>
void addRows(FunctionTable& table, const Rows& rows) {
    for (const auto& row : rows)
        addRow(table, row);
}

} // namespace host::calc
