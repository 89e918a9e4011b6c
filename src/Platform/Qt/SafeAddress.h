#pragma once

#include <QUrl>

/// Whether the host is this machine itself: "localhost" or a loopback address.
bool isLoopback(const QUrl& url);

/// Whether what is fetched from there can be neither read nor replaced on the way: https, or http
/// from this machine.
bool isSecureAddress(const QUrl& url);
