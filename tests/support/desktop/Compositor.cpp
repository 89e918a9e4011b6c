#include "support/desktop/Compositor.h"

#include "support/desktop/Wait.h"
#include "support/desktop/XClient.h"

using namespace Qt::Literals::StringLiterals;

Compositor::Compositor(const QProcessEnvironment& environment)
    : m_process(u"picom"_s, {u"--config"_s, u"/dev/null"_s, u"--backend"_s, u"xrender"_s},
                environment) {
    const XClient client(environment.value(u"DISPLAY"_s));
    requireSoon("the compositor owns its selection",
                [&] { return client.selectionOwner(u"_NET_WM_CM_S0"_s) != XCB_NONE; });
}
