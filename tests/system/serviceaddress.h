#pragma once

#include <QString>

/// Where the service is for these tests: at the library's built-in base address, the only one that
/// vospeak knows. Tests that do without vospeak are given a port of their own in the environment,
/// so that they run beside the others.
QString serviceAddress();
