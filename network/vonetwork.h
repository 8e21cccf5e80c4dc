#pragma once

#include "network/vonetwork_export.h"

#include <QObject>
#include <QString>

class VoNetworkIntf;

/// Creates and releases service objects. All functions are static; no instance is needed.
class VONETWORK_EXPORT VoNetwork : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(VoNetwork)

public:
    VoNetwork();
    ~VoNetwork() override;

    /// A new service object, never null and without a parent. The caller owns it until it hands it
    /// to ReleaseVoNetwork(). To be called on a thread that runs a Qt event loop. Returns once the
    /// command that prints the device identifier has ended, which has no time-out.
    static VoNetworkIntf *CreateVoNetworkIntf();

    /// Destroys @p intf, which must not be null, when control returns to the event loop of its
    /// thread. Operations that are pending then are not answered.
    static void ReleaseVoNetwork(VoNetworkIntf *intf);

    /// The version of this library, four numbers with dots between them. Needs no service object
    /// and may be called from any thread.
    static QString GetAppVersion();
};
