#include "Platform/AccessibleIdentifier.h"
#include "Platform/Qt/Updates/QtUpdateDialogs.h"
#include "network/LoaderFixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
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

    static bool shownVersion() {
        return (shown<QLabel>("update.headline")->text() + shown<QLabel>("update.detail")->text())
            .contains(u"1.2"_s);
    }

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
    const QString path = u"/home/somebody/.cache/"_s + u"deep/"_s.repeated(30) + u"veyla.deb"_s;
    const std::function<void()> ways[] = {
        [] { press(Qt::Key_Escape); }, [] { press(Qt::Key_Return); },
        [] { QTest::mouseClick(shown("update.close"), Qt::LeftButton); },
        [] { window()->close(); }};
    const QFont usual = QApplication::font();
    for (int turn = 0; turn < 16; ++turn) {
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * (turn < 8 ? 1 : 1.8));
        QApplication::setFont(font);
        const auto kind = Kind(turn % 8);
        SCOPED_TRACE(int(kind));
        const bool isGood = kind == Kind::handedOver || kind == Kind::notOpened;
        const bool hasReason = kind != Kind::upToDate && !isGood;
        const QString reason = hasReason ? u"The connection to a.rather.long.host.name.example.org "
                                           "was closed before the answer was complete."_s
                                         : QString();
        dialogs.showOutcome({kind, u"1.2"_s, reason, isGood ? path : QString()});
        expectSound();
        EXPECT_EQ(shownVersion(), kind != Kind::cannotCheck);
        EXPECT_TRUE(shown<QLabel>("update.detail")->text().contains(reason));
        const auto* const box = shown<QPlainTextEdit>("update.text");
        EXPECT_EQ(box ? box->toPlainText() : QString(), isGood ? path : QString());
        const bool hasSwitch = shown<QCheckBox>("update.automaticChecks") != nullptr;
        EXPECT_EQ(hasSwitch, kind == Kind::upToDate);
        ways[turn % 4]();
        EXPECT_TRUE(isClosed());
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
        EXPECT_TRUE(shownVersion());
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
    // What is nested beyond reason would stop the program, and what is endless fill the memory.
    for (const QString& endless : {u"<b>"_s.repeated(20'000), u"x "_s.repeated(500'000)}) {
        const QString text = notes(u"Start "_s + endless + u"end"_s);
        EXPECT_TRUE(text.startsWith(u"Start"_s) && text.endsWith(u'…')) << text.size();
        EXPECT_LE(text.size(), 50'001);
    }
    EXPECT_FALSE(notes(longNotes).contains(u'…'));
    ASSERT_TRUE(isActive());
    auto* const box = shown<QPlainTextEdit>("update.text");
    ASSERT_GT(box->verticalScrollBar()->maximum(), 0);
    box->setFocus();
    press(Qt::Key_PageDown);
    EXPECT_GT(box->verticalScrollBar()->value(), 0);
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), shown<QCheckBox>("update.automaticChecks"));
}

TEST_F(UpdateDialogsTest, TheWindowIsNeverLargerThanTheScreen) {
    dialogs.showOutcome({Kind::checkFailed, u"1.2"_s, u"A reason. "_s.repeated(10'000), {}});
    EXPECT_TRUE(window()->screen()->availableSize().expandedTo(window()->size()) ==
                window()->screen()->availableSize())
        << window()->height();
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
