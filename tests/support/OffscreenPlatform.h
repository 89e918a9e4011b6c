#pragma once

#include <QString>

/// Makes the application that is made next run without a display. Its platform says at every use of
/// a window what it cannot do, which is dropped.
inline void useOffscreenPlatform() {
    static QtMessageHandler former = nullptr;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    former = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (!text.startsWith(u"This plugin does not support")) former(type, context, text);
        });
}
