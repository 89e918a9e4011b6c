#pragma once

#include "Reactive/Published.h"
#include "Views/Components/Sheet.h"

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>
#include <map>

/// The sheets of a window; a later one lies over an earlier one, whichever came first.
enum class SheetLevel { releaseNotes, help, savePreset, confirmation };

/// What lies over a window while sheets are presented: dims what is behind, and shows the topmost
/// sheet; the next is seen when that one goes. The keyboard stays in the sheet and then goes back
/// to where it was. What asks for the keyboard meanwhile gets it then.
///
/// The host should be an `AccessibleElement` whose only child is the area while `isPresenting`.
class SheetArea final : public QWidget {
public:
    /// How long the ground takes to dim.
    static constexpr int fadeMilliseconds = 140;

    /// Fills the host and follows its size.
    explicit SheetArea(QWidget* host);
    ~SheetArea() override;

    /// Shows a sheet at a level that has none.
    void present(SheetLevel level, const SheetContent& content);
    /// Ends the sheet with its view, where there is one.
    void dismiss(SheetLevel level);
    bool isPresented(SheetLevel level) const { return m_sheets.contains(level); }

    Published<bool> isPresenting{false};

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    /// Null without a sheet.
    Sheet* topmost() const { return m_sheets.empty() ? nullptr : m_sheets.rbegin()->second; }
    void open();
    void close();
    void showTopmost();
    void place(Sheet& sheet);
    void keepKeyboard(QWidget* focused);

    QWidget* m_host;
    std::map<SheetLevel, Sheet*> m_sheets;
    /// Where the keyboard goes afterwards.
    QPointer<QWidget> m_waitingForKeyboard;
    QMetaObject::Connection m_focusWatch;
    QVariantAnimation m_fade;
};
