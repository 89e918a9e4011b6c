#include "Views/Sheets/HelpView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int inset = 24;

TextLabel* headline(const QString& text) {
    return new TextLabel(text, {13, QFont::Bold}, VeylaTheme::textPrimary());
}

TextLabel* paragraph(const QString& text) {
    return new TextLabel(text, {12}, VeylaTheme::textSecondary(), TextLabel::Lines::paragraph);
}

}  // namespace

HelpView::HelpView(const QString& currentFrontmostAppName, const std::function<void()>& onDismiss)
    : m_profiles(paragraph({})), m_close(prominentButton(u"Close"_s)) {
    setAccessibleIdentifier(*this, u"help-view"_s);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(inset, inset, inset, inset);
    layout->setSpacing(20);
    layout->addWidget(
        new TextLabel(u"How Veyla Works"_s, {28, QFont::Bold}, VeylaTheme::textPrimary()));
    layout->addWidget(paragraph(
        u"Veyla places floating masks above your apps so you can hide sensitive or distracting UI "
        "during demos, streaming, and screen sharing."_s));
    layout->addWidget(helpRows());
    layout->addWidget(shortcuts());
    layout->addWidget(row(0, {LayoutItem::space(), m_close}));
    m_close->setAccessibleName(u"Close help"_s);
    setAccessibleIdentifier(*m_close, u"close-help-button"_s);
    connect(m_close, &QPushButton::clicked, this, onDismiss);
    showFrontmostApp(currentFrontmostAppName);
}

SheetContent HelpView::content(const QString& currentFrontmostAppName,
                               const std::function<void()>& onDismiss) {
    auto* const view = new HelpView(currentFrontmostAppName, onDismiss);
    return {.title = u"How Veyla Works"_s,
            .view = view,
            .width = 520,
            .ground = VeylaTheme::window(),
            .firstFocus = view->m_close,
            .onDismiss = onDismiss,
            .onSubmit = onDismiss};
}

void HelpView::showFrontmostApp(const QString& name) {
    m_profiles->showText(
        u"Save the current layout as a preset. You can auto-apply one for %1 or any other "
        "frontmost app."_s.arg(onOneLine(name)));
}

QWidget* HelpView::helpRows() {
    const auto helpRow = [](const QString& title, TextLabel* detail) {
        return column(3, {headline(title), detail});
    };
    return column(
        12,
        {helpRow(u"Move"_s, paragraph(u"Click and drag anywhere inside a mask."_s)),
         helpRow(u"Resize"_s,
                 paragraph(u"Drag any edge or corner. The cursor changes to show resize mode."_s)),
         helpRow(
             u"Click-through"_s,
             paragraph(
                 u"Turn on click-through when the mask is positioned and should stop intercepting "
                 "clicks."_s)),
         helpRow(u"Profiles"_s, m_profiles),
         helpRow(u"Editing lock"_s,
                 paragraph(
                     u"Lock editing to freeze all masks in place while keeping them visible."_s))});
}

QWidget* HelpView::shortcuts() const {
    return column(4, {headline(u"Useful shortcuts"_s),
                      paragraph(u"Control-Option-Command-N creates a mask."_s),
                      paragraph(u"Control-Option-Command-H hides or shows all masks."_s),
                      paragraph(u"Control-Option-Command-L locks or unlocks editing."_s),
                      paragraph(u"Control-Option-Command-S toggles the dashboard window."_s)});
}
