#pragma once

#include "DashboardFixture.h"
#include "Views/MenuBar/MenuBarExtra.h"
#include "Views/MenuBar/MenuBarPanel.h"

/// The menu bar panel beside an icon, with the program's state on a desktop in memory.
class MenuBarFixture : public DashboardFixture {
protected:
    MenuBarFixture() { state().hasCompletedOnboarding.set(true); }

    void openPanel(const QRect& anchor = {300, 0, 24, 24}) {
        extra().togglePanel(anchor);
        findPanel();
        if (!QTest::qWaitForWindowActive(m_panel))
            throw std::runtime_error("the panel does not become active");
        advance(static_cast<int>(MenuBarPanel::keyboardDelay.count()));
    }
    void findPanel() {
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (auto* const panel = dynamic_cast<MenuBarPanel*>(window)) m_panel = panel;
    }
    MenuBarExtra& extra() {
        if (!m_extra)
            m_extra = std::make_unique<MenuBarExtra>(
                state(), desktop().mainLoop, desktop().trayIcon, desktop().pointerPresses,
                MenuBarExtra::Actions{[this] { m_calls << QStringLiteral("settings"); },
                                      [this] { m_calls << QStringLiteral("quit"); }});
        return *m_extra;
    }
    bool isOpen() const { return m_panel && m_panel->isVisible(); }

    /// Those on screen, top to bottom.
    template <typename View>
    QList<View*> shown() const {
        QList<View*> found;
        for (QWidget* const each : m_panel->findChildren<QWidget*>())
            if (auto* const view = dynamic_cast<View*>(each); view && each->isVisible())
                found << view;
        const auto top = [this](QWidget* view) { return view->mapTo(m_panel, QPoint()).y(); };
        std::stable_sort(found.begin(), found.end(),
                         [&](View* a, View* b) { return top(a) < top(b); });
        return found;
    }
    QWidget* part(const QString& name) const {
        for (QWidget* const each : shown<QWidget>())
            if (nameOf(each) == name || accessibleIdentifier(*each) == name) return each;
        return nullptr;
    }
    void key(Qt::Key which) {
        QTest::keyClick(m_panel->windowHandle(), which);
        settle();
    }
    void addPreset(const QString& name, int maskCount) {
        MaskPreset preset;
        preset.id = QUuid::createUuid();
        preset.name = name;
        preset.masks = QList<ScreenMask>(maskCount);
        state().presets.update([&](QList<MaskPreset>& all) { all.append(preset); });
    }
    QUuid addNamedMask(const QString& name) { return addMask(name, {100, 100, 320, 180}); }

    QStringList m_calls;
    std::unique_ptr<MenuBarExtra> m_extra;
    QPointer<MenuBarPanel> m_panel;
};
