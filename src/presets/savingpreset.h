// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

/// How a watermarked copy is written: its format and how strongly it is compressed. A value.
struct SavingPreset {
    QString name = QStringLiteral("New Preset");

    /// A format name ("JPEG", "PNG"), or "Original" for the source's own format.
    QString imageFormat = QStringLiteral("JPEG");

    /// The format name for "Original" where the source's own format cannot be written.
    QString alternativeImageFormat = QStringLiteral("JPEG");

    /// Percent, 40..100.
    int jpegQuality = 80;

    bool tiffCompressionLZW = true;

    /// The MIME type that a copy of this file gets; empty when no such format can be written. Goes by the
    /// path's suffix, as the copy's name does.
    QString imageFormatUTI(const QString &sourcePath) const;

    /// The file-name suffixes of that type, the one to be written first; empty when there is no such type.
    QStringList filenameExtensions(const QString &sourcePath) const;

    /// The names that `imageFormat` may have in this build, "Original" the last.
    static QStringList supportedFileFormats();

    /// The type of a suffix or of a format name, in any letter case; empty unless it can be written.
    static QString utiForFileExtension(const QString &extension);

    /// Can this type be written?
    static bool supportedUTI(const QString &type);

    bool operator==(const SavingPreset &) const = default;
};

} // namespace plexa
