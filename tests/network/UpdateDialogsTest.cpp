#include "Platform/AccessibleIdentifier.h"
#include "Platform/Qt/QtUpdateDialogs.h"
#include "network/LoaderFixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

using Kind = UpdateOutcome::Kind;

const QString longNotes =
    u"<head><link rel='stylesheet' href='http://127.0.0.1:9/x'></head><h2>New</h2><p>A <b>bold</b> "
    u"word &amp; more.</p><ul><li>One</li>"
    "<li>Two</li></ul><img src='file:///etc/hostname'>"_s +
    u"<p>More of it.</p>"_s.repeated(40);

class UpdateDialogsTest : public testing::Test {
protected:
    static QDialog* window() {
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (auto* const dialog = qobject_cast<QDialog*>(widget); dialog && dialog->isVisible())
                return dialog;
        return nullptr;
    }

    /// What is shown under an identifier, or null.
    template <typename Widget = QPushButton>
    static Widget* shown(const char* name) {
        for (auto* const widget : window()->findChildren<Widget*>())
            if (widget->isVisible() && accessibleIdentifier(*widget) == QLatin1StringView(name))
                return widget;
        return nullptr;
    }

    static QString headline() { return shown<QLabel>("update.headline")->text(); }

    static bool isActive() {
        return waitUntil([] { return window() != nullptr && window()->isActiveWindow(); });
    }
    static bool isClosed() {
        return waitUntil([] { return window() == nullptr; });
    }
    static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    /// Everything that is shown has the room that it asks for, lies inside the window, and can be
    /// told by a screen reader.
    static void expectSound() {
        ASSERT_TRUE(isActive());
        EXPECT_FALSE(window()->accessibleName().isEmpty());
        for (const auto* const widget : window()->findChildren<QWidget*>()) {
            if (!widget->isVisible() || accessibleIdentifier(*widget).isEmpty()) continue;
            const std::string name = accessibleIdentifier(*widget).toStdString();
            // Long texts scroll instead.
            if (qobject_cast<const QAbstractScrollArea*>(widget) == nullptr) {
                const int needed = widget->hasHeightForWidth()
                                       ? widget->heightForWidth(widget->width())
                                       : widget->minimumSizeHint().height();
                EXPECT_GE(widget->height(), needed) << name;
                EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << name;
            }
            EXPECT_TRUE(window()->rect().contains(widget->geometry())) << name;
            const auto* const button = qobject_cast<const QAbstractButton*>(widget);
            const auto* const label = qobject_cast<const QLabel*>(widget);
            EXPECT_FALSE((button  ? button->text()
                          : label ? label->text()
                                  : widget->accessibleName())
                             .isEmpty())
                << name;
        }
    }

    QtUpdateDialogs dialogs;
};

TEST_F(UpdateDialogsTest, EveryOutcomeIsToldAndCanBeClosed) {
    const QString reason =
        u"The connection to a.rather.long.host.name.example.org was closed "
        "before the answer was complete."_s;
    const QString path = u"/home/somebody/.cache/"_s + u"deep/"_s.repeated(30) + u"veyla.deb"_s;
    const struct {
        UpdateOutcome outcome;
        QString headline;
        QString text;
    } cases[] = {
        {{Kind::upToDate, u"1.0"_s}, u"Veyla is up to date"_s, {}},
        {{Kind::cannotCheck, {}, reason}, u"Veyla cannot check for updates"_s, {}},
        {{Kind::checkFailed, {}, reason}, u"The check for updates failed"_s, {}},
        {{Kind::checkFailed, u"1.2"_s, reason},
         u"There is a Veyla 1.2, but it cannot be installed"_s,
         {}},
        {{Kind::downloadFailed, u"1.2"_s, reason}, u"Veyla 1.2 could not be downloaded"_s, {}},
        {{Kind::badSignature, u"1.2"_s, reason}, u"Veyla 1.2 cannot be trusted"_s, {}},
        {{Kind::cannotKeep, u"1.2"_s, reason}, u"Veyla 1.2 could not be saved"_s, {}},
        {{Kind::handedOver, u"1.2"_s, {}, path}, u"Veyla 1.2 is ready to install"_s, path},
        {{Kind::notOpened, u"1.2"_s, {}, path}, u"Veyla 1.2 is ready to install"_s, path},
    };
    const QFont usual = QApplication::font();
    for (const double scale : {1.0, 1.8}) {
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * scale);
        QApplication::setFont(font);
        int turn = 0;
        for (const auto& [outcome, headlineText, text] : cases) {
            SCOPED_TRACE(headlineText.toStdString());
            dialogs.showOutcome(outcome);
            expectSound();
            EXPECT_EQ(headline(), headlineText);
            EXPECT_TRUE(shown<QLabel>("update.detail")->text().contains(outcome.reason));
            const auto* const box = shown<QPlainTextEdit>("update.text");
            EXPECT_EQ(box ? box->toPlainText() : QString(), text);
            const bool hasSwitch = shown<QCheckBox>("update.automaticChecks") != nullptr;
            EXPECT_EQ(hasSwitch, outcome.kind == Kind::upToDate);
            switch (turn++ % 4) {
                case 0:
                    press(Qt::Key_Escape);
                    break;
                case 1:
                    press(Qt::Key_Return);
                    break;
                case 2:
                    QTest::mouseClick(shown("update.close"), Qt::LeftButton);
                    break;
                default:
                    window()->close();
            }
            EXPECT_TRUE(isClosed());
        }
    }
    QApplication::setFont(usual);
}

