// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/photofolder.h"
#include "support/programs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

namespace plexa::test
{

/// What exiftool reads from each of these files: "group:tag" to value, numbers as numbers. One process for
/// all files. A file of unknown format has few entries or none.
inline QMap<QString, QJsonObject> exiftoolRecords(const QStringList &paths,
                                                  const QStringList &options = {QStringLiteral("-G1")})
{
    const QStringList arguments = words("-json -n -a -charset filename=utf8 -api struct=2");
    // The exit status reports unknown files too, and the photos contain such files on purpose.
    const ProgramRun run = runProgram(QStringLiteral("exiftool"), arguments + options + paths);
    QMap<QString, QJsonObject> records;
    const QJsonArray list = QJsonDocument::fromJson(run.out).array();
    for (const auto &record : list)
        records.insert(record[QLatin1StringView("SourceFile")].toString(), record.toObject());
    return records;
}

/// One value as exiftool prints it with -s3, such as "EXIF:Artist"; raw bytes for binary ones.
inline QByteArray exiftoolValue(const QString &path, const QString &tag)
{
    return outputOf("exiftool -s3 -b %1 %2", u'-' + tag, path);
}

/// A value as text, the items of a list separated by blanks.
inline QString comparable(const QJsonValue &value)
{
    if (value.isArray()) {
        QStringList items;
        for (const auto &item : value.toArray())
            items += comparable(item);
        return items.join(u' ');
    }
    return value.toVariant().toString();
}

} // namespace plexa::test
