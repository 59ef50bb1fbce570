// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/testpictures.h"
#include "ui/browser/filepromise.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowsersource.h"

#include <QFile>
#include <QPainter>
#include <QThread>

#include <atomic>

namespace plexa::test
{

/// Images of one color each, "photo0" and so on; wide ones with a white upper third, mirrored as photos keep
/// them.
class Colors final : public ImageBrowserSource
{
public:
    explicit Colors(int count)
    {
        for (int i = 0; i < count; ++i)
            images.append(thumbnail(QColor::fromHsv(i * 37 % 360, 255, 200)));
    }

    static QImage thumbnail(const QColor &color)
    {
        QImage image = flatPicture({400, 300}, color);
        QPainter(&image).fillRect(0, 200, 400, 100, Qt::white);
        return image;
    }

    int count() const override { return static_cast<int>(images.size()); }
    QString filename(int index) const override { return u"photo%1"_qs.arg(index); }
    QImage thumbnail(int index, ThumbnailKind kind) const override
    {
        if (kind == ThumbnailKind::Original)
            askedForOriginal = index;
        return images.at(index);
    }
    int indexOf(const void *image) const override
    {
        const auto *wanted = static_cast<const QImage *>(image);
        return wanted >= images.constData() && wanted < images.constData() + count()
                   ? static_cast<int>(wanted - images.constData())
                   : -1;
    }

    QList<QImage> images;
    mutable int askedForOriginal = -1;
};

/// Files of five bytes, "image0" and so on, that record how they are requested.
class FakePromise final : public FilePromise
{
public:
    struct Log {
        std::atomic<int> made = 0;        ///< requests to write the files
        std::atomic<bool> mayGoOn = true; ///< until then the first file waits, unless it is canceled
        std::atomic<bool> wasUnwanted = false;
        QString folder; ///< of the written files
        QString savedInto;
        QStringList failures; ///< reported
    };

    FakePromise(qsizetype count, Log &log)
        : m_log(log)
    {
        for (qsizetype i = 0; i < count; ++i)
            m_names.append(u"image%1"_qs.arg(i));
    }
    QStringList names() const override { return m_names; }
    Outcome makeFiles(const QString &folder, const std::function<bool()> &isUnwanted) override
    {
        m_log.folder = folder;
        ++m_log.made;
        for (int i = 0; i < 6000 && !m_log.mayGoOn && !isUnwanted(); ++i)
            QThread::msleep(5);
        m_log.wasUnwanted = isUnwanted();
        Outcome outcome;
        for (const QString &name : m_names) {
            QFile file(folder + u'/' + name);
            if (isUnwanted() || !file.open(QIODevice::WriteOnly) || file.write("photo") != 5)
                outcome.failures.append(name);
        }
        return outcome;
    }
    void report(const QStringList &failures) override { m_log.failures = failures; }
    bool saveInto(const QString &folder) override
    {
        m_log.savedInto = folder;
        return true;
    }
    QStringList imageTypes() const override { return {u"image/png"_qs}; }
    QByteArray image(const QString &, QStringList &) override { return "png"; }

private:
    QStringList m_names;
    Log &m_log;
};

/// Records its calls as text, such as "selected 2,3; focus 3<2".
class Recorder final : public ImageBrowserDelegate
{
public:
    QStringList log;
    /// All calls since the last time.
    QByteArray take() { return std::exchange(log, {}).join(u"; "_qs).toUtf8(); }
    bool allowsDrags = true;
    FakePromise::Log files; ///< of the promises, which have two files for each image

    void selectionDidChangeTo(const QList<int> &i) override { add("selected %1", text(i)); }
    void focusImageDidChangeTo(int to, int from) override
    {
        add("focus %1<%2", QString::number(to), QString::number(from));
    }
    void deletePressed() override { add("delete"); }
    void returnPressed() override { add("return"); }
    void focusImageDoubleClicked() override { add("double"); }
    void receivedDraggedFiles(const QStringList &p) override { add("files %1", p.join(u',')); }
    void movedIndexes(const QList<int> &i, int to) override
    {
        add("moved %1>%2", text(i), QString::number(to));
    }
    void copiedIndexes(const QList<int> &i, int to) override
    {
        add("copied %1>%2", text(i), QString::number(to));
    }
    void changedZoomFactorTo(float z) override
    {
        add("zoom %1", QString::number(static_cast<double>(z), 'g', 4));
    }
    void rotatedSelectedImages90ClockWise(bool clockwise) override
    {
        add(clockwise ? "rotated cw" : "rotated ccw");
    }
    bool shouldDragPromisedFiles() override { return allowsDrags; }
    std::unique_ptr<FilePromise> promisedFiles(const QList<int> &i) override
    {
        add("promised %1", text(i));
        return std::make_unique<FakePromise>(2 * i.size(), files);
    }
    void copy() override { add("copy"); }

private:
    static QString text(const QList<int> &indexes)
    {
        QStringList words;
        for (const int index : indexes)
            words.append(QString::number(index));
        return words.join(u',');
    }
    template<class... Values>
    void add(const char *what, const Values &...values)
    {
        log.append(QLatin1String(what));
        ((log.last() = log.last().arg(values).trimmed()), ...);
    }
};

} // namespace plexa::test
