// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/editpause.h"

#include <QGuiApplication>

#include <chrono>

namespace plexa
{

EditPause::EditPause()
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(std::chrono::seconds(1));
    m_timer.callOnTimeout([this] {
        if (QGuiApplication::mouseButtons() != Qt::NoButton || QGuiApplication::modalWindow())
            m_timer.start();
    });
}

} // namespace plexa
