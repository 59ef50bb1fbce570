// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace plexa
{

/// The comments of a JPEG or GIF, in order and unchanged, up to 256 and 16 MB.
class FileComments
{
public:
    void add(const QByteArray &comment);

    /// Extends the last comment: a segment of a JPEG may be too short for one.
    void extendLast(const QByteArray &piece);

    /// All comments that are texts: a single one unchanged, several joined as lines in UTF-8.
    /// @param isWhole  false: some are missing
    QByteArray text(bool &isWhole) const;

private:
    bool hasRoomFor(const QByteArray &bytes);

    QByteArrayList m_comments;
    qsizetype m_bytes = 0;
    bool m_isCut = false;
};

} // namespace plexa
