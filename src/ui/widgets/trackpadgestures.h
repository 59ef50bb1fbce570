// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointF>

#include <optional>

class QNativeGestureEvent;

namespace plexa
{

/// Recognizes pinches, quarter turns and sideways swipes in the gesture events of a trackpad. A value; knows
/// no widget.
class TrackpadGestures
{
public:
    struct Action {
        enum class Kind { None, Zoom, Rotate, Swipe };
        Kind kind = Kind::None;
        float zoom = 0;           ///< Zoom: to be added to the zoom factor
        bool isClockwise = false; ///< Rotate: by 90 degrees
        bool isLeft = false;      ///< Swipe
    };

    /// @return the gesture that this event completes, if any; nothing for an event of another kind, which
    /// belongs to the standard handling
    std::optional<Action> read(const QNativeGestureEvent &event);

private:
    double m_rotation = 0; // accumulated, degrees clockwise
    QPointF m_pan;         // accumulated, points
};

} // namespace plexa
