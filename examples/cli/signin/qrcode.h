#pragma once

#include <QBitArray>

#include <optional>

class QImage;

/// The modules of a QR code.
class QrCode
{
public:
    /// The code that @p picture shows upright, dark on light and undistorted; no value when it
    /// shows none in this way.
    static std::optional<QrCode> read(const QImage &picture);

    /// Modules a side.
    int size() const;

    /// Whether a module is dark. Those outside of the code are light.
    bool isDark(int column, int row) const;

private:
    explicit QrCode(int size);

    int m_size;
    QBitArray m_dark;
};
