#include "network/SigningKey.h"

#include "support/Files.h"
#include "support/desktop/ChildProcess.h"
#include "support/desktop/Wait.h"

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray outputOf(const QString& commands, const QString& folder) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"FOLDER"_s, folder);
    ChildProcess shell(u"sh"_s, {u"-ec"_s, u"cd \"$FOLDER\"; "_s + commands}, environment);
    if (shell.waitForExit(defaultWait) != 0)
        throw std::runtime_error("openssl failed: " + shell.standardError().toStdString());
    return shell.standardOutput().trimmed();
}

}  // namespace

SigningKey::SigningKey()
    : m_publicKey(outputOf(u"openssl genpkey -algorithm ed25519 -out release-key.pem; openssl pkey "
                           "-in release-key.pem -pubout -outform DER | tail -c 32 | base64"_s,
                           m_folder.path())) {}

QByteArray SigningKey::signatureOf(const QByteArray& package) const {
    writeFile(m_folder.filePath(u"veyla.deb"_s), package);
    return outputOf(
        u"openssl pkeyutl -sign -rawin -inkey release-key.pem -in veyla.deb | "
        "base64 -w 0"_s,
        m_folder.path());
}
