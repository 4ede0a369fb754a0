#include "FMWrapper/FMXCalcEngine.h"

#include "host/calc/Engine.h"
#include "host/calc/Paths.h"
#include "host/fmwrapper/Application.h"
#include "host/fmwrapper/Gate.h"
#include "host/fmwrapper/GetNumbers.h"
#include "host/fmwrapper/Versions.h"
#include "host/values/Data.h"

#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

using host::Binary;
using host::Data;
using host::DataVect;
using host::DateTime;
using host::Decimal;
using host::ObjectClass;
using host::RowVect;
using host::Text;
using host::bridge::in;
using host::calc::Environment;
namespace gate = host::gate;

namespace {

const Data& valueAt(const void* self, fmx::uint32 position) { return *in<DataVect>(self).at(position); }

/// Evaluates the expression; the result stays unchanged on an error.
fmx::errcode evaluate(const Environment& environment, const Text& expression, Data& result) {
    const host::Application* application = host::Application::current();
    if (application == nullptr) return host::calc::error::missingFile;
    const auto answer = host::calc::evaluate(expression.units(), environment, application->functions());
    if (answer.error == 0) result = *answer.value;
    return static_cast<fmx::errcode>(answer.error);
}

/// Runs a statement; 0 where `rows` has the answer.
int executeSql(const void* self, const fmx::Text& statement, const fmx::Text& fileName,
               const fmx::DataVect& parameters, host::calc::SqlAnswer& answer) {
    const Environment& env = in<Environment>(self);
    const auto sql = in<Text>(&statement).units(), name = in<Text>(&fileName).units();
    const DataVect& values = in<DataVect>(&parameters);
    if (!env.file) return host::calc::error::missingFile;
    answer = env.file->executeSql(sql, name, values);
    return answer.error;
}

/// A change of what the calling plug-in has registered; 1200 where no host runs.
template<class Change>
fmx::errcode registration(fmx::_fmxcpt& slot, const Change& change) {
    return gate::code(slot, [&]() -> int {
        host::Application* application = host::Application::current();
        return application == nullptr ? host::calc::error::unspecific : change(*application);
    });
}

host::RegisteredFunction function(const fmx::QuadChar& creator, short id, const fmx::Text& name,
                                  const fmx::Text& prototype, std::u16string_view description, short minimum,
                                  short maximum, fmx::uint32 flags, fmx::ExtPluginType handler) {
    host::RegisteredFunction row{.creator = in<host::QuadChar>(&creator),
                                 .id = id,
                                 .name = std::u16string(in<Text>(&name).units()),
                                 .prototype = std::u16string(in<Text>(&prototype).units()),
                                 .minimum = minimum,
                                 .maximum = maximum,
                                 .flags = flags,
                                 .handler = handler};
    row.describe(description);
    return row;
}

using Convert = std::optional<std::u16string> (*)(std::u16string_view, host::calc::PathForm);

/// Converts a path; the result stays unchanged on an error.
fmx::errcode convertPath(fmx::_fmxcpt& slot, const fmx::Text& path, fmx::int32 form, fmx::Text& result,
                         Convert convert) {
    return gate::code(slot, [&]() -> int {
        Text& target = in<Text>(&result);
        auto converted = convert(in<Text>(&path).units(), static_cast<host::calc::PathForm>(form));
        if (!converted) return host::calc::error::outOfRange;
        target = Text(std::move(*converted));
        return host::calc::error::none;
    });
}

} // namespace

