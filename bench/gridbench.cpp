// SPDX-License-Identifier: GPL-3.0-or-later

// Scrolls and zooms a grid of 500 thumbnails of the photos in a folder. Prints the time to draw the slowest
// step relative to a frame of 16 ms: the first drawing, a scroll step, a zoom step.

#include "images/imageobject.h"
#include "platform/applicationname.h"
#include "threadtime.h"
#include "ui/browser/imagebrowserview.h"

#include <QApplication>
#include <QDirIterator>
#include <QScrollBar>

#include <algorithm>
#include <cstdio>

using namespace plexa;

namespace
{

constexpr int kThumbnails = 500;
constexpr int kDistinct = 24;
constexpr int kRounds = 5;
constexpr double kFrame = 16e6; // nanoseconds

class Thumbnails final : public ImageBrowserSource
{
public:
    explicit Thumbnails(const QString &folder)
    {
        const FontCatalog fonts;
        const LocaleFormat locale(QStringLiteral("en_US"));
        PixelCache cache(256 << 20);
        ByteBudget budget(1 << 30);
        const PhotoServices services{fonts, locale, cache, budget, {}};
        QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext() && m_distinct.size() < kDistinct) {
            ImageObject photo(files.next(), services);
            if (photo.loadImageFromDisk())
                m_distinct.append(photo.thumbnail());
        }
        for (int i = 0; i < kThumbnails && !m_distinct.isEmpty(); ++i)
            m_all.append(m_distinct.at(i % m_distinct.size()).copy());
    }

    int count() const override { return static_cast<int>(m_all.size()); }
    QString filename(int index) const override { return QStringLiteral("DSC_%1 of a long day").arg(index); }
    QImage thumbnail(int index, ThumbnailKind) const override { return m_all.at(index); }
    int indexOf(const void *) const override { return -1; }

private:
    QList<QImage> m_distinct;
    QList<QImage> m_all;
};

/// The processor time of this thread so far, in frames. Drawing does not wait, so this is its time on an idle
/// machine.
double now()
{
    return threadNanoseconds() / kFrame;
}

/// The time to draw the visible grid.
double frame(ImageBrowserView &view)
{
    const double begin = now();
    view.viewport()->repaint();
    return now() - begin;
}

using Steps = QList<double>;

Steps zoomSteps(ImageBrowserView &view)
{
    Steps steps;
    for (int i = 0; i <= 40; ++i) {
        const double begin = now();
        view.setZoomFactor(static_cast<float>(i <= 20 ? i : 40 - i) / 20);
        view.viewport()->repaint();
        steps.append(now() - begin);
        QApplication::processEvents(); // draws rough cells again, as between two steps
    }
    return steps;
}

Steps scrollSteps(ImageBrowserView &view)
{
    Steps steps;
    for (const float zoom : {0.2F, 0.5F}) {
        view.setZoomFactor(zoom);
        frame(view);
        QApplication::processEvents();
        QScrollBar *bar = view.verticalScrollBar();
        for (int value = 0; value <= bar->maximum(); value += 60) {
            bar->setValue(value);
            steps.append(frame(view));
            QApplication::processEvents();
        }
    }
    return steps;
}

/// The slowest step, each the median of the rounds, which excludes other load of the machine.
double slowest(const QList<Steps> &rounds)
{
    double result = 0;
    for (qsizetype step = 0; step < rounds.first().size(); ++step) {
        Steps times;
        for (const Steps &round : rounds)
            times.append(round.at(step));
        std::sort(times.begin(), times.end());
        result = std::max(result, times.at(times.size() / 2));
    }
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "Usage: plexa-bench-grid FOLDER\n");
        return 2;
    }
    const auto thumbnails = std::make_shared<Thumbnails>(QString::fromLocal8Bit(argv[1]));
    if (thumbnails->count() == 0) {
        std::fprintf(stderr, "plexa-bench-grid: there are no photos in %s.\n", argv[1]);
        return 1;
    }
    QList<Steps> first, scroll, zoom;
    for (int round = 0; round < kRounds; ++round) {
        ImageBrowserView view; // with empty caches
        view.resize(1920, 1080);
        view.setZoomFactor(0);
        view.show();
        QApplication::processEvents();
        view.setImages(thumbnails);
        first.append(Steps{frame(view)});
        scroll.append(scrollSteps(view));
        zoom.append(zoomSteps(view));
    }
    std::printf("%.2f %.2f %.2f\n", slowest(first), slowest(scroll), slowest(zoom));
    return 0;
}
