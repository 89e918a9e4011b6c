#pragma once

#include "Models/MaskGroup.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/DashboardView.h"
#include "support/AppStateFixture.h"
#include "support/Printing.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QScrollArea>
#include <QTest>
#include <algorithm>
#include <stdexcept>

/// The dashboard, or another window, on an in-memory desktop, used with pointer and keyboard. Only
/// what is on screen is found.
class DashboardFixture : public AppStateFixture {
protected:
    void open(QSize size = {1180, 740}) {
        auto view = std::make_unique<DashboardView>(state(), desktop().mainLoop);
        view->resize(size);
        show(std::move(view));
    }
    /// With a selected mask.
    void openWithMask(QSize size = {1180, 740}, const Rect& frame = {100, 100, 320, 180}) {
        addMask(QStringLiteral("Mask 1"), frame);
        state().selectMask(mask().id);
        open(size);
    }
    /// Uses another window from here on.
    void show(std::unique_ptr<QWidget> window) {
        m_view = std::move(window);
        m_view->show();
        if (!QTest::qWaitForWindowActive(m_view.get()))
            throw std::runtime_error("the window does not become active");
        settle();
    }

    /// Lets everything that is due happen.
    void settle() {
        advance(0);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    /// What assistive technology calls it.
    static QString nameOf(QWidget* view) {
        return QAccessible::queryAccessibleInterface(view)->text(QAccessible::Name);
    }

    // Who looks for something lets it come first.

    /// Null when there is none.
    QWidget* find(const std::function<bool(QWidget*)>& isWanted) {
        settle();
        const auto views = m_view->findChildren<QWidget*>();
        const auto found = std::find_if(views.begin(), views.end(), [&](QWidget* view) {
            return view->isVisible() && isWanted(view);
        });
        return found == views.end() ? nullptr : *found;
    }
    /// By name or identifier.
    QWidget* findNamed(const QString& name) {
        return find([&](QWidget* each) {
            return nameOf(each) == name || accessibleIdentifier(*each) == name;
        });
    }
    bool has(const QString& name) { return findNamed(name) != nullptr; }
    /// Throws std::runtime_error when there is none.
    QWidget* view(const QString& name) {
        QWidget* const found = findNamed(name);
        if (!found) throw std::runtime_error("there is no " + name.toStdString());
        return found;
    }

    bool isOn(const QString& name) {
        return static_cast<QAbstractButton*>(view(name))->isChecked();
    }

    /// The views of a class that has no meta-object of its own.
    template <typename View>
    QList<View*> all() {
        settle();
        QList<View*> found;
        for (QWidget* const each : m_view->findChildren<QWidget*>())
            if (auto* const view = dynamic_cast<View*>(each)) found << view;
        return found;
    }

    /// Scrolls to it, as a person would, and clicks.
    void click(QWidget* view) {
        QWidget* const window = view->window();
        for (QWidget* each = view; each; each = each->parentWidget())
            if (auto* const area = qobject_cast<QScrollArea*>(each))
                area->ensureWidgetVisible(view);
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                          view->mapTo(window, view->rect().center()));
        settle();
    }
    void click(const QString& name) { click(view(name)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(m_view->windowHandle(), key, modifiers);
        settle();
    }
    void type(const QString& text) {
        QWidget* const field = QApplication::focusWidget();
        ASSERT_NE(field, nullptr);
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(field, Qt::Key_Delete);
        QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, {}, text);
        QCoreApplication::sendEvent(field, &event);
        settle();
    }

    static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    /// Opens the context menu, or null where there is none.
    QMenu* contextMenu(QWidget* view) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {4, 4}, view->mapToGlobal(QPoint(4, 4)));
        QCoreApplication::sendEvent(view, &event);
        settle();
        return openMenu();
    }
    static QStringList titles(const QMenu* menu) {
        QStringList all;
        for (const QAction* const action : menu->actions())
            all << action->text();
        return all;
    }
    /// Chooses the item and closes every menu.
    void choose(QMenu* menu, const QString& title) {
        const auto index = titles(menu).indexOf(title);
        if (index < 0) throw std::runtime_error("the menu has no " + title.toStdString());
        menu->actions().at(index)->trigger();
        while (QWidget* const popup = QApplication::activePopupWidget())
            popup->close();
        settle();
    }

    QUuid addGroup(const QString& name, bool isExpanded = true) {
        const QUuid id = QUuid::createUuid();
        state().groups.update([&](QList<MaskGroup>& all) {
            all.append({id, name, isExpanded, true, false});
        });
        return id;
    }
    QUuid addMaskTo(const QUuid& group, const QString& name) {
        const QUuid mask = addMask(name, {100, 100, 320, 180});
        state().addMaskToGroup(mask, group);
        return mask;
    }
    const ScreenMask& mask(qsizetype index = 0) { return masks().at(index); }
    const MaskGroup& group(qsizetype index = 0) { return state().groups.value().at(index); }

    std::unique_ptr<QWidget> m_view;
};
