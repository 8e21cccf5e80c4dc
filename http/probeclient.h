#pragma once

class HttpClient;

/// The client of all probes of the calling thread, since an access manager works on its own thread
/// only. It goes with its thread; the application's with the application.
HttpClient *probeClient();
