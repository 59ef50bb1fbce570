// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/tiffdirectory.h"

#include <QIODevice>

#include <vector>

namespace plexa
{

/// Reads the directories of a TIFF file or of an EXIF structure, BigTIFF included, where they lie. Only what
/// is asked for is read, and nothing is kept.
class TiffDirectoryReader
{
public:
    struct Directory {
        TiffFields fields;  ///< of several with a tag the first
        int fieldCount = 0; ///< of all
        quint64 next = 0;   ///< position of the directory behind it in the chain; 0: none
    };

    /// @param device  random access, the structure from its start on; must outlive the object. It is left at
    ///                any position.
    explicit TiffDirectoryReader(QIODevice &device);

    /// Does the structure begin as one does? If it does not, it has no directories.
    bool isTiff() const { return m_order.has_value(); }

    /// Position of the first directory; 0: there is none.
    quint64 first() const { return m_first; }

    /// The directory at that position, with as many of its fields as the file has.
    /// @return none where no directory can be
    std::optional<Directory> read(quint64 position) const;

    /// The first of a field's values, which has to be a whole number without a sign; 0 where it has none.
    quint64 number(const TiffField &field) const;

    /// A field's values, `most` at most, as far as the file has them.
    std::vector<quint64> numbers(const TiffField &field, quint32 most) const;

    /// The bytes of a field's values; empty where the file ends before them or there are more than `most`.
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
