#pragma once

/// Runs the whole program: sets up the camera SDK, shows the main window and tears everything down in the
/// opposite order when the last window is closed. Returns the exit code of the event loop. Catches nothing:
/// throws what Tessal::TessalInitialize() throws.
[[nodiscard]] int runApplication(int argc, char** argv);
