// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/filepromise.h"

#include <QList>
#include <QStringList>
#include <Qt>

#include <memory>

namespace plexa
{

/// Whom a grid tells what the user does in it, and asks what he may do. What is not overridden does nothing.
/// Called on the main thread; the grid's own state is settled before each call. Indexes ascend.
class ImageBrowserDelegate
{
public:
    virtual ~ImageBrowserDelegate() = default;

    virtual void selectionDidChangeTo(const QList<int> & /*indexes*/) {}
    /// -1: none.
    virtual void focusImageDidChangeTo(int /*to*/, int /*from*/) {}
    virtual void deletePressed() {}
    virtual void returnPressed() {}
    virtual void focusImageDoubleClicked() {}

    virtual void receivedDraggedFiles(const QStringList & /*paths*/) {}
    /// Dragged within the grid, to stand before the image that is at `toIndex` now.
    virtual void movedIndexes(const QList<int> & /*indexes*/, int /*toIndex*/) {}
    virtual void copiedIndexes(const QList<int> & /*indexes*/, int /*toIndex*/) {}

    /// The user wants another zoom; setZoomFactor() is for the delegate to call. May be out of range.
    virtual void changedZoomFactorTo(float /*zoomFactor*/) {}
    virtual void rotatedSelectedImages90ClockWise(bool /*clockwise*/) {}

    /// May images be dragged at all?
    virtual bool shouldDragPromisedFiles() { return false; }
    /// What a drag of the selected images offers outside the grid; null: nothing.
    virtual std::unique_ptr<FilePromise> promisedFiles(const QList<int> & /*indexes*/) { return nullptr; }
    virtual Qt::DropActions externalDraggingSourceOperationMask() { return Qt::CopyAction; }

    /// The selected images, of which there are some, to the clipboard.
    virtual void copy() {}
};

} // namespace plexa
