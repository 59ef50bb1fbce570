// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/clearedgroups.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace plexa
{

/// A text that a PNG carries under a name: "Author", "Title", "Disclaimer", ...
struct PngText {
    QByteArray keyword; ///< Latin-1, 1 to 79 bytes
    QString text;

    bool operator==(const PngText &) const = default;
};

/// Unpacks the text chunks of one file. All of them together cost no more than a fixed amount of memory and
/// time, however many there are and however far they inflate.
class PngTextChunks
{
public:
    struct Content {
        QByteArray keyword;
        QByteArray bytes;
        bool isUtf8; ///< else Latin-1

        /// Does the chunk hold a block that other programs have put there in place of a text?
        bool isBlock() const;
    };

    /// @param type  "tEXt", "zTXt" or "iTXt"
    /// @param data  the chunk's contents
    /// @return none when the chunk is damaged or beyond the bounds
    std::optional<Content> unpacked(const QByteArray &type, const QByteArray &data);

    /// Keeps a text for texts(), unless it is beyond the bounds, holds a picture, or repeats what a copy has
    /// in other places or must not have: thumbnails, the software, other programs' notes of EXIF fields.
    void add(const Content &content);

    const QList<PngText> &texts() const { return m_texts; }

private:
    static constexpr qsizetype kMaxInflatedBytes = 48 * 1024 * 1024;
    static constexpr qsizetype kMaxTextBytes = 1024 * 1024; // all texts of a file
    qsizetype m_inflatableBytes = kMaxInflatedBytes;
    qsizetype m_textBytes = kMaxTextBytes;
    QList<PngText> m_texts;
};

/// The properties with the author, copyright, title and description of the texts where they have none.
QVariantMap withPngTexts(QVariantMap properties, const QList<PngText> &texts);

/// The texts in the form of the dictionary "{PNG}": under their keywords, the first where one repeats.
QVariantMap pngTextProperties(const QList<PngText> &texts);

/// The texts for a copy whose properties were `before` and are `after`: edited texts are new,
/// cleared ones are absent, and the software is that of `after`.
QList<PngText> pngTextsForCopy(const QList<PngText> &texts, const QVariantMap &before,
                               const QVariantMap &after, ClearedGroups cleared);

} // namespace plexa
