#pragma once

#include "support/desktop/ChildProcess.h"

/// A picom that composites with the RENDER extension, without fading, shadows or other decoration.
class Compositor {
public:
    /// Returns when it owns the compositing selection of the display that the environment names.
    /// Throws std::runtime_error when that does not happen.
    explicit Compositor(const QProcessEnvironment& environment);

private:
    ChildProcess m_process;
};
