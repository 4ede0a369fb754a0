#include "host/calc/Digest.h"

#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

struct Algorithm {
    std::u16string_view name; ///< folded
    const EVP_MD* (*algorithm)();
};
constexpr std::array algorithms{
    Algorithm{u"", EVP_sha512},       Algorithm{u"md5", EVP_md5},       Algorithm{u"sha1", EVP_sha1},
    Algorithm{u"sha224", EVP_sha224}, Algorithm{u"sha256", EVP_sha256}, Algorithm{u"sha384", EVP_sha384},
    Algorithm{u"sha512", EVP_sha512},
};

} // namespace

const EVP_MD* digestAlgorithm(const Data& name) {
    const std::u16string wanted = foldName(name.asText().units());
    const auto* const row = std::find_if(algorithms.begin(), algorithms.end(),
                                         [&](const Algorithm& known) { return known.name == wanted; });
    return row == algorithms.end() ? nullptr : row->algorithm();
}

std::string digestOf(const std::string& bytes, const EVP_MD* algorithm) {
    std::string digest(EVP_MAX_MD_SIZE, '\0');
    unsigned size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(digest.data()), &size,
                   algorithm, nullptr) != 1)
        throw Error{error::unspecific};
    digest.resize(size);
    return digest;
}

} // namespace host::calc
