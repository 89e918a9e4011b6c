#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Rule {
    const char* what;
    /// Folders below src, separated by blanks.
    const char* folders;
    const char* forbidden;
};

// What the link targets cannot see, because the headers are all on the include path.
constexpr Rule rules[] = {
    {"the reactive facility knows nothing of the project", "Reactive",
     R"(#include "(?!Reactive/))"},
    {"records know other records only", "Models", R"(#include "(?!Models/))"},
    {"ports know no back end", "Platform/*.h",
     R"(#include "(Platform/(Qt|X11|Headless)|App|Views))"},
    {"drawing knows records only", "Drawing", R"(#include "(?!Drawing/|Models/))"},
    {"services know no back end and no application", "Services",
     R"(#include "(Platform/(Qt|X11|Headless)|App|Views))"},
    {"the application knows no back end", "App", R"(#include "(Platform/(Qt|X11|Headless)|Views))"},
    {"X11 stays in its back end",
     "Reactive Models Drawing Services App Platform/Headless Platform/Qt",
     R"(#include [<"](xcb|X11)/)"},
    {"OpenSSL stays in its folder",
     "Reactive Models Drawing Services App Platform/Headless Platform/Qt Platform/X11",
     R"(#include <openssl/)"},
    {"widgets stay out of the core", "Reactive Models Drawing Services App",
     R"(#include <(Q\w*Widget|QApplication|QDBus\w*)>)"},
    {"time goes through the main loop", "Reactive Models Drawing Services App",
     R"(\b(QTimer|QElapsedTimer|QDateTime::current|steady_clock|system_clock|sleep_for|usleep)\b)"},
};

QStringList filesIn(const QString& folder) {
    const bool isHeaders = folder.endsWith(u"/*.h");
    const QDir directory(QStringLiteral(VEYLA_SOURCE_DIR "/src/") + folder.section(u"/*"_s, 0, 0),
                         isHeaders ? u"*.h"_s : u"*.h;*.cpp"_s, {}, QDir::Files);
    QStringList paths;
    for (const QFileInfo& file : directory.entryInfoList())
        paths << file.filePath();
    return paths;
}

}  // namespace

TEST(Layers, NoFileUsesWhatItsLayerMayNot) {
    for (const Rule& rule : rules) {
        const QRegularExpression forbidden(QString::fromLatin1(rule.forbidden));
        ASSERT_TRUE(forbidden.isValid()) << rule.what;
        for (const QString& folder : QString::fromLatin1(rule.folders).split(QLatin1Char(' '))) {
            const QStringList paths = filesIn(folder);
            EXPECT_FALSE(paths.isEmpty()) << folder.toStdString() << " has no files to look at";
            for (const QString& path : paths) {
                QFile file(path);
                ASSERT_TRUE(file.open(QIODevice::ReadOnly));
                const auto found = forbidden.match(QString::fromUtf8(file.readAll()));
                EXPECT_FALSE(found.hasMatch()) << path.toStdString() << ": " << rule.what << ": "
                                               << found.captured().toStdString();
            }
        }
    }
}
