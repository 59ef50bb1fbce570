// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"
#include "metadata/metadataclearings.h"

#include <QDate>
#include <QObject>
#include <QStringList>

#include <functional>

namespace plexa
{

/// The metadata of several photos as those of one: what they have in common, edits of one field in all of
/// them, clearings. Each edit is a step that can be undone. Main thread.
class MetadataEditing final : public QObject
{
    Q_OBJECT

public:
    /// As UndoHistory::record().
    using Record = std::function<void(const QString &text, const std::function<bool()> &restore,
                                      const std::function<bool()> &repeat)>;
    struct Services {
        Record record;
        std::function<void(const ImageList &images)> show; ///< photos whose edit is undone or redone
        std::function<ImageList()> allImages;              ///< of the working set
    };
    /// Reads one fact of a photo.
    using Reader = std::function<QVariant(const ImageMetadata &)>;
    using Change = std::function<void(ImageMetadata &)>;

    explicit MetadataEditing(Services services);

    /// The photos to edit, in the order of the list.
    void setImages(const ImageList &images);
    const ImageList &images() const { return m_images; }
    /// Have the metadata of all of them been read? Photos that are still being loaded cannot be edited.
    bool isReady() const;

    struct Common {
        QVariant value;          ///< invalid: the photos have none, or several
        bool isMultiple = false; ///< they have different ones
    };
    Common common(const Reader &reader) const;
    Common common(MetadataProperty property) const;

    /// The keywords that all photos have, in the order of the first one.
    struct Keywords {
        QStringList all;
        bool isMultiple = false; ///< some photos have others, too
    };
    Keywords keywords() const;
    /// Those of all photos of the working set, in alphabetical order.
    QStringList knownKeywords() const;

    /// Sets one field of all photos; an invalid value removes it. Nothing happens where it is the same.
    void setValue(MetadataProperty property, const QVariant &value);
    /// Sets the day of a date of EXIF in all photos; each keeps its time of day, midnight where it has none.
    void setDay(MetadataProperty property, QDate day);
    /// Gives all photos the keywords `now` in place of those that they had in common, `before`; other
    /// keywords of a photo stay.
    void setKeywords(const QStringList &before, const QStringList &now);
    void clear(MetadataClearing clearing);

Q_SIGNALS:
    /// Other photos, or their metadata have changed; sent by the event loop, once for many changes.
    void changed();

private:
    struct Edit {
        std::shared_ptr<ImageObject> image;
        ImageMetadata before;
        ImageMetadata after;
    };
    using Edits = std::vector<Edit>;

    static QString editOf(MetadataProperty property);
    void edit(const QString &text, const Change &change);
    bool exchange(const Edits &edits, ImageMetadata Edit::*expected, ImageMetadata Edit::*wanted) const;
    void scheduleChanged();

    const Services m_services;
    ImageList m_images;
    std::vector<QMetaObject::Connection> m_connections; ///< with the photos
    bool m_isChangeScheduled = false;
};

} // namespace plexa
