#include "network/SigningKey.h"

#include "support/Files.h"
#include "support/desktop/ChildProcess.h"

using namespace Qt::Literals::StringLiterals;

SigningKey::SigningKey()
    : m_publicKey(
          shellOutput(m_folder.path(),
                      u"openssl genpkey -algorithm ed25519 -out release-key.pem; openssl pkey "
                      "-in release-key.pem -pubout -outform DER | tail -c 32 | base64"_s)) {}

QByteArray SigningKey::signatureOf(const QByteArray& package) const {
    writeFile(m_folder.filePath(u"veyla.deb"_s), package);
    return shellOutput(
        m_folder.path(),
        u"openssl pkeyutl -sign -rawin -inkey release-key.pem -in veyla.deb | base64 -w 0"_s);
}
