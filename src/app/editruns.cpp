// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/editruns.h"

#include <QGuiApplication>

#include <chrono>

namespace plexa
{

EditRuns::EditRuns()
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(std::chrono::seconds(1));
    m_pause.callOnTimeout([this] {
        if (QGuiApplication::mouseButtons() != Qt::NoButton || QGuiApplication::modalWindow())
            m_pause.start();
    });
    if (const auto *const application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        QObject::connect(application, &QGuiApplication::focusObjectChanged, &m_context,
                         [this] { ++m_textNumber; });
}

int EditRuns::numberOf(const FieldValue &now)
{
    if (std::holds_alternative<QStringList>(now))
        return m_textNumber;
    if (!m_pause.isActive())
        ++m_number;
    m_pause.start();
    return m_number;
}

void EditRuns::end()
{
    m_pause.stop();
    ++m_textNumber;
}

} // namespace plexa
