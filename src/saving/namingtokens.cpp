// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/namingtokens.h"

namespace plexa
{
namespace
{

const QString kWPresetName = QStringLiteral("watermark preset name");
const QString kSavingPresetName = QStringLiteral("saving preset name");

/// The number of digits of a number is at least the number of its marks.
QString sequenceToken(int marks)
{
    return QStringLiteral("sequence ") + QString(marks, u'#');
}

constexpr int kMaxMarks = 4;

} // namespace

QStringList namingTokenNames()
{
    QStringList names;
    for (int marks = 1; marks <= kMaxMarks; ++marks)
        names.append(sequenceToken(marks));
    return names << kWPresetName << kSavingPresetName;
}

bool isSequenceToken(const QString &token)
{
    return token != kWPresetName && token != kSavingPresetName && namingTokenNames().contains(token);
}

std::optional<QString> namingTokenText(const QString &token, qint64 sequenceNumber,
                                       const QString &wPresetName, const QString &savingPresetName)
{
    if (token == kWPresetName)
        return wPresetName;
    if (token == kSavingPresetName)
        return savingPresetName;
    for (int marks = 1; marks <= kMaxMarks; ++marks) {
        if (token == sequenceToken(marks))
            return QString::asprintf("%0*lld", marks, static_cast<long long>(sequenceNumber));
    }
    return std::nullopt;
}

} // namespace plexa
