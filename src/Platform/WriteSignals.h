#pragma once

/// From now on, writing to a pipe that nobody reads (SIGPIPE) or beyond the limit of a file's size
/// (SIGXFSZ) fails as any other write does, instead of ending the process. Handlers do that, since
/// they end with an exec: programs that this process starts get the system's way back. A signal
/// that is ignored already stays so.
void absorbWriteSignals();
