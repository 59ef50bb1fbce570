// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"
#include "images/imageobject.h"

#include <QHash>
#include <QImage>
#include <QTimer>

#include <memory>
#include <vector>

namespace plexa
{

class FontCatalog;

/// The thumbnails that a view shows, with watermarks or small ones of photos that are not loaded. Draws them
/// in the background, the visible ones first. The former picture stays until the new one is there; of several
/// changes only the newest is drawn. Memory is bounded, whatever the number of photos. Main thread.
class Thumbnails final : public QObject
{
    Q_OBJECT

public:
    enum class Photos {
        Loaded,       ///< only loaded photos have thumbnails
        LoadedForThis ///< visible photos are loaded for their thumbnails
    };

    /// @param fonts    outlives this object
    /// @param threads  photos that are drawn at a time
    Thumbnails(const FontCatalog &fonts, int threads, Photos photos);
    ~Thumbnails() override;

    /// The watermarks to be drawn, in this order. Without any, the thumbnails of loaded photos are bare.
    void setPresets(std::vector<AppliedPreset> presets);

    struct Wanted {
        ImageList visible;
        ImageList others; ///< drawn when the visible ones are, the first ones first, as far as memory allows
        int side = 0;     ///< device pixels that the longer side has at least, as far as the photo has them
    };
    void setWanted(Wanted wanted);

    /// The thumbnail as it can be shown now, mirrored top to bottom; null: there is none yet.
    QImage thumbnail(const ImageObject &photo) const;

    /// Its picture has changed. Changes of name, metadata and places are noticed without a call.
    void outdate(const ImageObject *photo);

    /// All that is wanted is drawn.
    bool isIdle() const;

Q_SIGNALS:
    /// thumbnail() returns another picture.
    void changed(const plexa::ImageObject *photo);

private:
    /// What a picture was drawn from.
    struct Version {
        int presets = -1;
        int photo = -1;
        int side = 0;
        bool operator==(const Version &) const = default;
    };
    struct Order {
        std::shared_ptr<ImageObject> photo;
        std::shared_ptr<const std::vector<AppliedPreset>> presets;
        Version version;
    };
    struct Entry {
        QImage picture;
        Version version; ///< of the picture, or of the attempt to draw it
        int photoVersion = 0;
    };
    class Queue;

    bool draws() const { return m_photos == Photos::LoadedForThis || !m_presets->empty(); }
    void watch(const std::shared_ptr<ImageObject> &photo);
    void forgetUnwanted();
    void scheduleUpdate();
    void update();
    std::vector<Order> outdated(const ImageList &photos) const;
    void start();
    void workOnOrders();
    QImage drawn(const Order &order) const;
    void deliver(const Order &order, const QImage &picture);

    const FontCatalog &m_fonts;
    const int m_threads;
    const Photos m_photos;
    std::shared_ptr<const std::vector<AppliedPreset>> m_presets;
    int m_presetsVersion = 0;
    Wanted m_wanted;
    QHash<const ImageObject *, Entry> m_entries; // of the wanted photos
    bool m_isUpdateQueued = false;
    QTimer m_quiet; // runs after a change, until the pictures that are not visible may be drawn
    const std::unique_ptr<Queue> m_queue; // of photos, so it is destroyed after the thread
    BackgroundJob m_job;
};

} // namespace plexa
