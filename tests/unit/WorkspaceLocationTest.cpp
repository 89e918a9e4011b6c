#include "App/WorkspaceLocation.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

TEST(WorkspaceLocationTest, FollowsTheBaseDirectories) {
    const QByteArray previous = qgetenv("XDG_DATA_HOME");
    const QString usual = QDir::homePath() + u"/.local/share/Veyla"_s;
    const struct {
        const char* dataHome;
        QString expected;
    } cases[] = {{"/some/where", u"/some/where/Veyla"_s}, {"", usual}, {"relative/path", usual}};
    for (const auto& [dataHome, expected] : cases) {
        qputenv("XDG_DATA_HOME", dataHome);
        EXPECT_EQ(workspaceDirectory(), expected) << dataHome;
    }
    qunsetenv("XDG_DATA_HOME");
    EXPECT_EQ(workspaceDirectory(), usual);
    if (!previous.isNull()) qputenv("XDG_DATA_HOME", previous);
}
