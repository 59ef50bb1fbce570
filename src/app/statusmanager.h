// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"

#include <QObject>
#include <QString>

#include <mutex>

namespace plexa
{

/// The operations that the status line shows; the numbers are their codes.
enum class StatusOperation : quint32 {
    NoImages = 0, ///< never started
    Counting = 1,
    Importing = 2,
    Processing = 3, ///< saving
    Rotating = 4,   ///< and mirroring
    Pasting = 5,
    ImportingPresets = 6,
    Sorting = 7,
};

/// The contents of the status line.
struct StatusLine {
    enum class Bar { Hidden, Busy, Fraction };

    QString text;
    Bar bar = Bar::Hidden;
    float fraction = 0;        ///< 0..1, for Bar::Fraction
    bool canBeStopped = false; ///< the stop button is shown

    bool operator==(const StatusLine &) const = default;
};

/// The status line: the running operations, else the number of photos. Lives on the main thread.
class StatusManager final : public QObject
{
    Q_OBJECT

public:
    StatusManager();

    // Any thread. An operation that runs already is not started again; false: it was not running.
    void startOperation(StatusOperation operation);
    bool endOperation(StatusOperation operation);

    /// Processing may run several times at once: it is shown until the last one ends. Any thread.
    void startProcessing();
    void endProcessing();

    /// Any thread.
    /// @param progress  0..1; for Counting, the number of photos found
    /// @return false if the operation is not running
    bool setProgress(float progress, StatusOperation operation);

    /// The lists whose sizes are shown while nothing runs. They change on the main thread only.
    void setImages(std::shared_ptr<const ImageList> images, std::shared_ptr<const ImageList> filtered,
                   qint64 nSelected);

    void setNSelectedImages(qint64 count);

    /// Updates the line later, on the main thread. Any thread.
    void update();

    /// Shows a result or the reason of a refusal for some seconds, beside the line. Main thread.
    void notify(const QString &text) { Q_EMIT noticed(text); }

    /// The line of the last update. Main thread.
    const StatusLine &line() const { return m_line; }

Q_SIGNALS:
    void lineChanged();
    void noticed(const QString &text);

private:
    struct Entry {
        StatusOperation operation;
        float progress;
    };

    std::vector<Entry>::iterator lastEntry(StatusOperation operation);
    Q_INVOKABLE void makeLine();
    StatusLine lineOfOperations() const;
    QString lineOfImages() const;

    mutable std::mutex m_mutex;
    std::vector<Entry> m_currentOperations; // guarded by m_mutex
    int m_processings = 0;                  // guarded by m_mutex
    bool m_isUpdateQueued = false;          // guarded by m_mutex

    std::shared_ptr<const ImageList> m_images;
    std::shared_ptr<const ImageList> m_imagesFiltered;
    qint64 m_nSelectedImages = 0;
    StatusLine m_line;
};

} // namespace plexa
