#pragma once

#include "Models/WorkspaceSnapshot.h"
#include "support/desktop/DesktopSession.h"
#include "support/desktop/MonitorLayout.h"
#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Screenshot.h"
#include "support/desktop/XProbe.h"
#include "support/desktop/XTestInput.h"

#include <QColor>
#include <QJsonObject>
#include <memory>

/// The program on a desktop of its own, with people and other programs around it. Windows and
/// pixels count in device pixels of the root, y down; frames of masks in points of the global
/// space.
class VeylaSession {
public:
    explicit VeylaSession(const DesktopSession::Options& options = {});

    /// Adds an opaque mask to the workspace that `start` writes.
    QUuid addMask(const Rect& frame, const QColor& color = Qt::red);

    /// Writes the workspace and starts the program on it, once more where it ran before. Returns
    /// when its masks are on screen; throws std::runtime_error when they do not get there.
    void start();
    /// The same with the document as it is.
    void restart();

    /// Runs `veyla` with these arguments. Throws std::runtime_error when it does not end.
    ChildProcess::Outcome run(const QStringList& arguments);

    QJsonObject status();
    /// Where the model has a mask, as `status` tells.
    Rect frameOf(const QUuid& mask);
    QString documentPath();
    /// What the document holds now.
    WorkspaceSnapshot document();

    /// The one window of a mask; nothing when there is none, or more than one.
    std::optional<XWindow> windowOf(const QUuid& mask) const;
    /// Null without exactly one window.
    QRect rectOf(const QUuid& mask) const;
    /// The windows of masks, of this program or left over by another, shown or not.
    qsizetype maskWindowCount() const;
    /// Whether there is exactly one window for each mask of the workspace, those of the visible
    /// ones mapped, and no other.
    bool isEveryMaskShownOnce() const;
    QColor pixel(QPoint position) const;
    /// Whether the middle of a mask has the mask's colour on the screen.
    bool isPainted(const QUuid& mask) const;

    /// Where a person takes hold of a mask to move it.
    QPoint middleOf(const QUuid& mask) const { return rectOf(mask).center(); }

    /// Ends the program by command; its exit status, or nothing when it does not end.
    std::optional<int> quit();

    /// The program that is started.
    QString programPath;
    DesktopSession desktop;
    /// For the program; changes count from the next start on.
    QProcessEnvironment environment;
    WorkspaceSnapshot workspace;
    /// What the program is started with. The dashboard stays away from tests of masks.
    QStringList startArguments{QStringLiteral("--background")};
    XProbe probe;
    XTestInput input;
    NeighbourClient neighbour;
    MonitorLayout monitors;
    /// The program, null before the first start.
    std::unique_ptr<ChildProcess> process;
};
