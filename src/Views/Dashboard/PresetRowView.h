#pragma once

#include "Models/MaskPreset.h"
#include "Platform/Workspace.h"
#include "Views/Components/AccessibleElement.h"

#include <QPointer>
#include <QWidget>
#include <functional>

class PlainTextField;
class SheetArea;
class StyledButton;
class TextLabel;

/// One saved layout as a card: to load, to bind to an application, to edit, and, once confirmed,
/// to delete.
class PresetRowView final : public QWidget, public AccessibleElement {
public:
    struct Actions {
        std::function<void()> onLoad;
        std::function<void(const QString& name, const QString& trigger)> onSave;
        /// False where no current application is to be bound to, so that one must be chosen.
        std::function<bool()> onBindToCurrentApp;
        /// What it can be bound to instead of the current application.
        std::function<QList<RunningApplication>()> applications;
        std::function<void(const RunningApplication&)> onBind;
        std::function<void()> onClearBinding;
        /// Called once the user has confirmed it.
        std::function<void()> onDelete;
        /// The card has become lower or higher.
        std::function<void()> onResize;
    };

    /// The confirmation is presented in the area.
    PresetRowView(const MaskPreset& preset, const Actions& actions, SheetArea& sheets);
    ~PresetRowView() override;

    /// Costs nothing when it is the same.
    void show(const MaskPreset& preset);
    using QWidget::show;

    /// Whether it holds something of the user's that must not go when it is scrolled out of view.
    bool isInUse() const { return m_isEditing || m_isDeleteConfirmPresented; }
    bool isEditing() const { return m_isEditing; }
    /// Puts the keyboard on its first control.
    void takeKeyboard();

    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* displayed();
    QWidget* edited();
    StyledButton* control(StyledButton* button, const QString& identifier,
                          const std::function<void()>& action);
    void describe();
    void chooseApplication(QWidget& control);
    void beginEditing();
    void saveDraft();
    void updateSave();
    void setEditing(bool isEditing);
    void confirmDelete();
    void endConfirmation();

    MaskPreset m_preset;
    Actions m_actions;
    QPointer<SheetArea> m_sheets;
    bool m_isEditing = false;
    bool m_isDeleteConfirmPresented = false;

    TextLabel* m_name;
    TextLabel* m_summary;
    TextLabel* m_activation;
    StyledButton* m_load = nullptr;
    StyledButton* m_bind = nullptr;
    StyledButton* m_choose = nullptr;
    StyledButton* m_manual = nullptr;
    StyledButton* m_edit = nullptr;
    QWidget* m_displayed;
    // Made when it is first edited.
    QWidget* m_edited = nullptr;
    PlainTextField* m_draftName = nullptr;
    PlainTextField* m_draftTrigger = nullptr;
    TextLabel* m_count = nullptr;
    StyledButton* m_save = nullptr;
};
