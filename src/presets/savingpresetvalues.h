// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

// clang-format off
/// The list of a saving preset's fields, in declaration order, from which the members of SavingPresetValues, the
/// table of savingpresetfields.h and the accessors of SavingPreset are generated.
/// FIELD(name, Name, type, XML element, default)
#define PLEXA_SAVINGPRESET_FIELDS(FIELD)                                                                   \
    FIELD(name, Name, QString, "name", QStringLiteral("New Preset"))                                       \
    /* Pieces of a copy's file name: names of tokens, and literal texts. */                                \
    FIELD(filenameTokens, FilenameTokens, QStringList, "filename",                                         \
          QStringList({QStringLiteral("filename"), QStringLiteral("-"),                                    \
                       QStringLiteral("watermark preset name"), QStringLiteral("_"),                       \
                       QStringLiteral("width"), QStringLiteral("x"), QStringLiteral("height")}))           \
    /* "do not change", "lower case" or "upper case" */                                                    \
    FIELD(fileBaseNameCase, FileBaseNameCase, QString, "fileBaseNameCase", QStringLiteral("do not change")) \
    FIELD(fileExtensionCase, FileExtensionCase, QString, "fileExtensionCase", QStringLiteral("lower case")) \
    /* One of savingFormatNames(). */                                                                      \
    FIELD(imageFormat, ImageFormat, QString, "format", QStringLiteral("JPEG"))                             \
    /* The format for "Original" where the source's own cannot be written. */                              \
    FIELD(alternativeImageFormat, AlternativeImageFormat, QString, "alternativeFormat", QStringLiteral("JPEG")) \
    /* Percent. */                                                                                         \
    FIELD(jpegQuality, JpegQuality, int, "quality", 80)                                                    \
    FIELD(tiffCompressionLZW, TiffCompressionLZW, bool, "tiffCompressionLZW", true)
// clang-format on

/// The name and format of a watermarked copy: the fields of a saving preset as plain values.
struct SavingPresetValues {
    static constexpr int kLowestQuality = 40;
    static constexpr int kHighestQuality = 100;

#define PLEXA_DECLARE_FIELD(name, Name, Type, element, initial) Type name = initial;
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_DECLARE_FIELD)
#undef PLEXA_DECLARE_FIELD

    bool operator==(const SavingPresetValues &) const = default;

    /// Has the quality (the TIFF compression, the alternative format) no effect on these formats?
    bool hideJPEGQuality() const;
    bool hideTiffCompression() const;
    bool hideAlternativeFormat() const;

    /// Are there tokens, and is the quality in its range?
    bool validPreset() const;

    /// The MIME type of a copy of this file, by the path's extension; empty if no such format can be written.
    QString imageFormatUTI(const QString &sourcePath) const;

    /// The file-name extensions of that type, the written one first.
    QStringList filenameExtensions(const QString &sourcePath) const;
};

} // namespace plexa
