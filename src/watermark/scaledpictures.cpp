// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/scaledpictures.h"

#include "platform/bytebudget.h"

#include <QScopeGuard>

#include <algorithm>
#include <chrono>

namespace plexa
{
namespace
{

/// A few logos as wide as a large photo.
constexpr qint64 kMaxBytes = qint64{256} << 20;
constexpr int kShareOfMemory = 16;

/// The interval at which a waiting thread checks whether it is canceled.
constexpr std::chrono::milliseconds kWait(10);

} // namespace

ScaledPictures::ScaledPictures(qint64 maxBytes)
    : m_images(maxBytes)
{
}

std::shared_ptr<ScaledPictures> ScaledPictures::shared()
{
    static const auto pictures =
        std::make_shared<ScaledPictures>(std::min(kMaxBytes, physicalMemoryBytes() / kShareOfMemory));
    return pictures;
}

QImage ScaledPictures::find(const void *owner, Form form, const std::function<QImage()> &render,
                            const CancelCheck &isCanceled)
{
    const QSize size = form.size;
    const Key key{owner, {quint64(size.width()) << 32 | quint64(size.height()), form.tilt}};
    std::unique_lock lock(m_lock);
    if (qint64{4} * size.width() * size.height() > m_images.maxCost()) {
        lock.unlock();
        return render();
    }
    while (true) {
        if (const QImage *const cached = m_images.object(key))
            return *cached;
        if (!m_inWork.contains(key))
            break;
        m_rendered.wait_for(lock, kWait);
        if (canceled(isCanceled))
            return {};
    }
    m_inWork.insert(key);
    lock.unlock();
    QImage image;
    const auto finish = qScopeGuard([&] { // also after an exception
        const std::lock_guard guard(m_lock);
        m_inWork.remove(key);
        if (!image.isNull())
            m_images.insert(key, new QImage(image), image.sizeInBytes());
        m_rendered.notify_all();
    });
    image = render();
    return QImage(image); // a copy: it is cached after this
}

void ScaledPictures::remove(const void *owner)
{
    const std::lock_guard lock(m_lock);
    const QList<Key> keys = m_images.keys();
    for (const Key &key : keys) {
        if (key.first == owner)
            m_images.remove(key);
    }
}

} // namespace plexa
