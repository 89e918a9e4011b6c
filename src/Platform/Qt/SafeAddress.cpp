#include "Platform/Qt/SafeAddress.h"

#include <QHostAddress>

using namespace Qt::Literals::StringLiterals;

bool isLoopback(const QUrl& url) {
    return url.host() == "localhost"_L1 || QHostAddress(url.host()).isLoopback();
}

bool isSecureAddress(const QUrl& url) {
    if (url.host().isEmpty()) return false;
    return url.scheme() == "https"_L1 || (url.scheme() == "http"_L1 && isLoopback(url));
}
