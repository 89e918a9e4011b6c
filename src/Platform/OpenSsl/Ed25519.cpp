#include "Platform/OpenSsl/Ed25519.h"

#include <memory>
#include <openssl/evp.h>

namespace {

struct Release {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const unsigned char* octets(QByteArrayView bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

size_t sizeOf(QByteArrayView bytes) {
    return static_cast<size_t>(bytes.size());
}

}  // namespace

std::optional<QByteArray> Ed25519::decode(const QByteArray& base64, qsizetype size) {
    const auto decoded = QByteArray::fromBase64Encoding(
        base64.trimmed(), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() != size) return std::nullopt;
    return decoded.decoded;
}

bool Ed25519::isSigned(QByteArrayView bytes, const QByteArray& signature,
                       const QByteArray& publicKey) {
    if (signature.size() != signatureSize || publicKey.size() != keySize) return false;
    const std::unique_ptr<EVP_PKEY, Release> key(EVP_PKEY_new_raw_public_key(
        EVP_PKEY_ED25519, nullptr, octets(publicKey), sizeOf(publicKey)));
    const std::unique_ptr<EVP_MD_CTX, Release> context(EVP_MD_CTX_new());
    return key && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), octets(signature), sizeOf(signature), octets(bytes),
                            sizeOf(bytes)) == 1;
}
