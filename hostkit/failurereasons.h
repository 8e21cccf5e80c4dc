#pragma once

#include "hostkit/reason.h"

/// Learns why the service's requests fail. The interface does not say; the library writes it to the
/// debug output, which this reads while an object of the class lives: a message handler stands in
/// front of the host's, which gets every message that it would have got without. The jobs need it
/// for reasons, and for renewing a token that the service takes no longer.
///
/// A host makes one object after it has set its own handler and rules of logging, and before the
/// first job; several objects are as one. Messages come from any thread.
class FailureReasons
{
    Q_DISABLE_COPY(FailureReasons)

public:
    FailureReasons();
    ~FailureReasons();

    /// Why the last request of this thread failed that has done so since this was asked last; none:
    /// the library said nothing. To be asked in the handler of the signal that tells of a failure.
    static Reason take();

    /// Whether the library has fetched the last picture of a sign-in code in this thread by https:
    /// anybody on the way could have replaced another.
    static bool isPictureTrusted();
};
