// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/wpresetarchive.h"

#include <QGuiApplication>

#include <cstdlib>

using namespace plexa;

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto presets = wPresetsFromArchive(bytes);
    if (!presets)
        return 0;
    // What was read can be written, and then comes back as it is.
    const auto written = archivedWPresets(*presets);
    if (!written)
        std::abort();
    const auto again = wPresetsFromArchive(*written);
    if (!again || again->size() != presets->size())
        std::abort();
    for (std::size_t i = 0; i < presets->size(); ++i) {
        WPresetValues before = (*presets)[i]->values();
        WPresetValues after = (*again)[i]->values();
        if (before.image.isNull() != after.image.isNull() || before.image.fault() != after.image.fault())
            std::abort();
        // Within what the fuzzer grants.
        if (before.image.size().width() * before.image.size().height() < 1e6 &&
            before.image.imageOfSize(QSize(16, 16)) != after.image.imageOfSize(QSize(16, 16)))
            std::abort();
        before.image = after.image = {};
        before.textTokens.replaceInStrings(QString(QChar::Null), QString());
        before.name.remove(QChar::Null); // the form cannot hold it
        if (before.name != after.name || before.angle != after.angle || before.width != after.width ||
            before.fillColor != after.fillColor || before.stroke != after.stroke)
            std::abort();
    }
    return 0;
}
