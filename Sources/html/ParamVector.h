#pragma once

/// The parameters of a conversion, line by line: pairs of a key and a value, in order. Keys may repeat; the
/// first one counts.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

using ParamVector = std::vector<std::pair<std::string, std::string>>;

bool paramVectorHasKey(const ParamVector& params, std::string_view key);
/// The value of the first pair with the key; empty when there is none.
std::string paramVectorGetValue(const ParamVector& params, std::string_view key);
/// Removes the first pair with the key.
void paramVectorEraseKey(ParamVector& params, std::string_view key);
