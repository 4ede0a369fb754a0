#include "bridge/cFMUtils.h"

#include "bridge/StringUtils.h"

#include <algorithm>

std::vector<char> cFMUtils::CharsFromFMText(const fmx::Text& text) {
    const std::string bytes = bytesFromFMText(text, text.GetSize());
    return {bytes.c_str(), bytes.c_str() + bytes.size() + 1};
}

std::string cFMUtils::StringFromFmxText(const fmx::Text& text, bool /*unused*/) {
    std::string result = bytesFromFMText(text, text.GetSize());
    std::erase(result, '\0');
    return result;
}

std::wstring cFMUtils::WStringFromFMText(const fmx::Text& text) {
    const Units units = unitsFromFMText(text);
    return {units.begin(), units.end()};
}

fmx::TextUniquePtr cFMUtils::getUTF16data(const std::string& utf8) {
    fmx::TextUniquePtr text;
    assignUnits(*text, utf16FromUtf8(utf8));
    return text;
}

fmx::TextUniquePtr cFMUtils::FMXTextUniquePtrFromString(const std::string& s) {
    fmx::TextUniquePtr text;
    text->AssignWithLength(s.data(), hostLength(s.size()), fmx::Text::kEncoding_Native);
    return text;
}

void cFMUtils::resultFromText(const fmx::Text& text, fmx::Data& result) {
    result.SetAsText(text, result.GetLocale());
}

void cFMUtils::FMResultFromString(const std::string& s, fmx::Data& result) {
    resultFromText(*getUTF16data(s), result);
}

void cFMUtils::FMResultFromInt(int number, fmx::Data& result) {
    FMResultFromString(std::to_string(number), result);
}

std::vector<std::string> cFMUtils::StringVectorFromDataVect(const fmx::DataVect& values) {
    std::vector<std::string> strings;
    const fmx::uint32 count = values.Size();
    strings.reserve(count);
    for (fmx::uint32 i = 0; i < count; ++i)
        strings.push_back(StringFromFmxText(values.AtAsText(i)));
    return strings;
}

void cFMUtils::StringVectorToDataVect(fmx::DataVectUniquePtr& values, std::vector<std::string>& strings) {
    for (const std::string& s : strings) {
        const fmx::DataUniquePtr value;
        value->SetAsText(*FMXTextUniquePtrFromString(s), value->GetLocale());
        values->PushBack(*value);
    }
}

std::string cFMUtils::StringCRFromDataVect(const fmx::DataVect& values) {
    std::string joined;
    for (const std::string& s : StringVectorFromDataVect(values))
        joined.append(s).push_back('\r');
    return joined;
}

unsigned cFMUtils::FindFMTextInArray(const fmx::Text& text, const char* const table[], unsigned count) {
    const fmx::TextUniquePtr wanted;
    wanted->SetText(text);
    wanted->Lowercase();
    const fmx::TextUniquePtr entry;
    for (unsigned i = 0; i < count; ++i) {
        entry->Assign(table[i]);
        entry->Lowercase();
        if (*wanted == *entry) return i;
    }
    return kNotFound;
}

std::string cFMUtils::evaluateCalculation(const std::string& calculation, const fmx::ExprEnv& env) {
    const fmx::DataUniquePtr value;
    const fmx::errcode error = env.Evaluate(*FMXTextUniquePtrFromString(calculation), *value);
    return error == 0 ? StringFromFmxText(value->GetAsText()) : "?";
}

fmx::errcode cFMUtils::getFromEnvironment(const fmx::ExprEnv& env, const std::string& name, fmx::Data& out) {
    return env.Evaluate(*FMXTextUniquePtrFromString("Get ( " + name + ")"), out);
}

std::string cFMUtils::getFromEnvironmentAsString(const fmx::ExprEnv& env, const std::string& name) {
    const fmx::DataUniquePtr value;
    if (getFromEnvironment(env, name, *value) != 0) return {};
    return StringFromFmxText(value->GetAsText());
}

std::string cFMUtils::getFileID(const fmx::ExprEnv& env) {
    std::string id = getFromEnvironmentAsString(env, "FilePath");
    id = id.substr(0, id.rfind('.'));
    std::replace(id.begin(), id.end(), '/', '-');
    std::erase(id, ':');
    return id + getFromEnvironmentAsString(env, "UserName");
}
