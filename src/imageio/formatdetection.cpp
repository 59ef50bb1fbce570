// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/formatdetection.h"

#include "imageio/container/tiffpictures.h"

namespace plexa
{

namespace
{

bool isRaw(const ImageFormat *format)
{
    static const Codec *const rawCodec = imageFormatOfType(QStringLiteral("image/x-dcraw"))->codec;
    return format && format->codec == rawCodec;
}

} // namespace

QList<const ImageFormat *> formatsToTry(QIODevice &device, QByteArrayView head, const QString &suffix)
{
    const ImageFormat *ofContents = imageFormatOfContents(head);
    const ImageFormat *ofName = imageFormatOfSuffix(suffix);
    if (!ofContents) {
        // A format with a signature would have been known by it.
        return ofName && !ofName->matches ? QList{ofName} : QList<const ImageFormat *>();
    }
    const bool isRawByName = isRaw(ofName) && ofName->matches(head);
    if (isRaw(ofContents)) // several makers may share a signature
        return {isRawByName && !isClassicTiff(head) ? ofName : ofContents};
    const TiffPictures pictures = isClassicTiff(head) ? readTiffPictures(device) : TiffPictures();
    if (!pictures.isTiff)
        return {ofContents};
    if (pictures.isDng)
        return {imageFormatOfType(QStringLiteral("image/x-adobe-dng"))};
    const ImageFormat *raw = isRawByName ? ofName : imageFormatOfType(QStringLiteral("image/x-dcraw"));
    if (pictures.hasRawPicture)
        return {raw};
    if (pictures.beginsReduced && (pictures.hasMake || isRawByName)) {
        // What a camera keeps beside its preview may lie behind the end of a cut file, or be of its own kind.
        if (pictures.lacksInnerPictures || (pictures.hasInnerPictures && isRawByName))
            return {raw};
        return pictures.hasInnerPictures || isRawByName ? QList{raw, ofContents} : QList{ofContents};
    }
    if (!isRawByName)
        return {ofContents};
    // Cameras write their name; without it a TIFF file is likelier to have got a wrong name.
    return pictures.hasMake ? QList{raw, ofContents} : QList{ofContents, raw};
}

} // namespace plexa
