#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Bytes.h"
#include "host/calc/Digest.h"
#include "host/values/Encoding.h"

#include <array>
#include <memory>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

/// Digests, authentication codes and encryption.

namespace host::calc {

namespace {

unsigned char* in(std::string& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }
const unsigned char* in(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// CryptDigest ( data ; algorithm )
DataRef cryptDigest(Arguments arguments) {
    const EVP_MD* const algorithm = digestAlgorithm(*arguments[1]);
    if (algorithm == nullptr) return questionMark();
    const std::string data = bytesOf(*arguments[0]);
    return fileResult(u"digest.data", digestOf(data, algorithm));
}

/// CryptAuthCode ( data ; algorithm ; key )
DataRef cryptAuthCode(Arguments arguments) {
    const EVP_MD* const algorithm = digestAlgorithm(*arguments[1]);
    if (algorithm == nullptr) return questionMark();
    const std::string data = bytesOf(*arguments[0]), key = bytesOf(*arguments[2]);
    std::string code(EVP_MAX_MD_SIZE, '\0');
    unsigned size = 0;
    if (HMAC(algorithm, key.data(), static_cast<int>(key.size()), in(data), data.size(), in(code), &size) ==
        nullptr)
        return questionMark();
    code.resize(size);
    return fileResult(u"authcode.data", code);
}

// --- Encryption: AES-256 in Galois/Counter Mode. An encrypted file is a salt, a nonce, the tag and the
// encrypted bytes of `packed`. ---

constexpr std::size_t kSaltSize = 16, kNonceSize = 12, kTagSize = 16, kKeySize = 32;
constexpr std::size_t kHeadSize = kSaltSize + kNonceSize + kTagSize;

struct FreeCipher {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using Cipher = std::unique_ptr<EVP_CIPHER_CTX, FreeCipher>;

/// The cipher for a key's text, ready for bytes; null when the library refuses. Making a key from a text is
/// slow on purpose, and counts as work.
Cipher cipherFor(const std::string& key, const std::string& head, bool isEncrypting) {
    constexpr int rounds = 10'000;
    Work::charge(rounds);
    std::string secret(kKeySize, '\0');
    Cipher cipher(EVP_CIPHER_CTX_new());
    const bool isReady = PKCS5_PBKDF2_HMAC(key.data(), static_cast<int>(key.size()), in(head), kSaltSize,
                                           rounds, EVP_sha256(), kKeySize, in(secret)) == 1 &&
                         EVP_CipherInit_ex(cipher.get(), EVP_aes_256_gcm(), nullptr, in(secret),
                                           in(head) + kSaltSize, isEncrypting ? 1 : 0) == 1;
    return isReady ? std::move(cipher) : nullptr;
}

/// The enciphered or deciphered bytes; nothing when the library refuses, as it does for a wrong tag.
std::optional<std::string> ciphered(const Cipher& cipher, const std::string& bytes) {
    std::string result(bytes.size(), '\0');
    int size = 0, rest = 0;
    if (EVP_CipherUpdate(cipher.get(), in(result), &size, in(bytes), static_cast<int>(bytes.size())) != 1 ||
        EVP_CipherFinal_ex(cipher.get(), in(result) + size, &rest) != 1)
        return std::nullopt;
    return result;
}

/// The bytes of a value that are encrypted: "T" and the text, or "C", the size of the file's name, the name
/// and the file's bytes.
std::string packed(const Data& value) {
    if (value.nativeType() != DataType::binary) return 'T' + bytesOf(value);
    const std::string name = toUtf8(value.asBinary().fileName().units());
    std::string size;
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        size += static_cast<char>(name.size() >> shift & 0xFFU);
    return 'C' + size + name + bytesOf(value);
}

DataRef unpacked(const std::string& bytes) {
    constexpr std::size_t sizeBytes = 4;
    if (bytes.starts_with('T')) return textResult(Text::fromUtf8(std::string_view(bytes).substr(1)));
    if (!bytes.starts_with('C') || bytes.size() < 1 + sizeBytes) return questionMark();
    std::size_t size = 0;
    for (std::size_t i = 1; i <= sizeBytes; ++i)
        size = size << 8U | static_cast<unsigned char>(bytes[i]);
    const std::string_view rest = std::string_view(bytes).substr(1 + sizeBytes);
    if (size > rest.size()) return questionMark();
    return fileResult(fromUtf8(rest.substr(0, size)), rest.substr(size));
}

std::optional<std::string> encrypted(const Data& value, const Data& key) {
    std::string head(kHeadSize, '\0');
    if (RAND_bytes(in(head), kSaltSize + kNonceSize) != 1) return std::nullopt;
    const Cipher cipher = cipherFor(bytesOf(key), head, true);
    if (!cipher) return std::nullopt;
    const auto bytes = ciphered(cipher, packed(value));
    if (!bytes || EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_GCM_GET_TAG, kTagSize,
                                      in(head) + kSaltSize + kNonceSize) != 1)
        return std::nullopt;
    return head + *bytes;
}

/// "?" for a wrong key and for bytes that are not, or no longer, as they were encrypted.
DataRef decrypted(const std::string& bytes, const Data& key) {
    if (bytes.size() < kHeadSize) return questionMark();
    std::string head = bytes.substr(0, kHeadSize);
    const Cipher cipher = cipherFor(bytesOf(key), head, false);
    if (!cipher || EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_GCM_SET_TAG, kTagSize,
                                       in(head) + kSaltSize + kNonceSize) != 1)
        return questionMark();
    const auto plain = ciphered(cipher, bytes.substr(kHeadSize));
    return plain ? unpacked(*plain) : questionMark();
}

DataRef cryptEncrypt(Arguments arguments) {
    const auto bytes = encrypted(*arguments[0], *arguments[1]);
    return bytes ? fileResult(u"encrypted.data", *bytes) : questionMark();
}

DataRef cryptEncryptBase64(Arguments arguments) {
    const auto bytes = encrypted(*arguments[0], *arguments[1]);
    return bytes ? asciiResult(base64Text(*bytes, kBase64Line)) : questionMark();
}

DataRef cryptDecrypt(Arguments arguments) { return decrypted(bytesOf(*arguments[0]), *arguments[1]); }

DataRef cryptDecryptBase64(Arguments arguments) {
    const auto bytes = bytesOfBase64(*arguments[0]);
    return bytes ? decrypted(*bytes, *arguments[1]) : questionMark();
}

constexpr std::array rows{
    EagerRow{u"CryptAuthCode", cryptAuthCode},
    EagerRow{u"CryptDecrypt", cryptDecrypt},
    EagerRow{u"CryptDecryptBase64", cryptDecryptBase64},
    EagerRow{u"CryptDigest", cryptDigest},
    EagerRow{u"CryptEncrypt", cryptEncrypt},
    EagerRow{u"CryptEncryptBase64", cryptEncryptBase64},
};

} // namespace

void addCryptFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
