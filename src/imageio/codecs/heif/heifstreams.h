// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QSize>

namespace plexa
{

/// What the head of a coded picture says of it.
struct CodedPicture {
    QSize size;          ///< as coded, before any cropping; empty: these bytes are no such head
    int chroma = 1;      ///< 0: gray, 1: 4:2:0, 2: 4:2:2, 3: 4:4:4
    bool isSound = true; ///< false: sizes of blocks contradict each other
};

/// @param nal  a sequence parameter set of HEVC with its two bytes of NAL unit header (ITU-T H.265, 7.3.2.2)
CodedPicture pictureOfHevc(const QByteArray &nal);

/// @param header  the payload of an AV1 sequence header OBU (AV1 bitstream specification, 5.5)
CodedPicture pictureOfAv1(const QByteArray &header);

} // namespace plexa
