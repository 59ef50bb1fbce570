// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/imageformat.h"

#include <QGuiApplication>

/// The plugins print messages about damage.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto decode = [data, size](const plexa::ImageFormat &format) {
        static const QStringList types = {u"image/bmp"_qs,
                                          u"image/x-tga"_qs,
                                          u"image/webp"_qs,
                                          u"image/vnd.microsoft.icon"_qs,
                                          u"image/x-icns"_qs,
                                          u"image/x-portable-pixmap"_qs,
                                          u"image/x-portable-graymap"_qs,
                                          u"image/x-portable-bitmap"_qs};
        if (types.contains(QLatin1String(format.type)))
            plexa::test::decodeForFuzzing(*format.codec, data, size);
    };
    if (const auto *format = plexa::imageFormatOfContents({data, qMin<qsizetype>(qsizetype(size), 64)})) {
        decode(*format);
        return 0;
    }
    for (const plexa::ImageFormat &format : plexa::imageFormats()) {
        if (!format.matches)
            decode(format);
    }
    return 0;
}
