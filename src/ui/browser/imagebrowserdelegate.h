// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/filepromise.h"

#include <QList>
#include <QStringList>
#include <Qt>

#include <memory>

namespace plexa
{

/// Receives the user's actions in a grid and decides what is allowed. Functions that are not overridden do
/// nothing. Called on the main thread, after the grid's own state has changed. Indexes ascend.
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
    /// A drag within the grid: to be inserted before the image that is now at `toIndex`.
    virtual void movedIndexes(const QList<int> & /*indexes*/, int /*toIndex*/) {}
    virtual void copiedIndexes(const QList<int> & /*indexes*/, int /*toIndex*/) {}

    /// A request for another zoom, maybe out of range; the delegate calls setZoomFactor().
    virtual void changedZoomFactorTo(float /*zoomFactor*/) {}
    virtual void rotatedSelectedImages90ClockWise(bool /*clockwise*/) {}

    /// Other images can be seen, or in another size; [first, end).
    /// @param side  of a cell, in device pixels
    virtual void visibleImagesDidChangeTo(int /*first*/, int /*end*/, int /*side*/) {}

    /// Whether images may be dragged.
    virtual bool shouldDragPromisedFiles() { return false; }
    /// The files that a drag offers outside the grid; null: none.
    virtual std::unique_ptr<FilePromise> promisedFiles(const QList<int> & /*indexes*/) { return nullptr; }
    virtual Qt::DropActions externalDraggingSourceOperationMask() { return Qt::CopyAction; }

    /// Copies the selected images to the clipboard. Called only with a selection.
    virtual void copy() {}
};

} // namespace plexa