extern "C" {

fmx::DataVect* FM_DataVect_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::DataVect, ObjectClass::dataVect>(_x, [&] { return DataVect{}; });
}
void FM_DataVect_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<DataVect, ObjectClass::dataVect>(_self, _x);
}
fmx::uint32 FM_DataVect_Size(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uint32>(_x, [&] { return in<DataVect>(_self).size(); });
}
void FM_DataVect_Clear(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<DataVect>(_self).clear(); });
}
bool FM_DataVect_IsEmpty(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<DataVect>(_self).empty(); });
}
void FM_DataVect_PushBack(void* _self, const fmx::Data& value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<DataVect>(_self).push_back(std::make_shared<const Data>(in<Data>(&value))); });
}
fmx::Data* FM_DataVect_PopBack(void* _self, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::Data, ObjectClass::data>(_x, [&] {
        DataVect& values = in<DataVect>(_self);
        Data last(valueAt(_self, static_cast<fmx::uint32>(values.size() - 1)));
        values.pop_back();
        return last;
    });
}
const fmx::Data* FM_DataVect_At(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::Data, Data>(_x, [&]() -> const Data& { return valueAt(_self, position); });
}
const fmx::Text* FM_DataVect_AtAsText(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::Text, Text>(_x,
                                        [&]() -> const Text& { return valueAt(_self, position).asText(); });
}
const fmx::FixPt* FM_DataVect_AtAsNumber(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::FixPt, Decimal>(
        _x, [&]() -> const Decimal& { return valueAt(_self, position).asNumber(); });
}
const fmx::DateTime* FM_DataVect_AtAsDate(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DateTime, DateTime>(
        _x, [&]() -> const DateTime& { return valueAt(_self, position).asDate(); });
}
const fmx::DateTime* FM_DataVect_AtAsTime(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DateTime, DateTime>(
        _x, [&]() -> const DateTime& { return valueAt(_self, position).asTime(); });
}
const fmx::DateTime* FM_DataVect_AtAsTimeStamp(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DateTime, DateTime>(
        _x, [&]() -> const DateTime& { return valueAt(_self, position).asTimestamp(); });
}
bool FM_DataVect_AtAsBoolean(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return valueAt(_self, position).asBoolean(); });
}
const fmx::BinaryData* FM_DataVect_AtAsBinaryData(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::BinaryData, Binary>(
        _x, [&]() -> const Binary& { return valueAt(_self, position).asBinary(); });
}

fmx::RowVect* FM_RowVect_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::RowVect, ObjectClass::rowVect>(_x, [&] { return RowVect{}; });
}
void FM_RowVect_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<RowVect, ObjectClass::rowVect>(_self, _x);
}
fmx::uint32 FM_RowVect_Size(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uint32>(_x, [&] { return in<RowVect>(_self).size(); });
}
bool FM_RowVect_IsEmpty(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<RowVect>(_self).empty(); });
}
const fmx::DataVect* FM_RowVect_At(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DataVect, DataVect>(
        _x, [&]() -> const DataVect& { return in<RowVect>(_self).at(position); });
}

