// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace plexa
{

/// The comments that a JPEG or GIF carries, in order and as they came; at most so many, and 16 MB of them.
class FileComments
{
public:
    void add(const QByteArray &comment);

    /// Goes on with the last comment: a segment of a JPEG may be too short for one.
    void extendLast(const QByteArray &piece);

    /// All that are texts; anything may be kept in that place. One alone stays as it is; of several each has
    /// lines of its own, in UTF-8.
    /// @param isWhole  false: some were left out
    QByteArray text(bool &isWhole) const;

private:
    bool hasRoomFor(const QByteArray &bytes);

    QByteArrayList m_comments;
    qsizetype m_bytes = 0;
    bool m_isCut = false;
};

} // namespace plexa
