// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/trackpadgestures.h"

#include <QNativeGestureEvent>

#include <cmath>
#include <utility>

namespace plexa
{
namespace
{

using Action = TrackpadGestures::Action;

constexpr double kQuarterTurnAt = 45; // degrees
/// A pan with this many fingers, sideways and at least this long in points, is a swipe.
constexpr int kSwipeFingers = 3;
constexpr double kSwipeLength = 60;

Action swipe(bool isLeft)
{
    return {.kind = Action::Kind::Swipe, .isLeft = isLeft};
}

/// A platform reports a swipe as a step of exactly +1 (left) or -1 (right), or as an angle: 180 (left) or 0.
Action swipeOf(const QNativeGestureEvent &event)
{
    const QPointF delta = event.delta();
    if (!delta.isNull())
        return delta.y() == 0 && std::abs(delta.x()) == 1 ? swipe(delta.x() > 0) : Action();
    return event.value() == 180 || event.value() == 0 ? swipe(event.value() == 180) : Action();
}

} // namespace

std::optional<Action> TrackpadGestures::read(const QNativeGestureEvent &event)
{
    switch (event.gestureType()) {
    case Qt::BeginNativeGesture:
        *this = {};
        return Action();
    case Qt::ZoomNativeGesture:
        return Action{.kind = Action::Kind::Zoom, .zoom = static_cast<float>(event.value())};
    case Qt::RotateNativeGesture:
        m_rotation += event.value();
        if (std::abs(m_rotation) <= kQuarterTurnAt)
            return Action();
        return Action{.kind = Action::Kind::Rotate, .isClockwise = std::exchange(m_rotation, 0) > 0};
    case Qt::SwipeNativeGesture:
        return swipeOf(event);
    case Qt::PanNativeGesture:
        if (event.fingerCount() >= kSwipeFingers)
            m_pan += event.delta();
        return Action();
    case Qt::EndNativeGesture: {
        // Some platforms report pans instead of swipes.
        const QPointF pan = std::exchange(m_pan, {});
        const bool isSwipe = std::abs(pan.x()) >= kSwipeLength && std::abs(pan.x()) > 2 * std::abs(pan.y());
        return isSwipe ? swipe(pan.x() < 0) : Action();
    }
    default:
        return std::nullopt;
    }
}

} // namespace plexa
