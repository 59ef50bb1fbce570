// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/tiffdirectory.h"

#include <QIODevice>

#include <vector>

namespace plexa
{

/// Reads the directories of a TIFF file or of an EXIF structure, BigTIFF included. Caches nothing.
class TiffDirectoryReader
{
public:
    struct Directory {
        TiffFields fields;  ///< of several with a tag the first
        int fieldCount = 0; ///< of all
        quint64 next = 0;   ///< position of the next directory in the chain; 0: none
        quint64 bytes = 0;  ///< of the table, the fields' number and the next position included
    };

    /// @param device  random access, the structure from its start on; must outlive the object. It is left at
    ///                any position.
    explicit TiffDirectoryReader(QIODevice &device);

    /// Has the structure a valid header? Otherwise it has no directories.
    bool isTiff() const { return m_order.has_value(); }

    /// Position of the first directory; 0: there is none.
    quint64 first() const { return m_first; }

    /// The directory at that position, with as many of its fields as the file has.
    /// @return nothing if the position is invalid
    std::optional<Directory> read(quint64 position) const;

    /// The first of a field's values; 0 if there is none or it is not an unsigned integer.
    quint64 number(const TiffField &field) const;

    /// A field's values, `most` at most, as far as present.
    std::vector<quint64> numbers(const TiffField &field, quint32 most) const;

    /// Where the values of a field are; 0: in the directory itself.
    quint64 positionOf(const TiffField &field) const;

    /// The bytes of a field's values; empty if truncated or more than `most`.
    QByteArray value(const TiffField &field, qint64 most) const;

private:
    QByteArray bytesAt(quint64 position, qint64 count) const;
    quint64 numberAt(const QByteArray &bytes, qsizetype at, int count) const;
    int offsetBytes() const { return m_isBig ? 8 : 4; }

    QIODevice &m_device;
    std::optional<TiffOrder> m_order;
    bool m_isBig = false;
    quint64 m_first = 0;
};

} // namespace plexa
