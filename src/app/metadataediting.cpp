// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/metadataediting.h"

#include "images/imageobject.h"
#include "metadata/propertyvalues.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>
#include <utility>

namespace plexa
{

namespace
{

QStringList keywordsOf(const ImageMetadata &metadata)
{
    return metadata.iptcKeywords().toStringList();
}

} // namespace

MetadataEditing::MetadataEditing(Services services)
    : m_services(std::move(services))
{
}

void MetadataEditing::setImages(const ImageList &images)
{
    if (images == m_images)
        return;
    for (const QMetaObject::Connection &connection : m_connections)
        disconnect(connection);
    m_connections.clear();
    m_images = images;
    for (const std::shared_ptr<ImageObject> &image : m_images) // which may be loaded by another thread
        m_connections.push_back(
            connect(image.get(), &ImageObject::metadataChanged, this, &MetadataEditing::scheduleChanged));
    Q_EMIT changed();
}

void MetadataEditing::scheduleChanged()
{
    if (std::exchange(m_isChangeScheduled, true))
        return;
    const auto send = [this] {
        m_isChangeScheduled = false;
        Q_EMIT changed();
    };
    QMetaObject::invokeMethod(this, send, Qt::QueuedConnection);
}

bool MetadataEditing::isReady() const
{
    return std::all_of(m_images.begin(), m_images.end(),
                       [](const auto &image) { return image->metadata().has_value(); });
}

MetadataEditing::Common MetadataEditing::common(const Reader &reader) const
{
    std::optional<QVariant> first;
    for (const std::shared_ptr<ImageObject> &image : m_images) {
        const std::optional<ImageMetadata> metadata = image->metadata();
        const QVariant value = metadata ? reader(*metadata) : QVariant();
        if (!first)
            first = value;
        else if (!samePropertyValue(*first, value))
            return {{}, true};
    }
    return {first.value_or(QVariant()), false};
}

MetadataEditing::Common MetadataEditing::common(MetadataProperty property) const
{
    return common([property](const ImageMetadata &metadata) { return metadata.value(property); });
}

MetadataEditing::Keywords MetadataEditing::keywords() const
{
    Keywords keywords;
    bool isFirst = true;
    for (const std::shared_ptr<ImageObject> &image : m_images) {
        const std::optional<ImageMetadata> metadata = image->metadata();
        const QStringList own = metadata ? keywordsOf(*metadata) : QStringList();
        if (std::exchange(isFirst, false)) {
            keywords.all = own;
            continue;
        }
        const auto removed =
            keywords.all.removeIf([&own](const QString &word) { return !own.contains(word); });
        keywords.isMultiple = keywords.isMultiple || removed > 0 || own.size() > keywords.all.size();
    }
    return keywords;
}

QStringList MetadataEditing::knownKeywords() const
{
    QSet<QString> words;
    for (const std::shared_ptr<ImageObject> &image : m_services.allImages()) {
        const std::optional<ImageMetadata> metadata = image->metadata();
        for (const QString &word : metadata ? keywordsOf(*metadata) : QStringList())
            words.insert(word);
    }
    QStringList sorted(words.cbegin(), words.cend());
    std::sort(sorted.begin(), sorted.end(),
              [](const QString &a, const QString &b) { return a.localeAwareCompare(b) < 0; });
    return sorted;
}

QString MetadataEditing::editOf(MetadataProperty property)
{
    return tr("Edit %1").arg(QCoreApplication::translate("ImageMetadata", metadataProperty(property).label));
}

void MetadataEditing::setDay(MetadataProperty property, QDate day)
{
    edit(editOf(property), [property, day](ImageMetadata &metadata) {
        const QString form = ImageMetadata::exifDateTimeFormatter();
        const QTime time = QDateTime::fromString(metadata.value(property).toString(), form).time();
        metadata.setValue(property,
                          QDateTime(day, time.isValid() ? time : QTime(0, 0), Qt::UTC).toString(form));
    });
}

void MetadataEditing::setValue(MetadataProperty property, const QVariant &value)
{
    edit(editOf(property), [property, &value](ImageMetadata &metadata) {
        // The same value again would cost a list its other elements; an absent flash reads as 0.
        const MetadataPropertyRow &row = metadataProperty(property);
        const bool isNew = value.isValid() && !metadata.valueForKey(row.group, row.key).isValid();
        if (isNew || !samePropertyValue(metadata.value(property), value))
            metadata.setValue(property, value);
    });
}

void MetadataEditing::setKeywords(const QStringList &before, const QStringList &now)
{
    edit(tr("Edit Keywords"), [&](ImageMetadata &metadata) {
        QStringList words = keywordsOf(metadata);
        words.removeIf([&](const QString &word) { return before.contains(word) && !now.contains(word); });
        for (const QString &word : now) {
            if (!words.contains(word))
                words.append(word);
        }
        metadata.setIptcKeywords(words.isEmpty() ? QVariant()
                                                 : QVariant(QVariantList(words.begin(), words.end())));
    });
}

void MetadataEditing::clear(MetadataClearing clearing)
{
    edit(tr("Clear Metadata"), [clearing](ImageMetadata &metadata) { clearMetadata(metadata, clearing); });
}

/// Photos that the change leaves as they are do not count as edited.
void MetadataEditing::edit(const QString &text, const Change &change)
{
    auto edits = std::make_shared<Edits>();
    for (const std::shared_ptr<ImageObject> &image : m_images) {
        const std::optional<ImageMetadata> before = image->metadata();
        if (!before)
            continue;
        ImageMetadata after = *before;
        change(after);
        if (after == *before)
            continue;
        image->setMetadata(after);
        edits->push_back({image, *before, std::move(after)});
    }
    if (edits->empty())
        return;
    m_services.record(
        text, [this, edits] { return exchange(*edits, &Edit::after, &Edit::before); },
        [this, edits] { return exchange(*edits, &Edit::before, &Edit::after); });
}

/// Leaves photos alone whose metadata something else has changed.
bool MetadataEditing::exchange(const Edits &edits, ImageMetadata Edit::*expected,
                               ImageMetadata Edit::*wanted) const
{
    ImageList changed;
    for (const Edit &edit : edits) {
        if (edit.image->metadata() != edit.*expected)
            continue;
        edit.image->setMetadata(edit.*wanted);
        changed.push_back(edit.image);
    }
    if (!changed.empty())
        m_services.show(changed);
    return !changed.empty();
}

} // namespace plexa
