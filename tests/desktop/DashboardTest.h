#pragma once

#include "desktop/VeylaTest.h"

#include <QJsonArray>
#include <QRegularExpression>

/// The dashboard of the running program, as a person and assistive technology use it.
class DashboardTest : public VeylaTest {
protected:
    // Keysyms.
    static constexpr std::uint32_t control = 0xffe3, alt = 0xffe9, super = 0xffeb, tab = 0xff09,
                                   enter = 0xff0d, escape = 0xff1b, right = 0xff53, down = 0xff54,
                                   f2 = 0xffbf, erase = 0xffff, space = 0x20;

    DashboardTest() : VeylaTest({.hasAccessibilityBus = true}) { startArguments.clear(); }

    /// Of the window that the desktop lists as the dashboard; XCB_NONE while there is none.
    xcb_window_t dashboard() const {
        for (const xcb_window_t id :
             probe.numbersOf(probe.root(), QStringLiteral("_NET_CLIENT_LIST")))
            if (probe.textOf(id, QStringLiteral("_NET_WM_NAME")) == u"Veyla" &&
                neighbour.isViewable(id))
                return id;
        return XCB_NONE;
    }
    /// With the decorations.
    QRect dashboardFrame() const {
        const auto window = probe.window(probe.topLevelOf(dashboard()));
        return window ? window->frame : QRect();
    }
    bool showsDashboard(bool isShown = true) {
        return waitUntil([&] { return (dashboard() != XCB_NONE) == isShown; }) &&
               status()[u"dashboardVisible"].toBool(!isShown) == isShown;
    }
    bool isInFront() const {
        // The window manager says so a moment before keys go there.
        return probe.activeWindow() == dashboard() && probe.focus() == dashboard();
    }
    void openDashboard() {
        start();
        requireSoon("the dashboard is in front",
                    [&] { return dashboard() != XCB_NONE && isInFront(); });
    }

    bool use(const QStringList& arguments) const {
        return assistiveClient(arguments)->waitForExit(defaultWait) == 0;
    }
    /// The elements on screen: identifier, name, role, states, rectangle.
    QList<QStringList> elements() const {
        const auto reader = assistiveClient({QStringLiteral("all")});
        if (reader->waitForExit(defaultWait) != 0)
            ADD_FAILURE() << reader->standardError().constData();
        QList<QStringList> all;
        for (const QString& line : linesOf(*reader))
            if (line.count(QStringLiteral(" | ")) == 4) all << line.split(QStringLiteral(" | "));
        return all;
    }
    /// The elements with that identifier or name.
    QList<QStringList> named(const QString& name) const {
        auto all = elements();
        all.removeIf([&](const auto& each) { return each[0] != name && each[1] != name; });
        return all;
    }
    QRect placeOf(const QString& name) const {
        const auto found = named(name);
        if (found.isEmpty()) throw std::runtime_error("there is no " + name.toStdString());
        const auto numbers = found.first()[4].split(QRegularExpression(QStringLiteral("[x+]")));
        return {numbers[2].toInt(), numbers[3].toInt(), numbers[0].toInt(), numbers[1].toInt()};
    }
    testing::AssertionResult shows(const QStringList& names) const {
        const auto missing = [&] {
            QStringList left = names;
            for (const QStringList& each : elements())
                left.removeIf([&](const auto& name) { return each[0] == name || each[1] == name; });
            return left;
        };
        return comesToBe(missing, QStringList());
    }

    /// A member of a mask, or of a group, as `status` tells.
    QJsonValue valueOf(const char* list, const char* member, qsizetype index = 0) {
        return status()[QLatin1String(list)].toArray().at(index)[QLatin1String(member)];
    }
    testing::AssertionResult becomes(const char* list, const char* member,
                                     const QJsonValue& value) {
        return comesToBe([&] { return valueOf(list, member); }, value);
    }

    /// The menu that is open on the screen.
    std::optional<XWindow> menu() const {
        // The window manager has a small window of that kind, too.
        for (const XWindow& window : probe.rootChildren())
            if (window.isMapped && window.isOverrideRedirect && window.frame.width() > 100 &&
                !probe.textOf(window.id, QStringLiteral("_VEYLA_MASK_ID")))
                return window;
        return std::nullopt;
    }

    void key(std::uint32_t keysym) { input.typeKeysyms({keysym}); }
    void shortcut(char letter) {
        input.typeKeysyms({control, alt, static_cast<std::uint32_t>(letter)});
    }

    /// From here on `focusChanges` tells what gets the keyboard.
    void watchFocus() { m_focusWatcher = assistiveWatcher(QStringLiteral("focus")); }
    QStringList focusChanges() const { return linesOf(*m_focusWatcher); }
    /// Presses Tab until the element has the keyboard.
    testing::AssertionResult tabTo(const QString& name) {
        for (int i = 0; i < 60; ++i) {
            const qsizetype before = focusChanges().size();
            key(tab);
            if (!waitUntil([&] { return focusChanges().size() > before; })) break;
            if (focusChanges().last().startsWith(name)) return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << focusChanges().join(u'\n').toStdString();
    }
    void pressIn(const QString& name, std::uint32_t keysym) {
        ASSERT_TRUE(tabTo(name)) << name.toStdString();
        key(keysym);
    }

    static QString rowOf(const QUuid& mask) { return QStringLiteral("mask-row-") + uuidText(mask); }
    QUuid addGroup() {
        workspace.groups.append({QUuid::createUuid(), QStringLiteral("Calls"), true, true, false});
        return workspace.groups.last().id;
    }

private:
    std::unique_ptr<ChildProcess> m_focusWatcher;
};
