#pragma once

#include "App/AppState.h"

#include <QKeySequence>
#include <QList>
#include <QString>
#include <functional>
#include <vector>

/// One item of a menu; one without an action is a separator.
struct MenuCommand {
    QString title;
    /// The first is the one that the menu shows.
    QList<QKeySequence> shortcuts;
    bool isEnabled = true;
    std::function<void()> perform;
    /// Whether it changes what is there, which the user should see while it does: not behind a
    /// sheet.
    bool waitsForSheets = false;

    bool isSeparator() const { return !perform; }
};

/// The commands of the menus "Edit" and "Veyla", in the order of each menu.
class VeylaCommands {
public:
    /// `openSettings` may be empty where there are no settings to open. The state must outlive
    /// the object.
    VeylaCommands(AppState& state, std::function<void()> openSettings);

    /// The items of "Veyla" as they are now. Titles and enabled states follow the fields that
    /// `AppState` publishes; the number of items and their places never change.
    std::vector<MenuCommand> items() const;
    /// The items of "Edit", likewise.
    std::vector<MenuCommand> editItems() const;

private:
    AppState& m_state;
    std::function<void()> m_openSettings;
};
