// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontnames.h"

#include <QStringDecoder>
#include <QtEndian>

namespace plexa
{
namespace
{

constexpr qsizetype kHeaderSize = 6;
constexpr qsizetype kRecordSize = 12;
constexpr int kMacintoshPlatform = 1;
constexpr int kPostScriptNameId = 6;

int numberAt(const QByteArray &table, qsizetype at)
{
    return qFromBigEndian<quint16>(table.constData() + at);
}

} // namespace

QStringList postScriptNames(const QByteArray &nameTable)
{
    QStringList names;
    if (nameTable.size() < kHeaderSize)
        return names;
    const qsizetype count =
        std::min<qsizetype>(numberAt(nameTable, 2), (nameTable.size() - kHeaderSize) / kRecordSize);
    const qsizetype storage = numberAt(nameTable, 4);
    for (qsizetype i = 0; i < count; ++i) {
        const qsizetype record = kHeaderSize + i * kRecordSize;
        if (numberAt(nameTable, record + 6) != kPostScriptNameId)
            continue;
        const qsizetype length = numberAt(nameTable, record + 8);
        const qsizetype start = storage + numberAt(nameTable, record + 10);
        if (length == 0 || start + length > nameTable.size())
            continue;
        const QByteArray bytes = nameTable.mid(start, length);
        if (numberAt(nameTable, record) == kMacintoshPlatform)
            names.append(QString::fromLatin1(bytes));
        else
            names.append(QStringDecoder(QStringDecoder::Utf16BE).decode(bytes));
    }
    names.removeDuplicates();
    return names;
}

} // namespace plexa
