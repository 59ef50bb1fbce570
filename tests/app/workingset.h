// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagegathering.h"
#include "app/statusmanager.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/scriptedalerts.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/testservices.h"

#include <unistd.h>

namespace plexa::test
{

/// A folder with files for a working set, and all that a set needs.
class WorkingSet
{
public:
    WorkingSet()
    {
        registerDefaults(defaults);
        defaults.setObject(settings::imageListIsInBrowserMode, {}); // as an earlier test left it
    }

    ImageSetServices services() { return {photos, defaults, alerts, status, 3}; }

    /// A picture of this name below the folder; the suffix determines the format.
    QString photo(const Text &name, QSize size = {64, 48})
    {
        const QString path = folder.path(u"in/"_qs + name);
        QDir().mkpath(QFileInfo(path).path());
        return flatPicture(size, Qt::darkGreen).save(path) ? path : QString();
    }

    /// A file of this name that is not a picture.
    QString brokenPhoto(const QString &name)
    {
        const QString path = folder.path(u"in/"_qs + name);
        return writeFile(path, "no picture") ? path : QString();
    }

    /// A folder with so many names of one picture.
    QString manyPhotos(int count)
    {
        const QString first = photo("many/000.jpg");
        const QString folder = QFileInfo(first).path();
        for (int i = 1; i < count; ++i) {
            const QString path = folder + u"/%1.jpg"_qs.arg(i, 3, 10, QChar(u'0'));
            if (!QFile::exists(path) && ::link(qUtf8Printable(first), qUtf8Printable(path)) != 0)
                return {};
        }
        return folder;
    }

    TestFolder folder;
    TestPhotoServices shared{16 * 1024 * 1024};
    const FontCatalog &fonts = shared.fonts;
    const PhotoServices &photos = shared.all;
    UserDefaults defaults{u"Quorvel"_qs, u"Plexa"_qs};
    ScriptedAlerts alerts;
    StatusManager status;
    PresetsStore store{alerts, fonts};
};

/// A preset with default values and this name.
inline std::shared_ptr<WPreset> namedPreset(const QString &name)
{
    WPresetValues values;
    values.name = name;
    return std::make_shared<WPreset>(values);
}

/// Names of the presets, "a b c".
inline QString names(const WPresetList &presets)
{
    QStringList all;
    for (const std::shared_ptr<WPreset> &preset : presets)
        all.append(preset->name());
    return all.join(u' ');
}

/// File names of the photos, "a b c".
inline QString names(const ImageList &images)
{
    QStringList all;
    for (const std::shared_ptr<ImageObject> &image : images)
        all.append(image->filename());
    return all.join(u' ');
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
        // A signal of the selection comes when the list is up to date.
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

/// A working set with its gathering.
struct GatheredSet {
    /// Adds these files and waits until they are gathered.
    bool gather(const QStringList &paths)
    {
        gathering.scanImagesAtPaths(paths);
        return isIdleSoon();
    }
    bool isIdleSoon()
    {
        return QTest::qWaitFor([this] { return isIdle(gathering); }, 60'000);
    }
    bool areAllLoaded() const
    {
        return std::all_of(set.images()->begin(), set.images()->end(),
                           [](const auto &image) { return image->isLoaded(); });
    }

    WorkingSet work;
    ImageSet set{work.services()};
    ImageGathering gathering{set, work.services()};
    Mirror mirror{set};
};

} // namespace plexa::test
