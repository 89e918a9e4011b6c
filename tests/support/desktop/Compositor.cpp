#include "support/desktop/Compositor.h"

#include "support/desktop/Wait.h"
#include "support/desktop/XClient.h"

Compositor::Compositor(const QProcessEnvironment& environment, const QStringList& extraArguments)
    : m_process(QStringLiteral("picom"),
                QStringList{QStringLiteral("--config"), QStringLiteral("/dev/null"),
                            QStringLiteral("--backend"), QStringLiteral("xrender")} +
                    extraArguments,
                environment) {
    const XClient client(environment.value(QStringLiteral("DISPLAY")));
    requireSoon("the compositor owns its selection",
                [&] { return client.selectionOwner(QStringLiteral("_NET_WM_CM_S0")) != XCB_NONE; });
}
