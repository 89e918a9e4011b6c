#pragma once

#include "Views/Components/Sheet.h"

#include <QWidget>
#include <functional>

class StyledButton;
class TextLabel;

/// Explains how masks are used.
class HelpView final : public QWidget {
public:
    HelpView(const QString& currentFrontmostAppName, const std::function<void()>& onDismiss);

    /// The sheet with a new view in it.
    static SheetContent content(const QString& currentFrontmostAppName,
                                const std::function<void()>& onDismiss);

    void showFrontmostApp(const QString& name);

private:
    QWidget* helpRows();
    QWidget* shortcuts() const;

    TextLabel* m_profiles;
    StyledButton* m_close;
};