fmx::ExprEnv* FM_ExprEnv_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::ExprEnv, ObjectClass::exprEnv>(_x, [&] { return Environment{}; });
}
void FM_ExprEnv_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<Environment, ObjectClass::exprEnv>(_self, _x);
}
fmx::errcode FM_ExprEnv_Evaluate(const void* _self, const fmx::Text& expression, fmx::Data& result,
                                 fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        return evaluate(in<Environment>(_self), in<Text>(&expression), in<Data>(&result));
    });
}
fmx::errcode FM_ExprEnv_ExecuteFileSQL(const void* _self, const fmx::Text& expression,
                                       const fmx::Text& filename, const fmx::DataVect& parameters,
                                       fmx::RowVect& result, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        RowVect& rows = in<RowVect>(&result);
        host::calc::SqlAnswer answer;
        const int error = executeSql(_self, expression, filename, parameters, answer);
        if (error == 0) rows = std::move(answer.rows);
        return error;
    });
}
fmx::errcode FM_ExprEnv_ExecuteFileSQLTextResult(const void* _self, const fmx::Text& expression,
                                                 const fmx::Text& filename, const fmx::DataVect& parameters,
                                                 fmx::Data& result, fmx::uint16 columnSeparator,
                                                 fmx::uint16 rowSeparator, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_ExecuteFileSQLTextResult">();
    return gate::code(_x, [&]() -> int {
        Data& target = in<Data>(&result);
        host::calc::SqlAnswer answer;
        const int error = executeSql(_self, expression, filename, parameters, answer);
        const auto separator = [](fmx::uint16 unit) {
            return Text(std::u16string(1, static_cast<char16_t>(unit)));
        };
        if (error == 0) target.setText(answer.joined(separator(columnSeparator), separator(rowSeparator)));
        return error;
    });
}
fmx::errcode FM_ExprEnv_EvaluateGetFunction(const void* _self, short getFunctionId, fmx::Data& result,
                                            fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_EvaluateGetFunction">();
    return gate::code(_x, [&]() -> int {
        const Environment& env = in<Environment>(_self);
        Data& target = in<Data>(&result);
        const std::u16string_view name = host::getFunctionName(getFunctionId);
        if (name.empty()) return host::calc::error::invalidGetParameter;
        return evaluate(env, Text(u"Get ( " + std::u16string(name) + u" )"), target);
    });
}
fmx::errcode FM_ExprEnv_EvaluateConvertToFileMakerPath(const void* _self, const fmx::Text& inPath,
                                                       fmx::int32 format, fmx::Text& outPath,
                                                       fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_EvaluateConvertToFileMakerPath">();
    std::ignore = _self;
    return convertPath(_x, inPath, format, outPath, host::calc::appPath);
}
fmx::errcode FM_ExprEnv_EvaluateConvertFromFileMakerPath(const void* _self, const fmx::Text& inPath,
                                                         fmx::int32 format, fmx::Text& outPath,
                                                         fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_EvaluateConvertFromFileMakerPath">();
    std::ignore = _self;
    return convertPath(_x, inPath, format, outPath, host::calc::systemPath);
}
fmx::ptrtype FM_ExprEnv_SessionID(const void* _self, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_SessionID">();
    return gate::number<fmx::ptrtype>(_x, [&] { return in<Environment>(_self).sessionId; });
}
fmx::ptrtype FM_ExprEnv_FileID(const void* _self, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_FileID">();
    return gate::number<fmx::ptrtype>(_x, [&] { return in<Environment>(_self).fileId; });
}
fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                 const fmx::Text& functionName,
                                                 const fmx::Text& functionPrototype, short minArgs,
                                                 short maxArgs, fmx::uint32 compatibleFlags,
                                                 fmx::ExtPluginType funcPtr, fmx::_fmxcpt& _x) {
    return registration(_x, [&](host::Application& application) {
        return application.registerFunction(function(pluginId, functionId, functionName, functionPrototype,
                                                     {}, minArgs, maxArgs, compatibleFlags, funcPtr));
    });
}
fmx::errcode FM_ExprEnv_RegisterExternalFunctionEx(const fmx::QuadChar& pluginId, short functionId,
                                                   const fmx::Text& functionName,
                                                   const fmx::Text& functionPrototype,
                                                   const fmx::Text& functionDescription, short minArgs,
                                                   short maxArgs, fmx::uint32 compatibleFlags,
                                                   fmx::ExtPluginType funcPtr, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_RegisterExternalFunctionEx">();
    return registration(_x, [&](host::Application& application) {
        return application.registerFunction(function(pluginId, functionId, functionName, functionPrototype,
                                                     in<Text>(&functionDescription).units(), minArgs, maxArgs,
                                                     compatibleFlags, funcPtr));
    });
}
fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                   fmx::_fmxcpt& _x) {
    return registration(_x, [&](host::Application& application) {
        return application.unregisterFunction(in<host::QuadChar>(&pluginId), functionId);
    });
}
fmx::errcode FM_ExprEnv_RegisterScriptStep(const fmx::QuadChar& pluginId, short scriptStepId,
                                           const fmx::Text& scriptStepName,
                                           const fmx::Text& scriptStepDefinition,
                                           const fmx::Text& scriptStepDescription,
                                           fmx::uint32 compatibleFlags, fmx::ExtPluginType funcPtr,
                                           fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_RegisterScriptStep">();
    return registration(_x, [&](host::Application& application) {
        return application.registerStep(
            {.creator = in<host::QuadChar>(&pluginId),
             .id = scriptStepId,
             .name = std::u16string(in<Text>(&scriptStepName).units()),
             .definition = std::u16string(in<Text>(&scriptStepDefinition).units()),
             .description = std::u16string(in<Text>(&scriptStepDescription).units()),
             .flags = compatibleFlags,
             .handler = funcPtr});
    });
}
fmx::errcode FM_ExprEnv_UnRegisterScriptStep(const fmx::QuadChar& pluginId, short scriptStepId,
                                             fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_ExprEnv_UnRegisterScriptStep">();
    return registration(_x, [&](host::Application& application) {
        return application.unregisterStep(in<host::QuadChar>(&pluginId), scriptStepId);
    });
}

} // extern "C"
