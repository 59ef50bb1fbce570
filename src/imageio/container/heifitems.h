// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/heifgeometry.h"
#include "platform/result.h"

#include <QByteArray>
#include <QHash>
#include <QIODevice>
#include <QList>
#include <QSize>
#include <QStringList>

namespace plexa
{

/// One item of a HEIF file as its boxes describe it (ISO 14496-12, 8.11; ISO 23008-12).
struct HeifItem {
    struct Extent {
        qint64 offset = 0; ///< in the file, or in the item data box
        qint64 length = 0;
        qint64 start = 0; ///< of its bytes among the item's
    };

    QByteArray type;          ///< four letters: "hvc1", "av01", "grid", "Exif", ...
    QByteArray contentType;   ///< of a "mime" item
    bool isHidden = false;    ///< not to be shown by itself
    bool isInDataBox = false; ///< the extents lie in the item data box ("idat"), not in the file
    bool isElsewhere = false; ///< in another file, or in another item
    QList<Extent> extents;
    QSize size;                 ///< "ispe"; may be empty
    QByteArray configuration;   ///< "hvcC" or "av1C"; may be empty
    QByteArray auxiliaryType;   ///< "auxC"
    QList<HeifTurn> turns;      ///< in their order
    bool hasValidTurns = true;  ///< false: one is damaged, or there are too many
    QList<quint32> parts;       ///< "dimg": items that it is composed of, in order; may repeat
    QList<quint32> auxiliaries; ///< items that belong to it by "auxl"
    QList<quint32> thumbnails;  ///< items that belong to it by "thmb"
    QList<quint32> described;   ///< items that it describes, by "cdsc"
};

/// The items of a HEIF file, read without decoding, to measure the cost of decoding.
struct HeifItems {
    QHash<quint32, HeifItem> items;
    quint32 primary = 0;
    QByteArray dataBox;       ///< contents of "idat"
    bool hasSequence = false; ///< a film accompanies the items

    /// @param device  random access; its position is left anywhere
    /// @return the failure if the boxes are damaged or truncated
    [[nodiscard]] static Result<HeifItems> read(QIODevice &device);

    /// `count` bytes of an item's data from `offset` on, fewer at its end.
    QByteArray bytes(QIODevice &device, const HeifItem &item, qint64 offset, qint64 count) const;

    /// The first item of that type that describes the primary picture, or no particular one; may be null.
    /// @param contentType  of a "mime" item; null: any
    const HeifItem *metadata(const char *type, const char *contentType) const;

    /// Names of the pictures besides the primary one: "animation", "gain map", "depth map", "further
    /// pictures", "preview".
    QStringList furtherPictures() const;
};

} // namespace plexa
