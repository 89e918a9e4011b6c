#include "Views/Design/ApplicationLook.h"

#include "Views/Components/AppIconView.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QPointer>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

QPalette darkPalette() {
    QPalette colors;
    // Disabled text must not depend on what the desktop's palette has for it.
    for (const auto& [role, color] :
         {std::pair(QPalette::Window, VeylaTheme::window()),
          std::pair(QPalette::WindowText, VeylaTheme::textPrimary()),
          std::pair(QPalette::Base, VeylaTheme::panelMuted()),
          std::pair(QPalette::AlternateBase, VeylaTheme::panel()),
          std::pair(QPalette::Text, VeylaTheme::textPrimary()),
          std::pair(QPalette::Button, VeylaTheme::panelElevated()),
          std::pair(QPalette::ButtonText, VeylaTheme::textPrimary()),
          std::pair(QPalette::ToolTipBase, VeylaTheme::panelElevated()),
          std::pair(QPalette::ToolTipText, VeylaTheme::textPrimary()),
          std::pair(QPalette::Highlight, VeylaTheme::accentBlue()),
          std::pair(QPalette::HighlightedText, VeylaTheme::textOn(VeylaTheme::accentBlue())),
          std::pair(QPalette::Link, VeylaTheme::focusRing()),
          std::pair(QPalette::PlaceholderText, VeylaTheme::textMuted())})
        colors.setColor(role, color);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        colors.setColor(QPalette::Disabled, role, VeylaTheme::textMuted());
    return colors;
}

class StillStyle final : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override {
        if (hint == SH_Widget_Animation_Duration) return 0;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

// Opaque where translucent white on the window would be: style sheets paint onto nothing.
QString onWindow(const QColor& color) {
    return colorOver(color, VeylaTheme::sidebar()).name();
}

QString menuSheet() {
    const QColor accent = VeylaTheme::accentBlue();
    return u"QMenuBar { background: %1; color: %2; border-bottom: 1px solid %3; }"
           "QMenuBar::item { padding: 5px 10px; background: transparent; border-radius: 5px; }"
           "QMenuBar::item:selected { background: %4; }"
           "QMenu { background: %5; color: %2; border: 1px solid %6; padding: 5px; }"
           "QMenu::item { padding: 6px 26px 6px 14px; border-radius: 5px; }"
           "QMenu::item:selected { background: %7; color: %8; }"
           "QMenu::item:disabled { color: %9; background: transparent; }"
           "QMenu::separator { height: 1px; background: %6; margin: 5px 8px; }"_s.arg(
               onWindow(VeylaTheme::sidebar()), onWindow(VeylaTheme::textPrimary()),
               onWindow(VeylaTheme::border()), onWindow(VeylaTheme::withOpacity(accent, 0.24)),
               onWindow(VeylaTheme::panelElevated()),
               onWindow(VeylaTheme::withOpacity(VeylaTheme::textSecondary(), 0.22)),
               onWindow(accent), VeylaTheme::textOn(accent).name(),
               onWindow(VeylaTheme::textMuted()));
}

/// A handle without a groove and without arrows.
class ThinScrollBarStyle final : public QProxyStyle {
public:
    ThinScrollBarStyle() : QProxyStyle(u"Fusion"_s) {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        if (metric == PM_ScrollBarExtent) return extent;
        if (metric == PM_ScrollBarSliderMin) return shortestHandle;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override {
        const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar)
            return QProxyStyle::subControlRect(control, option, part, widget);
        const QRect handle = handleRect(*bar);
        switch (part) {
            case SC_ScrollBarSlider:
                return handle;
            case SC_ScrollBarGroove:
                return bar->rect;
            case SC_ScrollBarSubPage:
                return QRect(bar->rect.topLeft(), QSize(extent, handle.top()));
            case SC_ScrollBarAddPage:
                return QRect(handle.bottomLeft() + QPoint(0, 1), bar->rect.bottomRight());
            default:
                return {};
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override {
        const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar)
            return QProxyStyle::drawComplexControl(control, option, painter, widget);
        const bool isUsed =
            bar->state.testFlag(State_MouseOver) || bar->state.testFlag(State_Sunken);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(isUsed ? QColor(0x4A5064) : QColor(0x343948));
        painter->drawRoundedRect(handleRect(*bar).adjusted(2, 2, -2, -2), 3, 3);
    }

private:
    static constexpr int extent = 10;
    static constexpr int shortestHandle = 28;

    static QRect handleRect(const QStyleOptionSlider& bar) {
        const int range = bar.maximum - bar.minimum;
        const int length = bar.rect.height();
        if (range <= 0) return bar.rect;
        const qint64 wanted = qint64{length} * bar.pageStep / (qint64{range} + bar.pageStep);
        const int handle =
            std::clamp(static_cast<int>(wanted), std::min(shortestHandle, length), length);
        const int y = sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                              length - handle, bar.upsideDown);
        return {bar.rect.left(), bar.rect.top() + y, extent, handle};
    }
};

}  // namespace

void applyVeylaLook(const AppearanceWishes& wishes) {
    VeylaTheme::setContrastIncreased(wishes.isContrastIncreased);
    QStyle* const style = QStyleFactory::create(u"Fusion"_s);
    // Every question about the look of a control would pass through it, so it is there for those
    // only who need it.
    QApplication::setStyle(wishes.isMotionReduced ? new StillStyle(style) : style);
    QApplication::setPalette(darkPalette());
    QApplication::setWindowIcon(applicationIcon());
}

int motionDuration(int usualMilliseconds) {
    const bool hasMotion = QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration);
    return hasMotion ? usualMilliseconds : 0;
}

// One sheet for the whole application would be asked about every widget, which takes longer than
// making them.
void styleMenus(QWidget& menuOrBar) {
    menuOrBar.setStyleSheet(menuSheet());
}

QString menuTitle(const QString& text) {
    constexpr int longest = 60;
    const QString line = onOneLine(text);
    const QString shown = line.size() > longest ? line.left(longest - 1) + u'…' : line;
    // A single ampersand would mark the next letter as the item's key.
    return QString(shown).replace(u'&', u"&&"_s);
}

// A style rather than a sheet, which takes longer than the rest of the scroll area.
void styleScrollBar(QAbstractScrollArea& area) {
    // Ends with the application, which styles belong to.
    static const QPointer<QStyle> style = [] {
        auto* const made = new ThinScrollBarStyle;
        made->setParent(qApp);
        return made;
    }();
    area.verticalScrollBar()->setStyle(style);
}
