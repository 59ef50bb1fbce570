// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/statusmanager.h"

#include <algorithm>
#include <array>

namespace plexa
{

namespace
{

constexpr std::array kTexts = {
    QT_TRANSLATE_NOOP("plexa::StatusManager", "No images"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Counting images to import"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Importing images"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Processing images"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Rotating images"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Pasting configuration"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Importing presets"),
    QT_TRANSLATE_NOOP("plexa::StatusManager", "Sorting images"),
};

} // namespace

StatusManager::StatusManager()
    : m_images(std::make_shared<const ImageList>())
    , m_imagesFiltered(m_images)
{
    m_line.text = lineOfImages();
}

/// The end if the operation is not running. Called with the lock held.
std::vector<StatusManager::Entry>::iterator StatusManager::lastEntry(StatusOperation operation)
{
    const auto last = std::find_if(m_currentOperations.rbegin(), m_currentOperations.rend(),
                                   [operation](const Entry &entry) { return entry.operation == operation; });
    return last == m_currentOperations.rend() ? m_currentOperations.end() : std::prev(last.base());
}

void StatusManager::startOperation(StatusOperation operation)
{
    {
        const std::lock_guard lock(m_mutex);
        if (lastEntry(operation) != m_currentOperations.end())
            return;
        m_currentOperations.push_back({operation, 0});
    }
    update();
}

bool StatusManager::endOperation(StatusOperation operation)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto entry = lastEntry(operation);
        if (entry == m_currentOperations.end())
            return false;
        m_currentOperations.erase(entry);
    }
    update();
    return true;
}

void StatusManager::startProcessing()
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_processings;
    }
    startOperation(StatusOperation::Processing);
}

void StatusManager::endProcessing()
{
    {
        const std::lock_guard lock(m_mutex);
        if (--m_processings > 0)
            return;
    }
    endOperation(StatusOperation::Processing);
}

bool StatusManager::setProgress(float progress, StatusOperation operation)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto entry = lastEntry(operation);
        if (entry == m_currentOperations.end())
            return false;
        entry->progress = progress;
    }
    update();
    return true;
}

void StatusManager::setImages(std::shared_ptr<const ImageList> images,
                              std::shared_ptr<const ImageList> filtered, qint64 nSelected)
{
    m_images = std::move(images);
    m_imagesFiltered = std::move(filtered);
    m_nSelectedImages = nSelected;
    update();
}

void StatusManager::setNSelectedImages(qint64 count)
{
    m_nSelectedImages = count;
    update();
}

void StatusManager::update()
{
    // One event for all changes until it is handled.
    const std::lock_guard lock(m_mutex);
    if (!std::exchange(m_isUpdateQueued, true))
        QMetaObject::invokeMethod(this, "makeLine", Qt::QueuedConnection);
}

void StatusManager::makeLine()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isUpdateQueued = false;
    }
    StatusLine line = lineOfOperations();
    if (!line.canBeStopped)
        line.text = lineOfImages();
    if (line == m_line)
        return;
    m_line = line;
    Q_EMIT lineChanged();
}

/// It cannot be stopped if nothing runs.
StatusLine StatusManager::lineOfOperations() const
{
    const std::lock_guard lock(m_mutex);
    StatusLine line;
    if (m_currentOperations.empty())
        return line;
    for (const Entry &entry : m_currentOperations) {
        if (!line.text.isEmpty())
            line.text += QStringLiteral(" & ");
        line.text += tr(kTexts[static_cast<std::size_t>(entry.operation)]);
        if (entry.operation == StatusOperation::Counting)
            line.text += QStringLiteral(" (%1)").arg(static_cast<qint64>(entry.progress));
    }
    line.text += QStringLiteral("...");
    line.canBeStopped = true;

    // The bar belongs to the operation that began first.
    const Entry &first = m_currentOperations.front();
    if (first.operation == StatusOperation::Counting) {
        line.bar = StatusLine::Bar::Busy;
    } else if (first.operation != StatusOperation::NoImages) {
        line.bar = StatusLine::Bar::Fraction;
        line.fraction = first.progress;
    }
    return line;
}

QString StatusManager::lineOfImages() const
{
    const std::size_t count = m_images->size();
    const std::size_t shown = m_imagesFiltered->size();
    QString text = count == 0       ? tr(kTexts[0])
                   : shown == count ? tr("%n images", nullptr, static_cast<int>(count))
                                    : tr("%1 out of %2 images").arg(shown).arg(count);
    if (m_nSelectedImages != 0)
        text += tr(" (%1 selected)").arg(m_nSelectedImages);
    return text;
}

} // namespace plexa
