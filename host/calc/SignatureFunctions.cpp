#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Bytes.h"
#include "host/calc/Digest.h"

#include <algorithm>
#include <array>
#include <memory>
#include <openssl/asn1.h>
#include <openssl/bio.h>
#include <openssl/decoder.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

/// Signatures of RSA keys (PKCS #1 v1.5) that come as PEM texts.

namespace host::calc {

namespace {

template<typename Type, void (*release)(Type*)>
struct Release {
    void operator()(Type* object) const { release(object); }
};
template<typename Type, void (*release)(Type*)>
using Owned = std::unique_ptr<Type, Release<Type, release>>;
using Key = Owned<EVP_PKEY, EVP_PKEY_free>;
using Digester = Owned<EVP_MD_CTX, EVP_MD_CTX_free>;
using Decoder = Owned<OSSL_DECODER_CTX, OSSL_DECODER_CTX_free>;
using Encrypted = Owned<X509_SIG, X509_SIG_free>;

const unsigned char* in(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// Texts of calculations have returns at the ends of their lines; the library reads line feeds.
std::string pemText(const Data& value) {
    std::string text = bytesOf(value);
    std::replace(text.begin(), text.end(), '\r', '\n');
    return text;
}

/// The rounds that the maker of an encrypted key chose for making the cipher's key from the password; -1
/// where the key does not say them. A key that is not encrypted has 0.
std::int64_t passwordRounds(const std::string& pem) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> source(
        BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), BIO_free);
    const Encrypted key(PEM_read_bio_PKCS8(source.get(), nullptr, nullptr, nullptr));
    if (!key) return 0;
    const X509_ALGOR* algorithm = nullptr;
    X509_SIG_get0(key.get(), &algorithm, nullptr);
    const std::unique_ptr<PBE2PARAM, decltype(&PBE2PARAM_free)> scheme(
        static_cast<PBE2PARAM*>(ASN1_TYPE_unpack_sequence(ASN1_ITEM_rptr(PBE2PARAM), algorithm->parameter)),
        PBE2PARAM_free);
    if (!scheme || OBJ_obj2nid(scheme->keyfunc->algorithm) != NID_id_pbkdf2) return -1;
    const std::unique_ptr<PBKDF2PARAM, decltype(&PBKDF2PARAM_free)> derivation(
        static_cast<PBKDF2PARAM*>(
            ASN1_TYPE_unpack_sequence(ASN1_ITEM_rptr(PBKDF2PARAM), scheme->keyfunc->parameter)),
        PBKDF2PARAM_free);
    return derivation ? ASN1_INTEGER_get(derivation->iter) : -1;
}

/// Reads an RSA key of at most 8192 bits; null for any other text, or a wrong password. The work of using the
/// key, which grows with the cube of its size, is counted here.
Key keyOf(const std::string& pem, int selection, const std::string& password) {
    constexpr int mostBits = 8192;
    EVP_PKEY* read = nullptr;
    const Decoder decoder(
        OSSL_DECODER_CTX_new_for_pkey(&read, "PEM", nullptr, "RSA", selection, nullptr, nullptr));
    if (!decoder) return nullptr;
    OSSL_DECODER_CTX_set_passphrase(decoder.get(), in(password), password.size());
    const unsigned char* data = in(pem);
    std::size_t size = pem.size();
    const bool isRead = OSSL_DECODER_from_data(decoder.get(), &data, &size) == 1;
    Key key(read);
    if (!isRead || !key || EVP_PKEY_get_bits(key.get()) > mostBits) return nullptr;
    const auto blocks = static_cast<std::size_t>(EVP_PKEY_get_bits(key.get())) / 64;
    Work::charge(blocks * blocks * blocks / 16);
    return key;
}

Key privateKey(const Data& pem, const Data& password) {
    constexpr std::int64_t mostRounds = 1'000'000;
    const std::string text = pemText(pem);
    const std::int64_t rounds = passwordRounds(text);
    if (rounds < 0 || rounds > mostRounds) return nullptr;
    Work::charge(static_cast<std::size_t>(rounds));
    return keyOf(text, EVP_PKEY_KEYPAIR, bytesOf(password));
}

/// CryptGenerateSignature ( data ; algorithm ; privateRSAKey ; keyPassword )
DataRef generateSignature(Arguments arguments) {
    const EVP_MD* const algorithm = digestAlgorithm(*arguments[1]);
    const Key key = privateKey(*arguments[2], *arguments[3]);
    if (algorithm == nullptr || !key) return questionMark();
    const std::string data = bytesOf(*arguments[0]);
    const Digester digester(EVP_MD_CTX_new());
    std::string signature(static_cast<std::size_t>(EVP_PKEY_get_size(key.get())), '\0');
    std::size_t size = signature.size();
    if (EVP_DigestSignInit(digester.get(), nullptr, algorithm, nullptr, key.get()) != 1 ||
        EVP_DigestSign(digester.get(), reinterpret_cast<unsigned char*>(signature.data()), &size, in(data),
                       data.size()) != 1)
        return questionMark();
    signature.resize(size);
    return fileResult(u"signature.data", signature);
}

/// CryptVerifySignature ( data ; algorithm ; publicRSAKey ; signature )
DataRef verifySignature(Arguments arguments) {
    const EVP_MD* const algorithm = digestAlgorithm(*arguments[1]);
    const Key key = keyOf(pemText(*arguments[2]), EVP_PKEY_PUBLIC_KEY, {});
    if (algorithm == nullptr || !key) return questionMark();
    const std::string data = bytesOf(*arguments[0]), signature = bytesOf(*arguments[3]);
    const Digester digester(EVP_MD_CTX_new());
    return booleanResult(
        EVP_DigestVerifyInit(digester.get(), nullptr, algorithm, nullptr, key.get()) == 1 &&
        EVP_DigestVerify(digester.get(), in(signature), signature.size(), in(data), data.size()) == 1);
}

constexpr std::array rows{
    EagerRow{u"CryptGenerateSignature", generateSignature},
    EagerRow{u"CryptVerifySignature", verifySignature},
};

} // namespace

void addSignatureFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
