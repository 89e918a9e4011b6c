#include "Platform/Qt/Updates/UpdateDialog.h"

#include "Platform/AccessibleIdentifier.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int leastWidth = 460;
constexpr int margin = 18;
constexpr int spacing = 10;
constexpr int buttonCount = 3;
constexpr int progressSteps = 1000;
constexpr double headlineScale = 1.2;

QLabel* wrappedLabel(const QString& name) {
    auto* const label = new QLabel;
    // What comes from the network must not become markup.
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    setAccessibleIdentifier(*label, name);
    return label;
}

QString sizeText(qint64 bytes) {
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

void setShownText(QLabel& label, const QString& text) {
    label.setText(text);
    label.setVisible(!text.isEmpty());
}

}  // namespace

UpdateDialog::UpdateDialog(std::function<void(bool)> onAutomaticChecks)
    : m_headline(wrappedLabel(u"update.headline"_s)),
      m_detail(wrappedLabel(u"update.detail"_s)),
      m_text(new QPlainTextEdit),
      m_progress(new QProgressBar),
      m_amount(wrappedLabel(u"update.amount"_s)),
      m_automaticChecks(new QCheckBox(u"Check for &updates once a day"_s)) {
    setWindowTitle(u"Veyla Update"_s);
    setAccessibleIdentifier(*this, u"update"_s);
    QFont bold = m_headline->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * headlineScale);
    m_headline->setFont(bold);
    m_text->setReadOnly(true);
    m_text->setTabChangesFocus(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setAccessibleIdentifier(*m_text, u"update.text"_s);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(u"Progress"_s);
    setAccessibleIdentifier(*m_progress, u"update.progress"_s);
    setAccessibleIdentifier(*m_automaticChecks, u"update.automaticChecks"_s);
    // Not on toggled, which also tells of a page that sets the state.
    connect(m_automaticChecks, &QCheckBox::clicked, this, std::move(onAutomaticChecks));

    auto* const row = new QHBoxLayout;
    for (std::size_t i = 0; i < buttonCount; ++i) {
        auto* const button = new QPushButton;
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, i] { press(i); });
        m_buttons.push_back(button);
    }
    m_buttons.front()->setDefault(true);
    // The first at the right end, the last apart at the left; Tab goes from the first on.
    row->addWidget(m_buttons[2]);
    row->addStretch();
    row->addWidget(m_buttons[1]);
    row->addWidget(m_buttons[0]);

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(spacing);
    column->addWidget(m_headline);
    column->addWidget(m_detail);
    column->addWidget(m_text, 1);
    column->addWidget(m_progress);
    column->addWidget(m_amount);
    column->addWidget(m_automaticChecks);
    column->addStretch();
    column->addLayout(row);
    setTabOrder(m_text, m_automaticChecks);
    setTabOrder(m_automaticChecks, m_buttons[0]);
    setTabOrder(m_buttons[0], m_buttons[1]);
    setTabOrder(m_buttons[1], m_buttons[2]);
}

void UpdateDialog::setPage(const UpdatePage& page) {
    m_onDismiss = page.onDismiss;
    m_actions = page.buttons;
    setShownText(*m_headline, page.headline);
    setShownText(*m_detail, page.detail);
    // The window stays from page to page, so its name is what tells a screen reader of the new one.
    setAccessibleName(page.headline);
    setAccessibleDescription(page.detail);

    m_text->setPlainText(page.text);
    m_text->setAccessibleName(page.textName);
    m_text->setVisible(!page.textName.isEmpty());
    const int textHeight = m_text->fontMetrics().lineSpacing() * (page.textLines + 1);
    m_text->setMinimumHeight(textHeight);
    m_text->setMaximumHeight(page.isTextLong ? QWIDGETSIZE_MAX : textHeight);
    m_progress->setVisible(page.hasProgress);
    m_progress->setRange(0, 0);
    setShownText(*m_amount, QString());
    m_automaticChecks->setVisible(page.automaticChecks.has_value());
    m_automaticChecks->setChecked(page.automaticChecks.value_or(false));
    for (std::size_t i = 0; i < buttonCount; ++i) {
        const bool isUsed = i < m_actions.size();
        m_buttons[i]->setVisible(isUsed);
        if (!isUsed) continue;
        m_buttons[i]->setText(m_actions[i].text);
        setAccessibleIdentifier(*m_buttons[i], u"update."_s + m_actions[i].name);
    }
    m_buttons.front()->setFocus();
    fitToPage();
}

void UpdateDialog::setProgress(qint64 received, std::optional<qint64> total) {
    const QString soFar = sizeText(received);
    const bool isNew = m_amount->isHidden();
    if (total && *total > 0) {
        m_progress->setRange(0, progressSteps);
        m_progress->setValue(int(std::min(received, *total) * progressSteps / *total));
        setShownText(*m_amount, u"%1 of %2"_s.arg(soFar, sizeText(*total)));
    } else {
        setShownText(*m_amount, soFar);
    }
    if (isNew) fitToPage();
}

void UpdateDialog::reject() {
    const auto onDismiss = std::exchange(m_onDismiss, nullptr);
    m_actions.clear();
    QDialog::reject();
    if (onDismiss) onDismiss();
}

void UpdateDialog::press(std::size_t index) {
    if (index >= m_actions.size()) return;
    const auto onClick = m_actions[index].onClick;
    if (!onClick) {
        reject();
        return;
    }
    m_actions.clear();
    m_onDismiss = nullptr;
    onClick();
}

// Labels that wrap are as high as the width makes them, which a window does not ask for by itself.
// It is never larger than the screen: its buttons must be within reach.
void UpdateDialog::fitToPage() {
    layout()->invalidate();
    const int width = std::max(leastWidth, layout()->totalMinimumSize().width());
    const QSize size =
        QSize(width, layout()->totalHeightForWidth(width)).boundedTo(screen()->availableSize());
    setMinimumSize(size);
    resize(size);
}
