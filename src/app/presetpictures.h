// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "images/imageobject.h"
#include "images/photosnapshot.h"

#include <QHash>
#include <QImage>
#include <QTimer>

#include <memory>
#include <optional>

namespace plexa
{

/// Small pictures of presets: the watermark of each, alone, and the part of one photo around it. Draws them
/// in the background, those that were asked for last first; while presets or photos change, not before a
/// pause. The former picture stays until the new one is there. Memory is bounded, whatever the number of
/// presets. Main thread.
class PresetPictures final : public QObject
{
    Q_OBJECT

public:
    /// @param services  outlive this object
    explicit PresetPictures(const PhotoServices &services);

    /// The photo, which is not loaded for this; null: a plain ground.
    void setPhoto(const std::shared_ptr<ImageObject> &photo);
    const std::shared_ptr<ImageObject> &photo() const { return m_photo; }

    /// Its picture has changed. Changes of metadata, name and places are noticed without a call.
    void outdatePhoto();

    /// The room of a picture, device pixels.
    void setRoom(QSize room);

    /// As it can be shown now, upright; null: there is none yet. If it is outdated, it is drawn soon.
    QImage picture(const std::shared_ptr<WPreset> &preset);

    /// All that was asked for is drawn.
    bool isIdle() const { return !m_quiet.isActive() && !m_job.isRunning() && !nextWanted(); }

Q_SIGNALS:
    /// Pictures are outdated, or picture() returns another one.
    void changed();

private:
    /// What a picture was drawn from.
    struct Version {
        int photo = 0;
        int preset = 0;
        bool operator==(const Version &) const = default;
    };
    struct Entry {
        std::weak_ptr<WPreset> preset;
        int presetVersion = 0;
        QImage picture;
        std::optional<Version> drawn; ///< or attempted
        int asked = 0;                ///< grows with each call of picture()
        bool isWanted = false;
    };

    void outdate();
    std::shared_ptr<WPreset> nextWanted() const;
    void update();
    QImage drawn(const AppliedPreset &preset, ImageObject *photo, QSize room) const;
    void deliver(const WPreset *preset, Version version, const QImage &picture);
    void boundMemory();

    const PhotoServices &m_services;
    std::shared_ptr<ImageObject> m_photo;
    std::shared_ptr<ImageObject> m_photoInWork; // is destroyed on this thread
    int m_photoVersion = 0;
    QSize m_room{60, 40};
    QHash<const WPreset *, Entry> m_entries;
    int m_asked = 0;
    QTimer m_quiet; // runs after a change
    BackgroundJob m_job;
};

} // namespace plexa
