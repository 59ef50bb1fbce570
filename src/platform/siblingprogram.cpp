// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/siblingprogram.h"

#include "platform/identity.h"

#include <QCoreApplication>
#include <QFile>

namespace plexa
{

QString siblingProgram(const QString &name)
{
    const QString folder = QCoreApplication::applicationDirPath();
    const QString beside = folder + u'/' + name;
    return QFile::exists(beside) ? beside
                                 : QStringLiteral("%1/../%2/%3")
                                       .arg(folder, QString::fromUtf8(identity::kProgramsFolder), name);
}

} // namespace plexa
