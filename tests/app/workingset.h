// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagegathering.h"
#include "app/statusmanager.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"

#include <QImage>
#include <QTest>

#include <unistd.h>

namespace plexa::test
{

/// A folder with files for a working set, and all that a set needs.
class WorkingSet
{
public:
    WorkingSet()
        : m_photo(64, 48, QImage::Format_RGB32)
    {
        m_photo.fill(Qt::darkGreen);
        registerDefaults(defaults);
    }

    ImageSetServices services() { return {photos, defaults, alerts, status, 3}; }

    /// A picture of this name below the folder; the suffix tells the format.
    QString photo(const QString &name, QSize size = {})
    {
        const QString path = folder.path(QStringLiteral("in/") + name);
        QDir().mkpath(QFileInfo(path).path());
        const QImage image = size.isEmpty() ? m_photo : m_photo.scaled(size);
        return image.save(path) ? path : QString();
    }

    QString photo(const char *name, QSize size = {}) { return photo(QString::fromUtf8(name), size); }

    /// A file of this name that is not what its name says.
    QString brokenPhoto(const QString &name)
    {
        const QString path = folder.path(QStringLiteral("in/") + name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write("no picture") > 0 ? path : QString();
    }

    /// A folder with so many names of one picture.
    QString manyPhotos(int count)
    {
        const QString first = photo(QStringLiteral("many/000.jpg"));
        for (int i = 1; i < count; ++i) {
            const QString path =
                QFileInfo(first).path() + QStringLiteral("/%1.jpg").arg(i, 3, 10, QLatin1Char('0'));
            if (!QFile::exists(path) &&
                ::link(QFile::encodeName(first).constData(), QFile::encodeName(path).constData()) != 0)
                return {};
        }
        return QFileInfo(first).path();
    }

    TestFolder folder;
    FontCatalog fonts;
    LocaleFormat locale{QStringLiteral("en_US")};
    PixelCache cache{16 * 1024 * 1024};
    ByteBudget budget{1'000'000'000};
    PhotoServices photos{fonts, locale, cache, budget, {}};
    UserDefaults defaults{QStringLiteral("Quorvel"), QStringLiteral("Plexa")};
    ScriptedAlerts alerts;
    StatusManager status;
    PresetsStore store{alerts, fonts};

private:
    QImage m_photo;
};

/// File names of the photos, "a b c".
inline QString names(const ImageList &images)
{
    QStringList all;
    for (const std::shared_ptr<ImageObject> &image : images)
        all.append(image->filename());
    return all.join(QLatin1Char(' '));
}

inline QString shownNames(const ImageSet &set)
{
    return names(*set.imagesFiltered());
}

inline bool isIdle(const ImageGathering &gathering)
{
    return !gathering.isScanning() && !gathering.isImportingImages();
}

/// A list that knows the shown photos by the set's signals alone, as an item model does.
class Mirror
{
public:
    explicit Mirror(ImageSet &set)
        : m_set(set)
        , m_list(*set.imagesFiltered())
    {
        const auto note = [this](int first, int last) {
            m_first = first;
            m_last = last;
        };
        const auto reset = [this] { m_list = *m_set.imagesFiltered(); };
        QObject::connect(&set, &ImageSet::imagesAboutToBeInserted, &m_context, note);
        QObject::connect(&set, &ImageSet::imagesAboutToBeRemoved, &m_context, note);
        QObject::connect(&set, &ImageSet::imagesInserted, &m_context, [this] {
            const auto shown = m_set.imagesFiltered();
            m_list.insert(m_list.begin() + m_first, shown->begin() + m_first, shown->begin() + m_last + 1);
        });
        QObject::connect(&set, &ImageSet::imagesRemoved, &m_context,
                         [this] { m_list.erase(m_list.begin() + m_first, m_list.begin() + m_last + 1); });
        QObject::connect(&set, &ImageSet::orderChanged, &m_context, reset);
        QObject::connect(&set, &ImageSet::listReset, &m_context, reset);
        // Who hears of the selection finds the list as it is.
        const auto check = [this] { m_isInStep = m_isInStep && m_list == *m_set.imagesFiltered(); };
        QObject::connect(&set.selection(), &ImageSelection::selectionChanged, &m_context, check);
        QObject::connect(&set.selection(), &ImageSelection::focusImageChanged, &m_context, check);
    }

    bool isTrue() const { return m_isInStep && m_list == *m_set.imagesFiltered(); }

private:
    ImageSet &m_set;
    ImageList m_list;
    int m_first = 0;
    int m_last = 0;
    bool m_isInStep = true;
    QObject m_context;
};

} // namespace plexa::test
