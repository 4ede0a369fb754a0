#include "html/ParamVector.h"

#include <algorithm>

namespace {

template<class Params>
auto find(Params& params, std::string_view key) {
    return std::find_if(params.begin(), params.end(), [key](const auto& pair) { return pair.first == key; });
}

} // namespace

bool paramVectorHasKey(const ParamVector& params, std::string_view key) {
    return find(params, key) != params.end();
}

std::string paramVectorGetValue(const ParamVector& params, std::string_view key) {
    const auto pair = find(params, key);
    return pair == params.end() ? std::string() : pair->second;
}

void paramVectorEraseKey(ParamVector& params, std::string_view key) {
    const auto pair = find(params, key);
    if (pair != params.end()) params.erase(pair);
}
