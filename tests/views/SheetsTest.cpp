#include "DashboardFixture.h"
#include "Views/Components/SheetArea.h"
#include "Views/Components/Spinner.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/ContentView.h"
#include "Views/Sheets/NotesList.h"
#include "Views/Sheets/WhatsNewSheet.h"

#include <QLineEdit>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The dashboard with all of its sheets.
class SheetsTest : public DashboardFixture {
protected:
    void openDashboard(QSize size = {1180, 740}) {
        open(size);
        m_whatsNew =
            std::make_unique<WhatsNewSheet>(state(), desktop().mainLoop, *all<SheetArea>().at(0));
        settle();
    }
    /// Null without one.
    QWidget* sheet() {
        return find([](QWidget* each) { return dynamic_cast<const Sheet*>(each); });
    }
    QRect sheetRect() { return sheet() ? sheet()->geometry() : QRect(); }
    QString sheetName() { return sheet() ? sheet()->accessibleName() : QString(); }
    QLineEdit& field(const QString& name) { return *static_cast<QLineEdit*>(view(name)); }
    static bool isInSheet(const QWidget* view) {
        while (view && !dynamic_cast<const Sheet*>(view))
            view = view->parentWidget();
        return view;
    }
    bool hasText(const QString& text) {
        return find([&](QWidget* each) { return each->property("text").toString() == text; });
    }
    void setFrontmost(const QString& name) {
        state().currentFrontmostAppName.set(name);
        settle();
    }
    void present(SheetLevel level) {
        if (level == SheetLevel::releaseNotes) state().isWhatsNewPresented.set(true);
        if (level == SheetLevel::help) state().isHelpPresented.set(true);
        if (level == SheetLevel::savePreset) state().beginSavePresetFlow();
        settle();
    }
    /// Release notes with those changes.
    void setNotes(const QStringList& changes, const std::optional<QString>& tag = {}) {
        state().latestChangelog.set(ChangelogRelease{
            .version = u"9.8"_s, .date = {}, .dateLabel = {}, .tag = tag, .changes = changes});
        settle();
    }

    std::unique_ptr<WhatsNewSheet> m_whatsNew;
};

}  // namespace

TEST_F(SheetsTest, ASheetKeepsTheKeyboardAndGivesItBack) {
    addMask(u"Mask 1"_s, {100, 100, 320, 180});
    state().selectMask(mask().id);
    openDashboard();
    view(u"Duplicate"_s)->setFocus();
    const int childCount = QAccessible::queryAccessibleInterface(m_view.get())->childCount();
    EXPECT_GT(childCount, 1);
    present(SheetLevel::savePreset);
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(m_view.get());
    ASSERT_EQ(told->childCount(), 1) << "what lies behind is told";
    EXPECT_EQ(told->indexOfChild(told->child(0)), 0);
    QAccessibleInterface* const sheet = told->child(0)->child(0);
    EXPECT_EQ(sheet->role(), QAccessible::Dialog);
    EXPECT_EQ(sheet->text(QAccessible::Name), u"Save Preset");
    EXPECT_TRUE(sheet->state().modal);

    EXPECT_TRUE(field(u"preset-name-field"_s).hasFocus());
    EXPECT_EQ(field(u"preset-name-field"_s).selectedText(), u"Mask 1 Layout");
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        QWidget* const start = QApplication::focusWidget();
        QStringList visited;
        do {
            press(key);
            ASSERT_TRUE(isInSheet(QApplication::focusWidget()));
            visited << nameOf(QApplication::focusWidget());
        } while (QApplication::focusWidget() != start && visited.size() < 20);
        EXPECT_EQ(visited.size(), 5) << visited.join(u", "_s).toStdString();
    }
    // A click beside the sheet and what lies behind do not get the keyboard.
    QTest::mouseClick(m_view->windowHandle(), Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(field(u"preset-name-field"_s).hasFocus());
    QTest::mouseClick(m_view->windowHandle(), Qt::LeftButton, {},
                      view(u"create-mask-button"_s)->mapTo(m_view.get(), QPoint(40, 10)));
    settle();
    EXPECT_EQ(masks().size(), 1);
    press(Qt::Key_Escape);
    EXPECT_TRUE(view(u"Duplicate"_s)->hasFocus());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(m_view.get())->childCount(), childCount);

    present(SheetLevel::savePreset);
    state().replayOnboarding();
    EXPECT_TRUE(field(u"preset-name-field"_s).hasFocus()) << "the walkthrough waits behind";
    press(Qt::Key_Escape);
    EXPECT_TRUE(view(u"onboarding-overlay"_s)->hasFocus());
}

