// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <functional>

namespace plexa::test
{

/// Calls a function with the message box that is shown next.
inline void withNextBox(const std::function<void(QMessageBox &)> &work)
{
    auto *const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, work] {
        if (auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            timer->deleteLater();
            work(*box);
        }
    });
    timer->start(5);
}

} // namespace plexa::test
