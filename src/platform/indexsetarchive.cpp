// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/indexsetarchive.h"

#include "platform/keyedarchive.h"

namespace plexa
{

namespace
{

const QLatin1StringView kRoot("root");

constexpr quint64 kMaxIndexes = 10'000'000;

} // namespace

QByteArray archivedIndexSet(const QList<int> &indexes)
{
    std::vector<IndexRange> ranges;
    for (const int index : indexes) {
        const auto location = static_cast<quint64>(index);
        if (!ranges.empty() && ranges.back().location + ranges.back().length == location)
            ++ranges.back().length;
        else
            ranges.push_back({location, 1});
    }
    KeyedArchiver archiver;
    archiver.top().setObject(kRoot, archiver.addIndexSet(ranges));
    return archiver.finish().value_or(QByteArray());
}

QList<int> indexSetFromArchive(const QByteArray &bytes)
{
    const Result<ArchivedValue> top = ArchivedValue::readArchive(bytes);
    const auto ranges = top ? top->value(kRoot).indexSet() : std::nullopt;
    QList<int> indexes;
    for (const IndexRange &range : ranges.value_or(std::vector<IndexRange>())) {
        const auto taken = static_cast<quint64>(indexes.size());
        if (range.location > kMaxIndexes || range.length > kMaxIndexes - taken)
            return {};
        for (quint64 i = 0; i < range.length; ++i)
            indexes.append(static_cast<int>(range.location + i));
    }
    return indexes;
}

} // namespace plexa