TEST_F(SheetsTest, TheTopmostIsSeenAndThenTheNext) {
    openDashboard();
    for (const auto& [level, seen] : {std::pair(SheetLevel::help, u"How Veyla Works"_s),
                                      {SheetLevel::releaseNotes, u"How Veyla Works"_s},
                                      {SheetLevel::savePreset, u"Save Preset"_s}}) {
        present(level);
        EXPECT_EQ(sheetName(), seen);
    }
    press(Qt::Key_Escape);
    EXPECT_EQ(sheetName(), u"How Veyla Works");
    EXPECT_FALSE(state().hasCompletedOnboarding.value());
    press(Qt::Key_Return);
    EXPECT_TRUE(state().hasCompletedOnboarding.value())
        << "who closes the help needs no walkthrough";
    EXPECT_FALSE(state().isHelpPresented.value());
    EXPECT_EQ(sheetName(), u"What's New");
    press(Qt::Key_Escape);
    EXPECT_FALSE(state().isWhatsNewPresented.value());
    EXPECT_EQ(sheetName(), QString());
}

TEST_F(SheetsTest, APresetIsSavedFromItsDrafts) {
    openDashboard();
    setFrontmost(u"<b>Zoom</b>"_s);
    present(SheetLevel::savePreset);
    EXPECT_EQ(field(u"preset-trigger-field"_s).text(), u"Manual");
    const QString target = u"Will auto-apply when %1 becomes active."_s;
    EXPECT_FALSE(has(target.arg(u"<b>Zoom</b>"_s)));
    click(u"Auto-apply for current frontmost app"_s);
    EXPECT_TRUE(has(target.arg(u"<b>Zoom</b>"_s)));
    setFrontmost(u"OBS"_s);
    state().currentFrontmostBundleIdentifier.set(u"org.example.Recorder"_s);
    EXPECT_TRUE(has(target.arg(u"OBS"_s)));

    field(u"preset-name-field"_s).setFocus();
    type(u"  "_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(state().presets.value().isEmpty() && state().isSavePresetPresented.value());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(view(u"A preset needs a name."_s))->role(),
              QAccessible::AlertMessage)
        << "is not spoken";
    EXPECT_EQ(field(u"preset-name-field"_s).accessibleDescription(), u"A preset needs a name.");
    click(u"Save"_s);
    EXPECT_TRUE(field(u"preset-name-field"_s).hasFocus());
    type(u" Calls "_s);
    EXPECT_FALSE(has(u"A preset needs a name."_s));
    field(u"preset-trigger-field"_s).setFocus();
    type(u"OBS"_s);
    press(Qt::Key_Enter);
    ASSERT_EQ(state().presets.value().size(), 1);
    const MaskPreset& preset = state().presets.value().first();
    EXPECT_EQ(preset.name, u"Calls");
    EXPECT_EQ(preset.trigger, u"OBS");
    EXPECT_TRUE(preset.autoApply);
    EXPECT_EQ(preset.targetAppName, u"OBS");
    EXPECT_EQ(preset.targetBundleIdentifier, u"org.example.Recorder");
    EXPECT_EQ(sheetName(), QString());

    present(SheetLevel::savePreset);
    EXPECT_EQ(field(u"preset-name-field"_s).text(), u"Preset 2") << "fresh drafts";
    EXPECT_FALSE(has(target.arg(u"OBS"_s)));
    click(u"Cancel"_s);
    EXPECT_EQ(sheetName(), QString());
    EXPECT_EQ(state().presets.value().size(), 1);
    present(SheetLevel::savePreset);
    field(u"preset-trigger-field"_s).setFocus();
    type(u"  "_s);
    press(Qt::Key_Return);
    ASSERT_EQ(state().presets.value().size(), 2);
    EXPECT_EQ(state().presets.value().first().trigger, u"Manual");
    EXPECT_EQ(state().presets.value().first().targetAppName, std::nullopt);
}

