#include "Platform/Qt/Updates/QtUpdateDialogs.h"

#include "Platform/Qt/Updates/UpdateDialog.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using Kind = UpdateOutcome::Kind;

namespace {

constexpr int notesLines = 10;
constexpr int pathLines = 2;

/// Loads nothing, neither from the network nor from disk.
class InertDocument : public QTextDocument {
protected:
    QVariant loadResource(int, const QUrl&) override { return {}; }
};

// Far more than anybody reads. Qt takes time that grows with the square of how deep elements are
// nested, and their number bounds the depth.
constexpr qsizetype longestNotes = 50'000;
constexpr qsizetype mostTags = 1'000;

QString boundedNotes(const QString& notes) {
    qsizetype end = std::min(notes.size(), longestNotes);
    qsizetype tags = 0;
    for (qsizetype index = 0; index < end; ++index)
        if (notes[index] == u'<' && ++tags > mostTags) end = index;
    return end == notes.size() ? notes : notes.left(end) + u'…';
}

QString plainNotes(const QString& all) {
    if (all.isEmpty()) return u"There are no notes for this release."_s;
    QString notes = boundedNotes(all);
    if (!Qt::mightBeRichText(notes)) return notes;
    InertDocument document;
    document.setHtml(notes);
    QString text;
    bool wasListItem = false;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QString line =
            block.text().remove(QChar::ObjectReplacementCharacter).replace(QChar::Nbsp, u' ');
        if (line.trimmed().isEmpty()) continue;
        const bool isListItem = block.textList() != nullptr;
        if (!text.isEmpty()) text += isListItem && wasListItem ? u"\n"_s : u"\n\n"_s;
        text += isListItem ? u"• "_s + line : line;
        wasListItem = isListItem;
    }
    return text;
}

UpdatePage::Button closeButton() {
    return {u"&Close"_s, u"close"_s, {}};
}

UpdatePage packagePage(const UpdateOutcome& outcome, const QString& whatNext) {
    return {.headline = u"Veyla %1 is ready to install"_s.arg(outcome.version),
            .detail = u"It has been downloaded, and its signature is right. "_s + whatNext,
            .text = outcome.packagePath,
            .textName = u"Package"_s,
            .textLines = pathLines,
            .buttons = {closeButton()}};
}

UpdatePage failurePage(const UpdateOutcome& outcome) {
    QString headline;
    QString detail = outcome.reason;
    if (outcome.kind == Kind::cannotCheck) {
        headline = u"Veyla cannot check for updates"_s;
    } else if (outcome.kind == Kind::checkFailed && outcome.version.isEmpty()) {
        headline = u"The check for updates failed"_s;
    } else if (outcome.kind == Kind::checkFailed) {
        headline = u"There is a Veyla %1, but it cannot be installed"_s;
    } else if (outcome.kind == Kind::downloadFailed) {
        headline = u"Veyla %1 could not be downloaded"_s;
    } else if (outcome.kind == Kind::badSignature) {
        headline = u"Veyla %1 cannot be trusted"_s;
        detail += u" It may be damaged, or come from somebody else. Nothing of it has been kept."_s;
    } else {
        headline = u"Veyla %1 could not be saved"_s;
    }
    if (headline.contains("%1"_L1)) headline = headline.arg(outcome.version);
    return {.headline = headline, .detail = detail, .buttons = {closeButton()}};
}

}  // namespace

QtUpdateDialogs::QtUpdateDialogs() = default;

QtUpdateDialogs::~QtUpdateDialogs() = default;

void QtUpdateDialogs::showChecking(std::function<void()> onCancel) {
    show({.headline = u"Checking for updates…"_s,
          .hasProgress = true,
          .buttons = {{u"&Cancel"_s, u"cancel"_s, onCancel}},
          .onDismiss = onCancel});
}

void QtUpdateDialogs::showOffer(const UpdateOffer& offer, bool isExpected,
                                std::function<void(UpdateChoice)> onChoice) {
    const auto choosing = [&](UpdateChoice choice) {
        return [onChoice, choice] { onChoice(choice); };
    };
    show({.headline = u"Veyla %1 is available"_s.arg(offer.version),
          .detail = u"You have %1. The update is downloaded, verified and then handed to the "
                    "installer of your desktop."_s.arg(offer.runningVersion),
          .text = plainNotes(offer.notes),
          .textName = u"Release notes"_s,
          .textLines = notesLines,
          .isTextLong = true,
          .automaticChecks = m_automaticChecks,
          .buttons = {{u"&Install"_s, u"install"_s, choosing(UpdateChoice::install)},
                      {u"&Later"_s, u"later"_s, choosing(UpdateChoice::later)},
                      {u"&Skip This Version"_s, u"skip"_s, choosing(UpdateChoice::skip)}},
          .onDismiss = choosing(UpdateChoice::later)},
         isExpected);
}

void QtUpdateDialogs::showDownload(const QString& version, std::function<void()> onCancel) {
    show({.headline = u"Downloading Veyla %1…"_s.arg(version),
          .hasProgress = true,
          .buttons = {{u"&Cancel"_s, u"cancel"_s, onCancel}},
          .onDismiss = onCancel});
}

void QtUpdateDialogs::showProgress(qint64 received, std::optional<qint64> total) {
    if (m_dialog) m_dialog->setProgress(received, total);
}

void QtUpdateDialogs::showOutcome(const UpdateOutcome& outcome) {
    switch (outcome.kind) {
        case Kind::upToDate:
            show({.headline = u"Veyla is up to date"_s,
                  .detail = u"There is nothing newer than your version, %1."_s.arg(outcome.version),
                  .automaticChecks = m_automaticChecks,
                  .buttons = {closeButton()}});
            break;
        case Kind::handedOver:
            show(packagePage(outcome,
                             u"Your desktop has been asked to open it. Should nothing "
                             "open, install this package yourself:"_s));
            break;
        case Kind::notOpened:
            show(packagePage(outcome,
                             u"Nothing on this desktop opens it, so install this package "
                             "yourself:"_s));
            break;
        default:
            show(failurePage(outcome));
    }
}

void QtUpdateDialogs::bringToFront() {
    if (!m_dialog || !m_dialog->isVisible()) return;
    m_dialog->raise();
    m_dialog->activateWindow();
}

// The window may be the one that is calling.
void QtUpdateDialogs::dismiss() {
    if (!m_dialog) return;
    m_dialog->hide();
    m_dialog.release()->deleteLater();
}

void QtUpdateDialogs::setAutomaticChecks(bool isOn, std::function<void(bool)> onChange) {
    m_automaticChecks = isOn;
    m_onAutomaticChecks = std::move(onChange);
}

void QtUpdateDialogs::show(const UpdatePage& page, bool takesKeyboard) {
    if (!m_dialog) {
        m_dialog = std::make_unique<UpdateDialog>([this](bool isOn) {
            m_automaticChecks = isOn;
            if (m_onAutomaticChecks) m_onAutomaticChecks(isOn);
        });
        QObject::connect(m_dialog.get(), &QDialog::rejected, [this] { dismiss(); });
    }
    m_dialog->setPage(page);
    m_dialog->setAttribute(Qt::WA_ShowWithoutActivating, !takesKeyboard);
    m_dialog->show();
    if (takesKeyboard) bringToFront();
}
