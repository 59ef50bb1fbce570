// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QRegularExpression>

namespace plexa::test
{

/// May a copy say this differently, lack it or have it on top? docs/metadata.md gives the reasons.
/// @param tag  "family 0:family 1:tag" of exiftool
inline bool mayDiffer(const QString &tag)
{
    static const QRegularExpression expected(QStringLiteral(
        "^SourceFile$"
        // other pictures of the file, and how raw data and TIFF lie in it
        "|^EXIF:(IFD[1-9]|SubIFD[0-9]*):|^MakerNotes:.*:PreviewImage|^MakerNotes:PreviewIFD:|^MakerNotes:"
        "KodakIFD:"
        "|^EXIF:IFD0:(SubfileType|Image(Width|Height)|BitsPerSample|Compression|PhotometricInterpretation"
        "|Strip.*|RowsPerStrip|SamplesPerPixel|PlanarConfiguration|Predictor|FillOrder|YCbCr.*|Tile.*"
        "|ExtraSamples|SampleFormat|InkSet|ColorMap"
        "|Matteing|PageNumber|Preview.*|ThumbnailTIFF|DNG.*|CFA.*|Black.*|White.*|Linear.*|Color.*|Analog.*"
        "|Baseline.*|AsShot.*|Calibration.*|Default.*|ActiveArea|NoiseReduction.*|Profile.*)$"
        // the picture is upright, sRGB, of another size, and another program's
        "|^EXIF:IFD0:(Orientation|Software|WhitePoint|PrimaryChromaticities)$"
        "|^EXIF:ExifIFD:(ColorSpace|ExifImageWidth|ExifImageHeight|Gamma)$|^EXIF:InteropIFD:InteropIndex$"
        "|^XMP:XMP-tiff:(ImageWidth|ImageHeight|Orientation|Software)$"
        "|^XMP:XMP-exif:(ColorSpace|ExifImage.*)$|^XMP:XMP-xmp:CreatorTool$"
        "|^XMP:XMP-photoshop:(ICCProfileName|ColorMode)$|^XMP:XMP-x:XMPToolkit$"
        // pictures beside it that are not there any more
        "|^XMP:XMP-(hdrgm|apdi|semanticSegmentationMatte|GContainer.*|HDRGainMap):"
        // Photoshop's own thumbnail, parts of the picture, and what it says of its file
        "|^Photoshop:.*:?(PhotoshopThumbnail|ClippingPathName|HasRealMergedData|NumSlices|SlicesGroupName"
        "|PhotoshopFormat|PhotoshopQuality|ProgressiveScans|ReaderName|WriterName)$"));
    return expected.match(tag).hasMatch();
}

} // namespace plexa::test
