#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

/// Ed25519 signatures as in RFC 8032, made by OpenSSL.
namespace Ed25519 {

inline constexpr qsizetype keySize = 32;
inline constexpr qsizetype signatureSize = 64;

/// The bytes of a key or of a signature in Base64; nothing unless there are exactly so many.
std::optional<QByteArray> decode(const QByteArray& base64, qsizetype size);

/// Whether the holder of the key has signed exactly these bytes. False also when the key or the
/// signature has the wrong size, or the library cannot tell.
bool isSigned(QByteArrayView bytes, const QByteArray& signature, const QByteArray& publicKey);

}  // namespace Ed25519
