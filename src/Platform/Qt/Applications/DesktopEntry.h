#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

/// What a desktop entry tells of an application.
struct DesktopEntry {
    /// The file's name without ".desktop"; folders below "applications" come first, with dashes.
    QString id;
    /// In the language asked for.
    QString name;
    /// The window class that the entry announces; may be empty.
    QString startupWmClass;
    /// The file name of the program that is started; empty when that is an interpreter or a
    /// launcher, which many applications share.
    QString executable;
    /// An entry that says there is no such application, whatever folders behind it have.
    bool isHidden = false;

    bool operator==(const DesktopEntry&) const = default;
};

/// Reads the text of an entry. `languages` are the suffixes of names to look for, the best first,
/// as `desktopEntryLanguages` gives them. Nothing for what is not a usable entry of an application.
std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QByteArray& text,
                                              const QStringList& languages);

/// From languages such as "sr-Latn-RS" to the suffixes that desktop entries use: "sr_RS@latin",
/// "sr@latin", "sr_RS", "sr". An empty one stands for the name without a suffix, which is in
/// English.
QStringList desktopEntryLanguages(const QStringList& uiLanguages);

/// Whether a program runs other ones, as interpreters do, so that its name tells nothing of an
/// application.
bool isSharedLauncher(const QString& program);
