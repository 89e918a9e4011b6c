#pragma once

#include <QColor>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

class QRadioButton;

/// How colours to choose from look; lengths are in points.
struct SwatchLook {
    double diameter = 26;
    /// Of the room for a swatch, in which the ring for the keyboard has its place, too.
    int side = 34;
    int spacing = 4;
    /// Around the one that holds.
    QColor ring = Qt::white;
};

/// A few choices side by side, of which one holds; a choice is a word or a colour. The arrow keys
/// move between them.
class ChoiceRow final : public QWidget {
public:
    /// Words; the one that holds is highlighted.
    explicit ChoiceRow(const QStringList& titles);
    /// Colours, with what assistive technology calls them; the one that holds has a ring.
    ChoiceRow(const std::vector<QColor>& colors, const QStringList& names,
              const SwatchLook& look = {});

    /// What the user chooses; not called by `showChoice`.
    void onChoose(std::function<void(int index)> callback) { m_onChoose = std::move(callback); }
    /// No choice holds where the index is not one.
    void showChoice(int index);
    QRadioButton* button(int index) const { return m_buttons.at(static_cast<std::size_t>(index)); }

private:
    void add(QRadioButton* button);

    std::vector<QRadioButton*> m_buttons;
    std::function<void(int)> m_onChoose;
};
