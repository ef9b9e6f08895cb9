#pragma once

/// Runs the whole program: sets up the camera SDK, shows the main window and, when the last window is
/// closed, tears everything down in reverse order. Returns the exit code of the event loop. Catches nothing,
/// so it throws what Tessal::TessalInitialize() throws.
[[nodiscard]] int runApplication(int argc, char** argv);
