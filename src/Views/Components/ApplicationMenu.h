#pragma once

#include "Platform/Workspace.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

class QWidget;

/// Opens a menu below a control from which one of the applications is chosen, or which says that
/// there is none. The one of the chosen identifier is marked. Each has a name.
void openApplicationMenu(QWidget& control, const QList<RunningApplication>& applications,
                         const std::optional<QString>& chosen,
                         const std::function<void(const RunningApplication&)>& onChoose);
