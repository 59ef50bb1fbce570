// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

// clang-format off
/// The one list of a saving preset's fields, in declaration order: the members of SavingPresetValues and what
/// SavingPreset makes of them. FIELD(name, Name, type, default)
#define PLEXA_SAVINGPRESET_FIELDS(FIELD)                                                                   \
    FIELD(name, Name, QString, QStringLiteral("New Preset"))                                               \
    /* Pieces of a copy's file name: names of tokens, and literal texts. */                                \
    FIELD(filenameTokens, FilenameTokens, QStringList,                                                     \
          QStringList({QStringLiteral("filename"), QStringLiteral("-"),                                    \
                       QStringLiteral("watermark preset name"), QStringLiteral("_"),                       \
                       QStringLiteral("width"), QStringLiteral("x"), QStringLiteral("height")}))           \
    /* "do not change", "lower case" or "upper case" */                                                    \
    FIELD(fileBaseNameCase, FileBaseNameCase, QString, QStringLiteral("do not change"))                    \
    FIELD(fileExtensionCase, FileExtensionCase, QString, QStringLiteral("lower case"))                     \
    /* One of savingFormatNames(). */                                                                      \
    FIELD(imageFormat, ImageFormat, QString, QStringLiteral("JPEG"))                                       \
    /* The format for "Original" where the source's own cannot be written. */                              \
    FIELD(alternativeImageFormat, AlternativeImageFormat, QString, QStringLiteral("JPEG"))                 \
    /* Percent. */                                                                                         \
    FIELD(jpegQuality, JpegQuality, int, 80)                                                               \
    FIELD(tiffCompressionLZW, TiffCompressionLZW, bool, true)
// clang-format on

/// How a watermarked copy is named, and in which format it is written: all the fields of a saving preset as
/// plain values. What workers are given.
struct SavingPresetValues {
    static constexpr int kLowestQuality = 40;
    static constexpr int kHighestQuality = 100;

#define PLEXA_DECLARE_FIELD(name, Name, Type, initial) Type name = initial;
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_DECLARE_FIELD)
#undef PLEXA_DECLARE_FIELD

    bool operator==(const SavingPresetValues &) const = default;

    /// Does the quality (the TIFF compression, the alternative format) have no say with these formats?
    bool hideJPEGQuality() const;
    bool hideTiffCompression() const;
    bool hideAlternativeFormat() const;

    /// There are tokens, and the quality is in its range.
    bool validPreset() const;

    /// The MIME type that a copy of this file gets; empty when no such format can be written. Goes by the
    /// path's extension, as the copy's name does.
    QString imageFormatUTI(const QString &sourcePath) const;

    /// The file-name extensions of that type, the one to be written first; empty when there is no such type.
    QStringList filenameExtensions(const QString &sourcePath) const;
};

} // namespace plexa
