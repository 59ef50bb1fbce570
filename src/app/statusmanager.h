// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/imagelist.h"

#include <QObject>
#include <QString>

#include <mutex>

namespace plexa
{

/// What the status line tells of; the numbers are the operations' codes.
enum class StatusOperation : quint32 {
    NoImages = 0, ///< never started
    Counting = 1,
    Importing = 2,
    Processing = 3, ///< copies for another program
    Rotating = 4,   ///< turns and mirrors alike
    Pasting = 5,
};

/// The status line as it is to be drawn.
struct StatusLine {
    enum class Bar { Hidden, Busy, Fraction };

    QString text;
    Bar bar = Bar::Hidden;
    float fraction = 0;        ///< 0..1, for Bar::Fraction
    bool canBeStopped = false; ///< the stop button is shown and enabled

    bool operator==(const StatusLine &) const = default;
};

/// The status line: what is running, else how many photos there are. Lives on the main thread.
class StatusManager final : public QObject
{
    Q_OBJECT

public:
    StatusManager();

    /// Begins to tell of an operation; one that is told of already is not told of twice. Any thread.
    void startOperation(StatusOperation operation);

    /// Ends it. @return false when it was not running. Any thread.
    bool endOperation(StatusOperation operation);

    /// Processing, by several at once: it is told of until the last one ends. Any thread.
    void startProcessing();
    void endProcessing();

    /// @param progress  0..1; for Counting, the number of photos found
    /// @return false when the operation is not running. Any thread.
    bool setProgress(float progress, StatusOperation operation);

    /// The lists whose sizes are told while nothing runs. They change on the main thread only.
    void setImages(std::shared_ptr<const ImageList> images, std::shared_ptr<const ImageList> filtered,
                   qint64 nSelected);

    void setNSelectedImages(qint64 count);
    qint64 nSelectedImages() const { return m_nSelectedImages; }

    /// Makes the line anew, later on the main thread. Any thread.
    void update();

    /// The line as it was made last. Main thread.
    const StatusLine &line() const { return m_line; }

Q_SIGNALS:
    /// The line differs from before. Main thread.
    void lineChanged();

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
