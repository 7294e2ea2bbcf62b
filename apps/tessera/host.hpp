#pragma once

/// Runs the program `tessera` with the arguments of its `main` and returns its exit status.
///
/// The one function that the library of the host has for others. Lets no exception out.
extern "C" __attribute__((visibility("default"))) int tesseraRun(int argumentCount,
                                                                 char** arguments) noexcept;
