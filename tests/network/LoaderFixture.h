#pragma once

#include "Platform/Headless/HeadlessMainLoop.h"
#include "Platform/Qt/QtUrlLoader.h"
#include "support/Printing.h"
#include "support/desktop/HttpServer.h"
#include "support/desktop/Wait.h"

#include <gtest/gtest.h>

/// A server and a loader, with the loader's time on a virtual clock.
class LoaderTest : public testing::Test {
protected:
    /// Lets the network and the loader go on until the condition holds.
    bool goOnUntil(const std::function<bool()>& condition) {
        return waitUntil([&] {
            loop.runTurn();
            return condition();
        });
    }

    HeadlessMainLoop loop;
    QtUrlLoader loader{loop};
    HttpServer server;
};
