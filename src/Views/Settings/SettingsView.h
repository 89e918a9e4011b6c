#pragma once

#include "App/AppState.h"
#include "Platform/LoginItem.h"
#include "Views/TurnUpdate.h"

#include <QWidget>
#include <array>

class AmountSlider;
class ChoiceRow;
class TextLabel;
class ToggleSwitch;

/// What new masks are like, how the program starts, and what its shortcuts do. Every control
/// writes to the settings at once; the view keeps nothing.
class SettingsView final : public QWidget {
public:
    /// In the order of the swatches.
    static const std::array<QString, 5>& swatches();
    /// What it is laid out for, in points: larger where the text is.
    static QSize contentSize();

    /// The references must outlive the view.
    SettingsView(AppState& state, Scheduler& scheduler, LoginItem& loginItem);

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QLayout* header();
    QWidget* newMaskCard();
    QLayout* styleRow();
    QLayout* colorRow();
    QWidget* behaviorCard();
    QWidget* hotkeysCard();

    void update();
    void setStartsAtLogin(bool isOn);
    /// `failure` is empty when nothing was tried in vain.
    void showLoginItem(const QString& failure);

    AppState& m_state;
    LoginItem& m_loginItem;
    TextLabel* m_opacityText;
    AmountSlider* m_opacity;
    ChoiceRow* m_styles;
    ToggleSwitch* m_clickThrough;
    ChoiceRow* m_colors;
    ToggleSwitch* m_showHelpOnLaunch;
    ToggleSwitch* m_menuBarOnlyMode;
    ToggleSwitch* m_showDashboardOnLaunch;
    ToggleSwitch* m_startAtLogin;
    TextLabel* m_loginFailure;
    TurnUpdate m_turnUpdate;
};
