#include "FMWrapper/FMXCalcEngine.h"

#include "host/calc/Engine.h"
#include "host/fmwrapper/Application.h"
#include "host/fmwrapper/Gate.h"
#include "host/values/Data.h"

#include <memory>
#include <string>
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
        const Environment& env = in<Environment>(_self);
        const auto statement = in<Text>(&expression).units(), fileName = in<Text>(&filename).units();
        const DataVect& values = in<DataVect>(&parameters);
        RowVect& rows = in<RowVect>(&result);
        if (!env.file) return host::calc::error::missingFile;
        auto answer = env.file->executeSql(statement, fileName, values);
        if (answer.error == 0) rows = std::move(answer.rows);
        return static_cast<fmx::errcode>(answer.error);
    });
}
fmx::ptrtype FM_ExprEnv_SessionID(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::ptrtype>(_x, [&] { return in<Environment>(_self).sessionId; });
}
fmx::ptrtype FM_ExprEnv_FileID(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::ptrtype>(_x, [&] { return in<Environment>(_self).fileId; });
}
fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                 const fmx::Text& functionName,
                                                 const fmx::Text& functionPrototype, short minArgs,
                                                 short maxArgs, fmx::uint32 compatibleFlags,
                                                 fmx::ExtPluginType funcPtr, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        host::Application* application = host::Application::current();
        if (application == nullptr) return host::calc::error::unspecific;
        return application->registerFunction(
            {.creator = in<host::QuadChar>(&pluginId),
             .id = functionId,
             .name = std::u16string(in<Text>(&functionName).units()),
             .prototype = std::u16string(in<Text>(&functionPrototype).units()),
             .minimum = minArgs,
             .maximum = maxArgs,
             .flags = compatibleFlags,
             .handler = funcPtr});
    });
}
fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                   fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        host::Application* application = host::Application::current();
        if (application == nullptr) return host::calc::error::unspecific;
        return application->unregisterFunction(in<host::QuadChar>(&pluginId), functionId);
    });
}

} // extern "C"
