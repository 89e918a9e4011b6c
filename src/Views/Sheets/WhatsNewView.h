#pragma once

#include "Models/ChangelogRelease.h"
#include "Views/Components/Sheet.h"

#include <QString>
#include <QWidget>
#include <functional>
#include <optional>

class AppIconView;
class NotesList;
class SpokenNote;
class StyledButton;
class TextLabel;

/// The notes of the latest release; while there are none, that they are being loaded, or that they
/// could not be.
class WhatsNewView final : public QWidget {
public:
    struct Setup {
        /// Of the running program.
        QString applicationVersion;
        /// The page with all notes; empty where there is none to lead to.
        QString pageAddress;
        std::function<void()> onDismiss;
        /// False when nothing could open it.
        std::function<bool()> onOpenPage;
    };

    explicit WhatsNewView(const Setup& setup);

    /// The sheet with a new view in it.
    static SheetContent content(const Setup& setup);

    /// A release is shown even where a later fetch has failed.
    void show(const std::optional<ChangelogRelease>& release, bool hasFailed);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* header();
    QWidget* loading();
    QWidget* fallback();
    QWidget* footer();
    StyledButton* pageLink(const QString& title, int weight, const QColor& color);
    void openPage();
    QString versionLabel(const std::optional<ChangelogRelease>& release) const;

    Setup m_setup;
    AppIconView* m_icon;
    TextLabel* m_version;
    NotesList* m_notes;
    QWidget* m_loading;
    QWidget* m_fallback;
    SpokenNote* m_pageFailure;
    StyledButton* m_continue;
};
