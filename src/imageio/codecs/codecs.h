// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

InfoFunction readJpegInfo, readPngInfo, readTiffInfo, readHeifInfo, readGifInfo, readJp2Info, readRawInfo,
    readTgaInfo;
ReaderFunction openJpegReader, openPngReader, openTiffReader, openHeifReader, openGifReader, openJp2Reader,
    openRawReader, openTgaReader;
WriterFunction openJpegWriter, openPngWriter, openTiffWriter, openHeicWriter, openGifWriter, openBmpWriter;
RetouchFunction retouchJpeg;
RetouchBytesFunction retouchJpegBytes;
WriterBytesFunction jpegWriterBytes, tiffWriterBytes, heicWriterBytes, gifWriterBytes;

/// Does libheif have an encoder for HEIC?
bool canWriteHeic();

/// The codec that reads through one of Qt's image plugins: of an animation the first frame, of an icon the
/// largest picture.
/// @param plugin  "bmp", "webp", "ico", "icns", "ppm", "pgm" or "pbm"
/// @return a codec without functions if the plugin is not installed
Codec qtCodec(const char *plugin);

} // namespace plexa
