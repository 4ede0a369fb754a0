#pragma once

#include "host/values/Data.h"

#include <openssl/evp.h>
#include <string>

namespace host::calc {

/// The algorithm of a name, in capitals or not; SHA512 for an empty one, null for an unknown one. It belongs
/// to the library.
const EVP_MD* digestAlgorithm(const Data& name);

/// The digest's bytes; throws error 1200 when the library refuses.
std::string digestOf(const std::string& bytes, const EVP_MD* algorithm);

} // namespace host::calc
