// Another application. Its arguments say what it does:
//   windows CLASS COUNT  shows windows of a class, prints their ids in a line, and stays
//   vanish CLASS         shows one, asks for the focus for it, and ends at once
//   hidden               makes a window that is never shown, and stays
//   service NAME         takes a name on the session bus, and stays
//   idle                 stays

#include "support/desktop/NeighbourClient.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <cstdio>
#include <exception>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

xcb_window_t show(NeighbourClient& client, const QString& windowClass, int number) {
    const xcb_window_t window =
        client.create({.frame = {100 + 400 * number, 100, 300, 200}, .windowClass = windowClass});
    client.map(window);
    return window;
}

int behave(const QCoreApplication& application) {
    const QStringList arguments = application.arguments();
    const QString mode = arguments.value(1);
    if (mode == "service"_L1) {
        if (!QDBusConnection::sessionBus().registerService(arguments.value(2))) return 1;
        return QCoreApplication::exec();
    }
    if (mode == "idle"_L1) return pause();
    NeighbourClient client;
    if (mode == "hidden"_L1) {
        client.create({});
        client.roundTrip();
    } else if (mode == "windows"_L1) {
        for (int number = 0; number < arguments.value(3).toInt(); ++number)
            std::printf("%u ", show(client, arguments.value(2), number));
        std::puts("");
        std::fflush(stdout);
    } else if (mode == "vanish"_L1) {
        client.requestActivation(show(client, arguments.value(2), 0));
        return 0;
    } else {
        return 2;
    }
    return pause();
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return behave(QCoreApplication(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
