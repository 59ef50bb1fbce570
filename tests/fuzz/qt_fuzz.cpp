// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/simple/bmpcodec.h"
#include "imageio/codecs/simple/qtcodec.h"
#include "imageio/codecs/simple/tgacodec.h"
#include "imageio/imageformat.h"

#include <QGuiApplication>

/// The plugins print what they do not like.
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
        if (dynamic_cast<const plexa::QtCodec *>(format.codec) ||
            dynamic_cast<const plexa::BmpCodec *>(format.codec) ||
            dynamic_cast<const plexa::TgaCodec *>(format.codec))
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
