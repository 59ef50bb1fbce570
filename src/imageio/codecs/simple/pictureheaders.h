// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QSize>
#include <QString>

#include <array>
#include <optional>

namespace plexa
{

/// What a file's header says that Qt's image readers keep to themselves.
struct PictureHeader {
    QByteArray iccProfile;
    int depth = 0;      ///< bits a component, 0: not said
    QString colorModel; ///< "RGB", "Gray", "CMYK", "Lab"; empty: not said
    double dpiWidth = 0;
    double dpiHeight = 0;
    std::optional<bool> hasAlpha;
    std::array<int, 4> sampleBits = {}; ///< of red, green, blue and alpha, where Qt fills up what lacks to 8
                                        ///< with zeros; 0: nothing to mend
    QSize size;                         ///< where the file may claim more than Qt is willing to speak of
    bool endsEarly = false;             ///< the file is cut where Qt would not notice
};

/// Each takes a device of random access at the start of the file, leaves its position anywhere, and gives
/// what could be read: damage is left to the decoder to find.
PictureHeader readWebpHeader(QIODevice &device);
PictureHeader readBmpHeader(QIODevice &device);
PictureHeader readNetpbmHeader(QIODevice &device);

} // namespace plexa