TEST_F(SheetsTest, APresetIsBoundToTheApplicationThatIsChosenAndNamed) {
    desktop().workspace.launch({u"Zoom"_s, u"us.zoom.xos"_s});
    desktop().workspace.activate({u"Veyla"_s, u"app.veyla.Veyla"_s});
    openDashboard();
    present(SheetLevel::savePreset);
    click(u"Auto-apply for current frontmost app"_s);
    EXPECT_FALSE(has(u"Will auto-apply when Veyla becomes active."_s));
    click(u"Save"_s);
    EXPECT_TRUE(state().presets.value().isEmpty());
    EXPECT_TRUE(has(u"Choose the app to auto-apply for."_s));
    EXPECT_TRUE(view(u"preset-choose-app-button"_s)->hasFocus());
    press(Qt::Key_Space);
    ASSERT_NE(openMenu(), nullptr);
    EXPECT_EQ(titles(openMenu()), QStringList{u"Zoom"_s});
    choose(openMenu(), u"Zoom"_s);
    EXPECT_TRUE(has(u"Will auto-apply when Zoom becomes active."_s));
    EXPECT_FALSE(has(u"Choose the app to auto-apply for."_s));
    click(u"Save"_s);
    ASSERT_EQ(state().presets.value().size(), 1);
    EXPECT_EQ(state().presets.value().first().targetBundleIdentifier, u"us.zoom.xos");
}

TEST_F(SheetsTest, TheHelpExplainsAndFollowsTheFrontmostApplication) {
    openDashboard();
    setFrontmost(u"Zoom"_s);
    present(SheetLevel::help);
    EXPECT_TRUE(has(u"help-view"_s));
    EXPECT_EQ(sheetRect().width(), 520);
    const QString profiles =
        u"Save the current layout as a preset. You can auto-apply one for %1 or any other "
        "frontmost app."_s;
    for (const QString& name : {u"Zoom"_s, u"OBS <i>Studio</i>"_s, QString()}) {
        setFrontmost(name);
        EXPECT_TRUE(hasText(profiles.arg(name))) << name.toStdString();
    }
    EXPECT_EQ(nameOf(view(u"close-help-button"_s)), u"Close help");
    EXPECT_TRUE(view(u"close-help-button"_s)->hasFocus());
    click(u"close-help-button"_s);
    EXPECT_TRUE(!state().isHelpPresented.value() && state().hasCompletedOnboarding.value());
}

TEST_F(SheetsTest, ReleaseNotesAreLoadingShownOrReplaced) {
    openDashboard();
    using Changes = QStringList;
    const QString running = u"Version "_s + state().applicationVersion();
    const QString offline = u"You're on version "_s + state().applicationVersion() +
                            u". See the full changelog online."_s;
    const struct {
        const char* state;
        std::optional<Changes> changes;
        std::optional<QString> tag, error;
        QStringList shown;
        QStringList absent;
    } cases[] = {
        {"loading", {}, {}, {}, {running, u"Loading release notes…"_s}, {offline}},
        {"fallback",
         {},
         {},
         u"The error's own text"_s,
         {running, u"Couldn't load the latest notes."_s, offline, u"Open Changelog"_s},
         {u"Loading release notes…"_s, u"The error's own text"_s}},
        {"notes",
         Changes{u"A <b>"_s},
         u"Beta"_s,
         {},
         {u"Version 9.8 · Beta"_s, u"A <b>"_s},
         {offline, u"Loading release notes…"_s}},
        {"no tag", Changes{u"A"_s}, {}, {}, {u"Version 9.8"_s}, {u"A <b>"_s}},
        {"an empty tag", Changes{}, QString(), {}, {u"Version 9.8"_s}, {u"A"_s}},
        {"notes, then an error", Changes{u"B"_s}, {}, u"failed"_s, {u"B"_s}, {offline}},
    };
    present(SheetLevel::releaseNotes);
    EXPECT_EQ(sheetRect().width(), 460);
    EXPECT_TRUE(has(u"whats-new-view"_s) && hasText(u"What's New"_s));
    for (const auto& [name, changes, tag, error, shown, absent] : cases) {
        SCOPED_TRACE(name);
        state().changelogError.set(error);
        changes ? setNotes(*changes, tag) : settle();
        for (const QString& text : shown)
            EXPECT_TRUE(hasText(text)) << text.toStdString();
        for (const QString& text : absent)
            EXPECT_FALSE(hasText(text)) << text.toStdString();
        EXPECT_EQ(all<Spinner>().at(0)->isVisible(), name == std::string("loading"));
        EXPECT_TRUE(view(u"whats-new-continue-button"_s)->hasFocus());
    }
    setNotes(QStringList(40, u"The same change"_s));
    const auto views = all<QWidget>();
    EXPECT_EQ(std::count_if(views.begin(), views.end(),
                            [](const QWidget* each) {
                                return each->isVisible() &&
                                       each->property("text") == u"The same change"_s;
                            }),
              40)
        << "equal texts are all listed";
    EXPECT_EQ(all<NotesList>().at(0)->height(), 280);
    const QString address = u"https://"_s + QString(300, u'x');
    setNotes({u"See "_s + address});
    QWidget* const note = view(u"See "_s + address);
    EXPECT_GT(note->height(), 3 * note->fontMetrics().height());
    EXPECT_LE(note->mapTo(m_view.get(), note->rect().topRight()).x(), sheetRect().right() - 28)
        << "a long word is cut off";
    setNotes(QStringList(40, u"The same change"_s));
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    EXPECT_EQ(nameOf(QApplication::focusWidget()), u"Release notes") << "to scroll them by keys";

    // This platform of the toolkit opens no pages.
    click(u"View full changelog"_s);
    auto* const failure =
        static_cast<QLabel*>(view(u"whats-new-page-failure"_s)->findChild<QLabel*>());
    EXPECT_EQ(failure->text(), u"The page could not be opened: https://veyla.example/changelog");
    EXPECT_TRUE(failure->isVisible() && m_view->rect().contains(sheetRect()));
    view(u"View full changelog"_s)->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(failure->selectedText(), failure->text()) << "to be copied by keys";

    click(u"Continue"_s);
    EXPECT_FALSE(state().isWhatsNewPresented.value());
    EXPECT_TRUE(state().latestChangelog.value().has_value());
}

