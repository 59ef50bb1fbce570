// SPDX-License-Identifier: GPL-3.0-or-later

// Fills a working set with the photos of a folder, as a drop on the window does, and ends when all are
// imported. scripts/bench measures it from outside.

#include "app/imagegathering.h"
#include "app/statusmanager.h"
#include "noquestions.h"
#include "platform/userdefaults.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace plexa;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int threads = argc == 3 ? std::atoi(argv[2]) : 0;
    if (threads < 1) {
        std::fprintf(stderr, "Usage: plexa-bench-import FOLDER THREADS\n");
        return 2;
    }
    const QTemporaryDir home; // the user's settings are not changed
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());

    const FontCatalog fonts;
    const LocaleFormat locale(QStringLiteral("en_US"));
    PixelCache cache(physicalMemoryBytes() / 8);
    ByteBudget budget(physicalMemoryBytes() / 2);
    const PhotoServices photos{fonts, locale, cache, budget, {}};
    UserDefaults defaults(QStringLiteral("Quorvel"), QStringLiteral("Plexa"));
    NoQuestions alerts;
    StatusManager status;
    ImageSet set({photos, defaults, alerts, status, threads});
    ImageGathering gathering(set, {photos, defaults, alerts, status, threads});
    QObject::connect(&gathering, &ImageGathering::importFinished, &gathering, &QCoreApplication::quit);
    gathering.scanImagesAtPaths({QString::fromLocal8Bit(argv[1])});
    QCoreApplication::exec();

    const auto loaded = std::count_if(set.images()->begin(), set.images()->end(),
                                      [](const auto &image) { return !image->thumbnail().isNull(); });
    std::printf("%lld\n", static_cast<long long>(loaded));
    return 0;
}
