#pragma once

#include "Models/MaskPreset.h"
#include "Views/Design/TextLine.h"
#include "Views/MenuBar/PanelButton.h"

/// A saved preset in the menu bar panel: its name and how many masks it has.
class MenuBarPresetRow final : public PanelButton {
public:
    explicit MenuBarPresetRow(QWidget* parent);

    /// Shows a preset; costs nothing when name and count are the same.
    void show(const MaskPreset& preset);

    using QPushButton::show;
    /// For example "1 mask".
    static QString countText(qsizetype maskCount);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_name;
    QString m_count;
    QFont m_nameFont;
    QFont m_countFont;
    TextLine m_nameLine;
    TextLine m_countLine;
};
