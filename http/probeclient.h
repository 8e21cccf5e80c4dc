#pragma once

class HttpClient;

/// The client that sends the probes with which downloads begin. Each thread has one of its own,
/// since an access manager works on its own thread only. It goes with its thread; that of the
/// application's thread goes with the application.
HttpClient *probeClient();
