#pragma once

class SystemLog;
class XcbConnection;

/// Releases the mask windows, found by their property, that killed processes left retained on the
/// server. Windows of this connection and of a Veyla that is alive are left alone.
void killLeftoverWindows(XcbConnection& connection, SystemLog& log);
