#pragma once

#include "network/vonetwork_export.h"

#include <QObject>
#include <QString>

class VoNetworkIntf;

/// Creates and releases service objects.
class VONETWORK_EXPORT VoNetwork : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(VoNetwork)

public:
    VoNetwork();
    ~VoNetwork() override;

    /// A new service object with no parent, which the caller owns until it hands it to
    /// ReleaseVoNetwork(). To be called on a thread that runs a Qt event loop; returns once the
    /// command that prints the device identifier has ended.
    static VoNetworkIntf *CreateVoNetworkIntf();

    /// Destroys @p intf when control returns to its thread's event loop; it must not be null.
    /// Operations that are pending then are not answered.
    static void ReleaseVoNetwork(VoNetworkIntf *intf);

    /// The version of this library, which every request names.
    static QString GetAppVersion();
};