TEST_F(UpdateDialogsTest, OffersAreAnsweredOnceByKeysAndClicks) {
    const auto click = [](const char* name) {
        return [name] { QTest::mouseClick(shown(name), Qt::LeftButton); };
    };
    const struct {
        const char* description;
        std::function<void()> answer;
        UpdateChoice choice;
    } cases[] = {
        {"Enter", [] { press(Qt::Key_Return); }, UpdateChoice::install},
        {"Install", click("update.install"), UpdateChoice::install},
        {"Later", click("update.later"), UpdateChoice::later},
        {"Skip", click("update.skip"), UpdateChoice::skip},
        {"Escape", [] { press(Qt::Key_Escape); }, UpdateChoice::later},
        {"Close", [] { window()->close(); }, UpdateChoice::later},
        {"Tab and Space",
         [] {
             press(Qt::Key_Tab);
             press(Qt::Key_Space);
         },
         UpdateChoice::later},
        {"Alt+S", [] { QTest::keyClick(window(), Qt::Key_S, Qt::AltModifier); },
         UpdateChoice::skip},
    };
    for (const auto& [description, answer, choice] : cases) {
        SCOPED_TRACE(description);
        QList<UpdateChoice> choices;
        dialogs.showOffer({u"1.2"_s, u"1.0"_s, longNotes}, true,
                          [&](UpdateChoice chosen) { choices.append(chosen); });
        expectSound();
        EXPECT_EQ(headline(), u"Veyla 1.2 is available"_s);
        answer();
        EXPECT_TRUE(waitUntil([&] { return !choices.isEmpty(); }));
        EXPECT_EQ(choices, QList<UpdateChoice>{choice});
        if (window() != nullptr) window()->close();
        EXPECT_EQ(choices.size(), 1) << "answered twice";
        dialogs.dismiss();
        EXPECT_TRUE(isClosed());
    }
}

TEST_F(UpdateDialogsTest, NotesArePlainScrollAndLoadNothing) {
    const auto notes = [&](const QString& text) {
        dialogs.showOffer({u"1.2"_s, u"1.0"_s, text}, true, [](UpdateChoice) {});
        return shown<QPlainTextEdit>("update.text")->toPlainText();
    };
    EXPECT_EQ(notes({}), u"There are no notes for this release."_s);
    EXPECT_EQ(notes(u"1 < 2\n * plain"_s), u"1 < 2\n * plain"_s);
    EXPECT_TRUE(notes(longNotes).startsWith(
        u"New\n\nA bold word & more.\n\n• One\n• Two\n\nMore of it.\n\n"_s));
    EXPECT_FALSE(notes(longNotes).contains(QChar::ObjectReplacementCharacter));
    ASSERT_TRUE(isActive());
    auto* const box = shown<QPlainTextEdit>("update.text");
    ASSERT_GT(box->verticalScrollBar()->maximum(), 0);
    box->setFocus();
    press(Qt::Key_PageDown);
    EXPECT_GT(box->verticalScrollBar()->value(), 0);
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), shown<QCheckBox>("update.automaticChecks"));
}

TEST_F(UpdateDialogsTest, ProgressIsShownAndCancelled) {
    int cancelled = 0;
    const auto cancel = [&] {
        ++cancelled;
        dialogs.dismiss();
    };
    dialogs.showChecking(cancel);
    expectSound();
    press(Qt::Key_Escape);
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(cancelled, 1);

    dialogs.showDownload(u"1.2"_s, cancel);
    dialogs.showProgress(1'500'000, std::nullopt);
    EXPECT_EQ(shown<QLabel>("update.amount")->text(), u"1.5 MB"_s);
    EXPECT_EQ(shown<QProgressBar>("update.progress")->maximum(), 0);
    dialogs.showProgress(1'500'000, 6'000'000);
    expectSound();
    EXPECT_EQ(shown<QLabel>("update.amount")->text(), u"1.5 MB of 6.0 MB"_s);
    const auto* const bar = shown<QProgressBar>("update.progress");
    EXPECT_EQ(bar->value() * 4, bar->maximum());
    QTest::mouseClick(shown("update.cancel"), Qt::LeftButton);
    EXPECT_TRUE(isClosed());
    EXPECT_EQ(cancelled, 2);
    dialogs.showProgress(1, 2);
    EXPECT_TRUE(isClosed());
}

TEST_F(UpdateDialogsTest, OneWindowShowsOneThingAfterTheOther) {
    const auto fail = [](auto...) { ADD_FAILURE() << "called for a page that is gone"; };
    dialogs.showChecking(fail);
    const auto* const first = window();
    dialogs.showOffer({u"1.2"_s, u"1.0"_s, {}}, true, fail);
    dialogs.showDownload(u"1.2"_s, fail);
    dialogs.showOutcome({Kind::handedOver, u"1.2"_s, {}, u"/p"_s});
    EXPECT_EQ(window(), first);
    expectSound();
    window()->close();
    EXPECT_TRUE(isClosed());

    QList<bool> switches;
    dialogs.setAutomaticChecks(true, [&](bool isOn) { switches.append(isOn); });
    dialogs.showOutcome({Kind::upToDate, u"1.0"_s});
    EXPECT_TRUE(shown<QCheckBox>("update.automaticChecks")->isChecked());
    QTest::mouseClick(shown<QCheckBox>("update.automaticChecks"), Qt::LeftButton, {}, {10, 10});
    dialogs.dismiss();
    ASSERT_TRUE(isClosed());
    dialogs.showOutcome({Kind::upToDate, u"1.0"_s});
    EXPECT_FALSE(shown<QCheckBox>("update.automaticChecks")->isChecked());
    EXPECT_EQ(switches, QList<bool>{false});

    {
        QtUpdateDialogs dying;
        dialogs.dismiss();
        dying.showChecking(fail);
    }
    EXPECT_TRUE(isClosed());
}

}  // namespace
