#include "support/AppStateFixture.h"

#include "support/Files.h"
#include "support/HeadlessPlatform.h"

using namespace Qt::Literals::StringLiterals;

AppStateFixture::AppStateFixture() {
    desktop().screens.setScreens({{u"A"_s, {0, 0, 1280, 800}, {0, 0, 1280, 770}, 1},
                                  {u"B"_s, {1280, 0, 1000, 600}, {1280, 0, 1000, 600}, 1}});
    desktop().screens.setPointerLocation({640, 400});
    restart();
}

void AppStateFixture::restart() {
    m_state.reset();
    m_state = std::make_unique<AppState>(
        headlessPlatform(desktop(), m_log, m_folder.filePath(u"Veyla"_s)));
}

HeadlessSurface& AppStateFixture::surface(qsizetype index) {
    return *desktop().overlaySurfaces.surfaceOf(masks().at(index).id);
}

void AppStateFixture::advance(int milliseconds) {
    desktop().mainLoop.advanceBy(std::chrono::milliseconds(milliseconds));
}

QString AppStateFixture::workspacePath() const {
    return m_folder.filePath(u"Veyla/workspace.json"_s);
}

QByteArray AppStateFixture::workspaceText() const {
    return readFile(workspacePath());
}

QUuid AppStateFixture::addMask(const QString& name, const Rect& frame) {
    ScreenMask mask;
    mask.id = QUuid::createUuid();
    mask.name = name;
    mask.frame = frame;
    m_state->masks.update([&](QList<ScreenMask>& all) { all.append(mask); });
    return mask.id;
}
