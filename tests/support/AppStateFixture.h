#pragma once

#include "App/AppState.h"
#include "support/HeadlessHarness.h"
#include "support/RecordingSystemLog.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

/// An application state on the in-memory desktop, with a real workspace folder. Two screens: the
/// primary one of 1280 by 800 with a 30 point bar on top, and one of 1000 by 600 to its right.
class AppStateFixture : public testing::Test {
protected:
    AppStateFixture();

    /// Ends the application state, and starts one on what is in the folder.
    void restart();

    AppState& state() { return *m_state; }
    HeadlessDesktop& desktop() { return m_harness.desktop(); }
    QStringList announcements() { return desktop().announcer.messages(); }
    QString lastAnnouncement() { return announcements().value(announcements().size() - 1); }
    const QList<ScreenMask>& masks() { return m_state->masks.value(); }
    /// The surface of the mask at that place of the list.
    HeadlessSurface& surface(qsizetype index);
    void advance(int milliseconds);
    QString workspacePath() const;
    QByteArray workspaceText() const;
    /// Adds a visible blackout mask.
    QUuid addMask(const QString& name, const Rect& frame);

    QTemporaryDir m_folder;
    HeadlessHarness m_harness;
    RecordingSystemLog m_log;
    std::unique_ptr<AppState> m_state;
};
