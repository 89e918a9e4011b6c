#pragma once

#include <QDialog>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

/// What the update dialog shows at one time.
struct UpdatePage {
    struct Button {
        QString text;
        /// Ends up as the accessible identifier "update.NAME".
        QString name;
        /// Without one, the button closes the dialog.
        std::function<void()> onClick;
    };

    QString headline;
    QString detail = {};
    /// Plain text that scrolls and can be copied, and the name of it; without a name there is none.
    QString text = {};
    QString textName = {};
    /// How many lines there is room for, and whether a larger window has room for more.
    int textLines = 0;
    bool isTextLong = false;
    bool hasProgress = false;
    /// The state of the switch for checks that run by themselves; absent for no switch.
    std::optional<bool> automaticChecks = std::nullopt;
    /// At most three; Enter presses the first.
    std::vector<Button> buttons;
    /// What Escape and closing the window do besides.
    std::function<void()> onDismiss = {};
};

/// The one window of the updater. A page replaces the one before it; of the callbacks of a page at
/// most one is called, and once. Nothing is loaded that a text names.
class UpdateDialog : public QDialog {
public:
    explicit UpdateDialog(std::function<void(bool)> onAutomaticChecks);

    void setPage(const UpdatePage& page);
    /// Only for a page with progress; without a total the bar tells only that work is going on.
    void setProgress(qint64 received, std::optional<qint64> total);

    void reject() override;

private:
    void press(std::size_t index);
    void fitToPage();

    QLabel* m_headline;
    QLabel* m_detail;
    QPlainTextEdit* m_text;
    QProgressBar* m_progress;
    QLabel* m_amount;
    QCheckBox* m_automaticChecks;
    std::vector<QPushButton*> m_buttons;
    std::vector<UpdatePage::Button> m_actions;
    std::function<void()> m_onDismiss;
};
