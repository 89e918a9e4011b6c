#include "App/CommandLine.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

CommandLine only(Command command) {
    return {command, QString(), false};
}

CommandLine preset(const QString& name) {
    return {Command::applyPreset, name, false};
}

TEST(CommandLineTest, ReadsWhatMakesSense) {
    const struct {
        QStringList arguments;
        CommandLine expected;
    } cases[] = {
        {{}, only(Command::start)},
        {{u"--background"_s}, only(Command::startInBackground)},
        {{u"-session"_s, u"10a4_0"_s}, only(Command::startInBackground)},
        {{u"--background"_s, u"-session"_s, u"--help"_s}, only(Command::startInBackground)},
        {{u"apply-preset"_s, u"--"_s, u"-session"_s}, preset(u"-session"_s)},
        {{u"create-mask"_s}, only(Command::createMask)},
        {{u"toggle-masks"_s}, only(Command::toggleMasks)},
        {{u"show-masks"_s}, only(Command::showMasks)},
        {{u"hide-masks"_s}, only(Command::hideMasks)},
        {{u"toggle-editing"_s}, only(Command::toggleEditing)},
        {{u"toggle-dashboard"_s}, only(Command::toggleDashboard)},
        {{u"status"_s}, only(Command::status)},
        {{u"--"_s, u"status"_s}, only(Command::status)},
        {{u"status"_s, u"--json"_s}, {Command::status, QString(), true}},
        {{u"--json"_s, u"status"_s}, {Command::status, QString(), true}},
        {{u"quit"_s}, only(Command::quit)},
        {{u"apply-preset"_s, u"Büro 演示 🎥"_s}, preset(u"Büro 演示 🎥"_s)},
        {{u"apply-preset"_s, QString()}, preset(QString())},
        {{u"apply-preset"_s, u"-"_s}, preset(u"-"_s)},
        {{u"apply-preset"_s, u"--"_s, u"--json"_s}, preset(u"--json"_s)},
        {{u"--"_s, u"apply-preset"_s, u"-h"_s}, preset(u"-h"_s)},
        {{u"apply-preset"_s, u"quit"_s}, preset(u"quit"_s)},
        {{u"--help"_s}, only(Command::showHelp)},
        {{u"quit"_s, u"-h"_s}, only(Command::showHelp)},
        {{u"no-such-command"_s, u"--help"_s}, only(Command::showHelp)},
        {{u"--version"_s}, only(Command::showVersion)},
        {{u"-v"_s}, only(Command::showVersion)},
    };
    for (const auto& [arguments, expected] : cases) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        const auto parsed = parseCommandLine(arguments);
        EXPECT_EQ(parsed, (std::variant<CommandLine, UsageError>(expected)));
    }
}

TEST(CommandLineTest, SaysInOneLineWhatIsWrong) {
    const struct {
        QStringList arguments;
        QString expected;
    } cases[] = {
        {{u"--bogus"_s}, u"Unknown option \"--bogus\"."_s},
        {{u"-x"_s}, u"Unknown option \"-x\"."_s},
        {{u"-session"_s}, u"Unknown option \"-s\"."_s},
        {{u"-hx"_s}, u"Unknown option \"-x\"."_s},
        {{u"--help"_s, u"--bogus"_s}, u"Unknown option \"--bogus\"."_s},
        {{u"--a\nb"_s}, u"Unknown option \"--a\\nb\"."_s},
        {{u"--help=no"_s}, u"Unexpected value after '--help'."_s},
        {{u"apply-preset"_s, u"-name"_s}, u"Unknown option \"-n\"."_s},
        {{QString()}, u"Unknown command \"\"."_s},
        {{u"Status"_s}, u"Unknown command \"Status\"."_s},
        {{u"create"_s}, u"Unknown command \"create\"."_s},
        {{u"a\r\n\u001bb"_s}, u"Unknown command \"a\\r\\n\\u001Bb\"."_s},
        {{u"apply-preset"_s}, u"The command apply-preset needs a NAME."_s},
        {{u"apply-preset"_s, u"Work"_s, u"mode"_s},
         u"Unexpected argument \"mode\" after apply-preset."_s},
        {{u"quit"_s, u"now"_s}, u"Unexpected argument \"now\" after quit."_s},
        {{u"--json"_s}, u"The option --json goes with status only."_s},
        {{u"quit"_s, u"--json"_s}, u"The option --json goes with status only."_s},
        {{u"--background"_s, u"quit"_s}, u"The option --background goes with no command."_s},
    };
    for (const auto& [arguments, expected] : cases) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        const auto parsed = parseCommandLine(arguments);
        ASSERT_TRUE(std::holds_alternative<UsageError>(parsed));
        EXPECT_EQ(std::get<UsageError>(parsed), UsageError{expected + u" Try \"veyla --help\"."_s});
    }
}

}  // namespace
