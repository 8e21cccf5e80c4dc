#pragma once

#include <QBitArray>

#include <optional>

class QImage;

/// The modules of a QR code.
class QrCode
{
public:
    /// What @p picture shows upright, dark on light and undistorted; nothing when it does not.
    static std::optional<QrCode> read(const QImage &picture);

    /// Modules a side.
    int size() const;

    /// Every module outside of the code is light.
    bool isDark(int column, int row) const;

private:
    explicit QrCode(int size);

    int m_size;
    QBitArray m_dark;
};
