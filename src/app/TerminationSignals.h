// SIGTERM (logout, `kill`) and SIGINT (Ctrl+C in a terminal) end the application the same way
// quitting does, so the hot keys are released and the pieces are closed in order.
#pragma once

namespace glyphmill {

// Call once, after the application object exists. Returns false if the signals could not be
// routed; they then end the process at once, as by default.
bool quitOnTerminationSignals();

} // namespace glyphmill