TEST_F(SheetsTest, ASheetIsInsideItsWindowAtAnySize) {
    openDashboard();
    setNotes(QStringList(40, u"Change"_s));
    present(SheetLevel::releaseNotes);
    const QRect large = sheetRect();
    for (const QSize size :
         {QSize(1180, 740), QSize(900, 420), QSize(900, 240), QSize(1300, 900)}) {
        m_view->resize(size);
        EXPECT_TRUE(m_view->rect().contains(sheetRect())) << testing::PrintToString(sheetRect());
        EXPECT_LE((sheetRect().center() - m_view->rect().center()).manhattanLength(), 2);
        EXPECT_EQ(sheetRect().width(), 460);
        press(Qt::Key_Tab);
        const QWidget* const focused = QApplication::focusWidget();
        EXPECT_FALSE(focused->visibleRegion().isEmpty()) << "what has the keyboard is not seen";
    }
    EXPECT_EQ(sheetRect().size(), large.size());
}

TEST_F(SheetsTest, CommandsOnTheSelectedMaskWaitBehindASheet) {
    addMask(u"Mask 1"_s, {100, 100, 320, 180});
    state().selectMask(mask().id);
    const VeylaCommands commands(state(), nullptr);
    ContentView window(state(), desktop().mainLoop, commands, [] {});
    window.show();
    const auto action = [&](const QString& title) {
        for (const QAction* const menu : window.menuBar()->actions())
            for (QAction* const each : menu->menu()->actions())
                if (each->text() == title) return each;
        throw std::runtime_error("no " + title.toStdString());
    };
    for (const bool hasSheet : {false, true, false}) {
        state().isWhatsNewPresented.set(hasSheet);
        settle();
        for (const auto* const title :
             {"Duplicate Selected Mask", "Toggle Selected Visibility", "Delete Selected Mask"})
            EXPECT_EQ(action(QString::fromLatin1(title))->isEnabled(), !hasSheet) << title;
        for (const auto* const title : {"New Mask", "Hide All Masks", "Lock Editing", "What's New"})
            EXPECT_TRUE(action(QString::fromLatin1(title))->isEnabled()) << title;
    }
}

TEST_F(SheetsTest, NothingIsCutOffInLargerText) {
    const QFont former = QApplication::font();
    QFont large = former;
    large.setPixelSize(26);
    QApplication::setFont(large);
    openDashboard({1400, 900});
    setNotes({u"A change that needs more than one line to be told"_s});
    for (const SheetLevel level :
         {SheetLevel::releaseNotes, SheetLevel::help, SheetLevel::savePreset}) {
        present(level);
        state().presetDraftAutoApply.set(true);
        for (QWidget* const each : all<QWidget>()) {
            const bool isText = dynamic_cast<TextLabel*>(each) || dynamic_cast<StyledButton*>(each);
            if (!isText || !each->isVisible() || !isInSheet(each)) continue;
            const int needed = each->hasHeightForWidth() ? each->heightForWidth(each->width())
                                                         : each->sizeHint().height();
            EXPECT_GE(each->height(), needed) << nameOf(each).toStdString();
            EXPECT_GE(each->width(), each->hasHeightForWidth() ? 0 : each->sizeHint().width())
                << nameOf(each).toStdString();
        }
    }
    QApplication::setFont(former);
}
